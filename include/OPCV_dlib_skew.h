// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

/// @file OPCV_dlib_skew.h
/// Finds the skew of a scanned page: the angle that straightens its lines of text.
///
/// This header belongs to a library of its own, libOPCV_dlib_skew. It takes the records of OPCV_dlib.h, but calls neither
/// that library nor OpenCV. The header compiles as C11 and as C++17.
///
/// The function throws nothing, prints nothing and keeps no state: any number of threads may call it at once, also on
/// the same page.
///
/// The structure begins with its own size, so that it can grow. Set every byte to zero first, then `struct_size`:
///
///     opcv_skew skew = {0};
///     skew.struct_size = sizeof skew;
///     const bool found = opcv_find_skew(page, &skew) == noErr && skew.outcome == OPCV_SKEW_FOUND;
///
/// `skew.angle` is the angle that the deskew functions of OPCV_dlib.h take.
#ifndef OPCV_DLIB_SKEW_H
#define OPCV_DLIB_SKEW_H

#include <stddef.h>
#include <stdint.h>

#include "OPCV_dlib.h"

#ifdef __cplusplus
extern "C" {
#endif

/// @name Skew of a page
/// @{

/// What was found on a page.
typedef enum opcv_skew_outcome {
    OPCV_SKEW_FOUND = 0,      ///< Lines of text, and their angle.
    OPCV_SKEW_BLANK = 1,      ///< Next to nothing is printed on the page.
    OPCV_SKEW_PICTURE = 2,    ///< There is print, but not in lines: a picture, a map, a texture.
    OPCV_SKEW_UNSURE = 3      ///< Something looks like lines, but not clearly enough to turn the page by it.
} opcv_skew_outcome;

/// The skew of a page.
typedef struct opcv_skew {
    size_t struct_size;    ///< `sizeof(opcv_skew)`; set by the caller.
    double angle;    ///< Degrees, between -15 and 15; positive: turning counter-clockwise straightens the page. 0 if
                     ///< no skew was found.
    double confidence;    ///< 0 to 1: how clearly the page shows lines at one angle. Found from 0.5 up.
    int32_t outcome;      ///< An `opcv_skew_outcome`.
    int32_t reserved;     ///< Set to 0.
} opcv_skew;

/// Finds the angle that straightens a page, within 15 degrees to either side.
///
/// The page is reduced to about 1200 x 1700 pixels (or enlarged, if it is small), its background is evened out, and
/// what is darker is ink. The angle is the one at which the rows of ink and the rows of paper between them are most
/// distinct. It is reported only if parts of the page agree on it: a page that stays as it is costs less than a page that
/// is turned by mistake. A page on its side or its head has lines, too; its angle is relative to the nearest way in which
/// its lines lie level, if they are within reach, and says nothing about which way is up.
///
/// Memory: at most 100 MB, of which a page of text of any size needs less than 20; besides, 3 bytes for each pixel of a row.
///
/// @param page  A record of depth 1 (a set bit is white), 8 (grey) or 24 (red, green, blue) or 32 (the same and a byte that
///              is ignored). Only its pixels are read: `width` by `height`, with `rowBytes` from row to row.
/// @param skew  Receives the result.
/// @retval noErr       The result is written.
/// @retval paramErr    A pointer is null, the size or depth is invalid, a row is longer than `rowBytes`, or `struct_size`
///                     is unknown; nothing is written.
/// @retval memFullErr  Out of memory; nothing is written.
OPCV_DLIB_API OSErr opcv_find_skew(const KVIMG* page, opcv_skew* skew);
/// @}

#ifdef __cplusplus
}    // extern "C"
#endif

#endif    // OPCV_DLIB_SKEW_H
