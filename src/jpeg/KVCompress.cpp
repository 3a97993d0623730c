// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "jpeg/KVCompress.h"

#include <jerror.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <exception>

// Each is 3/10 of the example table of ITU-T T.81, Annex K (K.1 and K.2), truncated. The values are in zig-zag
// sequence but are used row by row: the streams of this library are defined this way.
const unsigned g_customLuminanceQuant[64] = {
    4,  3,  3,  4,  3,  3,  4,  4,     //
    3,  4,  5,  5,  4,  5,  7,  12,    //
    7,  7,  6,  6,  7,  14, 10, 11,    //
    8,  12, 17, 15, 18, 18, 17, 15,    //
    16, 16, 19, 21, 27, 23, 19, 20,    //
    26, 20, 16, 16, 24, 32, 24, 26,    //
    28, 29, 30, 31, 30, 18, 23, 33,    //
    36, 33, 30, 36, 27, 30, 30, 29,
};

const unsigned g_customChrominanceQuant[64] = {
    5,  5,  5,  7,  6,  7,  14, 7,     //
    7,  14, 29, 19, 16, 19, 29, 29,    //
    29, 29, 29, 29, 29, 29, 29, 29,    //
    29, 29, 29, 29, 29, 29, 29, 29,    //
    29, 29, 29, 29, 29, 29, 29, 29,    //
    29, 29, 29, 29, 29, 29, 29, 29,    //
    29, 29, 29, 29, 29, 29, 29, 29,    //
    29, 29, 29, 29, 29, 29, 29, 29,
};

const unsigned char DEFAULT_CREATOR[8] = {'K', 'O', 'R', 'V', 'E', 'L', 'I', 'N'};

namespace {

constexpr int kApiVersion = 62;
constexpr JDIMENSION kRowsAtOnce = 16;    // the rows of one row of blocks

JpegDestination& destinationOf(j_compress_ptr cinfo) { return *reinterpret_cast<JpegDestination*>(cinfo->dest); }

// No exception may cross libjpeg's frames, and no jump may leave a handler, so the failure is returned as a value.
bool append(std::vector<unsigned char>& output, const unsigned char* bytes, size_t count) noexcept {
    try {
        output.insert(output.end(), bytes, bytes + count);
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

void appendOrFail(j_compress_ptr cinfo, size_t count) {
    const JpegDestination& destination = destinationOf(cinfo);
    if (!append(*destination.output, destination.buffer->data(), count)) ERREXIT1(cinfo, JERR_OUT_OF_MEMORY, 0);
}

void stub(j_compress_ptr /*cinfo*/) {}

void startOfBuffer(JpegDestination& destination) {
    destination.pub.next_output_byte = destination.buffer->data();
    destination.pub.free_in_buffer = destination.buffer->size();
}

// libjpeg calls this when the work buffer is full; free_in_buffer is not reliable then.
boolean empty_output_buffer(j_compress_ptr cinfo) {
    appendOrFail(cinfo, destinationOf(cinfo).buffer->size());
    startOfBuffer(destinationOf(cinfo));
    return TRUE;
}

void term_destination(j_compress_ptr cinfo) {
    const JpegDestination& destination = destinationOf(cinfo);
    const size_t count = destination.buffer->size() - destination.pub.free_in_buffer;
    if (count > 0) appendOrFail(cinfo, count);
}

void jpeg_buffer_dest(j_compress_ptr cinfo, JpegDestination* destination) {
    cinfo->dest = &destination->pub;
    destination->pub.init_destination = stub;
    destination->pub.empty_output_buffer = empty_output_buffer;
    destination->pub.term_destination = term_destination;
}

void error_exit(j_common_ptr cinfo) { std::longjmp(reinterpret_cast<JpegErrorTrap*>(cinfo->err)->jumpBuffer, 1); }

}    // namespace

// Runs libjpeg calls under an armed jump point; false if one of them failed. The calls must create no object with
// a destructor, because the jump would skip it.
template <class Calls>
bool KVCompress::attempt(Calls calls) {
    if (setjmp(jumpBuffer) != 0) return false;
    calls();
    return true;
}

KVCompress::KVCompress() : JpegDestination(), JpegErrorTrap() {}

KVCompress::~KVCompress() {
    if (!cinfo) return;
    jpeg_destroy_compress(cinfo);
    std::free(cinfo);
}

void KVCompress::installErrorManager() {
    cinfo->err = jpeg_std_error(&errorManager);
    errorManager.error_exit = error_exit;
}

bool KVCompress::InitBase(int bufferSize, std::vector<unsigned char>& out) {
    if (!cinfo) cinfo = static_cast<jpeg_compress_struct*>(std::malloc(sizeof(jpeg_compress_struct)));
    if (!cinfo) return false;
    // Creation may fail for lack of memory, so an error manager is installed before it, and reinstalled after it.
    installErrorManager();
    if (!attempt([this] { jpeg_CreateCompress(cinfo, kApiVersion, sizeof(jpeg_compress_struct)); })) return false;
    installErrorManager();
    output = &out;
    buffer.resize(static_cast<size_t>(static_cast<int64_t>(bufferSize)));
    JpegDestination::buffer = &buffer;
    jpeg_buffer_dest(cinfo, this);
    startOfBuffer(*this);
    return true;
}

bool KVCompress::InitWith(int width, int height, int components, J_COLOR_SPACE space, int bufferSize,
                          std::vector<unsigned char>& out) {
    if (!InitBase(bufferSize, out)) return false;
    cinfo->image_width = static_cast<JDIMENSION>(width);
    cinfo->image_height = static_cast<JDIMENSION>(height);
    cinfo->input_components = components;
    cinfo->in_color_space = space;
    if (!attempt([this] { jpeg_set_defaults(cinfo); })) return false;
    cinfo->JFIF_minor_version = 2;    // the default is 1.01
    return true;
}

bool KVCompress::InitWithGray(int width, int height, int bufferSize, std::vector<unsigned char>& out) {
    return InitWith(width, height, 1, JCS_GRAYSCALE, bufferSize, out);
}

bool KVCompress::InitWithRGB(int width, int height, int bufferSize, std::vector<unsigned char>& out) {
    return InitWith(width, height, 3, JCS_RGB, bufferSize, out);
}

// The tables were allocated when the defaults were set, so these calls fail only if they are called out of order;
// Compress then fails as well.
void KVCompress::SetQuality(int quality) {
    attempt([this, quality] { jpeg_set_quality(cinfo, quality, TRUE); });
}

void KVCompress::SetQuality(int quality, const unsigned* luminance, const unsigned* chrominance) {
    attempt([this, quality, luminance, chrominance] {
        const int scale = jpeg_quality_scaling(quality);
        if (luminance) jpeg_add_quant_table(cinfo, 0, luminance, scale, TRUE);
        if (chrominance) jpeg_add_quant_table(cinfo, 1, chrominance, scale, TRUE);
    });
}

// Identifiers count from 0 in this library's streams.
void KVCompress::setComponent(int index, int sampling) {
    jpeg_component_info& component = cinfo->comp_info[index];
    component.component_id = index;
    component.h_samp_factor = sampling;
    component.v_samp_factor = sampling;
}

void KVCompress::SetOutImageGray444() {
    cinfo->jpeg_color_space = JCS_GRAYSCALE;
    setComponent(0, 1);
}

void KVCompress::SetOutImageYCbCr444() {
    cinfo->jpeg_color_space = JCS_YCbCr;
    for (int i = 0; i < 3; ++i) setComponent(i, 1);
}

void KVCompress::SetOutImageYCbCr411() {
    cinfo->jpeg_color_space = JCS_YCbCr;
    setComponent(0, 2);
    setComponent(1, 1);
    setComponent(2, 1);
}

void KVCompress::SetResolution(int unit, int yDensity, int xDensity) {
    cinfo->density_unit = static_cast<UINT8>(unit);
    cinfo->X_density = static_cast<UINT16>(xDensity);
    cinfo->Y_density = static_cast<UINT16>(yDensity);
}

bool KVCompress::Compress(const unsigned char* pixels, int rowBytes, const unsigned char* marker, int markerLength) {
    return attempt([=] {
        jpeg_start_compress(cinfo, TRUE);
        if (marker && markerLength != 0)
            jpeg_write_marker(cinfo, JPEG_COM, marker, static_cast<unsigned>(markerLength));
        const size_t step = static_cast<unsigned>(rowBytes);
        while (cinfo->next_scanline < cinfo->image_height) {
            const JDIMENSION count = std::min<JDIMENSION>(kRowsAtOnce, cinfo->image_height - cinfo->next_scanline);
            JSAMPROW rows[kRowsAtOnce];
            for (JDIMENSION i = 0; i < count; ++i)
                rows[i] = const_cast<JSAMPROW>(pixels + step * (cinfo->next_scanline + i));
            jpeg_write_scanlines(cinfo, rows, count);
        }
        jpeg_finish_compress(cinfo);
    });
}
