// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// A run of scanpage over one shard: a tar of pages in, a tar of results and a manifest out.
#pragma once

#include "command_line.h"
#include "manifest.h"

// What the first line of its manifest says.
ManifestHead headOf(const Settings& settings);

// Nothing is done if the manifest shows that all is done. Returns the exit status.
int runShard(const Settings& settings);
