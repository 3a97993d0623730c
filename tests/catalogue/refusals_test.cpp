// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Calls every function with each invalid argument: it must return the documented status, throw nothing and write
// nothing.
#include <gtest/gtest.h>

#include <algorithm>

#include "catalogue/catalogue.h"

namespace {

void expectRefused(const Entry& entry, int variant) {
    Heap heap;
    Case::Setting setting;
    setting.seed = 700 + static_cast<unsigned>(variant);
    setting.variant = variant;
    setting.size = {41, 7};
    Case c(setting, heap);
    entry.prepare(c);
    for (const Refusal& refusal : c.refusals) {
        SCOPED_TRACE(entry.name + ", variant " + std::to_string(variant) + ": " + refusal.what);
        c.restore();
        EXPECT_EQ(refusal.call(), refusal.status);
        EXPECT_EQ(c.tracesOfFailure(), "");
    }
}

TEST(Refusals, ReturnTheirStatusAndWriteNothing) {
    constexpr int kTried = 12;
    for (const Entry& entry : catalogue())
        for (int variant = 0; variant < entry.variants; variant += std::max(1, entry.variants / kTried))
            expectRefused(entry, variant);
}

}    // namespace
