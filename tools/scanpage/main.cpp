// scanpage: reads scanned JPEG pages, straightens them and writes them as JPEG, PBM or TIFF.
#include <fcntl.h>
#include <leptonica/allheaders.h>
#include <signal.h>
#include <tiffio.h>
#include <unistd.h>

#include <cstdio>
#include <unordered_set>

#include "command_line.h"
#include "contact_sheet.h"
#include "thread_pool.h"
#include "page_report.h"
#include "page_list.h"
#include "stop.h"

namespace {

// A file that is opened takes the lowest number that is free: that of a standard stream, if scanpage is started without
// it, and messages would land in a result. So something takes the place that fails as the closed stream does.
void occupyClosedStreams() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (fcntl(stream, F_GETFD) < 0) open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
}

// Two pages of one name, from two folders, would write the same files: the second is refused.
PageResult sharedName(const std::string& file) {
    PageResult result;
    result.file = file;
    result.status = Status::kFailed;
    result.fault = "another page has given its results the name " + resultName(file);
    return result;
}

// The library may be called from any number of threads, so each page is one job of any thread. Only the pages in hand
// are in memory, and of the others the names of their results. False if pages were left over.
bool straightenAll(const Settings& settings, PageList& pages, PageReport& report, ContactSheet& sheet) {
    std::unordered_set<std::string> names;
    ThreadPool pool(settings.jobs);
    std::string file;
    for (size_t index = 0; pages.next(file); ++index) {
        pool.waitForFreeThread();
        if (stopRequested()) return false;
        if (!names.insert(resultName(file)).second) {
            report.add(sharedName(file));
            continue;
        }
        const bool keepImages = !settings.contactSheet.empty() && index < ContactSheet::kMostPages;
        pool.start([&, file, index, keepImages] {
            const PageResult result = processPage(file, settings.page, keepImages);
            report.add(result);
            if (result.before && result.after) sheet.add(index, *result.before, *result.after);
        });
    }
    return !stopRequested();    // a list may have gone on
}

int run(int argc, char** argv) {
    occupyClosedStreams();
    Settings settings;
    int exitStatus = 0;
    if (!parseCommandLine(argc, argv, settings, exitStatus)) return exitStatus;

    setMsgSeverity(L_SEVERITY_NONE);    // Leptonica would report pages without text
    TIFFSetErrorHandler(nullptr);
    signal(SIGPIPE, SIG_IGN);
    catchStopSignals();

    PageList pages(settings.pages, settings.list, settings.separator);
    PageReport report(pages.count(), settings.verbose);
    ContactSheet sheet;
    const bool complete = straightenAll(settings, pages, report, sheet);
    report.summarise();
    if (!settings.contactSheet.empty()) sheet.write(settings.contactSheet);
    if (!complete) std::fputs("scanpage: stopped before the last page\n", stderr);
    if (!complete || report.anyLineLost()) return kStopped;
    return report.anyFailed() ? kSomeFailed : kAllDone;
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
