// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The JPEG encoder: one object writes one baseline JFIF stream from an 8-bit grey or 24-bit RGB raster.
#pragma once

#include <csetjmp>
#include <cstdio>    // jpeglib.h needs it
#include <vector>

#include <jpeglib.h>

// libjpeg's destination. libjpeg fills `buffer`, the encoder's work buffer; each time it is full, and at the end, its
// bytes are appended to `output`, the caller's vector.
struct JpegDestination {
    jpeg_destination_mgr pub;    // first, so that libjpeg's pointer also points to this structure
    std::vector<unsigned char>* buffer;
    std::vector<unsigned char>* output;
};

// The jump target of libjpeg errors. `errorManager` is first, so that an error handler, which gets only its address,
// finds the jump buffer.
struct JpegErrorTrap {
    jpeg_error_mgr errorManager;
    jmp_buf jumpBuffer;
};

extern const unsigned g_customLuminanceQuant[64];
extern const unsigned g_customChrominanceQuant[64];

// Eight bytes without a terminating zero; the comment of every stream.
extern const unsigned char DEFAULT_CREATOR[8];

// Used in this order: construct, one Init call, quality, layout and resolution, Compress, destroy. libjpeg errors do
// not leave a method: a failed Init or Compress returns false. Init throws `std::bad_alloc` if allocating the work
// buffer fails.
struct KVCompress : JpegDestination, JpegErrorTrap {
    KVCompress();
    KVCompress(const KVCompress&) = delete;
    KVCompress& operator=(const KVCompress&) = delete;
    ~KVCompress();

    bool InitWithGray(int width, int height, int bufferSize, std::vector<unsigned char>& out);
    bool InitWithRGB(int width, int height, int bufferSize, std::vector<unsigned char>& out);

    void SetQuality(int quality);
    // Tables of 64 values in natural order; a null one leaves libjpeg's table of quality 75.
    void SetQuality(int quality, const unsigned* luminance, const unsigned* chrominance);

    void SetOutImageGray444();
    void SetOutImageYCbCr444();
    void SetOutImageYCbCr411();    // 2 x 2 luma for each chroma sample

    // The vertical density comes first.
    void SetResolution(int unit, int yDensity, int xDensity);

    bool Compress(const unsigned char* pixels, int rowBytes, const unsigned char* marker, int markerLength);

    jpeg_compress_struct* cinfo = nullptr;
    std::vector<unsigned char> buffer;

private:
    bool InitBase(int bufferSize, std::vector<unsigned char>& out);
    bool InitWith(int width, int height, int components, J_COLOR_SPACE space, int bufferSize,
                  std::vector<unsigned char>& out);
    void installErrorManager();
    void setComponent(int index, int sampling);

    template <class Calls>
    bool attempt(Calls calls);
};
