// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "thread_pool.h"

#include <signal.h>

#include <opencv2/core/utility.hpp>
#include <system_error>
#include <utility>

ThreadPool::ThreadPool(int size) {
    if (size > 1) cv::setNumThreads(1);    // parallel pages instead of parallel parts of one page
    sigset_t all, before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    try {
        threads_.reserve(static_cast<size_t>(size));
        for (int i = 0; i < size; ++i) threads_.emplace_back([this] { work(); });
    } catch (const std::exception&) {    // no thread or no memory for one: those that run are enough
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

ThreadPool::~ThreadPool() {
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        closed_ = true;
    }
    jobIsThere_.notify_all();
    for (std::thread& thread : threads_) thread.join();
}

void ThreadPool::waitForFreeThread() {
    if (threads_.empty()) return;
    std::unique_lock<std::mutex> lock(mutex_);
    threadIsFree_.wait(lock, [this] { return free_ > 0 && !job_; });
}

void ThreadPool::start(std::function<void()> job) {
    if (threads_.empty()) return job();
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        job_ = std::move(job);
    }
    jobIsThere_.notify_one();
}

void ThreadPool::work() {
    std::unique_lock<std::mutex> lock(mutex_);
    for (;;) {
        ++free_;
        threadIsFree_.notify_one();
        jobIsThere_.wait(lock, [this] { return job_ || closed_; });
        if (!job_) return;
        --free_;
        const std::function<void()> job = std::exchange(job_, nullptr);
        threadIsFree_.notify_one();    // waitForFreeThread also waits for the job to be taken
        lock.unlock();
        job();
        lock.lock();
    }
}
