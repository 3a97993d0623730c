// One page on its way through the pipeline.
#pragma once

#include <OPCV_dlib.h>

#include <chrono>
#include <cstdint>
#include <memory>
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

struct Options {
    bool skewGiven = false;
    double angle = 0;
    Median median{};
    int denoise = -1;    // strength; below 0: not at all
    int dpi = 0;         // to scale to; 0: as it is
    int mode = 450;
    int threshold = -1;    // below 0: chosen for each page
    bool jpeg = true;
    bool pbm = false;
    bool g4 = false;
    bool resume = false;    // leave pages alone whose results are there
    std::string directory;
};

struct Stage {
    std::string name;
    double milliseconds;
    size_t bytes;    // of its result
};

enum class Status { kDone, kKept, kFailed };

// What was done to a page. `skew` is the angle that straightens it, counter-clockwise.
struct PageResult {
    std::string file;
    Status status = Status::kDone;
    std::string fault;    // why it failed
    bool skewKnown = false;
    double skew = 0;
    int width = 0, height = 0, depth = 0;
    int dpiX = 0, dpiY = 0;
    double milliseconds = 0;
    size_t bytes = 0;    // of its results
    std::vector<Stage> stages;
    Record before, after;    // kept only if asked for
};

// Turns a status into an exception that names the step.
inline void require(int status, const char* step) {
    if (status != 0) throw std::runtime_error(std::string(step) + " failed with status " + std::to_string(status));
}

// Reads, straightens, filters and writes a page. Does not throw: a fault is reported.
PageResult processPage(const std::string& file, const Options& options, bool keepImages);

// Name of the results of a page, without folder and ending. Pages that share it would overwrite each other's results.
std::string resultName(const std::string& file);
