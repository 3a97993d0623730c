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
    std::string directory;
};

struct Stage {
    std::string name;
    double milliseconds;
    size_t bytes;    // of its result
};

// What was done to a page. `skew` is the angle that straightens it, counter-clockwise.
struct Report {
    std::string file;
    std::string fault;    // empty: all went well
    bool skewKnown = false;
    double skew = 0;
    int width = 0, height = 0, depth = 0;
    int dpiX = 0, dpiY = 0;
    std::vector<Stage> stages;
    Record before, after;    // kept only if asked for
};

// Turns a status into an exception that names the step.
inline void require(int status, const char* step) {
    if (status != 0) throw std::runtime_error(std::string(step) + " failed with status " + std::to_string(status));
}

Report processPage(const std::string& file, const Options& options, bool keepImages);

// The page scaled to another resolution, which the description then states.
Record scaled(const KVIMG& page, KVImageDescription& description, int dpi);

Record deskewed(const KVIMG& page, KVImageDescriptionHandle description, double angle);

// One byte a pixel: the page itself if it is grey, else the luma of its red, green and blue.
struct Grey {
    int width, height, step;
    const uint8_t* pixels;
    std::vector<uint8_t> own;
};
Grey greyOf(const KVIMG& page);

// Otsu's threshold: the level that parts the histogram into the two most distinct classes.
int otsuThreshold(const Grey& grey);

Bits reduced(const Grey& grey, int threshold);
