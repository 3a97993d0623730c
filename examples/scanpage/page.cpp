#include "page.h"

#include <array>
#include <fstream>
#include <iterator>

#include <leptonica/allheaders.h>

#include "filter.h"
#include "skew.h"
#include "write.h"

namespace {

constexpr int kUsualDpi = 300;    // for streams that do not say

std::vector<uint8_t> contentsOf(const std::string& file) {
    std::ifstream in(file, std::ios::binary);
    if (!in) throw std::runtime_error("cannot be opened");
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

std::string baseName(const std::string& file) {
    const size_t slash = file.rfind('/');
    const std::string name = slash == std::string::npos ? file : file.substr(slash + 1);
    return name.substr(0, name.rfind('.'));
}

// Times one stage after the other.
class Stopwatch {
public:
    explicit Stopwatch(std::vector<Stage>& stages) : stages_(stages) {}

    void lap(const char* name, size_t bytes) {
        const auto now = std::chrono::steady_clock::now();
        stages_.push_back({name, std::chrono::duration<double, std::milli>(now - start_).count(), bytes});
        start_ = std::chrono::steady_clock::now();
    }

private:
    std::vector<Stage>& stages_;
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

void readResolution(const std::vector<uint8_t>& stream, KVImageDescription& description) {
    l_int32 x = 0;
    l_int32 y = 0;
    readResolutionMemJpeg(stream.data(), stream.size(), &x, &y);
    description.horizontalResolution = x > 1 ? x : kUsualDpi;
    description.verticalResolution = y > 1 ? y : description.horizontalResolution;
}

void process(const std::string& file, const Options& options, bool keepImages, Report& report) {
    Stopwatch watch(report.stages);
    std::vector<uint8_t> stream = contentsOf(file);
    watch.lap("open", stream.size());

    KVImageDescription description{};
    KVImageDescription* record = &description;
    KVImageDescriptionHandle handle = &record;
    KVIMG* read = nullptr;
    require(ReadJPEG(stream.data(), static_cast<unsigned>(stream.size()), &handle, &read), "reading");
    Record page(read);
    readResolution(stream, description);
    stream = {};
    report.width = description.width;
    report.height = description.height;
    report.depth = description.depth;
    report.dpiX = description.horizontalResolution;
    report.dpiY = description.verticalResolution;
    watch.lap("read", static_cast<size_t>(page->size));

    if (options.skewGiven) {
        report.skew = options.angle;
        report.skewKnown = true;
    } else {
        const Grey grey = greyOf(*page);
        const Bits bits = reduced(grey, otsuThreshold(grey));
        report.skewKnown = findSkew(bits, report.skew);
        watch.lap("find skew", bits.bytes.size());
    }

    Record straight = deskewed(*page, handle, report.skew);
    watch.lap("deskew", static_cast<size_t>(straight->size));
    if (keepImages) report.before = std::move(page);
    page.reset();

    if (options.denoise >= 0) {
        reduceNoise(*straight, options.denoise);
        watch.lap("reduce noise", static_cast<size_t>(straight->size));
    }
    if (options.median != Median::kNone) {
        filterMedian(*straight, options.median);
        watch.lap("median", static_cast<size_t>(straight->size));
    }
    if (options.dpi > 0 && options.dpi != description.horizontalResolution) {
        straight = scaled(*straight, description, options.dpi);
        watch.lap("scale", static_cast<size_t>(straight->size));
    }

    const std::string name = options.directory + "/" + baseName(file);
    if (options.pbm || options.g4) {
        const Grey grey = greyOf(*straight);
        const Bits bits = reduced(grey, options.threshold >= 0 ? options.threshold : otsuThreshold(grey));
        watch.lap("reduce to 1 bit", bits.bytes.size());
        if (options.pbm) writePbm(bits, name + ".pbm");
        if (options.g4) writeG4(bits, description, name + ".tif");
        watch.lap("write 1 bit", bits.bytes.size());
    }
    if (options.jpeg) {
        void* data = nullptr;
        unsigned size = 0;
        require(CompressJPEGEx(straight.get(), handle, options.mode, &data, &size), "compressing");
        const std::unique_ptr<void, void (*)(void*)> owner(data, std::free);
        watch.lap("compress", size);
        writeFile(data, size, name + ".jpg");
        watch.lap("write JPEG", size);
    }
    if (keepImages) report.after = std::move(straight);
}

}    // namespace

Record scaled(const KVIMG& page, KVImageDescription& description, int dpi) {
    KVIMG* result = nullptr;
    require(ResizeImageWithIPPEx(&page, &result, description.horizontalResolution, dpi), "scaling");
    description.verticalResolution =
        static_cast<int32_t>((int64_t{description.verticalResolution} * dpi + description.horizontalResolution / 2) /
                             description.horizontalResolution);
    description.horizontalResolution = dpi;
    return Record(result);
}

Record deskewed(const KVIMG& page, KVImageDescriptionHandle description, double angle) {
    KVRect whole = {0, 0, page.height, page.width};
    KVIMG* straight = nullptr;
    require(DeskewImageWithIPPEx(&page, description, &straight, 0, 1, &whole, angle), "deskewing");
    return Record(straight);
}

Grey greyOf(const KVIMG& page) {
    Grey grey{page.width, page.height, page.rowBytes, page.data, {}};
    if (page.depth == 8) return grey;
    grey.step = page.width;
    grey.own.resize(static_cast<size_t>(page.width) * static_cast<size_t>(page.height));
    uint8_t* to = grey.own.data();
    for (int y = 0; y < page.height; ++y) {
        const uint8_t* from = page.data + ptrdiff_t{y} * page.rowBytes;
        for (int x = 0; x < page.width; ++x, from += 3)
            *to++ = static_cast<uint8_t>((77 * from[0] + 150 * from[1] + 29 * from[2] + 128) >> 8);
    }
    grey.pixels = grey.own.data();
    return grey;
}

int otsuThreshold(const Grey& grey) {
    std::array<double, 256> histogram{};
    double sum = 0;
    for (int y = 0; y < grey.height; ++y)
        for (int x = 0; x < grey.width; ++x) {
            const uint8_t level = grey.pixels[ptrdiff_t{y} * grey.step + x];
            histogram[level] += 1;
            sum += level;
        }
    const double count = static_cast<double>(grey.width) * grey.height;
    double below = 0;
    double sumBelow = 0;
    double best = -1;
    int threshold = 127;
    for (int level = 0; level < 255; ++level) {
        below += histogram[static_cast<size_t>(level)];
        sumBelow += level * histogram[static_cast<size_t>(level)];
        if (below == 0 || below == count) continue;
        const double distance = sumBelow / below - (sum - sumBelow) / (count - below);
        const double variance = below * (count - below) * distance * distance;
        if (variance > best) {
            best = variance;
            threshold = level;
        }
    }
    return threshold;
}

Bits reduced(const Grey& grey, int threshold) {
    Bits bits{grey.width, grey.height, (grey.width + 31) / 32 * 4, {}};
    bits.bytes.assign(static_cast<size_t>(bits.step) * static_cast<size_t>(bits.height), 0xFF);
    require(IPPShare_ippiReduceBits_8u1u_C1R(grey.pixels, grey.step, bits.bytes.data(), bits.step, 0,
                                             {grey.width, grey.height}, 0, 0, 0, static_cast<uint8_t>(threshold)),
            "reducing to 1 bit");
    return bits;
}

Report processPage(const std::string& file, const Options& options, bool keepImages) {
    Report report;
    report.file = file;
    try {
        process(file, options, keepImages, report);
    } catch (const std::exception& e) {
        report.fault = e.what();
    }
    return report;
}
