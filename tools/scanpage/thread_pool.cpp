#include "thread_pool.h"

#include <signal.h>

#include <opencv2/core/utility.hpp>
#include <system_error>
#include <utility>

ThreadPool::ThreadPool(int size) {
    if (size > 1) cv::setNumThreads(1);    // pages at once instead of parts of one page at once
    sigset_t all, before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    try {
        for (int i = 0; i < size; ++i) threads_.emplace_back([this] { work(); });
    } catch (const std::system_error&) {
        if (threads_.empty()) throw;
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

ThreadPool::~ThreadPool() {
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        closed_ = true;
    }
    jobGiven_.notify_all();
    for (std::thread& thread : threads_) thread.join();
}

void ThreadPool::waitForFreeThread() {
    std::unique_lock<std::mutex> lock(mutex_);
    threadFreed_.wait(lock, [this] { return free_ > 0 && !job_; });
}

void ThreadPool::start(std::function<void()> job) {
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        job_ = std::move(job);
    }
    jobGiven_.notify_one();
}

void ThreadPool::work() {
    std::unique_lock<std::mutex> lock(mutex_);
    for (;;) {
        ++free_;
        threadFreed_.notify_one();
        jobGiven_.wait(lock, [this] { return job_ || closed_; });
        if (!job_) return;
        --free_;
        const std::function<void()> job = std::exchange(job_, nullptr);
        threadFreed_.notify_one();    // who waits for the job to be taken; another thread may be free
        lock.unlock();
        job();
        lock.lock();
    }
}
