// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// What every function of the catalogue does when its allocations fail.
#pragma once

#include <climits>
#include <string>
#include <vector>

#include "catalogue/catalogue.h"

struct Observation {
    long fewestAllocations = LONG_MAX;    // in a call that succeeds
    long mostAllocations = 0;
    bool answers = false;        // returns the documented status
    bool throws = false;         // OpenCV's exception or std::bad_alloc propagates
    bool leaves = false;         // has no status and leaves the output unchanged
    bool doesWithout = false;    // succeeds nevertheless
    bool losesABlock = false;    // of OpenCV's
    std::string fault;           // describes a deviation from the documentation; empty if none
};

// Each allocation of one call fails once, one after the other; then all from it on.
void observe(const Entry& entry, const Case::Setting& setting, Observation& seen);

// From one shape of an entry to the next that is tried. Emulation takes its time: there it is half a dozen
// of them.
int strideOf(const Entry& entry);

// Of each entry of the catalogue, in its order.
const std::vector<Observation>& observations();

// All of them as the table of docs/reliability.md.
std::string failureTable();
