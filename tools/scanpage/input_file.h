// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// A file as it is read.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "descriptor.h"
#include "file_id.h"

// Adds the file that the name leads to, and the link if the name is one. Does nothing if there is no such file.
void addInput(const std::string& file, InputIds& inputs);

// A regular file, opened for reading, or the bytes of one in memory. Every function throws if it cannot be read.
class InputFile {
public:
    explicit InputFile(const std::string& file);
    explicit InputFile(std::vector<uint8_t> bytes);

    size_t size() const { return size_; }

    // Adds up to `size` bytes, fewer at the end of the file only.
    void append(std::vector<uint8_t>& bytes, size_t size);

    // Up to `size` bytes from this place. Returns how many there are.
    size_t readAt(size_t place, void* bytes, size_t size);

private:
    size_t readMemory(size_t place, void* bytes, size_t size) const;
    size_t readDisk(size_t place, void* bytes, size_t size);

    Descriptor descriptor_;    // closed if the file is in memory
    std::vector<uint8_t> memory_;
    size_t size_;
    size_t place_ = 0;
};
