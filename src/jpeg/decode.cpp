// Decoding of JPEG streams, with the results of OpenCV's decoder.
//
// libjpeg decodes straight into the block that becomes the record's: the same pixels, in half the memory, with no
// channel swap and without the decoder's messages on the standard error stream. A page that an EXIF orientation turns,
// or that has four components, passes through a strip of a few rows on its way.
//
// A stream is surveyed first. What cannot become a page, or would cost a decoder far more than its length suggests, is
// refused there.
#include "jpeg/decode.h"

#include <algorithm>
#include <climits>
#include <csetjmp>
#include <cstdint>
#include <cstdio>    // jpeglib.h needs it
#include <cstring>

#include <jerror.h>
#include <jpeglib.h>

#include "core/pixel_memory.h"
#include "jpeg/exif.h"
#include "jpeg/survey.h"

namespace {

constexpr int64_t kMaxPixels = int64_t{1} << 30;    // more are refused, as OpenCV does
constexpr int kMaxScans = 100;                      // each may visit every pixel; real streams have about ten
constexpr int kMaxSide = 65500;                     // libjpeg's

enum class Outcome { kDecoded, kRefused, kNoMemory };

OSErr statusOf(Outcome outcome) {
    switch (outcome) {
        case Outcome::kDecoded: return noErr;
        case Outcome::kNoMemory: return memFullErr;
        default: return paramErr;
    }
}

// Where the pixels of a stored image go within the page.
struct Placement {
    Placement(const StreamSurvey& stored, Orientation orientation, int channels) {
        const ptrdiff_t pixel = channels;
        const ptrdiff_t row = pixel * (orientation.transposed ? stored.height : stored.width);
        right = orientation.transposed ? row : pixel;
        down = orientation.transposed ? pixel : row;
        if (orientation.mirrored) {
            start += right * (stored.width - 1);
            right = -right;
        }
        if (orientation.upsideDown) {
            start += down * (stored.height - 1);
            down = -down;
        }
    }

    ptrdiff_t start = 0;    // of the top left pixel, in bytes
    ptrdiff_t right = 0;    // from a pixel to its right neighbour
    ptrdiff_t down = 0;     // from a pixel to the one below
};

template <int kChannels>
void placeRows(const unsigned char* const* rows, int count, int width, const Placement& placement,
               unsigned char* topLeft) {
    for (ptrdiff_t x = 0; x < width; ++x)
        for (ptrdiff_t y = 0; y < count; ++y)
            std::memcpy(topLeft + x * placement.right + y * placement.down, rows[y] + x * kChannels, kChannels);
}

// Cyan, magenta, yellow and black as print shops store them, inverted, become red, green and blue in place.
void mixInks(unsigned char* row, int width) {
    for (ptrdiff_t x = 0; x < width; ++x) {
        const int black = row[4 * x + 3];
        for (ptrdiff_t c = 0; c < 3; ++c)
            row[3 * x + c] = static_cast<unsigned char>(black - ((255 - row[4 * x + c]) * black >> 8));
    }
}

// One decompression by libjpeg. No libjpeg error gets past run().
class Decoder {
public:
    Decoder(const unsigned char* stream, size_t length) {
        source_.next_input_byte = stream;
        source_.bytes_in_buffer = length;
    }
    Decoder(const Decoder&) = delete;
    Decoder& operator=(const Decoder&) = delete;
    ~Decoder() { jpeg_destroy_decompress(&cinfo_); }

    // `image` has its size. It gets its pixels.
    Outcome run(const StreamSurvey& stored, Orientation orientation, DecodedImage& image) {
        const Outcome header = attempt([this, &stored, &image] { return readHeader(stored, image.channels); });
        if (header != Outcome::kDecoded) return header;
        image.pixels.reset(static_cast<unsigned char*>(allocatePixels(image.bytes())));
        if (!image.pixels) return Outcome::kNoMemory;
        const Placement placement(stored, orientation, image.channels);
        return attempt([this, &placement, &image] { return readRows(placement, image); });
    }

private:
    static constexpr int kStripRows = 16;

    // Runs libjpeg calls under an armed jump point. They must create nothing that has a destructor.
    template <class Calls>
    Outcome attempt(Calls calls) {
        if (setjmp(jumpBuffer_) == 0) return calls();
        return errors_.msg_code == JERR_OUT_OF_MEMORY ? Outcome::kNoMemory : Outcome::kRefused;
    }

    Outcome readHeader(const StreamSurvey& stored, int channels) {
        cinfo_.err = jpeg_std_error(&errors_);
        errors_.error_exit = onError;
        errors_.emit_message = onMessage;
        cinfo_.client_data = this;
        jpeg_create_decompress(&cinfo_);
        cinfo_.src = &source_;
        source_.init_source = nothing;
        source_.fill_input_buffer = noMoreData;
        source_.skip_input_data = skip;
        source_.resync_to_restart = jpeg_resync_to_restart;
        source_.term_source = nothing;
        if (jpeg_read_header(&cinfo_, TRUE) != JPEG_HEADER_OK) return Outcome::kRefused;
        // The block for the pixels is made to the survey's measure.
        if (cinfo_.image_width != static_cast<JDIMENSION>(stored.width) ||
            cinfo_.image_height != static_cast<JDIMENSION>(stored.height) || cinfo_.num_components != stored.components)
            return Outcome::kRefused;
        cinfo_.out_color_space = channels == 1 ? JCS_GRAYSCALE : stored.components == 4 ? JCS_CMYK : JCS_RGB;
        return Outcome::kDecoded;
    }

    // A stream that ends early gives the rows that it holds, the last of them repeated to the bottom.
    Outcome readRows(const Placement& placement, const DecodedImage& image) {
        if (!jpeg_start_decompress(&cinfo_)) return Outcome::kRefused;
        const auto width = static_cast<int>(cinfo_.output_width);
        const auto height = static_cast<int>(cinfo_.output_height);
        const size_t rowBytes = size_t{cinfo_.output_width} * static_cast<size_t>(cinfo_.output_components);
        const bool direct = placement.right == cinfo_.output_components;
        JSAMPARRAY strip = nullptr;
        if (!direct)
            strip = cinfo_.mem->alloc_sarray(reinterpret_cast<j_common_ptr>(&cinfo_), JPOOL_IMAGE,
                                             static_cast<JDIMENSION>(rowBytes), kStripRows);
        unsigned char* const topLeft = image.pixels.get() + placement.start;
        const JSAMPLE* last = nullptr;
        bool more = true;
        for (int y = 0; y < height; ++y) {
            const int inStrip = y % kStripRows;
            JSAMPROW row = direct ? topLeft + placement.down * y : strip[inStrip];
            more = more && jpeg_read_scanlines(&cinfo_, &row, 1) == 1;
            if (!more && !last) return Outcome::kRefused;
            if (!more)
                std::memcpy(row, last, rowBytes);
            else if (cinfo_.out_color_space == JCS_CMYK)
                mixInks(row, width);
            last = row;
            if (direct || (inStrip + 1 < kStripRows && y + 1 < height)) continue;
            const auto place = image.channels == 1 ? placeRows<1> : placeRows<3>;
            place(strip, inStrip + 1, width, placement, topLeft + placement.down * (y - inStrip));
        }
        return Outcome::kDecoded;
    }

    [[noreturn]] static void onError(j_common_ptr cinfo) {
        std::longjmp(static_cast<Decoder*>(cinfo->client_data)->jumpBuffer_, 1);
    }
    static void onMessage(j_common_ptr /*cinfo*/, int /*level*/) {}
    static void nothing(j_decompress_ptr /*cinfo*/) {}
    static boolean noMoreData(j_decompress_ptr /*cinfo*/) { return FALSE; }
    static void skip(j_decompress_ptr cinfo, long bytes) {
        jpeg_source_mgr& source = *cinfo->src;
        const size_t skipped = bytes < 0 ? 0 : std::min(static_cast<size_t>(bytes), source.bytes_in_buffer);
        source.next_input_byte += skipped;
        source.bytes_in_buffer -= skipped;
    }

    jpeg_decompress_struct cinfo_{};
    jpeg_error_mgr errors_{};
    jpeg_source_mgr source_{};
    jmp_buf jumpBuffer_{};
};

bool isJpeg(const unsigned char* stream, size_t length) {
    return length >= 3 && stream[0] == 0xFF && stream[1] == 0xD8 && stream[2] == 0xFF;
}

bool canBeDecoded(const StreamSurvey& stored) {
    const bool knownLayout = stored.components == 1 || stored.components == 3 || stored.components == 4;
    const bool possibleSize =
        stored.width > 0 && stored.height > 0 && stored.width <= kMaxSide && stored.height <= kMaxSide;
    return knownLayout && possibleSize && int64_t{stored.width} * stored.height <= kMaxPixels && stored.scans > 0 &&
           stored.scans <= kMaxScans;
}

}    // namespace

OSErr decodeJpeg(const unsigned char* stream, size_t length, Channels channels, const WantedSize& wanted,
                 DecodedImage& image) {
    if (length > INT_MAX || !isJpeg(stream, length)) return paramErr;
    const StreamSurvey stored = surveyStream(stream, length);
    if (!canBeDecoded(stored)) return paramErr;
    const Orientation orientation = exifOrientation(stored.exif, stored.exifLength);
    const int width = orientation.transposed ? stored.height : stored.width;
    const int height = orientation.transposed ? stored.width : stored.height;
    if (!wanted.admits(width, height)) return paramErr;

    image.width = width;
    image.height = height;
    image.channels = stored.components == 1 && channels == Channels::kAsStored ? 1 : 3;
    if (image.bytes() > INT32_MAX) return memFullErr;
    return statusOf(Decoder(stream, length).run(stored, orientation, image));
}
