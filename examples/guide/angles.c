// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

/* A white square with a dark dot at its right edge. Deskewing by 90 degrees moves the dot to the top
   (counter-clockwise); RotateImageWithIPP by 90 degrees moves it to the bottom (clockwise). */
#include <OPCV_dlib.h>
#include <string.h>

enum { kSide = 17, kMiddle = 8 };

static int isDark(const KVIMG* page, int x, int y) { return page->data[y * page->rowBytes + x] < 128; }

int main(void) {
    KVImageDescription description = {kSide, kSide, 300, 300, 0, 8}, *record = &description;
    KVIMG *page = NULL, *deskewed = NULL, *turned = NULL;
    KVRect all;
    KVSetRect(&all, 0, 0, kSide, kSide);
    if (CreateNewKVIMGPtr(&page, &all, 8) != noErr || !page) return 1;
    memset(page->data, 255, (size_t)page->size);
    page->data[kMiddle * page->rowBytes + kSide - 1] = 0;

    OSErr err = DeskewImageWithIPP(page, &record, &deskewed, 0, 0, 90);
    if (!err) err = RotateImageWithIPP(page, &record, &turned, 90);
    const int passed = !err && isDark(deskewed, kMiddle, 0) && !isDark(deskewed, kMiddle, kSide - 1) &&
                       isDark(turned, kMiddle, kSide - 1) && !isDark(turned, kMiddle, 0);
    DisposeKVIMG(page);
    DisposeKVIMG(deskewed);
    DisposeKVIMG(turned);
    return passed ? 0 : 2;
}
