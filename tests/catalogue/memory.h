// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Memory for the buffers of a case.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <new>
#include <vector>

#include "core/ownership.h"
#include "support/fenced_memory.h"

class Memory {
public:
    Memory() = default;
    Memory(const Memory&) = delete;
    Memory& operator=(const Memory&) = delete;
    virtual ~Memory() = default;

    // A block that lives as long as this.
    virtual uint8_t* take(size_t bytes) = 0;

    // The blocks that the library may only read, where that can be enforced: the last one that was taken.
    virtual void makeLastReadOnly() {}
};

// Blocks of exactly the requested size, so that the address sanitizer and memcheck detect accesses past the end.
class Heap final : public Memory {
public:
    uint8_t* take(size_t bytes) override {
        blocks_.emplace_back(static_cast<uint8_t*>(std::malloc(bytes)));
        if (!blocks_.back()) throw std::bad_alloc();
        return blocks_.back().get();
    }

private:
    std::vector<opcv::PixelBlock> blocks_;
};

// Each block ends at an inaccessible page or begins after one. Input blocks are read-only. Successive cases share the
// pages.
class Fenced final : public Memory {
public:
    explicit Fenced(FencedMemory::Fence fence) : fence_(fence) {}

    uint8_t* take(size_t bytes) override {
        if (used_ == blocks_.size()) blocks_.emplace_back();
        Block& block = blocks_[used_++];
        if (!block.memory || block.memory->size() < bytes)
            block.memory = std::make_unique<FencedMemory>(bytes < kUsual ? kUsual : bytes, fence_);
        return block.memory->data() + (fence_ == FencedMemory::Fence::kBehind ? block.memory->size() - bytes : 0);
    }
    void makeLastReadOnly() override {
        Block& block = blocks_[used_ - 1];
        block.memory->makeReadOnly();
        block.readOnly = true;
    }

    // Invalidates the blocks of the previous case.
    void reuse() {
        for (Block& block : blocks_)
            if (block.readOnly) {
                block.memory->makeWritable();
                block.readOnly = false;
            }
        used_ = 0;
    }

private:
    static constexpr size_t kUsual = 4096;    // a page

    struct Block {
        std::unique_ptr<FencedMemory> memory;
        bool readOnly = false;
    };

    FencedMemory::Fence fence_;
    std::vector<Block> blocks_;
    size_t used_ = 0;
};
