// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// beside: times a few operations on the same page with this library, OpenCV and Leptonica, in turn, in one thread.
// beside_vips.c and beside.py do the same with libvips and Pillow.
//
//     beside GREY.jpg COLOUR.jpg    prints a line per operation and library: the median processor time in milliseconds
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
        std::printf("%s\t%s\t%.2f\n", operation, contenders[i].name, times[i][kRounds / 2]);
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

void compareWriting(const char* operation, Page& page) {
    constexpr int kQuality = 70;
    compare(operation,
            {{"OPCV_dlib", [&] { require(steps::compress(*page.record, page.description), "writing"); }},
             {"OpenCV",
              [&] {
                  Stream out;
                  require(cv::imencode(".jpg", page.mat, out, {cv::IMWRITE_JPEG_QUALITY, kQuality}), "imencode");
              }},
             {"Leptonica", [&] {
                  l_uint8* stream = nullptr;
                  size_t bytes = 0;
                  require(pixWriteMemJpeg(&stream, &bytes, page.pix.get(), kQuality, 0) == 0, "pixWriteMemJpeg");
                  lept_free(stream);
              }}});
}

// A filter with a 3 x 3 window: the pixels at the edges have no whole window, so this library leaves them out.
using Filter = std::function<IppStatus(const unsigned char* from, unsigned char* to, int step, IppiSize inner)>;

steps::Record filtered(const KVIMG& from, const Filter& filter) {
    steps::Record out = steps::newGreyPage({from.width, from.height});
    require(out != nullptr, "a new page");
    const IppiSize inner = {from.width - 2, from.height - 2};
    require(filter(from.data + from.rowBytes + 1, out->data + out->rowBytes + 1, from.rowBytes, inner) == ippStsNoErr,
            "filtering");
    return out;
}

void compareMedian(Page& page) {
    const Filter median = [](const unsigned char* from, unsigned char* to, int step, IppiSize inner) {
        return IPPShare_ippiFilterMedian_8u_C1R(from, step, to, step, inner, {3, 3}, {1, 1});
    };
    compare("median 3 x 3, grey", {{"OPCV_dlib", [&] { filtered(*page.record, median); }},
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

void compareSharpening(Page& page) {
    static const int cells[] = {-1, -1, -1, -1, 16, -1, -1, -1, -1};
    constexpr int kDivisor = 8;
    const Filter sharpen = [](const unsigned char* from, unsigned char* to, int step, IppiSize inner) {
        return IPPShare_ippiFilter_8u_C1R(from, step, to, step, inner, cells, {3, 3}, {1, 1}, kDivisor);
    };
    cv::Mat kernel(3, 3, CV_32F);
    const std::unique_ptr<L_KERNEL, void (*)(L_KERNEL*)> leptonicas(kernelCreate(3, 3),
                                                                    [](L_KERNEL* k) { kernelDestroy(&k); });
    kernelSetOrigin(leptonicas.get(), 1, 1);
    for (int i = 0; i < 9; ++i) {
        const float cell = static_cast<float>(cells[i]) / kDivisor;
        kernel.at<float>(i / 3, i % 3) = cell;
        kernelSetElement(leptonicas.get(), i / 3, i % 3, cell);
    }
    compare("sharpen 3 x 3, grey", {{"OPCV_dlib", [&] { filtered(*page.record, sharpen); }},
                                    {"OpenCV",
                                     [&] {
                                         cv::Mat out;
                                         cv::filter2D(page.mat, out, -1, kernel);
                                     }},
                                    {"Leptonica", [&] {
                                         const Pix out(pixConvolve(page.pix.get(), leptonicas.get(), 8, 0));
                                         require(out != nullptr, "pixConvolve");
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

void compareQuarterTurn(Page& page) {
    KVImageDescription* description = &page.description;
    compare("quarter turn, colour",
            {{"OPCV_dlib",
              [&] {
                  KVIMG* turned = nullptr;
                  require(RotateImageWithIPP(page.record.get(), &description, &turned, 90) == noErr, "turning");
                  const steps::Record owner(turned);
              }},
             {"OpenCV",
              [&] {
                  cv::Mat out;
                  cv::rotate(page.mat, out, cv::ROTATE_90_CLOCKWISE);
              }},
             {"Leptonica", [&] {
                  const Pix out(pixRotate90(page.pix.get(), 1));
                  require(out != nullptr, "pixRotate90");
              }}});
}

// Bilinear, from 400 to 300 dots per inch.
void compareScaling(Page& page) {
    compare("scale to 3/4, grey", {{"OPCV_dlib",
                                    [&] {
                                        KVIMG* small = nullptr;
                                        require(ResizeImageWithIPPEx(page.record.get(), &small, 4, 3) == noErr,
                                                "scaling");
                                        const steps::Record owner(small);
                                    }},
                                   {"OpenCV",
                                    [&] {
                                        cv::Mat out;
                                        cv::resize(page.mat, out, {}, 0.75, 0.75, cv::INTER_LINEAR);
                                    }},
                                   {"Leptonica", [&] {
                                        const Pix out(pixScaleGrayLI(page.pix.get(), 0.75F, 0.75F));
                                        require(out != nullptr, "pixScaleGrayLI");
                                    }}});
}

// OpenCV has no images of one bit per pixel.
void compareReducing(Page& page) {
    compare("reduce to 1 bit, grey", {{"OPCV_dlib", [&] { require(steps::reduce(*page.record, 127), "reducing"); }},
                                      {"Leptonica", [&] {
                                           const Pix out(pixThresholdToBinary(page.pix.get(), 128));
                                           require(out != nullptr, "pixThresholdToBinary");
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
    std::fprintf(stderr, "OpenCV %s, Leptonica %d.%d.%d\n", CV_VERSION, LIBLEPT_MAJOR_VERSION, LIBLEPT_MINOR_VERSION,
                 LIBLEPT_PATCH_VERSION);
    compareReading("read JPEG, grey", grey, greyPage);
    compareReading("read JPEG, colour", colour, colourPage);
    compareWriting("write JPEG, grey", greyPage);
    compareMedian(greyPage);
    compareSharpening(greyPage);
    compareDeskew("deskew by 2.3 degrees, grey", greyPage);
    compareDeskew("deskew by 2.3 degrees, colour", colourPage);
    compareQuarterTurn(colourPage);
    compareScaling(greyPage);
    compareReducing(greyPage);
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
