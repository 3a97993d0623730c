// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// What a call of the catalogue reads around its region, takes from the heap and shares among threads.
#pragma once

#include <string>

#include "catalogue/catalogue.h"

constexpr IppiSize kPage = {1240, 1754};    // A4 at 150 dpi

// How many pixels around the region make a difference: one number, or left, above, right and below.
// Empty for functions that take no region.
std::string marginOf(const Entry& entry, int variant);

struct Use {
    size_t handedOver;    // bytes that belong to the caller afterwards
    size_t working;       // bytes that the call has also allocated, and freed
    bool threads;         // whether OpenCV's threads have worked in it
};

// On a page.
Use useOf(const Entry& entry, int variant);
