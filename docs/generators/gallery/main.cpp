// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// gallery: draws a page, runs filters on it and writes docs/gallery.md with pictures and measurements.
//
//     gallery DOCS_FOLDER            writes the document and its pictures
//     gallery DOCS_FOLDER --check    fails if they differ from what it would write
#include <OPCV_dlib.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <opencv2/imgproc.hpp>
#include <stdexcept>
#include <string>
#include <vector>

#include "document.h"
#include "measures.h"
#include "pagegen/sheet.h"
#include "pictures.h"
#include "records.h"

namespace {

constexpr double kSkew = 2.3;
constexpr std::array<int, 5> kModes = {0, 286, 389, 450, 788};
constexpr int kMask3x3 = 33;
constexpr int kMask5x5 = 55;

const cv::Rect kText(470, 640, 120, 80);         // letters
const cv::Rect kHorizon(1510, 1940, 120, 80);    // the sun behind the hills

void showDeskew(Gallery& gallery) {
    cv::Mat page = skewed(drawSheet(), kSkew);
    shadeAndAddNoise(page, 1);
    const double found = skewOf(page);
    const Record record = recordOf(page);
    KVImageDescription description = descriptionOf(*record);
    KVImageDescription* pointer = &description;
    KVIMG* out = nullptr;
    require(DeskewImageWithIPP(record.get(), &pointer, &out, 0, 1, found), "deskew");
    const Record straight(out);
    const cv::Mat after = pageOf(*straight);

    const cv::Rect detail(1900, 330, 480, 480);
    gallery.text("## Deskew\n\n`DeskewImageWithIPP` with white corners, by the angle that Leptonica measured.\n\n");
    cv::Mat before;
    cv::Mat behind;
    cv::resize(page(detail), before, {kThumbnailHeight, kThumbnailHeight}, 0, 0, cv::INTER_AREA);
    cv::resize(after(detail), behind, {kThumbnailHeight, kThumbnailHeight}, 0, 0, cv::INTER_AREA);
    gallery.show("deskew", "A skewed page and the same page straightened",
                 sideBySide({{"before", thumbnail(page, detail)},
                             {"detail", before},
                             {"after", thumbnail(after, detail)},
                             {"detail", behind}}));
    gallery.text("| | degrees |\n|---|---|\n| drawn | " + fixed(kSkew, 2) + " |\n| measured | " + fixed(found, 2) +
                 " |\n| remaining | " + fixed(std::abs(skewOf(after)), 2) + " |\n\n");
}

// Replaces each pixel with a probability of 2 %: grey by black or white, colour by a fully saturated colour.
cv::Mat withSpecks(const cv::Mat& clean) {
    cv::Mat page = clean.clone();
    cv::RNG random(5);
    for (int y = 0; y < page.rows; ++y)
        for (int x = 0; x < page.cols; ++x) {
            if (random.uniform(0, 50) != 0) continue;
            uint8_t* pixel = page.ptr(y, x);
            for (int c = 0; c < page.channels(); ++c) pixel[c] = random.uniform(0, 2) == 0 ? 0 : 255;
        }
    return page;
}

template <class Filter>
cv::Mat filtered(const cv::Mat& page, int margin, Filter filter) {
    cv::Mat result = page.clone();
    const IppiSize inner = {page.cols - 2 * margin, page.rows - 2 * margin};
    require(filter(page.ptr(margin, margin), static_cast<int>(page.step[0]), result.ptr(margin, margin),
                   static_cast<int>(result.step[0]), inner),
            "filter");
    return result;
}

cv::Mat crossMedian(const cv::Mat& page, int mask) {
    return filtered(page, mask == kMask5x5 ? 2 : 1,
                    [=](auto... region) { return IPPShare_ippiFilterMedianCross_8u_C1R(region..., mask); });
}

cv::Mat weightedMedian(const cv::Mat& page, int weight) {
    return filtered(
        page, 1, [=](auto... region) { return IPPShare_ippiFilterMedianWeightedCenter3x3_8u_C1R(region..., weight); });
}

void errorTable(Gallery& gallery, const cv::Mat& clean, const std::vector<Shot>& shots) {
    gallery.text("| | mean absolute error | PSNR |\n|---|---|---|\n");
    for (const Shot& shot : shots) gallery.text("| " + shot.first + " | " + errorCells(shot.second, clean) + " |\n");
    gallery.text("\n");
}

void showGreyMedians(Gallery& gallery, const cv::Mat& clean) {
    const cv::Mat page = withSpecks(clean);
    const std::vector<Shot> crosses = {
        {"before", page}, {"cross 3 x 3", crossMedian(page, kMask3x3)}, {"cross 5 x 5", crossMedian(page, kMask5x5)}};
    gallery.text(
        "## Cross-shaped median\n\n`IPPShare_ippiFilterMedianCross_8u_C1R` on a page with 2 % of its pixels black or "
        "white.\n\n");
    gallery.show("cross_median", "Specks, and the page after each cross-shaped median", picture(kText, crosses));
    errorTable(gallery, clean, crosses);

    const std::vector<Shot> weighted = {
        {"before", page}, {"weight 3", weightedMedian(page, 3)}, {"weight 5", weightedMedian(page, 5)}};
    gallery.text(
        "## Weighted-centre median\n\n`IPPShare_ippiFilterMedianWeightedCenter3x3_8u_C1R` on the same page. A larger\n"
        "weight preserves more detail.\n\n");
    gallery.show("weighted_median", "Specks, and the page after each weighted-centre median", picture(kText, weighted));
    errorTable(gallery, clean, weighted);
}

void showColourMedian(Gallery& gallery, const cv::Mat& clean) {
    const cv::Mat page = withSpecks(clean);
    const cv::Mat after =
        filtered(page, 1, [](auto... region) { return IPPShare_ippiFilterMedianColor_8u_C3R(region..., kMask3x3); });
    const std::vector<Shot> shots = {{"before", page}, {"after", after}};
    gallery.text(
        "## Colour median\n\n`IPPShare_ippiFilterMedianColor_8u_C3R` on a page with 2 % of its pixels in a wrong "
        "colour.\n"
        "Each pixel of the result is a pixel of the source, so no new colour appears.\n\n");
    gallery.show("colour_median", "Coloured specks, and the page after the colour median", picture(kHorizon, shots));
    errorTable(gallery, clean, shots);
}

void showNoiseReduction(Gallery& gallery) {
    constexpr double kSigma = 12;
    cv::Mat clean = drawSheet();
    cv::Mat page = clean.clone();
    shadeAndAddNoise(page, 3, kSigma);
    shadeAndAddNoise(clean, 3, 0);
    std::vector<Shot> shots = {{"before", page}};
    for (const int strength : {1, 5, 10}) {
        cv::Mat after = page.clone();
        require(DeosNrRGB(page.data, after.data, page.cols, page.rows, 2, strength), "noise reduction");
        shots.emplace_back("strength " + std::to_string(strength), after);
    }
    gallery.text("## Noise reduction\n\n`DeosNrRGB` in mode 2 (5 x 5 pixels) on a page with noise of " +
                 fixed(kSigma, 0) + " levels standard deviation.\n\n");
    gallery.show("noise_reduction", "A noisy page, and the page after noise reduction at three strengths",
                 picture(kHorizon, shots));
    errorTable(gallery, clean, shots);
}

void showBits(Gallery& gallery, const cv::Mat& grey) {
    int step = 0;
    const std::vector<uint8_t> bits = reducedToBits(grey, step);
    cv::Mat after(grey.size(), CV_8UC1);
    require(IPPShare_ippiConvert_1u8u_C1R(bits.data(), step, 0, after.data, static_cast<int>(after.step[0]),
                                          {grey.cols, grey.rows}),
            "expanding");
    gallery.text(
        "## One bit per pixel\n\n`IPPShare_ippiReduceBits_8u1u_C1R` with the threshold 127, expanded again for "
        "display.\n\n");
    gallery.show("one_bit", "A grey page and the same page with one bit per pixel",
                 picture(kText, {{"8 bits", grey}, {"1 bit", after}}));
    gallery.text("| | bytes |\n|---|---|\n| 8 bits | " + std::to_string(grey.total()) + " |\n| 1 bit, rows of " +
                 std::to_string(step) + " bytes | " + std::to_string(bits.size()) + " |\n\n");
}

void showResize(Gallery& gallery, const cv::Mat& clean) {
    const Record record = recordOf(clean);
    std::vector<Shot> tiles = {{"page", thumbnail(clean, kText)}, {"300 dpi", enlarged(clean, kText)}};
    std::string table = "| dots per inch | pixels | bytes |\n|---|---|---|\n| 300 | " + std::to_string(clean.cols) +
                        " x " + std::to_string(clean.rows) + " | " + std::to_string(record->size) + " |\n";
    for (const int dpi : {200, 150, 100}) {
        KVIMG* out = nullptr;
        require(ResizeImageWithIPPEx(record.get(), &out, kSheetDpi, dpi), "resize");
        const Record scaled(out);
        const cv::Rect detail(kText.x * dpi / kSheetDpi, kText.y * dpi / kSheetDpi, kText.width * dpi / kSheetDpi,
                              kText.height * dpi / kSheetDpi);
        cv::Mat large;
        cv::resize(inColour(pageOf(*scaled)(detail)), large,
                   {kThumbnailHeight * kText.width / kText.height, kThumbnailHeight}, 0, 0, cv::INTER_NEAREST);
        tiles.emplace_back(std::to_string(dpi) + " dpi", large);
        table += "| " + std::to_string(dpi) + " | " + std::to_string(scaled->width) + " x " +
                 std::to_string(scaled->height) + " | " + std::to_string(scaled->size) + " |\n";
    }
    gallery.text(
        "## Resize\n\n`ResizeImageWithIPPEx` from 300 dots per inch to lower resolutions, enlarged for display.\n\n");
    gallery.show("resize", "A detail at 300, 200, 150 and 100 dots per inch", sideBySide(tiles));
    gallery.text(table + "\n");
}

using Compressor = OSErr (*)(const KVIMG&, int mode, void** data, unsigned* size);

OSErr withOwnTables(const KVIMG& page, int mode, void** data, unsigned* size) {
    return CompressJPEG(&page, kSheetDpi, mode, data, size);
}

OSErr subsampled(const KVIMG& page, int mode, void** data, unsigned* size) {
    KVImageDescription description = descriptionOf(page);
    KVImageDescription* pointer = &description;
    return CompressJPEGEx(&page, &pointer, mode, data, size);
}

// Compresses a page and reads it back.
cv::Mat throughJpeg(const KVIMG& page, Compressor compress, int mode, unsigned& size) {
    void* data = nullptr;
    require(compress(page, mode, &data, &size), "compression");
    const std::unique_ptr<void, void (*)(void*)> stream(data, std::free);
    KVImageDescription description{};
    KVImageDescription* pointer = &description;
    KVImageDescriptionHandle handle = &pointer;
    KVIMG* out = nullptr;
    require(ReadJPEG(stream.get(), size, &handle, &out), "reading");
    const Record read(out);
    return pageOf(*read);
}

void showJpeg(Gallery& gallery, const cv::Mat& page) {
    const Record record = recordOf(page);
    std::vector<Shot> shots = {{"before", page}};
    std::string table =
        "| mode | `CompressJPEG`, bytes | mean absolute error | PSNR | `CompressJPEGEx`, bytes | mean absolute error | "
        "PSNR |\n"
        "|---|---|---|---|---|---|---|\n";
    for (const int mode : kModes) {
        unsigned ownSize = 0;
        unsigned smallSize = 0;
        const cv::Mat own = throughJpeg(*record, withOwnTables, mode, ownSize);
        const cv::Mat small = throughJpeg(*record, subsampled, mode, smallSize);
        shots.emplace_back("mode " + std::to_string(mode), own);
        table += "| " + std::to_string(mode) + " | " + std::to_string(ownSize) + " | " + errorCells(own, page) + " | " +
                 std::to_string(smallSize) + " | " + errorCells(small, page) + " |\n";
    }
    gallery.text(
        "## JPEG quality modes\n\nA page with a little noise, compressed and read back. Errors are relative to the "
        "page before "
        "compression. The pictures\nare from `CompressJPEG`; `CompressJPEGEx` subsamples the colour. The page has " +
        std::to_string(record->size) + " bytes.\n\n");
    const cv::Rect detail(560, 1520, 80, 80);
    gallery.show("jpeg_modes", "A detail after compression in each mode", picture(detail, shots));
    gallery.text(table);
}

int run(int argc, char** argv) {
    const bool check = argc == 3 && std::strcmp(argv[2], "--check") == 0;
    if (argc != 2 && !check) throw std::runtime_error("gallery DOCS_FOLDER [--check]");
    Gallery gallery(argv[1], check);
    gallery.text(
        "# Gallery\n\nFilters applied to a page that [pagegen](../tools/pagegen) draws, A4 at 300 dots per inch. The "
        "red "
        "frame marks the detail\nthat is shown enlarged. Errors are relative to the undisturbed page, over all pixels. "
        "`./dev gallery` writes this page and\nits pictures.\n\n");
    cv::Mat clean = drawSheet();
    shadeAndAddNoise(clean, 2, 0);
    const cv::Mat grey = greyOf(clean);
    cv::Mat scanned = drawSheet();
    shadeAndAddNoise(scanned, 2);

    showDeskew(gallery);
    showGreyMedians(gallery, grey);
    showColourMedian(gallery, clean);
    showNoiseReduction(gallery);
    showBits(gallery, greyOf(scanned));
    showResize(gallery, grey);
    showJpeg(gallery, scanned);
    for (const char* program : {"skew_table", "recognition"}) {    // ./dev skew and ./dev recognition write sections
        std::ifstream section(std::string(argv[1]) + "/generators/" + program + "/section.md");
        gallery.text({std::istreambuf_iterator<char>(section), std::istreambuf_iterator<char>()});
    }
    return gallery.finish() ? 0 : 1;
}

}    // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception& e) {
        std::fprintf(stderr, "gallery: %s\n", e.what());
        return 2;
    }
}
