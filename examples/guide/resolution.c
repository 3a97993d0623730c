// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

/* ReadJPEG writes the size and depth of a page into its description, but not the dots per inch, so this program reads
   them from the JFIF header of the stream. CompressJPEGEx stores the resolutions of the description. */
#include <OPCV_dlib.h>
#include <stdlib.h>
#include <string.h>

/* Reads the two resolutions of a JFIF header in dots per inch; 0 if the stream has none. */
static void readResolution(const unsigned char* jpeg, unsigned size, KVImageDescription* page) {
    page->horizontalResolution = page->verticalResolution = 0;
    if (size < 18 || memcmp(jpeg, "\xFF\xD8\xFF\xE0", 4) != 0 || memcmp(jpeg + 6, "JFIF", 5) != 0) return;
    const int unit = jpeg[13], x = jpeg[14] << 8 | jpeg[15], y = jpeg[16] << 8 | jpeg[17];
    if (unit == 1) page->horizontalResolution = x, page->verticalResolution = y; /* dots per inch */
    if (unit == 2) {                                                             /* dots per centimetre */
        page->horizontalResolution = (x * 254 + 50) / 100;
        page->verticalResolution = (y * 254 + 50) / 100;
    }
}

int main(void) {
    KVImageDescription description = {32, 32, 600, 300, 0, 8}, *record = &description, **handle = &record;
    KVIMG *page = NULL, *again = NULL;
    KVRect all;
    KVSetRect(&all, 0, 0, 32, 32);
    if (CreateNewKVIMGPtr(&page, &all, 8) != noErr || !page) return 1;
    memset(page->data, 128, (size_t)page->size);

    void* jpeg = NULL;
    unsigned size = 0;
    OSErr err = CompressJPEGEx(page, handle, 450, &jpeg, &size);
    memset(&description, 0, sizeof description);
    if (!err) err = ReadJPEG(jpeg, size, &handle, &again);
    const int unchanged = description.width == 32 && description.horizontalResolution == 0;
    if (!err) readResolution(jpeg, size, &description);
    const int read = description.horizontalResolution == 600 && description.verticalResolution == 300;
    free(jpeg);
    DisposeKVIMG(page);
    DisposeKVIMG(again);
    return !err && unchanged && read ? 0 : 2;
}
