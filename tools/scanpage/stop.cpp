// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "stop.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <initializer_list>

namespace {

constexpr unsigned kSecondsToFinish = 10;

std::atomic<bool> stop{false};
std::atomic<int> stopSignal{0};    // the first that came
int emptyFile = -1;

// As the signal would have done without this program's handler.
void endBy(int number) {
    signal(number, SIG_DFL);
    raise(number);
}

// Replaces standard input by an empty file, so that a list that is being read from it ends, even if its writer is
// stalled.
extern "C" void onStopSignal(int number) {
    const int saved = errno;
    int none = 0;
    if (!stopSignal.compare_exchange_strong(none, number)) endBy(number);
    stop = true;
    alarm(kSecondsToFinish);
    dup2(emptyFile, STDIN_FILENO);
    errno = saved;
}

extern "C" void onAlarm(int) { endBy(stopSignal); }

// Without SA_RESTART, so that a read that waits gives up.
void handle(int number, void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    sigaction(number, &action, nullptr);
}

bool isIgnored(int number) {
    struct sigaction action {};
    sigaction(number, nullptr, &action);
    return action.sa_handler == SIG_IGN;    // as shells do for background jobs
}

}    // namespace

void catchStopSignals() {
    emptyFile = open("/dev/null", O_RDONLY | O_CLOEXEC);
    handle(SIGALRM, onAlarm);
    for (const int number : {SIGTERM, SIGINT})
        if (!isIgnored(number)) handle(number, onStopSignal);
}

void requestStop() { stop = true; }

bool stopRequested() { return stop; }
