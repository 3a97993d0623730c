// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

/// @file OPCV_dlib.h
/// Image primitives for document-scanner pipelines.
///
/// This header declares every exported function. It compiles as C11 and as C++17 and includes no other header of the
/// library, of OpenCV or of libjpeg. Functions whose parameter types are part of their exported names are available in
/// C++ only; they are declared last.
///
/// The following holds for every function:
///
/// - **Images.** An image is passed as a pointer to the first pixel of a region, the number of bytes from one row to
///   the next (the step) and the size of the region in pixels. Rows run from top to bottom. C1 means one channel, C3
///   three interleaved channels, P3 three planes, passed as an array of three pointers; the planes share one step. In
///   1-bit rows the leftmost pixel is the most significant bit. Colour channels are in the order red, green, blue.
/// - **Steps.** Functions that use OpenCV divide the step by the pixel size to get the length of a row in pixels, so
///   their steps must be multiples of the pixel size. If the division leaves a remainder r, row n starts n x r bytes
///   too early.
/// - **Margins.** A function that reads neighbouring pixels reads them from the caller's image, so the image must
///   extend beyond the region. Each function documents by how many pixels. No function supplies pixels of its own
///   around the region unless its description says so, as for the rotations.
/// - **Angles** are in degrees. A positive angle turns counter-clockwise, as seen on the screen, in `ippiRotate`,
///   `ippiRotateCenter`, the KVMac and the deskew functions; it turns clockwise in `RotateImageWithIPP` and
///   `UniteImageIplRotateImage`.
/// - **Failures.** A function that rejects its arguments returns a status; it prints nothing and throws nothing.
///   Exceptions that OpenCV throws while it works (`cv::Exception`, `std::bad_alloc`) propagate to the caller after the
///   library has released everything that it allocated. This includes OpenCV's out-of-memory exception: the
///   out-of-memory statuses report failed allocations of the library itself. The JPEG functions that take or create a
///   record return a status instead of throwing.
/// - **Ownership.** Records belong to the caller, who releases them with `DisposeKVIMG`. Plane blocks are released with
///   `IPPMini_ippiFree` or `IPPShare_ippiFree`, JPEG streams with `free`. No other memory outlives a call.
/// - **Threads.** No function keeps state, so any number of threads may call any functions at the same time, as long as
///   no two of them write to the same memory. The library starts no thread. OpenCV may distribute one call over the
///   threads of its own pool: in rotations and deskew, resize, the bilateral filter, noise reduction and colour
///   conversion, for images above about 65000 pixels. The result does not depend on the number of threads; if no thread
///   can be started, the call runs on the caller's thread, returns the same result and throws nothing.
///   `cv::setNumThreads` sets the size of that pool for the whole process; with `cv::setNumThreads(1)` every call stays
///   on the caller's thread.
/// - **Length.** OpenCV does not warp images with a side of 32767 pixels or more. The rotation and deskew functions
///   then throw its `cv::Exception`; each documents which image is measured. Quarter turns and resize have no such
///   limit.
#ifndef OPCV_DLIB_H
#define OPCV_DLIB_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#if defined(__GNUC__)
#define OPCV_DLIB_API __attribute__((visibility("default")))
#else
#define OPCV_DLIB_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/// @name Status codes
/// @{

/// Result of the image functions: one of the three values below.
typedef int IppStatus;
enum {
    ippStsNoErr = 0,         ///< Success.
    ippStsNoMemErr = -4,     ///< Out of memory.
    ippStsBadArgErr = -5,    ///< An argument is invalid: null pointer, empty size, region wider than the step, ...
};

/// Result of the record functions: one of the six values below.
typedef short OSErr;
enum {
    noErr = 0,                 ///< Success.
    paramErr = -50,            ///< An argument is invalid, or a JPEG stream cannot be read.
    memFullErr = -108,         ///< Out of memory.
    rotateFailedErr = -2,      ///< The depth cannot be rotated or scaled, or the rotation failed.
    badAngleErr = -3,          ///< The angle is not a quarter turn.
    uniteFailedErr = -1001,    ///< `UniteImageIplRotateImage` failed.
};
/// @}

/// @name Value types
/// @{

/// Size in pixels.
typedef struct IppiSize {
    int width;     ///< Columns.
    int height;    ///< Rows.
} IppiSize;

/// Position in pixels, column first.
typedef struct IppiPoint {
    int x;    ///< Column.
    int y;    ///< Row.
} IppiPoint;

/// Rectangle in pixels, by its first pixel and its size.
typedef struct IppiRect {
    int x;         ///< First column.
    int y;         ///< First row.
    int width;     ///< Columns.
    int height;    ///< Rows.
} IppiRect;

/// Rectangle in pixels, by its edges; `bottom` and `right` are exclusive.
typedef struct KVRect {
    int32_t top;       ///< First row.
    int32_t left;      ///< First column.
    int32_t bottom;    ///< One past the last row.
    int32_t right;     ///< One past the last column.
} KVRect;
/// @}

/// @name Records
/// @{

/// An image on the heap: the record and the block of pixels that it owns. Released with `DisposeKVIMG`.
typedef struct KVIMG {
    unsigned char* data;    ///< First byte of the pixel block.
    int32_t depth;          ///< Bits per pixel: 1, 8, 24, 32 or 40 (laid out like 8).
    int32_t width;          ///< Pixels per row.
    int32_t height;         ///< Rows.
    int32_t rowBytes;       ///< Bytes from one row to the next.
    int32_t size;           ///< Bytes in the pixel block: `rowBytes` times `height`.
} KVIMG;

/// Describes a page. The caller owns it and may append fields of its own. The JPEG readers write width, height and
/// depth; the deskew functions read the same three fields, the compressors the two resolutions.
typedef struct KVImageDescription {
    int32_t width;                   ///< Pixels per row.
    int32_t height;                  ///< Rows.
    int32_t horizontalResolution;    ///< Dots per inch.
    int32_t verticalResolution;      ///< Dots per inch.
    int32_t reserved;                ///< For the caller's use; never read or written.
    int16_t depth;                   ///< Bits per pixel.
} KVImageDescription;

/// How a description is passed: a pointer to a pointer to the record.
typedef KVImageDescription** KVImageDescriptionHandle;

/// Image header over pixels of the caller, for `UniteImageIplRotateImage`.
typedef struct KVImageHeader {
    unsigned char* pixels;    ///< First byte of the first row.
    int64_t reserved;         ///< Not read.
    int32_t depth;            ///< Bits per pixel; only the first byte of the field is read.
    int32_t width;            ///< Pixels per row.
    int32_t height;           ///< Rows.
    int32_t rowStep;          ///< Bytes from one row to the next.
} KVImageHeader;
/// @}

/// @name Initialisation
/// The library needs no initialisation. These functions keep older callers working; each always returns 0.
/// @{

/// Does nothing. @return 0.
OPCV_DLIB_API int IppInit(void);

/// Does nothing. @return `ippStsNoErr`.
OPCV_DLIB_API IppStatus IPPMini_ippStaticInit(void);

/// Calls `IPPMini_ippStaticInit` through its exported symbol. @return The result of that call.
OPCV_DLIB_API IppStatus IPPShare_ippStaticInit(void);
/// @}

/// @name Image records
/// @{

/// Stores four edges in a rectangle.
///
/// @param r       Rectangle to fill. Its fields are in another order (top, left, bottom, right) than the arguments.
/// @param left    First column.
/// @param top     First row.
/// @param right   One past the last column.
/// @param bottom  One past the last row.
OPCV_DLIB_API void KVSetRect(KVRect* r, int left, int top, int right, int bottom);

/// Creates a record of the rectangle's size. The pixels are not cleared.
///
/// Bytes per row for a width of w pixels:
///
/// | depth | bytes per row |
/// |---|---|
/// | 1 | (w + 7) / 8 rounded up to a multiple of 16 |
/// | 8 and 40 | w rounded up to a multiple of 16 |
/// | 24 | 3 w; in `CreateNewKVIMGPtrForUnite` rounded up to a multiple of 4 |
/// | 32 | 4 w rounded up to a multiple of 16 |
///
/// @param out    Receives the record. Set `*out` to null before the call: if allocating the pixels fails, the block
///               that `*out` points to is freed and `*out` is left unchanged; if only allocating the record fails,
///               `*out` becomes null.
/// @param r      The width is right - left and the height is bottom - top; the position does not matter. Neither is
///               checked: an empty rectangle gives a record of 0 bytes, a negative size fails as out of memory.
/// @param depth  Bits per pixel: 1, 8, 24, 32 or 40.
/// @retval noErr       The record is created. Also returned if `out` or `r` is null or the depth is not one of these;
///                     nothing is done then.
/// @retval memFullErr  Out of memory, or the size does not fit in 32 bits; nothing stays allocated.
OPCV_DLIB_API OSErr CreateNewKVIMGPtr(KVIMG** out, const KVRect* r, unsigned char depth);

/// `CreateNewKVIMGPtr` with one difference: rows of depth 24 are padded to a multiple of 4 bytes.
///
/// @copydetails CreateNewKVIMGPtr
OPCV_DLIB_API OSErr CreateNewKVIMGPtrForUnite(KVIMG** out, const KVRect* r, unsigned char depth);

/// Frees a record and its pixels. The caller's pointer is not cleared.
///
/// @param img  The record; may be null.
OPCV_DLIB_API void DisposeKVIMG(KVIMG* img);
/// @}

/// @name Planes
/// @{

/// Allocates a plane of 16-bit signed pixels. The length of a row is a multiple of 64 bytes. The pixels are not
/// cleared.
///
/// @param width       Pixels per row, above 0.
/// @param height      Rows, above 0.
/// @param pStepBytes  Receives the bytes from one row to the next, also if the allocation fails.
/// @return The plane, to be released with `IPPMini_ippiFree` or `IPPShare_ippiFree`. Null if out of memory or if the
///         plane is larger than 2^31 - 1 bytes. Null as well, with `*pStepBytes` unchanged, if `pStepBytes` is null,
///         the width or the height is not above 0, or one row is larger than 2^31 - 1 bytes.
OPCV_DLIB_API short* IPPShare_ippiMalloc_16s_C1(int width, int height, int* pStepBytes);

/// Allocates an image of three interleaved 8-bit channels. The length of a row is a multiple of 64 bytes. The pixels
/// are not cleared.
///
/// @copydetails IPPShare_ippiMalloc_16s_C1
OPCV_DLIB_API unsigned char* IPPMini_ippiMalloc_8u_C3(int width, int height, int* pStepBytes);

/// Frees a block from either allocator.
///
/// @param p  The block; may be null.
OPCV_DLIB_API void IPPMini_ippiFree(void* p);

/// Calls `IPPMini_ippiFree` through its exported symbol.
///
/// @param p  The block; may be null.
OPCV_DLIB_API void IPPShare_ippiFree(void* p);
/// @}

/// @name Square medians
///
/// The source image must contain every window: with the anchor (ax, ay) of an m x m mask, it extends ax pixels to the
/// left of the region, ay above, m - 1 - ax to the right and m - 1 - ay below. The anchor may lie outside the mask,
/// which displaces the windows further. Steps are multiples of the pixel size. Small masks are filtered directly from
/// the caller's rows, without allocating memory; for large masks, and if source and destination overlap, OpenCV makes a
/// copy first.
/// @{

/// Median of a grey region under a square mask: each pixel becomes the median of the source pixels that the mask covers
/// when its anchor lies on that pixel.
///
/// @param pSrc        First pixel of the source region.
/// @param srcStep     Bytes from one source row to the next; at least width + m - 1 pixels.
/// @param pDst        First pixel of the destination region; may overlap the source.
/// @param dstStep     Bytes from one destination row to the next.
/// @param dstRoiSize  Size of the region in pixels.
/// @param maskSize    Size of the mask: odd, width equal to height.
/// @param anchor      Cell of the mask that lies on the pixel, counted from 0.
/// @retval ippStsNoErr      The region is filtered; no byte outside it is written.
/// @retval ippStsBadArgErr  Null pointer, mask not square or not odd, empty region, or rows too short for the region
///                          (in the source: for the region and m - 1 more pixels); nothing is written.
/// @retval ippStsNoMemErr   Out of memory; nothing is written.
OPCV_DLIB_API IppStatus IPPShare_ippiFilterMedian_8u_C1R(const unsigned char* pSrc, int srcStep, unsigned char* pDst,
                                                         int dstStep, IppiSize dstRoiSize, IppiSize maskSize,
                                                         IppiPoint anchor);

/// `IPPShare_ippiFilterMedian_8u_C1R` for a colour region; each channel is filtered separately.
///
/// @copydetails IPPShare_ippiFilterMedian_8u_C1R
OPCV_DLIB_API IppStatus IPPShare_ippiFilterMedian_8u_C3R(const unsigned char* pSrc, int srcStep, unsigned char* pDst,
                                                         int dstStep, IppiSize dstRoiSize, IppiSize maskSize,
                                                         IppiPoint anchor);

/// Calls `IPPShare_ippiFilterMedian_8u_C1R` through its exported symbol.
///
/// @copydetails IPPShare_ippiFilterMedian_8u_C1R
OPCV_DLIB_API IppStatus IPPMini_ippiFilterMedian_8u_C1R(const unsigned char* pSrc, int srcStep, unsigned char* pDst,
                                                        int dstStep, IppiSize dstRoiSize, IppiSize maskSize,
                                                        IppiPoint anchor);
/// @}

/// @name Medians with a fixed window
///
/// Windows at the edge of the region include pixels around it, so the source image must extend beyond the region by as
/// much as each function documents. No other byte of the source is read.
/// @{

/// Cross-shaped median of a grey region: each pixel becomes the median of the pixels of a plus sign centred on it.
///
/// @param pSrc        First pixel of the source region; the image extends 1 pixel (mask 33) or 2 pixels (mask 55)
///                    beyond every edge.
/// @param srcStep     Bytes from one source row to the next; not checked.
/// @param pDst        First pixel of the destination region; must not overlap the source.
/// @param dstStep     Bytes from one destination row to the next.
/// @param dstRoiSize  Size of the region in pixels.
/// @param mask        33: the 5 pixels of a 3 x 3 cross. 55: the 9 pixels of a 5 x 5 cross.
/// @retval ippStsNoErr      The region is filtered; no byte outside it is written.
/// @retval ippStsBadArgErr  Null pointer, empty region, width above `dstStep`, or another mask; nothing is written.
OPCV_DLIB_API IppStatus IPPShare_ippiFilterMedianCross_8u_C1R(const unsigned char* pSrc, int srcStep,
                                                              unsigned char* pDst, int dstStep, IppiSize dstRoiSize,
                                                              int mask);

/// 3 x 3 median of a grey region that counts the centre several times, which preserves fine detail: each pixel becomes
/// the median of its eight neighbours and `weight` copies of itself.
///
/// @param pSrc        First pixel of the source region; the image extends 1 pixel beyond every edge.
/// @param srcStep     Bytes from one source row to the next; not checked.
/// @param pDst        First pixel of the destination region; must not overlap the source.
/// @param dstStep     Bytes from one destination row to the next.
/// @param dstRoiSize  Size of the region in pixels.
/// @param weight      3 (the 6th smallest of 11 values) or 5 (the 7th smallest of 13).
/// @retval ippStsNoErr      The region is filtered; no byte outside it is written.
/// @retval ippStsBadArgErr  Null pointer, empty region, width above `dstStep`, or another weight; nothing is written.
OPCV_DLIB_API IppStatus IPPShare_ippiFilterMedianWeightedCenter3x3_8u_C1R(const unsigned char* pSrc, int srcStep,
                                                                          unsigned char* pDst, int dstStep,
                                                                          IppiSize dstRoiSize, int weight);

/// Vector median of a colour region: each pixel becomes the pixel of its 3 x 3 window that has the smallest sum of
/// city-block distances |r1 - r2| + |g1 - g2| + |b1 - b2| to the other eight; of equal sums, the first in raster order
/// counts.
///
/// @param pSrc        First pixel of the source region; the image extends 1 pixel beyond every edge.
/// @param srcStep     Bytes from one source row to the next; not checked.
/// @param pDst        First pixel of the destination region; must not overlap the source.
/// @param dstStep     Bytes from one destination row to the next.
/// @param dstRoiSize  Size of the region in pixels.
/// @param mask        33, the only mask.
/// @retval ippStsNoErr      The region is filtered; no byte outside it is written.
/// @retval ippStsBadArgErr  Null pointer, empty region, 3 x width above `dstStep`, or another mask; nothing is written.
OPCV_DLIB_API IppStatus IPPShare_ippiFilterMedianColor_8u_C3R(const unsigned char* pSrc, int srcStep,
                                                              unsigned char* pDst, int dstStep, IppiSize dstRoiSize,
                                                              int mask);
/// @}

/// @name Dilation, erosion, maximum and minimum
///
/// Each pixel becomes the largest or the smallest of the source pixels that the cells of a mask select when the anchor
/// of the mask lies on that pixel. The source image must contain every window: with the anchor (ax, ay) of an mw x mh
/// mask, it extends ax pixels to the left of the region, ay above, mw - 1 - ax to the right and mh - 1 - ay below;
/// where OpenCV does the work, one more to the right if mw is even and one more below if mh is even. The anchor may lie
/// outside the mask, which displaces the windows further. Small masks are filtered directly from the caller's rows,
/// without allocating memory; for large masks, and if source and destination overlap, OpenCV makes a copy first.
/// @{

/// Largest pixel under an arbitrary mask.
///
/// @param pSrc        First pixel of the source region.
/// @param srcStep     Bytes from one source row to the next; at least the width of the region + 2 (mw / 2), with
///                    integer division.
/// @param pDst        First pixel of the destination region; may overlap the source.
/// @param dstStep     Bytes from one destination row to the next.
/// @param dstRoiSize  Size of the region in pixels.
/// @param pMask       The cells of the mask, row after row without gaps; each cell that is not 0 selects a pixel. If no
///                    cell does, the result is the one that OpenCV gives.
/// @param maskSize    Size of the mask in cells.
/// @param anchor      Cell of the mask that lies on the pixel, counted from 0.
/// @retval ippStsNoErr      The region is filtered; no byte outside it is written.
/// @retval ippStsBadArgErr  Null pointer, empty mask or region, or rows too short for the region (in the source: for
///                          the region and 2 (mw / 2) more pixels); nothing is written.
/// @retval ippStsNoMemErr   Out of memory; nothing is written.
OPCV_DLIB_API IppStatus IPPShare_ippiDilate_8u_C1R(const unsigned char* pSrc, int srcStep, unsigned char* pDst,
                                                   int dstStep, IppiSize dstRoiSize, const unsigned char* pMask,
                                                   IppiSize maskSize, IppiPoint anchor);

/// Smallest pixel under an arbitrary mask.
///
/// @copydetails IPPShare_ippiDilate_8u_C1R
OPCV_DLIB_API IppStatus IPPShare_ippiErode_8u_C1R(const unsigned char* pSrc, int srcStep, unsigned char* pDst,
                                                  int dstStep, IppiSize dstRoiSize, const unsigned char* pMask,
                                                  IppiSize maskSize, IppiPoint anchor);

/// Largest pixel under a full rectangle.
///
/// @param pSrc        First pixel of the source region.
/// @param srcStep     Bytes from one source row to the next; at least the width of the region + 2 (mw / 2), with
///                    integer division.
/// @param pDst        First pixel of the destination region; may overlap the source.
/// @param dstStep     Bytes from one destination row to the next.
/// @param dstRoiSize  Size of the region in pixels.
/// @param maskSize    Size of the rectangle in pixels.
/// @param anchor      Cell of the rectangle that lies on the pixel, counted from 0.
/// @retval ippStsNoErr      The region is filtered; no byte outside it is written.
/// @retval ippStsBadArgErr  Null pointer, empty rectangle or region, or rows too short for the region (in the source:
///                          for the region and 2 (mw / 2) more pixels); nothing is written.
/// @retval ippStsNoMemErr   Out of memory; nothing is written.
OPCV_DLIB_API IppStatus IPPMini_ippiFilterMax_8u_C1R(const unsigned char* pSrc, int srcStep, unsigned char* pDst,
                                                     int dstStep, IppiSize dstRoiSize, IppiSize maskSize,
                                                     IppiPoint anchor);

/// Smallest pixel under a full rectangle.
///
/// @copydetails IPPMini_ippiFilterMax_8u_C1R
OPCV_DLIB_API IppStatus IPPMini_ippiFilterMin_8u_C1R(const unsigned char* pSrc, int srcStep, unsigned char* pDst,
                                                     int dstStep, IppiSize dstRoiSize, IppiSize maskSize,
                                                     IppiPoint anchor);
/// @}

/// @name Rotation of regions
/// @{

/// Computes the shift that makes `ippiRotate` turn about a given centre:
/// x = xc - xc cos a - yc sin a, y = yc + xc sin a - yc cos a.
///
/// @param xCenter  Column of the centre, in pixels of the source region.
/// @param yCenter  Row of the centre.
/// @param angle    Degrees, counter-clockwise on screen.
/// @param xShift   Receives the horizontal shift in pixels.
/// @param yShift   Receives the vertical shift in pixels. If either pointer is null, nothing is written.
OPCV_DLIB_API void KVMac_ippiGetRotateShift(double xCenter, double yCenter, double angle, double* xShift,
                                            double* yShift);

/// `ippiRotate` for one 8-bit channel; pixels from outside the source region are black.
///
/// @param src            First row of the source image.
/// @param srcSize        Size of the source image.
/// @param srcStep        Bytes from one source row to the next; a multiple of the pixel size.
/// @param srcRoi         Part of the source that is turned.
/// @param dst            First row of the destination image.
/// @param dstStep        Bytes from one destination row to the next; a multiple of the pixel size.
/// @param dstRoi         Part of the destination that is filled.
/// @param angle          Degrees, counter-clockwise on screen.
/// @param xShift         Shift to the right after the turn; converted to float, then rounded to whole pixels.
/// @param yShift         Shift down after the turn, converted and rounded in the same way.
/// @param interpolation  Ignored; always bilinear.
/// @retval noErr       The destination rectangle is filled.
/// @retval paramErr    `ippiRotate` returns `ippStsBadArgErr`; nothing is written.
/// @retval memFullErr  `ippiRotate` returns `ippStsNoMemErr`; nothing is written.
/// @throws cv::Exception if `ippiRotate` throws it; nothing is written.
OPCV_DLIB_API OSErr KVMac_ippiRotate_8u_C1R(const unsigned char* src, IppiSize srcSize, int srcStep, IppiRect srcRoi,
                                            unsigned char* dst, int dstStep, IppiRect dstRoi, double angle,
                                            double xShift, double yShift, int interpolation);

/// `KVMac_ippiRotate_8u_C1R` for three interleaved 8-bit channels.
///
/// @copydetails KVMac_ippiRotate_8u_C1R
OPCV_DLIB_API OSErr KVMac_ippiRotate_8u_C3R(const unsigned char* src, IppiSize srcSize, int srcStep, IppiRect srcRoi,
                                            unsigned char* dst, int dstStep, IppiRect dstRoi, double angle,
                                            double xShift, double yShift, int interpolation);
/// @}

/// @name Deskew and rotation of pages
///
/// The functions that take a description read the width, height and depth of the page from it. From the source record
/// they use only the pixels and the bytes per row. The depth is 8, 24 or 32. The new record is created by
/// `CreateNewKVIMGPtr` (except in `UniteImageIplRotateImage`) and belongs to the caller.
///
/// Set `*dst` to null before the call. On every failure, the record that `*dst` points to is released, even one that
/// the caller put there, and `*dst` is set to null. On success `*dst` is overwritten.
///
/// Corners that come from outside the page are black. With white fill, they are white at 24 bits; at 32 bits the first
/// byte is 0 and the other three are 255; at 8 bits the flag has no effect.
/// @{

/// Turns a page about its exact centre. The new record has the size of the page.
///
/// @param src            Page to turn; only its pixels and bytes per row are used.
/// @param description    Size and depth of the page.
/// @param dst            Receives the new record.
/// @param interpolation  Ignored; always bilinear.
/// @param whiteFill      If not 0, the corners are white instead of black (see the description of this group).
/// @param angle          Degrees, counter-clockwise on screen.
/// @retval noErr            `*dst` holds the turned page.
/// @retval paramErr         A pointer is null, including the description.
/// @retval rotateFailedErr  The depth is not 8, 24 or 32, or the rotation failed.
/// @retval memFullErr       Creating the record failed.
/// @throws cv::Exception if a side of the page is 32767 pixels or longer; `*dst` is released and set to null.
OPCV_DLIB_API OSErr DeskewImageWithIPP(const KVIMG* src, KVImageDescriptionHandle description, KVIMG** dst,
                                       int interpolation, unsigned char whiteFill, double angle);

/// Turns a page about its centre and cuts a rectangle out of the result. The turned page is placed on whole pixels.
///
/// @param src            Page to turn; only its pixels and bytes per row are used.
/// @param description    Size and depth of the page.
/// @param dst            Receives the new record, of the size of the crop rectangle.
/// @param interpolation  Ignored; always bilinear.
/// @param whiteFill      If not 0, the corners are white instead of black (see the description of this group).
/// @param crop           Rectangle in the coordinates of the turned page; may extend outside it. After the record is
///                       created, a negative `top` or `left` is moved to 0 and the size is kept; the record still shows
///                       the rectangle as it was passed.
/// @param angle          Degrees, counter-clockwise on screen.
/// @retval noErr            `*dst` holds the part of the turned page.
/// @retval paramErr         A pointer is null, including the description.
/// @retval rotateFailedErr  The depth is not 8, 24 or 32, or the rotation failed, for example for an empty rectangle.
/// @retval memFullErr       Creating the record failed.
/// @throws cv::Exception if a side of the page, enlarged by what the crop shows around it, is 32767 pixels or longer;
///         `*dst` is released and set to null.
OPCV_DLIB_API OSErr DeskewImageWithIPPEx(const KVIMG* src, KVImageDescriptionHandle description, KVIMG** dst,
                                         int interpolation, unsigned char whiteFill, KVRect* crop, double angle);

/// Turns a page about a point, which becomes the top-left pixel of the new record.
///
/// @param src            Page to turn; only its pixels and bytes per row are used.
/// @param description    Size and depth of the page.
/// @param dst            Receives the new record, of the size of the crop rectangle.
/// @param interpolation  Ignored; always bilinear.
/// @param whiteFill      If not 0, the corners are white instead of black (see the description of this group).
/// @param crop           Gives the size of the new record; its position does not matter. Never changed.
/// @param xPoint         Column of the point on the page.
/// @param yPoint         Row of the point on the page.
/// @param angle          Degrees, counter-clockwise on screen.
/// @retval noErr            `*dst` holds the part of the turned page.
/// @retval paramErr         A pointer is null, including the description.
/// @retval rotateFailedErr  The depth is not 8, 24 or 32, or the rotation failed, for example for an empty rectangle.
/// @retval memFullErr       Creating the record failed.
/// @throws cv::Exception if a side of the page, enlarged by what the crop shows around it, is 32767 pixels or longer;
///         `*dst` is released and set to null.
OPCV_DLIB_API OSErr DeskewImageWithIPPExWithShirftPoint(const KVIMG* src, KVImageDescriptionHandle description,
                                                        KVIMG** dst, int interpolation, unsigned char whiteFill,
                                                        KVRect* crop, int64_t xPoint, int64_t yPoint, double angle);

/// Turns a page by a multiple of 90 degrees, without interpolation.
///
/// @param src          Page to turn; only its pixels and bytes per row are used.
/// @param description  Size and depth of the page.
/// @param dst          Receives the new record; turns by 90 and 270 degrees swap width and height.
/// @param angle        Degrees, **clockwise** on screen: 90, 180, 270 or their negatives. The fraction is dropped
///                     first, so 90.9 turns by 90, and 89.9 is rejected.
/// @retval noErr            `*dst` holds the turned page.
/// @retval paramErr         A pointer is null, including the description; or the page is empty or does not fit in its
///                          rows.
/// @retval rotateFailedErr  The depth is not 8, 24 or 32.
/// @retval badAngleErr      The angle is not one of these.
/// @retval memFullErr       Creating the record failed.
OPCV_DLIB_API OSErr RotateImageWithIPP(const KVIMG* src, KVImageDescriptionHandle description, KVIMG** dst,
                                       double angle);

/// Turns an image about its centre and centres it on a canvas of another size. The pixels of the canvas are a new
/// record created by `CreateNewKVIMGPtrForUnite`.
///
/// Uncovered pixels are white at 24 bits (255 255 255) and 32 bits (0 255 255 255) and black at 8 bits.
///
/// @param dstHeader     Canvas: depth (8, 24 or 32), width, height and row step are read; the pixel pointer is set to
///                      the pixels of the record. Set the row step as the record has it: the width rounded up to a
///                      multiple of 16 at 8 bits, 3 times the width rounded up to 4 at 24 bits, 4 times the width
///                      rounded up to 16 at 32 bits. At 24 bits the rows are written row step / 3 whole pixels apart,
///                      so the written rows end before the record does, by up to 2 bytes per row; the bytes after them
///                      are not set. After a failure the pixel pointer may refer to released memory.
/// @param srcHeader     Image to turn: pixels, width, height and row step are read; the depth is that of the canvas.
/// @param unitedRecord  Receives the record, on success only.
/// @param angle         Degrees, **clockwise** on screen. If above 180, 360 is subtracted first.
/// @retval noErr           The canvas is filled and `*unitedRecord` holds it.
/// @retval uniteFailedErr  Any failure.
/// @throws cv::Exception if a side of the image, enlarged by what the canvas shows around it, is 32767 pixels or
///         longer; `*unitedRecord` is unchanged, and the pixel pointer of the canvas refers to released memory.
OPCV_DLIB_API OSErr UniteImageIplRotateImage(KVImageHeader* dstHeader, const KVImageHeader* srcHeader,
                                             KVIMG** unitedRecord, double angle);
/// @}

/// @name Resize
///
/// Interpolation is always bilinear, as in OpenCV: pixel centres are aligned, edge pixels of the source are repeated,
/// weights have 11 bits. The source is not smoothed before a reduction, except that a reduction to exactly half in both
/// directions takes the mean of 2 x 2 pixels. Equal sizes are copied.
/// @{

/// Scales a page by numerator / denominator into a new record created by `CreateNewKVIMGPtr`, for example from one
/// resolution to another. Both sides are truncated to whole pixels: 101 x 51 at half scale becomes 50 x 25.
///
/// @param src          Page of depth 8, 24 or 32.
/// @param dst          Receives the new record. Set `*dst` to null before the call. On every failure, the record that
///                     `*dst` points to is released, even one that the caller put there, and `*dst` is set to null. On
///                     success `*dst` is overwritten.
/// @param denominator  Divisor of the scale.
/// @param numerator    Dividend of the scale.
/// @retval noErr            `*dst` holds the scaled page.
/// @retval paramErr         A pointer is null; the page does not fit in its rows; a side of the scaled page is 0 or
///                          less; or the scale is not a number.
/// @retval memFullErr       Creating the record failed, or a side of the scaled page is outside the range of int.
/// @retval rotateFailedErr  The depth is not 8, 24 or 32. If it is 1 or 40, `memFullErr` takes precedence.
OPCV_DLIB_API OSErr ResizeImageWithIPPEx(const KVIMG* src, KVIMG** dst, double denominator, double numerator);

/// Scales a region of one 8-bit channel by two factors, moves the result by whole pixels and writes it into a
/// destination rectangle. Pixels of the rectangle that the moved image does not cover are unchanged.
///
/// The scaled size is the size of the region times the factors, rounded to the nearest integer, halves to even. A shift
/// to the right leaves that many columns at the left of the rectangle unchanged; a shift to the left drops columns of
/// the scaled image. The same holds for rows.
///
/// @param src            First row of the source image.
/// @param srcSize        Size of the source image.
/// @param srcStep        Bytes from one source row to the next.
/// @param srcRoi         Part of the source that is scaled; nothing outside it is read.
/// @param dst            First row of the destination image; may be the source image or overlap it.
/// @param dstStep        Bytes from one destination row to the next.
/// @param dstRoi         Part of the destination that is filled.
/// @param xFactor        Scale of the width, above 0.
/// @param yFactor        Scale of the height, above 0.
/// @param xShift         Shift to the right after scaling; rounded to whole pixels, halves away from zero.
/// @param yShift         Shift down after scaling, rounded in the same way.
/// @param interpolation  Ignored; always bilinear.
/// @param buffer         Ignored.
/// @retval ippStsNoErr      The rectangle is filled as far as the moved image covers it.
/// @retval ippStsBadArgErr  The region is larger than the source image or does not fit in its rows; a pointer is null;
///                          a shift is outside the range of int or moves the image out of the rectangle; or what the
///                          shift leaves of the rectangle does not fit in its rows. Nothing is written.
/// @retval ippStsNoMemErr   The scaled image has no pixels; nothing is written.
/// @throws cv::Exception if a factor is not above 0 or the scaled image is empty.
OPCV_DLIB_API IppStatus OPCV_ippiResizeSqrPixel_8u_C1R(const unsigned char* src, IppiSize srcSize, int srcStep,
                                                       IppiRect srcRoi, unsigned char* dst, int dstStep,
                                                       IppiRect dstRoi, double xFactor, double yFactor, double xShift,
                                                       double yShift, int interpolation, unsigned char* buffer);

/// Scales a region of three interleaved 8-bit channels to the size of the destination region.
///
/// @param src            First row of the source image.
/// @param srcSize        Size of the source image.
/// @param srcStep        Bytes from one source row to the next; a multiple of 3.
/// @param srcRoi         Part of the source that is scaled; nothing outside it is read.
/// @param dst            First pixel of the destination region; must not overlap the source.
/// @param dstStep        Bytes from one destination row to the next; a multiple of 3.
/// @param dstRoiSize     Size of the destination region, which alone determines the scale.
/// @param xFactor        Ignored.
/// @param yFactor        Ignored.
/// @param interpolation  Ignored; always bilinear.
/// @retval ippStsNoErr      The destination region is filled.
/// @retval ippStsBadArgErr  The region is larger than the source image, a pointer is null, or a region is empty or does
///                          not fit in its rows; nothing is written.
OPCV_DLIB_API IppStatus IPPMini_ippiResize_8u_C3R(const unsigned char* src, IppiSize srcSize, int srcStep,
                                                  IppiRect srcRoi, unsigned char* dst, int dstStep, IppiSize dstRoiSize,
                                                  double xFactor, double yFactor, int interpolation);
/// @}

/// @name JPEG compression
///
/// A record of depth 8 becomes a grey stream, a record of depth 24 (red, green, blue) a colour stream. The stream is a
/// new block, which the caller releases with `free`. Streams are baseline JFIF 1.02 with dots per inch and the comment
/// KORVELIN. `mode` selects the quality:
///
/// | mode | `CompressJPEG` | `CompressJPEGEx`, `CompressJPEGWithIPPEx` | `CompressJPEGWithIPP` |
/// |---|---|---|---|
/// | 0 | 15 | 14 | 15 |
/// | 286 | 50 | 35 | 45 |
/// | 389 | 67 | 55 | 67 |
/// | 450 | 80 | 70 | 80 |
/// | 788 | 95 | 95 | 95 |
/// @{

/// Compresses a record with the library's own quantisation tables and without subsampling (4:4:4).
///
/// @param image       Record of depth 8 or 24.
/// @param resolution  Dots per inch in both directions; the low 16 bits are stored.
/// @param mode        Quality: 0, 286, 389, 450 or 788.
/// @param outData     Receives the stream.
/// @param outSize     Receives its length in bytes.
/// @retval noErr       `*outData` holds the stream.
/// @retval paramErr    Null pointer, empty image, unknown mode or other depth; nothing is written.
/// @retval memFullErr  The encoder failed, as it does for a side above 65500 pixels; nothing is written. Or allocating
///                     the block for the stream failed: `*outSize` is the length and `*outData` is null.
OPCV_DLIB_API OSErr CompressJPEG(const KVIMG* image, int resolution, int mode, void** outData, unsigned* outSize);

/// Compresses a record with the quantisation tables of libjpeg; colour is subsampled 2 x 2.
///
/// @param image        Record of depth 8 or 24.
/// @param description  Its two resolutions are stored, the low 16 bits of each; no other field is read.
/// @param mode         Quality: 0, 286, 389, 450 or 788.
/// @param outData      Receives the stream.
/// @param outSize      Receives its length in bytes.
/// @retval noErr       `*outData` holds the stream.
/// @retval paramErr    Null pointer, including the description, empty image, unknown mode or other depth; nothing is
///                     written.
/// @retval memFullErr  The encoder failed, as it does for a side above 65500 pixels; nothing is written. Or allocating
///                     the block for the stream failed: `*outSize` is the length and `*outData` is null.
OPCV_DLIB_API OSErr CompressJPEGEx(const KVIMG* image, KVImageDescriptionHandle description, int mode, void** outData,
                                   unsigned* outSize);

/// `CompressJPEGEx` with other qualities, see the table of modes.
///
/// @copydetails CompressJPEGEx
OPCV_DLIB_API OSErr CompressJPEGWithIPP(const KVIMG* image, KVImageDescriptionHandle description, int mode,
                                        void** outData, unsigned* outSize);

/// `CompressJPEGEx` under a second name.
///
/// @copydetails CompressJPEGEx
OPCV_DLIB_API OSErr CompressJPEGWithIPPEx(const KVIMG* image, KVImageDescriptionHandle description, int mode,
                                          void** outData, unsigned* outSize);
/// @}

/// @name JPEG reading
///
/// The pixels are those of OpenCV's decoder: an EXIF orientation turns the image, four components become colour, and a
/// truncated stream gives the rows that it holds, the last of them repeated to the bottom. The following streams are
/// rejected: streams of another format (which do not begin with FF D8 FF), streams of more than 2^31 - 1 bytes, images
/// of more than 2^30 pixels or with a side above 65500, streams without a frame or scan header or with more than 100
/// scans, streams whose scans are too much work, and streams of which no row can be decoded. Rows of the new record are
/// packed (width or 3 x width bytes); it is released with `DisposeKVIMG`.
///
/// The work is the number of samples that all scans code (width times height, in whole blocks, for each component of
/// each scan) plus 2 for each byte of the stream. At most 2^33 are read; if the coding is arithmetic, 2^29. Within these
/// limits a stream still takes up to a minute of one processor. `OPCV_dlib_read.h` has functions with tighter limits.
/// @{

/// Reads a JPEG stream into a new record: depth 8 if it is grey, otherwise 24 in the order red, green, blue.
///
/// @param jpegData        The stream.
/// @param jpegSize        Its length in bytes.
/// @param descriptionPtr  Pointer to a description handle; receives the width, height and depth of the page.
/// @param outImage        Receives the record.
/// @retval noErr       `*outImage` holds the page.
/// @retval paramErr    A pointer is null, including the handle and the record that it leads to; or the stream is empty
///                     or cannot be decoded. Nothing is written.
/// @retval memFullErr  Out of memory, or the pixels need more than 2^31 - 1 bytes. The description may already hold the
///                     size and depth of the page. `*outImage` is null if allocating the record failed and unchanged
///                     otherwise.
OPCV_DLIB_API OSErr ReadJPEG(const void* jpegData, unsigned jpegSize, KVImageDescriptionHandle* descriptionPtr,
                             KVIMG** outImage);

/// `ReadJPEG` under a second name.
///
/// @copydetails ReadJPEG
OPCV_DLIB_API OSErr ReadJPEGWithIPP(const void* jpegData, unsigned jpegSize, KVImageDescriptionHandle* descriptionPtr,
                                    KVIMG** outImage);

/// Reads a JPEG stream of known width and height, always into 24 bits (grey is repeated in all three bytes).
///
/// @param jpegData     The stream.
/// @param jpegSize     Its length in bytes.
/// @param description  Description handle with the expected width and height; one level of indirection less than in
///                     `ReadJPEG`. Its depth becomes 24 on success; on failure the description is unchanged.
/// @param outImage     Receives the record.
/// @retval noErr       `*outImage` holds the image.
/// @retval paramErr    A pointer is null, including the record that the handle leads to; or the stream is empty, cannot
///                     be decoded or has another size. Nothing is written.
/// @retval memFullErr  Out of memory, or the pixels need more than 2^31 - 1 bytes. `*outImage` is null if allocating
///                     the record failed and unchanged otherwise.
OPCV_DLIB_API OSErr ReadSplitJPEG(const unsigned char* jpegData, unsigned jpegSize,
                                  KVImageDescriptionHandle description, KVIMG** outImage);
/// @}

/// @name Bit packing
///
/// Conversion between 1-bit images, whose region may start at any bit of a byte, and grey images. A set bit is 255 in
/// grey and a clear bit is 0; a grey pixel above the threshold becomes a set bit.
/// @{

/// Expands a 1-bit region to grey: 0 becomes 0 and 1 becomes 255.
///
/// @param pSrc          Byte that holds the region's first pixel.
/// @param srcStep       Bytes from one source row to the next.
/// @param srcBitOffset  Bits of that byte before the first pixel, 0 to 7.
/// @param pDst          First pixel of the destination; must not overlap the source.
/// @param dstStep       Bytes from one destination row to the next.
/// @param roiSize       Size of the region in pixels.
/// @retval ippStsNoErr      The region is expanded; no byte outside it is read or written.
/// @retval ippStsBadArgErr  Null pointer, offset outside 0..7, empty region, offset and width longer than the source
///                          row, or width longer than `dstStep`; nothing is written.
OPCV_DLIB_API IppStatus IPPShare_ippiConvert_1u8u_C1R(const unsigned char* pSrc, int srcStep, int srcBitOffset,
                                                      unsigned char* pDst, int dstStep, IppiSize roiSize);

/// Reduces a grey region to 1 bit by a fixed threshold: a pixel above it becomes 1, any other 0. There is no dithering.
///
/// The other bits of the first and last byte of each row are kept, except at threshold 255, which clears them.
///
/// @param pSrc          First pixel of the source.
/// @param srcStep       Bytes from one source row to the next.
/// @param pDst          Byte that receives the region's first pixel; must not overlap the source.
/// @param dstStep       Bytes from one destination row to the next.
/// @param dstBitOffset  Bits of that byte before the first pixel, 0 to 7.
/// @param roiSize       Size of the region in pixels.
/// @param noise         Ignored.
/// @param seed          Ignored.
/// @param ditherType    Ignored.
/// @param threshold     Largest grey value that becomes 0.
/// @retval ippStsNoErr      The region is reduced; no byte outside it is read or written.
/// @retval ippStsBadArgErr  Null pointer, offset outside 0..7, empty region, width longer than `srcStep`, or offset and
///                          width longer than the destination row; nothing is written.
OPCV_DLIB_API IppStatus IPPShare_ippiReduceBits_8u1u_C1R(const unsigned char* pSrc, int srcStep, unsigned char* pDst,
                                                         int dstStep, int dstBitOffset, IppiSize roiSize, int noise,
                                                         int seed, int ditherType, unsigned char threshold);
/// @}

/// @name Depth conversion
///
/// Steps of 16-bit images must be multiples of 2: with an odd step, row n starts n bytes too early.
/// @{

/// Widens 8-bit pixels to 16-bit signed; the values 0 to 255 are unchanged.
///
/// @param pSrc     First pixel of the source region.
/// @param srcStep  Bytes from one source row to the next, at least `roiSize.width`.
/// @param pDst     First pixel of the destination region; must not overlap the source.
/// @param dstStep  Bytes from one destination row to the next, at least 2 x `roiSize.width`.
/// @param roiSize  Size of the region in pixels, both sides above 0.
/// @retval ippStsNoErr      The region is converted; bytes outside it are unchanged.
/// @retval ippStsBadArgErr  Null pointer, empty region, or a row longer than its step; nothing is written.
/// @retval ippStsNoMemErr   Out of memory; nothing is written.
OPCV_DLIB_API IppStatus IPPShare_ippiConvert_8u16s_C1R(const unsigned char* pSrc, int srcStep, short* pDst, int dstStep,
                                                       IppiSize roiSize);

/// Narrows 16-bit signed pixels to 8 bits with saturation: values below 0 become 0, values above 255 become 255.
///
/// @param pSrc     First pixel of the source region.
/// @param srcStep  Bytes from one source row to the next, at least 2 x `roiSize.width`.
/// @param pDst     First pixel of the destination region; must not overlap the source.
/// @param dstStep  Bytes from one destination row to the next, at least `roiSize.width`.
/// @param roiSize  Size of the region in pixels, both sides above 0.
/// @retval ippStsNoErr      The region is converted; bytes outside it are unchanged.
/// @retval ippStsBadArgErr  Null pointer, empty region, or a row longer than its step; nothing is written.
/// @retval ippStsNoMemErr   Out of memory; nothing is written.
OPCV_DLIB_API IppStatus IPPShare_ippiConvert_16s8u_C1R(const short* pSrc, int srcStep, unsigned char* pDst, int dstStep,
                                                       IppiSize roiSize);
/// @}

/// @name Thresholds and fill
/// @{

/// Replaces, in place, each pixel that is less than **or equal to** the threshold.
///
/// @param pSrcDst     First pixel of the region.
/// @param srcDstStep  Bytes from one row to the next, at least `roiSize.width`.
/// @param roiSize     Size of the region in pixels, both sides above 0.
/// @param threshold   Largest value that is replaced.
/// @param value       Value that replaces it.
/// @retval ippStsNoErr      The thresholds are applied; bytes outside the region are unchanged.
/// @retval ippStsBadArgErr  Null pointer, empty region, or a row longer than the step, as with every negative step;
///                          nothing is written.
OPCV_DLIB_API IppStatus IPPShare_ippiThreshold_LTVal_8u_C1IR(unsigned char* pSrcDst, int srcDstStep, IppiSize roiSize,
                                                             unsigned char threshold, unsigned char value);

/// `IPPShare_ippiThreshold_LTVal_8u_C1IR` for 16-bit signed pixels, with one difference: the step may be negative, in
/// which case the rows go upwards from the first one.
///
/// @param pSrcDst     First pixel of the region.
/// @param srcDstStep  Bytes from one row to the next: at least 2 x `roiSize.width`, or negative.
/// @param roiSize     Size of the region in pixels, both sides above 0.
/// @param threshold   Largest value that is replaced.
/// @param value       Value that replaces it.
/// @retval ippStsNoErr      The thresholds are applied; bytes outside the region are unchanged.
/// @retval ippStsBadArgErr  Null pointer, empty region, or a row longer than a step that is not negative; nothing is
///                          written.
OPCV_DLIB_API IppStatus IPPShare_ippiThreshold_LTVal_16s_C1IR(short* pSrcDst, int srcDstStep, IppiSize roiSize,
                                                              short threshold, short value);

/// Sets every pixel of an 8-bit region to one value.
///
/// @param value    The value.
/// @param pDst     First pixel of the region.
/// @param dstStep  Bytes from one row to the next, at least `roiSize.width`.
/// @param roiSize  Size of the region in pixels, both sides above 0.
/// @retval ippStsNoErr      The region is filled; bytes outside it are unchanged.
/// @retval ippStsBadArgErr  Null pointer, empty region, or a row longer than the step; nothing is written.
OPCV_DLIB_API IppStatus IPPShare_ippiSet_8u_C1R(unsigned char value, unsigned char* pDst, int dstStep,
                                                IppiSize roiSize);
/// @}

/// @name Colour space
///
/// Full-range analog YUV in OpenCV's fixed point (14 bits), with U and V centred on 128:
/// Y = 0.299 R + 0.587 G + 0.114 B, U = 0.492 (B - Y) + 128, V = 0.877 (R - Y) + 128, and the inverse. Results are
/// saturated to 8 bits.
/// @{

/// Converts packed RGB to packed YUV.
///
/// @param pSrc     First pixel of the source region.
/// @param srcStep  Bytes from one source row to the next; a multiple of 3.
/// @param pDst     First pixel of the destination region. It may be the source itself, with the same step; otherwise
///                 the two must not overlap.
/// @param dstStep  Bytes from one destination row to the next; a multiple of 3.
/// @param roiSize  Size of the region in pixels, both sides above 0.
/// @retval ippStsNoErr      The region is converted; bytes outside it are unchanged.
/// @retval ippStsBadArgErr  Null pointer, empty region, or a row longer than its step; nothing is written.
/// @retval ippStsNoMemErr   Out of memory; nothing is written.
OPCV_DLIB_API IppStatus IPPShare_ippiRGBToYUV_8u_C3R(const unsigned char* pSrc, int srcStep, unsigned char* pDst,
                                                     int dstStep, IppiSize roiSize);

/// Converts packed YUV to packed RGB.
///
/// @copydetails IPPShare_ippiRGBToYUV_8u_C3R
OPCV_DLIB_API IppStatus IPPShare_ippiYUVToRGB_8u_C3R(const unsigned char* pSrc, int srcStep, unsigned char* pDst,
                                                     int dstStep, IppiSize roiSize);

/// Converts packed RGB to planes of Y, U and V. The planes may overlap the source, but not each other.
///
/// @param pSrc     First pixel of the source region.
/// @param srcStep  Bytes from one source row to the next; a multiple of 3.
/// @param pDst     First pixels of the three destination planes.
/// @param dstStep  Bytes from one row of a plane to the next, at least `roiSize.width`.
/// @param roiSize  Size of the region in pixels.
/// @retval ippStsNoErr      The region is converted; bytes outside it are unchanged.
/// @retval ippStsBadArgErr  Null pointer, or a row longer than its step; nothing is written.
/// @retval ippStsNoMemErr   The region is empty, or it needs 2^31 bytes or more at 3 bytes per pixel with rows of a
///                          multiple of 64 bytes; this is checked before the other arguments. Or out of memory. Nothing
///                          is written.
OPCV_DLIB_API IppStatus IPPMini_ippiRGBToYUV_8u_C3P3R(const unsigned char* pSrc, int srcStep,
                                                      unsigned char* const pDst[3], int dstStep, IppiSize roiSize);

/// Converts planes of Y, U and V to packed RGB. The destination may overlap the planes.
///
/// @param pSrc     First pixels of the three source planes.
/// @param srcStep  Bytes from one row of a plane to the next, at least `roiSize.width`.
/// @param pDst     First pixel of the destination region.
/// @param dstStep  Bytes from one destination row to the next; a multiple of 3.
/// @param roiSize  Size of the region in pixels.
/// @retval ippStsNoErr      The region is converted; bytes outside it are unchanged.
/// @retval ippStsBadArgErr  Null pointer, or a row longer than its step; nothing is written.
/// @retval ippStsNoMemErr   The region is empty, or it needs 2^31 bytes or more at 3 bytes per pixel with rows of a
///                          multiple of 64 bytes; this is checked before the other arguments. Or out of memory. Nothing
///                          is written.
OPCV_DLIB_API IppStatus IPPMini_ippiYUVToRGB_8u_P3C3R(const unsigned char* const pSrc[3], int srcStep,
                                                      unsigned char* pDst, int dstStep, IppiSize roiSize);
/// @}

/// @name Plane layout
/// @{

/// Copies the three channels of a packed image into planes.
///
/// @param pSrc     First pixel of the source region.
/// @param srcStep  Bytes from one source row to the next; a multiple of 3.
/// @param pDst     First pixels of the three destination planes, which must overlap neither the source nor each other.
/// @param dstStep  Bytes from one row of a plane to the next, at least `roiSize.width`.
/// @param roiSize  Size of the region in pixels, both sides above 0.
/// @retval ippStsNoErr      The channels are copied; bytes outside the region are unchanged.
/// @retval ippStsBadArgErr  Null pointer, including that of a single plane, empty region, or a row longer than its
///                          step; nothing is written to any plane.
/// @retval ippStsNoMemErr   Out of memory; nothing is written.
OPCV_DLIB_API IppStatus IPPMini_ippiCopy_8u_C3P3R(const unsigned char* pSrc, int srcStep, unsigned char* const pDst[3],
                                                  int dstStep, IppiSize roiSize);

/// Copies three planes into the channels of a packed image.
///
/// @param pSrc     First pixels of the three source planes.
/// @param srcStep  Bytes from one row of a plane to the next, at least `roiSize.width`.
/// @param pDst     First pixel of the destination region, which must not overlap the planes.
/// @param dstStep  Bytes from one destination row to the next; a multiple of 3.
/// @param roiSize  Size of the region in pixels, both sides above 0.
/// @retval ippStsNoErr      The planes are copied; bytes outside the region are unchanged.
/// @retval ippStsBadArgErr  Null pointer, including that of a single plane, empty region, or a row longer than its
///                          step; nothing is written.
/// @retval ippStsNoMemErr   Out of memory; nothing is written.
OPCV_DLIB_API IppStatus IPPMini_ippiCopy_8u_P3C3R(const unsigned char* const pSrc[3], int srcStep, unsigned char* pDst,
                                                  int dstStep, IppiSize roiSize);
/// @}

/// @name Convolution and box filter
///
/// A convolution computes, for each channel, the sum over the cells of the kernel (column i, row j) of
/// kernel[j][i] x src(x + anchor.x - i, y + anchor.y - j), divided by the divisor. Sums are 32-bit floats; the result
/// is rounded to the nearest integer, halves to even, and saturated. Kernels are dense arrays, row after row. The
/// anchor is the cell that lies on the pixel; it may lie outside the kernel. Steps are multiples of the pixel size.
///
/// With h = side / 2 rounded down, the source is read from column anchor.x - 2 h to roi.width - 1 + anchor.x and from
/// row anchor.y - 2 h to roi.height - 1 + anchor.y of the region (one more than needed if the side is even). With
/// kernels of 50 cells or more, up to h further pixels to the right may be read if the rows are long enough; they do
/// not affect the result. Source and destination may overlap.
/// @{

/// Convolution of one 8-bit channel with an integer kernel.
///
/// @param pSrc        First pixel of the source region.
/// @param srcStep     Bytes from one source row to the next.
/// @param pDst        First pixel of the destination region.
/// @param dstStep     Bytes from one destination row to the next.
/// @param dstRoiSize  Size of the region in pixels.
/// @param pKernel     kernelSize.width x kernelSize.height cells, the same for every channel.
/// @param kernelSize  Sides of the kernel, odd or even.
/// @param anchor      Cell that lies on the pixel.
/// @param divisor     Not 0; may be negative.
/// @retval ippStsNoErr      The region is written; bytes outside it are unchanged.
/// @retval ippStsBadArgErr  Null pointer, a side of the region or of the kernel is 0 or less, divisor 0, a source step
///                          shorter than the columns read, or a destination step shorter than a row of the region;
///                          nothing is written.
/// @retval ippStsNoMemErr   Out of memory; nothing is written.
OPCV_DLIB_API IppStatus IPPShare_ippiFilter_8u_C1R(const unsigned char* pSrc, int srcStep, unsigned char* pDst,
                                                   int dstStep, IppiSize dstRoiSize, const int* pKernel,
                                                   IppiSize kernelSize, IppiPoint anchor, int divisor);

/// Convolution of three interleaved 8-bit channels with an integer kernel.
///
/// @copydetails IPPShare_ippiFilter_8u_C1R
OPCV_DLIB_API IppStatus IPPShare_ippiFilter_8u_C3R(const unsigned char* pSrc, int srcStep, unsigned char* pDst,
                                                   int dstStep, IppiSize dstRoiSize, const int* pKernel,
                                                   IppiSize kernelSize, IppiPoint anchor, int divisor);

/// Convolution of one 16-bit signed channel with an integer kernel.
///
/// @copydetails IPPShare_ippiFilter_8u_C1R
OPCV_DLIB_API IppStatus IPPShare_ippiFilter_16s_C1R(const short* pSrc, int srcStep, short* pDst, int dstStep,
                                                    IppiSize dstRoiSize, const int* pKernel, IppiSize kernelSize,
                                                    IppiPoint anchor, int divisor);

/// Convolution of three interleaved 8-bit channels with a float kernel, without a divisor.
///
/// @param pSrc        First pixel of the source region.
/// @param srcStep     Bytes from one source row to the next; a multiple of 3.
/// @param pDst        First pixel of the destination region.
/// @param dstStep     Bytes from one destination row to the next; a multiple of 3.
/// @param dstRoiSize  Size of the region in pixels.
/// @param pKernel     kernelSize.width x kernelSize.height cells, the same for every channel.
/// @param kernelSize  Sides of the kernel, odd or even.
/// @param anchor      Cell that lies on the pixel.
/// @retval ippStsNoErr      The region is written; bytes outside it are unchanged.
/// @retval ippStsBadArgErr  Null pointer, a side of the region or of the kernel is 0 or less, a source step shorter
///                          than the columns read, or a destination step shorter than a row of the region; nothing is
///                          written.
/// @retval ippStsNoMemErr   Out of memory; nothing is written.
OPCV_DLIB_API IppStatus IPPMini_ippiFilter32f_8u_C3R(const unsigned char* pSrc, int srcStep, unsigned char* pDst,
                                                     int dstStep, IppiSize dstRoiSize, const float* pKernel,
                                                     IppiSize kernelSize, IppiPoint anchor);

/// Box filter in place on three interleaved 8-bit channels: each pixel becomes the rounded mean of the pixels under the
/// mask, whose top left pixel is (x - anchor.x, y - anchor.y).
///
/// The mean is the one that OpenCV computes. For masks of up to 256 pixels it multiplies by a 23-bit reciprocal. If the
/// number of pixels is a power of two, this rounds up from one sum earlier (4 pixels: a sum of 1 gives 1; 2 pixels:
/// even a sum of 0 gives 1).
///
/// With h = mask width / 2 rounded down, the image is read from column -anchor.x to roi.width - 1 - anchor.x + 2 h, and
/// likewise in rows. All means are computed from the pixels as they were before the call.
///
/// @param srcDst      First pixel of the region.
/// @param srcDstStep  Bytes from one row to the next; a multiple of 3.
/// @param roi         Size of the region in pixels.
/// @param maskSize    Sides of the mask, at least 1, odd or even.
/// @param anchor      Cell of the mask that lies on the pixel; it may lie outside the mask.
/// @retval ippStsNoErr      The region is filtered; bytes outside it are unchanged.
/// @retval ippStsBadArgErr  Null pointer, a side of the mask or of the region is 0 or less, or the step is shorter than
///                          the columns read; nothing is written.
/// @retval ippStsNoMemErr   Out of memory; nothing is written.
OPCV_DLIB_API IppStatus IPPMini_ippiFilterBox_8u_C3IR(unsigned char* srcDst, int srcDstStep, IppiSize roi,
                                                      IppiSize maskSize, IppiPoint anchor);

/// Convolution of a whole packed 24-bit image with one square float kernel for all channels. The outer `radius` pixels
/// at each edge of `dst` are not written.
///
/// @param src     The image: rows of 3 x width bytes.
/// @param dst     Receives the result, laid out like `src`; may be `src`.
/// @param size    Size of the image in pixels. Nothing is done if a side is not above 2 x radius.
/// @param radius  The sides of the kernel are 2 x radius + 1. Nothing is done if it is below 0.
/// @param kernel  The cells, row after row. Nothing is done if this or another pointer is null.
OPCV_DLIB_API void Convolution24MonoFilter(const unsigned char* src, unsigned char* dst, IppiSize size, int radius,
                                           const float* kernel);

/// Convolution of a whole packed 24-bit image with one square float kernel per channel.
///
/// @param src      The image: rows of 3 x width bytes.
/// @param dst      Receives the result, laid out like `src`; may be `src`. The outer `radius` pixels at each edge are
///                 not filtered: they hold the pixels of the source, but callers should not rely on that.
/// @param size     Size of the image in pixels.
/// @param radius   The sides of the kernels are 2 x radius + 1.
/// @param kernels  Three kernels, one after the other, in the reverse order of the channels: the first applies to the
///                 last byte of a pixel, the third to the first byte.
/// @return true if the image is filtered; false, with nothing written, if a pointer is null, the radius is below 0, a
///         side of the image is not above 2 x radius, the image (with rows of a multiple of 64 bytes) needs more than
///         2^31 - 1 bytes, or memory is exhausted.
OPCV_DLIB_API bool Convolution24(const unsigned char* src, unsigned char* dst, IppiSize size, int radius,
                                 const float* kernels);
/// @}

/// @name Noise reduction
/// @{

/// Bilateral filter of one 8-bit channel: each pixel becomes the weighted mean of the pixels within half the side of
/// the kernel. A pixel with a grey difference d at a distance of r pixels has the weight
/// exp(-d^2 / 2 colorSquareSigma) exp(-r^2 / 2 spaceSquareSigma).
///
/// A kernel with sides of 1 filters over 3 x 3 pixels. The pixels left of, above and below the region are then mirrored
/// from it; those to the right are read if the rows are long enough and mirrored otherwise.
///
/// @param src               First pixel of the source region; the image extends kernelSize.width / 2 pixels beyond
///                          every edge.
/// @param srcStep           Bytes from one source row to the next.
/// @param dst               First pixel of the destination region; may overlap the source.
/// @param dstStep           Bytes from one destination row to the next.
/// @param roi               Size of the region in pixels.
/// @param kernelSize        Sides of the neighbourhood: equal and odd.
/// @param colorSquareSigma  Square of sigma in grey levels; 0 counts as 1.
/// @param spaceSquareSigma  Square of sigma in pixels; 0 counts as 1.
/// @retval ippStsNoErr      The region is filtered; bytes outside it are unchanged.
/// @retval ippStsBadArgErr  Null pointer, sides of the kernel unequal, even or below 1, a side of the region 0 or less,
///                          or a step shorter than the columns read or written; nothing is written.
/// @retval ippStsNoMemErr   Out of memory; nothing is written.
OPCV_DLIB_API IppStatus OPCV_ippiFilterBilateral_8u_C1R(const unsigned char* src, int srcStep, unsigned char* dst,
                                                        int dstStep, IppiSize roi, IppiSize kernelSize,
                                                        float colorSquareSigma, float spaceSquareSigma);

/// Noise reduction of a whole packed grey image: the bilateral filter with both squared sigmas 96 x strength, or 1 for
/// strength 0. The outermost pixels of `dst` (2 at each edge in mode 2, otherwise 1) are not written.
///
/// @param src       The image: rows of `size.width` bytes.
/// @param dst       Receives the result, laid out like `src`; may be `src`. Nothing is done if a pointer is null.
/// @param size      Size of the image in pixels. Nothing is done if a side has no pixels besides the outermost ones.
/// @param mode      2: 5 x 5 pixels; any other value: 3 x 3.
/// @param strength  0 to 10; not checked.
OPCV_DLIB_API void DeosNr(const unsigned char* src, unsigned char* dst, IppiSize size, int mode, int strength);

/// Noise reduction of a whole packed 24-bit image: `DeosNr` on each channel.
///
/// @param src       The image: rows of 3 x width bytes.
/// @param dst       Receives the result, laid out like `src`; may be `src`. The outermost pixels are not filtered: they
///                  hold the pixels of the source, but callers should not rely on that.
/// @param width     Pixels per row, a multiple of 4.
/// @param height    Rows.
/// @param mode      0 and 1: 3 x 3 pixels; 2: 5 x 5.
/// @param strength  0 to 10.
/// @retval 0  The image is filtered. Also returned, with nothing written, if a pointer is null, a side is 0 or less,
///            the image (with rows of a multiple of 64 bytes) needs more than 2^31 - 1 bytes, or memory is exhausted.
/// @retval 1  `mode` is not 0 to 2; nothing is written.
/// @retval 2  `strength` is not 0 to 10; nothing is written.
/// @retval 3  `width` is not a multiple of 4; nothing is written.
OPCV_DLIB_API int DeosNrRGB(const unsigned char* src, unsigned char* dst, int width, int height, int mode,
                            int strength);
/// @}

/// @name Matrix product and cosine transform
/// @{

/// Single-precision matrix product: C = alpha op(A) op(B) + beta C, where op(A) has M x K elements, op(B) K x N and C
/// M x N.
///
/// Leading dimensions are in elements. Nothing is done if a matrix pointer is null, a size is 0 or less, a leading
/// dimension is shorter than a stored row (a stored column if column-major), or a leading dimension is longer than
/// 2^31 - 1 bytes.
///
/// @param order   101: row-major; any other value: column-major.
/// @param transA  111: A as stored; any other value: its transpose.
/// @param transB  111: B as stored; any other value: its transpose.
/// @param M       Rows of op(A) and C.
/// @param N       Columns of op(B) and C.
/// @param K       Columns of op(A), rows of op(B).
/// @param alpha   Factor of the product.
/// @param A       First matrix.
/// @param lda     Its leading dimension.
/// @param B       Second matrix.
/// @param ldb     Its leading dimension.
/// @param beta    Factor of the previous contents of C; if it is 0, C is not read.
/// @param C       Receives the result; elements outside the M x N are unchanged.
/// @param ldc     Its leading dimension.
OPCV_DLIB_API void OPCV_cblas_sgemm(int order, int transA, int transB, int M, int N, int K, float alpha, const float* A,
                                    int lda, const float* B, int ldb, float beta, float* C, int ldc);

/// Replaces a table of n x n values by its orthonormal discrete cosine transform (type II forward). This is one
/// transform of length n x n over the rows, one after the other, not a two-dimensional transform. For odd n, the sum is
/// computed by the definition, in n^4 steps.
///
/// @param direction  0 and above: forward; below 0: inverse.
/// @param rows       The n rows of n values each. If it or a row is null, nothing is written.
/// @param n          Side of the table; nothing is done if it is 0 or less or above 46340.
OPCV_DLIB_API void ddct(int direction, double** rows, int n);
/// @}

#ifdef __cplusplus
}    // extern "C"

#include <vector>

namespace cv {
template <typename T>
class Scalar_;
typedef Scalar_<double> Scalar;
}    // namespace cv

/// @name Square median, any pixel type
/// @{

/// Median of a region under a square mask, for any pixel type that OpenCV's median filter accepts. Each channel is
/// filtered separately.
///
/// @param pSrc      First pixel of the source region. The image must contain every window, as described for
///                  `IPPShare_ippiFilterMedian_8u_C1R`.
/// @param srcStep   Bytes from one source row to the next; a multiple of the pixel size.
/// @param type      OpenCV type code: 0 for one 8-bit channel, 16 for three, ...
/// @param pDst      First pixel of the destination region; may overlap the source.
/// @param dstStep   Bytes from one destination row to the next; a multiple of the pixel size.
/// @param roiSize   Size of the region in pixels.
/// @param maskSize  Size of the mask: odd, width equal to height.
/// @param anchor    Cell of the mask that lies on the pixel, counted from 0.
/// @retval ippStsNoErr      The region is filtered; no byte outside it is written.
/// @retval ippStsBadArgErr  Null pointer, mask not square or not odd, empty region, or rows too short for the region
///                          (in the source: for the region and m - 1 more pixels); nothing is written.
/// @retval ippStsNoMemErr   Out of memory; nothing is written.
/// @throws cv::Exception if OpenCV has no median for the type and mask; nothing is written.
OPCV_DLIB_API IppStatus ippiFilterMedian(const void* pSrc, int srcStep, int type, void* pDst, int dstStep,
                                         const IppiSize& roiSize, const IppiSize& maskSize, const IppiPoint& anchor);
/// @}

/// @name Medians without checks
///
/// The medians with a fixed window, without checks of their arguments. The rows of the destination must not overlap.
/// @{

/// `IPPShare_ippiFilterMedianCross_8u_C1R` with mask 33, without checks.
///
/// @param pSrc     First pixel of the source region; the image extends 1 pixel beyond every edge, or 2 pixels in
///                 `FilterMedianCross5x5_8u_C1R`.
/// @param srcStep  Bytes from one source row to the next.
/// @param pDst     First pixel of the destination region; must not overlap the source.
/// @param dstStep  Bytes from one destination row to the next.
/// @param width    Pixels per row, at least 1.
/// @param height   Rows; nothing is done if it is 0 or less.
OPCV_DLIB_API void FilterMedianCross3x3_8u_C1R(const unsigned char* pSrc, int srcStep, unsigned char* pDst, int dstStep,
                                               int width, int height);

/// `IPPShare_ippiFilterMedianCross_8u_C1R` with mask 55, without checks.
///
/// @copydetails FilterMedianCross3x3_8u_C1R
OPCV_DLIB_API void FilterMedianCross5x5_8u_C1R(const unsigned char* pSrc, int srcStep, unsigned char* pDst, int dstStep,
                                               int width, int height);

/// `IPPShare_ippiFilterMedianWeightedCenter3x3_8u_C1R` with weight 3, without checks.
///
/// @copydetails FilterMedianCross3x3_8u_C1R
OPCV_DLIB_API void FilterMedianWeightedCenter3x3_3_8u_C1R(const unsigned char* pSrc, int srcStep, unsigned char* pDst,
                                                          int dstStep, int width, int height);

/// `IPPShare_ippiFilterMedianWeightedCenter3x3_8u_C1R` with weight 5, without checks.
///
/// @copydetails FilterMedianCross3x3_8u_C1R
OPCV_DLIB_API void FilterMedianWeightedCenter3x3_5_8u_C1R(const unsigned char* pSrc, int srcStep, unsigned char* pDst,
                                                          int dstStep, int width, int height);

/// `IPPShare_ippiFilterMedianColor_8u_C3R` with mask 33, without checks.
///
/// @copydetails FilterMedianCross3x3_8u_C1R
OPCV_DLIB_API void FilterMedianColor3x3_8u_C3R(const unsigned char* pSrc, int srcStep, unsigned char* pDst, int dstStep,
                                               int width, int height);
/// @}

/// @name Rotation of regions, any pixel type
/// @{

/// Turns a region about its top-left pixel and moves the result by whole pixels. Uncovered pixels get the border value.
///
/// If the destination rectangle, moved back by the shift, extends beyond the region, the region is enlarged first: with
/// the pixels of the source image above it, to its left and, as far as the step reaches, to its right; with the border
/// value where there is no image. Bytes that pad a row count as image.
///
/// @param src            First row of the source image.
/// @param srcSize        Size of the source image.
/// @param srcStep        Bytes from one source row to the next.
/// @param srcRoi         Part of the source that is turned.
/// @param dst            First row of the destination image; must not overlap the source.
/// @param dstStep        Bytes from one destination row to the next.
/// @param dstRoi         Part of the destination that is filled.
/// @param angle          Degrees, counter-clockwise on screen.
/// @param xShift         Shift to the right after the turn; rounded to whole pixels, halves away from zero.
/// @param yShift         Shift down after the turn, rounded in the same way.
/// @param interpolation  Ignored; always bilinear.
/// @param type           OpenCV type code: 0 for one 8-bit channel, 16 for three, 24 for four.
/// @param borderValue    Value of pixels from outside the source.
/// @retval ippStsNoErr      The destination rectangle is filled.
/// @retval ippStsBadArgErr  The region is larger than the source image, a pointer is null, a rectangle is empty or does
///                          not fit in its rows, or a shift is outside the range of int; nothing is written.
/// @retval ippStsNoMemErr   Out of memory; nothing is written.
/// @throws cv::Exception if a side of the region, enlarged as described, is 32767 pixels or longer; nothing is written.
OPCV_DLIB_API IppStatus ippiRotate(const unsigned char* src, const IppiSize& srcSize, int srcStep,
                                   const IppiRect& srcRoi, unsigned char* dst, int dstStep, const IppiRect& dstRoi,
                                   double angle, float xShift, float yShift, int interpolation, int type,
                                   const cv::Scalar& borderValue);

/// Turns a region about a point. Uncovered pixels get the border value; everything outside the region is uncovered.
///
/// @param src            First row of the source image.
/// @param srcSize        Size of the source image.
/// @param srcStep        Bytes from one source row to the next.
/// @param srcRoi         Part of the source that is turned.
/// @param dst            First row of the destination image; must not overlap the source.
/// @param dstStep        Bytes from one destination row to the next.
/// @param dstRoi         Part of the destination that is filled. If it is larger than the source region, the rest of it
///                       is unchanged.
/// @param angle          Degrees, counter-clockwise on screen.
/// @param xCenter        Column of the centre, in pixels of the source region; converted to float.
/// @param yCenter        Row of the centre; converted to float.
/// @param interpolation  Ignored; always bilinear.
/// @param type           OpenCV type code: 0 for one 8-bit channel, 16 for three, 24 for four.
/// @param borderValue    Value of pixels from outside the source region.
/// @retval ippStsNoErr      The destination rectangle is filled.
/// @retval ippStsBadArgErr  The region is larger than the source image, a pointer is null, or a rectangle is empty or
///                          does not fit in its rows; nothing is written.
/// @retval ippStsNoMemErr   Out of memory; nothing is written.
/// @throws cv::Exception if a side of the source region is 32767 pixels or longer; nothing is written.
OPCV_DLIB_API IppStatus ippiRotateCenter(const unsigned char* src, const IppiSize& srcSize, int srcStep,
                                         const IppiRect& srcRoi, unsigned char* dst, int dstStep,
                                         const IppiRect& dstRoi, double angle, double xCenter, double yCenter,
                                         int interpolation, int type, const cv::Scalar& borderValue);
/// @}

/// @name JPEG compression of buffers
///
/// Each function appends a complete stream to `out`. The only checks are those of the encoder.
/// @{

/// Compresses a grey raster.
///
/// @param pixels           First row: one byte per pixel, or three in `CompressRGB2YCbCr444`.
/// @param rowBytes         Bytes from one row to the next.
/// @param width            Pixels per row, 1 to 65500.
/// @param height           Rows, 1 to 65500.
/// @param out              The stream is appended to its contents.
/// @param quality          1 to 100.
/// @param yResolution      Vertical dots per inch; the low 16 bits are stored. Note that it precedes the horizontal
///                         one.
/// @param xResolution      Horizontal dots per inch; the low 16 bits are stored.
/// @param useCustomTables  Use the library's own quantisation tables, scaled by the quality, instead of those of
///                         libjpeg.
/// @return true if a complete stream was appended; false if the encoder failed, after which part of a stream may have
///         been appended.
/// @throws std::bad_alloc if allocating the work buffer of the encoder fails; nothing is appended.
OPCV_DLIB_API bool CompressGray2Gray444(const unsigned char* pixels, int rowBytes, int width, int height,
                                        std::vector<unsigned char>& out, int quality, int yResolution, int xResolution,
                                        bool useCustomTables);

/// Compresses a red, green, blue raster without subsampling.
///
/// @copydetails CompressGray2Gray444
OPCV_DLIB_API bool CompressRGB2YCbCr444(const unsigned char* pixels, int rowBytes, int width, int height,
                                        std::vector<unsigned char>& out, int quality, int yResolution, int xResolution,
                                        bool useCustomTables);

/// Compresses a red, green, blue raster with chroma subsampled 2 x 2 and the quantisation tables of libjpeg.
///
/// @param pixels       First row: three bytes per pixel.
/// @param rowBytes     Bytes from one row to the next.
/// @param width        Pixels per row, 1 to 65500.
/// @param height       Rows, 1 to 65500.
/// @param out          The stream is appended to its contents.
/// @param quality      1 to 100.
/// @param yResolution  Vertical dots per inch; the low 16 bits are stored. Note that it precedes the horizontal one.
/// @param xResolution  Horizontal dots per inch; the low 16 bits are stored.
/// @return true if a complete stream was appended; false if the encoder failed, after which part of a stream may have
///         been appended.
/// @throws std::bad_alloc if allocating the work buffer of the encoder fails; nothing is appended.
OPCV_DLIB_API bool CompressRGB2YCbCr411(const unsigned char* pixels, int rowBytes, int width, int height,
                                        std::vector<unsigned char>& out, int quality, int yResolution, int xResolution);
/// @}

/// @name Bit packing without checks
/// @{

/// `IPPShare_ippiConvert_1u8u_C1R` without checks.
///
/// @param src        Byte that holds the region's first pixel.
/// @param srcStep    Bytes from one source row to the next.
/// @param bitOffset  Bits of that byte before the first pixel, 0 to 7.
/// @param dst        First pixel of the destination.
/// @param dstStep    Bytes from one destination row to the next.
/// @param width      Pixels per row, at least 1.
/// @param height     Rows; nothing is done if it is 0 or less.
OPCV_DLIB_API void Convert_1u8u_C1R(const unsigned char* src, int srcStep, int bitOffset, unsigned char* dst,
                                    int dstStep, int width, int height);

/// `IPPShare_ippiReduceBits_8u1u_C1R` without checks.
///
/// @param src        First pixel of the source.
/// @param srcStep    Bytes from one source row to the next.
/// @param dst        Byte that receives the region's first pixel.
/// @param dstStep    Bytes from one destination row to the next.
/// @param bitOffset  Bits of that byte before the first pixel, 0 to 7.
/// @param width      Pixels per row, at least 1.
/// @param height     Rows; nothing is done if it is 0 or less.
/// @param threshold  Largest grey value that becomes 0.
OPCV_DLIB_API void Convert_8u1u_C1R(const unsigned char* src, int srcStep, unsigned char* dst, int dstStep,
                                    int bitOffset, int width, int height, unsigned char threshold);
/// @}

/// @name Thresholds without checks
/// @{

/// `IPPShare_ippiThreshold_LTVal_8u_C1IR` without checks. The step may be negative.
///
/// @param p          First pixel of the region.
/// @param step       Bytes from one row to the next.
/// @param width      Pixels per row; nothing is done if it is 0 or less.
/// @param height     Rows; nothing is done if it is 0 or less.
/// @param threshold  Largest value that is replaced.
/// @param value      Value that replaces it.
OPCV_DLIB_API void Threshold_LTVal_8u_C1IR(unsigned char* p, int step, int width, int height, unsigned char threshold,
                                           unsigned char value);

/// `IPPShare_ippiThreshold_LTVal_16s_C1IR` without checks. The step may be negative.
///
/// @copydetails Threshold_LTVal_8u_C1IR
OPCV_DLIB_API void Threshold_LTVal_16s_C1IR(short* p, int step, int width, int height, short threshold, short value);
/// @}

/// @name Convolution of any pixel type
/// @{

/// Convolution with an integer kernel, as described for `IPPShare_ippiFilter_8u_C1R`, for any pixel type that OpenCV's
/// linear filter accepts.
///
/// @param src         First pixel of the source region.
/// @param srcStep     Bytes from one source row to the next; a multiple of the pixel size.
/// @param type        OpenCV type code: 0 for one 8-bit channel, 16 for three, 3 for one 16-bit signed channel.
/// @param dst         First pixel of the destination region.
/// @param dstStep     Bytes from one destination row to the next; a multiple of the pixel size.
/// @param roi         Size of the region in pixels.
/// @param kernel      kernelSize.width x kernelSize.height cells.
/// @param kernelSize  Sides of the kernel, odd or even.
/// @param anchor      Cell that lies on the pixel; it may lie outside the kernel.
/// @param divisor     Not 0; may be negative.
/// @retval ippStsNoErr      The region is written; bytes outside it are unchanged.
/// @retval ippStsBadArgErr  Null pointer, a side of the region or of the kernel is 0 or less, divisor 0, or a step
///                          shorter than the columns read or written; nothing is written.
/// @retval ippStsNoMemErr   Out of memory; nothing is written.
/// @throws cv::Exception if OpenCV has no linear filter for the type; nothing is written.
OPCV_DLIB_API IppStatus ippiFilter(const void* src, int srcStep, int type, void* dst, int dstStep, const IppiSize& roi,
                                   const int* kernel, const IppiSize& kernelSize, const IppiPoint& anchor, int divisor);

/// `ippiFilter` with a float kernel and without a divisor.
///
/// @param src         First pixel of the source region.
/// @param srcStep     Bytes from one source row to the next; a multiple of the pixel size.
/// @param type        OpenCV type code: 0 for one 8-bit channel, 16 for three, 3 for one 16-bit signed channel.
/// @param dst         First pixel of the destination region.
/// @param dstStep     Bytes from one destination row to the next; a multiple of the pixel size.
/// @param roi         Size of the region in pixels.
/// @param kernel      kernelSize.width x kernelSize.height cells.
/// @param kernelSize  Sides of the kernel, odd or even.
/// @param anchor      Cell that lies on the pixel; it may lie outside the kernel.
/// @retval ippStsNoErr      The region is written; bytes outside it are unchanged.
/// @retval ippStsBadArgErr  Null pointer, a side of the region or of the kernel is 0 or less, or a step shorter than
///                          the columns read or written; nothing is written.
/// @retval ippStsNoMemErr   Out of memory; nothing is written.
/// @throws cv::Exception if OpenCV has no linear filter for the type; nothing is written.
OPCV_DLIB_API IppStatus ippiFilter32f(const void* src, int srcStep, int type, void* dst, int dstStep,
                                      const IppiSize& roi, const float* kernel, const IppiSize& kernelSize,
                                      const IppiPoint& anchor);
/// @}
#endif    // __cplusplus

#endif    // OPCV_DLIB_H
