// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The way of a page from its file to its results.
#pragma once

#include "results.h"

// What the pages of a run share.
struct Run {
    const Options& options;
    const OutputFolder& folder;
    InputIds& inputs;
    bool overwrite;
};

// Reads, straightens, filters and writes a page. Does not throw: a fault is reported. `keepImages` asks for the page
// before and after.
PageResult processPage(const std::string& file, const Run& run, bool keepImages);
