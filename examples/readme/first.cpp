// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Reads a JPEG page from memory and straightens it by 1.5 degrees, with white corners.
#include <OPCV_dlib.h>

int main() {
    const std::vector<unsigned char> grey(64 * 64, 200);
    std::vector<unsigned char> jpeg;
    if (!CompressGray2Gray444(grey.data(), 64, 64, 64, jpeg, 80, 300, 300, true)) return 1;

    KVImageDescription description{}, *record = &description, **handle = &record;
    KVIMG *page = nullptr, *straight = nullptr;
    OSErr err = ReadJPEG(jpeg.data(), static_cast<unsigned>(jpeg.size()), &handle, &page);
    if (!err) err = DeskewImageWithIPP(page, handle, &straight, 0, 1, 1.5);
    DisposeKVIMG(page);
    DisposeKVIMG(straight);
    return err;
}
