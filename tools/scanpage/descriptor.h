// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Owner of a file descriptor.
#pragma once

#include <unistd.h>

#include <utility>

class Descriptor {
public:
    explicit Descriptor(int number = -1) : number_(number) {}
    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    ~Descriptor() {
        if (isOpen()) close(number_);
    }

    bool isOpen() const { return number_ >= 0; }
    int get() const { return number_; }

private:
    int number_;
};
