// gallery: writes docs/gallery.md and its pictures from a page that is drawn here, and the numbers beside them.
//
//     gallery DOCS_FOLDER            writes them
//     gallery DOCS_FOLDER --check    fails if what is there differs from what it would write
#include <OPCV_dlib.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#include <stdexcept>
#include <string>
#include <vector>

#include <leptonica/allheaders.h>

#include "../pagegen/sheet.h"

namespace {

constexpr double kSkew = 2.3;
constexpr std::array<int, 5> kModes = {0, 286, 389, 450, 788};
constexpr int kMask3x3 = 33;
constexpr int kMask5x5 = 55;

struct RecordDeleter {
    void operator()(KVIMG* record) const { DisposeKVIMG(record); }
};
using Record = std::unique_ptr<KVIMG, RecordDeleter>;

void require(int status, const char* step) {
    if (status != 0) throw std::runtime_error(std::string(step) + " failed with status " + std::to_string(status));
}

// A page as it passes between OpenCV's functions and ours: red, green, blue, or grey, without padding.
Record recordOf(const cv::Mat& page) {
    const KVRect all = {0, 0, page.rows, page.cols};
    KVIMG* made = nullptr;
    require(CreateNewKVIMGPtr(&made, &all, static_cast<unsigned char>(8 * page.elemSize())), "making a record");
    Record record(made);
    for (int y = 0; y < page.rows; ++y)
        std::memcpy(record->data + ptrdiff_t{y} * record->rowBytes, page.ptr(y),
                    static_cast<size_t>(page.cols) * page.elemSize());
    return record;
}

cv::Mat pageOf(const KVIMG& record) {
    const int type = record.depth == 8 ? CV_8UC1 : CV_8UC3;
    return cv::Mat(record.height, record.width, type, record.data, static_cast<size_t>(record.rowBytes)).clone();
}

cv::Mat greyOf(const cv::Mat& page) {
    if (page.channels() == 1) return page;
    cv::Mat grey;
    cv::cvtColor(page, grey, cv::COLOR_RGB2GRAY);
    return grey;
}

KVImageDescription descriptionOf(const KVIMG& record) {
    return {record.width, record.height, kSheetDpi, kSheetDpi, 0, static_cast<int16_t>(record.depth)};
}

// --- What is measured

double meanAbsoluteError(const cv::Mat& a, const cv::Mat& b) {
    return cv::norm(a, b, cv::NORM_L1) / (static_cast<double>(a.total()) * a.channels());
}

std::string fixed(double value, int digits) {
    char text[32];
    std::snprintf(text, sizeof text, "%.*f", digits, value);
    return text;
}

// "1.25 | 33.1 dB"
std::string errorCells(const cv::Mat& page, const cv::Mat& clean) {
    return fixed(meanAbsoluteError(page, clean), 2) + " | " + fixed(cv::PSNR(page, clean), 1) + " dB";
}

std::vector<uint8_t> reducedToBits(const cv::Mat& grey, int& step) {
    step = (grey.cols + 31) / 32 * 4;
    std::vector<uint8_t> bits(static_cast<size_t>(step) * static_cast<size_t>(grey.rows), 0xFF);
    require(IPPShare_ippiReduceBits_8u1u_C1R(grey.data, static_cast<int>(grey.step[0]), bits.data(), step, 0,
                                             {grey.cols, grey.rows}, 0, 0, 0, 127),
            "reducing to 1 bit");
    return bits;
}

// The angle by which a page is turned clockwise, as Leptonica judges it by the rows of text.
double skewOf(const cv::Mat& page) {
    int step = 0;
    const std::vector<uint8_t> bits = reducedToBits(greyOf(page), step);
    const std::unique_ptr<PIX, void (*)(PIX*)> pix(pixCreate(page.cols, page.rows, 1), [](PIX* p) { pixDestroy(&p); });
    if (!pix) throw std::bad_alloc();
    uint32_t* to = pixGetData(pix.get());
    // There a set bit is black, and the leftmost pixel is the top bit of a word.
    for (size_t i = 0; i < bits.size(); i += 4)
        *to++ = ~(uint32_t{bits[i]} << 24 | uint32_t{bits[i + 1]} << 16 | uint32_t{bits[i + 2]} << 8 | bits[i + 3]);
    float turnBack = 0;
    float confidence = 0;
    if (pixFindSkewSweepAndSearch(pix.get(), &turnBack, &confidence, 2, 1, 5, 1, 0.01F) != 0)
        throw std::runtime_error("no skew found");
    return -static_cast<double>(turnBack);
}

// --- What is shown

using Shot = std::pair<std::string, cv::Mat>;

constexpr int kGap = 10;
constexpr int kCaption = 22;
constexpr int kThumbnailHeight = 240;

cv::Mat inColour(const cv::Mat& page) {
    if (page.channels() == 3) return page.clone();
    cv::Mat colour;
    cv::cvtColor(page, colour, cv::COLOR_GRAY2RGB);
    return colour;
}

// A tile with its caption above, of the height of the picture.
cv::Mat captioned(const Shot& shot) {
    cv::Mat tile(kCaption + kThumbnailHeight, shot.second.cols, CV_8UC3, cv::Scalar::all(255));
    shot.second.copyTo(tile(cv::Rect(0, kCaption, shot.second.cols, shot.second.rows)));
    cv::rectangle(tile, {0, kCaption, shot.second.cols, shot.second.rows}, cv::Scalar::all(120), 1);
    cv::putText(tile, shot.first, {1, 15}, cv::FONT_HERSHEY_SIMPLEX, 0.42, cv::Scalar::all(20), 1, cv::LINE_AA);
    return tile;
}

cv::Mat sideBySide(const std::vector<Shot>& shots) {
    std::vector<cv::Mat> tiles;
    const cv::Mat gap(kCaption + kThumbnailHeight, kGap, CV_8UC3, cv::Scalar::all(255));
    for (const Shot& shot : shots) {
        if (!tiles.empty()) tiles.push_back(gap);
        tiles.push_back(captioned(shot));
    }
    cv::Mat picture;
    cv::hconcat(tiles, picture);
    return picture;
}

// A page seen from afar, with a red frame around the detail.
cv::Mat thumbnail(const cv::Mat& page, const cv::Rect& detail) {
    cv::Mat small;
    const double scale = static_cast<double>(kThumbnailHeight) / page.rows;
    cv::resize(inColour(page), small, cv::Size(static_cast<int>(page.cols * scale), kThumbnailHeight), 0, 0,
               cv::INTER_AREA);
    const cv::Rect frame(static_cast<int>(detail.x * scale) - 2, static_cast<int>(detail.y * scale) - 2,
                         static_cast<int>(detail.width * scale) + 4, static_cast<int>(detail.height * scale) + 4);
    cv::rectangle(small, frame, cv::Scalar(220, 30, 30), 2);
    return small;
}

// The detail, each pixel as a square.
cv::Mat enlarged(const cv::Mat& page, const cv::Rect& detail) {
    cv::Mat large;
    const double scale = static_cast<double>(kThumbnailHeight) / detail.height;
    cv::resize(inColour(page(detail)), large, cv::Size(), scale, scale, cv::INTER_NEAREST);
    return large;
}

// The page with the frame, then the detail of every shot.
cv::Mat picture(const cv::Rect& detail, const std::vector<Shot>& shots) {
    std::vector<Shot> tiles = {{"page", thumbnail(shots.front().second, detail)}};
    for (const Shot& shot : shots) tiles.emplace_back(shot.first, enlarged(shot.second, detail));
    return sideBySide(tiles);
}

// --- The document

class Gallery {
public:
    Gallery(std::string folder, bool check) : folder_(std::move(folder)), check_(check) {}

    void text(const std::string& lines) { text_ += lines; }

    void show(const std::string& name, const std::string& caption, const cv::Mat& rgb) {
        cv::Mat bgr;
        cv::cvtColor(rgb, bgr, cv::COLOR_RGB2BGR);
        const std::string file = folder_ + "/images/" + name + ".png";
        if (check_) {
            const cv::Mat there = cv::imread(file, cv::IMREAD_COLOR);
            if (there.size() != bgr.size() || cv::norm(there, bgr, cv::NORM_INF) != 0) differ(file);
        } else if (!cv::imwrite(file, bgr, {cv::IMWRITE_PNG_COMPRESSION, 9})) {
            throw std::runtime_error(file + " cannot be written");
        }
        text_ += "![" + caption + "](images/" + name + ".png)\n\n";
    }

    // Whether all is as it was, if that was asked.
    bool finish() {
        const std::string file = folder_ + "/gallery.md";
        if (check_) {
            std::ifstream in(file);
            const std::string there{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
            if (there != text_) differ(file);
            return same_;
        }
        std::ofstream out(file);
        out << text_;
        if (!out.flush()) throw std::runtime_error(file + " cannot be written");
        return true;
    }

private:
    void differ(const std::string& file) {
        std::fprintf(stderr, "gallery: %s is not what is made now\n", file.c_str());
        same_ = false;
    }

    std::string folder_;
    std::string text_;
    bool check_;
    bool same_ = true;
};

const cv::Rect kText(470, 640, 120, 80);         // letters
const cv::Rect kHorizon(1510, 1940, 120, 80);    // the sun behind the hills

// --- The sections

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
    gallery.text("## Deskew\n\n`DeskewImageWithIPP` with white corners, by the angle that Leptonica found.\n\n");
    cv::Mat before;
    cv::Mat behind;
    cv::resize(page(detail), before, {kThumbnailHeight, kThumbnailHeight}, 0, 0, cv::INTER_AREA);
    cv::resize(after(detail), behind, {kThumbnailHeight, kThumbnailHeight}, 0, 0, cv::INTER_AREA);
    gallery.show("deskew", "A skewed page and the same page straightened",
                 sideBySide({{"before", thumbnail(page, detail)},
                             {"detail", before},
                             {"after", thumbnail(after, detail)},
                             {"detail", behind}}));
    gallery.text("| | degrees |\n|---|---|\n| drawn | " + fixed(kSkew, 2) + " |\n| found | " + fixed(found, 2) +
                 " |\n| left | " + fixed(std::abs(skewOf(after)), 2) + " |\n\n");
}

// Each pixel is replaced with a probability of 2 %: by black or white, or in colour by a colour of full strength.
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
        "## Weighted-centre median\n\n`IPPShare_ippiFilterMedianWeightedCenter3x3_8u_C1R` on the same page: a larger\n"
        "weight keeps more detail.\n\n");
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
        "colour. "
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
    gallery.show("noise_reduction", "A noisy page, and the page after noise reduction of three strengths",
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
        "## One bit a pixel\n\n`IPPShare_ippiReduceBits_8u1u_C1R` with the threshold 127, expanded again to be "
        "shown.\n\n");
    gallery.show("one_bit", "A grey page and the same page with one bit a pixel",
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
        "## Resize\n\n`ResizeImageWithIPPEx` from 300 dots per inch to fewer, each pixel enlarged to be shown.\n\n");
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

// Compresses and reads back.
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
        "## JPEG at each mode\n\nA page with a little noise, compressed and read back; the errors are against what was "
        "compressed. The pictures are\n`CompressJPEG`'s; `CompressJPEGEx` subsamples the colour. The page has " +
        std::to_string(record->size) + " bytes.\n\n");
    const cv::Rect detail(330, 340, 80, 80);    // of the title
    gallery.show("jpeg_modes", "A detail after compression with each mode", picture(detail, shots));
    gallery.text(table);
}

int run(int argc, char** argv) {
    const bool check = argc == 3 && std::strcmp(argv[2], "--check") == 0;
    if (argc != 2 && !check) throw std::runtime_error("gallery DOCS_FOLDER [--check]");
    Gallery gallery(argv[1], check);
    gallery.text(
        "# Gallery\n\nBefore and after, on a page that [pagegen](../examples/pagegen) draws: A4 at 300 dots per inch. "
        "The "
        "red frame marks the\ndetail that is shown enlarged. `./dev gallery` makes the pictures and writes this text; "
        "the "
        "errors are against the page\nwithout the fault, over all pixels.\n\n");
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
