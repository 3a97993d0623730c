// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "manifest.h"

#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "escape.h"

namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kEnding = ".manifest.jsonl";
constexpr int kVersion = 1;
constexpr std::streamoff kLongestLine = 1 << 16;    // of the first line and the last

Json textOrNull(const std::string& text) { return text.empty() ? Json() : Json(text); }

double rounded(double value, double parts) { return std::round(value * parts) / parts; }

Json parsed(const std::string& line) { return Json::parse(line, nullptr, false); }

// Throws if a field is missing.
ManifestHead headOf(const Json& line) {
    if (line.at("manifest") != kVersion) throw std::runtime_error("another version");
    return {line.at("program"), line.at("options"), line.at("input")};
}

ShardTotals totalsOf(const Json& line) {
    ShardTotals totals;
    line.at("done").get_to(totals.done);
    line.at("damaged").get_to(totals.damaged);
    line.at("failed").get_to(totals.failed);
    line.at("passed").get_to(totals.passed);
    line.at("dropped").get_to(totals.dropped);
    line.at("without_skew").get_to(totals.withoutSkew);
    line.at("out_of_memory").get_to(totals.outOfMemory);
    line.at("seconds").get_to(totals.seconds);
    line.at("input_sha256").get_to(totals.inputSum);
    line.at("input_size").get_to(totals.inputSize);
    line.at("output_sha256").get_to(totals.outputSum);
    line.at("output_size").get_to(totals.outputSize);
    if (const Json& time = line.at("input_time"); !time.is_null()) time.get_to(totals.inputTime);
    return totals;
}

// Empty if the file does not end with a line feed.
std::string lastLine(std::istream& file) {
    file.seekg(0, std::ios::end);
    const std::streamoff size = file.tellg();
    std::string end(static_cast<size_t>(std::min(size, kLongestLine)), '\0');
    file.seekg(size - static_cast<std::streamoff>(end.size()));
    file.read(end.data(), static_cast<std::streamsize>(end.size()));
    if (!file || end.empty() || end.back() != '\n') return {};
    end.pop_back();
    return end.substr(end.rfind('\n') + 1);    // of all if there is no line feed
}

}    // namespace

std::string lineOf(const ManifestHead& head) {
    const Json line = {
        {"manifest", kVersion}, {"program", head.program}, {"options", head.options}, {"input", escaped(head.input)}};
    return line.dump() + '\n';
}

std::string lineOf(const MemberLine& m) {
    const Json line = {{"name", escaped(m.name)},
                       {"result", m.result ? Json(escaped(*m.result)) : Json()},
                       {"status", m.status},
                       {"input_sha256", textOrNull(m.inputSum)},
                       {"input_size", m.inputSize},
                       {"sha256", textOrNull(m.sum)},
                       {"size", m.size},
                       {"skew", m.skew ? Json(rounded(*m.skew, 100)) : Json()},
                       {"reason", textOrNull(escaped(m.reason))},
                       {"milliseconds", rounded(m.milliseconds, 10)}};
    return line.dump() + '\n';
}

std::string lineOf(const ShardTotals& t) {
    const Json line = {{"end", true},
                       {"pages", t.pages()},
                       {"done", t.done},
                       {"damaged", t.damaged},
                       {"failed", t.failed},
                       {"passed", t.passed},
                       {"dropped", t.dropped},
                       {"without_skew", t.withoutSkew},
                       {"out_of_memory", t.outOfMemory},
                       {"seconds", rounded(t.seconds, 1000)},
                       {"input_sha256", t.inputSum},
                       {"input_size", t.inputSize},
                       {"input_time", t.inputTime < 0 ? Json() : Json(t.inputTime)},
                       {"output_sha256", t.outputSum},
                       {"output_size", t.outputSize}};
    return line.dump() + '\n';
}

std::string manifestNameOf(const std::string& output) { return output + kEnding; }

std::string outputNameOf(const std::string& manifest) {
    const size_t length = std::strlen(kEnding);
    const bool isUsual = manifest.size() > length && manifest.compare(manifest.size() - length, length, kEnding) == 0;
    return isUsual ? manifest.substr(0, manifest.size() - length) : manifest;
}

std::optional<Manifest> readManifest(const std::string& name) {
    if (std::error_code error; !std::filesystem::is_regular_file(name, error))
        return std::nullopt;    // a pipe would wait
    std::ifstream file(name, std::ios::binary);
    std::string first(kLongestLine, '\0');
    file.getline(first.data(), kLongestLine);
    if (!file) return std::nullopt;
    first.resize(static_cast<size_t>(file.gcount()) - 1);
    Manifest manifest;
    try {
        manifest.head = headOf(parsed(first));
    } catch (const std::exception&) {
        return std::nullopt;
    }
    try {
        const Json last = parsed(lastLine(file));
        if (last.contains("end")) manifest.totals = totalsOf(last);
    } catch (const std::exception&) {    // not whole
    }
    return manifest;
}
