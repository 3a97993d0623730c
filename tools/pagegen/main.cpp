// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// pagegen: draws A4 pages that look scanned: text, a picture, uneven light, noise and a skew.
#include <OPCV_dlib.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <opencv2/imgproc.hpp>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "sheet.h"

namespace {

// Shared by all pages of a run, at their resolution: the sheet, its illumination and a stock of noise.
class Scanner {
public:
    Scanner(int dpi, unsigned seed, bool picture, double shade) {
        const double scale = static_cast<double>(dpi) / kSheetDpi;
        cv::resize(drawSheet(picture), sheet_, {}, scale, scale, dpi < kSheetDpi ? cv::INTER_AREA : cv::INTER_CUBIC);
        light_.create(sheet_.size(), CV_32FC3);
        for (int y = 0; y < light_.rows; ++y)
            for (int x = 0; x < light_.cols; ++x)
                light_.at<cv::Vec3f>(y, x) =
                    cv::Vec3f::all(static_cast<float>(lightAt({x, y}, light_.size()) * (1 - shade * x / light_.cols)));
        cv::Mat grain(sheet_.rows + kNoiseShifts, sheet_.cols + kNoiseShifts, CV_16S);
        cv::RNG(seed).fill(grain, cv::RNG::NORMAL, 0, 5);
        cv::merge(std::vector<cv::Mat>(3, grain), noise_);
    }

    // Turned clockwise for a positive skew, on the dark lid of the scanner.
    cv::Mat scan(double degrees, unsigned page) const {
        cv::Mat result = skewed(sheet_, degrees);
        cv::multiply(result, light_, result, 1.0, CV_8U);
        std::mt19937 engine(page);
        const cv::Point shift(static_cast<int>(engine() % kNoiseShifts), static_cast<int>(engine() % kNoiseShifts));
        cv::add(result, noise_(cv::Rect(shift, sheet_.size())), result, cv::noArray(), CV_8U);
        return result;
    }

private:
    static constexpr int kNoiseShifts = 256;    // in both directions

    cv::Mat sheet_, light_, noise_;
};

void writeJpeg(const cv::Mat& page, int dpi, const std::string& file) {
    const KVIMG image = {page.data,
                         page.channels() * 8,
                         page.cols,
                         page.rows,
                         static_cast<int32_t>(page.step[0]),
                         static_cast<int32_t>(page.step[0] * static_cast<size_t>(page.rows))};
    void* data = nullptr;
    unsigned size = 0;
    const OSErr err = CompressJPEG(&image, dpi, 788, &data, &size);
    const std::unique_ptr<void, void (*)(void*)> owner(data, std::free);
    std::ofstream out(file, std::ios::binary);
    if (err == noErr) out.write(static_cast<const char*>(data), size);
    if (err != noErr || !out.flush()) throw std::runtime_error(file + " cannot be written");
}

int run(int argc, char** argv) {
    double skew = 2.3;
    unsigned seed = 1;
    int count = 0;
    int dpi = kSheetDpi;
    std::string target;
    int shade = 0;
    bool grey = false;
    bool text = false;
    CLI::App app("Draws scanned A4 pages.", "pagegen");
    app.add_option("--skew", skew, "Degrees by which the page is turned clockwise; of many pages, the largest skew")
        ->capture_default_str();
    app.add_option("--seed", seed, "Seed of the noise")->capture_default_str();
    app.add_option("--dpi", dpi, "Resolution")->check(CLI::Range(30, 1200))->capture_default_str();
    app.add_option("--count", count, "Draw this many pages, TARGET/page-000001.jpg and on, of different skews")
        ->check(CLI::PositiveNumber);
    app.add_option("--shade", shade, "Percent by which the right edge is darker than the left one")
        ->check(CLI::Range(0, 100))
        ->capture_default_str();
    app.add_flag("--text", text, "Text only, no picture");
    app.add_flag("--grey", grey, "Grey instead of colour");
    app.add_option("target", target, "JPEG to write; with --count, the folder to write to")->required();
    CLI11_PARSE(app, argc, argv);

    const Scanner scanner(dpi, seed, !text, shade / 100.0);
    const auto draw = [&](const std::string& file, double degrees, unsigned page) {
        cv::Mat image = scanner.scan(degrees, page);
        if (grey) cv::cvtColor(image, image, cv::COLOR_RGB2GRAY);
        writeJpeg(image, dpi, file);
        std::printf("%s: %d x %d, %d dpi, skew %.2f degrees\n", file.c_str(), image.cols, image.rows, dpi, degrees);
    };
    if (count == 0) draw(target, skew, seed);
    std::mt19937 engine(seed);
    std::uniform_real_distribution<double> skews(-skew, skew);
    for (int i = 1; i <= count; ++i) {
        char name[32];
        std::snprintf(name, sizeof(name), "/page-%06d.jpg", i);
        draw(target + name, skews(engine), seed + static_cast<unsigned>(i));
    }
    return 0;
}

}    // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception& e) {
        std::fprintf(stderr, "pagegen: %s\n", e.what());
        return 2;
    }
}
