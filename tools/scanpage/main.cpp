// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// scanpage: reads scanned pages, straightens them and writes them as JPEG, PBM or TIFF.
#include <fcntl.h>
#include <leptonica/allheaders.h>
#include <signal.h>
#include <tiffio.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <optional>

#include "command_line.h"
#include "contact_sheet.h"
#include "escape.h"
#include "input_file.h"
#include "manifest_command.h"
#include "page_list.h"
#include "page_report.h"
#include "pipeline.h"
#include "shard_run.h"
#include "stop.h"
#include "thread_pool.h"

namespace {

// A file that is opened gets the lowest free number. If scanpage is started without a standard stream, that would be
// the stream's number, and messages would end up in a result. A placeholder fails like the closed stream.
void occupyClosedStreams() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (fcntl(stream, F_GETFD) < 0) open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
}

// Two pages of the same name, from two folders, would write the same files: the second is rejected.
PageResult sharedName(const PageName& page) {
    PageResult result;
    result.file = page.file;
    result.status = Status::kFailed;
    result.fault = nameIsUsed(resultName(page));
    return result;
}

void addToSheet(ContactSheet& sheet, const PageOrder& order, PageResult& result) {
    if (!result.before || !result.after) return;
    char angle[32];
    std::snprintf(angle, sizeof(angle), "%.2f deg", result.skew.angle);
    const std::string name = std::filesystem::path(result.file).filename().string();
    sheet.add(order, {name, result.skew.known ? angle : "no skew: " + result.skew.reason, std::move(*result.before),
                      std::move(*result.after)});
}

// Each page is a job of any thread. Only the pages in hand are in memory, and the names of the results of the others.
// False if pages are left over.
bool straightenAll(const Run& run, int jobs, PageList& pages, PageReport& report, std::optional<ContactSheet>& sheet) {
    ThreadPool pool(jobs);
    PageName name;
    for (size_t index = 0; pages.next(name); ++index) {
        pool.waitForFreeThread();
        if (stopRequested()) return false;
        if (run.folder && !run.names.claim(resultName(name))) {
            report.add(sharedName(name));
            continue;
        }
        const bool thumbnails = sheet && index < ContactSheet::kMostPages;
        pool.start([&, name, index, thumbnails] {
            size_t page = 0;
            processFile(name, index, run, thumbnails, [&](PageResult& result) {
                report.add(result);
                if (thumbnails) addToSheet(*sheet, {index, page++}, result);
            });
        });
    }
    return !stopRequested();    // the list may have more pages
}

// A folder on the command line stands for its pages. The results may be in it.
std::vector<PageName> namedPages(const Settings& settings) {
    struct stat results {};
    std::optional<FileId> except;
    if (!settings.folder.empty() && stat(settings.folder.c_str(), &results) == 0) except = idOf(results);
    std::vector<PageName> pages;
    for (const std::string& name : settings.pages) {
        if (!isFolder(name)) {
            pages.push_back({name, ""});
            continue;
        }
        const std::vector<PageName> more = pagesIn(name, settings.recursive, except);
        pages.insert(pages.end(), more.begin(), more.end());
    }
    return pages;
}

void silenceLibraries() {
    setMsgSeverity(L_SEVERITY_NONE);    // Leptonica would report pages without text
    TIFFSetErrorHandler(nullptr);
    TIFFSetWarningHandler(nullptr);
    signal(SIGPIPE, SIG_IGN);
}

// A book that was stopped would look complete, so it is not written.
void finish(Book& book, bool complete, size_t failed) {
    if (!complete) {
        std::fputs("scanpage: the PDF or TIFF is not written, because pages are missing\n", stderr);
        return;
    }
    book.write();
    if (failed > 0) std::fprintf(stderr, "scanpage: the PDF or TIFF lacks pages that failed: %zu\n", failed);
}

int statusOf(bool complete, const PageReport& report) {
    if (!complete) std::fputs("scanpage: stopped before the last page\n", stderr);
    if (!complete || report.anyLineLost()) return kStopped;
    return report.anyBad() ? kSomeBad : kAllDone;
}

int straighten(const Settings& settings, InputIds& inputs, PageList& pages) {
    const Rules rules{inputs, settings.overwrite};
    std::optional<Book> book;
    if (settings.page.forBook) book.emplace(settings.pdf, settings.tiff, rules);
    std::optional<ContactSheet> sheet;
    if (!settings.contactSheet.empty()) sheet.emplace(settings.contactSheet, rules);
    std::optional<OutputFolder> folder;
    if (!settings.folder.empty()) folder = OutputFolder::made(settings.folder);
    PageReport report(pages.count(), settings.talk, Lines::kPages);

    UsedNames names;
    const Run run{settings.page, folder ? &*folder : nullptr, inputs,
                  names,         book ? &*book : nullptr,     settings.overwrite};
    const bool complete = straightenAll(run, settings.jobs, pages, report, sheet);
    report.summarise();
    if (sheet) sheet->write();
    if (book) finish(*book, complete, report.failed());
    return statusOf(complete, report);
}

// Prints what would be written.
int plan(const Settings& settings, InputIds& inputs, PageList& pages) {
    const Rules rules{inputs, settings.overwrite};
    const std::vector<std::string> files = {settings.pdf, settings.tiff, settings.contactSheet};
    for (const std::string& file : files)
        if (!file.empty()) placeOfBook(file, rules);
    std::optional<OutputFolder> folder;
    if (!settings.folder.empty()) folder = OutputFolder::planned(settings.folder);
    PageReport report(pages.count(), settings.talk, Lines::kPlan);

    UsedNames names;
    const Run run{settings.page, folder ? &*folder : nullptr, inputs, names, nullptr, settings.overwrite, true};
    std::optional<ContactSheet> noSheet;
    const bool complete = straightenAll(run, settings.jobs, pages, report, noSheet);
    for (const std::string& file : files)
        if (complete && !file.empty()) report.plan(file);
    report.summarise();
    return statusOf(complete, report);
}

int run(int argc, char** argv) {
    occupyClosedStreams();
    if (argc > 1 && std::string(argv[1]) == "manifest") return manifestCommand(argc - 1, argv + 1);
    Settings settings;
    int exitStatus = 0;
    if (!parseCommandLine(argc, argv, settings, exitStatus)) return exitStatus;
    silenceLibraries();
    catchStopSignals();
    if (settings.shard.on) return runShard(settings);

    const std::vector<PageName> named = namedPages(settings);
    InputIds inputs;
    for (const PageName& page : named) addInput(page.file, inputs);
    PageList pages(named, settings.list, settings.separator);
    return settings.dryRun ? plan(settings, inputs, pages) : straighten(settings, inputs, pages);
}

}    // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception& e) {
        std::fprintf(stderr, "scanpage: %s\n", escaped(e.what()).c_str());
        return kUsage;
    }
}
