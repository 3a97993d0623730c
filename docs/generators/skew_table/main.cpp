// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// skew_table: measures the skew finder, and Leptonica's pixFindSkew beside it, and writes a section of the gallery.
//
//     skew_table SECTION.md [FOLDER]
//
// FOLDER has scanned pages and labels.tsv, whose lines are "file<tab>kind"; kind is text, hard (dark, curved, old type)
// or other (no text). Without it, the rows of real scans in SECTION.md stay as they are.
#include <OPCV_dlib_skew.h>

#include <leptonica/allheaders.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <map>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "pagegen/non_pages.h"
#include "pagegen/sheet.h"

namespace {

using Angle = std::optional<double>;
using Finder = Angle (*)(const cv::Mat& page);

Angle byThisLibrary(const cv::Mat& page) {
    const KVIMG record = {page.data, 8, page.cols, page.rows, static_cast<int32_t>(page.step[0]), 0};
    opcv_skew skew{};
    skew.struct_size = sizeof(skew);
    if (opcv_find_skew(&record, &skew) != noErr) throw std::runtime_error("the skew finder failed");
    return skew.outcome == OPCV_SKEW_FOUND ? Angle(skew.angle) : std::nullopt;
}

// At Otsu's threshold, and with the confidence that Leptonica asks for less than 3 of, 2.5.
Angle byLeptonica(const cv::Mat& page) {
    cv::Mat dark;
    cv::threshold(page, dark, 0, 1, cv::THRESH_BINARY_INV | cv::THRESH_OTSU);
    PIX* pix = pixCreate(page.cols, page.rows, 1);
    for (int y = 0; y < page.rows; ++y)
        for (int x = 0; x < page.cols; ++x)
            if (dark.at<uint8_t>(y, x) != 0) SET_DATA_BIT(pixGetData(pix) + ptrdiff_t{y} * pixGetWpl(pix), x);
    float clockwise = 0;
    float confidence = 0;
    const bool found = pixFindSkew(pix, &clockwise, &confidence) == 0 && confidence >= 2.5F;
    pixDestroy(&pix);
    return found ? Angle(-clockwise) : std::nullopt;
}

struct Tally {
    int pages = 0;
    int found = 0;
    int turned = 0;       // by more than 0.1 degrees
    int turnedFar = 0;    // by more than 0.3 degrees
    std::vector<double> errors;
    std::vector<double> milliseconds;
};

double quantileOf(std::vector<double> values, double part) {
    if (values.empty()) return 0;
    std::sort(values.begin(), values.end());
    return values[static_cast<size_t>(std::ceil(part * static_cast<double>(values.size()))) - 1];
}

Angle timed(Finder find, const cv::Mat& page, Tally& tally) {
    const auto start = std::chrono::steady_clock::now();
    const Angle angle = find(page);
    tally.milliseconds.push_back(
        std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count());
    ++tally.pages;
    return angle;
}

void countText(Finder find, const cv::Mat& page, double degrees, Tally& tally) {
    const Angle angle = timed(find, page, tally);
    if (!angle) return;
    ++tally.found;
    tally.errors.push_back(std::abs(*angle - degrees));
}

void countOther(Finder find, const cv::Mat& page, Tally& tally) {
    const double angle = std::abs(timed(find, page, tally).value_or(0));
    tally.turned += angle > 0.1 ? 1 : 0;
    tally.turnedFar += angle > 0.3 ? 1 : 0;
}

std::string format(const char* pattern, double value) {
    char text[64];
    std::snprintf(text, sizeof(text), pattern, value);
    return text;
}

std::string cellsOf(const Tally& t, bool text) {
    if (!text) return "turned " + std::to_string(t.turned) + " / " + std::to_string(t.turnedFar) + " | |";
    return format("%.1f %%", 100.0 * t.found / t.pages) + " | " +
           (t.errors.empty() ? "" : format("%.3f", quantileOf(t.errors, 0.99))) + " |";
}

std::string rowOf(const std::string& name, const Tally& own, const Tally& other, bool text) {
    return "| " + name + ", " + std::to_string(own.pages) + " images | " + cellsOf(own, text) + " " +
           format("%.0f", quantileOf(own.milliseconds, 0.5)) + " | " + cellsOf(other, text) + " " +
           format("%.0f", quantileOf(other.milliseconds, 0.5)) + " |\n";
}

std::string rowOfScans(const std::string& name, const std::vector<int>& resolutions,
                       const std::vector<double>& angles) {
    Tally own, other;
    for (const int dpi : resolutions) {
        const double scale = static_cast<double>(dpi) / kSheetDpi;
        cv::Mat sheet;
        cv::resize(drawSheet(), sheet, {}, scale, scale, scale < 1 ? cv::INTER_AREA : cv::INTER_CUBIC);
        for (const double degrees : angles) {
            cv::Mat page = skewed(sheet, degrees);
            shadeAndAddNoise(page, 5);
            cv::cvtColor(page, page, cv::COLOR_RGB2GRAY);
            countText(byThisLibrary, page, degrees, own);
            countText(byLeptonica, page, degrees, other);
        }
    }
    return rowOf(name, own, other, true);
}

std::string drawnRows() {
    Tally own, other;
    for (const NonPage& drawn : drawNonPages()) {
        countOther(byThisLibrary, drawn.image, own);
        countOther(byLeptonica, drawn.image, other);
    }
    return rowOfScans("drawn pages, 75 to 600 dpi, up to 5 degrees", {75, 100, 150, 200, 300, 600},
                      {-5, -3.3, -0.6, 0, 0.1, 1.7, 4.2}) +
           rowOfScans("drawn pages, 75 to 300 dpi, 7 to 14.5 degrees", {75, 100, 150, 200, 300}, {-14.5, -10, 7, 12}) +
           rowOf("drawn blank sheets, noise, photographs, maps, patterns", own, other, false);
}

cv::Mat turned(const cv::Mat& page, double degrees) {
    const cv::Point2f centre(static_cast<float>(page.cols) / 2, static_cast<float>(page.rows) / 2);
    cv::Mat border;
    cv::vconcat(page.row(0), page.row(page.rows - 1), border);
    cv::Mat result;
    cv::warpAffine(page, result, cv::getRotationMatrix2D(centre, -degrees, 1), page.size(), cv::INTER_CUBIC,
                   cv::BORDER_CONSTANT, cv::mean(border));
    return result;
}

// A straight page has an angle of its own, of some hundredths or tenths of a degree: the median of what is found when
// it is turned back. Errors are relative to that.
void countTurns(Finder find, const cv::Mat& page, Tally& tally) {
    std::vector<double> offsets;
    for (const double degrees : {-4.6, -2.9, -1.3, 0.0, 0.37, 2.2, 5.0}) {
        const Angle angle = timed(find, degrees == 0 ? page : turned(page, degrees), tally);
        if (angle) offsets.push_back(*angle - degrees);
    }
    tally.found += static_cast<int>(offsets.size());
    const double own = quantileOf(offsets, 0.5);
    for (const double offset : offsets) tally.errors.push_back(std::abs(offset - own));
}

std::string realRows(const std::string& folder) {
    std::map<std::string, std::pair<Tally, Tally>> tallies;
    std::map<std::string, int> pages;
    std::ifstream labels(folder + "/labels.tsv");
    for (std::string line; std::getline(labels, line);) {
        std::istringstream fields(line);
        std::string file, kind;
        fields >> file >> kind;
        const cv::Mat page = cv::imread(folder + '/' + file, cv::IMREAD_GRAYSCALE);
        if (page.empty()) throw std::runtime_error(file + " cannot be read");
        if (kind == "text") kind = page.cols >= 800 ? "1 printed, 800 pixels wide and more" : "2 printed, narrower";
        if (kind == "hard") kind = "3 dark, curved or in old type";
        if (kind == "other") kind = "4 without text";
        auto& [own, other] = tallies[kind];
        ++pages[kind];
        if (kind[0] == '4') {
            countOther(byThisLibrary, page, own);
            countOther(byLeptonica, page, other);
        } else {
            countTurns(byThisLibrary, page, own);
            countTurns(byLeptonica, page, other);
        }
    }
    std::string rows;
    for (const auto& [kind, both] : tallies)
        rows += rowOf("real scans: " + std::to_string(pages[kind]) + " pages " + kind.substr(2), both.first,
                      both.second, kind[0] != '4');
    return rows;
}

std::string keptRows(const std::string& section) {
    std::string rows;
    std::ifstream file(section);
    for (std::string line; std::getline(file, line);)
        if (line.rfind("| real scans", 0) == 0) rows += line + '\n';
    return rows;
}

int run(int argc, char** argv) {
    if (argc != 2 && argc != 3) throw std::runtime_error("skew_table SECTION.md [FOLDER]");
    const std::string real = argc == 3 ? realRows(argv[2]) : keptRows(argv[1]);
    const std::string text =
        "\n## Finding the skew\n\n`opcv_find_skew`, and Leptonica's `pixFindSkew` at Otsu's threshold and a confidence "
        "of "
        "2.5. Errors are in degrees: 99 % of\nthe images have a smaller one. What has no text should keep its angle; "
        "counted are images turned by more than 0.1 / 0.3\ndegrees. Real scans are turned by seven known angles up to "
        "5 degrees; their errors are relative to the median of each page.\nMilliseconds are the median for an image. "
        "`./dev skew` measures the drawn rows again, `./dev skew FOLDER` also those of\nreal scans.\n\n"
        "| images | found | 99 % error | ms | Leptonica: found | 99 % error | ms |\n|---|---|---|---|---|---|---|\n" +
        drawnRows() + real;
    std::ofstream out(argv[1]);
    out << text;
    return out.flush() ? 0 : 1;
}

}    // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception& e) {
        std::fprintf(stderr, "skew_table: %s\n", e.what());
        return 2;
    }
}
