// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "sha256.h"

#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <vector>

std::string sha256OfFile(int descriptor) {
    Sha256 sum;
    std::vector<uint8_t> piece(1 << 20);
    off_t place = 0;
    for (;;) {
        const ssize_t count = pread(descriptor, piece.data(), piece.size(), place);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) throw std::system_error(errno, std::generic_category());
        if (count == 0) return sum.digits();
        sum.add(piece.data(), static_cast<size_t>(count));
        place += count;
    }
}
