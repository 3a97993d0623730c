// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// beside: times a few operations on the same page with this library, OpenCV and Leptonica, in turn, in one thread.
// beside_vips.c and beside.py do the same with libvips and Pillow.
//
//     beside GREY.jpg COLOUR.jpg    prints the median processor time of each operation in milliseconds
#include <OPCV_dlib.h>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#include <stdexcept>
#include <string>
#include <vector>

#include <leptonica/allheaders.h>

#include "page_steps.h"

namespace {

constexpr double kDegrees = 2.3;
constexpr int kRounds = 9;

using Stream = std::vector<unsigned char>;

struct PixDeleter {
    void operator()(PIX* pix) const { pixDestroy(&pix); }
};
using Pix = std::unique_ptr<PIX, PixDeleter>;

Stream contentsOf(const char* file) {
    std::ifstream in(file, std::ios::binary);
    if (!in) throw std::runtime_error(std::string(file) + " cannot be read");
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

void require(bool good, const char* step) {
    if (!good) throw std::runtime_error(std::string(step) + " failed");
}

struct Contender {
    const char* name;
    std::function<void()> run;
};

// In milliseconds, of all threads. Other load on the machine affects it less than wall-clock time.
double processorTime() {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) / 1e6;
}

void compare(const char* operation, const std::vector<Contender>& contenders) {
    std::vector<std::vector<double>> times(contenders.size());
    for (int round = -1; round < kRounds; ++round)
        for (size_t i = 0; i < contenders.size(); ++i) {
            const double start = processorTime();
            contenders[i].run();
            if (round >= 0) times[i].push_back(processorTime() - start);    // the first round warms up
        }
    for (size_t i = 0; i < contenders.size(); ++i) {
        std::sort(times[i].begin(), times[i].end());
        std::printf("%-24s %-10s %8.1f\n", operation, contenders[i].name, times[i][kRounds / 2]);
    }
}

// One page in the format of each library.
struct Page {
    KVImageDescription description{};
    steps::Record record;
    cv::Mat mat;
    Pix pix;
};

steps::Record readRecord(const Stream& jpeg, KVImageDescription& description) {
    steps::Record record = steps::readPage(jpeg, description);
    require(record != nullptr, "reading");
    return record;
}

Pix readPix(const Stream& jpeg) {
    PIX* pix = pixReadMemJpeg(jpeg.data(), jpeg.size(), 0, 1, nullptr, 0);
    require(pix != nullptr, "pixReadMemJpeg");
    return Pix(pix);
}

void read(Page& page, const Stream& jpeg) {
    page.record = readRecord(jpeg, page.description);
    page.mat = cv::imdecode(jpeg, cv::IMREAD_ANYCOLOR);
    page.pix = readPix(jpeg);
}

void compareReading(const char* operation, const Stream& jpeg, Page& page) {
    compare(operation, {{"OPCV_dlib", [&] { readRecord(jpeg, page.description); }},
                        {"OpenCV", [&] { cv::imdecode(jpeg, cv::IMREAD_ANYCOLOR); }},
                        {"Leptonica", [&] { readPix(jpeg); }}});
}

void compareMedian(Page& page) {
    const KVIMG& from = *page.record;
    const IppiSize inner = {from.width - 2, from.height - 2};
    compare("median 3 x 3, grey",
            {{"OPCV_dlib",
              [&] {
                  const steps::Record out = steps::newGreyPage({from.width, from.height});
                  require(out != nullptr, "a new page");
                  require(IPPShare_ippiFilterMedian_8u_C1R(from.data + from.rowBytes + 1, from.rowBytes,
                                                           out->data + out->rowBytes + 1, out->rowBytes, inner, {3, 3},
                                                           {1, 1}) == ippStsNoErr,
                          "IPPShare_ippiFilterMedian_8u_C1R");
              }},
             {"OpenCV",
              [&] {
                  cv::Mat out;
                  cv::medianBlur(page.mat, out, 3);
              }},
             {"Leptonica", [&] {
                  const Pix out(pixMedianFilter(page.pix.get(), 3, 3));
                  require(out != nullptr, "pixMedianFilter");
              }}});
}

void compareDeskew(const char* operation, Page& page) {
    const double radians = kDegrees * CV_PI / 180;
    compare(operation,
            {{"OPCV_dlib",
              [&] { require(steps::deskewed(*page.record, page.description, kDegrees) != nullptr, "deskewing"); }},
             {"OpenCV",
              [&] {
                  cv::Mat out;
                  const cv::Point2f centre(static_cast<float>(page.mat.cols - 1) / 2,
                                           static_cast<float>(page.mat.rows - 1) / 2);
                  cv::warpAffine(page.mat, out, cv::getRotationMatrix2D(centre, kDegrees, 1), page.mat.size(),
                                 cv::INTER_LINEAR, cv::BORDER_CONSTANT, cv::Scalar::all(255));
              }},
             {"Leptonica", [&] {
                  const Pix out(pixRotateAM(page.pix.get(), static_cast<float>(-radians), L_BRING_IN_WHITE));
                  require(out != nullptr, "pixRotateAM");
              }}});
}

int run(int argc, char** argv) {
    if (argc != 3) throw std::runtime_error("beside GREY.jpg COLOUR.jpg");
    cv::setNumThreads(1);
    const Stream grey = contentsOf(argv[1]);
    const Stream colour = contentsOf(argv[2]);
    Page greyPage;
    Page colourPage;
    read(greyPage, grey);
    read(colourPage, colour);
    std::printf("OpenCV %s, Leptonica %d.%d.%d\n", CV_VERSION, LIBLEPT_MAJOR_VERSION, LIBLEPT_MINOR_VERSION,
                LIBLEPT_PATCH_VERSION);
    compareReading("read JPEG, grey", grey, greyPage);
    compareReading("read JPEG, colour", colour, colourPage);
    compareMedian(greyPage);
    compareDeskew("deskew 2.3, grey", greyPage);
    compareDeskew("deskew 2.3, colour", colourPage);
    return 0;
}

}    // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception& e) {
        std::fprintf(stderr, "beside: %s\n", e.what());
        return 2;
    }
}
