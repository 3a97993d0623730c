// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The results of one page in the output folder, and which files may be replaced.
#pragma once

#include <map>

#include "output_folder.h"
#include "page.h"
#include "page_folder.h"

struct Rules {
    const InputIds& inputs;    // are never replaced
    bool overwrite;            // any other file may be
    bool resume = false;       // results may be that this run would make the same
};

// The file behind a name in the output folder. Unknown members are empty.
struct Existing {
    std::optional<FileId> id;
    bool isFolder = false;
    bool isEmptyFile = false;    // holds nothing, so it may be replaced
    size_t size = 0;
    std::string mark;            // only of a whole file that scanpage made
    bool mayBeRemade = false;    // without --overwrite
};
Existing examine(const OutputFolder& folder, const std::string& name);
Existing identify(const OutputFolder& folder, const std::string& name);    // without its mark

// Throws if the rules forbid to replace what is there.
void requireReplaceable(const Existing& existing, const std::string& path, const Rules& rules);

// The same for a file of many pages. Not even --overwrite replaces another program's, which may be a page that was taken
// for its name.
void requireEarlierBook(const Existing& existing, const std::string& path, const Rules& rules);

// Where a file of many pages goes. Throws if the rules forbid it.
OutputPlace placeOfBook(const std::string& path, const Rules& rules);

// Name of the results of a page, without folder and extension. Pages that share it would overwrite each other's
// results; `nameIsUsed` tells so.
std::string resultName(const std::string& file);
std::string resultName(const PageName& page);    // with the folder below that of the results
std::string nameIsUsed(const std::string& resultName);

// The options that decide about the bytes of a result, as one would give them.
std::string optionsText(const Options& options, Format format);

// The results of a page. Wherever they go, they have the same names, marks and seals.
class Results {
public:
    Results(std::string name, uint64_t pageSum, const Options& options)
        : name_(std::move(name)), pageSum_(pageSum), options_(options) {}
    virtual ~Results() = default;
    Results(const Results&) = delete;
    Results& operator=(const Results&) = delete;

    std::string markFor(Format format, bool pageIsDamaged) const;

    // Seals and stores a result. Returns its size.
    size_t write(Format format, std::vector<uint8_t> file);

protected:
    std::string nameOf(Format format) const;

private:
    virtual void store(Format format, std::vector<uint8_t> file) = 0;

    std::string name_;    // without ending
    uint64_t pageSum_;
    const Options& options_;
};

// In a folder, where some may be from an earlier run.
class FolderResults final : public Results {
public:
    FolderResults(const std::string& name, uint64_t pageSum, const Options& options, const OutputFolder& folder);

    void requireReplaceable(const Rules& rules) const;

    // All are there, whole, and made from the same page with the same options.
    bool areComplete(bool ofDamagedPage) const;

    size_t bytes() const;

    std::vector<std::string> paths() const;

private:
    bool isSame(Format format, bool ofDamagedPage) const;
    void store(Format format, std::vector<uint8_t> file) override;

    const OutputFolder& folder_;
    std::map<Format, Existing> existing_;
};

// A result in memory.
struct ResultFile {
    std::string name;
    std::vector<uint8_t> bytes;
};

class MemoryResults final : public Results {
public:
    using Results::Results;

    std::vector<ResultFile> take() { return std::move(files_); }

private:
    void store(Format format, std::vector<uint8_t> file) override;

    std::vector<ResultFile> files_;
};
