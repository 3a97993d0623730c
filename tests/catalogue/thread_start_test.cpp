// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Calls every function while no thread can be started, on large images, for which OpenCV would distribute the call.
// Each must return the same bytes as on one thread and throw nothing. Each call runs in a separate process, because
// OpenCV's pool no longer uses a thread that has failed to start.
#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <exception>
#include <iostream>
#include <new>
#include <opencv2/core.hpp>
#include <thread>

#include <dlfcn.h>
#include <pthread.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include "catalogue/catalogue.h"

namespace {

bool threadsFail = false;

// Number of threads that could not be started, over all processes.
std::atomic<int>& failures() {
    static auto* const counter =
        new (mmap(nullptr, sizeof(std::atomic<int>), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0))
            std::atomic<int>(0);
    return *counter;
}

}    // namespace

extern "C" int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*function)(void*),
                              void* argument) {
    if (threadsFail) {
        ++failures();
        return EAGAIN;
    }
    using Create = int(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);
    static auto* const create = reinterpret_cast<Create*>(dlsym(RTLD_NEXT, "pthread_create"));
    return create(thread, attributes, function, argument);
}

namespace {

constexpr int kThreads = 4;
constexpr int kVariantsOfEach = 8;

Bytes outputOf(Case& c) {
    c.restore();
    const int status = c.run();
    Bytes output = c.takeOutput();
    output.push_back(status == 0 && c.strayWrites().empty() ? 1 : 0);
    return output;
}

enum Ending { kSame, kDifferent, kThrew, kOtherwise };

// Calls twice without threads, then with them. Runs in a separate process.
[[noreturn]] void callWithoutThreads(Case& c, const Bytes& expected) {
    try {
        cv::setNumThreads(kThreads);
        for (const bool fail : {true, true, false}) {
            threadsFail = fail;
            if (outputOf(c) != expected) _exit(kDifferent);
        }
    } catch (const std::exception& e) {
        std::cerr << e.what() << '\n';
        _exit(kThrew);
    }
    _exit(kSame);
}

int endingWithoutThreads(const Entry& entry, int variant) {
    Heap heap;
    Case::Setting setting;
    setting.variant = variant;
    setting.size = {701, 311};    // enough for three bands of rows
    Case c(setting, heap);
    entry.prepare(c);
    const Bytes expected = outputOf(c);
    EXPECT_EQ(expected.back(), 1) << entry.name;
    const pid_t child = fork();
    if (child == 0) callWithoutThreads(c, expected);
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : kOtherwise;
}

TEST(ThreadStart, MayFailInEveryFunction) {
    cv::setNumThreads(1);    // this process starts no thread, so that it can fork
    failures() = 0;
    for (const Entry& entry : catalogue())
        for (int i = 0; i < std::min(entry.variants, kVariantsOfEach); ++i) {
            const int variant = i * entry.variants / std::min(entry.variants, kVariantsOfEach);
            EXPECT_EQ(endingWithoutThreads(entry, variant), kSame) << entry.name << " variant " << variant;
        }
    // On one processor OpenCV starts no threads.
    const int fewest = std::thread::hardware_concurrency() > 1 ? 1 : 0;
    EXPECT_GE(failures(), fewest);
}

}    // namespace
