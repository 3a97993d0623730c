#include "command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <map>

#include "filter.h"

bool parseCommandLine(int argc, char** argv, Settings& settings, int& exitStatus) {
    Options& page = settings.page;
    std::vector<std::string> formats = {"jpeg"};
    bool nul = false;

    CLI::App app("Straightens scanned pages.", "scanpage");
    app.add_option("pages", settings.pages, "JPEG files")->type_name("PAGE.jpg");
    auto* list =
        app.add_option("--from", settings.list, "File with the names of more pages, one a line; - is standard input")
            ->type_name("LIST");
    app.add_flag("-0,--null", nul, "Names in the list end with a NUL character instead of a line feed");
    app.add_option("-o,--output", page.directory, "Folder for the results")->required()->check(CLI::ExistingDirectory);
    app.add_option("--format", formats, "Results to write: jpeg, pbm, g4 (TIFF, CCITT group 4)")
        ->check(CLI::IsMember({"jpeg", "pbm", "g4"}))
        ->delimiter(',')
        ->allow_extra_args(false)
        ->capture_default_str();
    app.add_flag("--resume", page.resume, "Leave pages alone whose results are all there");
    app.add_option("-j,--jobs", settings.jobs, "Pages at once")->check(CLI::Range(1, 256))->capture_default_str();
    auto* angle = app.add_option("--angle", page.angle,
                                 "Turn by this many degrees, counter-clockwise, instead of finding the skew");
    app.add_option("--denoise", page.denoise, "Reduce noise with this strength, 0 to 10")->check(CLI::Range(0, 10));
    app.add_option("--median", page.median,
                   "Median over 3 x 3 pixels: none, cross, weighted (centre counts 3 times), colour")
        ->transform(CLI::CheckedTransformer(std::map<std::string, Median>{{"none", Median::kNone},
                                                                          {"cross", Median::kCross},
                                                                          {"weighted", Median::kWeighted},
                                                                          {"colour", Median::kColour}}));
    app.add_option("--dpi", page.dpi, "Scale to this resolution")->check(CLI::Range(10, 4800));
    app.add_option("--mode", page.mode, "JPEG quality by mode code")
        ->check(CLI::IsMember({0, 286, 389, 450, 788}))
        ->capture_default_str();
    app.add_option("--threshold", page.threshold,
                   "Largest grey value that is black at 1 bit; chosen by histogram if not given")
        ->check(CLI::Range(0, 255));
    app.add_option("--contact-sheet", settings.contactSheet, "PNG with the first 50 pages before and after")
        ->type_name("OUT.png");
    app.add_flag("-v,--verbose", settings.verbose, "Say size, resolution and skew of each page on standard error");
    app.footer(
        "A line a page goes to standard output as the page is finished: file, status (done, kept, failed), skew in\n"
        "degrees, milliseconds, bytes written, separated by tabs.\n"
        "Exit status: 0 all pages are done or kept, 1 some failed, 2 wrong usage, 3 stopped before the last page.");
    try {
        app.parse(argc, argv);
        if (settings.pages.empty() && list->count() == 0) throw CLI::RequiredError("PAGE.jpg or --from");
        if (list->count() > 0 && settings.list.empty()) throw CLI::ValidationError("--from", "the name is empty");
        if (!(std::abs(page.angle) <= 360)) throw CLI::ValidationError("--angle", "not in range -360 to 360");
    } catch (const CLI::ParseError& e) {
        exitStatus = app.exit(e) == 0 ? kAllDone : kUsage;
        return false;
    }

    const auto asked = [&](const char* format) {
        return std::find(formats.begin(), formats.end(), format) != formats.end();
    };
    page.skewGiven = angle->count() > 0;
    page.jpeg = asked("jpeg");
    page.pbm = asked("pbm");
    page.g4 = asked("g4");
    settings.separator = nul ? '\0' : '\n';
    return true;
}
