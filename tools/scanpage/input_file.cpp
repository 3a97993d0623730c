// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "input_file.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>
#include <stdexcept>

#include "descriptor.h"

namespace {

constexpr size_t kPiece = 65536;
constexpr size_t kMostGarbage = 65536;    // bytes between segments that a decoder would skip

[[noreturn]] void failToRead() { throw std::runtime_error(std::string("cannot be read: ") + std::strerror(errno)); }

// Follows the segments of a JPEG header through bytes that arrive in pieces.
class JpegHeader {
public:
    // False if these bytes, the whole file so far, are not the beginning of a JPEG file.
    bool accept(const std::vector<uint8_t>& bytes) {
        if (!begins(bytes)) return false;
        while (!scanFound_ && next_ + 4 <= bytes.size())
            if (!step(bytes)) return false;
        return garbage_ <= kMostGarbage;
    }

    // The header is complete; everything from here on is pixels.
    bool scanFound() const { return scanFound_; }

private:
    static bool begins(const std::vector<uint8_t>& bytes) {
        return bytes.size() >= 3 && bytes[0] == 0xFF && bytes[1] == 0xD8 && bytes[2] == 0xFF;
    }

    bool step(const std::vector<uint8_t>& bytes) {
        const uint8_t marker = bytes[next_ + 1];
        const size_t length = static_cast<size_t>(bytes[next_ + 2]) << 8 | bytes[next_ + 3];
        if (bytes[next_] != 0xFF || marker == 0xFF || marker == 0) {
            ++next_;
            return ++garbage_ <= kMostGarbage;
        }
        const bool alone = (marker >= 0xD0 && marker <= 0xD7) || marker == 0x01;    // without a length
        const bool end = marker == 0xD8 || marker == 0xD9;
        scanFound_ = marker == 0xDA;
        next_ += alone ? 2 : 2 + length;
        return !end && (alone || length >= 2);
    }

    size_t next_ = 2;
    size_t garbage_ = 0;
    bool scanFound_ = false;
};

// Adds up to `size` bytes.
void append(std::vector<uint8_t>& bytes, int descriptor, size_t size) {
    const size_t start = bytes.size();
    bytes.resize(start + size);
    size_t filled = start;
    while (filled < bytes.size()) {
        const ssize_t got = read(descriptor, bytes.data() + filled, bytes.size() - filled);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) failToRead();
        if (got == 0) throw std::runtime_error("became shorter while it was read");
        filled += static_cast<size_t>(got);
    }
}

// Neither waits for the other end of a pipe nor makes a terminal its own.
Descriptor openInput(const std::string& file) {
    Descriptor descriptor(open(file.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!descriptor.isOpen()) throw std::runtime_error(std::string("cannot be opened: ") + std::strerror(errno));
    return descriptor;
}

size_t sizeOf(const Descriptor& descriptor) {
    struct stat status {};
    if (fstat(descriptor.get(), &status) != 0) failToRead();
    if (!S_ISREG(status.st_mode)) throw std::runtime_error("is not a regular file");
    if (status.st_size > std::numeric_limits<int>::max()) throw std::runtime_error("is too large to be a page");
    return static_cast<size_t>(status.st_size);
}

}    // namespace

void addInput(const std::string& file, InputIds& inputs) {
    struct stat status {};
    if (lstat(file.c_str(), &status) == 0) inputs.add(idOf(status));
    if (stat(file.c_str(), &status) == 0) inputs.add(idOf(status));
}

std::vector<uint8_t> readJpegFile(const std::string& file) {
    const Descriptor descriptor = openInput(file);
    const size_t size = sizeOf(descriptor);
    if (size == 0) throw std::runtime_error("is empty");
    std::vector<uint8_t> bytes;
    JpegHeader header;
    while (bytes.size() < size) {
        const size_t left = size - bytes.size();
        append(bytes, descriptor.get(), header.scanFound() ? left : std::min(kPiece, left));
        if (!header.accept(bytes)) throw std::runtime_error("is not a JPEG file");
    }
    return bytes;
}
