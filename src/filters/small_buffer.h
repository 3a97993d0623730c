// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Scratch memory inside the object, or on the heap if it is larger.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <type_traits>

#include "core/ownership.h"

namespace filters {

template <class T, size_t kInline>
class SmallBuffer {
    static_assert(std::is_trivially_copyable_v<T> && std::is_trivially_destructible_v<T>, "what malloc gives");

public:
    explicit SmallBuffer(size_t count)
        : heap_(count > kInline ? static_cast<T*>(std::aligned_alloc(kAlignment, bytesOf(count))) : nullptr),
          data_(count > kInline ? heap_.get() : inline_) {}
    SmallBuffer(const SmallBuffer&) = delete;
    SmallBuffer& operator=(const SmallBuffer&) = delete;

    T* get() { return data_; }    // null if allocating the block failed

private:
    static constexpr size_t kAlignment = 64;    // of the longest vectors
    static size_t bytesOf(size_t count) { return (count * sizeof(T) + kAlignment - 1) / kAlignment * kAlignment; }

    alignas(kAlignment) T inline_[kInline];
    std::unique_ptr<T, opcv::FreeDeleter> heap_;
    T* data_;
};

}    // namespace filters
