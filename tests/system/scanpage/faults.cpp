// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Preloaded into scanpage: makes system calls fail, raises signals, holds reads up, and records what reaches the disk.
//
// Only files below FOLDER are looked at. FAULT is "CALL N", "CALL N lasting" or "hold":
//
//     open, read, write, fsync, name, close, thread, memory   the Nth call of this kind fails, or all from it on
//     pread, pwrite                                           the same at a place of the file
//     short                                                   the Nth write writes a single byte
//     stop, kill                                              at the Nth call of any kind, SIGTERM comes, or comes twice
//     taken                                                   at the Nth call of any kind, another program takes the
//                                                             name THEIRS
//     unnameable                                              from the Nth open on, files need a name (no O_TMPFILE)
//     hold                                                    slow.jpg cannot be read before the file "go" is beside it
//
// "name" stands for linkat, renameat and renameat2; "memory" for blocks so large that they are mapped. The file "fired"
// in FOLDER says that the Nth call came. JOURNAL is the file for the record.
#undef _FORTIFY_SOURCE    // it makes read an inline function, which cannot be replaced
#include <dlfcn.h>
#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

extern "C" {
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* block, size_t size);
void* __libc_memalign(size_t alignment, size_t size);
}

namespace {

constexpr size_t kMapped = 65536;    // blocks from this size on

template <class Function>
Function* real(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

int realOpen(const char* path, int flags, mode_t mode = 0666) {
    return real<int(int, const char*, int, ...)>("openat")(AT_FDCWD, path, flags, mode);
}

ssize_t realWrite(int descriptor, const void* data, size_t size) {
    return real<ssize_t(int, const void*, size_t)>("write")(descriptor, data, size);
}

void realClose(int descriptor) { real<int(int)>("close")(descriptor); }

const char* variable(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

// ---- which files --------------------------------------------------------------------------------------------------

std::string nameOf(int descriptor) {
    char name[PATH_MAX];
    const ssize_t length = readlink(("/proc/self/fd/" + std::to_string(descriptor)).c_str(), name, sizeof(name));
    return std::string(name, static_cast<size_t>(length > 0 ? length : 0));
}

std::string pathOf(int folder, const char* name) {
    return name[0] == '/' || folder == AT_FDCWD ? name : nameOf(folder) + "/" + name;
}

bool isOurs(const std::string& path) {
    const std::string folder = variable("FOLDER");
    return !folder.empty() && path.compare(0, folder.size(), folder) == 0;
}

// ---- when to fail -------------------------------------------------------------------------------------------------

struct Fault {
    char call[16] = "";
    int number = 0;
    bool lasting = false;
};

Fault readFault() {
    Fault fault;
    char lasting[16] = "";
    const int fields = std::sscanf(variable("FAULT"), "%15s %d %15s", fault.call, &fault.number, lasting);
    fault.lasting = fields == 3;
    return fault;
}

const Fault& theFault() {
    static const Fault fault = readFault();
    return fault;
}

std::atomic<bool> started{false};    // scanpage has opened one of the files

void fire() {
    const int fired = realOpen((std::string(variable("FOLDER")) + "/fired").c_str(), O_CREAT | O_WRONLY);
    realClose(fired);
}

bool isTheTime(std::atomic<int>& count) {
    const int now = ++count;
    if (now == theFault().number) fire();
    return now == theFault().number || (theFault().lasting && now > theFault().number);
}

void putTheirs() {
    const int file = realOpen(variable("THEIRS"), O_CREAT | O_EXCL | O_WRONLY);
    realWrite(file, "theirs", 6);
    realClose(file);
}

// A call of this kind on one of the files. Must it fail?
bool fails(const char* call) {
    static std::atomic<int> steps{0};
    static std::atomic<int> calls{0};
    const std::string chosen = theFault().call;
    if (chosen == "stop" || chosen == "kill" || chosen == "taken") {
        if (!isTheTime(steps)) return false;
        if (chosen == "taken") {
            putTheirs();
            return false;
        }
        kill(getpid(), SIGTERM);
        if (chosen == "kill") {
            usleep(2000);    // two signals at once would be one
            kill(getpid(), SIGTERM);
        }
        return false;
    }
    return chosen == call && isTheTime(calls);
}

int failure(int error) {
    errno = error;
    return -1;
}

bool memoryFails(size_t size) { return size >= kMapped && started && fails("memory"); }

// ---- the record ---------------------------------------------------------------------------------------------------

void record(const std::string& head, const void* data = nullptr, size_t size = 0) {
    static const int journal = *variable("JOURNAL") ? realOpen(variable("JOURNAL"), O_CREAT | O_APPEND | O_WRONLY) : -1;
    if (journal < 0) return;
    const std::string line = head + " " + std::to_string(size) + "\n";
    const iovec parts[] = {{const_cast<char*>(line.data()), line.size()}, {const_cast<void*>(data), size}};
    if (writev(journal, parts, 2) < 0) std::_Exit(70);
}

std::string inodeOf(const char* path) {
    struct stat status {};
    stat(path, &status);
    return std::to_string(status.st_ino);
}

std::string inodeOf(int descriptor) {
    struct stat status {};
    fstat(descriptor, &status);
    return (S_ISDIR(status.st_mode) ? "folder " : "file ") + std::to_string(status.st_ino);
}

bool isHeld(const std::string& path) {
    const std::string ending = "/slow.jpg";
    if (path.size() < ending.size() || path.compare(path.size() - ending.size(), ending.size(), ending) != 0)
        return false;
    return access((path.substr(0, path.rfind('/')) + "/go").c_str(), F_OK) != 0;
}

int openAt(int folder, const char* name, int flags, mode_t mode) {
    const auto realOpenAt = real<int(int, const char*, int, ...)>("openat");
    if (!isOurs(pathOf(folder, name))) return realOpenAt(folder, name, flags, mode);
    started = true;
    const bool unnamed = (flags & O_TMPFILE) == O_TMPFILE;
    if (unnamed && fails("unnameable")) return failure(EOPNOTSUPP);
    if (fails("open")) return failure(EMFILE);
    const int descriptor = realOpenAt(folder, name, flags, mode);
    if (descriptor >= 0 && unnamed) record("create " + inodeOf(descriptor));
    if (descriptor >= 0 && (flags & O_CREAT) != 0) record("create " + inodeOf(descriptor) + " " + pathOf(folder, name));
    return descriptor;
}

}    // namespace

// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name): the system's names are reserved
extern "C" int openat(int folder, const char* name, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = va_arg(arguments, mode_t);
    va_end(arguments);
    return openAt(folder, name, flags, mode);
}

extern "C" int open(const char* name, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = va_arg(arguments, mode_t);
    va_end(arguments);
    return openAt(AT_FDCWD, name, flags, mode);
}

extern "C" ssize_t read(int descriptor, void* data, size_t size) {
    const std::string path = nameOf(descriptor);
    if (isOurs(path) && fails("read")) return failure(EIO);
    if (std::string(theFault().call) == "hold")
        while (isHeld(path)) usleep(10000);
    return real<ssize_t(int, void*, size_t)>("read")(descriptor, data, size);
}

extern "C" ssize_t write(int descriptor, const void* data, size_t size) {
    if (!isOurs(nameOf(descriptor))) return realWrite(descriptor, data, size);
    if (fails("write")) return failure(ENOSPC);
    if (size > 1 && fails("short")) size = 1;
    const ssize_t written = realWrite(descriptor, data, size);
    if (written > 0) record("write " + inodeOf(descriptor), data, static_cast<size_t>(written));
    return written;
}

extern "C" ssize_t pread(int descriptor, void* data, size_t size, off_t place) {
    if (isOurs(nameOf(descriptor)) && fails("pread")) return failure(EIO);
    return real<ssize_t(int, void*, size_t, off_t)>("pread")(descriptor, data, size, place);
}

extern "C" ssize_t pwrite(int descriptor, const void* data, size_t size, off_t place) {
    if (isOurs(nameOf(descriptor)) && fails("pwrite")) return failure(ENOSPC);
    return real<ssize_t(int, const void*, size_t, off_t)>("pwrite")(descriptor, data, size, place);
}

extern "C" int fsync(int descriptor) {
    if (isOurs(nameOf(descriptor))) {
        if (fails("fsync")) return failure(EIO);
        record("fsync " + inodeOf(descriptor));
    }
    return 0;    // the record says it; a disk would take its time
}

extern "C" int close(int descriptor) {
    const bool fail = isOurs(nameOf(descriptor)) && fails("close");
    const int status = real<int(int)>("close")(descriptor);
    return fail ? failure(EIO) : status;
}

extern "C" int linkat(int fromFolder, const char* from, int toFolder, const char* to, int flags) noexcept {
    if (fails("name")) return failure(EIO);
    const std::string inode = inodeOf(pathOf(fromFolder, from).c_str());
    const int status =
        real<int(int, const char*, int, const char*, int)>("linkat")(fromFolder, from, toFolder, to, flags);
    if (status == 0) record("link " + inode + " " + pathOf(toFolder, to));
    return status;
}

extern "C" int renameat2(int fromFolder, const char* from, int toFolder, const char* to, unsigned flags) noexcept {
    if (fails("name")) return failure(EIO);
    using Rename = int(int, const char*, int, const char*, unsigned);
    const int status = real<Rename>("renameat2")(fromFolder, from, toFolder, to, flags);
    if (status == 0) record("rename " + pathOf(fromFolder, from) + " " + pathOf(toFolder, to));
    return status;
}

extern "C" int renameat(int fromFolder, const char* from, int toFolder, const char* to) noexcept {
    return renameat2(fromFolder, from, toFolder, to, 0);
}

extern "C" int unlinkat(int folder, const char* name, int flags) noexcept {
    record("unlink " + pathOf(folder, name));
    return real<int(int, const char*, int)>("unlinkat")(folder, name, flags);
}

extern "C" int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*function)(void*),
                              void* argument) noexcept {
    if (started && fails("thread")) return EAGAIN;
    using Create = int(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);
    return real<Create>("pthread_create")(thread, attributes, function, argument);
}

extern "C" void* malloc(size_t size) {
    if (!memoryFails(size)) return __libc_malloc(size);
    errno = ENOMEM;
    return nullptr;
}

extern "C" void* calloc(size_t count, size_t size) {
    if (!memoryFails(count * size)) return __libc_calloc(count, size);
    errno = ENOMEM;
    return nullptr;
}

extern "C" void* realloc(void* block, size_t size) {
    if (!memoryFails(size)) return __libc_realloc(block, size);
    errno = ENOMEM;
    return nullptr;
}

extern "C" int posix_memalign(void** block, size_t alignment, size_t size) {
    if (memoryFails(size)) return ENOMEM;
    *block = __libc_memalign(alignment, size);
    return *block ? 0 : ENOMEM;
}
// NOLINTEND(readability-inconsistent-declaration-parameter-name)
