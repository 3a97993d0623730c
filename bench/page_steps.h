// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Steps of a page with this library, in owners of its records. An owner is empty if the step fails.
#pragma once

#include <OPCV_dlib.h>

#include <cstdlib>
#include <memory>
#include <vector>

namespace steps {

struct RecordDeleter {
    void operator()(KVIMG* record) const { DisposeKVIMG(record); }
};
using Record = std::unique_ptr<KVIMG, RecordDeleter>;

inline Record readPage(const std::vector<unsigned char>& stream, KVImageDescription& description) {
    KVImageDescription* pointer = &description;
    KVImageDescriptionHandle handle = &pointer;
    KVIMG* page = nullptr;
    const OSErr err = ReadJPEG(stream.data(), static_cast<unsigned>(stream.size()), &handle, &page);
    return Record(err == noErr ? page : nullptr);
}

// With white corners.
inline Record deskewed(const KVIMG& page, KVImageDescription& description, double angle) {
    KVImageDescription* pointer = &description;
    KVIMG* straight = nullptr;
    const OSErr err = DeskewImageWithIPP(&page, &pointer, &straight, 0, 1, angle);
    return Record(err == noErr ? straight : nullptr);
}

inline Record newGreyPage(IppiSize size) {
    const KVRect bounds = {0, 0, size.height, size.width};
    KVIMG* page = nullptr;
    const OSErr err = CreateNewKVIMGPtr(&page, &bounds, 8);
    return Record(err == noErr ? page : nullptr);
}

// With mode 450, quality 70.
inline bool compress(const KVIMG& page, KVImageDescription& description) {
    KVImageDescription* pointer = &description;
    void* stream = nullptr;
    unsigned bytes = 0;
    const OSErr err = CompressJPEGEx(&page, &pointer, 450, &stream, &bytes);
    std::free(stream);
    return err == noErr;
}

// To one bit per pixel.
inline bool reduce(const KVIMG& page, unsigned char threshold) {
    const int step = (page.width + 7) / 8;
    std::vector<unsigned char> bits(static_cast<size_t>(step) * static_cast<size_t>(page.height));
    return IPPShare_ippiReduceBits_8u1u_C1R(page.data, page.rowBytes, bits.data(), step, 0, {page.width, page.height},
                                            0, 0, 0, threshold) == ippStsNoErr;
}

}    // namespace steps
