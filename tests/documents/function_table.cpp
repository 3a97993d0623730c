// Makes the table of docs/functions.md that says what each function reads around its region, what it takes from the
// heap, whether OpenCV's threads work in it, and how it can end.
//
//     function_table HEADER DOCUMENT            fails if the document holds another table
//     function_table HEADER DOCUMENT --write    puts the table into the document
//
// All but the ways to end is found out by calls. The margin: each row and column around the region is changed, and the
// result compared. The heap: counted, with one thread. The threads: OpenCV is given a thread pool that counts its jobs.
#include <OPCV_dlib.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <memory>
#include <opencv2/core.hpp>
#include <opencv2/core/parallel/parallel_backend.hpp>
#include <opencv2/imgproc.hpp>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "../../examples/pagegen/sheet.h"
#include "support/heap_meter.h"

namespace {

constexpr int kRoom = 16;    // pixels around each image that may be read
constexpr IppiSize kSmall = {44, 36};
constexpr IppiSize kPage = {1240, 1754};    // A4 at 150 dpi
constexpr int kDpi = 150;
constexpr int kMode = 450;

// OpenCV's threads, as far as the library can tell; the jobs run one after the other.
class CountingThreads : public cv::parallel::ParallelForAPI {
public:
    void parallel_for(int tasks, FN_parallel_for_body_cb_t body, void* data) override {
        ++jobs;
        for (int i = 0; i < tasks; ++i) body(i, i + 1, data);
    }
    int getThreadNum() const override { return 0; }
    int getNumThreads() const override { return threads; }
    int setNumThreads(int n) override {
        const int before = threads;
        threads = n;
        return before;
    }
    const char* getName() const override { return "counting"; }

    int jobs = 0;
    int threads = 1;
};

// What a call may use: an image with room around it, one to write to, and both as they were before.
class Scene {
public:
    explicit Scene(IppiSize regionSize)
        : size(regionSize), step((size.width + 2 * kRoom) * 6), source_(bytes()), target_(bytes()) {
        cv::RNG random(7);
        for (uint8_t& b : source_) b = static_cast<uint8_t>(random.uniform(32, 224));
        target_ = source_;
    }

    uint8_t* src(int pixelSize) { return origin(source_, pixelSize); }
    uint8_t* dst(int pixelSize) { return origin(target_, pixelSize); }
    short* src16() { return reinterpret_cast<short*>(src(2)); }
    short* dst16() { return reinterpret_cast<short*>(dst(2)); }
    std::array<uint8_t*, 3> planesOf(uint8_t* first) const {
        const ptrdiff_t apart = ptrdiff_t{step} / 3;
        return {first, first + apart, first + 2 * apart};
    }

    const IppiSize size;
    const int step;    // of every row; a multiple of 6

    std::vector<uint8_t> source_, target_;

private:
    size_t bytes() const { return static_cast<size_t>(step) * static_cast<size_t>(size.height + 2 * kRoom); }
    uint8_t* origin(std::vector<uint8_t>& image, int pixelSize) const {
        return image.data() + ptrdiff_t{kRoom} * step + ptrdiff_t{kRoom} * pixelSize;
    }
};

struct KVIMGDeleter {
    void operator()(KVIMG* record) const { DisposeKVIMG(record); }
};
using Record = std::unique_ptr<KVIMG, KVIMGDeleter>;
using Block = std::unique_ptr<void, void (*)(void*)>;

// A page as a record, its description and its JPEG stream.
class Document {
public:
    explicit Document(const cv::Mat& page) {
        const KVRect all = {0, 0, page.rows, page.cols};
        KVIMG* made = nullptr;
        CreateNewKVIMGPtr(&made, &all, static_cast<unsigned char>(8 * page.elemSize()));
        record.reset(made);
        for (int y = 0; y < page.rows; ++y)
            std::memcpy(record->data + ptrdiff_t{y} * record->rowBytes, page.ptr(y),
                        static_cast<size_t>(page.cols) * page.elemSize());
        description = {page.cols, page.rows, kDpi, kDpi, 0, static_cast<int16_t>(record->depth)};
        void* data = nullptr;
        CompressJPEG(record.get(), kDpi, kMode, &data, &streamSize);
        stream.reset(data);
    }
    KVImageDescription** handle() { return &descriptionPointer; }

    Record record{nullptr};
    KVImageDescription description{};
    KVImageDescription* descriptionPointer = &description;
    Block stream{nullptr, std::free};
    unsigned streamSize = 0;
};

struct Row {
    std::string name;
    std::string shape;                  // what it was called with
    int pixelSize;                      // of the source around the region; 0 if there is no region with surroundings
    std::function<int(Scene&)> call;    // 0 for success
};

cv::Mat drawnPage() {
    cv::Mat page;
    cv::resize(skewed(drawSheet(), 2.3), page, {kPage.width, kPage.height}, 0, 0, cv::INTER_AREA);
    shadeAndAddNoise(page, 1);
    return page;
}

cv::Mat greyOf(const cv::Mat& page) {
    cv::Mat grey;
    cv::cvtColor(page, grey, cv::COLOR_RGB2GRAY);
    return grey;
}

struct Documents {
    cv::Mat page = drawnPage();
    Document grey{greyOf(page)};
    Document colour{page};
};

IppiPoint centre(int side) { return {side / 2, side / 2}; }
IppiSize square(int side) { return {side, side}; }
std::string sides(int side) { return std::to_string(side) + " x " + std::to_string(side); }

template <class Function>
int always(Function call) {
    call();
    return 0;
}

template <class Function>
void addMedian(std::vector<Row>& rows, const char* name, Function median, int pixelSize,
               std::initializer_list<int> masks) {
    for (const int side : masks)
        rows.push_back({name, sides(side), pixelSize, [=](Scene& s) {
                            return median(s.src(pixelSize), s.step, s.dst(pixelSize), s.step, s.size, square(side),
                                          centre(side));
                        }});
}

template <class Function>
void addKernel(std::vector<Row>& rows, const char* name, Function kernel, int pixelSize) {
    rows.push_back({name, "", pixelSize, [=](Scene& s) {
                        return always([&] {
                            kernel(s.src(pixelSize), s.step, s.dst(pixelSize), s.step, s.size.width, s.size.height);
                        });
                    }});
}

void addRank(std::vector<Row>& rows) {
    for (const int side : {3, 9, 11})
        rows.push_back({"ippiFilterMedian", sides(side) + ", C3", 3, [=](Scene& s) {
                            return ippiFilterMedian(s.src(3), s.step, 16, s.dst(3), s.step, s.size, square(side),
                                                    centre(side));
                        }});
    addMedian(rows, "IPPShare_ippiFilterMedian_8u_C1R", IPPShare_ippiFilterMedian_8u_C1R, 1, {3, 9, 11});
    addMedian(rows, "IPPMini_ippiFilterMedian_8u_C1R", IPPMini_ippiFilterMedian_8u_C1R, 1, {3});
    addMedian(rows, "IPPShare_ippiFilterMedian_8u_C3R", IPPShare_ippiFilterMedian_8u_C3R, 3, {3, 9, 11});
    for (const int mask : {33, 55})
        rows.push_back({"IPPShare_ippiFilterMedianCross_8u_C1R", "mask " + std::to_string(mask), 1, [=](Scene& s) {
                            return IPPShare_ippiFilterMedianCross_8u_C1R(s.src(1), s.step, s.dst(1), s.step, s.size,
                                                                         mask);
                        }});
    addKernel(rows, "FilterMedianCross3x3_8u_C1R", FilterMedianCross3x3_8u_C1R, 1);
    addKernel(rows, "FilterMedianCross5x5_8u_C1R", FilterMedianCross5x5_8u_C1R, 1);
    rows.push_back({"IPPShare_ippiFilterMedianWeightedCenter3x3_8u_C1R", "weight 3", 1, [](Scene& s) {
                        return IPPShare_ippiFilterMedianWeightedCenter3x3_8u_C1R(s.src(1), s.step, s.dst(1), s.step,
                                                                                 s.size, 3);
                    }});
    addKernel(rows, "FilterMedianWeightedCenter3x3_3_8u_C1R", FilterMedianWeightedCenter3x3_3_8u_C1R, 1);
    addKernel(rows, "FilterMedianWeightedCenter3x3_5_8u_C1R", FilterMedianWeightedCenter3x3_5_8u_C1R, 1);
    rows.push_back({"IPPShare_ippiFilterMedianColor_8u_C3R", "", 3, [](Scene& s) {
                        return IPPShare_ippiFilterMedianColor_8u_C3R(s.src(3), s.step, s.dst(3), s.step, s.size, 33);
                    }});
    addKernel(rows, "FilterMedianColor3x3_8u_C3R", FilterMedianColor3x3_8u_C3R, 3);

    static const std::vector<uint8_t> cells(31 * 31, 1);
    const auto morphology = [&rows](const char* name, auto function) {
        for (const int side : {3, 31})
            rows.push_back({name, sides(side) + (side == 3 ? "" : ", all cells"), 1, [=](Scene& s) {
                                return function(s.src(1), s.step, s.dst(1), s.step, s.size, cells.data(), square(side),
                                                centre(side));
                            }});
    };
    morphology("IPPShare_ippiDilate_8u_C1R", IPPShare_ippiDilate_8u_C1R);
    morphology("IPPShare_ippiErode_8u_C1R", IPPShare_ippiErode_8u_C1R);
    addMedian(rows, "IPPMini_ippiFilterMax_8u_C1R", IPPMini_ippiFilterMax_8u_C1R, 1, {3, 31});
    addMedian(rows, "IPPMini_ippiFilterMin_8u_C1R", IPPMini_ippiFilterMin_8u_C1R, 1, {3, 31});
}

void addPixel(std::vector<Row>& rows) {
    rows.push_back({"IPPShare_ippiConvert_1u8u_C1R", "", 1, [](Scene& s) {
                        return IPPShare_ippiConvert_1u8u_C1R(s.src(1), s.step, 3, s.dst(1), s.step, s.size);
                    }});
    rows.push_back({"Convert_1u8u_C1R", "", 1, [](Scene& s) {
                        return always([&] {
                            Convert_1u8u_C1R(s.src(1), s.step, 3, s.dst(1), s.step, s.size.width, s.size.height);
                        });
                    }});
    rows.push_back({"IPPShare_ippiReduceBits_8u1u_C1R", "", 1, [](Scene& s) {
                        return IPPShare_ippiReduceBits_8u1u_C1R(s.src(1), s.step, s.dst(1), s.step, 3, s.size, 0, 0, 0,
                                                                127);
                    }});
    rows.push_back({"Convert_8u1u_C1R", "", 1, [](Scene& s) {
                        return always([&] {
                            Convert_8u1u_C1R(s.src(1), s.step, s.dst(1), s.step, 3, s.size.width, s.size.height, 127);
                        });
                    }});
    rows.push_back({"IPPShare_ippiConvert_8u16s_C1R", "", 1, [](Scene& s) {
                        return IPPShare_ippiConvert_8u16s_C1R(s.src(1), s.step, s.dst16(), s.step, s.size);
                    }});
    rows.push_back({"IPPShare_ippiConvert_16s8u_C1R", "", 2, [](Scene& s) {
                        return IPPShare_ippiConvert_16s8u_C1R(s.src16(), s.step, s.dst(1), s.step, s.size);
                    }});
    rows.push_back({"IPPShare_ippiThreshold_LTVal_8u_C1IR", "", 1,
                    [](Scene& s) { return IPPShare_ippiThreshold_LTVal_8u_C1IR(s.src(1), s.step, s.size, 100, 0); }});
    rows.push_back({"IPPShare_ippiThreshold_LTVal_16s_C1IR", "", 2,
                    [](Scene& s) { return IPPShare_ippiThreshold_LTVal_16s_C1IR(s.src16(), s.step, s.size, 100, 0); }});
    rows.push_back({"Threshold_LTVal_8u_C1IR", "", 1, [](Scene& s) {
                        return always(
                            [&] { Threshold_LTVal_8u_C1IR(s.src(1), s.step, s.size.width, s.size.height, 100, 0); });
                    }});
    rows.push_back({"Threshold_LTVal_16s_C1IR", "", 2, [](Scene& s) {
                        return always(
                            [&] { Threshold_LTVal_16s_C1IR(s.src16(), s.step, s.size.width, s.size.height, 100, 0); });
                    }});
    rows.push_back({"IPPShare_ippiSet_8u_C1R", "", 1,
                    [](Scene& s) { return IPPShare_ippiSet_8u_C1R(200, s.dst(1), s.step, s.size); }});
    rows.push_back({"IPPShare_ippiRGBToYUV_8u_C3R", "", 3,
                    [](Scene& s) { return IPPShare_ippiRGBToYUV_8u_C3R(s.src(3), s.step, s.dst(3), s.step, s.size); }});
    rows.push_back({"IPPShare_ippiYUVToRGB_8u_C3R", "", 3,
                    [](Scene& s) { return IPPShare_ippiYUVToRGB_8u_C3R(s.src(3), s.step, s.dst(3), s.step, s.size); }});
    const auto toPlanes = [&rows](const char* name, auto function) {
        rows.push_back({name, "", 3, [=](Scene& s) {
                            const auto planes = s.planesOf(s.dst(1));
                            return function(s.src(3), s.step, planes.data(), s.step, s.size);
                        }});
    };
    const auto fromPlanes = [&rows](const char* name, auto function) {
        rows.push_back({name, "", 1, [=](Scene& s) {
                            const auto planes = s.planesOf(s.src(1));
                            const std::array<const uint8_t*, 3> from = {planes[0], planes[1], planes[2]};
                            return function(from.data(), s.step, s.dst(3), s.step, s.size);
                        }});
    };
    toPlanes("IPPMini_ippiRGBToYUV_8u_C3P3R", IPPMini_ippiRGBToYUV_8u_C3P3R);
    fromPlanes("IPPMini_ippiYUVToRGB_8u_P3C3R", IPPMini_ippiYUVToRGB_8u_P3C3R);
    toPlanes("IPPMini_ippiCopy_8u_C3P3R", IPPMini_ippiCopy_8u_C3P3R);
    fromPlanes("IPPMini_ippiCopy_8u_P3C3R", IPPMini_ippiCopy_8u_P3C3R);
}

void addFilters(std::vector<Row>& rows) {
    static const std::vector<int> cells(9 * 9, 1);
    static const std::vector<float> weights(3 * 9 * 9, 0.01F);
    for (const int side : {3, 4, 9}) {
        rows.push_back({"ippiFilter", sides(side) + ", C3", 3, [=](Scene& s) {
                            return ippiFilter(s.src(3), s.step, 16, s.dst(3), s.step, s.size, cells.data(),
                                              square(side), centre(side), side * side);
                        }});
        rows.push_back({"IPPShare_ippiFilter_8u_C1R", sides(side), 1, [=](Scene& s) {
                            return IPPShare_ippiFilter_8u_C1R(s.src(1), s.step, s.dst(1), s.step, s.size, cells.data(),
                                                              square(side), centre(side), side * side);
                        }});
        rows.push_back({"IPPShare_ippiFilter_8u_C3R", sides(side), 3, [=](Scene& s) {
                            return IPPShare_ippiFilter_8u_C3R(s.src(3), s.step, s.dst(3), s.step, s.size, cells.data(),
                                                              square(side), centre(side), side * side);
                        }});
        rows.push_back({"IPPShare_ippiFilter_16s_C1R", sides(side), 2, [=](Scene& s) {
                            return IPPShare_ippiFilter_16s_C1R(s.src16(), s.step, s.dst16(), s.step, s.size,
                                                               cells.data(), square(side), centre(side), side * side);
                        }});
        rows.push_back({"ippiFilter32f", sides(side) + ", C3", 3, [=](Scene& s) {
                            return ippiFilter32f(s.src(3), s.step, 16, s.dst(3), s.step, s.size, weights.data(),
                                                 square(side), centre(side));
                        }});
        rows.push_back({"IPPMini_ippiFilter32f_8u_C3R", sides(side), 3, [=](Scene& s) {
                            return IPPMini_ippiFilter32f_8u_C3R(s.src(3), s.step, s.dst(3), s.step, s.size,
                                                                weights.data(), square(side), centre(side));
                        }});
    }
    for (const int side : {3, 9})
        rows.push_back({"IPPMini_ippiFilterBox_8u_C3IR", sides(side), 3, [=](Scene& s) {
                            return IPPMini_ippiFilterBox_8u_C3IR(s.src(3), s.step, s.size, square(side), centre(side));
                        }});
    for (const int radius : {1, 4}) {
        rows.push_back({"Convolution24MonoFilter", "radius " + std::to_string(radius), 0, [=](Scene& s) {
                            return always(
                                [&] { Convolution24MonoFilter(s.src(3), s.dst(3), s.size, radius, weights.data()); });
                        }});
        rows.push_back({"Convolution24", "radius " + std::to_string(radius), 0, [=](Scene& s) {
                            return Convolution24(s.src(3), s.dst(3), s.size, radius, weights.data()) ? 0 : 1;
                        }});
    }
    for (const int side : {3, 5, 9})
        rows.push_back({"OPCV_ippiFilterBilateral_8u_C1R", sides(side), 1, [=](Scene& s) {
                            return OPCV_ippiFilterBilateral_8u_C1R(s.src(1), s.step, s.dst(1), s.step, s.size,
                                                                   square(side), 480, 480);
                        }});
    for (const int mode : {1, 2}) {
        const std::string shape = "mode " + std::to_string(mode) + ", strength 5";
        rows.push_back({"DeosNr", shape, 0,
                        [=](Scene& s) { return always([&] { DeosNr(s.src(1), s.dst(1), s.size, mode, 5); }); }});
        rows.push_back({"DeosNrRGB", shape, 0,
                        [=](Scene& s) { return DeosNrRGB(s.src(3), s.dst(3), s.size.width, s.size.height, mode, 5); }});
    }
    rows.push_back({"OPCV_cblas_sgemm", "400 x 400", 0, [](Scene& /*s*/) {
                        static const std::vector<float> a(400 * 400, 0.5F);
                        static std::vector<float> c(400 * 400);
                        return always([&] {
                            OPCV_cblas_sgemm(101, 111, 111, 400, 400, 400, 1, a.data(), 400, a.data(), 400, 0, c.data(),
                                             400);
                        });
                    }});
    rows.push_back({"ddct", "256 x 256", 0, [](Scene& /*s*/) {
                        static std::vector<double> values(256 * 256, 1.5);
                        static std::vector<double*> table(256);
                        for (size_t i = 0; i < 256; ++i) table[i] = values.data() + 256 * i;
                        return always([&] { ddct(0, table.data(), 256); });
                    }});
}

// Keeps what a call hands over until the heap has been read.
std::vector<Record> keptRecords;
std::vector<Block> keptBlocks;
std::vector<uint8_t> keptStream;

int keep(int status, KVIMG* record) {
    keptRecords.emplace_back(record);
    return status;
}

int keepBlock(int status, void* block) {
    keptBlocks.emplace_back(block, std::free);
    return status;
}

void addGeometry(std::vector<Row>& rows, Documents& documents) {
    const auto region = [](IppiSize size) { return IppiRect{0, 0, size.width, size.height}; };
    rows.push_back({"ippiRotate", "C3, 2.3 degrees", 0, [=](Scene& s) {
                        return ippiRotate(s.src(3), s.size, s.step, region(s.size), s.dst(3), s.step, region(s.size),
                                          2.3, 0, 0, 0, 16, cv::Scalar(255));
                    }});
    rows.push_back({"ippiRotateCenter", "C3, 2.3 degrees", 0, [=](Scene& s) {
                        return ippiRotateCenter(s.src(3), s.size, s.step, region(s.size), s.dst(3), s.step,
                                                region(s.size), 2.3, 9, 9, 0, 16, cv::Scalar(255));
                    }});
    rows.push_back({"KVMac_ippiRotate_8u_C1R", "2.3 degrees", 0, [=](Scene& s) {
                        return KVMac_ippiRotate_8u_C1R(s.src(1), s.size, s.step, region(s.size), s.dst(1), s.step,
                                                       region(s.size), 2.3, 0, 0, 0);
                    }});
    rows.push_back({"KVMac_ippiRotate_8u_C3R", "2.3 degrees", 0, [=](Scene& s) {
                        return KVMac_ippiRotate_8u_C3R(s.src(3), s.size, s.step, region(s.size), s.dst(3), s.step,
                                                       region(s.size), 2.3, 0, 0, 0);
                    }});
    rows.push_back({"KVMac_ippiGetRotateShift", "", 0, [](Scene& /*s*/) {
                        double x = 0;
                        double y = 0;
                        return always([&] { KVMac_ippiGetRotateShift(10, 10, 2.3, &x, &y); });
                    }});
    for (Document* page : {&documents.grey, &documents.colour}) {
        const std::string depth = std::to_string(page->record->depth) + " bits";
        rows.push_back({"DeskewImageWithIPP", depth + ", 2.3 degrees", 0, [=](Scene& /*s*/) {
                            KVIMG* out = nullptr;
                            const int status = DeskewImageWithIPP(page->record.get(), page->handle(), &out, 0, 1, 2.3);
                            return keep(status, out);
                        }});
        rows.push_back({"DeskewImageWithIPPEx", depth + ", whole page, 2.3 degrees", 0, [=](Scene& /*s*/) {
                            KVRect crop = {0, 0, page->record->height, page->record->width};
                            KVIMG* out = nullptr;
                            const int status =
                                DeskewImageWithIPPEx(page->record.get(), page->handle(), &out, 0, 1, &crop, 2.3);
                            return keep(status, out);
                        }});
        rows.push_back({"DeskewImageWithIPPExWithShirftPoint", depth + ", 2.3 degrees", 0, [=](Scene& /*s*/) {
                            KVRect crop = {0, 0, page->record->height, page->record->width};
                            KVIMG* out = nullptr;
                            const int status = DeskewImageWithIPPExWithShirftPoint(page->record.get(), page->handle(),
                                                                                   &out, 0, 1, &crop, 0, 0, 2.3);
                            return keep(status, out);
                        }});
        rows.push_back({"RotateImageWithIPP", depth + ", 90 degrees", 0, [=](Scene& /*s*/) {
                            KVIMG* out = nullptr;
                            const int status = RotateImageWithIPP(page->record.get(), page->handle(), &out, 90);
                            return keep(status, out);
                        }});
        rows.push_back(
            {"UniteImageIplRotateImage", depth + ", 2.3 degrees", 0, [=](Scene& /*s*/) {
                 const KVIMG& from = *page->record;
                 const KVImageHeader image = {from.data, 0, from.depth, from.width, from.height, from.rowBytes};
                 KVImageHeader canvas = {
                     nullptr,     0,
                     from.depth,  from.width,
                     from.height, from.depth == 8 ? (from.width + 15) / 16 * 16 : (3 * from.width + 3) / 4 * 4};
                 KVIMG* out = nullptr;
                 const int status = UniteImageIplRotateImage(&canvas, &image, &out, 2.3);
                 return keep(status, out);
             }});
        rows.push_back({"ResizeImageWithIPPEx", depth + ", 300 to 200", 0, [=](Scene& /*s*/) {
                            KVIMG* out = nullptr;
                            const int status = ResizeImageWithIPPEx(page->record.get(), &out, 300, 200);
                            return keep(status, out);
                        }});
    }
    rows.push_back({"OPCV_ippiResizeSqrPixel_8u_C1R", "two thirds", 0, [=](Scene& s) {
                        return OPCV_ippiResizeSqrPixel_8u_C1R(s.src(1), s.size, s.step, region(s.size), s.dst(1),
                                                              s.step, region(s.size), 2 / 3.0, 2 / 3.0, 0, 0, 0,
                                                              nullptr);
                    }});
    rows.push_back({"IPPMini_ippiResize_8u_C3R", "two thirds", 0, [=](Scene& s) {
                        return IPPMini_ippiResize_8u_C3R(s.src(3), s.size, s.step, region(s.size), s.dst(3), s.step,
                                                         {s.size.width * 2 / 3, s.size.height * 2 / 3}, 1, 1, 0);
                    }});
}

void addJpeg(std::vector<Row>& rows, Documents& documents) {
    for (Document* page : {&documents.grey, &documents.colour}) {
        const std::string depth = std::to_string(page->record->depth) + " bits";
        rows.push_back({"CompressJPEG", depth + ", mode 450", 0, [=](Scene& /*s*/) {
                            void* out = nullptr;
                            unsigned size = 0;
                            const int status = CompressJPEG(page->record.get(), kDpi, kMode, &out, &size);
                            return keepBlock(status, out);
                        }});
        const auto described = [&](const char* name, auto function) {
            rows.push_back({name, depth + ", mode 450", 0, [=](Scene& /*s*/) {
                                void* out = nullptr;
                                unsigned size = 0;
                                const int status = function(page->record.get(), page->handle(), kMode, &out, &size);
                                return keepBlock(status, out);
                            }});
        };
        described("CompressJPEGEx", CompressJPEGEx);
        described("CompressJPEGWithIPP", CompressJPEGWithIPP);
        described("CompressJPEGWithIPPEx", CompressJPEGWithIPPEx);
        const auto reading = [&](const char* name, auto function) {
            rows.push_back({name, depth, 0, [=](Scene& /*s*/) {
                                KVIMG* out = nullptr;
                                KVImageDescriptionHandle handle = page->handle();
                                const int status = function(page->stream.get(), page->streamSize, &handle, &out);
                                return keep(status, out);
                            }});
        };
        reading("ReadJPEG", ReadJPEG);
        reading("ReadJPEGWithIPP", ReadJPEGWithIPP);
    }
    Document* colour = &documents.colour;
    rows.push_back({"ReadSplitJPEG", "24 bits", 0, [=](Scene& /*s*/) {
                        KVIMG* out = nullptr;
                        const int status = ReadSplitJPEG(static_cast<uint8_t*>(colour->stream.get()),
                                                         colour->streamSize, colour->handle(), &out);
                        return keep(status, out);
                    }});
    const KVIMG* grey = documents.grey.record.get();
    const KVIMG* rgb = colour->record.get();
    rows.push_back({"CompressGray2Gray444", "quality 80", 0, [=](Scene& /*s*/) {
                        return CompressGray2Gray444(grey->data, grey->rowBytes, grey->width, grey->height, keptStream,
                                                    80, kDpi, kDpi, true)
                                   ? 0
                                   : 1;
                    }});
    rows.push_back({"CompressRGB2YCbCr444", "quality 80", 0, [=](Scene& /*s*/) {
                        return CompressRGB2YCbCr444(rgb->data, rgb->rowBytes, rgb->width, rgb->height, keptStream, 80,
                                                    kDpi, kDpi, true)
                                   ? 0
                                   : 1;
                    }});
    rows.push_back({"CompressRGB2YCbCr411", "quality 80", 0, [=](Scene& /*s*/) {
                        return CompressRGB2YCbCr411(rgb->data, rgb->rowBytes, rgb->width, rgb->height, keptStream, 80,
                                                    kDpi, kDpi)
                                   ? 0
                                   : 1;
                    }});
}

void addRecords(std::vector<Row>& rows) {
    const KVRect all = {0, 0, kPage.height, kPage.width};
    rows.push_back({"IppInit", "", 0, [](Scene& /*s*/) { return IppInit(); }});
    rows.push_back({"IPPMini_ippStaticInit", "", 0, [](Scene& /*s*/) { return IPPMini_ippStaticInit(); }});
    rows.push_back({"IPPShare_ippStaticInit", "", 0, [](Scene& /*s*/) { return IPPShare_ippStaticInit(); }});
    rows.push_back({"KVSetRect", "", 0, [](Scene& /*s*/) {
                        KVRect rectangle{};
                        return always([&] { KVSetRect(&rectangle, 0, 0, 1, 1); });
                    }});
    const auto creator = [&](const char* name, auto function) {
        rows.push_back({name, "24 bits", 0, [=](Scene& /*s*/) {
                            KVIMG* out = nullptr;
                            const int status = function(&out, &all, 24);
                            return keep(status, out);
                        }});
    };
    creator("CreateNewKVIMGPtr", CreateNewKVIMGPtr);
    creator("CreateNewKVIMGPtrForUnite", CreateNewKVIMGPtrForUnite);
    rows.push_back({"DisposeKVIMG", "", 0, [](Scene& /*s*/) { return always([] { DisposeKVIMG(nullptr); }); }});
    rows.push_back({"IPPShare_ippiMalloc_16s_C1", "", 0, [](Scene& /*s*/) {
                        int step = 0;
                        return keepBlock(0, IPPShare_ippiMalloc_16s_C1(kPage.width, kPage.height, &step));
                    }});
    rows.push_back({"IPPMini_ippiMalloc_8u_C3", "", 0, [](Scene& /*s*/) {
                        int step = 0;
                        return keepBlock(0, IPPMini_ippiMalloc_8u_C3(kPage.width, kPage.height, &step));
                    }});
    rows.push_back({"IPPMini_ippiFree", "", 0, [](Scene& /*s*/) { return always([] { IPPMini_ippiFree(nullptr); }); }});
    rows.push_back(
        {"IPPShare_ippiFree", "", 0, [](Scene& /*s*/) { return always([] { IPPShare_ippiFree(nullptr); }); }});
}

void succeed(const Row& row, Scene& scene) {
    if (row.call(scene) != 0) throw std::runtime_error(row.name + " failed");
}

enum class Side { kLeft, kAbove, kRight, kBelow };
enum class Change { kBlack, kWhite, kInverted };

// Changes one row or column of pixels, `distance` beside the region of the source.
void change(Scene& s, int pixelSize, Side side, int distance, Change how) {
    const bool column = side == Side::kLeft || side == Side::kRight;
    const int x0 = side == Side::kLeft ? -distance : side == Side::kRight ? s.size.width - 1 + distance : -kRoom;
    const int y0 = side == Side::kAbove ? -distance : side == Side::kBelow ? s.size.height - 1 + distance : -kRoom;
    const int columns = column ? 1 : s.size.width + 2 * kRoom;
    const int lines = column ? s.size.height + 2 * kRoom : 1;
    for (int y = y0; y < y0 + lines; ++y)
        for (int i = x0 * pixelSize; i < (x0 + columns) * pixelSize; ++i) {
            uint8_t& b = s.src(pixelSize)[ptrdiff_t{y} * s.step + i];
            b = how == Change::kBlack ? 0 : how == Change::kWhite ? 255 : static_cast<uint8_t>(~b);
        }
}

// What the call changes, in the target or, in place, in the source.
std::vector<uint8_t> effect(const Row& row, Scene& s) {
    std::vector<uint8_t> difference = s.source_;
    difference.insert(difference.end(), s.target_.begin(), s.target_.end());
    succeed(row, s);
    const size_t half = s.source_.size();
    for (size_t i = 0; i < half; ++i) {
        difference[i] = static_cast<uint8_t>(difference[i] ^ s.source_[i]);
        difference[half + i] = static_cast<uint8_t>(difference[half + i] ^ s.target_[i]);
    }
    return difference;
}

// The farthest row or column of pixels on a side that makes a difference.
int margin(const Row& row, Side side, const Scene& fresh) {
    Scene plain = fresh;
    const std::vector<uint8_t> expected = effect(row, plain);
    for (int distance = kRoom; distance > 0; --distance)
        for (const Change how : {Change::kBlack, Change::kWhite, Change::kInverted}) {
            Scene changed = fresh;
            change(changed, row.pixelSize, side, distance, how);
            if (effect(row, changed) != expected) return distance;
        }
    return 0;
}

std::string marginText(const Row& row) {
    if (row.pixelSize == 0) return "";
    const Scene fresh(kSmall);
    std::array<int, 4> m = {margin(row, Side::kLeft, fresh), margin(row, Side::kAbove, fresh),
                            margin(row, Side::kRight, fresh), margin(row, Side::kBelow, fresh)};
    if (std::all_of(m.begin(), m.end(), [&](int n) { return n == m[0]; })) return std::to_string(m[0]);
    return std::to_string(m[0]) + ", " + std::to_string(m[1]) + ", " + std::to_string(m[2]) + ", " +
           std::to_string(m[3]);
}

// Tenths of a byte a pixel; what is less than a tenth is "0".
std::string perPixel(size_t bytes) {
    const auto tenths = static_cast<long>(static_cast<double>(bytes) * 10 / (double{kPage.width} * kPage.height));
    char text[32];
    std::snprintf(text, sizeof text, tenths == 0 ? "0" : "%.1f", static_cast<double>(tenths) / 10);
    return text;
}

void forget() {
    keptRecords.clear();
    keptBlocks.clear();
    std::vector<uint8_t>().swap(keptStream);
    keptRecords.reserve(8);
    keptBlocks.reserve(8);
}

const std::map<std::string, std::string> kStatusValues = {
    {"ippStsNoErr", "0"},       {"ippStsNoMemErr", "-4"}, {"ippStsBadArgErr", "-5"}, {"noErr", "0"},
    {"paramErr", "-50"},        {"memFullErr", "-108"},   {"rotateFailedErr", "-2"}, {"badAngleErr", "-3"},
    {"uniteFailedErr", "-1001"}};

// The ways to end, as the header documents them: function name to text.
std::map<std::string, std::string> endings(const std::string& header) {
    std::ifstream in(header);
    std::map<std::string, std::string> all;
    std::string line;
    std::string results;
    const auto add = [&results](const std::string& text) { results += (results.empty() ? "" : ", ") + text; };
    const auto wordAfter = [](const std::string& text, const std::string& tag) {
        const size_t from = text.find_first_not_of(' ', text.find(tag) + tag.size());
        return text.substr(from, text.find(' ', from) - from);
    };
    while (std::getline(in, line)) {
        if (line.find("@retval ") != std::string::npos) {
            const std::string name = wordAfter(line, "@retval");
            const auto value = kStatusValues.find(name);
            add(value == kStatusValues.end() ? name : value->second);
        } else if (line.find("@throws ") != std::string::npos) {
            add("`" + wordAfter(line, "@throws") + "`");
        } else if (line.rfind("OPCV_DLIB_API ", 0) == 0) {
            const size_t bracket = line.find('(');
            const size_t start = line.find_last_of(" *", bracket) + 1;
            const std::string type = line.substr(14, start - 14);
            if (type == "bool ") results.insert(0, results.empty() ? "true, false" : "true, false, ");
            if (type == "int " && results.empty()) results = "0";
            if (type == "IppStatus " && results.empty()) results = "0";
            if (type.find('*') != std::string::npos) results = "pointer, null";
            all[line.substr(start, bracket - start)] = results;
            results.clear();
        } else if (line.rfind("///", 0) != 0) {
            results.clear();
        }
    }
    return all;
}

// The rows of a function stand together, where its first one is.
std::vector<Row> grouped(const std::vector<Row>& rows) {
    std::vector<Row> result;
    std::map<std::string, bool> done;
    for (const Row& row : rows)
        if (!std::exchange(done[row.name], true))
            std::copy_if(rows.begin(), rows.end(), std::back_inserter(result),
                         [&row](const Row& other) { return other.name == row.name; });
    return result;
}

std::string tableOf(const std::vector<Row>& rows, const std::string& header, CountingThreads& threads) {
    const std::map<std::string, std::string> ends = endings(header);
    std::string out =
        "| function | called with | margin | hands over | works in | threads | ends with "
        "|\n|---|---|---|---|---|---|---|\n";
    std::map<std::string, bool> seen;
    Scene page(kPage);
    for (const Row& row : rows) {
        threads.threads = 1;
        succeed(row, page);    // lets OpenCV fill its caches
        forget();
        HeapMeter::start();
        const int status = row.call(page);
        const HeapMeter::Use use = HeapMeter::stop();
        forget();
        threads.threads = 4;
        threads.jobs = 0;
        succeed(row, page);
        forget();
        const bool jobs = threads.jobs > 0;
        const auto end = ends.find(row.name);
        if (status != 0 || end == ends.end()) throw std::runtime_error(row.name + ": not in the header");
        out += "| `" + row.name + "` | " + row.shape + " | " + marginText(row) + " | " + perPixel(use.kept) + " | " +
               perPixel(use.most - use.kept) + " | " + (jobs ? "yes" : "no") + " | " + end->second + " |\n";
        seen[row.name] = true;
    }
    for (const auto& [name, text] : ends)
        if (!seen.count(name)) throw std::runtime_error(name + " has no row");
    return out;
}

std::string contentsOf(const std::string& file) {
    std::ifstream in(file);
    if (!in) throw std::runtime_error(file + " cannot be read");
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

int run(int argc, char** argv) {
    if (argc < 3) throw std::runtime_error("function_table HEADER DOCUMENT [--write]");
    const std::string document = argv[2];
    const auto threads = std::make_shared<CountingThreads>();
    cv::parallel::setParallelForBackend(threads);

    Documents documents;
    std::vector<Row> rows;
    addRecords(rows);
    addGeometry(rows, documents);
    addJpeg(rows, documents);
    addRank(rows);
    addPixel(rows);
    addFilters(rows);
    const std::string table = tableOf(grouped(rows), argv[1], *threads);

    const std::string begin = "<!-- made by function_table -->\n";
    const std::string end = "<!-- end -->\n";
    std::string text = contentsOf(document);
    const size_t from = text.find(begin);
    const size_t to = text.find(end, from);
    if (from == std::string::npos || to == std::string::npos)
        throw std::runtime_error(document + " has no place for the table");
    const size_t start = from + begin.size();
    if (argc > 3 && std::strcmp(argv[3], "--write") == 0) {
        text.replace(start, to - start, table);
        std::ofstream(document) << text;
        return 0;
    }
    if (text.substr(start, to - start) == table) return 0;
    std::fprintf(stderr, "%s holds another table than this one:\n%s", document.c_str(), table.c_str());
    return 1;
}

}    // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception& e) {
        std::fprintf(stderr, "%s\n", e.what());
        return 2;
    }
}
