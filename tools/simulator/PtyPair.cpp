#include "PtyPair.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <thread>

namespace orbline::sim {
namespace {

// A read time-out that no serial code sets: whoever opens the port for real sets its own
// line format, and with it a time-out of 0 or a proper one, which clears the mark.
constexpr cc_t kOpenMark = 7;

}  // namespace

PtyPair::PtyPair() {
    master_ = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (master_ < 0 || grantpt(master_) != 0 || unlockpt(master_) != 0) {
        const std::string reason = std::strerror(errno);
        if (master_ >= 0) close(master_);
        throw std::runtime_error("no pseudo-terminal: " + reason);
    }
    char name[128];
    if (ptsname_r(master_, name, sizeof name) != 0) {
        close(master_);
        throw std::runtime_error("no name for the pseudo-terminal");
    }
    slavePath_ = name;
    slaveKeeper_ = open(name, O_RDWR | O_NOCTTY | O_CLOEXEC);
    termios raw{};
    if (slaveKeeper_ < 0 || tcgetattr(slaveKeeper_, &raw) != 0) {
        if (slaveKeeper_ >= 0) close(slaveKeeper_);
        close(master_);
        throw std::runtime_error("cannot open " + slavePath_);
    }
    cfmakeraw(&raw);
    raw.c_cc[VTIME] = kOpenMark;
    tcsetattr(slaveKeeper_, TCSANOW, &raw);
}

PtyPair::~PtyPair() {
    close(slaveKeeper_);
    close(master_);
}

bool PtyPair::waitUntilTaken(std::chrono::milliseconds limit) const {
    using Clock = std::chrono::steady_clock;
    // Bytes pass a kernel buffer before the read queue counts them, so the queue must stay
    // empty for a while before everything counts as read.
    constexpr auto kQuiet = std::chrono::milliseconds(100);
    const auto deadline = Clock::now() + limit;
    auto emptySince = Clock::now();
    for (;;) {
        int unread = 0;
        if (ioctl(slaveKeeper_, FIONREAD, &unread) != 0) return false;
        const auto now = Clock::now();
        if (unread != 0) emptySince = now;
        if (now - emptySince >= kQuiet) return true;
        if (now >= deadline) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
}

bool PtyPair::takeOpenedMark() {
    termios settings{};
    if (tcgetattr(slaveKeeper_, &settings) != 0 || settings.c_cc[VTIME] == kOpenMark) return false;
    settings.c_cc[VTIME] = kOpenMark;
    tcsetattr(slaveKeeper_, TCSANOW, &settings);
    return true;
}

}  // namespace orbline::sim
