// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Threads that work on one page each.
#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

// A job is handed only to a free thread, so nothing ever waits in a queue. Signals are left to the thread that creates
// the pool.
class ThreadPool {
public:
    explicit ThreadPool(int size);    // fewer if the system refuses threads; none: jobs run in the caller's thread
    ~ThreadPool();                    // completes the jobs in progress
    ThreadPool(const ThreadPool&) = delete;
    ThreadPool& operator=(const ThreadPool&) = delete;

    void waitForFreeThread();

    // Only one thread may call this, each time after waitForFreeThread. A job must not throw.
    void start(std::function<void()> job);

private:
    void work();

    std::mutex mutex_;
    std::condition_variable threadIsFree_, jobIsThere_;
    std::function<void()> job_;
    int free_ = 0;
    bool closed_ = false;
    std::vector<std::thread> threads_;
};
