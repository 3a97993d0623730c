// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "pipeline.h"

#include <cmath>
#include <opencv2/core.hpp>

#include "background.h"
#include "blank.h"
#include "filter.h"
#include "formats.h"
#include "grey.h"
#include "orientation.h"
#include "page_file.h"
#include "skew.h"
#include "stop.h"
#include "thumbnail.h"
#include "turn.h"

namespace {

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

// One page, step by step.
class Pipeline {
public:
    Pipeline(const Options& options, PageResult& result) : options_(options), result_(result), watch_(result.stages) {}

    void straighten(PageFile& file, size_t page, bool thumbnails) {
        decodePage(file, page);
        findAngle();
        turn(thumbnails);
        filter();
    }

    void write(Results* results, bool thumbnails) {
        const bool damaged = result_.status == Status::kDamaged;
        const bool bookOfBits = options_.forBook && (isBilevel_ || !wants(Format::kJpeg));
        if (wants(Format::kPbm) || wants(Format::kG4) || bookOfBits) writeBits(results, damaged, bookOfBits);
        if ((results && wants(Format::kJpeg)) || (options_.forBook && !bookOfBits))
            writeJpeg(results, damaged, !bookOfBits);
        if (thumbnails) result_.after = thumbnailOf(*page_);
    }

private:
    void decodePage(PageFile& file, size_t page) {
        DecodedPage decoded = file.decode(page, options_.assumedDpi);
        if (!decoded.damage.empty()) {
            result_.status = Status::kDamaged;
            result_.fault = decoded.damage;
            if (options_.refuseDamaged) throw std::runtime_error(decoded.damage);
        }
        page_ = std::move(decoded.record);
        isBilevel_ = decoded.isBilevel;
        description_ = decoded.description;
        result_.width = description_.width;
        result_.height = description_.height;
        result_.depth = description_.depth;
        result_.dpiX = description_.horizontalResolution;
        result_.dpiY = description_.verticalResolution;
        watch_.lap("read", pageBytes());
    }

    void findAngle() {
        result_.blank = blankScore(greyOf(*page_), description_.horizontalResolution);
        watch_.lap("blank score", 0);
        if (options_.skewGiven) {
            result_.skew = {true, options_.angle, 0, ""};
            return;
        }
        result_.skew = findSkew(*page_);
        watch_.lap("find skew", 0);
        if (options_.orient) {
            findUpright();
            watch_.lap("orient", 0);
        }
    }

    // Adds the quarter turns that put the text upright. The lines of a page on its side are found after a quarter turn.
    void findUpright() {
        Skew level = result_.skew;
        if (!level.known) {
            KVImageDescription description = description_;
            level = findSkew(*turned(*page_, description, 90));
            level.angle += level.known ? 90 : 0;
        }
        const Grey flat = greyOf(flattened(pixOf(greyOf(*page_))).get());
        const Bits bits = reduced(flat, otsuThreshold(flat));
        const auto quarters = quartersToUpright(bits, description_.horizontalResolution, level.angle);
        if (!quarters || (!level.known && *quarters == 0)) return;
        result_.skew = {true, std::remainder(level.angle + 90.0 * *quarters, 360), level.confidence, ""};
    }

    void turn(bool thumbnails) {
        if (thumbnails) result_.before = thumbnailOf(*page_);
        page_ = turned(*page_, description_, result_.skew.angle);
        watch_.lap("deskew", pageBytes());
    }

    void filter() {
        if (options_.background == Background::kFlatten) {
            flatten(*page_);
            watch_.lap("background", pageBytes());
        }
        if (options_.denoise >= 0) {
            reduceNoise(*page_, options_.denoise);
            watch_.lap("reduce noise", pageBytes());
        }
        if (options_.median != Median::kNone) {
            filterMedian(*page_, options_.median);
            watch_.lap("median", pageBytes());
        }
        if (options_.dpi > 0 && options_.dpi != description_.horizontalResolution) {
            scale();
            watch_.lap("scale", pageBytes());
        }
    }

    // To another resolution, which the description then states.
    void scale() {
        KVIMG* record = nullptr;
        const int before = description_.horizontalResolution;
        require(ResizeImageWithIPPEx(page_.get(), &record, before, options_.dpi), "scaling");
        page_.reset(record);
        description_.verticalResolution =
            static_cast<int32_t>((int64_t{description_.verticalResolution} * options_.dpi + before / 2) / before);
        description_.horizontalResolution = options_.dpi;
    }

    void writeBits(Results* results, bool damaged, bool forBook) {
        Grey grey = greyOf(*page_);
        if (options_.background == Background::kUsual && options_.threshold < 0 && !isBilevel_) {
            grey = greyOf(flattened(pixOf(grey)).get());
            watch_.lap("background", grey.own.size());
        }
        const Bits bits = reduced(grey, options_.threshold >= 0 ? options_.threshold : otsuThreshold(grey));
        watch_.lap("reduce to 1 bit", bits.bytes.size());
        size_t written = 0;
        if (results && wants(Format::kPbm))
            written += results->write(Format::kPbm, pbmFile(bits, results->markFor(Format::kPbm, damaged)));
        if (results && wants(Format::kG4))
            written +=
                results->write(Format::kG4, tiffFile(bits, description_, results->markFor(Format::kG4, damaged)));
        if (forBook) written += addToBook(PageStream::kG4, g4Stream(bits));
        result_.bytes += written;
        watch_.lap("write 1 bit", written);
    }

    void writeJpeg(Results* results, bool damaged, bool forBook) {
        std::vector<uint8_t> stream = jpegStream(*page_, &handle_, options_.quality);
        size_t written = 0;
        if (results && wants(Format::kJpeg))
            written += results->write(Format::kJpeg, jpegFile(stream, results->markFor(Format::kJpeg, damaged)));
        if (forBook && options_.forBook)
            written +=
                addToBook(page_->depth == 24 ? PageStream::kColourJpeg : PageStream::kGreyJpeg, std::move(stream));
        result_.bytes += written;
        watch_.lap("write JPEG", written);
    }

    size_t addToBook(PageStream::Kind kind, std::vector<uint8_t> bytes) {
        result_.stream = PageStream{kind,
                                    page_->width,
                                    page_->height,
                                    description_.horizontalResolution,
                                    description_.verticalResolution,
                                    std::move(bytes)};
        return result_.stream->bytes.size();
    }

    bool wants(Format format) const { return options_.formats.count(format) > 0; }

    size_t pageBytes() const { return static_cast<size_t>(page_->size); }

    const Options& options_;
    PageResult& result_;
    Stopwatch watch_;
    Record page_;
    bool isBilevel_ = false;    // black and white only, as it was read
    KVImageDescription description_{};
    KVImageDescription* handle_ = &description_;
};

// True if the results of an earlier run stay.
bool keepResults(const FolderResults& results, const Options& options, PageResult& result) {
    if (!options.resume) return false;
    const bool ofDamagedPage = !options.refuseDamaged && results.areComplete(true);
    if (!ofDamagedPage && !results.areComplete(false)) return false;
    result.status = ofDamagedPage ? Status::kDamaged : Status::kKept;
    if (ofDamagedPage) result.fault = "is damaged; its results were written by an earlier run";
    result.bytes = results.bytes();
    result.stages.clear();    // nothing was done
    return true;
}

// Where a page is.
struct Place {
    PageFile& file;
    size_t index, page;           // of the file in the input, and of the page in the file
    const std::string& folder;    // of its results, below that of all
    std::string resultName;
};

void processPage(const Place& place, const Run& run, bool thumbnails, PageResult& result) {
    std::optional<OutputFolder> below;
    std::optional<FolderResults> results;
    if (run.folder) {
        const OutputFolder& folder =
            place.folder.empty() ? *run.folder : below.emplace(run.folder->below(place.folder));
        results.emplace(place.resultName, place.file.sumOf(place.page), run.options, folder);
        if (keepResults(*results, run.options, result)) return;
        results->requireReplaceable({run.inputs, run.overwrite, run.options.resume});
    }
    if (run.dryRun) {
        if (results) result.planned = results->paths();
        return;
    }
    Pipeline pipeline(run.options, result);
    pipeline.straighten(place.file, place.page, thumbnails);
    pipeline.write(results ? &*results : nullptr, thumbnails);
    if (result.stream) run.book->add({place.index, place.page}, std::move(*result.stream));
}

std::string explain(const cv::Exception& e) {
    if (e.code == cv::Error::StsNoMem) return kOutOfMemory;
    return "cannot be processed: OpenCV error " + std::to_string(e.code) + " in " + e.func;
}

void fail(PageResult& result, const std::string& fault) {
    result.status = Status::kFailed;
    result.bytes = 0;
    result.skew = {};
    result.blank = -1;
    result.stream.reset();
    result.before.reset();
    result.after.reset();
    result.fault = fault;
}

// Does the work and turns what it throws into a fault of the page.
template <class Work>
void attempt(PageResult& result, const Work& work) {
    const auto start = std::chrono::steady_clock::now();
    try {
        work();
    } catch (const cv::Exception& e) {
        fail(result, explain(e));
    } catch (const std::bad_alloc&) {
        fail(result, kOutOfMemory);
    } catch (const std::exception& e) {
        fail(result, e.what());
    }
    result.milliseconds += millisecondsSince(start);
}

// "3" as "003": in alphabetical order pages stand in theirs.
std::string padded(size_t page, size_t pages) {
    const std::string number = std::to_string(page);
    const size_t width = std::max<size_t>(3, std::to_string(pages).size());
    return std::string(width - number.size(), '0') + number;
}

PageResult nextPage(PageResult& first, size_t page, const std::string& name) {
    PageResult result;
    if (page == 0) result = std::move(first);
    result.file = name;
    return result;
}

// Calls `open` for the file and then `work` for each of its pages, with the number of the page and that number as text,
// which is empty if there is one page only.
template <class Open, class Work, class Finished>
void forEachPage(const std::string& file, const Open& open, const Work& work, const Finished& finished) {
    PageResult first;
    first.file = file;
    std::optional<PageFile> pages;
    attempt(first, [&] {
        Stopwatch watch(first.stages);
        pages.emplace(open());
        watch.lap("open", pages->bytes());
    });
    if (first.status == Status::kFailed) return finished(first);
    const size_t count = pages->pages();
    for (size_t page = 0; page < count && (page == 0 || !stopRequested()); ++page) {
        const std::string number = count == 1 ? "" : padded(page + 1, count);
        PageResult result = nextPage(first, page, number.empty() ? file : std::string(file).append("#").append(number));
        attempt(result, [&] { work(*pages, page, number, result); });
        finished(result);
    }
}

std::string numbered(const std::string& name, const std::string& number) {
    return name + (number.empty() ? "" : "-" + number);
}

}    // namespace

void processFile(const PageName& name, size_t index, const Run& run, bool thumbnails,
                 const std::function<void(PageResult&)>& finished) {
    const auto open = [&] {
        addInput(name.file, run.inputs);
        return InputFile(name.file);
    };
    const auto work = [&](PageFile& pages, size_t page, const std::string& number, PageResult& result) {
        const std::string used = numbered(resultName(name), number);
        if (!number.empty() && run.folder && !run.names.claim(used)) throw std::runtime_error(nameIsUsed(used));
        const std::string own = numbered(resultName(name.file), number);
        processPage({pages, index, page, name.folder, own}, run, thumbnails, result);
    };
    forEachPage(name.file, open, work, finished);
}

void processMember(const std::string& name, std::vector<uint8_t> bytes, const Options& options,
                   const std::function<void(PageResult&, std::vector<ResultFile>)>& finished) {
    std::vector<ResultFile> files;
    const auto open = [&] { return InputFile(std::move(bytes)); };
    const auto work = [&](PageFile& pages, size_t page, const std::string& number, PageResult& result) {
        MemoryResults results(numbered(resultName(name), number), pages.sumOf(page), options);
        Pipeline pipeline(options, result);
        pipeline.straighten(pages, page, false);
        pipeline.write(&results, false);
        files = results.take();
    };
    forEachPage(name, open, work, [&](PageResult& result) { finished(result, std::exchange(files, {})); });
}
