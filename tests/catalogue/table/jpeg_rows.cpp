#include "kept.h"
#include "rows.h"

void addJpeg(std::vector<Row>& rows, Documents& documents) {
    for (Document* page : {&documents.grey, &documents.colour}) {
        const std::string depth = std::to_string(page->record->depth) + " bits";
        rows.push_back({"CompressJPEG", depth + ", mode 450", 0, [=](Scene& /*s*/) {
                            void* out = nullptr;
                            unsigned size = 0;
                            const int status = CompressJPEG(page->record.get(), kDpi, kMode, &out, &size);
                            return keepBlock(status, out);
                        }});
        const auto described = [&](const char* name, auto function) {
            rows.push_back({name, depth + ", mode 450", 0, [=](Scene& /*s*/) {
                                void* out = nullptr;
                                unsigned size = 0;
                                const int status = function(page->record.get(), page->handle(), kMode, &out, &size);
                                return keepBlock(status, out);
                            }});
        };
        described("CompressJPEGEx", CompressJPEGEx);
        described("CompressJPEGWithIPP", CompressJPEGWithIPP);
        described("CompressJPEGWithIPPEx", CompressJPEGWithIPPEx);
        const auto reading = [&](const char* name, auto function) {
            rows.push_back({name, depth, 0, [=](Scene& /*s*/) {
                                KVIMG* out = nullptr;
                                KVImageDescriptionHandle handle = page->handle();
                                const int status = function(page->stream.get(), page->streamSize, &handle, &out);
                                return keep(status, out);
                            }});
        };
        reading("ReadJPEG", ReadJPEG);
        reading("ReadJPEGWithIPP", ReadJPEGWithIPP);
    }
    Document* colour = &documents.colour;
    rows.push_back({"ReadSplitJPEG", "24 bits", 0, [=](Scene& /*s*/) {
                        KVIMG* out = nullptr;
                        const int status = ReadSplitJPEG(static_cast<uint8_t*>(colour->stream.get()),
                                                         colour->streamSize, colour->handle(), &out);
                        return keep(status, out);
                    }});
    const KVIMG* grey = documents.grey.record.get();
    const KVIMG* rgb = colour->record.get();
    rows.push_back({"CompressGray2Gray444", "quality 80", 0, [=](Scene& /*s*/) {
                        return CompressGray2Gray444(grey->data, grey->rowBytes, grey->width, grey->height, keptStream(),
                                                    80, kDpi, kDpi, true)
                                   ? 0
                                   : 1;
                    }});
    rows.push_back({"CompressRGB2YCbCr444", "quality 80", 0, [=](Scene& /*s*/) {
                        return CompressRGB2YCbCr444(rgb->data, rgb->rowBytes, rgb->width, rgb->height, keptStream(), 80,
                                                    kDpi, kDpi, true)
                                   ? 0
                                   : 1;
                    }});
    rows.push_back({"CompressRGB2YCbCr411", "quality 80", 0, [=](Scene& /*s*/) {
                        return CompressRGB2YCbCr411(rgb->data, rgb->rowBytes, rgb->width, rgb->height, keptStream(), 80,
                                                    kDpi, kDpi)
                                   ? 0
                                   : 1;
                    }});
}
