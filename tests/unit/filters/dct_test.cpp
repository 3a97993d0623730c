// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <vector>

#include "OPCV_dlib.h"
#include "oracle/filters.h"
#include "support/random.h"

namespace {

// A table in rows that are not contiguous.
struct Table {
    Table(Random& random, int n) : n(n), values(static_cast<size_t>(n * n)) {
        for (double& value : values) value = random.real(-100, 100);
        for (int row = 0; row < n; ++row) {
            storage.emplace_back(values.begin() + row * n, values.begin() + (row + 1) * n);
            storage.back().push_back(kBehind);
        }
        for (auto& row : storage) rows.push_back(row.data());
    }

    static constexpr double kBehind = 12345;
    int n;
    std::vector<double> values;    // as they were
    std::vector<std::vector<double>> storage;
    std::vector<double*> rows;
};

// Rows in one block; the table's first row comes after `skipped` others.
std::vector<double*> rowsIn(std::vector<double>& block, int n, int skipped) {
    std::vector<double*> rows(static_cast<size_t>(n));
    for (int row = 0; row < n; ++row) rows[static_cast<size_t>(row)] = block.data() + (row + skipped) % n * n;
    return rows;
}

TEST(CosineTransform, GivesWhatTheDefinitionGives) {
    Random random(671);
    for (int n = 1; n <= 12; ++n)
        for (const int direction : {0, 1, INT_MAX, -1, INT_MIN}) {
            Table table(random, n);
            ddct(direction, table.rows.data(), n);
            for (int i = 0; i < n * n; ++i)
                ASSERT_NEAR(table.rows[static_cast<size_t>(i / n)][i % n],
                            oracle::cosineTransformAt(table.values.data(), n * n, direction < 0, i), 1e-9)
                    << "n " << n << " direction " << direction << " value " << i;
            for (const auto& row : table.storage) ASSERT_EQ(row.back(), Table::kBehind);
        }
}

TEST(CosineTransform, TheInverseRestoresTheTable) {
    Random random(672);
    for (const int n : {1, 2, 3, 8, 15, 16, 31, 64}) {
        Table table(random, n);
        ddct(0, table.rows.data(), n);
        ddct(-1, table.rows.data(), n);
        for (int i = 0; i < n * n; ++i)
            ASSERT_NEAR(table.rows[static_cast<size_t>(i / n)][i % n], table.values[static_cast<size_t>(i)], 1e-9)
                << "n " << n;
    }
}

TEST(CosineTransform, IsOneTransformOfTheWholeTable) {
    std::vector<double> first = {1, 1};
    std::vector<double> second = {1, 1};
    std::vector<double*> rows = {first.data(), second.data()};
    ddct(0, rows.data(), 2);
    EXPECT_NEAR(first[0], 2, 1e-12);
    EXPECT_NEAR(first[1], 0, 1e-12);
    EXPECT_NEAR(second[0], 0, 1e-12);
    EXPECT_NEAR(second[1], 0, 1e-12);
}

// The results do not depend on the positions of the rows in memory.
TEST(CosineTransform, RowsMayBeContiguous) {
    Random random(675);
    for (int n = 1; n <= 9; ++n)
        for (const int direction : {0, -1}) {
            Table table(random, n);
            std::vector<double> block = table.values;
            block.push_back(Table::kBehind);
            std::vector<double*> rows = rowsIn(block, n, 0);
            ddct(direction, rows.data(), n);
            ddct(direction, table.rows.data(), n);
            for (int row = 0; row < n; ++row)
                for (int x = 0; x < n; ++x)
                    ASSERT_EQ(rows[static_cast<size_t>(row)][x], table.rows[static_cast<size_t>(row)][x]) << "n " << n;
            ASSERT_EQ(block.back(), Table::kBehind);
        }
}

TEST(CosineTransform, RowsMayLieInAnyOrder) {
    Random random(676);
    const int n = 6;
    Table table(random, n);
    std::vector<double> block(static_cast<size_t>(n * n));
    std::vector<double*> rows = rowsIn(block, n, 2);
    for (size_t row = 0; row < rows.size(); ++row) std::copy_n(table.rows[row], n, rows[row]);
    ddct(0, rows.data(), n);
    ddct(0, table.rows.data(), n);
    for (size_t row = 0; row < rows.size(); ++row)
        for (int x = 0; x < n; ++x) ASSERT_EQ(rows[row][x], table.rows[row][x]);
}

TEST(CosineTransform, LeavesTheTableAloneWithoutAllRows) {
    Random random(673);
    for (const int n : {2, 3})
        for (int missing = 0; missing < n; ++missing) {
            Table table(random, n);
            const auto before = table.storage;
            table.rows[static_cast<size_t>(missing)] = nullptr;
            ddct(0, table.rows.data(), n);
            ddct(-1, table.rows.data(), n);
            EXPECT_EQ(table.storage, before);
        }
    ddct(0, nullptr, 2);
}

TEST(CosineTransform, DoesNothingForOtherSizes) {
    Random random(674);
    Table table(random, 2);
    const auto before = table.storage;
    for (const int n : {0, -1, -2, INT_MIN, 46341, INT_MAX}) ddct(0, table.rows.data(), n);
    EXPECT_EQ(table.storage, before);
}

}    // namespace
