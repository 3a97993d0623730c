// Decoding of JPEG streams, with the results of OpenCV's decoder.
//
// A plain stream (one or three components, no APP1 segment) is decoded by libjpeg straight into the block that becomes
// the record's: the same pixels, in half the memory, with no channel swap and without the decoder's messages on the
// standard error stream. Everything else, such as four components or an EXIF orientation, goes through OpenCV.
#include "jpeg/decode.h"

#include <algorithm>
#include <climits>
#include <csetjmp>
#include <cstdint>
#include <cstdio>    // jpeglib.h needs it
#include <cstdlib>
#include <cstring>
#include <new>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

#include <jerror.h>
#include <jpeglib.h>

namespace {

constexpr int64_t kMaxPixels = int64_t{1} << 30;    // more are refused, as OpenCV does

enum class Outcome { kDecoded, kRefused, kNoMemory, kNotPlain };

OSErr statusOf(Outcome outcome) {
    switch (outcome) {
        case Outcome::kDecoded: return noErr;
        case Outcome::kNoMemory: return memFullErr;
        default: return paramErr;
    }
}

// The block for a decoded image; null when it cannot be had or its size cannot be told in 32 bits.
unsigned char* allocatePixels(int64_t width, int64_t height, int64_t channels) {
    const int64_t bytes = width * channels * height;
    return bytes <= INT32_MAX ? static_cast<unsigned char*>(std::malloc(static_cast<size_t>(bytes))) : nullptr;
}

// One decompression by libjpeg. No libjpeg error gets past run().
class PlainDecoder {
public:
    PlainDecoder(const unsigned char* stream, size_t length) {
        source_.next_input_byte = stream;
        source_.bytes_in_buffer = length;
    }
    PlainDecoder(const PlainDecoder&) = delete;
    PlainDecoder& operator=(const PlainDecoder&) = delete;
    ~PlainDecoder() { jpeg_destroy_decompress(&cinfo_); }

    Outcome run(Channels channels, const WantedSize& wanted, DecodedImage& image) {
        const Outcome header = attempt([this, channels, &image] { return readHeader(channels, image); });
        if (header != Outcome::kDecoded) return header;
        if (!wanted.admits(image.width, image.height)) return Outcome::kRefused;
        image.pixels.reset(allocatePixels(image.width, image.height, image.channels));
        if (!image.pixels) return Outcome::kNoMemory;
        return attempt([this, &image] { return readRows(image.pixels.get(), static_cast<size_t>(image.rowBytes())); });
    }

private:
    // Runs libjpeg calls under an armed jump point. They must create nothing that has a destructor.
    template <class Calls>
    Outcome attempt(Calls calls) {
        if (setjmp(jumpBuffer_) == 0) return calls();
        return errors_.msg_code == JERR_OUT_OF_MEMORY ? Outcome::kNoMemory : Outcome::kRefused;
    }

    Outcome readHeader(Channels channels, DecodedImage& image) {
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
        jpeg_save_markers(&cinfo_, JPEG_APP0 + 1, 1);
        if (jpeg_read_header(&cinfo_, TRUE) != JPEG_HEADER_OK) return Outcome::kRefused;
        if (cinfo_.marker_list || (cinfo_.num_components != 1 && cinfo_.num_components != 3)) return Outcome::kNotPlain;
        if (int64_t{cinfo_.image_width} * cinfo_.image_height > kMaxPixels) return Outcome::kRefused;

        const bool grey = cinfo_.num_components == 1 && channels == Channels::kAsStored;
        cinfo_.out_color_space = grey ? JCS_GRAYSCALE : JCS_RGB;
        image.width = static_cast<int>(cinfo_.image_width);
        image.height = static_cast<int>(cinfo_.image_height);
        image.channels = grey ? 1 : 3;
        return Outcome::kDecoded;
    }

    // A stream that ends early gives the rows that it holds, the last of them repeated to the bottom.
    Outcome readRows(unsigned char* pixels, size_t rowBytes) {
        if (!jpeg_start_decompress(&cinfo_)) return Outcome::kRefused;
        while (cinfo_.output_scanline < cinfo_.output_height) {
            JSAMPROW row = pixels + rowBytes * cinfo_.output_scanline;
            if (jpeg_read_scanlines(&cinfo_, &row, 1) == 0) break;
        }
        const JDIMENSION decoded = cinfo_.output_scanline;
        if (decoded == 0) return Outcome::kRefused;
        for (JDIMENSION y = decoded; y < cinfo_.output_height; ++y)
            std::memcpy(pixels + rowBytes * y, pixels + rowBytes * (decoded - 1), rowBytes);
        return Outcome::kDecoded;
    }

    [[noreturn]] static void onError(j_common_ptr cinfo) {
        std::longjmp(static_cast<PlainDecoder*>(cinfo->client_data)->jumpBuffer_, 1);
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

Outcome decodeWithOpenCV(const unsigned char* stream, size_t length, Channels channels, const WantedSize& wanted,
                         DecodedImage& image) {
    const cv::Mat bytes(1, static_cast<int>(length), CV_8UC1, const_cast<unsigned char*>(stream));
    const cv::Mat decoded = cv::imdecode(bytes, channels == Channels::kThree ? cv::IMREAD_COLOR : cv::IMREAD_ANYCOLOR);
    if (!decoded.data || (decoded.channels() != 1 && decoded.channels() != 3)) return Outcome::kRefused;
    if (!wanted.admits(decoded.cols, decoded.rows)) return Outcome::kRefused;

    image.width = decoded.cols;
    image.height = decoded.rows;
    image.channels = decoded.channels();
    image.pixels.reset(allocatePixels(image.width, image.height, image.channels));
    if (!image.pixels) return Outcome::kNoMemory;
    cv::Mat view(decoded.rows, decoded.cols, decoded.type(), image.pixels.get());
    if (image.channels == 3)
        cv::cvtColor(decoded, view, cv::COLOR_BGR2RGB);
    else
        decoded.copyTo(view);
    return Outcome::kDecoded;
}

bool isJpeg(const unsigned char* stream, size_t length) {
    return length >= 3 && stream[0] == 0xFF && stream[1] == 0xD8 && stream[2] == 0xFF;
}

}    // namespace

OSErr decodeJpeg(const unsigned char* stream, size_t length, Channels channels, const WantedSize& wanted,
                 DecodedImage& image) {
    if (!isJpeg(stream, length) || length > INT_MAX) return paramErr;
    Outcome outcome = PlainDecoder(stream, length).run(channels, wanted, image);
    if (outcome != Outcome::kNotPlain) return statusOf(outcome);
    try {
        outcome = decodeWithOpenCV(stream, length, channels, wanted, image);
    } catch (const std::bad_alloc&) {
        outcome = Outcome::kNoMemory;
    } catch (const cv::Exception& e) {
        outcome = e.code == cv::Error::StsNoMem ? Outcome::kNoMemory : Outcome::kRefused;
    }
    return statusOf(outcome);
}
