// Preloaded into scanpage, makes the system fail it, or another program come between. FAULT says how.
#undef _FORTIFY_SOURCE    // its read is inline, and could not be had here
#include <dlfcn.h>
#include <fcntl.h>
#include <pthread.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

template <class Function>
Function* real(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

bool chosen(const std::string& fault) {
    const char* given = std::getenv("FAULT");
    return given && given == fault;
}

int failure(int error) {
    errno = error;
    return -1;
}

std::string nameOf(int descriptor) {
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(descriptor), error).string();
}

bool endsWith(const std::string& text, const std::string& ending) {
    return text.size() >= ending.size() && text.compare(text.size() - ending.size(), ending.size(), ending) == 0;
}

bool isPart(const std::string& name) { return endsWith(name, ".part"); }

bool isResult(const std::string& name) { return name.find("/out/") != std::string::npos; }

}    // namespace

// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name): the system's names are reserved
// "short writes": a few bytes at a time. "write N": the disk is full at the Nth write, and only there. What has its
// name already is complete.
extern "C" ssize_t write(int descriptor, const void* data, size_t size) {
    static int writes = 0;
    const std::string name = nameOf(descriptor);
    if (isResult(name)) {
        if (!isPart(name)) std::_Exit(70);
        if (chosen("short writes")) size = std::min<size_t>(size, 1000);
        if (chosen("write " + std::to_string(++writes))) return failure(ENOSPC);
    }
    return real<ssize_t(int, const void*, size_t)>("write")(descriptor, data, size);
}

// "read": a bad sector in a page.
extern "C" ssize_t read(int descriptor, void* data, size_t size) {
    if (chosen("read") && endsWith(nameOf(descriptor), ".jpg")) return failure(EIO);
    return real<ssize_t(int, void*, size_t)>("read")(descriptor, data, size);
}

// "close": the server finds that there is no room when the result has its name already. It says so once.
extern "C" int close(int descriptor) {
    static bool said = false;
    const bool fails = !said && chosen("close") && isResult(nameOf(descriptor));
    said = said || fails;
    const int status = real<int(int)>("close")(descriptor);
    return fails ? failure(EDQUOT) : status;
}

// "few threads": two, and no more.
extern "C" int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*function)(void*),
                              void* argument) noexcept {
    static int threads = 0;
    if (chosen("few threads") && ++threads > 2) return EAGAIN;
    using Create = int(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);
    return real<Create>("pthread_create")(thread, attributes, function, argument);
}

// "no locks": a file system without them. "renamed before the lock": another program ends its page just then.
extern "C" int flock(int descriptor, int operation) noexcept {
    if (chosen("no locks")) return failure(ENOLCK);
    if (chosen("renamed before the lock")) {
        const std::string part = nameOf(descriptor);
        std::ofstream(part) << "theirs";
        const std::string name = part.substr(0, part.rfind('.'));
        real<int(const char*, const char*)>("rename")(part.c_str(), name.c_str());
        std::ofstream(part) << "the next";
    }
    return real<int(int, int)>("flock")(descriptor, operation);
}

// The lock must be there until the result has its name. "begun after the name": another program begins the page anew.
extern "C" int rename(const char* from, const char* to) noexcept {
    if (isPart(from) && !chosen("no locks")) {
        const int descriptor = open(from, O_RDONLY | O_CLOEXEC);
        if (real<int(int, int)>("flock")(descriptor, LOCK_SH | LOCK_NB) == 0) std::_Exit(70);
        real<int(int)>("close")(descriptor);
    }
    const int status = real<int(const char*, const char*)>("rename")(from, to);
    if (chosen("begun after the name")) std::ofstream(from) << "theirs";
    return status;
}
// NOLINTEND(readability-inconsistent-declaration-parameter-name)
