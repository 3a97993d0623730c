// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The manifest of a shard as it is written.
#pragma once

#include "manifest.h"
#include "results.h"

// Every function throws if it cannot be written.
class ManifestFile {
public:
    // Throws if there is another program's file. Only a manifest is replaced.
    ManifestFile(const std::string& path, const ManifestHead& head, const Rules& rules);

    // Of an earlier run, whole or not.
    const std::optional<Manifest>& earlier() const { return earlier_; }

    void add(const MemberLine& member);

    // Gives the name to a manifest that ends after its first line. While the output and its manifest get their names one
    // after the other, it says that the output is scanpage's and that its sum is not known.
    void announce();

    void finish(const ShardTotals& totals);

private:
    void append(const std::string& line);

    OutputPlace place_;
    Rules rules_;
    std::optional<Manifest> earlier_;
    std::string head_;
    UnnamedFile file_;
};
