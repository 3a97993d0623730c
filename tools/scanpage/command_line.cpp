// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "command_line.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <map>
#include <memory>
#include <sstream>

#include "escape.h"
#include "filter.h"
#include "manifest.h"
#include "option_value.h"

namespace {

const std::map<std::string, Format> kFormats = {{"jpeg", Format::kJpeg}, {"pbm", Format::kPbm}, {"g4", Format::kG4}};

constexpr size_t kHelpWidth = 80;
constexpr size_t kHelpColumn = 30;

// Wraps the descriptions in the help.
class Wrapping : public CLI::Formatter {
public:
    Wrapping() { column_width(kHelpColumn); }

    std::string make_option_desc(const CLI::Option* option) const override {
        std::istringstream words(option->get_description());
        std::string text;
        size_t used = 0;
        for (std::string word; words >> word; used += word.size() + 1) {
            const bool fits = used + word.size() <= kHelpWidth - kHelpColumn;
            if (used > 0) text += fits ? ' ' : '\n';
            if (!fits) used = 0;
            text += word;
        }
        return text;
    }
};

CLI::Option* addNumber(CLI::App& app, const std::string& name, int& value, int least, int most,
                       const std::string& description) {
    return app.add_option(name, value, description + ", " + std::to_string(least) + " to " + std::to_string(most))
        ->type_name("N")
        ->check(wholeNumber(least, most));
}

template <class Value>
using Choices = std::vector<std::pair<std::string, Value>>;

// An option whose value is one of a few words.
template <class Value>
CLI::Option* addChoice(CLI::App& app, const std::string& name, Value& value, const Choices<Value>& choices,
                       const std::string& description) {
    std::vector<std::string> words;
    words.reserve(choices.size());
    for (const auto& [word, meaning] : choices) words.push_back(word);
    const auto choose = [&value, choices](const std::string& chosen) {
        for (const auto& [word, meaning] : choices)
            if (word == chosen) value = meaning;
    };
    return app.add_option_function<std::string>(name, choose, description)
        ->type_name('{' + joined(words, ",") + '}')
        ->check(oneOf(words));
}

void addShardOptions(CLI::App& app, ShardSettings& shard) {
    auto* tar = app.add_flag("--tar", shard.on,
                             "Straighten the pages of a tar, PAGE, into another, OUTPUT; - is a standard stream");
    app.add_option("--manifest", shard.manifest,
                   "What became of each member of the tar, as lines of JSON; OUTPUT.manifest.jsonl by default")
        ->type_name("FILE")
        ->needs(tar);
    addChoice<bool>(app, "--other", shard.dropOthers, {{"pass", false}, {"drop", true}},
                    "Members of the tar that are no page")
        ->needs(tar);
    addChoice<Compression>(app, "--compress", shard.compression,
                           {{"none", Compression::kNone}, {"gzip", Compression::kGzip}, {"zstd", Compression::kZstd}},
                           "Compression of the tar; by the ending of its name if not given")
        ->needs(tar);
}

// Whatever the parser cannot check itself.
void check(const CLI::App& app, const Settings& settings) {
    const Options& page = settings.page;
    if (settings.pages.empty() && app.count("--from") == 0)
        throw CLI::RequiredError("pages are missing: name files, a folder, or a list of names by --from LIST", kUsage);
    if (app.count("--output") == 0 && !page.forBook)
        throw CLI::RequiredError("the place of the results is missing: -o FOLDER, --pdf FILE.pdf or --tiff FILE.tif",
                                 kUsage);
    if (page.resume && page.forBook)
        throw CLI::ValidationError("--resume", "a PDF or TIFF of all pages needs all of them worked on again");
    if (app.count("--from") > 0 && settings.list.empty()) throw CLI::ValidationError("--from", "the name is empty");
    if (app.count("--output") > 0 && settings.folder.empty())
        throw CLI::ValidationError("--output", "the name is empty; write . for this folder");
}

void checkShard(const CLI::App& app, const Settings& settings) {
    for (const char* option : {"--from", "--recursive", "--pdf", "--tiff", "--contact-sheet", "--resume", "--dry-run"})
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
        const bool version = dynamic_cast<const CLI::CallForVersion*>(&e) != nullptr;
        std::fputs(version ? "scanpage " SCANPAGE_VERSION "\n" : app.help().c_str(), stdout);
        return kAllDone;
    }
    std::fprintf(stderr, "scanpage: %s\n%s --help prints the options.\n", escaped(e.what()).c_str(),
                 app.get_name().c_str());
    return kUsage;
}

bool parseCommandLine(int argc, char** argv, Settings& settings, int& exitStatus) {
    Options& page = settings.page;
    std::vector<std::string> formats = {"jpeg"};
    bool nul = false;

    CLI::App app("Straightens scanned pages.", "scanpage");
    app.formatter(std::make_shared<Wrapping>());
    app.set_version_flag("--version", SCANPAGE_VERSION, "Print the version and exit");
    app.add_option("pages", settings.pages, "JPEG, PNG, TIFF and PNM files, or folders of them")->type_name("PAGE");
    app.add_flag("-r,--recursive", settings.recursive, "Also the pages in the subfolders of a folder");
    app.add_option("--from", settings.list, "File with the names of more pages, one per line; - is standard input")
        ->type_name("LIST");
    app.add_flag("-0,--null", nul, "Names in the list end with a NUL character instead of a line feed");
    app.add_option("-o,--output", settings.folder,
                   "Folder for the results of each page, made if it is missing; with --tar, the tar to write")
        ->type_name("OUTPUT");
    app.add_option("--pdf", settings.pdf, "One PDF of all pages")->type_name("FILE.pdf")->check(endsIn({".pdf"}));
    app.add_option("--tiff", settings.tiff, "One TIFF of all pages")
        ->type_name("FILE.tif")
        ->check(endsIn({".tif", ".tiff"}));
    app.add_option("--format", formats, "Results to write: jpeg, pbm, g4 (TIFF, CCITT group 4)")
        ->type_name("{jpeg,pbm,g4}")
        ->check(oneOf({"jpeg", "pbm", "g4"}))
        ->delimiter(',')
        ->allow_extra_args(false)
        ->capture_default_str();
    addShardOptions(app, settings.shard);
    app.add_flag("--resume", page.resume, "Keep results that are complete and made with the same options");
    app.add_flag("--overwrite", settings.overwrite,
                 "Replace results that exist; without it, pages that have some fail");
    addChoice<bool>(app, "--damaged", page.refuseDamaged, {{"keep", false}, {"refuse", true}},
                    "Damaged pages: keep what is left of them, or refuse them")
        ->default_str("keep");
    addNumber(app, "-j,--jobs", settings.jobs, 1, 256, "Pages at once")->capture_default_str();
    auto* angle = app.add_option("--angle", page.angle,
                                 "Turn by this many degrees, counter-clockwise, instead of finding the skew")
                      ->type_name("DEGREES")
                      ->check(number(-360, 360));
    app.add_flag("--orient", page.orient, "Turn pages that lie on their side or head upright")->excludes(angle);
    addChoice<Background>(
        app, "--background", page.background, {{"keep", Background::kKeep}, {"flatten", Background::kFlatten}},
        "Shading and colour of the paper: keep, or flatten; flattened by default at 1 bit without --threshold");
    addNumber(app, "--denoise", page.denoise, 0, 10, "Reduce noise with this strength");
    addChoice<Median>(app, "--median", page.median,
                      {{"none", Median::kNone},
                       {"cross", Median::kCross},
                       {"weighted", Median::kWeighted},
                       {"colour", Median::kColour}},
                      "Median over 3 x 3 pixels: none, cross, weighted (centre counts 3 times), colour");
    addNumber(app, "--assume-dpi", page.assumedDpi, 10, 4800, "Resolution of pages that state none")
        ->capture_default_str();
    addNumber(app, "--dpi", page.dpi, 10, 4800, "Scale to this resolution");
    auto* quality =
        addNumber(app, "--quality", page.quality.percent, 1, 100, "JPEG quality, as other programs count it");
    addChoice<int>(app, "--mode", page.quality.mode, {{"0", 0}, {"286", 286}, {"389", 389}, {"450", 450}, {"788", 788}},
                   "JPEG quality by mode code")
        ->default_str("450")
        ->excludes(quality);
    addNumber(app, "--threshold", page.threshold, 0, 255,
              "Largest grey value that is black at 1 bit; chosen by histogram if not given");
    app.add_flag("--dry-run", settings.dryRun, "Only print the names of the files that would be written");
    app.add_option("--contact-sheet", settings.contactSheet, "PNG with the first 200 pages before and after")
        ->type_name("OUT.png")
        ->check(endsIn({".png"}));
    auto* verbose = app.add_flag_callback(
        "-v,--verbose", [&] { settings.talk = Talk::kVerbose; },
        "Print size, resolution and skew of each page and the time of each stage on standard error");
    app.add_flag_callback(
           "-q,--quiet", [&] { settings.talk = Talk::kQuiet; }, "Print nothing but errors on standard error")
        ->excludes(verbose);
    app.footer(
        "Standard output gets a line for each page when the page is finished: file,\n"
        "status (done, kept, damaged, failed), skew in degrees, milliseconds, bytes\n"
        "written, confidence in the skew, why it was not found, how blank the page is,\n"
        "separated by tabs.\n"
        "Exit status: 0 all pages are done or kept, 1 some are damaged or failed,\n"
        "2 wrong usage, 3 stopped before the last page.");
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
    settings.separator = nul ? '\0' : '\n';
    return true;
}
