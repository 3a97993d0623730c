// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The way of a page from its file to its results.
#pragma once

#include <functional>
#include <mutex>
#include <unordered_set>

#include "book.h"

// The names of the results so far. Each may be used once, since a second page would overwrite the files of the first.
class UsedNames {
public:
    // False if the name was used before.
    bool claim(const std::string& name) {
        const std::lock_guard<std::mutex> lock(mutex_);
        return names_.insert(name).second;
    }

private:
    std::mutex mutex_;
    std::unordered_set<std::string> names_;
};

// What the pages of a run share.
struct Run {
    const Options& options;
    const OutputFolder* folder;    // null: only a book is made
    InputIds& inputs;
    UsedNames& names;
    Book* book;    // null: none is made
    bool overwrite;
    bool dryRun = false;    // pages are opened, but nothing is made
};

// Reads, straightens, filters and writes the pages of a file, one after the other. Does not throw: a fault is reported.
// `index` is the place of the file in the order of the input. `finished` is called for each page. `thumbnails` asks for
// small pictures of the page before and after.
void processFile(const PageName& name, size_t index, const Run& run, bool thumbnails,
                 const std::function<void(PageResult&)>& finished);

// The same for a file in memory, whose results stay in memory. A page that fails has none.
void processMember(const std::string& name, std::vector<uint8_t> bytes, const Options& options,
                   const std::function<void(PageResult&, std::vector<ResultFile>)>& finished);
