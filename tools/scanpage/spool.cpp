// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "spool.h"

#include <fcntl.h>
#include <stdlib.h>

#include <cerrno>
#include <cstring>

namespace {

[[noreturn]] void fail(const std::string& what) {
    throw std::runtime_error("the pages cannot be " + what + ": " + std::strerror(errno));
}

// Some file systems have no files without a name; there it loses its name at once.
Descriptor openUnnamed(const std::string& folder) {
    Descriptor descriptor(open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600));
    if (descriptor.isOpen()) return descriptor;
    std::string name = folder + "/.scanpage-XXXXXX";
    descriptor = Descriptor(mkostemp(name.data(), O_CLOEXEC));
    if (!descriptor.isOpen()) fail("collected in " + folder);
    unlink(name.c_str());
    return descriptor;
}

}    // namespace

Spool::Spool(const std::string& folder) : descriptor_(openUnnamed(folder)) {}

Spool::Place Spool::append(const std::vector<uint8_t>& bytes) {
    const Place place{size_, bytes.size()};
    for (size_t written = 0; written < bytes.size();) {
        const ssize_t count = pwrite(descriptor_.get(), bytes.data() + written, bytes.size() - written,
                                     static_cast<off_t>(place.start + written));
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) fail("collected");
        written += static_cast<size_t>(count);
    }
    size_ += bytes.size();
    return place;
}

std::vector<uint8_t> Spool::read(const Place& place) const {
    std::vector<uint8_t> bytes(place.size);
    for (size_t filled = 0; filled < bytes.size();) {
        const ssize_t count = pread(descriptor_.get(), bytes.data() + filled, bytes.size() - filled,
                                    static_cast<off_t>(place.start + filled));
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) fail("read again");
        filled += static_cast<size_t>(count);
    }
    return bytes;
}
