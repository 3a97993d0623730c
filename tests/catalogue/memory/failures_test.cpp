// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The whole catalogue on a heap that fails, and on a heap whose blocks come with other bytes in them.
#include <gtest/gtest.h>

#include <array>
#include <fstream>
#include <sstream>

#include "catalogue/catalogue.h"
#include "failing_heap.h"
#include "observation.h"

namespace {

TEST(OutOfMemory, EveryFunctionReportsItAndKeepsNothing) {
    for (size_t i = 0; i < catalogue().size(); ++i) EXPECT_EQ(observations()[i].fault, "") << catalogue()[i].name;
}

// The counts are those of Debian's OpenCV and libjpeg on x86-64.
#if defined(__x86_64__)
TEST(OutOfMemory, TheDocumentHasTheTable) {
    std::ifstream file(RELIABILITY_DOCUMENT);
    std::stringstream document;
    document << file.rdbuf();
    EXPECT_NE(document.str().find(failureTable()), std::string::npos)
        << "docs/reliability.md needs what \"catalogue_memory_tests --table\" prints";
}
#endif

// Deep enough for the frames of any call.
[[gnu::noinline]] void fillStack(int byte) {
    std::array<volatile uint8_t, size_t{96} * 1024> bytes;
    for (volatile uint8_t& b : bytes) b = static_cast<uint8_t>(byte);
}

Bytes outputAfterFilling(Case& c, int byte) {
    c.restore();
    FailingHeap::fillWith(byte);
    fillStack(byte);
    const int status = c.run();
    FailingHeap::fillWith(-1);
    EXPECT_EQ(status, 0);
    return c.takeOutput();
}

void expectNothingOfTheFill(const Entry& entry, int variant, IppiSize size) {
    SCOPED_TRACE(entry.name + ", variant " + std::to_string(variant) + ", width " + std::to_string(size.width));
    Heap heap;
    Case::Setting setting;
    setting.seed = 900 + static_cast<unsigned>(variant);
    setting.variant = variant;
    setting.size = size;
    Case c(setting, heap);
    entry.prepare(c);
    const Bytes one = outputAfterFilling(c, 0xA5);
    ASSERT_EQ(outputAfterFilling(c, 0x5A), one);
}

TEST(Uninitialised, NoByteReachesTheCaller) {
    for (const Entry& entry : catalogue())
        for (int variant = 0; variant < entry.variants; variant += strideOf(entry))
            for (const IppiSize size : {IppiSize{52, 40}, IppiSize{37, 11}, IppiSize{3, 2}})
                expectNothingOfTheFill(entry, variant, size);
}

// libjpeg's vectors run past a row's last column. Valgrind, which knows the sums of pairs of products in them for 64
// bits at a time only, takes a byte of the last column for indeterminate where the columns are 14 more than a multiple
// of 16.
TEST(Uninitialised, NoByteReachesAPageOfAnyWidth) {
    for (const Entry& entry : catalogue())
        for (int variant = 0; entry.name.rfind("Read", 0) == 0 && variant < entry.variants; ++variant)
            for (int width = 1; width <= 64; ++width) expectNothingOfTheFill(entry, variant, {width, 19});
}

}    // namespace
