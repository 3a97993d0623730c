// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "manifest_command.h"

#include <fcntl.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <set>

#include "escape.h"
#include "page_list.h"
#include "results.h"
#include "sha256.h"
#include "shard_run.h"

namespace {

using Json = nlohmann::ordered_json;

constexpr double kMegabyte = 1024.0 * 1024.0;

// A shard's name without folder and endings, by which its input, output and manifest belong together.
std::string stemOf(const std::string& file) {
    static const std::set<std::string> kEndings = {".tar", ".tgz", ".tzst", ".gz", ".bz2", ".xz", ".lz4", ".zst"};
    std::filesystem::path name = std::filesystem::path(outputNameOf(file)).filename();
    while (kEndings.count(name.extension().string()) > 0) name = name.stem();
    return name.string();
}

std::vector<std::string> linesOf(const std::string& file) {
    std::ifstream list(file);
    std::vector<std::string> lines;
    for (std::string line; std::getline(list, line);)
        if (!line.empty()) lines.push_back(line);
    if (!list.eof()) throw std::runtime_error(file + " cannot be read");
    return lines;
}

// Sums up manifests, and finds the shards that are not good.
class Summary {
public:
    void add(const std::string& file, bool verify) {
        const std::optional<Manifest> manifest = readManifest(file);
        const bool knowsInput = manifest && manifest->head.input != "-";
        const std::string name = knowsInput ? manifest->head.input : outputNameOf(file);
        stems_.insert(stemOf(name));
        if (!manifest || !manifest->totals) return note(notWhole_, name);
        add(*manifest->totals);
        if (manifest->totals->failed > 0) note(withFailures_, name);
        if (verify && !isUnchanged(file, *manifest->totals)) note(changed_, name);
    }

    // Finds the shards without a manifest. From now on shards have the names that are expected.
    void expect(const std::vector<std::string>& names) {
        for (const std::string& name : names) {
            if (stems_.count(stemOf(name)) == 0)
                note(missing_, name);
            else if (bad_.count(stemOf(name)) > 0)
                bad_[stemOf(name)] = name;
        }
    }

    bool isGood() const { return bad_.empty(); }

    // The names of the shards to work on again, one per line.
    std::string retryList() const {
        std::string list;
        for (const auto& [stem, name] : bad_) list += name + '\n';
        return list;
    }

    void printTable() const {
        print("shards", stems_.size() + missing_.size());
        print("pages", totals_.pages());
        print("  done", totals_.done);
        print("  damaged", totals_.damaged);
        print("  failed", totals_.failed);
        print("  without skew", totals_.withoutSkew);
        print("passed on", totals_.passed);
        print("dropped", totals_.dropped);
        std::printf("%-16s %14.1f\n", "MB read", static_cast<double>(totals_.inputSize) / kMegabyte);
        std::printf("%-16s %14.1f\n", "MB written", static_cast<double>(totals_.outputSize) / kMegabyte);
        std::printf("%-16s %14.1f\n", "seconds", totals_.seconds);
        printShards("missing", missing_);
        printShards("not whole", notWhole_);
        printShards("has failed pages", withFailures_);
        printShards("was changed", changed_);
    }

    void printJson() const {
        const Json json = {{"shards", stems_.size() + missing_.size()},
                           {"pages", totals_.pages()},
                           {"done", totals_.done},
                           {"damaged", totals_.damaged},
                           {"failed", totals_.failed},
                           {"without_skew", totals_.withoutSkew},
                           {"passed", totals_.passed},
                           {"dropped", totals_.dropped},
                           {"input_size", totals_.inputSize},
                           {"output_size", totals_.outputSize},
                           {"seconds", totals_.seconds},
                           {"missing", missing_},
                           {"not_whole", notWhole_},
                           {"with_failures", withFailures_},
                           {"changed", changed_}};
        std::puts(json.dump(2).c_str());
    }

private:
    void add(const ShardTotals& shard) {
        totals_.done += shard.done;
        totals_.damaged += shard.damaged;
        totals_.failed += shard.failed;
        totals_.passed += shard.passed;
        totals_.dropped += shard.dropped;
        totals_.withoutSkew += shard.withoutSkew;
        totals_.inputSize += shard.inputSize;
        totals_.outputSize += shard.outputSize;
        totals_.seconds += shard.seconds;
    }

    void note(std::vector<std::string>& list, const std::string& name) {
        list.push_back(escaped(name));
        bad_.emplace(stemOf(name), name);
    }

    static bool isUnchanged(const std::string& manifest, const ShardTotals& totals) {
        const Descriptor output(open(outputNameOf(manifest).c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
        struct stat status {};
        if (!output.isOpen() || fstat(output.get(), &status) != 0 || !S_ISREG(status.st_mode)) return false;
        return static_cast<uint64_t>(status.st_size) == totals.outputSize &&
               sha256OfFile(output.get()) == totals.outputSum;
    }

    static void print(const char* what, uint64_t count) {
        std::printf("%-16s %14llu\n", what, static_cast<unsigned long long>(count));
    }

    static void printShards(const char* what, const std::vector<std::string>& names) {
        for (const std::string& name : names) std::printf("%s: %s\n", name.c_str(), what);
    }

    ShardTotals totals_;
    std::set<std::string> stems_;
    std::map<std::string, std::string> bad_;    // names by stem
    std::vector<std::string> missing_, notWhole_, withFailures_, changed_;
};

// Whether the manifest is whole and of this version and these options of scanpage --tar.
bool isWhole(const std::string& file, const std::vector<std::string>& options) {
    std::vector<std::string> words = {"scanpage", "--tar", "-o", "-"};
    words.insert(words.end(), options.begin(), options.end());
    words.emplace_back("-");
    std::vector<char*> arguments;
    arguments.reserve(words.size());
    for (std::string& word : words) arguments.push_back(word.data());
    Settings settings;
    int exitStatus = 0;
    if (!parseCommandLine(static_cast<int>(arguments.size()), arguments.data(), settings, exitStatus))
        throw std::runtime_error("the options behind -- are wrong");
    const ManifestHead head = headOf(settings);
    const std::optional<Manifest> manifest = readManifest(file);
    return manifest && manifest->totals && manifest->head.program == head.program &&
           manifest->head.options == head.options;
}

void replaceFile(const std::string& path, const std::string& text) {
    const OutputPlace place = placeOf(path);
    place.folder.write(place.name, {text.begin(), text.end()}, identify(place.folder, place.name).id);
}

}    // namespace

int manifestCommand(int argc, char** argv) {
    std::vector<std::string> files;
    std::string list, expected, retry, whole;
    bool json = false;
    bool verify = false;
    CLI::App app("Sums up the manifests of scanpage --tar.", "scanpage manifest");
    app.add_option("files", files, "Manifests; with --whole and behind --, options of scanpage --tar")
        ->type_name("FILE");
    app.add_option("--from", list, "File with the names of more manifests, one per line; - is standard input")
        ->type_name("LIST");
    app.add_flag("--json", json, "Print JSON instead of a table");
    app.add_option("--expected", expected,
                   "File with the names of all shards, one per line; those without a manifest are missing")
        ->type_name("LIST")
        ->check(CLI::ExistingFile);
    app.add_option("--retry", retry,
                   "Write the names of shards that are missing, not whole, changed or have failed pages")
        ->type_name("FILE");
    app.add_flag("--verify", verify, "Read the outputs beside the manifests and compare their sums");
    app.add_option("--whole", whole, "Only ask if this manifest is whole and made with the same options")
        ->type_name("FILE");
    app.footer("Exit status: 0 all is there and good, 1 some is not, 2 wrong usage.");
    try {
        app.parse(argc, argv);
        if (whole.empty() && files.empty() && list.empty()) throw CLI::RequiredError("FILE, --from or --whole");
    } catch (const CLI::ParseError& e) {
        return reportUsage(app, e);
    }
    if (!whole.empty()) return isWhole(whole, files) ? kAllDone : kSomeBad;
    Summary summary;
    std::vector<PageName> named;
    named.reserve(files.size());
    for (const std::string& file : files) named.push_back({file, ""});
    PageList manifests(std::move(named), list, '\n');
    for (PageName name; manifests.next(name);) summary.add(name.file, verify);
    if (!expected.empty()) summary.expect(linesOf(expected));
    if (!retry.empty()) replaceFile(retry, summary.retryList());
    if (json)
        summary.printJson();
    else
        summary.printTable();
    if (std::fflush(stdout) != 0) throw std::runtime_error("standard output cannot be written");
    return summary.isGood() ? kAllDone : kSomeBad;
}
