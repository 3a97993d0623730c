// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

/* The reading header first, as C11. */
#include "OPCV_dlib_read.h"

#include <stdlib.h>

int readInC(void);

_Static_assert(sizeof(opcv_read_options) == 56 && sizeof(opcv_read_report) == 88 && sizeof(opcv_rows) == 32,
               "structures");
_Static_assert(offsetof(opcv_read_options, struct_size) == 0 && offsetof(opcv_read_report, struct_size) == 0, "sizes");

static int cancelAtOnce(void* context) {
    ++*(int*)context;
    return 1;
}

int readInC(void) {
    unsigned char pixels[8 * 8];
    for (int i = 0; i < 64; ++i) pixels[i] = 90;
    KVIMG image = {pixels, 8, 8, 8, 8, 64};
    void* jpeg = NULL;
    unsigned bytes = 0;
    if (CompressJPEG(&image, 300, 450, &jpeg, &bytes) != noErr) return 1;

    int calls = 0;
    opcv_read_options options = {0};
    options.struct_size = sizeof options;
    options.cancel = cancelAtOnce;
    options.context = &calls;
    opcv_read_report report = {0};
    report.struct_size = sizeof report;
    int result = 0;
    KVIMG* page = &image;
    if (opcv_read_info(jpeg, bytes, NULL, &report) != OPCV_READ_OK || report.width != 8 || report.dpi_x != 300)
        result = 2;
    if (opcv_read_page(jpeg, bytes, &options, &page, NULL) != OPCV_READ_CANCELLED || page || calls != 1) result = 3;
    if (opcv_read_page(jpeg, bytes, NULL, &page, &report) != OPCV_READ_OK || report.damaged || page->data[63] < 85)
        result = 4;
    DisposeKVIMG(page);
    const opcv_rows rows = {pixels, 8, 8, 8, 1};
    if (opcv_read_rows(jpeg, bytes, NULL, &rows, &report) != OPCV_READ_OK || report.rows_decoded != 8) result = 5;
    free(jpeg);
    return result;
}
