// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Decoding of JPEG streams, with the results of OpenCV's decoder.
//
// libjpeg decodes directly into the page's rows: the same pixels as OpenCV's decoder, in half the memory, without
// swapping channels and without messages on standard error. A page that is turned by an EXIF orientation, or has four
// components, passes through a strip of a few rows.
#include "jpeg/decode.h"

#include <algorithm>
#include <cstring>

#include <jerror.h>

namespace {

constexpr int kStripRows = 16;

// The positions of a stored image's pixels in the page.
struct Placement {
    Placement(const PageInfo& page, const PageRows& rows) {
        const Orientation& orientation = page.orientation;
        right = orientation.transposed ? rows.step : rows.channels;
        down = orientation.transposed ? rows.channels : rows.step;
        if (orientation.mirrored) {
            start += right * (page.stored.width - 1);
            right = -right;
        }
        if (orientation.upsideDown) {
            start += down * (page.stored.height - 1);
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

// Converts inverted cyan, magenta, yellow and black, as print software stores them, to red, green and blue in place.
void mixInks(unsigned char* row, int width) {
    for (ptrdiff_t x = 0; x < width; ++x) {
        const int black = row[4 * x + 3];
        for (ptrdiff_t c = 0; c < 3; ++c)
            row[3 * x + c] = static_cast<unsigned char>(black - ((255 - row[4 * x + c]) * black >> 8));
    }
}

void nothing(j_decompress_ptr /*cinfo*/) {}
boolean noMoreData(j_decompress_ptr /*cinfo*/) { return FALSE; }
void skip(j_decompress_ptr cinfo, long bytes) {
    jpeg_source_mgr& source = *cinfo->src;
    const size_t skipped = bytes < 0 ? 0 : std::min(static_cast<size_t>(bytes), source.bytes_in_buffer);
    source.next_input_byte += skipped;
    source.bytes_in_buffer -= skipped;
}

}    // namespace

Decoder::Decoder(const unsigned char* stream, size_t length, const Cancellation& cancellation)
    : cancellation_(cancellation) {
    source_.next_input_byte = stream;
    source_.bytes_in_buffer = length;
}

// Runs libjpeg calls under an armed jump point. They must create no object with a destructor.
template <class Calls>
Outcome Decoder::attempt(Calls calls) {
    if (setjmp(jumpBuffer_) == 0) return calls();
    if (cancelled_) return Outcome::kCancelled;
    return errors_.msg_code == JERR_OUT_OF_MEMORY ? Outcome::kNoMemory : Outcome::kUnreadable;
}

Outcome Decoder::open(const PageInfo& page) {
    page_ = page;
    return attempt([this] { return readHeader(); });
}

Outcome Decoder::read(const PageRows& rows) {
    const Outcome outcome = attempt([this, &rows] { return readRows(rows); });
    // An error after the last row does not make the page unreadable.
    if (outcome == Outcome::kDone && rowsDecoded_ == page_.stored.height) attempt([this] { return readEnd(); });
    return outcome;
}

Outcome Decoder::readHeader() {
    cinfo_.err = jpeg_std_error(&errors_);
    errors_.error_exit = onError;
    errors_.emit_message = onMessage;
    cinfo_.client_data = this;
    jpeg_create_decompress(&cinfo_);
    // Otherwise the environment variable JPEGMEM would limit which progressive pages can be read.
    cinfo_.mem->max_memory_to_use = 0;
    cinfo_.src = &source_;
    source_.init_source = nothing;
    source_.fill_input_buffer = noMoreData;
    source_.skip_input_data = skip;
    source_.resync_to_restart = jpeg_resync_to_restart;
    source_.term_source = nothing;
    progress_.progress_monitor = onProgress;
    if (cancellation_.ask) cinfo_.progress = &progress_;
    if (jpeg_read_header(&cinfo_, TRUE) != JPEG_HEADER_OK) return Outcome::kUnreadable;
    // The block for the pixels has the size from the survey.
    const StreamSurvey& stored = page_.stored;
    if (cinfo_.image_width != static_cast<JDIMENSION>(stored.width) ||
        cinfo_.image_height != static_cast<JDIMENSION>(stored.height) || cinfo_.num_components != stored.components)
        return Outcome::kUnreadable;
    return Outcome::kDone;
}

Outcome Decoder::readRows(const PageRows& page) {
    cinfo_.out_color_space = page.channels == 1 ? JCS_GRAYSCALE : cinfo_.num_components == 4 ? JCS_CMYK : JCS_RGB;
    if (!jpeg_start_decompress(&cinfo_)) return Outcome::kUnreadable;
    // All scans are read now, except a single one. libjpeg sets the table with the first scan of a component.
    lacksComponent_ = std::any_of(cinfo_.comp_info, cinfo_.comp_info + cinfo_.num_components,
                                  [](const jpeg_component_info& c) { return c.quant_table == nullptr; });
    const auto width = static_cast<int>(cinfo_.output_width);
    const auto height = static_cast<int>(cinfo_.output_height);
    const size_t rowBytes = size_t{cinfo_.output_width} * static_cast<size_t>(cinfo_.output_components);
    const Placement placement(page_, page);
    const bool direct = placement.right == cinfo_.output_components;
    JSAMPARRAY strip = nullptr;
    if (!direct)
        strip = cinfo_.mem->alloc_sarray(reinterpret_cast<j_common_ptr>(&cinfo_), JPOOL_IMAGE,
                                         static_cast<JDIMENSION>(rowBytes), kStripRows);
    unsigned char* const topLeft = page.data + placement.start;
    const JSAMPLE* last = nullptr;
    bool more = true;
    for (int y = 0; y < height; ++y) {
        const int inStrip = y % kStripRows;
        JSAMPROW row = direct ? topLeft + placement.down * y : strip[inStrip];
        more = more && jpeg_read_scanlines(&cinfo_, &row, 1) == 1;
        if (!more && !last) return Outcome::kUnreadable;
        if (!more)
            std::memcpy(row, last, rowBytes);
        else if (cinfo_.out_color_space == JCS_CMYK)
            mixInks(row, width);
        if (more) ++rowsDecoded_;
        last = row;
        if (direct || (inStrip + 1 < kStripRows && y + 1 < height)) continue;
        const auto place = page.channels == 1 ? placeRows<1> : placeRows<3>;
        place(strip, inStrip + 1, width, placement, topLeft + placement.down * (y - inStrip));
    }
    return Outcome::kDone;
}

// Reads up to the end marker. Bytes between the coded data and the marker cause a warning.
Outcome Decoder::readEnd() {
    endSeen_ = jpeg_finish_decompress(&cinfo_) != FALSE;
    return Outcome::kDone;
}

void Decoder::onError(j_common_ptr cinfo) { std::longjmp(static_cast<Decoder*>(cinfo->client_data)->jumpBuffer_, 1); }

// Level -1 is a warning; others are traces.
void Decoder::onMessage(j_common_ptr cinfo, int level) {
    if (level < 0) ++static_cast<Decoder*>(cinfo->client_data)->warnings_;
}

void Decoder::onProgress(j_common_ptr cinfo) noexcept {
    auto* const decoder = static_cast<Decoder*>(cinfo->client_data);
    if (decoder->cancellation_.ask(decoder->cancellation_.context) == 0) return;
    decoder->cancelled_ = true;
    std::longjmp(decoder->jumpBuffer_, 1);
}
