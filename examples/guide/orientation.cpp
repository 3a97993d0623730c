// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// A camera stores the picture as its sensor saw it and records in an EXIF field how to turn it. ReadJPEG turns it: a
// picture stored as 40 x 24 pixels with orientation 6 is read as 24 x 40. Record and description have the turned size.
#include <OPCV_dlib.h>

// The EXIF segment for "turn clockwise by 90 degrees to see it upright".
const std::vector<unsigned char> kOrientation6 = {
    0xFF, 0xE1, 0, 34, 'E', 'x', 'i', 'f', 0, 0,          // APP1 of 34 bytes
    'M',  'M',  0, 42, 0,   0,   0,   8,                  // big endian, first directory at 8
    0,    1,                                              // with one entry:
    0x01, 0x12, 0, 3,  0,   0,   0,   1,   0, 6, 0, 0,    // orientation: one short, 6
    0,    0,    0, 0};                                    // no further directory

int main() {
    const std::vector<unsigned char> pixels(40 * 24, 90);
    std::vector<unsigned char> jpeg;
    if (!CompressGray2Gray444(pixels.data(), 40, 40, 24, jpeg, 90, 300, 300, true)) return 1;
    jpeg.insert(jpeg.begin() + 2, kOrientation6.begin(), kOrientation6.end());

    KVImageDescription description{}, *record = &description, **handle = &record;
    KVIMG* page = nullptr;
    if (ReadJPEG(jpeg.data(), static_cast<unsigned>(jpeg.size()), &handle, &page) != noErr) return 2;
    const bool turned = page->width == 24 && page->height == 40 && description.width == 24 && description.height == 40;
    DisposeKVIMG(page);

    page = nullptr;    // the expected size is also the one after the turn
    if (ReadSplitJPEG(jpeg.data(), static_cast<unsigned>(jpeg.size()), handle, &page) != noErr) return 3;
    DisposeKVIMG(page);
    return turned ? 0 : 4;
}
