#include "page.h"

#include <leptonica/allheaders.h>

#include <filesystem>
#include <fstream>
#include <limits>

#include "filter.h"
#include "grey.h"
#include "skew.h"
#include "formats.h"

namespace {

namespace fs = std::filesystem;

constexpr int kUsualDpi = 300;    // for streams that do not say

std::vector<uint8_t> contentsOf(const std::string& file) {
    std::ifstream in(file, std::ios::binary | std::ios::ate);
    if (!in) throw std::runtime_error("cannot be opened");
    const std::streamoff size = in.tellg();
    if (size < 0 || size > std::numeric_limits<unsigned>::max())
        throw std::runtime_error("is no file of a page's size");
    std::vector<uint8_t> bytes(static_cast<size_t>(size));
    in.seekg(0);
    if (!in.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size())))
        throw std::runtime_error("cannot be read");
    return bytes;
}

double millisecondsSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

// Times one stage after the other.
class Stopwatch {
public:
    explicit Stopwatch(std::vector<Stage>& stages) : stages_(stages) {}

    void lap(const char* name, size_t bytes) {
        stages_.push_back({name, millisecondsSince(start_), bytes});
        start_ = std::chrono::steady_clock::now();
    }

private:
    std::vector<Stage>& stages_;
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

// As the JFIF header states it, in dots per inch or per centimetre, for the page as it is read: an EXIF orientation may
// have laid it on its side.
void readResolution(const std::vector<uint8_t>& stream, KVImageDescription& description) {
    l_int32 x = 0;
    l_int32 y = 0;
    readResolutionMemJpeg(stream.data(), stream.size(), &x, &y);
    l_int32 storedWidth = description.width;
    readHeaderMemJpeg(stream.data(), stream.size(), &storedWidth, nullptr, nullptr, nullptr, nullptr);
    if (storedWidth != description.width) std::swap(x, y);
    description.horizontalResolution = x > 1 ? x : kUsualDpi;
    description.verticalResolution = y > 1 ? y : description.horizontalResolution;
}

std::vector<std::string> resultFiles(const std::string& file, const Options& options) {
    const std::string name = options.directory + "/" + resultName(file);
    std::vector<std::string> files;
    if (options.jpeg) files.push_back(name + ".jpg");
    if (options.pbm) files.push_back(name + ".pbm");
    if (options.g4) files.push_back(name + ".tif");
    return files;
}

// Whether the results are there already. Their sizes are added up. An empty file is what is left of a result that was
// not on disk yet when the machine failed.
bool isDone(const std::vector<std::string>& results, size_t& bytes) {
    for (const std::string& result : results) {
        std::error_code error;
        if (!fs::is_regular_file(result, error)) return false;
        const auto size = static_cast<size_t>(fs::file_size(result));
        if (size == 0) return false;
        bytes += size;
    }
    return true;
}

Record deskewed(const KVIMG& page, KVImageDescriptionHandle description, double angle) {
    KVRect whole = {0, 0, page.height, page.width};
    KVIMG* straight = nullptr;
    require(DeskewImageWithIPPEx(&page, description, &straight, 0, 1, &whole, angle), "deskewing");
    return Record(straight);
}

// The page at another resolution, which the description then states.
Record scaled(const KVIMG& page, KVImageDescription& description, int dpi) {
    KVIMG* result = nullptr;
    require(ResizeImageWithIPPEx(&page, &result, description.horizontalResolution, dpi), "scaling");
    description.verticalResolution =
        static_cast<int32_t>((int64_t{description.verticalResolution} * dpi + description.horizontalResolution / 2) /
                             description.horizontalResolution);
    description.horizontalResolution = dpi;
    return Record(result);
}

void process(const std::string& file, const Options& options, bool keepImages, PageResult& report) {
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

    const std::string name = options.directory + "/" + resultName(file);
    if (options.pbm || options.g4) {
        const Grey grey = greyOf(*straight);
        const Bits bits = reduced(grey, options.threshold >= 0 ? options.threshold : otsuThreshold(grey));
        watch.lap("reduce to 1 bit", bits.bytes.size());
        size_t written = 0;
        if (options.pbm) written += writePbm(bits, name + ".pbm");
        if (options.g4) written += writeG4(bits, description, name + ".tif");
        report.bytes += written;
        watch.lap("write 1 bit", written);
    }
    if (options.jpeg) {
        const size_t written = writeJpeg(*straight, handle, options.mode, name + ".jpg");
        report.bytes += written;
        watch.lap("write JPEG", written);
    }
    if (keepImages) report.after = std::move(straight);
}

}    // namespace

std::string resultName(const std::string& file) { return fs::path(file).stem().string(); }

PageResult processPage(const std::string& file, const Options& options, bool keepImages) {
    const auto start = std::chrono::steady_clock::now();
    PageResult report;
    report.file = file;
    try {
        const std::vector<std::string> results = resultFiles(file, options);
        for (const std::string& result : results) {
            std::error_code error;
            if (fs::equivalent(file, result, error)) throw std::runtime_error("its result would replace it");
        }
        if (options.resume && isDone(results, report.bytes)) {
            report.status = Status::kKept;
        } else {
            report.bytes = 0;
            process(file, options, keepImages, report);
        }
    } catch (const std::exception& e) {
        report.status = Status::kFailed;
        report.bytes = 0;
        report.skewKnown = false;
        report.fault = e.what();
    }
    report.milliseconds = millisecondsSince(start);
    return report;
}
