// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "observation.h"

#include <algorithm>
#include <new>
#include <opencv2/core.hpp>
#include <sstream>

#include "failing_heap.h"

namespace {

enum class Ending { kReturned, kOutOfMemoryException, kOtherException };

Ending run(Case& c, int& status) {
    try {
        status = c.run();
        return Ending::kReturned;
    } catch (const std::bad_alloc&) {
        return Ending::kOutOfMemoryException;
    } catch (const cv::Exception& e) {
        return e.code == cv::Error::StsNoMem ? Ending::kOutOfMemoryException : Ending::kOtherException;
    }
}

// What is wrong with a call of which an allocation failed, or nothing.
std::string faultOf(const OutOfMemory& stated, Case& c, Ending ending, int status, const Bytes& expected,
                    Observation& seen) {
    std::string traces = c.tracesOfFailure();
    const bool returned = ending == Ending::kReturned;
    const Bytes output = c.takeOutput();
    if (returned && status == 0 && output == expected) {
        seen.doesWithout = true;
        return {};
    }
    if (!traces.empty()) return traces;
    if (returned && status == 0) {
        seen.leaves = true;
        return stated.silent ? "" : "success without a result";
    }
    if (returned) {
        seen.answers = true;
        return status == stated.status ? "" : "status " + std::to_string(status);
    }
    seen.throws = true;
    return stated.throws && ending == Ending::kOutOfMemoryException ? "" : "another exception";
}

void observeOne(const Entry& entry, const Case::Setting& setting, FailingHeap::Failure failure, Observation& seen) {
    Heap heap;
    Case c(setting, heap);
    entry.prepare(c);
    c.restore();
    int status = 0;
    run(c, status);    // also lets OpenCV fill its caches
    const Bytes expected = c.takeOutput();
    for (long n = 1; seen.fault.empty(); ++n) {
        c.restore();
        FailingHeap::arm(n, failure);
        const Ending ending = run(c, status);
        const bool failed = FailingHeap::disarm();
        Observation without;    // an allocation that does not fail is none to do without
        seen.fault = faultOf(entry.outOfMemory, c, ending, status, expected, failed ? seen : without);
        if (!failed && !without.doesWithout) seen.fault = "another result in a second run";
        if (FailingHeap::liveBlocks() > c.lostByOpenCV)
            seen.fault = std::to_string(FailingHeap::liveBlocks()) + " blocks are lost";
        if (FailingHeap::liveBlocks() > 0) seen.losesABlock = true;
        if (!seen.fault.empty())
            seen.fault += ", variant " + std::to_string(setting.variant) + ", allocation " + std::to_string(n);
        if (failed) continue;
        seen.fewestAllocations = std::min(seen.fewestAllocations, n - 1);
        seen.mostAllocations = std::max(seen.mostAllocations, n - 1);
        return;
    }
}

std::string outcome(const Observation& seen, const std::string& answer) {
    std::string text;
    const auto add = [&text](bool applies, const std::string& what) {
        if (applies) text += (text.empty() ? "" : ", ") + what;
    };
    add(seen.answers, "`" + answer + "`");
    add(seen.throws, "exception");
    add(seen.leaves, "nothing is done");
    add(seen.doesWithout, "does without");
    add(seen.losesABlock, "OpenCV loses a block");
    return text.empty() ? "none can" : text;
}

// Each allocation fails once, one after the other, and then all from it on, in every shape that the entry knows.
Observation observeFailures(const Entry& entry) {
    Observation seen;
    // Long rows outgrow what OpenCV and libjpeg keep on the stack.
    for (const IppiSize size : {IppiSize{52, 40}, IppiSize{1500, 9}})
        for (int variant = 0; variant < entry.variants; variant += strideOf(entry)) {
            Case::Setting setting;
            setting.seed = 500 + static_cast<unsigned>(variant);
            setting.variant = variant;
            setting.size = size;
            observe(entry, setting, seen);
        }
    if (seen.mostAllocations > 0 && !entry.outOfMemory.allocates) seen.fault = "allocates";
    return seen;
}

}    // namespace

void observe(const Entry& entry, const Case::Setting& setting, Observation& seen) {
    for (const auto failure : {FailingHeap::Failure::kOnce, FailingHeap::Failure::kLasting})
        observeOne(entry, setting, failure, seen);
}

int strideOf(const Entry& entry) {
#if defined(__aarch64__)
    constexpr int kTried = 6;
#else
    const int kTried = entry.variants;
#endif
    return std::max(1, entry.variants / kTried);
}

const std::vector<Observation>& observations() {
    static const std::vector<Observation> all = [] {
        std::vector<Observation> seen;
        for (const Entry& entry : catalogue()) seen.push_back(observeFailures(entry));
        return seen;
    }();
    return all;
}

std::string failureTable() {
    std::ostringstream table;
    table << "| function | shapes | allocations in a call | when one fails |\n|---|---|---|---|\n";
    for (size_t i = 0; i < catalogue().size(); ++i) {
        const Entry& entry = catalogue()[i];
        const Observation& seen = observations()[i];
        table << "| `" << entry.name << "` | " << entry.variants << " | " << seen.fewestAllocations;
        if (seen.mostAllocations > seen.fewestAllocations) table << " to " << seen.mostAllocations;
        table << " | " << outcome(seen, entry.outOfMemory.answer) << " |\n";
    }
    return table.str();
}
