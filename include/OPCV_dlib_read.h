// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

/// @file OPCV_dlib_read.h
/// Reading of JPEG streams for servers: with limits, cancellation and a report.
///
/// These functions read what `ReadJPEG` reads, with the same pixels. They add three things:
///
/// - **Limits.** The caller bounds the pixels, the scans, the memory and the length of the stream. A stream that
///   exceeds a limit is rejected after one pass over its markers, before anything is allocated or decoded.
/// - **Cancellation.** A callback is called between rows while a page is decoded. It can stop the call, for example at
///   a deadline.
/// - **A report.** It contains the fields of the stream's headers, and how many rows of the page the stream contained.
///
/// The header compiles as C11 and as C++17. The functions throw nothing, print nothing and keep no state: any number of
/// threads may call them at once. Their exported names have the version `OPCV_1.1`.
///
/// Both structures begin with their own size, so that they can grow. Set every byte to zero first, then `struct_size`:
///
///     opcv_read_report report = {0};
///     report.struct_size = sizeof report;
#ifndef OPCV_DLIB_READ_H
#define OPCV_DLIB_READ_H

#include <stddef.h>
#include <stdint.h>

#include "OPCV_dlib.h"

#ifdef __cplusplus
extern "C" {
#endif

/// @name JPEG reading with limits
///
/// The library's own limits always apply, whatever the caller states: 2^31 - 1 bytes of stream, 2^30 pixels, 65500
/// pixels per side, 100 scans, and for the work of all scans together the limits documented for `ReadJPEG`.
/// @{

/// How a call ended.
typedef enum opcv_read_status {
    OPCV_READ_OK = 0,               ///< The page is read. Look at `damaged` in the report.
    OPCV_READ_BAD_ARGUMENT = -1,    ///< A pointer is null, the stream is empty, or a structure or a limit is invalid.
    OPCV_READ_UNREADABLE = -2,      ///< This is not a JPEG stream, or it cannot be decoded.
    OPCV_READ_OVER_LIMIT = -3,      ///< The stream exceeds a limit of the caller or of the library.
    OPCV_READ_NO_MEMORY = -4,       ///< Out of memory.
    OPCV_READ_CANCELLED = -5,       ///< The callback cancelled the call.
    OPCV_READ_WRONG_SIZE = -6       ///< The caller's rows differ from the page in size or channels.
} opcv_read_status;

/// Limits and cancellation. A limit of 0 leaves only the library's own limit.
typedef struct opcv_read_options {
    size_t struct_size;              ///< `sizeof(opcv_read_options)`.
    size_t max_bytes;                ///< Bytes of the stream.
    int64_t max_pixels;              ///< Width times height.
    int64_t max_memory;              ///< Bytes that the call may allocate: compared with `memory` of the report.
    int32_t max_scans;               ///< Scans of the stream.
    int32_t reserved;                ///< 0.
    int (*cancel)(void* context);    ///< Null, or called between rows: a result other than 0 cancels. Must not throw.
    void* context;                   ///< Passed to `cancel`.
} opcv_read_options;

/// Information about a stream and its page. A function fills in what it has found, whatever its status is.
///
/// The decoder needs some bytes behind a row to decode it. A stream that lacks only its end marker therefore loses its
/// last rows too: `rows_decoded` does not count them.
///
/// `damaged` is 1 if rows, the end marker or all scans of a component are missing. A progressive stream that lacks
/// other scans, and has its end marker, is not damaged: the standard permits streams that never refine a page.
typedef struct opcv_read_report {
    size_t struct_size;         ///< `sizeof(opcv_read_report)`; set by the caller.
    int32_t width;              ///< Pixels per row of the page, after the EXIF orientation is applied. 0: unknown.
    int32_t height;             ///< Rows of the page, after the EXIF orientation is applied.
    int32_t channels;           ///< Channels of the page: 1 is grey, 3 is red, green, blue.
    int32_t components;         ///< Components of the stream: 1, 3 or 4.
    int32_t progressive;        ///< 1 if the coding is progressive, 0 if it is sequential.
    int32_t arithmetic;         ///< 1 for arithmetic coding, 0 for Huffman coding.
    int32_t scans;              ///< Scan headers in the stream.
    int32_t orientation;        ///< The EXIF orientation that is applied, 1 to 8; 1 if there is none.
    double dpi_x;               ///< Dots per inch along a row of the page: from JFIF, else from EXIF, else 0.
    double dpi_y;               ///< Dots per inch along a column of the page.
    int64_t memory;             ///< Upper bound of the bytes that the call allocates at the same time.
    int64_t warnings;           ///< Warnings of the decoder about the data.
    int32_t rows;               ///< Rows of the stored image: the height, or the width if the orientation transposes.
    int32_t rows_decoded;       ///< Rows of the stored image that were decoded. The others repeat the last one.
    int32_t end_marker_seen;    ///< 1 if the stream ends with its end marker.
    int32_t damaged;            ///< 1 if a part is missing, the decoder warned, or decoding failed; see below.
} opcv_read_report;

/// The caller's rows, which receive a page.
typedef struct opcv_rows {
    unsigned char* data;    ///< First byte of the first row.
    ptrdiff_t step;         ///< Bytes from one row to the next; negative if the rows run upwards.
    int32_t width;          ///< Pixels per row.
    int32_t height;         ///< Rows.
    int32_t channels;       ///< 1 for grey; 3 for red, green, blue. A grey page is repeated in all three.
} opcv_rows;

/// Reports the contents of the headers of a JPEG stream. Nothing is decoded and nothing is allocated.
///
/// Pass the whole stream, because its scans are counted. In the report, `memory` is that of `opcv_read_page`, and
/// `warnings`, `rows_decoded`, `end_marker_seen` and `damaged` stay 0.
///
/// @param jpeg     The stream.
/// @param bytes    Its length.
/// @param options  Limits, or null for the library's own.
/// @param report   Receives the information.
/// @retval OPCV_READ_OK            `opcv_read_page` would decode the stream.
/// @retval OPCV_READ_BAD_ARGUMENT  `jpeg` or `report` is null, `bytes` is 0, a `struct_size` is unknown, or a limit is
///                                 negative; nothing is written.
/// @retval OPCV_READ_UNREADABLE    This is not a JPEG stream, or it does not contain a page.
/// @retval OPCV_READ_OVER_LIMIT    The stream exceeds a limit.
OPCV_DLIB_API opcv_read_status opcv_read_info(const void* jpeg, size_t bytes, const opcv_read_options* options,
                                              opcv_read_report* report);

/// Reads a JPEG stream into a new record, like `ReadJPEG`.
///
/// @param jpeg     The stream.
/// @param bytes    Its length.
/// @param options  Limits and cancellation, or null for the library's own limits.
/// @param page     Receives the record: depth 8 or 24, packed rows. Released with `DisposeKVIMG`. Null on any failure.
/// @param report   Receives the information; may be null.
/// @retval OPCV_READ_OK            `*page` holds the page.
/// @retval OPCV_READ_BAD_ARGUMENT  `jpeg` or `page` is null, `bytes` is 0, a `struct_size` is unknown, or a limit is
///                                 negative; the report is not written.
/// @retval OPCV_READ_UNREADABLE    This is not a JPEG stream, or no row of it can be decoded.
/// @retval OPCV_READ_OVER_LIMIT    The stream exceeds a limit, or the page has more than 2^31 - 1 bytes.
/// @retval OPCV_READ_NO_MEMORY     Memory ran out.
/// @retval OPCV_READ_CANCELLED     `cancel` stopped the call.
OPCV_DLIB_API opcv_read_status opcv_read_page(const void* jpeg, size_t bytes, const opcv_read_options* options,
                                              KVIMG** page, opcv_read_report* report);

/// Reads a JPEG stream directly into the caller's rows, without an intermediate copy.
///
/// Call `opcv_read_info` for the size first. If decoding fails, some rows may have been written and the others are
/// unchanged. No byte between the rows is written.
///
/// @param jpeg     The stream.
/// @param bytes    Its length.
/// @param options  Limits and cancellation, or null for the library's own limits. `max_memory` does not count the rows.
/// @param rows     Rows that receive the pixels.
/// @param report   Receives the information; may be null. Its `memory` does not count the rows.
/// @retval OPCV_READ_OK            The rows hold the page.
/// @retval OPCV_READ_BAD_ARGUMENT  A pointer other than `options` or `report` is null, `bytes` is 0, a `struct_size` is
///                                 unknown, a limit is negative, or the step is shorter than a row; nothing is written.
/// @retval OPCV_READ_UNREADABLE    This is not a JPEG stream, or no row of it can be decoded.
/// @retval OPCV_READ_OVER_LIMIT    The stream exceeds a limit; no row is written.
/// @retval OPCV_READ_NO_MEMORY     Memory ran out.
/// @retval OPCV_READ_CANCELLED     `cancel` stopped the call.
/// @retval OPCV_READ_WRONG_SIZE    The rows do not have the size of the page, or have one channel for a colour page; no
///                                 row is written. The report contains the size of the page.
OPCV_DLIB_API opcv_read_status opcv_read_rows(const void* jpeg, size_t bytes, const opcv_read_options* options,
                                              const opcv_rows* rows, opcv_read_report* report);
/// @}

#ifdef __cplusplus
}    // extern "C"
#endif

#endif    // OPCV_DLIB_READ_H
