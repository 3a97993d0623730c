#include "stop.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <initializer_list>

namespace {

std::atomic<bool> stop{false};
int emptyFile = -1;

// Standard input becomes an empty file, so that a list of pages that is being read ends here too, even if whoever
// writes it has fallen silent.
extern "C" void onStopSignal(int) {
    const int saved = errno;
    stop = true;
    dup2(emptyFile, STDIN_FILENO);
    errno = saved;
}

}    // namespace

void catchStopSignals() {
    emptyFile = open("/dev/null", O_RDONLY | O_CLOEXEC);
    for (const int number : {SIGTERM, SIGINT}) {
        struct sigaction action {};
        sigaction(number, nullptr, &action);
        if (action.sa_handler == SIG_IGN) continue;    // as a shell does for what it runs in the background
        action = {};
        action.sa_handler = onStopSignal;
        action.sa_flags = static_cast<int>(SA_RESETHAND);    // no SA_RESTART: a read that waits gives up
        sigaction(number, &action, nullptr);
    }
}

void requestStop() { stop = true; }

bool stopRequested() { return stop; }
