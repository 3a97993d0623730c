// What random calls of each function give, as one hash a batch: the same on every processor, target of the kernels,
// compiler and version of OpenCV.
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

// For outputs that are numbers with a tolerance. The numbers of a batch, each with a random weight, are added up: a
// difference in any of them shows in the sum.
struct Projection {
    double sum = 0;
    double norm = 0;    // root of the sum of the squares of what was added
};
Projection projectionOf(const Entry& entry, int batch);

// The name and the batches of a function, as hashes.txt holds them.
std::string lineOf(const Entry& entry);

// For a report: the call of a batch, to try it alone.
Case::Setting settingOf(const Entry& entry, int batch, int call);
