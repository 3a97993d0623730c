// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// A block that ends at an inaccessible page, or begins after one: an access one byte out of bounds ends the test.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <new>

class FencedMemory {
public:
    enum class Fence { kBehind, kInFront };

    FencedMemory(size_t bytes, Fence fence) : size_(bytes) {
        const auto page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
        const size_t inner = (bytes + page - 1) / page * page;
        mappedSize_ = inner + 2 * page;
        mapped_ = static_cast<uint8_t*>(
            mmap(nullptr, mappedSize_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
        if (mapped_ == MAP_FAILED) throw std::bad_alloc();
        mprotect(mapped_, page, PROT_NONE);
        mprotect(mapped_ + page + inner, page, PROT_NONE);
        data_ = mapped_ + page + (fence == Fence::kBehind ? inner - bytes : 0);
    }
    FencedMemory(const FencedMemory&) = delete;
    FencedMemory& operator=(const FencedMemory&) = delete;
    ~FencedMemory() { munmap(mapped_, mappedSize_); }

    uint8_t* data() { return data_; }
    size_t size() const { return size_; }

    // After this call, a write to the block ends the test.
    void makeReadOnly() { protect(PROT_READ); }
    void makeWritable() { protect(PROT_READ | PROT_WRITE); }

private:
    void protect(int access) {
        const auto page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
        mprotect(mapped_ + page, mappedSize_ - 2 * page, access);
    }

    size_t size_;
    size_t mappedSize_ = 0;
    uint8_t* mapped_ = nullptr;
    uint8_t* data_ = nullptr;
};
