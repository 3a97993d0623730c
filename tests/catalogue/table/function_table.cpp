// Makes the table of docs/functions.md that says what each function reads around its region, what it takes from the
// heap, whether OpenCV's threads work in it, and how it can end.
//
//     function_table HEADER DOCUMENT            fails if the document holds another table
//     function_table HEADER DOCUMENT --write    puts the table into the document
//
// All but the ways to end is found out by calls. The margin: each row and column around the region is changed, and the
// result compared. The heap: counted, with one thread. The threads: OpenCV is given a thread pool that counts its jobs.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <opencv2/core/parallel/parallel_backend.hpp>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "endings.h"
#include "kept.h"
#include "margin.h"
#include "rows.h"
#include "support/heap_meter.h"

namespace {

// OpenCV's threads, as far as the library can tell; the jobs run one after the other.
class CountingThreads : public cv::parallel::ParallelForAPI {
public:
    void parallel_for(int tasks, FN_parallel_for_body_cb_t body, void* data) override {
        ++jobs;
        for (int i = 0; i < tasks; ++i) body(i, i + 1, data);
    }
    int getThreadNum() const override { return 0; }
    int getNumThreads() const override { return threads; }
    int setNumThreads(int n) override {
        const int before = threads;
        threads = n;
        return before;
    }
    const char* getName() const override { return "counting"; }

    int jobs = 0;
    int threads = 1;
};

// Tenths of a byte a pixel; what is less than a tenth is "0".
std::string perPixel(size_t bytes) {
    const auto tenths = static_cast<long>(static_cast<double>(bytes) * 10 / (double{kPage.width} * kPage.height));
    char text[32];
    std::snprintf(text, sizeof text, tenths == 0 ? "0" : "%.1f", static_cast<double>(tenths) / 10);
    return text;
}

// The rows of a function stand together, where its first one is.
std::vector<Row> grouped(const std::vector<Row>& rows) {
    std::vector<Row> result;
    std::map<std::string, bool> done;
    for (const Row& row : rows)
        if (!std::exchange(done[row.name], true))
            std::copy_if(rows.begin(), rows.end(), std::back_inserter(result),
                         [&row](const Row& other) { return other.name == row.name; });
    return result;
}

std::string tableOf(const std::vector<Row>& rows, const std::string& header, CountingThreads& threads) {
    const std::map<std::string, std::string> ends = endings(header);
    std::string out =
        "| function | called with | margin | hands over | works in | threads | ends with "
        "|\n|---|---|---|---|---|---|---|\n";
    std::map<std::string, bool> seen;
    Scene page(kPage);
    for (const Row& row : rows) {
        threads.threads = 1;
        succeed(row, page);    // lets OpenCV fill its caches
        forget();
        HeapMeter::start();
        const int status = row.call(page);
        const HeapMeter::Use use = HeapMeter::stop();
        forget();
        threads.threads = 4;
        threads.jobs = 0;
        succeed(row, page);
        forget();
        const bool jobs = threads.jobs > 0;
        const auto end = ends.find(row.name);
        if (status != 0 || end == ends.end()) throw std::runtime_error(row.name + ": not in the header");
        out += "| `" + row.name + "` | " + row.shape + " | " + marginText(row) + " | " + perPixel(use.kept) + " | " +
               perPixel(use.most - use.kept) + " | " + (jobs ? "yes" : "no") + " | " + end->second + " |\n";
        seen[row.name] = true;
    }
    for (const auto& [name, text] : ends)
        if (!seen.count(name)) throw std::runtime_error(name + " has no row");
    return out;
}

std::string contentsOf(const std::string& file) {
    std::ifstream in(file);
    if (!in) throw std::runtime_error(file + " cannot be read");
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

int run(int argc, char** argv) {
    if (argc < 3) throw std::runtime_error("function_table HEADER DOCUMENT [--write]");
    const std::string document = argv[2];
    const auto threads = std::make_shared<CountingThreads>();
    cv::parallel::setParallelForBackend(threads);

    Documents documents;
    std::vector<Row> rows;
    addRecords(rows);
    addGeometry(rows, documents);
    addJpeg(rows, documents);
    addRank(rows);
    addPixel(rows);
    addFilters(rows);
    const std::string table = tableOf(grouped(rows), argv[1], *threads);

    const std::string begin = "<!-- made by function_table -->\n";
    const std::string end = "<!-- end -->\n";
    std::string text = contentsOf(document);
    const size_t from = text.find(begin);
    const size_t to = text.find(end, from);
    if (from == std::string::npos || to == std::string::npos)
        throw std::runtime_error(document + " has no place for the table");
    const size_t start = from + begin.size();
    if (argc > 3 && std::strcmp(argv[3], "--write") == 0) {
        text.replace(start, to - start, table);
        std::ofstream(document) << text;
        return 0;
    }
    if (text.substr(start, to - start) == table) return 0;
    std::fprintf(stderr, "%s holds another table than this one:\n%s", document.c_str(), table.c_str());
    return 1;
}

}    // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception& e) {
        std::fprintf(stderr, "%s\n", e.what());
        return 2;
    }
}
