// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "input_file.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>
#include <stdexcept>

namespace {

[[noreturn]] void failToRead() { throw std::runtime_error(std::string("cannot be read: ") + std::strerror(errno)); }

// Neither waits for the other end of a pipe nor makes a terminal its own.
Descriptor openInput(const std::string& file) {
    Descriptor descriptor(open(file.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!descriptor.isOpen()) throw std::runtime_error(std::string("cannot be opened: ") + std::strerror(errno));
    return descriptor;
}

void requireSize(uintmax_t size) {
    if (size > std::numeric_limits<int>::max()) throw std::runtime_error("is too large to be a page");
    if (size == 0) throw std::runtime_error("is empty");
}

size_t sizeOf(const Descriptor& descriptor) {
    struct stat status {};
    if (fstat(descriptor.get(), &status) != 0) failToRead();
    if (S_ISDIR(status.st_mode)) throw std::runtime_error("is a folder; name it on the command line to read its pages");
    if (!S_ISREG(status.st_mode)) throw std::runtime_error("is not a regular file");
    requireSize(static_cast<uintmax_t>(status.st_size));
    return static_cast<size_t>(status.st_size);
}

}    // namespace

void addInput(const std::string& file, InputIds& inputs) {
    struct stat status {};
    if (lstat(file.c_str(), &status) == 0) inputs.add(idOf(status));
    if (stat(file.c_str(), &status) == 0) inputs.add(idOf(status));
}

InputFile::InputFile(const std::string& file) : descriptor_(openInput(file)), size_(sizeOf(descriptor_)) {}

InputFile::InputFile(std::vector<uint8_t> bytes) : memory_(std::move(bytes)), size_(memory_.size()) {
    requireSize(size_);
}

void InputFile::append(std::vector<uint8_t>& bytes, size_t size) {
    const size_t start = bytes.size();
    const size_t wanted = std::min(size, size_ - std::min(place_, size_));
    bytes.resize(start + wanted);
    if (readAt(place_, bytes.data() + start, wanted) < wanted)
        throw std::runtime_error("became shorter while it was read");
}

size_t InputFile::readAt(size_t place, void* bytes, size_t size) {
    const size_t filled = descriptor_.isOpen() ? readDisk(place, bytes, size) : readMemory(place, bytes, size);
    place_ = place + filled;
    return filled;
}

size_t InputFile::readMemory(size_t place, void* bytes, size_t size) const {
    const size_t count = std::min(size, size_ - std::min(place, size_));
    std::copy_n(memory_.data() + std::min(place, size_), count, static_cast<uint8_t*>(bytes));
    return count;
}

size_t InputFile::readDisk(size_t place, void* bytes, size_t size) {
    if (place != place_ && lseek(descriptor_.get(), static_cast<off_t>(place), SEEK_SET) < 0) failToRead();
    size_t filled = 0;
    while (filled < size) {
        const ssize_t got = read(descriptor_.get(), static_cast<uint8_t*>(bytes) + filled, size - filled);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) failToRead();
        if (got == 0) break;
        filled += static_cast<size_t>(got);
    }
    return filled;
}
