// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The catalogue itself: it knows every exported function, and its cases succeed and repeat.
#include "catalogue/catalogue.h"

#include <cxxabi.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <memory>
#include <set>

namespace {

// The name alone of a C++ function.
std::string demangled(const std::string& symbol) {
    int status = 0;
    const std::unique_ptr<char, opcv::FreeDeleter> whole(
        abi::__cxa_demangle(symbol.c_str(), nullptr, nullptr, &status));
    if (!whole) return symbol;
    const std::string text = whole.get();
    return text.substr(0, text.find('('));
}

TEST(Catalogue, KnowsEveryExportedFunction) {
    std::vector<std::string> exported;
    for (const char* list : {EXPORTS, LATER_EXPORTS}) {
        std::ifstream file(list);
        ASSERT_TRUE(file) << list;
        for (std::string symbol; std::getline(file, symbol);)
            if (!symbol.empty()) exported.push_back(demangled(symbol));
    }
    std::vector<std::string> known;
    for (const Entry& entry : catalogue()) known.push_back(entry.name);
    std::sort(exported.begin(), exported.end());
    std::sort(known.begin(), known.end());
    EXPECT_FALSE(exported.empty());
    EXPECT_EQ(known, exported);
}

// Fuzzing does not run in this build; that there is a call of each function is seen in its sources.
TEST(Catalogue, EveryFunctionIsFuzzed) {
    std::set<std::string> words;
    for (const auto& file : std::filesystem::directory_iterator(FUZZ)) {
        if (file.path().extension() != ".cpp") continue;
        std::ifstream in(file.path());
        std::string word;
        for (char c = 0; in.get(c);) {
            if (std::isalnum(static_cast<unsigned char>(c)) || c == '_') {
                word += c;
            } else {
                words.insert(word);
                word.clear();
            }
        }
    }
    for (const Entry& entry : catalogue()) EXPECT_EQ(words.count(entry.name), 1U) << entry.name;
}

void expectSuccessTwice(const Entry& entry, int variant) {
    SCOPED_TRACE(entry.name + ", variant " + std::to_string(variant));
    Heap heap;
    Case::Setting setting;
    setting.seed = 100 + static_cast<unsigned>(variant);
    setting.variant = variant;
    setting.size = {37, 11};
    Case c(setting, heap);
    entry.prepare(c);
    Bytes first;
    for (int run = 0; run < 2; ++run) {
        c.restore();
        ASSERT_EQ(c.run(), 0);
        ASSERT_EQ(c.strayWrites(), "");
        const Bytes output = c.takeOutput();
        if (run == 0) first = output;
        ASSERT_EQ(output, first);
    }
}

TEST(Catalogue, EveryCaseSucceedsAndRepeats) {
    for (const Entry& entry : catalogue())
        for (int variant = 0; variant < entry.variants; ++variant) expectSuccessTwice(entry, variant);
}

}    // namespace
