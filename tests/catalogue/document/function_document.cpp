// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Makes docs/functions.md from the header, the catalogue and calls of each function.
//
//     function_document HEADER SECOND_HEADER TEMPLATE DOCUMENT            fails if it would write another document
//     function_document HEADER SECOND_HEADER TEMPLATE DOCUMENT --write    writes it
//
// The text comes from the template, the first tables from the headers, the last one from calls: the margin by changing
// each row and column around the region and comparing the results, the heap by counting it with one thread, the threads
// by giving OpenCV a thread pool that counts its jobs.
#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "header.h"
#include "measure.h"

namespace {

using Header = std::map<std::string, Described>;

const std::vector<std::pair<std::string, Entries (*)()>> kParts = {{"core", coreEntries},
                                                                   {"geometry", geometryEntries},
                                                                   {"jpeg", jpegEntries},
                                                                   {"rank", rankEntries},
                                                                   {"pixel", pixelEntries},
                                                                   {"filters", filterEntries},
                                                                   {"second", limitedReadingEntries}};

// Of a text, for a cell of a table.
std::string firstSentence(const std::string& text) {
    std::string cell;
    for (const char c : text.substr(0, text.find(". "))) cell += c == '|' ? "\\|" : std::string(1, c);
    if (cell.back() == '.') cell.pop_back();
    return cell;
}

std::string briefTable(const Entries& entries, const Header& header) {
    std::string table = "| function | what it does | benchmark |\n|---|---|---|\n";
    for (const Entry& entry : entries) {
        const std::string& other = entry.measuredAs;
        const std::string benchmark = other.empty() ? "" : other == kNoImageWork ? "none" : "`" + other + "`";
        table += "| `" + entry.name + "` | " + firstSentence(header.at(entry.name).brief) + " | " + benchmark + " |\n";
    }
    return table;
}

// Tenths of a byte per pixel; less than a tenth is "0".
std::string perPixel(size_t bytes) {
    const auto tenths = static_cast<long>(static_cast<double>(bytes) * 10 / (double{kPage.width} * kPage.height));
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), tenths == 0 ? "0" : "%.1f", static_cast<double>(tenths) / 10);
    return text.data();
}

// Each status that the catalogue expects must be documented in the header.
void checkStatuses(const Entry& entry, const std::string& endings) {
    Heap heap;
    Case::Setting setting;
    Case c(setting, heap);
    entry.prepare(c);
    std::vector<int> statuses;
    for (const Refusal& refusal : c.refusals) statuses.push_back(refusal.status);
    if (entry.outOfMemory.allocates) statuses.push_back(entry.outOfMemory.status);
    const std::string listed = ", " + endings + ",";
    const bool hasStatus = listed.find("true, false") == std::string::npos && endings != "pointer, null";
    for (const int status : statuses)
        if (hasStatus && status != 0 && listed.find(", " + std::to_string(status) + ",") == std::string::npos)
            throw std::runtime_error(entry.name + " returns " + std::to_string(status) + ", which the header lacks");
}

std::string useTable(const Header& header) {
    std::string table =
        "| function | called with | margin | hands over | works in | threads | ends with "
        "|\n|---|---|---|---|---|---|---|\n";
    for (const auto& [name, entries] : kParts)
        for (const Entry& entry : entries()) {
            const std::string& endings = header.at(entry.name).endings;
            checkStatuses(entry, endings);
            for (const Shape& shape : entry.shapes) {
                const Use use = useOf(entry, shape.variant);
                table += "| `" + entry.name + "` | " + shape.text + " | " + marginOf(entry, shape.variant) + " | " +
                         perPixel(use.handedOver) + " | " + perPixel(use.working) + " | " +
                         (use.threads ? "yes" : "no") + " | " + endings + " |\n";
            }
        }
    return table;
}

std::string contentsOf(const std::string& file) {
    std::ifstream in(file);
    if (!in) throw std::runtime_error(file + " cannot be read");
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

void replace(std::string& text, const std::string& place, const std::string& by) {
    const size_t at = text.find(place);
    if (at == std::string::npos) throw std::runtime_error("no " + place + " in the template");
    text.replace(at, place.size(), by);
}

std::string documentOf(const std::string& header, const std::string& second, const std::string& frame) {
    Header functions = described(header);
    functions.merge(described(second));
    if (functions.size() != catalogue().size()) throw std::runtime_error("the headers have other functions");
    std::string text = contentsOf(frame);
    for (const auto& [name, entries] : kParts) replace(text, "@" + name + "@\n", briefTable(entries(), functions));
    replace(text, "@use@\n", useTable(functions));
    return text;
}

int run(int argc, char** argv) {
    if (argc < 5) throw std::runtime_error("function_document HEADER SECOND_HEADER TEMPLATE DOCUMENT [--write]");
    const std::string text = documentOf(argv[1], argv[2], argv[3]);
    if (argc > 5 && std::strcmp(argv[5], "--write") == 0) {
        std::ofstream(argv[4]) << text;
        return 0;
    }
    if (contentsOf(argv[4]) == text) return 0;
    std::fprintf(stderr, "%s is not what the header, the template and the calls give:\n%s", argv[4], text.c_str());
    return 1;
}

}    // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception& e) {
        std::fprintf(stderr, "%s\n", e.what());
        return 2;
    }
}
