// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The results of one page in the output folder, and which files may be replaced.
#pragma once

#include <map>

#include "output_folder.h"
#include "page.h"

struct Rules {
    const InputIds& inputs;    // are never replaced
    bool overwrite;            // files that scanpage did not make may be replaced
};

// The file behind a name in the output folder. Unknown members are empty.
struct Existing {
    std::optional<FileId> id;
    bool isFolder = false;
    bool isEmptyFile = false;    // holds nothing, so it may be replaced
    size_t size = 0;
    std::string mark;    // only of a whole file that scanpage made
};
Existing examine(const OutputFolder& folder, const std::string& name);

// Throws if the rules forbid to replace what is there.
void requireReplaceable(const Existing& existing, const std::string& path, const Rules& rules);

// The same for a file of many pages. Not even --overwrite replaces another program's, which may be a page that was taken
// for its name.
void requireEarlierBook(const Existing& existing, const std::string& path, const InputIds& inputs);

// Name of the results of a page, without folder and extension. Pages that share it would overwrite each other's
// results; `nameIsUsed` tells so.
std::string resultName(const std::string& file);
std::string nameIsUsed(const std::string& resultName);

// The results of a page that were there before it is worked on.
class Results {
public:
    Results(const std::string& name, uint64_t pageSum, const Options& options, const OutputFolder& folder);

    void requireReplaceable(const Rules& rules) const;

    // All are there, whole, and made from the same page with the same options.
    bool areComplete(bool ofDamagedPage) const;

    size_t bytes() const;

    std::string markFor(Format format, bool pageIsDamaged) const;

    // Seals and writes a result in place of what was there. Returns its size.
    size_t write(Format format, std::vector<uint8_t> file) const;

private:
    std::string nameOf(Format format) const;

    std::string name_;    // without ending
    uint64_t pageSum_;
    const Options& options_;
    const OutputFolder& folder_;
    std::map<Format, Existing> existing_;
};
