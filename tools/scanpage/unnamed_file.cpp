// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "unnamed_file.h"

#include <fcntl.h>
#include <sys/random.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <system_error>

namespace {

[[noreturn]] void fail() { throw std::system_error(errno, std::generic_category()); }

std::string randomName() {
    std::array<uint8_t, 16> bytes{};
    if (getrandom(bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size())) fail();
    std::string name = ".scanpage-";
    for (const uint8_t byte : bytes)
        for (const int digit : {byte >> 4, byte & 15}) name += "0123456789abcdef"[digit];
    return name;
}

std::string linkTo(const Descriptor& descriptor) { return "/proc/self/fd/" + std::to_string(descriptor.get()); }

}    // namespace

UnnamedFile::UnnamedFile(int folder)
    : folder_(folder), descriptor_(openat(folder, ".", O_TMPFILE | O_RDWR | O_CLOEXEC, 0666)) {
    // A file without a name gets one through /proc only.
    const bool nameable = descriptor_.isOpen() && access(linkTo(descriptor_).c_str(), F_OK) == 0;
    if (nameable) return;
    if (!descriptor_.isOpen() && errno != EOPNOTSUPP && errno != EISDIR && errno != EINVAL && errno != ENOENT) fail();
    openUnderRandomName();
}

void UnnamedFile::openUnderRandomName() {
    const std::string name = randomName();
    descriptor_ = Descriptor(openat(folder_, name.c_str(), O_CREAT | O_EXCL | O_NOFOLLOW | O_RDWR | O_CLOEXEC, 0666));
    if (!descriptor_.isOpen()) fail();
    temporary_ = name;
}

UnnamedFile::~UnnamedFile() {
    if (!temporary_.empty()) unlinkat(folder_, temporary_.c_str(), 0);
}

void UnnamedFile::write(const std::vector<uint8_t>& bytes) {
    for (size_t written = 0; written < bytes.size();) {
        const ssize_t count = ::write(descriptor_.get(), bytes.data() + written, bytes.size() - written);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) fail();
        written += static_cast<size_t>(count);
    }
}

void UnnamedFile::write(const std::string& text) { write(std::vector<uint8_t>(text.begin(), text.end())); }

void UnnamedFile::sync() {
    if (fsync(descriptor_.get()) != 0) fail();
}

bool UnnamedFile::link(const std::string& name) const {
    if (temporary_.empty())
        return linkat(AT_FDCWD, linkTo(descriptor_).c_str(), folder_, name.c_str(), AT_SYMLINK_FOLLOW) == 0;
    return linkat(folder_, temporary_.c_str(), folder_, name.c_str(), 0) == 0;
}

void UnnamedFile::giveName(const std::string& name) {
    if (temporary_.empty()) {
        if (!link(name)) fail();
        return;
    }
    if (renameat2(folder_, temporary_.c_str(), folder_, name.c_str(), RENAME_NOREPLACE) == 0)
        temporary_.clear();
    else if ((errno != EINVAL && errno != ENOSYS) || !link(name))    // network file systems know no such renaming
        fail();
}

// A link cannot replace a file, a renaming can.
void UnnamedFile::replace(const std::string& name) {
    if (temporary_.empty()) {
        const std::string temporary = randomName();
        if (!link(temporary)) fail();
        temporary_ = temporary;
    }
    if (renameat(folder_, temporary_.c_str(), folder_, name.c_str()) != 0) fail();
    temporary_.clear();
}
