// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// libpng leaves a function by longjmp if the data are wrong. Nothing with a destructor lives between setjmp and its
// calls: the functions of PngReader that set a target work on members only.
#include <png.h>

#include <csetjmp>
#include <cstring>

#include "decode.h"
#include "record.h"

namespace {

constexpr uint64_t kDeflateRatio = 1032;
constexpr png_uint_32 kLongestSide = 65500;
constexpr png_alloc_size_t kMostMetadata = 16 << 20;    // in one chunk that is not pixels
constexpr size_t kPiece = 256;                          // of a stream that is cut, so much is lost in front of the cut
constexpr double kMetresPerInch = 0.0254;

class PngReader {
public:
    explicit PngReader(const std::vector<uint8_t>& stream)
        : stream_(stream), png_(png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, leave, ignore)) {
        if (png_) info_ = png_create_info_struct(png_);
        if (!info_) {
            png_destroy_read_struct(&png_, nullptr, nullptr);
            throw std::bad_alloc();
        }
        png_set_read_fn(png_, this, readBytes);
    }
    ~PngReader() { png_destroy_read_struct(&png_, &info_, nullptr); }
    PngReader(const PngReader&) = delete;
    PngReader& operator=(const PngReader&) = delete;

    DecodedPage page(int assumedDpi) {
        if (!readHeader()) throw std::runtime_error("cannot be decoded");
        requirePageSize(width_, height_);
        requirePlausible(stream_.size(), png_get_rowbytes(png_, info_) * height_, kDeflateRatio);
        if (!expand()) throw std::runtime_error("cannot be decoded");
        return pixels(assumedDpi);
    }

private:
    [[noreturn]] static void leave(png_structp png, png_const_charp) { png_longjmp(png, 1); }
    static void ignore(png_structp, png_const_charp) {}

    static void readBytes(png_structp png, png_bytep to, size_t size) {
        PngReader& reader = *static_cast<PngReader*>(png_get_io_ptr(png));
        if (reader.stream_.size() - reader.next_ < size) png_error(png, "end of file");
        std::memcpy(to, reader.stream_.data() + reader.next_, size);
        reader.next_ += size;
    }

    bool readHeader() {
        if (setjmp(png_jmpbuf(png_)) != 0) return false;
        png_set_user_limits(png_, kLongestSide, kLongestSide);
        png_set_chunk_malloc_max(png_, kMostMetadata);
        png_set_compression_buffer_size(png_, kPiece);
        png_read_info(png_, info_);
        width_ = png_get_image_width(png_, info_);
        height_ = png_get_image_height(png_, info_);
        isBilevel_ = png_get_bit_depth(png_, info_) == 1 && png_get_color_type(png_, info_) == PNG_COLOR_TYPE_GRAY;
        return true;
    }

    // To 8 bits a sample: grey or colour, with or without opacity.
    bool expand() {
        if (setjmp(png_jmpbuf(png_)) != 0) return false;
        png_set_expand(png_);
        png_set_scale_16(png_);
        passes_ = png_set_interlace_handling(png_);
        png_read_update_info(png_, info_);
        channels_ = png_get_channels(png_, info_);
        return true;
    }

    // Returns false at the first row that is not there. A row of an interlaced page is there after the last pass.
    bool readRows(uint8_t* first, size_t step) {
        rows_ = 0;
        if (setjmp(png_jmpbuf(png_)) != 0) return false;
        for (int pass = 0; pass < passes_; ++pass)
            for (png_uint_32 y = 0; y < height_; ++y) {
                png_read_row(png_, first + step * y, nullptr);
                if (pass == passes_ - 1) ++rows_;
            }
        return true;
    }

    bool readEnd() {
        if (setjmp(png_jmpbuf(png_)) != 0) return false;
        png_read_end(png_, nullptr);
        return true;
    }

    DecodedPage pixels(int assumedDpi) {
        const auto width = static_cast<int>(width_);
        const auto height = static_cast<int>(height_);
        DecodedPage page{};
        page.record = newRecord(width, height, channels_ <= 2 ? 1 : 3);
        const bool opaque = channels_ % 2 == 1;
        std::vector<uint8_t> translucent(opaque ? 0 : size_t{width_} * height_ * channels_);
        const bool whole = opaque ? readRows(page.record->data, static_cast<size_t>(page.record->rowBytes))
                                  : readRows(translucent.data(), size_t{width_} * channels_);
        if (rows_ == 0) throw std::runtime_error("cannot be decoded");
        if (!opaque) putOnWhite(translucent, *page.record);
        if (!whole) page.damage = rowsMissing(rows_, height);
        if (whole && !readEnd()) page.damage = "is damaged: its end is missing";
        whitenRows(*page.record, rows_);
        page.description = describe(*page.record, resolution(), assumedDpi);
        page.isBilevel = isBilevel_ && opaque;
        return page;
    }

    // The last channel of a translucent page is its opacity.
    void putOnWhite(const std::vector<uint8_t>& from, KVIMG& page) const {
        const int colours = channels_ - 1;
        const uint8_t* p = from.data();
        for (int y = 0; y < rows_; ++y) {
            uint8_t* to = page.data + ptrdiff_t{y} * page.rowBytes;
            for (png_uint_32 x = 0; x < width_; ++x, p += channels_)
                for (int c = 0; c < colours; ++c)
                    *to++ = static_cast<uint8_t>(255 - ((255 - p[c]) * p[colours] + 127) / 255);
        }
    }

    Resolution resolution() const {
        png_uint_32 x = 0;
        png_uint_32 y = 0;
        int unit = PNG_RESOLUTION_UNKNOWN;
        if (png_get_pHYs(png_, info_, &x, &y, &unit) == 0 || unit != PNG_RESOLUTION_METER) return {};
        return {x * kMetresPerInch, y * kMetresPerInch};
    }

    const std::vector<uint8_t>& stream_;
    size_t next_ = 0;
    png_structp png_;
    png_infop info_ = nullptr;
    png_uint_32 width_ = 0, height_ = 0;
    int channels_ = 1, passes_ = 1, rows_ = 0;
    bool isBilevel_ = false;
};

}    // namespace

DecodedPage decodePng(const std::vector<uint8_t>& stream, int assumedDpi) { return PngReader(stream).page(assumedDpi); }
