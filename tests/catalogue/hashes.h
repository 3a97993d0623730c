// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The results of random calls of each function, as one hash per batch. They are the same for every processor, kernel
// target, compiler and OpenCV version.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "catalogue/catalogue.h"

constexpr int kBatches = 8;
constexpr int kCallsInBatch = 31;

// FNV-1a with 64 bits, over the status and the output of each call of a batch.
uint64_t hashOf(const Entry& entry, int batch);

// For outputs that are numbers with a tolerance: the sum of the numbers of a batch, each with a random weight. A
// difference in any of them changes the sum.
struct Projection {
    double sum = 0;
    double norm = 0;    // root of the sum of the squares of the summands
};
Projection projectionOf(const Entry& entry, int batch);

// The name and the batches of a function, as stored in hashes.txt.
std::string lineOf(const Entry& entry);

// For failure messages: a single call of a batch.
Case::Setting settingOf(const Entry& entry, int batch, int call);
