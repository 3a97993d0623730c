// What the calls of the table may use: images with room around them, and pages.
#pragma once

#include <OPCV_dlib.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <opencv2/core.hpp>
#include <vector>

constexpr int kRoom = 16;    // pixels around each image that may be read
constexpr IppiSize kSmall = {44, 36};
constexpr IppiSize kPage = {1240, 1754};    // A4 at 150 dpi
constexpr int kDpi = 150;
constexpr int kMode = 450;

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

cv::Mat drawnPage();
cv::Mat greyOf(const cv::Mat& page);

struct Documents {
    cv::Mat page = drawnPage();
    Document grey{greyOf(page)};
    Document colour{page};
};
