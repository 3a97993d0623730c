// Threads that work on one page each.
#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

// A job is handed over only to a thread that is free, so that nothing ever waits in a queue. Signals are left to the
// thread that makes the crew.
class Crew {
public:
    explicit Crew(int size);    // fewer, if the system gives no more threads
    ~Crew();                    // finishes the jobs in hand
    Crew(const Crew&) = delete;
    Crew& operator=(const Crew&) = delete;

    void waitForOne();

    // One thread at a time may give jobs, each after waitForOne. A job must not throw.
    void give(std::function<void()> job);

private:
    void work();

    std::mutex mutex_;
    std::condition_variable forGiver_, forThreads_;
    std::function<void()> job_;
    int free_ = 0;
    bool closed_ = false;
    std::vector<std::thread> threads_;
};
