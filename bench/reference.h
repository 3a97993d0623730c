// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// A loop of fixed work: vector and integer arithmetic on a block in the first-level cache. It takes longer while
// something else uses the core, for example another guest of the same host on its second hardware thread.
#pragma once

namespace bench {

// Seconds, about 30 millionths on a current core.
double referenceSeconds();

}    // namespace bench
