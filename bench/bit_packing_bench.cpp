// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "OPCV_dlib.h"
#include "oracle/bit_packing.h"
#include "support.h"

namespace {

// Bytes of the 1-bit image: one bit per pixel, and one more byte per row if rows do not begin at the first bit of a
// byte.
size_t bitBytes(IppiSize size) { return bench::bytesOf(size, 1) / 8; }
IppiSize bitRows(IppiSize size) { return {size.width / 8 + 1, size.height}; }

void comparePacking(IppiSize size, int offset) {
    const bench::Page& grey = bench::source(size, 1);
    bench::Page& bits = bench::target(bitRows(size), 1);
    bench::Page& expected = bench::otherTarget(bitRows(size), 1);
    bench::compare(
        {"IPPShare_ippiReduceBits_8u1u_C1R", "offset " + std::to_string(offset), size, bench::bytesOf(size, 1),
         bitBytes(size)},
        [&grey, &bits, size, offset] {
            IPPShare_ippiReduceBits_8u1u_C1R(grey.data(), grey.step(), bits.data(), bits.step(), offset, size, 0, 0, 0,
                                             128);
        },
        bench::memcpyOnly(),
        [&grey, &bits, &expected, size, offset] {
            for (int y = 0; y < size.height; ++y)
                oracle::packRow(grey.data() + ptrdiff_t{y} * grey.step(),
                                expected.data() + ptrdiff_t{y} * expected.step(), offset, size.width, 128);
            return bits.sameRegion(expected);
        });
}

void compareExpanding(IppiSize size, int offset) {
    const bench::Page& bits = bench::source(bitRows(size), 1);
    bench::Page& grey = bench::target(size, 1);
    bench::Page& expected = bench::otherTarget(size, 1);
    bench::compare(
        {"IPPShare_ippiConvert_1u8u_C1R", "offset " + std::to_string(offset), size, bitBytes(size),
         bench::bytesOf(size, 1)},
        [&bits, &grey, size, offset] {
            IPPShare_ippiConvert_1u8u_C1R(bits.data(), bits.step(), offset, grey.data(), grey.step(), size);
        },
        bench::memcpyOnly(),
        [&bits, &grey, &expected, size, offset] {
            for (int y = 0; y < size.height; ++y)
                oracle::expandRow(bits.data() + ptrdiff_t{y} * bits.step(), offset,
                                  expected.data() + ptrdiff_t{y} * expected.step(), size.width);
            return grey.sameRegion(expected);
        });
}

void compareBitPacking() {
    for (const IppiSize size : bench::sizes())
        for (const int offset : {0, 3}) {
            comparePacking(size, offset);
            compareExpanding(size, offset);
        }
}

const bench::Goals goals({
    {"IPPShare_ippiReduceBits_8u1u_C1R", "offset 0", 1.5, bench::Goal::kMemcpy},
    {"IPPShare_ippiReduceBits_8u1u_C1R", "offset 3", 1.5, bench::Goal::kMemcpy},
    {"IPPShare_ippiConvert_1u8u_C1R", "offset 0", 1.5, bench::Goal::kMemcpy},
    {"IPPShare_ippiConvert_1u8u_C1R", "offset 3", 1.5, bench::Goal::kMemcpy},
});

const bench::Registration registration("Bit packing", compareBitPacking);

}    // namespace
