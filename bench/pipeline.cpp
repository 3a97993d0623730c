// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Times the page pipeline, from stream to stream, with this library and with others. Each runs the closest steps that
// it offers, on the same page:
//
//     opcv_dlib_pipeline PAGE.jpg [ROUNDS] > pipeline.tsv
//
// Every run is a separate process, so that its peak memory can be measured; the memory of an idle process is
// subtracted. A run processes the page twice and times the second. Each round runs all tools in turn. All use one
// thread.
#include <OPCV_dlib.h>
#include <leptonica/allheaders.h>
#include <magick/api.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <functional>
#include <iterator>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#include <string>
#include <vector>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "page_steps.h"

namespace {

constexpr double kAngle = 2.3;
constexpr double kRadians = kAngle * 3.14159265358979323846 / 180;
constexpr int kThreshold = 128;
constexpr int kQuality = 70;
constexpr int kMode = 450;    // quality 70

using Stream = std::vector<unsigned char>;

enum class Work { kToJpeg, kToBits };

struct Tool {
    const char* name;
    const char* jpegSteps;
    const char* bitsSteps;
    void (*run)(Work work, const Stream& stream);
};

void require(bool ok, const char* what) {
    if (ok) return;
    std::fprintf(stderr, "%s failed\n", what);
    std::_Exit(1);
}

void runOurs(Work work, const Stream& stream) {
    KVImageDescription description{0, 0, 300, 300, 0, 0};
    steps::Record page = steps::readPage(stream, description);
    require(page != nullptr, "reading");
    page = steps::deskewed(*page, description, kAngle);
    require(page != nullptr, "deskewing");
    const IppiSize size = {page->width, page->height};
    if (work == Work::kToBits) {
        require(steps::reduce(*page, kThreshold), "reducing");
        return;
    }
    const steps::Record filtered = steps::newGreyPage(size);
    require(filtered != nullptr, "a new page");
    std::copy_n(page->data, page->size, filtered->data);    // the outermost pixels are not filtered
    require(IPPShare_ippiFilterMedianWeightedCenter3x3_8u_C1R(
                page->data + page->rowBytes + 1, page->rowBytes, filtered->data + filtered->rowBytes + 1,
                filtered->rowBytes, {size.width - 2, size.height - 2}, 3) == ippStsNoErr,
            "FilterMedianWeightedCenter");
    page.reset();
    require(steps::compress(*filtered, description), "compressing");
}

void runOpenCV(Work work, const Stream& stream) {
    cv::Mat page = cv::imdecode(stream, cv::IMREAD_GRAYSCALE);
    const cv::Point2f centre(static_cast<float>(page.cols - 1) / 2, static_cast<float>(page.rows - 1) / 2);
    cv::Mat straight;
    cv::warpAffine(page, straight, cv::getRotationMatrix2D(centre, kAngle, 1), page.size(), cv::INTER_LINEAR,
                   cv::BORDER_CONSTANT, cv::Scalar::all(255));
    page.release();
    if (work == Work::kToBits) {
        cv::Mat binary;
        cv::threshold(straight, binary, kThreshold, 255, cv::THRESH_BINARY);
        straight.release();
        Stream bits;
        require(cv::imencode(".pbm", binary, bits), "imencode");
        return;
    }
    cv::Mat filtered;
    cv::medianBlur(straight, filtered, 3);
    straight.release();
    Stream result;
    require(cv::imencode(".jpg", filtered, result, {cv::IMWRITE_JPEG_QUALITY, kQuality}), "imencode");
}

void replace(PIX*& pix, PIX* by, const char* what) {
    require(by != nullptr, what);
    pixDestroy(&pix);
    pix = by;
}

void runLeptonica(Work work, const Stream& stream) {
    PIX* page = pixReadMem(stream.data(), stream.size());
    require(page != nullptr, "pixReadMem");
    replace(page, pixRotateAM(page, static_cast<l_float32>(-kRadians), L_BRING_IN_WHITE), "pixRotateAM");
    if (work == Work::kToBits) {
        replace(page, pixThresholdToBinary(page, kThreshold), "pixThresholdToBinary");
    } else {
        replace(page, pixMedianFilter(page, 3, 3), "pixMedianFilter");
        l_uint8* data = nullptr;
        size_t size = 0;
        require(pixWriteMemJpeg(&data, &size, page, kQuality, 0) == 0, "pixWriteMemJpeg");
        lept_free(data);
    }
    pixDestroy(&page);
}

void replace(Image*& image, Image* by, const char* what) {
    require(by != nullptr, what);
    DestroyImage(image);
    image = by;
}

void runGraphicsMagick(Work work, const Stream& stream) {
    ExceptionInfo exception;
    GetExceptionInfo(&exception);
    ImageInfo* info = CloneImageInfo(nullptr);
    Image* page = BlobToImage(info, stream.data(), stream.size(), &exception);
    require(page != nullptr, "BlobToImage");
    replace(page, RotateImage(page, -kAngle, &exception), "RotateImage");
    if (work == Work::kToBits) {
        require(ThresholdImage(page, kThreshold * (MaxRGB / 255.0)) != 0, "ThresholdImage");
        std::snprintf(page->magick, sizeof(page->magick), "PBM");
    } else {
        replace(page, MedianFilterImage(page, 1, &exception), "MedianFilterImage");
        info->quality = kQuality;
        std::snprintf(page->magick, sizeof(page->magick), "JPEG");
    }
    size_t size = 0;
    void* data = ImageToBlob(info, page, &size, &exception);
    require(data != nullptr, "ImageToBlob");
    MagickFree(data);
    DestroyImage(page);
    DestroyImageInfo(info);
    DestroyExceptionInfo(&exception);
}

void runNothing(Work /*work*/, const Stream& /*stream*/) {}

constexpr Tool kTools[] = {
    {"OPCV_dlib", "read, deskew, weighted median 3 (3x3), JPEG", "read, deskew, 1 bit", runOurs},
    {"OpenCV", "imdecode, warpAffine, medianBlur 3x3 (no weighted one), imencode",
     "imdecode, warpAffine, threshold, imencode to PBM", runOpenCV},
    {"Leptonica", "pixReadMem, pixRotateAM, pixMedianFilter 3x3 (no weighted one), pixWriteMemJpeg",
     "pixReadMem, pixRotateAM, pixThresholdToBinary", runLeptonica},
    {"GraphicsMagick", "BlobToImage, RotateImage, MedianFilterImage 3x3 (no weighted one), ImageToBlob",
     "BlobToImage, RotateImage, ThresholdImage, ImageToBlob to PBM", runGraphicsMagick},
};
constexpr Tool kIdle = {"idle", "", "", runNothing};

struct Run {
    double seconds;
    double megabytes;
};

Run runInProcess(const Tool& tool, Work work, const Stream& stream) {
    int ends[2];
    require(pipe(ends) == 0, "pipe");
    const pid_t child = fork();
    require(child >= 0, "fork");
    if (child == 0) {
        tool.run(work, stream);
        const auto start = std::chrono::steady_clock::now();
        tool.run(work, stream);
        const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        require(write(ends[1], &seconds, sizeof(seconds)) == sizeof(seconds), "write");
        std::_Exit(0);
    }
    close(ends[1]);
    double seconds = 0;
    const bool told = read(ends[0], &seconds, sizeof(seconds)) == sizeof(seconds);
    close(ends[0]);
    int status = 0;
    rusage usage{};
    wait4(child, &status, 0, &usage);
    require(told && WIFEXITED(status) && WEXITSTATUS(status) == 0, tool.name);
    return {seconds, static_cast<double>(usage.ru_maxrss) / 1024};
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

void compareTools(Work work, const Stream& stream, int rounds) {
    constexpr size_t kCount = std::size(kTools);
    std::vector<double> seconds[kCount];
    std::vector<double> ratios[kCount];
    std::vector<double> megabytes[kCount];
    for (int round = 0; round < rounds; ++round) {
        const double idle = runInProcess(kIdle, work, stream).megabytes;
        for (size_t i = 0; i < kCount; ++i) {
            const Run run = runInProcess(kTools[i], work, stream);
            seconds[i].push_back(run.seconds);
            megabytes[i].push_back(run.megabytes - idle);
            ratios[i].push_back(seconds[0].back() / run.seconds);
        }
    }
    const bool toJpeg = work == Work::kToJpeg;
    for (size_t i = 0; i < kCount; ++i)
        std::printf("%s\t8 bit, 2480 x 3508\t%s\t%.3f\t%.3f\t%.1f\t%s\n",
                    toJpeg ? "straightened, filtered, JPEG" : "straightened, 1 bit", kTools[i].name,
                    1000 * median(seconds[i]), median(ratios[i]), median(megabytes[i]),
                    toJpeg ? kTools[i].jpegSteps : kTools[i].bitsSteps);
}

// The page as a grey stream.
Stream greyStream(const char* file) {
    std::ifstream in(file, std::ios::binary);
    const Stream bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    const cv::Mat grey = bytes.empty() ? cv::Mat() : cv::imdecode(bytes, cv::IMREAD_GRAYSCALE);
    require(!grey.empty(), file);
    Stream stream;
    require(
        CompressGray2Gray444(grey.data, static_cast<int>(grey.step), grey.cols, grey.rows, stream, 80, 300, 300, false),
        "CompressGray2Gray444");
    return stream;
}

}    // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: opcv_dlib_pipeline PAGE.jpg [ROUNDS]\n");
        return 2;
    }
    cv::setNumThreads(1);
    InitializeMagick(argv[0]);
    SetMagickResourceLimit(ThreadsResource, 1);
    const Stream stream = greyStream(argv[1]);
    const int rounds = argc > 2 ? std::stoi(argv[2]) : 9;
    std::printf("work\tpage\ttool\tms\tratio\tpeak_mb\tsteps\n");
    for (const Work work : {Work::kToJpeg, Work::kToBits}) compareTools(work, stream, rounds);
    return 0;
}
