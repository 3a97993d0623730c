// Reading of JPEG streams into new records.
#include <cstdlib>

#include "OPCV_dlib.h"
#include "jpeg/decode.h"

namespace {

// Hands the pixels over in a new record. A record that cannot be had leaves null in the slot.
OSErr handOver(DecodedImage& image, KVIMG** outImage) {
    *outImage = static_cast<KVIMG*>(std::malloc(sizeof(KVIMG)));
    if (!*outImage) return memFullErr;
    **outImage = {nullptr,      image.depth(),    image.width,
                  image.height, image.rowBytes(), static_cast<int32_t>(image.bytes())};
    (*outImage)->data = image.pixels.release();
    return noErr;
}

}    // namespace

OSErr ReadJPEG(const void* jpegData, unsigned jpegSize, KVImageDescriptionHandle* descriptionPtr, KVIMG** outImage) {
    if (jpegSize == 0 || !descriptionPtr || !jpegData || !*descriptionPtr || !**descriptionPtr || !outImage)
        return paramErr;
    DecodedImage image;
    const OSErr err =
        decodeJpeg(static_cast<const unsigned char*>(jpegData), jpegSize, Channels::kAsStored, WantedSize(), image);
    if (err == paramErr) return err;
    // Out of memory or not: what is known of the page is told.
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
    DecodedImage image;
    if (const OSErr err = decodeJpeg(jpegData, jpegSize, Channels::kThree, stated, image)) return err;
    if (const OSErr err = handOver(image, outImage)) return err;
    (*description)->depth = 24;
    return noErr;
}
