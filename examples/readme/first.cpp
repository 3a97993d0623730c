// Straightens a JPEG page in memory by 1.5 degrees and compresses it again, at 300 dots per inch.
#include <OPCV_dlib.h>
#include <cstdlib>

bool straighten(const std::vector<unsigned char>& jpeg, void** stream, unsigned* length) {
    KVImageDescription description{};
    KVImageDescription* record = &description;
    KVImageDescriptionHandle handle = &record;
    KVIMG *page = nullptr, *straight = nullptr;
    OSErr err = ReadJPEG(jpeg.data(), static_cast<unsigned>(jpeg.size()), &handle, &page);
    if (!err) err = DeskewImageWithIPP(page, handle, &straight, 0, 1, 1.5);
    if (!err) err = CompressJPEG(straight, 300, 450, stream, length);    // release the stream with free()
    DisposeKVIMG(page);
    DisposeKVIMG(straight);
    return !err;
}

int main() {
    const std::vector<unsigned char> grey(64 * 64, 200);
    std::vector<unsigned char> jpeg;
    void* stream = nullptr;
    unsigned length = 0;
    const bool good =
        CompressGray2Gray444(grey.data(), 64, 64, 64, jpeg, 80, 300, 300, true) && straighten(jpeg, &stream, &length);
    std::free(stream);
    return good ? 0 : 1;
}
