// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The deskew functions fill the corners of a grey page with black, even if white is requested. ippiRotateCenter has an
// argument for the value of the corners: with 255 it returns the same page with white corners.
#include <OPCV_dlib.h>

#include <cstring>
#include <opencv2/core.hpp>

// Turns the page about its centre as DeskewImageWithIPP does, with white corners.
OSErr deskewOnWhite(const KVIMG& page, double angle, KVIMG** out) {
    const KVRect all = {0, 0, page.height, page.width};
    if (const OSErr err = CreateNewKVIMGPtr(out, &all, 8)) return err;
    const IppiRect whole = {0, 0, page.width, page.height};
    const IppStatus status =
        ippiRotateCenter(page.data, {page.width, page.height}, page.rowBytes, whole, (*out)->data, (*out)->rowBytes,
                         whole, angle, (page.width - 1) * 0.5, (page.height - 1) * 0.5, 0, 0, cv::Scalar(255));
    return status == ippStsNoErr ? noErr : rotateFailedErr;
}

int main() {
    const KVRect all = {0, 0, 90, 60};
    KVIMG *page = nullptr, *black = nullptr, *white = nullptr;
    if (CreateNewKVIMGPtr(&page, &all, 8) != noErr || !page) return 1;
    std::memset(page->data, 180, static_cast<size_t>(page->size));

    KVImageDescription description = {page->width, page->height, 300, 300, 0, 8}, *record = &description;
    OSErr err = DeskewImageWithIPP(page, &record, &black, 0, 1, 5.0);    // 1: white, no effect at 8 bits
    if (!err) err = deskewOnWhite(*page, 5.0, &white);
    const int middle = 45 * page->rowBytes + 30;
    const bool passed = !err && black->data[0] == 0 && white->data[0] == 255 && black->data[middle] == 180 &&
                        white->data[middle] == 180;
    DisposeKVIMG(page);
    DisposeKVIMG(black);
    DisposeKVIMG(white);
    return passed ? 0 : 2;
}
