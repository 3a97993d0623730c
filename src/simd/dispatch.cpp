// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Chooses the vector target when the library is loaded, so that no call writes to a global later.
#include <hwy/highway.h>

namespace {

__attribute__((constructor)) void chooseTarget() { hwy::GetChosenTarget().Update(hwy::SupportedTargets()); }

}    // namespace
