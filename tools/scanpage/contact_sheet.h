// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// A picture of small pages before and after, side by side, with their names and angles under them.
#pragma once

#include <map>
#include <mutex>

#include "book.h"
#include "thumbnail.h"

struct SheetEntry {
    std::string name, angle;
    Thumbnail before, after;
};

class ContactSheet {
public:
    static constexpr size_t kMostPages = 200;

    // Throws if the file may not be written.
    ContactSheet(const std::string& file, const Rules& rules);

    // From any thread and in any order. The first pages of the input are kept.
    void add(const PageOrder& order, SheetEntry entry);

    void write() const;

private:
    std::vector<uint8_t> drawn() const;

    OutputPlace place_;
    Rules rules_;
    std::mutex mutex_;
    std::map<PageOrder, SheetEntry> entries_;
};
