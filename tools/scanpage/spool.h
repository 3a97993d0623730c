// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Compressed pages in a file without a name, until all of them are there.
#pragma once

#include "descriptor.h"
#include "page.h"

// Every function throws if the disk refuses.
class Spool {
public:
    explicit Spool(const std::string& folder);    // whose disk has room

    // Where bytes are.
    struct Place {
        uint64_t start = 0;
        size_t size = 0;
    };
    Place append(const std::vector<uint8_t>& bytes);
    std::vector<uint8_t> read(const Place& place) const;

    uint64_t size() const { return size_; }

private:
    Descriptor descriptor_;
    uint64_t size_ = 0;
};
