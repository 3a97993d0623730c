// Threads that work on one page each.
#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

// A job is handed over only to a thread that is free, so that nothing ever waits in a queue. Signals are left to the
// thread that makes the pool.
class ThreadPool {
public:
    explicit ThreadPool(int size);    // fewer, if the system gives no more threads
    ~ThreadPool();                    // finishes the jobs in hand
    ThreadPool(const ThreadPool&) = delete;
    ThreadPool& operator=(const ThreadPool&) = delete;

    void waitForFreeThread();

    // One thread at a time may give jobs, each after waitForFreeThread. A job must not throw.
    void start(std::function<void()> job);

private:
    void work();

    std::mutex mutex_;
    std::condition_variable threadFreed_, jobGiven_;
    std::function<void()> job_;
    int free_ = 0;
    bool closed_ = false;
    std::vector<std::thread> threads_;
};
