// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Every function returns the same bytes for the same call on every machine. hashes.txt was written on x86-64.
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <map>
#include <sstream>

#include "catalogue/hashes.h"

namespace {

using Table = std::map<std::string, std::vector<std::string>>;

Table expectedTable() {
    Table table;
    std::ifstream file(HASHES);
    for (std::string line; std::getline(file, line);) {
        if (line.empty() || line[0] == '#') continue;
        std::istringstream words(line);
        std::string name;
        words >> name;
        for (std::string word; words >> word;) table[name].push_back(word);
    }
    return table;
}

std::string callsOf(const Entry& entry, int batch) {
    return entry.name + ", batch " + std::to_string(batch) + ", seeds from " +
           std::to_string(settingOf(entry, batch, 0).seed);
}

// The summation order of the matrix product depends on the OpenCV version, and the rounding of the cosine transform on
// the processor, so their numbers are compared with this relative tolerance.
double toleranceOf(const Entry& entry) { return entry.output == Entry::Output::kFloats ? 1e-6 : 1e-14; }

void expectSame(const Entry& entry, int batch, const std::string& expected) {
    if (entry.output == Entry::Output::kExact) {
        EXPECT_EQ(hashOf(entry, batch), std::stoull(expected, nullptr, 16)) << callsOf(entry, batch);
        return;
    }
    const Projection projection = projectionOf(entry, batch);
    EXPECT_NEAR(projection.sum, std::stod(expected), toleranceOf(entry) * projection.norm) << callsOf(entry, batch);
}

TEST(Hashes, EveryFunctionGivesTheSameBytes) {
    const Table table = expectedTable();
    ASSERT_EQ(table.size(), catalogue().size());
    for (const Entry& entry : catalogue()) {
        const auto line = table.find(entry.name);
        ASSERT_NE(line, table.end()) << entry.name;
        ASSERT_EQ(line->second.size(), static_cast<size_t>(kBatches)) << entry.name;
        for (int batch = 0; batch < kBatches; ++batch)
            expectSame(entry, batch, line->second[static_cast<size_t>(batch)]);
    }
}

}    // namespace
