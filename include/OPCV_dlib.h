/// @file OPCV_dlib.h
/// Image primitives for document-scanner pipelines.
///
/// This one header declares every exported function. It compiles as C11 and as C++17 and needs no other header of the
/// library, of OpenCV or of libjpeg; the functions whose parameter types are part of their exported names are for C++
/// only and stand at its end.
///
/// What holds everywhere:
///
/// - **Images.** A pointer to the first pixel of a region, the bytes from one row to the next (the step) and the size
///   of the region in pixels. Rows run from top to bottom. C1 is one channel, C3 three interleaved channels, P3 three
///   planes, given as an array of three pointers, that share one step. 1-bit rows hold the leftmost pixel in the most
///   significant bit. Colour is in the order red, green, blue.
/// - **Steps.** Functions that run OpenCV see a row as step / pixel size pixels and place the next row behind them, so
///   their steps must be whole multiples of the pixel size: a remainder shifts each further row by as many bytes.
/// - **Margins.** A function that reads a neighbourhood reads it from the caller's image: the pixels around the region
///   must be there. Each function says how many. No function invents a border, except the rotations, which say so.
/// - **Angles** are in degrees. `ippiRotate`, `ippiRotateCenter`, the KVMac and the deskew functions turn
///   counter-clockwise as seen on screen for a positive angle; `RotateImageWithIPP` and `UniteImageIplRotateImage` turn
///   clockwise.
/// - **Failures.** A function that refuses its arguments says so by its status, prints nothing and throws nothing. What
///   OpenCV throws while it works (`cv::Exception`, `std::bad_alloc`) passes to the caller, with everything of the
///   library's own released, except in the JPEG functions that take or make a record, which turn it into a status. So
///   does its exception for memory that it cannot have; the statuses for memory stand for blocks of the library's own.
/// - **Ownership.** Records belong to the caller, who releases them with `DisposeKVIMG`; plane blocks are released with
///   `IPPMini_ippiFree` or `IPPShare_ippiFree`; JPEG streams are released with `free`. Nothing else outlives a call.
/// - **Threads.** No function keeps state, so any number of threads may call any of them at once, as long as no two
///   write to the same memory. The library starts no thread. OpenCV may share the work of one call among threads of a
///   pool of its own: in rotations and deskew, resize, the bilateral filter, noise reduction and colour conversion, on
///   images above about 65000 pixels. The result is the same on any number of them. `cv::setNumThreads` governs that
///   pool for the whole process; `cv::setNumThreads(1)` keeps each call on the thread that makes it.
/// - **Length.** OpenCV warps no image with a side of 32767 pixels or more: the rotations and the deskew functions
///   pass its `cv::Exception` then, and each says which image counts. Quarter turns and resize have no such limit.
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
    ippStsNoMemErr = -4,     ///< Memory ran out.
    ippStsBadArgErr = -5,    ///< An argument is refused: null pointer, empty size, region longer than the step, ...
};

/// Result of the record functions: one of the six values below.
typedef short OSErr;
enum {
    noErr = 0,                 ///< Success.
    paramErr = -50,            ///< An argument is refused, or a JPEG stream cannot be read.
    memFullErr = -108,         ///< Memory ran out.
    rotateFailedErr = -2,      ///< The depth cannot be rotated or scaled, or the rotation failed.
    badAngleErr = -3,          ///< The angle is no quarter turn.
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

/// Rectangle in pixels: first column, first row, extent.
typedef struct IppiRect {
    int x;         ///< First column.
    int y;         ///< First row.
    int width;     ///< Columns.
    int height;    ///< Rows.
} IppiRect;

/// Rectangle by its edges; `bottom` and `right` are exclusive.
typedef struct KVRect {
    int32_t top;       ///< First row.
    int32_t left;      ///< First column.
    int32_t bottom;    ///< Row behind the last one.
    int32_t right;     ///< Column behind the last one.
} KVRect;
/// @}

/// @name Records
/// @{

/// An image on the heap: the record, and the block of pixels that it owns. Released with `DisposeKVIMG`.
typedef struct KVIMG {
    unsigned char* data;    ///< First byte of the pixel block.
    int32_t depth;          ///< Bits a pixel: 1, 8, 24, 32 or 40 (laid out like 8).
    int32_t width;          ///< Pixels a row.
    int32_t height;         ///< Rows.
    int32_t rowBytes;       ///< Bytes from one row to the next.
    int32_t size;           ///< Bytes in the pixel block: `rowBytes` times `height`.
} KVIMG;

/// Describes a page; owned by the caller, who may keep further fields behind these. Written by the JPEG readers (width,
/// height, depth), read by the deskew functions (the same) and by the compressors (the two resolutions).
typedef struct KVImageDescription {
    int32_t width;                   ///< Pixels a row.
    int32_t height;                  ///< Rows.
    int32_t horizontalResolution;    ///< Dots per inch.
    int32_t verticalResolution;      ///< Dots per inch.
    int32_t reserved;                ///< The caller's own; never touched.
    int16_t depth;                   ///< Bits a pixel.
} KVImageDescription;

/// How a description is passed: a pointer to a pointer to the record.
typedef KVImageDescription** KVImageDescriptionHandle;

/// An image header over pixels of the caller's, for `UniteImageIplRotateImage`.
typedef struct KVImageHeader {
    unsigned char* pixels;    ///< First byte of the first row.
    int64_t reserved;         ///< Not read.
    int32_t depth;            ///< Bits a pixel; only the first byte of the field is read.
    int32_t width;            ///< Pixels a row.
    int32_t height;           ///< Rows.
    int32_t rowStep;          ///< Bytes from one row to the next.
} KVImageHeader;
/// @}

/// @name Initialisation
/// There is nothing to initialise: these keep old callers working. Each returns 0, always.
/// @{

/// Does nothing. @return 0.
OPCV_DLIB_API int IppInit(void);

/// Does nothing. @return `ippStsNoErr`.
OPCV_DLIB_API IppStatus IPPMini_ippStaticInit(void);

/// Calls `IPPMini_ippStaticInit` by its exported name. @return its result.
OPCV_DLIB_API IppStatus IPPShare_ippStaticInit(void);
/// @}

/// @name Image records
/// @{

/// Stores the four edges in a rectangle.
///
/// @param r       Rectangle to fill. Its fields stand in another order (top, left, bottom, right) than the arguments.
/// @param left    First column.
/// @param top     First row.
/// @param right   Column behind the last one.
/// @param bottom  Row behind the last one.
OPCV_DLIB_API void KVSetRect(KVRect* r, int left, int top, int right, int bottom);

/// Makes a record of the rectangle's size. The pixels are not cleared.
///
/// Bytes a row (w the width): depth 1: (w + 7) / 8 rounded up to 16; depths 8 and 40: w rounded up to 16; depth 24: 3 w,
/// without padding; depth 32: 4 w rounded up to 16.
///
/// @param out    Receives the record. Set it to null before: when the pixels cannot be had, the block that it points at
///               is freed and the pointer left as it is; when only the record cannot be had, it becomes null.
/// @param r      Position does not matter; width is right - left, height is bottom - top. Neither is checked: an empty
///               rectangle gives a record of 0 bytes, a negative size is refused by the heap.
/// @param depth  Bits a pixel: 1, 8, 24, 32 or 40.
/// @retval noErr       The record is made; or `out` or `r` is null or the depth is none of these, and nothing is done.
/// @retval memFullErr  Memory ran out, or the size does not fit in 32 bits; nothing is kept.
OPCV_DLIB_API OSErr CreateNewKVIMGPtr(KVIMG** out, const KVRect* r, unsigned char depth);

/// `CreateNewKVIMGPtr` with one difference: rows of depth 24 are padded to a multiple of 4 bytes.
///
/// @param out    As in `CreateNewKVIMGPtr`.
/// @param r      As in `CreateNewKVIMGPtr`.
/// @param depth  As in `CreateNewKVIMGPtr`.
/// @retval noErr       As in `CreateNewKVIMGPtr`.
/// @retval memFullErr  As in `CreateNewKVIMGPtr`.
OPCV_DLIB_API OSErr CreateNewKVIMGPtrForUnite(KVIMG** out, const KVRect* r, unsigned char depth);

/// Frees a record and its pixels. The caller's pointer is not cleared.
///
/// @param img  The record; null is allowed.
OPCV_DLIB_API void DisposeKVIMG(KVIMG* img);
/// @}

/// @name Planes
/// @{

/// Makes a plane of 16-bit signed samples with rows of a multiple of 64 bytes. It is not cleared.
///
/// @param width       Samples a row, above 0.
/// @param height      Rows, above 0.
/// @param pStepBytes  Receives the bytes from one row to the next, also when the heap fails.
/// @return The plane, to be released with `IPPMini_ippiFree` or `IPPShare_ippiFree`; null when memory ran out or the
///         plane does not fit in 31 bits of bytes, or when an argument is null, not above 0, or a width whose row alone
///         does not fit (`*pStepBytes` is then untouched).
OPCV_DLIB_API short* IPPShare_ippiMalloc_16s_C1(int width, int height, int* pStepBytes);

/// Makes an image of three interleaved 8-bit channels with rows of a multiple of 64 bytes. It is not cleared.
///
/// @param width       Pixels a row, above 0.
/// @param height      Rows, above 0.
/// @param pStepBytes  Receives the bytes from one row to the next, also when the heap fails.
/// @return As in `IPPShare_ippiMalloc_16s_C1`.
OPCV_DLIB_API unsigned char* IPPMini_ippiMalloc_8u_C3(int width, int height, int* pStepBytes);

/// Frees a block from either allocator.
///
/// @param p  The block; null is allowed.
OPCV_DLIB_API void IPPMini_ippiFree(void* p);

/// Calls `IPPMini_ippiFree` by its exported name.
///
/// @param p  The block; null is allowed.
OPCV_DLIB_API void IPPShare_ippiFree(void* p);
/// @}

/// @name Square medians
///
/// The source image must hold every window: with the anchor (ax, ay) of an m x m mask it goes on ax pixels to the left
/// and ay above the region, m - 1 - ax to the right and m - 1 - ay below. The anchor may lie outside the mask, which
/// shifts the windows on. Small masks are filtered straight from the caller's rows, without memory of their own; where
/// source and destination overlap, and for large masks, OpenCV makes a copy first.
/// @{

/// Median of a grey region by a square mask: each pixel becomes the median of the mask's pixels, placed with the anchor
/// over it.
///
/// @param pSrc        First pixel of the source region.
/// @param srcStep     Bytes from one source row to the next; at least width + m - 1 pixels.
/// @param pDst        First pixel of the destination region; may overlap the source.
/// @param dstStep     Bytes from one destination row to the next.
/// @param dstRoiSize  Size of the region in pixels.
/// @param maskSize    Size of the mask: odd, width equal to height.
/// @param anchor      Cell of the mask that lies over the pixel, counted from 0.
/// @retval ippStsNoErr      The region is filtered; no byte outside it is written.
/// @retval ippStsBadArgErr  Null pointer, mask not square or not odd, empty region, or rows too short for the region (at
///                          the source: for the region and m - 1 more pixels); nothing is written.
/// @retval ippStsNoMemErr   Memory ran out; nothing is written.
OPCV_DLIB_API IppStatus IPPShare_ippiFilterMedian_8u_C1R(const unsigned char* pSrc, int srcStep, unsigned char* pDst,
                                                         int dstStep, IppiSize dstRoiSize, IppiSize maskSize,
                                                         IppiPoint anchor);

/// `IPPShare_ippiFilterMedian_8u_C1R` for a colour region, each channel by itself.
///
/// @param pSrc        As in `IPPShare_ippiFilterMedian_8u_C1R`.
/// @param srcStep     Bytes from one source row to the next; a multiple of 3.
/// @param pDst        As in `IPPShare_ippiFilterMedian_8u_C1R`.
/// @param dstStep     Bytes from one destination row to the next; a multiple of 3.
/// @param dstRoiSize  As in `IPPShare_ippiFilterMedian_8u_C1R`.
/// @param maskSize    As in `IPPShare_ippiFilterMedian_8u_C1R`.
/// @param anchor      As in `IPPShare_ippiFilterMedian_8u_C1R`.
/// @retval ippStsNoErr      As in `IPPShare_ippiFilterMedian_8u_C1R`.
/// @retval ippStsBadArgErr  As in `IPPShare_ippiFilterMedian_8u_C1R`.
/// @retval ippStsNoMemErr   As in `IPPShare_ippiFilterMedian_8u_C1R`.
OPCV_DLIB_API IppStatus IPPShare_ippiFilterMedian_8u_C3R(const unsigned char* pSrc, int srcStep, unsigned char* pDst,
                                                         int dstStep, IppiSize dstRoiSize, IppiSize maskSize,
                                                         IppiPoint anchor);

/// Calls `IPPShare_ippiFilterMedian_8u_C1R` by its exported name.
///
/// @param pSrc        As in `IPPShare_ippiFilterMedian_8u_C1R`.
/// @param srcStep     As in `IPPShare_ippiFilterMedian_8u_C1R`.
/// @param pDst        As in `IPPShare_ippiFilterMedian_8u_C1R`.
/// @param dstStep     As in `IPPShare_ippiFilterMedian_8u_C1R`.
/// @param dstRoiSize  As in `IPPShare_ippiFilterMedian_8u_C1R`.
/// @param maskSize    As in `IPPShare_ippiFilterMedian_8u_C1R`.
/// @param anchor      As in `IPPShare_ippiFilterMedian_8u_C1R`.
/// @retval ippStsNoErr      As in `IPPShare_ippiFilterMedian_8u_C1R`.
/// @retval ippStsBadArgErr  As in `IPPShare_ippiFilterMedian_8u_C1R`.
/// @retval ippStsNoMemErr   As in `IPPShare_ippiFilterMedian_8u_C1R`.
OPCV_DLIB_API IppStatus IPPMini_ippiFilterMedian_8u_C1R(const unsigned char* pSrc, int srcStep, unsigned char* pDst,
                                                        int dstStep, IppiSize dstRoiSize, IppiSize maskSize,
                                                        IppiPoint anchor);
/// @}

/// @name Medians with a fixed window
///
/// Windows that lie over the region's edge take the pixels around it: the source image goes on as far as each function
/// says. No other byte of the source is read.
/// @{

/// Cross-shaped median of a grey region: each pixel becomes the median of the pixels of a plus sign centred on it.
///
/// @param pSrc        First pixel of the source region; the image goes on 1 pixel (mask 33) or 2 (mask 55) on each side.
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

/// 3 x 3 median of a grey region in which the centre counts several times, so that fine detail survives: each pixel
/// becomes the middle one of its eight neighbours and `weight` times itself.
///
/// @param pSrc        First pixel of the source region; the image goes on 1 pixel on each side.
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

/// Vector median of a colour region: each pixel becomes that pixel of its 3 x 3 window whose city-block distances
/// |r1 - r2| + |g1 - g2| + |b1 - b2| to the other eight have the smallest sum; among equals the first in raster order.
///
/// @param pSrc        First pixel of the source region; the image goes on 1 pixel on each side.
/// @param srcStep     Bytes from one source row to the next; not checked.
/// @param pDst        First pixel of the destination region; must not overlap the source.
/// @param dstStep     Bytes from one destination row to the next.
/// @param dstRoiSize  Size of the region in pixels.
/// @param mask        33; there is no other.
/// @retval ippStsNoErr      The region is filtered; no byte outside it is written.
/// @retval ippStsBadArgErr  Null pointer, empty region, 3 x width above `dstStep`, or another mask; nothing is written.
OPCV_DLIB_API IppStatus IPPShare_ippiFilterMedianColor_8u_C3R(const unsigned char* pSrc, int srcStep,
                                                              unsigned char* pDst, int dstStep, IppiSize dstRoiSize,
                                                              int mask);
/// @}

/// @name Dilation, erosion, maximum and minimum
///
/// Each pixel becomes the largest or the smallest of the source pixels that the cells of a mask select, when the mask is
/// placed with its anchor over the pixel. The source image must hold every window: with the anchor (ax, ay) of a
/// mw x mh mask it goes on ax pixels to the left and ay above the region, mw - 1 - ax to the right and mh - 1 - ay below;
/// where OpenCV does the work, one more to the right (below) if mw (mh) is even. The anchor may lie outside the mask,
/// which shifts the windows on. Small masks are filtered straight from the caller's rows, without memory of their own;
/// where source and destination overlap, and for large masks, OpenCV makes a copy first.
/// @{

/// Largest pixel under an arbitrary mask.
///
/// @param pSrc        First pixel of the source region.
/// @param srcStep     Bytes from one source row to the next; at least the width and twice half the mask's (mw / 2).
/// @param pDst        First pixel of the destination region; may overlap the source.
/// @param dstStep     Bytes from one destination row to the next.
/// @param dstRoiSize  Size of the region in pixels.
/// @param pMask       The mask's cells, row after row without gaps; each that is not 0 selects a pixel. What a mask
///                    that selects none gives is OpenCV's choice.
/// @param maskSize    Size of the mask in cells.
/// @param anchor      Cell of the mask that lies over the pixel, counted from 0.
/// @retval ippStsNoErr      The region is filtered; no byte outside it is written.
/// @retval ippStsBadArgErr  Null pointer, empty mask or region, or rows too short for the region (at the source: for the
///                          region and 2 (mw / 2) more pixels); nothing is written.
/// @retval ippStsNoMemErr   Memory ran out; nothing is written.
OPCV_DLIB_API IppStatus IPPShare_ippiDilate_8u_C1R(const unsigned char* pSrc, int srcStep, unsigned char* pDst,
                                                   int dstStep, IppiSize dstRoiSize, const unsigned char* pMask,
                                                   IppiSize maskSize, IppiPoint anchor);

/// Smallest pixel under an arbitrary mask.
///
/// @param pSrc        As in `IPPShare_ippiDilate_8u_C1R`.
/// @param srcStep     As in `IPPShare_ippiDilate_8u_C1R`.
/// @param pDst        As in `IPPShare_ippiDilate_8u_C1R`.
/// @param dstStep     As in `IPPShare_ippiDilate_8u_C1R`.
/// @param dstRoiSize  As in `IPPShare_ippiDilate_8u_C1R`.
/// @param pMask       As in `IPPShare_ippiDilate_8u_C1R`.
/// @param maskSize    As in `IPPShare_ippiDilate_8u_C1R`.
/// @param anchor      As in `IPPShare_ippiDilate_8u_C1R`.
/// @retval ippStsNoErr      As in `IPPShare_ippiDilate_8u_C1R`.
/// @retval ippStsBadArgErr  As in `IPPShare_ippiDilate_8u_C1R`.
/// @retval ippStsNoMemErr   As in `IPPShare_ippiDilate_8u_C1R`.
OPCV_DLIB_API IppStatus IPPShare_ippiErode_8u_C1R(const unsigned char* pSrc, int srcStep, unsigned char* pDst,
                                                  int dstStep, IppiSize dstRoiSize, const unsigned char* pMask,
                                                  IppiSize maskSize, IppiPoint anchor);

/// Largest pixel under a full rectangle.
///
/// @param pSrc        As in `IPPShare_ippiDilate_8u_C1R`.
/// @param srcStep     As in `IPPShare_ippiDilate_8u_C1R`.
/// @param pDst        As in `IPPShare_ippiDilate_8u_C1R`.
/// @param dstStep     As in `IPPShare_ippiDilate_8u_C1R`.
/// @param dstRoiSize  As in `IPPShare_ippiDilate_8u_C1R`.
/// @param maskSize    Size of the rectangle.
/// @param anchor      As in `IPPShare_ippiDilate_8u_C1R`.
/// @retval ippStsNoErr      As in `IPPShare_ippiDilate_8u_C1R`.
/// @retval ippStsBadArgErr  As in `IPPShare_ippiDilate_8u_C1R`.
/// @retval ippStsNoMemErr   As in `IPPShare_ippiDilate_8u_C1R`.
OPCV_DLIB_API IppStatus IPPMini_ippiFilterMax_8u_C1R(const unsigned char* pSrc, int srcStep, unsigned char* pDst,
                                                     int dstStep, IppiSize dstRoiSize, IppiSize maskSize,
                                                     IppiPoint anchor);

/// Smallest pixel under a full rectangle.
///
/// @param pSrc        As in `IPPShare_ippiDilate_8u_C1R`.
/// @param srcStep     As in `IPPShare_ippiDilate_8u_C1R`.
/// @param pDst        As in `IPPShare_ippiDilate_8u_C1R`.
/// @param dstStep     As in `IPPShare_ippiDilate_8u_C1R`.
/// @param dstRoiSize  As in `IPPShare_ippiDilate_8u_C1R`.
/// @param maskSize    Size of the rectangle.
/// @param anchor      As in `IPPShare_ippiDilate_8u_C1R`.
/// @retval ippStsNoErr      As in `IPPShare_ippiDilate_8u_C1R`.
/// @retval ippStsBadArgErr  As in `IPPShare_ippiDilate_8u_C1R`.
/// @retval ippStsNoMemErr   As in `IPPShare_ippiDilate_8u_C1R`.
OPCV_DLIB_API IppStatus IPPMini_ippiFilterMin_8u_C1R(const unsigned char* pSrc, int srcStep, unsigned char* pDst,
                                                     int dstStep, IppiSize dstRoiSize, IppiSize maskSize,
                                                     IppiPoint anchor);
/// @}

/// @name Rotation of regions
/// @{

/// Computes the shift that makes `ippiRotate` turn about a centre of the caller's choice:
/// x = xc - xc cos a - yc sin a, y = yc + xc sin a - yc cos a.
///
/// @param xCenter  Column of the centre, in pixels of the source region.
/// @param yCenter  Row of the centre.
/// @param angle    Degrees, counter-clockwise on screen.
/// @param xShift   Receives the horizontal shift in pixels.
/// @param yShift   Receives the vertical shift in pixels. If either pointer is null, nothing is written.
OPCV_DLIB_API void KVMac_ippiGetRotateShift(double xCenter, double yCenter, double angle, double* xShift,
                                            double* yShift);

/// `ippiRotate` for one 8-bit channel, with black outside the source region.
///
/// @param src            First row of the source image.
/// @param srcSize        Size of the source image.
/// @param srcStep        Bytes from one source row to the next.
/// @param srcRoi         Part of the source that is turned.
/// @param dst            First row of the destination image.
/// @param dstStep        Bytes from one destination row to the next.
/// @param dstRoi         Part of the destination that is filled.
/// @param angle          Degrees, counter-clockwise on screen.
/// @param xShift         Shift to the right after the turn; converted to float, then rounded to whole pixels.
/// @param yShift         Shift down after the turn, likewise.
/// @param interpolation  Ignored: always bilinear.
/// @retval noErr       The destination rectangle is filled.
/// @retval paramErr    What `ippiRotate` answers with `ippStsBadArgErr`; nothing is written.
/// @retval memFullErr  What `ippiRotate` answers with `ippStsNoMemErr`; nothing is written.
/// @throws cv::Exception where `ippiRotate` does; nothing is written.
OPCV_DLIB_API OSErr KVMac_ippiRotate_8u_C1R(const unsigned char* src, IppiSize srcSize, int srcStep, IppiRect srcRoi,
                                            unsigned char* dst, int dstStep, IppiRect dstRoi, double angle,
                                            double xShift, double yShift, int interpolation);

/// `KVMac_ippiRotate_8u_C1R` for three interleaved 8-bit channels.
///
/// @param src            First row of the source image.
/// @param srcSize        Size of the source image.
/// @param srcStep        Bytes from one source row to the next, a multiple of 3.
/// @param srcRoi         Part of the source that is turned.
/// @param dst            First row of the destination image.
/// @param dstStep        Bytes from one destination row to the next, a multiple of 3.
/// @param dstRoi         Part of the destination that is filled.
/// @param angle          Degrees, counter-clockwise on screen.
/// @param xShift         Shift to the right after the turn; converted to float, then rounded to whole pixels.
/// @param yShift         Shift down after the turn, likewise.
/// @param interpolation  Ignored: always bilinear.
/// @retval noErr       The destination rectangle is filled.
/// @retval paramErr    What `ippiRotate` answers with `ippStsBadArgErr`; nothing is written.
/// @retval memFullErr  What `ippiRotate` answers with `ippStsNoMemErr`; nothing is written.
/// @throws cv::Exception where `ippiRotate` does; nothing is written.
OPCV_DLIB_API OSErr KVMac_ippiRotate_8u_C3R(const unsigned char* src, IppiSize srcSize, int srcStep, IppiRect srcRoi,
                                            unsigned char* dst, int dstStep, IppiRect dstRoi, double angle,
                                            double xShift, double yShift, int interpolation);
/// @}

/// @name Deskew and rotation of pages
///
/// The functions that take a description read the page's width, height and depth from it, and from the source record
/// only the pixels and the bytes a row. Depth is 8, 24 or 32. The new record is made by `CreateNewKVIMGPtr` (but see
/// `UniteImageIplRotateImage`) and belongs to the caller.
///
/// Pass `*dst` as null: on every failure a record that it holds, the caller's own included, is released and `*dst` is
/// set to null; on success it is overwritten.
///
/// Corners that come from outside the page are black. With white fill they are white at 24 bits; at 32 bits the first
/// byte is 0 and the other three are 255; at 8 bits the flag has no effect.
/// @{

/// Turns a page about its exact centre; the new record has the page's size.
///
/// @param src            Page to turn; only its pixels and bytes a row are used.
/// @param description    Size and depth of the page.
/// @param dst            Receives the new record.
/// @param interpolation  Ignored: always bilinear.
/// @param whiteFill      Not 0: white corners instead of black ones, see above.
/// @param angle          Degrees, counter-clockwise on screen.
/// @retval noErr            `*dst` holds the turned page.
/// @retval paramErr         A pointer is null, the description included.
/// @retval rotateFailedErr  The depth is not 8, 24 or 32, or the rotation was refused.
/// @retval memFullErr       The record could not be made.
/// @throws cv::Exception if a side of the page reaches 32767 pixels; `*dst` is released and null.
OPCV_DLIB_API OSErr DeskewImageWithIPP(const KVIMG* src, KVImageDescriptionHandle description, KVIMG** dst,
                                       int interpolation, unsigned char whiteFill, double angle);

/// Turns a page about its centre and cuts a rectangle out of the result. The turned page is placed by whole pixels.
///
/// @param src            Page to turn; only its pixels and bytes a row are used.
/// @param description    Size and depth of the page.
/// @param dst            Receives the new record, of the crop rectangle's size.
/// @param interpolation  Ignored: always bilinear.
/// @param whiteFill      Not 0: white corners instead of black ones, see above.
/// @param crop           Rectangle in the coordinates of the turned page; may reach outside it. Once the record is made,
///                       a negative top or left is moved to 0, the size kept; the record shows what was asked for.
/// @param angle          Degrees, counter-clockwise on screen.
/// @retval noErr            `*dst` holds the part of the turned page.
/// @retval paramErr         A pointer is null, the description included.
/// @retval rotateFailedErr  The depth is not 8, 24 or 32, or the rotation was refused, as for an empty rectangle.
/// @retval memFullErr       The record could not be made.
/// @throws cv::Exception if a side of the page, enlarged by what the crop shows around it, reaches 32767 pixels;
///         `*dst` is released and null.
OPCV_DLIB_API OSErr DeskewImageWithIPPEx(const KVIMG* src, KVImageDescriptionHandle description, KVIMG** dst,
                                         int interpolation, unsigned char whiteFill, KVRect* crop, double angle);

/// Turns a page about a point, which becomes the top-left pixel of the new record.
///
/// @param src            Page to turn; only its pixels and bytes a row are used.
/// @param description    Size and depth of the page.
/// @param dst            Receives the new record, of the crop rectangle's size.
/// @param interpolation  Ignored: always bilinear.
/// @param whiteFill      Not 0: white corners instead of black ones, see above.
/// @param crop           Gives the size of the new record; its position does not matter. Never changed.
/// @param xPoint         Column of the point on the page.
/// @param yPoint         Row of the point on the page.
/// @param angle          Degrees, counter-clockwise on screen.
/// @retval noErr            `*dst` holds the part of the turned page.
/// @retval paramErr         A pointer is null, the description included.
/// @retval rotateFailedErr  The depth is not 8, 24 or 32, or the rotation was refused, as for an empty rectangle.
/// @retval memFullErr       The record could not be made.
/// @throws cv::Exception if a side of the page, enlarged by what the crop shows around it, reaches 32767 pixels;
///         `*dst` is released and null.
OPCV_DLIB_API OSErr DeskewImageWithIPPExWithShirftPoint(const KVIMG* src, KVImageDescriptionHandle description,
                                                        KVIMG** dst, int interpolation, unsigned char whiteFill,
                                                        KVRect* crop, int64_t xPoint, int64_t yPoint, double angle);

/// Turns a page by a multiple of 90 degrees, without interpolation.
///
/// @param src          Page to turn; only its pixels and bytes a row are used.
/// @param description  Size and depth of the page.
/// @param dst          Receives the new record; width and height change places for quarter turns.
/// @param angle        Degrees, **clockwise** on screen; the fraction is dropped. Allowed are 90, 180, 270 and their
///                     negatives (so 90.9 turns by 90, and 89.9 is refused).
/// @retval noErr            `*dst` holds the turned page.
/// @retval paramErr         A pointer is null, the description included, or the page is empty or does not fit in its
///                          rows.
/// @retval rotateFailedErr  The depth is not 8, 24 or 32.
/// @retval badAngleErr      The angle is none of these.
/// @retval memFullErr       The record could not be made.
OPCV_DLIB_API OSErr RotateImageWithIPP(const KVIMG* src, KVImageDescriptionHandle description, KVIMG** dst,
                                       double angle);

/// Turns an image about its centre and centres it on a canvas of another size, whose pixels are a new record made by
/// `CreateNewKVIMGPtrForUnite`. Uncovered pixels are white (24 bits: 255 255 255; 32 bits: 0 255 255 255), black at 8
/// bits.
///
/// @param dstHeader     Canvas: depth (8, 24 or 32), width, height and row step are read; the pixel pointer is set to
///                      the record's pixels. Set the row step to the record's rule: the width rounded up to 16 at 8
///                      bits, 3 times the width rounded up to 4 at 24, 4 times the width rounded up to 16 at 32. After
///                      a failure the pixel pointer may refer to released memory. At 24 bits the canvas's rows lie as
///                      many whole pixels apart as the row step holds, so that they end up to 2 bytes a row before
///                      the record does; what is behind them is not set.
/// @param srcHeader     Image to turn: pixels, width, height and row step; its depth is taken to be the canvas's.
/// @param unitedRecord  Receives the record, on success only.
/// @param angle         Degrees, **clockwise** on screen. Above 180, 360 is taken off first.
/// @retval noErr           The canvas is filled and `*unitedRecord` holds it.
/// @retval uniteFailedErr  Anything else.
/// @throws cv::Exception if a side of the image, enlarged by what the canvas shows around it, reaches 32767 pixels;
///         `*unitedRecord` is untouched, and the canvas's pixel pointer refers to released memory.
OPCV_DLIB_API OSErr UniteImageIplRotateImage(KVImageHeader* dstHeader, const KVImageHeader* srcHeader,
                                             KVIMG** unitedRecord, double angle);
/// @}

/// @name Resize
///
/// Always bilinear, as OpenCV computes it: pixel centres correspond, source pixels are repeated at the edges, weights
/// have 11 bits. There is no smoothing before a reduction, except that exactly half in both directions is the mean of
/// 2 x 2 pixels. Equal sizes are copied.
/// @{

/// Scales a page by numerator / denominator into a new record made by `CreateNewKVIMGPtr`, for instance from one
/// resolution to another. Both sides are truncated to whole pixels: 101 x 51 at half becomes 50 x 25.
///
/// @param src          Page of depth 8, 24 or 32.
/// @param dst          Receives the new record. Pass `*dst` as null: on every failure a record that it holds, the
///                     caller's own included, is released and `*dst` is set to null; on success it is overwritten.
/// @param denominator  Divisor of the scale.
/// @param numerator    Dividend of the scale.
/// @retval noErr            `*dst` holds the scaled page.
/// @retval paramErr         A pointer is null; the page does not fit in its rows; a side of the scaled page is 0 or
///                          less, or the scale is no number.
/// @retval memFullErr       The record could not be made, or a side of the scaled page leaves the range of int.
/// @retval rotateFailedErr  The depth is not 8, 24 or 32 and no record had to be refused for its size before.
OPCV_DLIB_API OSErr ResizeImageWithIPPEx(const KVIMG* src, KVIMG** dst, double denominator, double numerator);

/// Scales a region of one 8-bit channel by two factors, moves the result by whole pixels and puts it into a
/// destination rectangle. What the moved image does not reach is left as it was.
///
/// The scaled size is the region's times the factors, rounded to the nearest, halves to even. A shift to the right
/// leaves that many columns at the left of the rectangle untouched, a shift to the left drops columns of the scaled
/// image; rows likewise.
///
/// @param src            First row of the source image.
/// @param srcSize        Size of the source image.
/// @param srcStep        Bytes from one source row to the next.
/// @param srcRoi         Part of the source that is scaled; nothing outside it is read.
/// @param dst            First row of the destination image; may be the source image, or overlap it.
/// @param dstStep        Bytes from one destination row to the next.
/// @param dstRoi         Part of the destination that is filled.
/// @param xFactor        Scale of the width, above 0.
/// @param yFactor        Scale of the height, above 0.
/// @param xShift         Shift to the right after scaling; rounded to whole pixels, halves away from zero.
/// @param yShift         Shift down after scaling, likewise.
/// @param interpolation  Ignored: always bilinear.
/// @param buffer         Ignored.
/// @retval ippStsNoErr      The rectangle is filled as far as the moved image reaches.
/// @retval ippStsBadArgErr  The region is larger than the source image or does not fit in its rows; a pointer is null;
///                          the shift leaves the range of int or moves the image out of the rectangle; or what is left
///                          of the rectangle does not fit in its rows. Nothing is written.
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
/// @param srcStep        Bytes from one source row to the next, a multiple of 3.
/// @param srcRoi         Part of the source that is scaled; nothing outside it is read.
/// @param dst            First pixel of the destination region; must not overlap the source.
/// @param dstStep        Bytes from one destination row to the next, a multiple of 3.
/// @param dstRoiSize     Size of the destination region; it alone decides the scale.
/// @param xFactor        Ignored.
/// @param yFactor        Ignored.
/// @param interpolation  Ignored: always bilinear.
/// @retval ippStsNoErr      The destination region is filled.
/// @retval ippStsBadArgErr  The region is larger than the source image, a pointer is null, or a region is empty or does
///                          not fit in its rows; nothing is written.
OPCV_DLIB_API IppStatus IPPMini_ippiResize_8u_C3R(const unsigned char* src, IppiSize srcSize, int srcStep,
                                                  IppiRect srcRoi, unsigned char* dst, int dstStep, IppiSize dstRoiSize,
                                                  double xFactor, double yFactor, int interpolation);
/// @}

/// @name JPEG compression
///
/// A record of depth 8 becomes a grey stream, one of depth 24 (red, green, blue) a colour stream, in a block of its own
/// that the caller releases with `free`. The streams are baseline JFIF 1.02 with dots per inch and the comment
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
/// @param resolution  Dots per inch, in both directions; the low 16 bits are stored.
/// @param mode        Quality: 0, 286, 389, 450 or 788.
/// @param outData     Receives the stream.
/// @param outSize     Receives its length in bytes.
/// @retval noErr       The stream is made.
/// @retval paramErr    Null pointer, empty image, unknown mode or other depth; nothing is written.
/// @retval memFullErr  The encoder failed, which includes sides above 65500 pixels; nothing is written. Or the block for
///                     the stream could not be had: `*outSize` is the length and `*outData` is null.
OPCV_DLIB_API OSErr CompressJPEG(const KVIMG* image, int resolution, int mode, void** outData, unsigned* outSize);

/// Compresses a record with libjpeg's quantisation tables; colour is subsampled 2 x 2.
///
/// @param image        Record of depth 8 or 24.
/// @param description  Its two resolutions are stored, the low 16 bits of each; nothing else is read.
/// @param mode         Quality: 0, 286, 389, 450 or 788.
/// @param outData      Receives the stream.
/// @param outSize      Receives its length in bytes.
/// @retval noErr       As in `CompressJPEG`.
/// @retval paramErr    As in `CompressJPEG`, or the handle or the description is null.
/// @retval memFullErr  As in `CompressJPEG`.
OPCV_DLIB_API OSErr CompressJPEGEx(const KVIMG* image, KVImageDescriptionHandle description, int mode, void** outData,
                                   unsigned* outSize);

/// `CompressJPEGEx` with a quality column of its own.
///
/// @param image        As in `CompressJPEGEx`.
/// @param description  As in `CompressJPEGEx`.
/// @param mode         As in `CompressJPEGEx`.
/// @param outData      As in `CompressJPEGEx`.
/// @param outSize      As in `CompressJPEGEx`.
/// @retval noErr       As in `CompressJPEGEx`.
/// @retval paramErr    As in `CompressJPEGEx`.
/// @retval memFullErr  As in `CompressJPEGEx`.
OPCV_DLIB_API OSErr CompressJPEGWithIPP(const KVIMG* image, KVImageDescriptionHandle description, int mode,
                                        void** outData, unsigned* outSize);

/// `CompressJPEGEx` under a second name.
///
/// @param image        As in `CompressJPEGEx`.
/// @param description  As in `CompressJPEGEx`.
/// @param mode         As in `CompressJPEGEx`.
/// @param outData      As in `CompressJPEGEx`.
/// @param outSize      As in `CompressJPEGEx`.
/// @retval noErr       As in `CompressJPEGEx`.
/// @retval paramErr    As in `CompressJPEGEx`.
/// @retval memFullErr  As in `CompressJPEGEx`.
OPCV_DLIB_API OSErr CompressJPEGWithIPPEx(const KVIMG* image, KVImageDescriptionHandle description, int mode,
                                          void** outData, unsigned* outSize);
/// @}

/// @name JPEG reading
///
/// The pixels are those of OpenCV's decoder: an EXIF orientation turns the image, four components become colour, and a
/// truncated stream gives the rows that it holds, the last of them repeated to the bottom. Refused are streams of
/// another format (which do not begin with FF D8 FF), of more than 2^31 - 1 bytes, of more than 2^30 pixels or a side
/// above 65500, with no frame or scan header or with more than 100 scans, and those of which no row can be decoded. Rows
/// of the new record are packed (width or 3 x width bytes); it is released with `DisposeKVIMG`.
/// @{

/// Reads a JPEG stream into a new record: depth 8 if it is grey, otherwise 24 in the order red, green, blue.
///
/// @param jpegData        The stream.
/// @param jpegSize        Its length in bytes.
/// @param descriptionPtr  Pointer to a description handle; the page's width, height and depth are written there.
/// @param outImage        Receives the record.
/// @retval noErr       `*outImage` holds the page.
/// @retval paramErr    A pointer is null (also the handle or the record that it leads to), the stream is empty or it
///                     cannot be decoded; nothing is written.
/// @retval memFullErr  Memory ran out, or the pixels do not fit in 31 bits of bytes; the description may already hold
///                     the page's size and depth. `*outImage` is null if the record block was refused and untouched
///                     otherwise.
OPCV_DLIB_API OSErr ReadJPEG(const void* jpegData, unsigned jpegSize, KVImageDescriptionHandle* descriptionPtr,
                             KVIMG** outImage);

/// `ReadJPEG` under a second name.
///
/// @param jpegData        As in `ReadJPEG`.
/// @param jpegSize        As in `ReadJPEG`.
/// @param descriptionPtr  As in `ReadJPEG`.
/// @param outImage        As in `ReadJPEG`.
/// @retval noErr       As in `ReadJPEG`.
/// @retval paramErr    As in `ReadJPEG`.
/// @retval memFullErr  As in `ReadJPEG`.
OPCV_DLIB_API OSErr ReadJPEGWithIPP(const void* jpegData, unsigned jpegSize, KVImageDescriptionHandle* descriptionPtr,
                                    KVIMG** outImage);

/// Reads a JPEG stream whose size is known before, always into 24 bits (grey is repeated in all three bytes).
///
/// @param jpegData     The stream.
/// @param jpegSize     Its length in bytes.
/// @param description  Description handle that states the width and the height; its depth becomes 24 on success, and on
///                     failure nothing in it changes. One level of indirection less than in `ReadJPEG`.
/// @param outImage     Receives the record.
/// @retval noErr       `*outImage` holds the image.
/// @retval paramErr    A pointer is null (also the record that the handle leads to), the stream is empty or cannot be
///                     decoded, or it has another size; nothing is written.
/// @retval memFullErr  Memory ran out, or the pixels do not fit in 31 bits of bytes; `*outImage` is null if the record
///                     block was refused and untouched otherwise.
OPCV_DLIB_API OSErr ReadSplitJPEG(const unsigned char* jpegData, unsigned jpegSize,
                                  KVImageDescriptionHandle description, KVIMG** outImage);
/// @}

/// @name Bit packing
///
/// Between 1-bit images, whose region may start at any bit of a byte, and grey images. A set bit is 255 in grey and a
/// clear bit is 0; a grey pixel above the threshold becomes a set bit.
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
/// The other bits of the row's first and last byte are kept, except at threshold 255, which clears them.
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
/// Steps of 16-bit images are whole multiples of 2: with an odd one each further row starts a byte early.
/// @{

/// Widens 8-bit pixels to 16-bit signed: 0 to 255 stay what they are.
///
/// @param pSrc     First pixel of the source region.
/// @param srcStep  Bytes from one source row to the next, at least `roiSize.width`.
/// @param pDst     First pixel of the destination region; must not overlap the source.
/// @param dstStep  Bytes from one destination row to the next, at least 2 x `roiSize.width`.
/// @param roiSize  Size of the region in pixels, both sides above 0.
/// @retval ippStsNoErr      The region is converted; bytes outside it are untouched.
/// @retval ippStsBadArgErr  Null pointer, empty region, or a row longer than its step; nothing is written.
/// @retval ippStsNoMemErr   Memory ran out; nothing is written.
OPCV_DLIB_API IppStatus IPPShare_ippiConvert_8u16s_C1R(const unsigned char* pSrc, int srcStep, short* pDst, int dstStep,
                                                       IppiSize roiSize);

/// Narrows 16-bit signed pixels to 8 bits, saturated: below 0 becomes 0 and above 255 becomes 255.
///
/// @param pSrc     First pixel of the source region.
/// @param srcStep  Bytes from one source row to the next, at least 2 x `roiSize.width`.
/// @param pDst     First pixel of the destination region; must not overlap the source.
/// @param dstStep  Bytes from one destination row to the next, at least `roiSize.width`.
/// @param roiSize  Size of the region in pixels, both sides above 0.
/// @retval ippStsNoErr      The region is converted; bytes outside it are untouched.
/// @retval ippStsBadArgErr  Null pointer, empty region, or a row longer than its step; nothing is written.
/// @retval ippStsNoMemErr   Memory ran out; nothing is written.
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
/// @param value       What it is replaced by.
/// @retval ippStsNoErr      The region is thresholded; bytes outside it are untouched.
/// @retval ippStsBadArgErr  Null pointer, empty region, or a row longer than the step, as with every negative step;
///                          nothing is written.
OPCV_DLIB_API IppStatus IPPShare_ippiThreshold_LTVal_8u_C1IR(unsigned char* pSrcDst, int srcDstStep, IppiSize roiSize,
                                                             unsigned char threshold, unsigned char value);

/// `IPPShare_ippiThreshold_LTVal_8u_C1IR` for 16-bit signed pixels, with one difference: a negative step is allowed and
/// walks upwards from the first row.
///
/// @param pSrcDst     First pixel of the region.
/// @param srcDstStep  Bytes from one row to the next: at least 2 x `roiSize.width`, or negative.
/// @param roiSize     Size of the region in pixels, both sides above 0.
/// @param threshold   Largest value that is replaced.
/// @param value       What it is replaced by.
/// @retval ippStsNoErr      The region is thresholded; bytes outside it are untouched.
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
/// @retval ippStsNoErr      The region is filled; bytes outside it are untouched.
/// @retval ippStsBadArgErr  Null pointer, empty region, or a row longer than the step; nothing is written.
OPCV_DLIB_API IppStatus IPPShare_ippiSet_8u_C1R(unsigned char value, unsigned char* pDst, int dstStep,
                                                IppiSize roiSize);
/// @}

/// @name Colour space
///
/// Analog YUV of full range, in OpenCV's fixed point (14 bits), with U and V around 128:
/// Y = 0.299 R + 0.587 G + 0.114 B, U = 0.492 (B - Y) + 128, V = 0.877 (R - Y) + 128 and back; all saturated to bytes.
/// @{

/// Converts packed RGB to packed YUV.
///
/// @param pSrc     First pixel of the source region.
/// @param srcStep  Bytes from one source row to the next, a multiple of 3.
/// @param pDst     First pixel of the destination region: the source itself, with the same step, or no part of it.
/// @param dstStep  Bytes from one destination row to the next, a multiple of 3.
/// @param roiSize  Size of the region in pixels, both sides above 0.
/// @retval ippStsNoErr      The region is converted; bytes outside it are untouched.
/// @retval ippStsBadArgErr  Null pointer, empty region, or a row longer than its step; nothing is written.
/// @retval ippStsNoMemErr   Memory ran out; nothing is written.
OPCV_DLIB_API IppStatus IPPShare_ippiRGBToYUV_8u_C3R(const unsigned char* pSrc, int srcStep, unsigned char* pDst,
                                                     int dstStep, IppiSize roiSize);

/// Converts packed YUV to packed RGB.
///
/// @param pSrc     As in `IPPShare_ippiRGBToYUV_8u_C3R`.
/// @param srcStep  As in `IPPShare_ippiRGBToYUV_8u_C3R`.
/// @param pDst     As in `IPPShare_ippiRGBToYUV_8u_C3R`.
/// @param dstStep  As in `IPPShare_ippiRGBToYUV_8u_C3R`.
/// @param roiSize  As in `IPPShare_ippiRGBToYUV_8u_C3R`.
/// @retval ippStsNoErr      As in `IPPShare_ippiRGBToYUV_8u_C3R`.
/// @retval ippStsBadArgErr  As in `IPPShare_ippiRGBToYUV_8u_C3R`.
/// @retval ippStsNoMemErr   As in `IPPShare_ippiRGBToYUV_8u_C3R`.
OPCV_DLIB_API IppStatus IPPShare_ippiYUVToRGB_8u_C3R(const unsigned char* pSrc, int srcStep, unsigned char* pDst,
                                                     int dstStep, IppiSize roiSize);

/// Converts packed RGB to planes of Y, U and V. The planes may overlap the source, not each other.
///
/// @param pSrc     First pixel of the source region.
/// @param srcStep  Bytes from one source row to the next, a multiple of 3.
/// @param pDst     First pixels of the three destination planes.
/// @param dstStep  Bytes from one row of a plane to the next, at least `roiSize.width`.
/// @param roiSize  Size of the region in pixels.
/// @retval ippStsNoErr      The region is converted; bytes outside it are untouched.
/// @retval ippStsBadArgErr  Null pointer, or a row longer than its step; nothing is written.
/// @retval ippStsNoMemErr   Empty region, or one of 2^31 bytes or more at 3 bytes a pixel and rows of a multiple of 64;
///                          comes before the other. Or memory ran out. Nothing is written.
OPCV_DLIB_API IppStatus IPPMini_ippiRGBToYUV_8u_C3P3R(const unsigned char* pSrc, int srcStep,
                                                      unsigned char* const pDst[3], int dstStep, IppiSize roiSize);

/// Converts planes of Y, U and V to packed RGB. The destination may overlap the planes.
///
/// @param pSrc     First pixels of the three source planes.
/// @param srcStep  Bytes from one row of a plane to the next, at least `roiSize.width`.
/// @param pDst     First pixel of the destination region.
/// @param dstStep  Bytes from one destination row to the next, a multiple of 3.
/// @param roiSize  Size of the region in pixels.
/// @retval ippStsNoErr      As in `IPPMini_ippiRGBToYUV_8u_C3P3R`.
/// @retval ippStsBadArgErr  As in `IPPMini_ippiRGBToYUV_8u_C3P3R`.
/// @retval ippStsNoMemErr   As in `IPPMini_ippiRGBToYUV_8u_C3P3R`.
OPCV_DLIB_API IppStatus IPPMini_ippiYUVToRGB_8u_P3C3R(const unsigned char* const pSrc[3], int srcStep,
                                                      unsigned char* pDst, int dstStep, IppiSize roiSize);
/// @}

/// @name Plane layout
/// @{

/// Copies the three channels of a packed image into planes.
///
/// @param pSrc     First pixel of the source region.
/// @param srcStep  Bytes from one source row to the next, a multiple of 3.
/// @param pDst     First pixels of the three destination planes, which must not overlap the source nor each other.
/// @param dstStep  Bytes from one row of a plane to the next, at least `roiSize.width`.
/// @param roiSize  Size of the region in pixels, both sides above 0.
/// @retval ippStsNoErr      The channels are copied; bytes outside the region are untouched.
/// @retval ippStsBadArgErr  Null pointer, also of a single plane, empty region, or a row longer than its step; nothing is
///                          written to any plane.
/// @retval ippStsNoMemErr   Memory ran out; nothing is written.
OPCV_DLIB_API IppStatus IPPMini_ippiCopy_8u_C3P3R(const unsigned char* pSrc, int srcStep, unsigned char* const pDst[3],
                                                  int dstStep, IppiSize roiSize);

/// Copies three planes into the channels of a packed image.
///
/// @param pSrc     First pixels of the three source planes.
/// @param srcStep  Bytes from one row of a plane to the next, at least `roiSize.width`.
/// @param pDst     First pixel of the destination region, which must not overlap the planes.
/// @param dstStep  Bytes from one destination row to the next, a multiple of 3.
/// @param roiSize  Size of the region in pixels, both sides above 0.
/// @retval ippStsNoErr      The planes are copied; bytes outside the region are untouched.
/// @retval ippStsBadArgErr  As in `IPPMini_ippiCopy_8u_C3P3R`.
/// @retval ippStsNoMemErr   As in `IPPMini_ippiCopy_8u_C3P3R`.
OPCV_DLIB_API IppStatus IPPMini_ippiCopy_8u_P3C3R(const unsigned char* const pSrc[3], int srcStep, unsigned char* pDst,
                                                  int dstStep, IppiSize roiSize);
/// @}

/// @name Convolution and box filter
///
/// A convolution gives dst(x, y) = the sum over the kernel's cells (column i, row j) of
/// kernel[j][i] x src(x + anchor.x - i, y + anchor.y - j), divided by the divisor, for each channel; rounded to the
/// nearest integer (a half to the even one; sums are of 32-bit floats) and saturated. Kernels are dense arrays, row after
/// row. The anchor is the cell that lies on the pixel; it may lie outside the kernel.
///
/// With h = side / 2, rounded down, the source is read from column anchor.x - 2 h to roi.width - 1 + anchor.x and from
/// row anchor.y - 2 h to roi.height - 1 + anchor.y of the region (for an even side, one more than the kernel needs).
/// Where a kernel has 50 cells and more, up to h pixels to the right of these may be looked at as well if the rows are
/// longer; they have no effect. Source and destination may share memory.
///
/// What all of them answer:
/// - `ippStsNoErr`: the region is written; bytes outside it are untouched.
/// - `ippStsBadArgErr`: an argument is refused, and nothing is written: a null pointer, a region or a kernel with a side
///   of 0 or less, a divisor of 0, a source step shorter than the columns read, or a destination step shorter than the
///   region's row.
/// - `ippStsNoMemErr`: memory ran out; nothing is written.
/// @{

/// Convolution of one 8-bit channel with an integer kernel.
///
/// @param pSrc        First pixel of the source region.
/// @param srcStep     Bytes from one source row to the next.
/// @param pDst        First pixel of the destination region.
/// @param dstStep     Bytes from one destination row to the next.
/// @param dstRoiSize  Size of the region in pixels.
/// @param pKernel     kernelSize.width x kernelSize.height cells.
/// @param kernelSize  Sides of the kernel, odd or even.
/// @param anchor      Cell that lies on the pixel.
/// @param divisor     Not 0; may be negative.
/// @retval ippStsNoErr      As above.
/// @retval ippStsBadArgErr  As above.
/// @retval ippStsNoMemErr   As above.
OPCV_DLIB_API IppStatus IPPShare_ippiFilter_8u_C1R(const unsigned char* pSrc, int srcStep, unsigned char* pDst,
                                                   int dstStep, IppiSize dstRoiSize, const int* pKernel,
                                                   IppiSize kernelSize, IppiPoint anchor, int divisor);

/// Convolution of three interleaved 8-bit channels with an integer kernel.
///
/// @param pSrc        As in `IPPShare_ippiFilter_8u_C1R`.
/// @param srcStep     As in `IPPShare_ippiFilter_8u_C1R`; a multiple of 3.
/// @param pDst        As in `IPPShare_ippiFilter_8u_C1R`.
/// @param dstStep     As in `IPPShare_ippiFilter_8u_C1R`; a multiple of 3.
/// @param dstRoiSize  As in `IPPShare_ippiFilter_8u_C1R`.
/// @param pKernel     As in `IPPShare_ippiFilter_8u_C1R`; one kernel for all channels.
/// @param kernelSize  As in `IPPShare_ippiFilter_8u_C1R`.
/// @param anchor      As in `IPPShare_ippiFilter_8u_C1R`.
/// @param divisor     As in `IPPShare_ippiFilter_8u_C1R`.
/// @retval ippStsNoErr      As above.
/// @retval ippStsBadArgErr  As above.
/// @retval ippStsNoMemErr   As above.
OPCV_DLIB_API IppStatus IPPShare_ippiFilter_8u_C3R(const unsigned char* pSrc, int srcStep, unsigned char* pDst,
                                                   int dstStep, IppiSize dstRoiSize, const int* pKernel,
                                                   IppiSize kernelSize, IppiPoint anchor, int divisor);

/// Convolution of one 16-bit signed channel with an integer kernel.
///
/// @param pSrc        As in `IPPShare_ippiFilter_8u_C1R`.
/// @param srcStep     As in `IPPShare_ippiFilter_8u_C1R`; a multiple of 2.
/// @param pDst        As in `IPPShare_ippiFilter_8u_C1R`.
/// @param dstStep     As in `IPPShare_ippiFilter_8u_C1R`; a multiple of 2.
/// @param dstRoiSize  As in `IPPShare_ippiFilter_8u_C1R`.
/// @param pKernel     As in `IPPShare_ippiFilter_8u_C1R`.
/// @param kernelSize  As in `IPPShare_ippiFilter_8u_C1R`.
/// @param anchor      As in `IPPShare_ippiFilter_8u_C1R`.
/// @param divisor     As in `IPPShare_ippiFilter_8u_C1R`.
/// @retval ippStsNoErr      As above.
/// @retval ippStsBadArgErr  As above.
/// @retval ippStsNoMemErr   As above.
OPCV_DLIB_API IppStatus IPPShare_ippiFilter_16s_C1R(const short* pSrc, int srcStep, short* pDst, int dstStep,
                                                    IppiSize dstRoiSize, const int* pKernel, IppiSize kernelSize,
                                                    IppiPoint anchor, int divisor);

/// Convolution of three interleaved 8-bit channels with a float kernel, without a divisor.
///
/// @param pSrc        As in `IPPShare_ippiFilter_8u_C3R`.
/// @param srcStep     As in `IPPShare_ippiFilter_8u_C3R`.
/// @param pDst        As in `IPPShare_ippiFilter_8u_C3R`.
/// @param dstStep     As in `IPPShare_ippiFilter_8u_C3R`.
/// @param dstRoiSize  As in `IPPShare_ippiFilter_8u_C3R`.
/// @param pKernel     As in `IPPShare_ippiFilter_8u_C3R`.
/// @param kernelSize  As in `IPPShare_ippiFilter_8u_C3R`.
/// @param anchor      As in `IPPShare_ippiFilter_8u_C3R`.
/// @retval ippStsNoErr      As above.
/// @retval ippStsBadArgErr  As above.
/// @retval ippStsNoMemErr   As above.
OPCV_DLIB_API IppStatus IPPMini_ippiFilter32f_8u_C3R(const unsigned char* pSrc, int srcStep, unsigned char* pDst,
                                                     int dstStep, IppiSize dstRoiSize, const float* pKernel,
                                                     IppiSize kernelSize, IppiPoint anchor);

/// Box filter in place, on three interleaved 8-bit channels: each pixel becomes the rounded mean of the mask's pixels,
/// the top left one of which is (x - anchor.x, y - anchor.y). The mean is OpenCV's: up to 256 mask pixels it multiplies
/// by a 23-bit reciprocal, which rounds up one sum early where their number is a power of two (4 pixels: a sum of 1
/// gives 1; 2 pixels: even a sum of 0 does).
///
/// The image is read from column -anchor.x to roi.width - 1 - anchor.x + 2 h, h = mask width / 2 rounded down, and
/// likewise in rows; all means are formed from the pixels as they were before the call.
///
/// @param srcDst      First pixel of the region.
/// @param srcDstStep  Bytes from one row to the next, a multiple of 3.
/// @param roi         Size of the region in pixels.
/// @param maskSize    Sides of the mask, at least 1, odd or even.
/// @param anchor      Mask cell that lies on the pixel; it may lie outside the mask.
/// @retval ippStsNoErr      The region is filtered; bytes outside it are untouched.
/// @retval ippStsBadArgErr  Null pointer, a side of the mask or of the region is 0 or less, or the step is shorter than
///                          the columns read; nothing is written.
/// @retval ippStsNoMemErr   Memory ran out; nothing is written.
OPCV_DLIB_API IppStatus IPPMini_ippiFilterBox_8u_C3IR(unsigned char* srcDst, int srcDstStep, IppiSize roi,
                                                      IppiSize maskSize, IppiPoint anchor);

/// Convolution of a whole packed 24-bit image with one square float kernel for all channels. The ring of `radius` pixels
/// along the edges of `dst` is not written.
///
/// @param src     The image: rows of 3 x width bytes.
/// @param dst     Receives the result, laid out like `src`; it may be `src`.
/// @param size    Size of the image in pixels. If a side is not above 2 x radius, nothing is done.
/// @param radius  The kernel's sides are 2 x radius + 1. Below 0 nothing is done.
/// @param kernel  The cells, row after row. If this or another pointer is null, nothing is done.
OPCV_DLIB_API void Convolution24MonoFilter(const unsigned char* src, unsigned char* dst, IppiSize size, int radius,
                                           const float* kernel);

/// Convolution of a whole packed 24-bit image with a square float kernel for each channel.
///
/// @param src      The image: rows of 3 x width bytes.
/// @param dst      Receives the result, laid out like `src`; it may be `src`. The ring of `radius` pixels along the edges
///                 is not filtered: it holds the source's pixels, and no caller should rely on it.
/// @param size     Size of the image in pixels.
/// @param radius   The kernels' sides are 2 x radius + 1.
/// @param kernels  Three kernels, one behind the other, in the reverse order of the channels: the first is for the last
///                 byte of a pixel, the third for the first byte.
/// @return true if the image is filtered; false, with nothing written, if a pointer is null, the radius is below 0, a
///         side of the image is not above 2 x radius, the image (with rows of a multiple of 64 bytes) does not fit in 31
///         bits of bytes, or memory ran out.
OPCV_DLIB_API bool Convolution24(const unsigned char* src, unsigned char* dst, IppiSize size, int radius,
                                 const float* kernels);
/// @}

/// @name Noise reduction
/// @{

/// Bilateral filter of one 8-bit channel: each pixel becomes the weighted mean of the pixels not farther away than half
/// the kernel's side, with weights exp(-d^2 / 2 colorSquareSigma) exp(-r^2 / 2 spaceSquareSigma) for a difference d in
/// grey and a distance r in pixels.
///
/// @param src               First pixel of the source region; the image continues kernelSize.width / 2 pixels past every
///                          edge. (Sides of 1 filter with 3x3 pixels, and what lies left, above and below the region is
///                          mirrored from it; to the right it is read if the rows are longer, otherwise mirrored.)
/// @param srcStep           Bytes from one source row to the next.
/// @param dst               First pixel of the destination region; may share memory with the source.
/// @param dstStep           Bytes from one destination row to the next.
/// @param roi               Size of the region in pixels.
/// @param kernelSize        Sides of the neighbourhood: equal and odd.
/// @param colorSquareSigma  Square of sigma in grey levels; 0 counts as 1.
/// @param spaceSquareSigma  Square of sigma in pixels; 0 counts as 1.
/// @retval ippStsNoErr      The region is filtered; bytes outside it are untouched.
/// @retval ippStsBadArgErr  Null pointer, sides of the kernel unequal, even or below 1, a side of the region 0 or less,
///                          or a step shorter than the columns that it serves; nothing is written.
/// @retval ippStsNoMemErr   Memory ran out; nothing is written.
OPCV_DLIB_API IppStatus OPCV_ippiFilterBilateral_8u_C1R(const unsigned char* src, int srcStep, unsigned char* dst,
                                                        int dstStep, IppiSize roi, IppiSize kernelSize,
                                                        float colorSquareSigma, float spaceSquareSigma);

/// Noise reduction of a whole packed grey image: the bilateral filter with both squared sigmas 96 x strength, or 1 for
/// strength 0. The outer ring of `dst` (2 pixels in mode 2, otherwise 1) is not written.
///
/// @param src       The image: rows of `size.width` bytes.
/// @param dst       Receives the result, laid out like `src`; it may be `src`. If a pointer is null, nothing is done.
/// @param size      Size of the image in pixels. If a side has no more than the ring's pixels, nothing is done.
/// @param mode      2: 5x5 pixels; every other value: 3x3.
/// @param strength  0 to 10; not checked.
OPCV_DLIB_API void DeosNr(const unsigned char* src, unsigned char* dst, IppiSize size, int mode, int strength);

/// Noise reduction of a whole packed 24-bit image: `DeosNr` on each channel.
///
/// @param src       The image: rows of 3 x width bytes.
/// @param dst       Receives the result, laid out like `src`; it may be `src`. The outer ring is not filtered: it holds
///                  the source's pixels, and no caller should rely on it.
/// @param width     Pixels a row, a multiple of 4.
/// @param height    Rows.
/// @param mode      0 and 1: 3x3 pixels; 2: 5x5.
/// @param strength  0 to 10.
/// @retval 0  The image is filtered; or, with nothing written, a pointer is null, a side is 0 or less, the image (with
///            rows of a multiple of 64 bytes) does not fit in 31 bits of bytes, or memory ran out.
/// @retval 1  `mode` is not 0 to 2; nothing is written.
/// @retval 2  `strength` is not 0 to 10; nothing is written.
/// @retval 3  `width` is no multiple of 4; nothing is written.
OPCV_DLIB_API int DeosNrRGB(const unsigned char* src, unsigned char* dst, int width, int height, int mode,
                            int strength);
/// @}

/// @name Matrix product and cosine transform
/// @{

/// Single-precision matrix product: C = alpha op(A) op(B) + beta C, with op(A) of M x K, op(B) of K x N and C of M x N
/// elements. Leading dimensions are in elements. Nothing is done if a matrix pointer is null, a size is 0 or less, a
/// leading dimension is shorter than the rows (columns, if column-major) as they are stored, or its bytes do not fit in
/// 31 bits.
///
/// @param order   101: row-major; every other value: column-major.
/// @param transA  111: A as it is stored; every other value: its transpose.
/// @param transB  111: B as it is stored; every other value: its transpose.
/// @param M       Rows of op(A) and C.
/// @param N       Columns of op(B) and C.
/// @param K       Columns of op(A), rows of op(B).
/// @param alpha   Factor of the product.
/// @param A       First matrix.
/// @param lda     Its leading dimension.
/// @param B       Second matrix.
/// @param ldb     Its leading dimension.
/// @param beta    Factor of what C holds; with 0 it is not read.
/// @param C       Receives the result; elements beside it are untouched.
/// @param ldc     Its leading dimension.
OPCV_DLIB_API void OPCV_cblas_sgemm(int order, int transA, int transB, int M, int N, int K, float alpha, const float* A,
                                    int lda, const float* B, int ldb, float beta, float* C, int ldc);

/// Replaces a table of n x n values by its orthonormal discrete cosine transform (forward: type II). It is one transform
/// of length n x n over the rows, one behind the other, not one in two dimensions. Odd n is summed up by the definition
/// and takes n^4 steps.
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

/// Median of a region by a square mask, for any pixel type that OpenCV's median filter takes; each channel by itself.
///
/// @param pSrc      First pixel of the source region. The image must hold every window, as told for
///                  `IPPShare_ippiFilterMedian_8u_C1R`.
/// @param srcStep   Bytes from one source row to the next; a multiple of the pixel size.
/// @param type      OpenCV type code: 0 for one 8-bit channel, 16 for three, ...
/// @param pDst      First pixel of the destination region; may overlap the source.
/// @param dstStep   Bytes from one destination row to the next; a multiple of the pixel size.
/// @param roiSize   Size of the region in pixels.
/// @param maskSize  Size of the mask: odd, width equal to height.
/// @param anchor    Cell of the mask that lies over the pixel, counted from 0.
/// @retval ippStsNoErr      The region is filtered; no byte outside it is written.
/// @retval ippStsBadArgErr  Null pointer, mask not square or not odd, empty region, or rows too short for the region (at
///                          the source: for the region and m - 1 more pixels); nothing is written.
/// @retval ippStsNoMemErr   Memory ran out; nothing is written.
/// @throws cv::Exception if OpenCV has no median for the type and mask; nothing is written.
OPCV_DLIB_API IppStatus ippiFilterMedian(const void* pSrc, int srcStep, int type, void* pDst, int dstStep,
                                         const IppiSize& roiSize, const IppiSize& maskSize, const IppiPoint& anchor);
/// @}

/// @name Medians without checks
///
/// What the checked entry points of the medians with a fixed window call, for arguments that are known to be good. Rows
/// of the destination must not overlap.
/// @{

/// `IPPShare_ippiFilterMedianCross_8u_C1R` with mask 33.
///
/// @param pSrc     First pixel of the source region; the image goes on 1 pixel on each side.
/// @param srcStep  Bytes from one source row to the next.
/// @param pDst     First pixel of the destination region; must not overlap the source.
/// @param dstStep  Bytes from one destination row to the next.
/// @param width    Pixels a row, at least 1.
/// @param height   Rows; 0 and less do nothing.
OPCV_DLIB_API void FilterMedianCross3x3_8u_C1R(const unsigned char* pSrc, int srcStep, unsigned char* pDst, int dstStep,
                                               int width, int height);

/// `IPPShare_ippiFilterMedianCross_8u_C1R` with mask 55.
///
/// @param pSrc     First pixel of the source region; the image goes on 2 pixels on each side.
/// @param srcStep  As in `FilterMedianCross3x3_8u_C1R`.
/// @param pDst     As in `FilterMedianCross3x3_8u_C1R`.
/// @param dstStep  As in `FilterMedianCross3x3_8u_C1R`.
/// @param width    As in `FilterMedianCross3x3_8u_C1R`.
/// @param height   As in `FilterMedianCross3x3_8u_C1R`.
OPCV_DLIB_API void FilterMedianCross5x5_8u_C1R(const unsigned char* pSrc, int srcStep, unsigned char* pDst, int dstStep,
                                               int width, int height);

/// `IPPShare_ippiFilterMedianWeightedCenter3x3_8u_C1R` with weight 3.
///
/// @param pSrc     As in `FilterMedianCross3x3_8u_C1R`.
/// @param srcStep  As in `FilterMedianCross3x3_8u_C1R`.
/// @param pDst     As in `FilterMedianCross3x3_8u_C1R`.
/// @param dstStep  As in `FilterMedianCross3x3_8u_C1R`.
/// @param width    As in `FilterMedianCross3x3_8u_C1R`.
/// @param height   As in `FilterMedianCross3x3_8u_C1R`.
OPCV_DLIB_API void FilterMedianWeightedCenter3x3_3_8u_C1R(const unsigned char* pSrc, int srcStep, unsigned char* pDst,
                                                          int dstStep, int width, int height);

/// `IPPShare_ippiFilterMedianWeightedCenter3x3_8u_C1R` with weight 5.
///
/// @param pSrc     As in `FilterMedianCross3x3_8u_C1R`.
/// @param srcStep  As in `FilterMedianCross3x3_8u_C1R`.
/// @param pDst     As in `FilterMedianCross3x3_8u_C1R`.
/// @param dstStep  As in `FilterMedianCross3x3_8u_C1R`.
/// @param width    As in `FilterMedianCross3x3_8u_C1R`.
/// @param height   As in `FilterMedianCross3x3_8u_C1R`.
OPCV_DLIB_API void FilterMedianWeightedCenter3x3_5_8u_C1R(const unsigned char* pSrc, int srcStep, unsigned char* pDst,
                                                          int dstStep, int width, int height);

/// `IPPShare_ippiFilterMedianColor_8u_C3R` with mask 33.
///
/// @param pSrc     As in `FilterMedianCross3x3_8u_C1R`.
/// @param srcStep  As in `FilterMedianCross3x3_8u_C1R`.
/// @param pDst     As in `FilterMedianCross3x3_8u_C1R`.
/// @param dstStep  As in `FilterMedianCross3x3_8u_C1R`.
/// @param width    As in `FilterMedianCross3x3_8u_C1R`.
/// @param height   As in `FilterMedianCross3x3_8u_C1R`.
OPCV_DLIB_API void FilterMedianColor3x3_8u_C3R(const unsigned char* pSrc, int srcStep, unsigned char* pDst, int dstStep,
                                               int width, int height);
/// @}

/// @name Rotation of regions, any pixel type
/// @{

/// Turns a region about its top-left pixel and moves the result by whole pixels. Uncovered pixels get the border value.
///
/// When the moved destination rectangle does not lie within the region, the region is enlarged first: with what the
/// source image really holds above, to the left and, as far as the step reaches, to the right of it, and with the
/// border value where there is no image. Bytes that pad a row count as image.
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
/// @param yShift         Shift down after the turn, likewise.
/// @param interpolation  Ignored: always bilinear.
/// @param type           OpenCV type code: 0 for one 8-bit channel, 16 for three, 24 for four.
/// @param borderValue    Fill for pixels from outside the source.
/// @retval ippStsNoErr      The destination rectangle is filled.
/// @retval ippStsBadArgErr  The region is larger than the source image, a pointer is null, a rectangle is empty or does
///                          not fit in its rows, or a shift leaves the range of int; nothing is written.
/// @retval ippStsNoMemErr   Memory ran out; nothing is written.
/// @throws cv::Exception if a side of the region, enlarged as above, reaches 32767 pixels; nothing is written.
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
/// @param dstRoi         Part of the destination that is filled. Where it is larger than the source region, the rest of
///                       it is left as it was.
/// @param angle          Degrees, counter-clockwise on screen.
/// @param xCenter        Column of the centre, in pixels of the source region; converted to float.
/// @param yCenter        Row of the centre, likewise.
/// @param interpolation  Ignored: always bilinear.
/// @param type           OpenCV type code: 0 for one 8-bit channel, 16 for three, 24 for four.
/// @param borderValue    Fill for pixels from outside the source region.
/// @retval ippStsNoErr      The destination rectangle is filled.
/// @retval ippStsBadArgErr  The region is larger than the source image, a pointer is null, or a rectangle is empty or
///                          does not fit in its rows; nothing is written.
/// @retval ippStsNoMemErr   Memory ran out; nothing is written.
/// @throws cv::Exception if a side of the source region reaches 32767 pixels; nothing is written.
OPCV_DLIB_API IppStatus ippiRotateCenter(const unsigned char* src, const IppiSize& srcSize, int srcStep,
                                         const IppiRect& srcRoi, unsigned char* dst, int dstStep,
                                         const IppiRect& dstRoi, double angle, double xCenter, double yCenter,
                                         int interpolation, int type, const cv::Scalar& borderValue);
/// @}

/// @name JPEG compression of buffers
///
/// Each appends a complete stream to `out`. Nothing is checked but what the encoder checks itself.
/// @{

/// Compresses a grey raster.
///
/// @param pixels           First row, one byte a pixel.
/// @param rowBytes         Bytes from one row to the next.
/// @param width            Pixels a row, 1 to 65500.
/// @param height           Rows, 1 to 65500.
/// @param out              Receives the stream behind what it already holds.
/// @param quality          1 to 100.
/// @param yResolution      Vertical dots per inch; the low 16 bits are stored. It comes before the horizontal one.
/// @param xResolution      Horizontal dots per inch, likewise.
/// @param useCustomTables  The library's own quantisation table, scaled by the quality, instead of libjpeg's.
/// @return true if a complete stream was appended; false if the encoder failed, and part of one may have been.
/// @throws std::bad_alloc if the encoder's work buffer cannot be had; nothing is appended.
OPCV_DLIB_API bool CompressGray2Gray444(const unsigned char* pixels, int rowBytes, int width, int height,
                                        std::vector<unsigned char>& out, int quality, int yResolution, int xResolution,
                                        bool useCustomTables);

/// Compresses a red, green, blue raster without subsampling.
///
/// @param pixels           First row, three bytes a pixel.
/// @param rowBytes         As in `CompressGray2Gray444`.
/// @param width            As in `CompressGray2Gray444`.
/// @param height           As in `CompressGray2Gray444`.
/// @param out              As in `CompressGray2Gray444`.
/// @param quality          As in `CompressGray2Gray444`.
/// @param yResolution      As in `CompressGray2Gray444`.
/// @param xResolution      As in `CompressGray2Gray444`.
/// @param useCustomTables  The library's own two quantisation tables, scaled by the quality, instead of libjpeg's.
/// @return As in `CompressGray2Gray444`.
/// @throws std::bad_alloc if the encoder's work buffer cannot be had; nothing is appended.
OPCV_DLIB_API bool CompressRGB2YCbCr444(const unsigned char* pixels, int rowBytes, int width, int height,
                                        std::vector<unsigned char>& out, int quality, int yResolution, int xResolution,
                                        bool useCustomTables);

/// Compresses a red, green, blue raster with chroma subsampled 2 x 2 and libjpeg's quantisation tables.
///
/// @param pixels       First row, three bytes a pixel.
/// @param rowBytes     As in `CompressGray2Gray444`.
/// @param width        As in `CompressGray2Gray444`.
/// @param height       As in `CompressGray2Gray444`.
/// @param out          As in `CompressGray2Gray444`.
/// @param quality      As in `CompressGray2Gray444`.
/// @param yResolution  As in `CompressGray2Gray444`.
/// @param xResolution  As in `CompressGray2Gray444`.
/// @return As in `CompressGray2Gray444`.
/// @throws std::bad_alloc if the encoder's work buffer cannot be had; nothing is appended.
OPCV_DLIB_API bool CompressRGB2YCbCr411(const unsigned char* pixels, int rowBytes, int width, int height,
                                        std::vector<unsigned char>& out, int quality, int yResolution, int xResolution);
/// @}

/// @name Bit packing without checks
/// @{

/// `IPPShare_ippiConvert_1u8u_C1R` for arguments that are known to be good.
///
/// @param src        Byte that holds the region's first pixel.
/// @param srcStep    Bytes from one source row to the next.
/// @param bitOffset  Bits of that byte before the first pixel, 0 to 7.
/// @param dst        First pixel of the destination.
/// @param dstStep    Bytes from one destination row to the next.
/// @param width      Pixels a row, at least 1.
/// @param height     Rows; 0 and less do nothing.
OPCV_DLIB_API void Convert_1u8u_C1R(const unsigned char* src, int srcStep, int bitOffset, unsigned char* dst,
                                    int dstStep, int width, int height);

/// `IPPShare_ippiReduceBits_8u1u_C1R` for arguments that are known to be good.
///
/// @param src        First pixel of the source.
/// @param srcStep    Bytes from one source row to the next.
/// @param dst        Byte that receives the region's first pixel.
/// @param dstStep    Bytes from one destination row to the next.
/// @param bitOffset  Bits of that byte before the first pixel, 0 to 7.
/// @param width      Pixels a row, at least 1.
/// @param height     Rows; 0 and less do nothing.
/// @param threshold  Largest grey value that becomes 0.
OPCV_DLIB_API void Convert_8u1u_C1R(const unsigned char* src, int srcStep, unsigned char* dst, int dstStep,
                                    int bitOffset, int width, int height, unsigned char threshold);
/// @}

/// @name Thresholds without checks
/// @{

/// `IPPShare_ippiThreshold_LTVal_8u_C1IR` for arguments that are known to be good. The step may be negative.
///
/// @param p          First pixel of the region.
/// @param step       Bytes from one row to the next.
/// @param width      Pixels a row; 0 and less do nothing.
/// @param height     Rows; 0 and less do nothing.
/// @param threshold  Largest value that is replaced.
/// @param value      What it is replaced by.
OPCV_DLIB_API void Threshold_LTVal_8u_C1IR(unsigned char* p, int step, int width, int height, unsigned char threshold,
                                           unsigned char value);

/// `IPPShare_ippiThreshold_LTVal_16s_C1IR` for arguments that are known to be good.
///
/// @param p          First pixel of the region.
/// @param step       Bytes from one row to the next, of any sign.
/// @param width      Pixels a row; 0 and less do nothing.
/// @param height     Rows; 0 and less do nothing.
/// @param threshold  Largest value that is replaced.
/// @param value      What it is replaced by.
OPCV_DLIB_API void Threshold_LTVal_16s_C1IR(short* p, int step, int width, int height, short threshold, short value);
/// @}

/// @name Convolution of any pixel type
/// @{

/// Convolution with an integer kernel, as described for `IPPShare_ippiFilter_8u_C1R`, of any pixel type that OpenCV's
/// linear filter takes.
///
/// @param src         First pixel of the source region.
/// @param srcStep     Bytes from one source row to the next, a multiple of the pixel size.
/// @param type        OpenCV type code: 0 for one 8-bit channel, 16 for three, 3 for one 16-bit signed channel.
/// @param dst         First pixel of the destination region.
/// @param dstStep     Bytes from one destination row to the next, a multiple of the pixel size.
/// @param roi         Size of the region in pixels.
/// @param kernel      kernelSize.width x kernelSize.height cells.
/// @param kernelSize  Sides of the kernel, odd or even.
/// @param anchor      Cell that lies on the pixel; it may lie outside the kernel.
/// @param divisor     Not 0; may be negative.
/// @retval ippStsNoErr      The region is written; bytes outside it are untouched.
/// @retval ippStsBadArgErr  Null pointer, a side of the region or the kernel is 0 or less, divisor 0, or a step shorter
///                          than the columns that it serves; nothing is written.
/// @retval ippStsNoMemErr   Memory ran out; nothing is written.
/// @throws cv::Exception if OpenCV has no linear filter for the type; nothing is written.
OPCV_DLIB_API IppStatus ippiFilter(const void* src, int srcStep, int type, void* dst, int dstStep, const IppiSize& roi,
                                   const int* kernel, const IppiSize& kernelSize, const IppiPoint& anchor, int divisor);

/// `ippiFilter` with a float kernel and without a divisor.
///
/// @param src         As in `ippiFilter`.
/// @param srcStep     As in `ippiFilter`.
/// @param type        As in `ippiFilter`.
/// @param dst         As in `ippiFilter`.
/// @param dstStep     As in `ippiFilter`.
/// @param roi         As in `ippiFilter`.
/// @param kernel      As in `ippiFilter`.
/// @param kernelSize  As in `ippiFilter`.
/// @param anchor      As in `ippiFilter`.
/// @retval ippStsNoErr      As in `ippiFilter`.
/// @retval ippStsBadArgErr  As in `ippiFilter`, but there is no divisor.
/// @retval ippStsNoMemErr   As in `ippiFilter`.
/// @throws cv::Exception where `ippiFilter` does; nothing is written.
OPCV_DLIB_API IppStatus ippiFilter32f(const void* src, int srcStep, int type, void* dst, int dstStep,
                                      const IppiSize& roi, const float* kernel, const IppiSize& kernelSize,
                                      const IppiPoint& anchor);
/// @}
#endif    // __cplusplus

#endif    // OPCV_DLIB_H
