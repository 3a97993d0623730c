// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "shard_run.h"

#include <fcntl.h>

#include <cerrno>
#include <clocale>
#include <cstdio>
#include <cstring>

#include "input_file.h"
#include "manifest_file.h"
#include "shard.h"
#include "stop.h"

namespace {

// The shard to read.
class Input {
public:
    explicit Input(const std::string& file) : name_(file == "-" ? "standard input" : file) {
        if (file != "-") file_ = Descriptor(open(file.c_str(), O_RDONLY | O_NOCTTY | O_CLOEXEC));
        if (file != "-" && !file_.isOpen())
            throw std::runtime_error(name_ + " cannot be opened: " + std::strerror(errno));
        if (fstat(descriptor(), &status_) != 0)
            throw std::runtime_error(name_ + " cannot be read: " + std::strerror(errno));
    }

    // A request to stop ends reading from standard input, so its number must not change.
    int descriptor() const { return file_.isOpen() ? file_.get() : STDIN_FILENO; }
    const std::string& name() const { return name_; }
    FileId id() const { return idOf(status_); }
    bool isFile() const { return S_ISREG(status_.st_mode); }

    int64_t time() const {
        return isFile() ? int64_t{status_.st_mtim.tv_sec} * 1'000'000'000 + status_.st_mtim.tv_nsec : -1;
    }

    // Whether the file is the one of an earlier run. Its sum is taken only if its time does not tell.
    bool isThatOf(const ShardTotals& earlier) const {
        if (!isFile() || static_cast<uint64_t>(status_.st_size) != earlier.inputSize) return false;
        return time() == earlier.inputTime || sha256OfFile(descriptor()) == earlier.inputSum;
    }

private:
    std::string name_;
    Descriptor file_;
    struct stat status_ {};
};

bool isDone(const std::optional<Manifest>& earlier, const Settings& settings, const Input& input,
            const Existing& output) {
    if (!earlier || !earlier->totals || earlier->totals->outOfMemory > 0) return false;
    const ManifestHead head = headOf(settings);
    return earlier->head.program == head.program && earlier->head.options == head.options &&
           output.size == earlier->totals->outputSize && input.isThatOf(*earlier->totals);
}

int statusOf(const ShardTotals& totals) { return totals.damaged + totals.failed > 0 ? kSomeBad : kAllDone; }

class ShardRun {
public:
    explicit ShardRun(const Settings& settings) : settings_(settings), input_(settings.pages.front()) {
        inputs_.add(input_.id());
        addInput(input_.name(), inputs_);
        const std::string& manifest = settings.shard.manifest;
        if (!manifest.empty()) manifest_.emplace(manifest, headOf(settings), Rules{inputs_, settings.overwrite});
    }

    int toFile() {
        const OutputPlace place = placeOf(settings_.folder);
        const Existing existing = existingOutput(place);
        if (isDone(manifest_->earlier(), settings_, input_, existing)) {
            std::fprintf(stderr, "scanpage: %s is kept: its manifest is whole\n", settings_.folder.c_str());
            return statusOf(*manifest_->earlier()->totals);
        }
        UnnamedFile file = place.folder.create(place.name);
        PageReport report(0, settings_.talk, Lines::kPages);
        const ShardTotals totals = straighten(file.descriptor(), settings_.folder, report);
        manifest_->announce();
        place.folder.publish(file, place.name, existing.id);
        manifest_->finish(totals);
        report.summarise();
        return statusOf(totals);
    }

    int toStandardOutput() {
        PageReport report(0, settings_.talk, Lines::kNone);
        const ShardTotals totals = straighten(STDOUT_FILENO, "standard output", report);
        if (manifest_) manifest_->finish(totals);
        report.summarise();
        return statusOf(totals);
    }

private:
    Existing existingOutput(const OutputPlace& place) const {
        Existing existing = identify(place.folder, place.name);
        existing.mayBeRemade = manifest_->earlier().has_value();
        requireReplaceable(existing, place.path(), {inputs_, settings_.overwrite});
        return existing;
    }

    ShardTotals straighten(int output, const std::string& name, PageReport& report) {
        Compression compression = settings_.shard.compression;
        if (compression == Compression::kByName) compression = compressionOf(settings_.folder);
        TarReader reader(input_.descriptor(), input_.name());
        TarWriter writer(output, name, compression);
        const ShardOptions options{settings_.page, settings_.shard.dropOthers, settings_.jobs};
        ShardTotals totals = straightenShard(reader, writer, options, report, [&](const MemberLine& member) {
            if (manifest_) manifest_->add(member);
        });
        totals.inputTime = input_.time();
        return totals;
    }

    const Settings& settings_;
    Input input_;
    InputIds inputs_;
    std::optional<ManifestFile> manifest_;
};

}    // namespace

ManifestHead headOf(const Settings& settings) {
    static const std::map<Format, const char*> kFormats = {
        {Format::kPbm, "pbm"}, {Format::kG4, "g4"}, {Format::kJpeg, "jpeg"}};
    static const std::map<Compression, const char*> kCompressions = {
        {Compression::kNone, "none"}, {Compression::kGzip, "gzip"}, {Compression::kZstd, "zstd"}};
    const Format format = *settings.page.formats.begin();
    std::string options = std::string("--format ") + kFormats.at(format);
    if (const std::string page = optionsText(settings.page, format); page != "none") options += ' ' + page;
    if (settings.page.refuseDamaged) options += " --damaged refuse";
    if (settings.shard.dropOthers) options += " --other drop";
    if (settings.shard.compression != Compression::kByName)
        options += std::string(" --compress ") + kCompressions.at(settings.shard.compression);
    return {"scanpage " SCANPAGE_VERSION, options, settings.pages.front()};
}

int runShard(const Settings& settings) {
    std::setlocale(LC_CTYPE, "C.UTF-8");    // libarchive converts names of another encoding
    try {
        ShardRun run(settings);
        return settings.folder == "-" ? run.toStandardOutput() : run.toFile();
    } catch (const std::exception&) {
        if (!stopRequested()) throw;
        std::fputs("scanpage: stopped before the last page; no complete tar is written\n", stderr);
        return kStopped;
    }
}
