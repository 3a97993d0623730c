// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <map>

#include "escape.h"
#include "filter.h"
#include "manifest.h"

namespace {

const std::map<std::string, Format> kFormats = {{"jpeg", Format::kJpeg}, {"pbm", Format::kPbm}, {"g4", Format::kG4}};

// The name of a page must not be taken for the name of a result, as in "--contact-sheet scans/*.jpg".
std::function<std::string(const std::string&)> endsIn(const std::vector<std::string>& endings) {
    return [endings](const std::string& file) {
        std::string ending = std::filesystem::path(file).extension().string();
        std::transform(ending.begin(), ending.end(), ending.begin(), [](unsigned char c) { return std::tolower(c); });
        if (std::find(endings.begin(), endings.end(), ending) != endings.end()) return std::string();
        return file + " does not end in " + endings.front() + "; the option needs the name of its result";
    };
}

void addShardOptions(CLI::App& app, ShardSettings& shard) {
    auto* tar = app.add_flag("--tar", shard.on,
                             "Straighten the pages of a tar, PAGE, into another, OUTPUT; - is a standard stream");
    app.add_option("--manifest", shard.manifest,
                   "What became of each member of the tar, as lines of JSON; OUTPUT.manifest.jsonl by default")
        ->type_name("FILE")
        ->needs(tar);
    app.add_option("--other", shard.dropOthers, "Members of the tar that are no page")
        ->transform(CLI::CheckedTransformer(std::map<std::string, bool>{{"pass", false}, {"drop", true}}))
        ->needs(tar);
    app.add_option("--compress", shard.compression, "Compression of the tar; by the ending of its name if not given")
        ->transform(CLI::CheckedTransformer(std::map<std::string, Compression>{
            {"none", Compression::kNone}, {"gzip", Compression::kGzip}, {"zstd", Compression::kZstd}}))
        ->needs(tar);
}

// Whatever the parser cannot check itself.
void check(const CLI::App& app, const Settings& settings) {
    const Options& page = settings.page;
    if (settings.pages.empty() && app.count("--from") == 0) throw CLI::RequiredError("PAGE or --from");
    if (settings.folder.empty() && !page.forBook) throw CLI::RequiredError("--output, --pdf or --tiff");
    if (page.resume && page.forBook)
        throw CLI::ValidationError("--resume", "a PDF or TIFF of all pages needs all of them worked on again");
    if (app.count("--from") > 0 && settings.list.empty()) throw CLI::ValidationError("--from", "the name is empty");
    if (!(std::abs(page.angle) <= 360)) throw CLI::ValidationError("--angle", "not in range -360 to 360");
    if (!settings.shard.on && app.count("--output") > 0)
        if (const std::string fault = CLI::ExistingDirectory(settings.folder); !fault.empty())
            throw CLI::ValidationError("--output", fault);
}

void checkShard(const CLI::App& app, const Settings& settings) {
    for (const char* option : {"--from", "--pdf", "--tiff", "--contact-sheet", "--resume"})
        if (app.count(option) > 0) throw CLI::ValidationError("--tar", std::string("excludes ") + option);
    if (settings.pages.size() != 1) throw CLI::ValidationError("--tar", "takes one tar");
    if (settings.page.formats.size() != 1) throw CLI::ValidationError("--tar", "takes one --format");
    if (app.count("--manifest") > 0 && settings.shard.manifest.empty())
        throw CLI::ValidationError("--manifest", "the name is empty");
    if (settings.shard.manifest == settings.folder)
        throw CLI::ValidationError("--manifest", "has the name of the output");
}

}    // namespace

int reportUsage(const CLI::App& app, const CLI::ParseError& e) {
    if (e.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) {
        std::fputs(app.help().c_str(), stdout);
        return kAllDone;
    }
    std::fprintf(stderr, "scanpage: %s\n%s --help prints the options.\n", escaped(e.what()).c_str(),
                 app.get_name().c_str());
    return kUsage;
}

bool parseCommandLine(int argc, char** argv, Settings& settings, int& exitStatus) {
    Options& page = settings.page;
    std::vector<std::string> formats = {"jpeg"};
    std::string damaged = "keep";
    std::string background;
    bool nul = false;

    CLI::App app("Straightens scanned pages.", "scanpage");
    app.add_option("pages", settings.pages, "JPEG, PNG, TIFF and PNM files")->type_name("PAGE");
    app.add_option("--from", settings.list, "File with the names of more pages, one per line; - is standard input")
        ->type_name("LIST");
    app.add_flag("-0,--null", nul, "Names in the list end with a NUL character instead of a line feed");
    app.add_option("-o,--output", settings.folder, "Folder for the results of each page; with --tar, the tar to write");
    app.add_option("--pdf", settings.pdf, "One PDF of all pages")->type_name("FILE.pdf")->check(endsIn({".pdf"}));
    app.add_option("--tiff", settings.tiff, "One TIFF of all pages")
        ->type_name("FILE.tif")
        ->check(endsIn({".tif", ".tiff"}));
    app.add_option("--format", formats, "Results to write: jpeg, pbm, g4 (TIFF, CCITT group 4)")
        ->check(CLI::IsMember({"jpeg", "pbm", "g4"}))
        ->delimiter(',')
        ->allow_extra_args(false)
        ->capture_default_str();
    addShardOptions(app, settings.shard);
    app.add_flag("--resume", page.resume, "Keep results that are complete and made with the same options");
    app.add_flag("--overwrite", settings.overwrite, "Replace files that scanpage did not make");
    app.add_option("--damaged", damaged, "Damaged pages: keep what is left of them, or refuse them")
        ->check(CLI::IsMember({"keep", "refuse"}))
        ->capture_default_str();
    app.add_option("-j,--jobs", settings.jobs, "Pages at once")->check(CLI::Range(1, 256))->capture_default_str();
    auto* angle = app.add_option("--angle", page.angle,
                                 "Turn by this many degrees, counter-clockwise, instead of finding the skew");
    app.add_flag("--orient", page.orient, "Turn pages that lie on their side or head upright")->excludes(angle);
    app.add_option(
           "--background", background,
           "Shading and colour of the paper: keep, or flatten; flattened by default at 1 bit without --threshold")
        ->check(CLI::IsMember({"keep", "flatten"}));
    app.add_option("--denoise", page.denoise, "Reduce noise with this strength, 0 to 10")->check(CLI::Range(0, 10));
    app.add_option("--median", page.median,
                   "Median over 3 x 3 pixels: none, cross, weighted (centre counts 3 times), colour")
        ->transform(CLI::CheckedTransformer(std::map<std::string, Median>{{"none", Median::kNone},
                                                                          {"cross", Median::kCross},
                                                                          {"weighted", Median::kWeighted},
                                                                          {"colour", Median::kColour}}));
    app.add_option("--assume-dpi", page.assumedDpi, "Resolution of pages that state none")
        ->check(CLI::Range(10, 4800))
        ->capture_default_str();
    app.add_option("--dpi", page.dpi, "Scale to this resolution")->check(CLI::Range(10, 4800));
    app.add_option("--mode", page.mode, "JPEG quality by mode code")
        ->check(CLI::IsMember({0, 286, 389, 450, 788}))
        ->capture_default_str();
    app.add_option("--threshold", page.threshold,
                   "Largest grey value that is black at 1 bit; chosen by histogram if not given")
        ->check(CLI::Range(0, 255));
    app.add_option("--contact-sheet", settings.contactSheet, "PNG with the first 200 pages before and after")
        ->type_name("OUT.png")
        ->check(endsIn({".png"}));
    app.add_flag("-v,--verbose", settings.verbose, "Print size, resolution and skew of each page on standard error");
    app.footer(
        "Standard output gets a line for each page when the page is finished: file, status (done, kept, damaged,\n"
        "failed), skew in degrees, milliseconds, bytes written, confidence in the skew, why it was not found,\n"
        "separated by tabs.\n"
        "Exit status: 0 all pages are done or kept, 1 some are damaged or failed, 2 wrong usage, 3 stopped before the\n"
        "last page.");
    try {
        app.parse(argc, argv);
        page.forBook = !settings.pdf.empty() || !settings.tiff.empty();
        for (const std::string& format : formats) page.formats.insert(kFormats.at(format));
        check(app, settings);
        if (settings.shard.on) checkShard(app, settings);
    } catch (const CLI::ParseError& e) {
        exitStatus = reportUsage(app, e);
        return false;
    }

    if (settings.shard.on && settings.shard.manifest.empty() && settings.folder != "-")
        settings.shard.manifest = manifestNameOf(settings.folder);
    page.skewGiven = angle->count() > 0;
    if (!background.empty()) page.background = background == "keep" ? Background::kKeep : Background::kFlatten;
    page.refuseDamaged = damaged == "refuse";
    settings.separator = nul ? '\0' : '\n';
    return true;
}
