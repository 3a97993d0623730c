// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "results.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>

#include "filter.h"
#include "result_mark.h"

namespace {

const char* endingOf(Format format) {
    switch (format) {
        case Format::kPbm: return ".pbm";
        case Format::kG4: return ".tif";
        case Format::kJpeg: break;
    }
    return ".jpg";
}

}    // namespace

std::string optionsText(const Options& options, Format format) {
    static const std::map<Median, const char*> kMedians = {
        {Median::kCross, "cross"}, {Median::kWeighted, "weighted"}, {Median::kColour, "colour"}};
    char angle[64];
    std::snprintf(angle, sizeof(angle), " --angle %.17g", options.angle);
    std::string text;
    if (options.skewGiven) text += angle;
    if (options.assumedDpi != Options().assumedDpi) text += " --assume-dpi " + std::to_string(options.assumedDpi);
    if (options.orient) text += " --orient";
    if (options.background == Background::kFlatten) text += " --background flatten";
    if (options.background == Background::kKeep && format != Format::kJpeg) text += " --background keep";
    if (options.denoise >= 0) text += " --denoise " + std::to_string(options.denoise);
    if (options.median != Median::kNone) text += std::string(" --median ") + kMedians.at(options.median);
    if (options.dpi > 0) text += " --dpi " + std::to_string(options.dpi);
    if (format == Format::kJpeg)
        text += options.quality.percent > 0 ? " --quality " + std::to_string(options.quality.percent)
                                            : " --mode " + std::to_string(options.quality.mode);
    if (format != Format::kJpeg && options.threshold >= 0) text += " --threshold " + std::to_string(options.threshold);
    return text.empty() ? "none" : text.substr(1);
}

Existing identify(const OutputFolder& folder, const std::string& name) {
    const std::optional<struct stat> there = folder.find(name);
    if (!there) return {};
    Existing existing;
    existing.id = idOf(*there);
    existing.isFolder = S_ISDIR(there->st_mode);
    if (!S_ISREG(there->st_mode)) return existing;
    existing.size = static_cast<size_t>(there->st_size);
    existing.isEmptyFile = existing.size == 0;
    return existing;
}

Existing examine(const OutputFolder& folder, const std::string& name) {
    Existing existing = identify(folder, name);
    if (existing.size == 0) return existing;
    if (const Descriptor file = folder.openForReading(name); file.isOpen()) existing.mark = markOf(file.get(), name);
    return existing;
}

void requireReplaceable(const Existing& existing, const std::string& path, const Rules& rules) {
    if (!existing.id) return;
    if (existing.isFolder) throw std::runtime_error(path + " cannot be written: Is a directory");
    if (rules.inputs.contains(*existing.id)) throw std::runtime_error(path + " is an input and is not replaced");
    if (!rules.overwrite && !existing.isEmptyFile && !existing.mayBeRemade)
        throw std::runtime_error(
            path + (rules.resume ? " exists, but is not a whole result of this page with these options" : " exists") +
            "; --overwrite replaces it");
}

void requireEarlierBook(const Existing& existing, const std::string& path, const Rules& rules) {
    if (existing.id && !existing.isFolder && !rules.inputs.contains(*existing.id) && existing.mark.empty() &&
        !existing.isEmptyFile)
        throw std::runtime_error(path +
                                 " exists and is not a whole result of scanpage; remove it or choose another name");
    requireReplaceable(existing, path, rules);
}

OutputPlace placeOfBook(const std::string& path, const Rules& rules) {
    OutputPlace place = placeOf(path);
    requireEarlierBook(examine(place.folder, place.name), place.path(), rules);
    return place;
}

std::string resultName(const std::string& file) { return std::filesystem::path(file).stem().string(); }

std::string resultName(const PageName& page) {
    return (page.folder.empty() ? "" : page.folder + "/") + resultName(page.file);
}

std::string nameIsUsed(const std::string& resultName) {
    return "another page has already used the name " + resultName + " for its results";
}

std::string Results::markFor(Format format, bool pageIsDamaged) const {
    return resultMark(pageSum_, optionsText(options_, format) + (pageIsDamaged ? ", page damaged" : ""));
}

size_t Results::write(Format format, std::vector<uint8_t> file) {
    const size_t size = file.size();
    seal(file, nameOf(format));
    store(format, std::move(file));
    return size;
}

std::string Results::nameOf(Format format) const { return name_ + endingOf(format); }

FolderResults::FolderResults(const std::string& name, uint64_t pageSum, const Options& options,
                             const OutputFolder& folder)
    : Results(name, pageSum, options), folder_(folder) {
    for (const Format format : options.formats) existing_[format] = examine(folder, nameOf(format));
}

void FolderResults::requireReplaceable(const Rules& rules) const {
    for (auto [format, existing] : existing_) {
        existing.mayBeRemade = rules.resume && (isSame(format, false) || isSame(format, true));
        ::requireReplaceable(existing, folder_.pathOf(nameOf(format)), rules);
    }
}

bool FolderResults::isSame(Format format, bool ofDamagedPage) const {
    return existing_.at(format).mark == markFor(format, ofDamagedPage);
}

bool FolderResults::areComplete(bool ofDamagedPage) const {
    return std::all_of(existing_.begin(), existing_.end(),
                       [&](const auto& result) { return isSame(result.first, ofDamagedPage); });
}

size_t FolderResults::bytes() const {
    size_t sum = 0;
    for (const auto& [format, existing] : existing_) sum += existing.size;
    return sum;
}

std::vector<std::string> FolderResults::paths() const {
    std::vector<std::string> paths;
    for (const auto& [format, existing] : existing_) paths.push_back(folder_.pathOf(nameOf(format)));
    return paths;
}

// In place of what was there.
void FolderResults::store(Format format, std::vector<uint8_t> file) {
    folder_.write(nameOf(format), file, existing_.at(format).id);
}

void MemoryResults::store(Format format, std::vector<uint8_t> file) {
    files_.push_back({nameOf(format), std::move(file)});
}
