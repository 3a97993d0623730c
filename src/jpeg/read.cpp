// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Reading of JPEG streams into new records.
#include <climits>
#include <cstdint>
#include <cstdlib>

#include "OPCV_dlib.h"
#include "jpeg/new_page.h"

namespace {

// Whether the caller accepts an image of the page's size.
struct WantedSize {
    bool any = true;
    int width = 0;
    int height = 0;

    bool admits(const PageInfo& page) const { return any || (page.width == width && page.height == height); }
};

enum class Channels { kAsStored, kThree };

OSErr statusOf(Outcome outcome) {
    switch (outcome) {
        case Outcome::kDone: return noErr;
        case Outcome::kNoMemory: return memFullErr;
        default: return paramErr;
    }
}

// noErr, paramErr (not a JPEG stream, not decodable, or another size) or memFullErr. With memFullErr the size is known
// but there are no pixels.
OSErr readStream(const void* data, size_t length, Channels channels, const WantedSize& wanted, NewPage& image) {
    const auto* const stream = static_cast<const unsigned char*>(data);
    PageInfo page;
    const Outcome inspected = inspectStream(stream, length, ReadLimits(), page);
    if (inspected != Outcome::kDone || !wanted.admits(page)) return paramErr;
    if (channels == Channels::kThree) page.channels = 3;
    image = NewPage(page);
    if (image.bytes() > INT32_MAX) return memFullErr;
    Decoder decoder(stream, length, Cancellation());
    return statusOf(image.read(page, decoder));
}

// Hands over the pixels in a new record. If allocating the record fails, the slot is null.
OSErr handOver(NewPage& image, KVIMG** outImage) {
    *outImage = image.release();
    return *outImage ? noErr : memFullErr;
}

}    // namespace

OSErr ReadJPEG(const void* jpegData, unsigned jpegSize, KVImageDescriptionHandle* descriptionPtr, KVIMG** outImage) {
    if (jpegSize == 0 || !descriptionPtr || !jpegData || !*descriptionPtr || !**descriptionPtr || !outImage)
        return paramErr;
    NewPage image;
    const OSErr err = readStream(jpegData, jpegSize, Channels::kAsStored, WantedSize(), image);
    if (err == paramErr) return err;
    // Also on out of memory, the known properties of the page are reported.
    KVImageDescription& description = ***descriptionPtr;
    description.width = image.width;
    description.height = image.height;
    description.depth = static_cast<int16_t>(image.depth());
    return err != noErr ? err : handOver(image, outImage);
}

OSErr ReadJPEGWithIPP(const void* jpegData, unsigned jpegSize, KVImageDescriptionHandle* descriptionPtr,
                      KVIMG** outImage) {
    return ReadJPEG(jpegData, jpegSize, descriptionPtr, outImage);
}

OSErr ReadSplitJPEG(const unsigned char* jpegData, unsigned jpegSize, KVImageDescriptionHandle description,
                    KVIMG** outImage) {
    if (jpegSize == 0 || !description || !jpegData || !*description || !outImage) return paramErr;
    const WantedSize stated = {false, (*description)->width, (*description)->height};
    NewPage image;
    if (const OSErr err = readStream(jpegData, jpegSize, Channels::kThree, stated, image)) return err;
    if (const OSErr err = handOver(image, outImage)) return err;
    (*description)->depth = 24;
    return noErr;
}
