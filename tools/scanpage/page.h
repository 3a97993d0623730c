// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The pipeline of one page.
#pragma once

#include <OPCV_dlib.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <new>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

struct RecordDeleter {
    void operator()(KVIMG* record) const { DisposeKVIMG(record); }
};
using Record = std::unique_ptr<KVIMG, RecordDeleter>;

// A 1-bit image as the library packs it: a set bit is white.
struct Bits {
    int width = 0;
    int height = 0;
    int step = 0;
    std::vector<uint8_t> bytes;
};

enum class Median;

// kUsual: flattened where a page becomes 1 bit by a threshold that is chosen for it.
enum class Background { kUsual, kKeep, kFlatten };

// A page as it stands in a book.
struct PageStream {
    enum Kind { kGreyJpeg, kColourJpeg, kG4 };

    Kind kind = kGreyJpeg;
    int width = 0, height = 0;
    int dpiX = 0, dpiY = 0;
    std::vector<uint8_t> bytes;    // JFIF, or CCITT group 4 of which a one is black
};

// A small picture of a page, for the contact sheet.
struct Thumbnail {
    static constexpr int kMostWidth = 300;
    static constexpr int kMostHeight = 420;

    int width = 0, height = 0;
    std::vector<uint8_t> jpeg;    // a few kilobytes
};

// In the order of writing.
enum class Format { kPbm, kG4, kJpeg };

struct JpegQuality {
    int mode = 450;
    int percent = 0;    // 1 to 100; 0: by mode
};

struct Options {
    bool skewGiven = false;
    double angle = 0;
    bool orient = false;
    Background background = Background::kUsual;
    Median median{};
    int denoise = -1;        // strength; below 0: off
    int assumedDpi = 300;    // of pages that state no resolution
    int dpi = 0;             // resolution to scale to; 0: unchanged
    JpegQuality quality;
    int threshold = -1;    // below 0: chosen for each page
    std::set<Format> formats;
    bool resume = false;           // keep results that are complete
    bool refuseDamaged = false;    // a damaged page fails
    bool forBook = false;          // pages are collected in one file
};

struct Stage {
    std::string name;
    double milliseconds;
    size_t bytes;    // of its result
};

// kDamaged: its results are there, but the file of the page is damaged.
enum class Status { kDone, kKept, kDamaged, kFailed };

// The angle that straightens a page, in degrees counter-clockwise.
struct Skew {
    bool known = false;
    double angle = 0;         // 0 if it is not known
    double confidence = 0;    // 0 to 1; 0 also for an angle that was given
    std::string reason;       // why it is not known: blank, picture, unsure; empty if nothing was measured
};

// A fault that another run may not meet.
inline constexpr const char* kOutOfMemory = "out of memory";

// What became of a page.
struct PageResult {
    std::string file;
    Status status = Status::kDone;
    std::string fault;    // why it failed, or how it is damaged
    Skew skew;
    double blank = -1;    // score; below 0: unknown
    int width = 0, height = 0, depth = 0;
    int dpiX = 0, dpiY = 0;
    double milliseconds = 0;
    size_t bytes = 0;    // of its results
    std::vector<Stage> stages;
    std::vector<std::string> planned;          // paths that would be written
    std::optional<PageStream> stream;          // for a book
    std::optional<Thumbnail> before, after;    // on request
};

// Turns the status of a call into an exception that names the step.
inline void require(int status, const char* step) {
    if (status == memFullErr || status == ippStsNoMemErr) throw std::bad_alloc();
    if (status != noErr) throw std::runtime_error(std::string(step) + " failed with status " + std::to_string(status));
}
