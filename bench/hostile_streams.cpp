// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// opcv_dlib_hostile [DOCUMENT]
//
// What the costliest stream of each coding takes, and how much of the damage to small streams is noticed. Prints the two
// tables of docs/reliability.md, or puts them there. Fails if a read takes more memory than its report says, or if the
// limits admit a stream of more than a minute.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "OPCV_dlib_read.h"
#include "support/heap_meter.h"
#include "support/jpeg_costly.h"
#include "support/jpeg_damage.h"

namespace {

constexpr double kMostSeconds = 60;
constexpr int kSide = 192;

bool good = true;

double secondsOfThread() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

struct Cost {
    double seconds = 1e9;
    size_t memory = 0;
    size_t bytes = 0;
    opcv_read_report report = newReport();
};

Cost costOf(const CostlyStream& wanted) {
    const std::vector<uint8_t> stream = costlyStream(wanted);
    Cost cost;
    cost.bytes = stream.size();
    for (int i = 0; i < 3; ++i) {
        PageReading r;
        const double start = secondsOfThread();
        const auto use = HeapMeter::of([&] { r = readPage(stream); });
        cost.seconds = std::min(cost.seconds, secondsOfThread() - start);
        cost.memory = use.most;
        cost.report = r.report;
    }
    if (static_cast<int64_t>(cost.memory) > cost.report.memory) {
        std::fprintf(stderr, "%s: %zu bytes of memory, %lld were reported\n", wanted.name().c_str(), cost.memory,
                     static_cast<long long>(cost.report.memory));
        good = false;
    }
    return cost;
}

// The scans that are coded again and again: their time for a sample, with what the limits let through of them.
double worstSeconds(const CostlyStream& wanted, const Cost& cost) {
    if (!wanted.hasSeveralScans()) {
        const double samples = 1.0 * kSide * kSide;
        const double most = wanted.arithmetic ? 0x1p29 / (1 + 2 * static_cast<double>(cost.bytes) / samples) : 0x1p30;
        return cost.seconds / samples * most;
    }
    CostlyStream more = wanted;
    more.scans = 3 * wanted.scans;
    const Cost longer = costOf(more);
    const double scans = longer.report.scans - cost.report.scans;
    const double samples = scans * kSide * kSide;
    const double work = samples + 2.0 * static_cast<double>(longer.bytes - cost.bytes);
    return (longer.seconds - cost.seconds) / work * (wanted.arithmetic ? 0x1p29 : 0x1p33);
}

std::string costTable() {
    constexpr double kMegapixels = kSide * kSide * 1e-6;
    std::string table =
        "| stream | s per megapixel | bytes of memory per megapixel | ns per byte | bytes of memory per byte | s at "
        "the "
        "limits |\n|---|---|---|---|---|---|\n";
    for (const bool progressive : {false, true})
        for (const bool arithmetic : {false, true})
            for (const int components : {1, 3, 4})
                for (const bool data : {true, false}) {
                    CostlyStream worst;
                    Cost cost;
                    double seconds = -1;
                    for (const int magnitude : {1, 2, 10, 14})
                        for (const bool refining : {false, true}) {
                            if ((!arithmetic && magnitude > 10) || (refining && (!progressive || magnitude == 1)) ||
                                (!data && magnitude != 2))
                                continue;
                            CostlyStream wanted;
                            wanted.progressive = progressive;
                            wanted.arithmetic = arithmetic;
                            wanted.components = components;
                            wanted.data = data;
                            wanted.width = wanted.height = kSide;
                            wanted.scans = 6;
                            wanted.magnitude = magnitude;
                            wanted.refining = refining;
                            const Cost found = costOf(wanted);
                            const double atLimits = worstSeconds(wanted, found);
                            if (atLimits <= seconds) continue;
                            seconds = atLimits;
                            cost = found;
                            worst = wanted;
                        }
                    const double bytes = static_cast<double>(cost.bytes);
                    const double memory = static_cast<double>(cost.memory);
                    char row[256];
                    std::snprintf(row, sizeof row, "| %s%s | %.3f | %.1e | %.0f | %.2g | %.0f |\n",
                                  worst.name().c_str(), worst.refining ? ", refining" : "", cost.seconds / kMegapixels,
                                  memory / kMegapixels, cost.seconds / bytes * 1e9, memory / bytes, seconds);
                    table += row;
                    good = good && seconds <= kMostSeconds;
                }
    return table;
}

std::string flipTable() {
    std::string table =
        "| stream | flips | no page | libjpeg warns | damaged | same page | unnoticed | noticed by warnings | noticed "
        "by "
        "the report |\n|---|---|---|---|---|---|---|---|---|\n";
    for (const NamedStream& s : jpegCorpus()) {
        const FlipCount c = countFlips(s.stream, firstScanData(s.stream), s.stream.size());
        char row[256];
        std::snprintf(row, sizeof row, "| %s | %d | %d | %d | %d | %d | %d | %.1f %% | %.1f %% |\n", s.name.c_str(),
                      c.flips, c.refused, c.warned, c.reported, c.harmless, c.undetected, 100 * c.byWarnings(),
                      100 * c.byReport());
        table += row;
    }
    return table;
}

// Replaces what stands between the two marks of this name.
void place(std::string& document, const std::string& name, const std::string& table) {
    const std::string begin = "<!-- made by opcv_dlib_hostile: " + name + " -->\n";
    const std::string end = "<!-- end of " + name + " -->";
    const size_t from = document.find(begin);
    const size_t to = document.find(end);
    if (from == std::string::npos || to == std::string::npos) {
        std::fprintf(stderr, "the document has no place for %s\n", name.c_str());
        good = false;
        return;
    }
    document.replace(from + begin.size(), to - from - begin.size(), "\n" + table + "\n");
}

}    // namespace

int main(int argc, char** argv) {
    const std::string costs = costTable();
    const std::string flips = flipTable();
    std::printf("%s\n%s", costs.c_str(), flips.c_str());
    if (argc > 1) {
        std::ifstream in(argv[1]);
        std::string document((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
        place(document, "costs", costs);
        place(document, "flips", flips);
        if (good) std::ofstream(argv[1]) << document;
    }
    return good ? 0 : 1;
}
