// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The pages of a tar stream, straightened into another.
#pragma once

#include <functional>

#include "manifest.h"
#include "page_report.h"
#include "tar_reader.h"
#include "tar_writer.h"

struct ShardOptions {
    const Options& page;    // with one format
    bool dropOthers;        // members that are no page are left out
    int jobs;
};

// Members keep their order. A page gets the name of its result, and a page that fails becomes a member NAME.error.txt.
// Reports the pages, and lists every member. Throws if a stream fails, or if the program is asked to stop.
ShardTotals straightenShard(TarReader& reader, TarWriter& writer, const ShardOptions& options, PageReport& report,
                            const std::function<void(const MemberLine&)>& list);
