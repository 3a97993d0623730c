// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The manifest of a shard: what became of each of its members, as lines of JSON.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

// The first line.
struct ManifestHead {
    std::string program;    // with its version
    std::string options;    // that decide about the results
    std::string input;      // name of the shard; "-" is standard input
};

// A member of the input, or a page of it.
struct MemberLine {
    std::string name;
    std::string status;                   // done, damaged, failed, passed, dropped
    std::optional<std::string> result;    // name of the member in the output
    std::string inputSum, sum;            // SHA-256 of the contents; empty if there are none
    uint64_t inputSize = 0, size = 0;
    std::optional<double> skew;    // degrees
    std::string reason;            // why there is no skew, or why the page failed or is damaged
    double milliseconds = 0;
};

// The last line. A manifest without it is not whole.
struct ShardTotals {
    uint64_t done = 0, damaged = 0, failed = 0, passed = 0, dropped = 0;    // pages, and members that are none
    uint64_t withoutSkew = 0;                                               // of the pages that did not fail
    uint64_t outOfMemory = 0;                                               // of those that did
    double seconds = 0;
    std::string inputSum, outputSum;    // SHA-256 of the streams
    uint64_t inputSize = 0, outputSize = 0;
    int64_t inputTime = -1;    // modification of the file in nanoseconds; below 0: it was no file

    uint64_t pages() const { return done + damaged + failed; }
};

// Names are escaped as in the report. Each line ends with a line feed.
std::string lineOf(const ManifestHead& head);
std::string lineOf(const MemberLine& member);
std::string lineOf(const ShardTotals& totals);

// The first line and, if it is there, the last.
struct Manifest {
    ManifestHead head;
    std::optional<ShardTotals> totals;
};

// The name of the manifest of an output, unless another is chosen, and back. The name of another file stays as it is.
std::string manifestNameOf(const std::string& output);
std::string outputNameOf(const std::string& manifest);

// Nothing if there is no such file, or if it is no manifest.
std::optional<Manifest> readManifest(const std::string& name);
