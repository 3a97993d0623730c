#include "result_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <stdexcept>

ResultFile::ResultFile(std::string name) : name_(std::move(name)), part_(name_ + ".part") {
    const int descriptor = open(part_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    if (descriptor < 0) fail();
    if (!lock(descriptor) || ftruncate(descriptor, 0) != 0) {
        close(descriptor);
        throw std::runtime_error(part_ + " is being written by another program");
    }
    descriptor_ = descriptor;
}

// Whoever had the lock may have renamed the file since it was opened here: then it is their result. File systems
// without locks are taken as they are.
bool ResultFile::lock(int descriptor) const {
    if (flock(descriptor, LOCK_EX | LOCK_NB) != 0) return errno != EWOULDBLOCK;
    struct stat opened {};
    struct stat named {};
    return fstat(descriptor, &opened) == 0 && stat(part_.c_str(), &named) == 0 && opened.st_ino == named.st_ino;
}

ResultFile::~ResultFile() {
    if (descriptor_ < 0) return;
    unlink(part_.c_str());
    close(descriptor_);
}

void ResultFile::write(const void* data, size_t size) {
    const char* from = static_cast<const char*>(data);
    while (size > 0) {
        const ssize_t written = ::write(descriptor_, from, size);
        if (written < 0) fail();
        from += written;
        size -= static_cast<size_t>(written);
    }
}

// The lock lasts until the file has its name.
size_t ResultFile::commit() {
    struct stat status {};
    if (fstat(descriptor_, &status) != 0 || std::rename(part_.c_str(), name_.c_str()) != 0) fail();
    const int descriptor = descriptor_;
    descriptor_ = -1;
    if (close(descriptor) != 0) {    // network file systems may find only now that there is no room
        const int error = errno;
        unlink(name_.c_str());
        errno = error;
        fail();
    }
    return static_cast<size_t>(status.st_size);
}

void ResultFile::fail() const { throw std::runtime_error(name_ + " cannot be written: " + std::strerror(errno)); }
