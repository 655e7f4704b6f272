#include "common/StandardError.h"

#include <pthread.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <ctime>

namespace orbline {

void WriteStandardError(const char* bytes, std::size_t size) {
    // SIGPIPE is blocked for the write and a SIGPIPE it raised is taken back, so that a reader
    // that has gone costs the line, not the process.
    sigset_t pipeSignal;
    sigemptyset(&pipeSignal);
    sigaddset(&pipeSignal, SIGPIPE);
    sigset_t before;
    if (pthread_sigmask(SIG_BLOCK, &pipeSignal, &before) != 0) return;
    sigset_t pending;
    const bool pendingBefore = sigpending(&pending) == 0 && sigismember(&pending, SIGPIPE) == 1;

    bool broken = false;
    while (size > 0) {
        const ssize_t wrote = ::write(STDERR_FILENO, bytes, size);
        if (wrote > 0) {
            bytes += wrote;
            size -= static_cast<std::size_t>(wrote);
            continue;
        }
        if (wrote < 0 && errno == EINTR) continue;
        broken = wrote < 0 && errno == EPIPE;
        break;
    }
    if (broken && !pendingBefore) {
        const timespec now{};
        while (sigtimedwait(&pipeSignal, nullptr, &now) < 0 && errno == EINTR) {
        }
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

}  // namespace orbline
