// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// A picture of pages before and after, side by side.
#pragma once

#include <map>
#include <mutex>
#include <string>
#include <utility>

#include "pix.h"
#include "results.h"

class ContactSheet {
public:
    static constexpr size_t kMostPages = 50;

    // Throws if the file may not be written.
    ContactSheet(const std::string& file, const Rules& rules);

    // Adds page number `index`; may be called from any thread. Only small copies are kept.
    void add(size_t index, const KVIMG& before, const KVIMG& after);

    void write() const;

private:
    OutputFolder folder_;
    std::string name_;
    Rules rules_;
    std::mutex mutex_;
    std::map<size_t, std::pair<PixPtr, PixPtr>> rows_;
};
