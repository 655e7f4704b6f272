#include "app/CloseRequest.h"

#include <QSocketNotifier>

#include <fcntl.h>
#include <unistd.h>
#include <cerrno>
#include <csignal>

namespace orbline {

namespace {

// The self-pipe: the signal handler only writes one byte; the notifier reads it in a yield.
int pipeRead = -1;
int pipeWrite = -1;
CloseHandler closeHandler = nullptr;

extern "C" void OnCloseSignal(int /*signal*/) {
    const int saved = errno;
    const char byte = 1;
    // A full pipe already holds a request; nothing is lost by dropping this byte.
    [[maybe_unused]] const ssize_t written = ::write(pipeWrite, &byte, 1);
    errno = saved;
}

void OnPipeReadable() {
    char bytes[64];
    while (::read(pipeRead, bytes, sizeof bytes) > 0) {
    }
    if (closeHandler != nullptr) closeHandler();
}

}  // namespace

bool InstallCloseRequest(CloseHandler handler) {
    int fds[2];
    if (::pipe2(fds, O_CLOEXEC | O_NONBLOCK) != 0) return false;
    pipeRead = fds[0];
    pipeWrite = fds[1];
    closeHandler = handler;
    // Lives as long as the process: the close request may come at any yield until the end.
    auto* notifier = new QSocketNotifier(static_cast<qintptr>(pipeRead), QSocketNotifier::Read);
    QObject::connect(notifier, &QSocketNotifier::activated, notifier, [] { OnPipeReadable(); });

    struct sigaction action = {};
    action.sa_handler = OnCloseSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    bool installed = true;
    sigset_t closeSignals;
    sigemptyset(&closeSignals);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        installed = ::sigaction(signal, &action, nullptr) == 0 && installed;
        sigaddset(&closeSignals, signal);
    }
    // A parent may have started the process with these blocked; its close request must arrive.
    return ::pthread_sigmask(SIG_UNBLOCK, &closeSignals, nullptr) == 0 && installed;
}

void SetCloseRequestCaption(const std::u16string& /*caption*/) {
    // A POSIX parent ends the process by its id; there is no window to find.
}

}  // namespace orbline
