// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Times the page pipeline, from stream to stream, with this library and with others. Each runs the closest steps that
// it offers, on the same grey page:
//
//     opcv_dlib_pipeline GREY.jpg [NAME=PROGRAM...] > pipeline.tsv
//
// A program is another library's pipeline: PROGRAM idle|jpeg|bits GREY.jpg. Every run is a process of its own, so that
// its peak memory can be measured; the memory of an idle process is subtracted. A run processes the page twice and
// tells the seconds of the second, and the steps. Each round runs all tools in turn. All use one thread.
#include <OPCV_dlib.h>
#include <leptonica/allheaders.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
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
constexpr int kRounds = 9;

using Stream = std::vector<unsigned char>;

enum class Work { kIdle, kToJpeg, kToBits };

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

constexpr Tool kTools[] = {
    {"OPCV_dlib", "read, deskew, weighted median 3 (3x3), JPEG", "read, deskew, 1 bit", runOurs},
    {"OpenCV", "imdecode, warpAffine, medianBlur 3x3 (no weighted one), imencode",
     "imdecode, warpAffine, threshold, imencode to PBM", runOpenCV},
    {"Leptonica", "pixReadMem, pixRotateAM, pixMedianFilter 3x3 (no weighted one), pixWriteMemJpeg",
     "pixReadMem, pixRotateAM, pixThresholdToBinary", runLeptonica},
};
struct Program {
    std::string name;
    std::string path;
};

const char* nameOf(Work work) {
    switch (work) {
        case Work::kIdle: return "idle";
        case Work::kToJpeg: return "jpeg";
        default: return "bits";
    }
}

struct Run {
    double seconds;
    double megabytes;
    std::string steps;
};

// Runs `child` in a process of its own, whose standard output tells the seconds and the steps.
Run runInProcess(const std::string& name, const std::function<void()>& child) {
    int ends[2];
    require(pipe(ends) == 0, "pipe");
    const pid_t process = fork();
    require(process >= 0, "fork");
    if (process == 0) {
        require(dup2(ends[1], STDOUT_FILENO) >= 0, "dup2");
        close(ends[0]);
        close(ends[1]);
        child();
        std::fflush(stdout);
        std::_Exit(0);
    }
    close(ends[1]);
    std::string told;
    char part[512];
    for (ssize_t count = 0; (count = read(ends[0], part, sizeof(part))) > 0;)
        told.append(part, static_cast<size_t>(count));
    close(ends[0]);
    int status = 0;
    rusage usage{};
    wait4(process, &status, 0, &usage);
    char* end = nullptr;
    const double seconds = std::strtod(told.c_str(), &end);
    require(*end == '\t' && WIFEXITED(status) && WEXITSTATUS(status) == 0, name.c_str());
    const std::string steps(end + 1);
    return {seconds, static_cast<double>(usage.ru_maxrss) / 1024, steps.substr(0, steps.find('\n'))};
}

void runTool(const Tool& tool, Work work, const Stream& stream) {
    if (work == Work::kIdle) {
        std::printf("0\t\n");
        return;
    }
    tool.run(work, stream);
    const auto start = std::chrono::steady_clock::now();
    tool.run(work, stream);
    const std::chrono::duration<double> duration = std::chrono::steady_clock::now() - start;
    std::printf("%.9f\t%s\n", duration.count(), work == Work::kToJpeg ? tool.jpegSteps : tool.bitsSteps);
}

struct Contender {
    std::string name;
    std::function<void(Work)> run;    // in a process of its own

    // The memory is what the work adds to an idle process.
    Run measure(Work work) const {
        const Run idle = runInProcess(name, [this] { run(Work::kIdle); });
        Run result = runInProcess(name, [this, work] { run(work); });
        result.megabytes -= idle.megabytes;
        return result;
    }
};

std::vector<Contender> contenders(const std::vector<Program>& programs, const Stream& stream, const char* file) {
    std::vector<Contender> all;
    for (const Tool& tool : kTools)
        all.push_back({tool.name, [&tool, &stream](Work work) { runTool(tool, work, stream); }});
    for (const Program& program : programs)
        all.push_back({program.name, [program, file](Work work) {
                           execl(program.path.c_str(), program.path.c_str(), nameOf(work), file, nullptr);
                           require(false, program.path.c_str());
                       }});
    return all;
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

void compare(Work work, const std::vector<Contender>& all) {
    struct Results {
        std::vector<double> seconds;
        std::vector<double> ratios;
        std::vector<double> megabytes;
        std::string steps;
    };
    std::vector<Results> results(all.size());
    for (int round = 0; round < kRounds; ++round) {
        for (size_t i = 0; i < all.size(); ++i) {
            const Run run = all[i].measure(work);
            results[i].seconds.push_back(run.seconds);
            results[i].megabytes.push_back(run.megabytes);
            results[i].ratios.push_back(results[0].seconds.back() / run.seconds);
            results[i].steps = run.steps;
        }
    }
    for (size_t i = 0; i < all.size(); ++i)
        std::printf("%s\t8 bit, 2480 x 3508\t%s\t%.3f\t%.3f\t%.1f\t%s\n",
                    work == Work::kToJpeg ? "straightened, filtered, JPEG" : "straightened, 1 bit", all[i].name.c_str(),
                    1000 * median(results[i].seconds), median(results[i].ratios), median(results[i].megabytes),
                    results[i].steps.c_str());
}

}    // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: opcv_dlib_pipeline GREY.jpg [NAME=PROGRAM...]\n");
        return 2;
    }
    cv::setNumThreads(1);
    std::ifstream in(argv[1], std::ios::binary);
    const Stream stream((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    require(!stream.empty(), argv[1]);
    std::vector<Program> programs;
    for (const std::string& argument : std::vector<std::string>(argv + 2, argv + argc)) {
        const size_t equals = argument.find('=');
        require(equals != std::string::npos, argument.c_str());
        programs.push_back({argument.substr(0, equals), argument.substr(equals + 1)});
    }
    std::printf("work\tpage\ttool\tms\tratio\tpeak_mb\tsteps\n");
    std::fflush(stdout);
    const std::vector<Contender> all = contenders(programs, stream, argv[1]);
    for (const Work work : {Work::kToJpeg, Work::kToBits}) {
        compare(work, all);
        std::fflush(stdout);
    }
    return 0;
}
