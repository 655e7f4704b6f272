// The port on POSIX: a tty opened raw and exclusive, with a reader thread that keeps the
// port's own input queue, as the Windows driver keeps its queue.

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <string>
#include <thread>
#include <utility>

#include "serial/AwComm.h"
#include "serial/LineSettings_posix.h"
#include "serial/ReceiveQueue.h"

namespace orbline {

// The reader's record while the port still receives.
constexpr int kReceiving = -1;

struct AwComm::Port {
    explicit Port(std::size_t queueSize) : queue(queueSize) {}

    int fd = -1;
    int wakeRead = -1;
    int wakeWrite = -1;
    ReceiveQueue queue;
    std::thread reader;
    std::chrono::milliseconds timeOut{1000};
    // Set once by the reader when it stops for good without being asked to: the errno that
    // stopped it, or 0 for a hang-up the system gave no error for.
    std::atomic<int> gone{kReceiving};

    // Runs on the reader thread and touches nothing but the descriptor, the queue and `gone`.
    void ReadLoop() {
        std::uint8_t chunk[4096];
        for (;;) {
            pollfd watched[2] = {{fd, POLLIN, 0}, {wakeRead, POLLIN, 0}};
            if (poll(watched, 2, -1) < 0) {
                if (errno == EINTR) continue;
                gone = errno;
                return;
            }
            if (watched[1].revents != 0) return;
            // Bytes that came before a hang-up are still read: the hang-up shows once they are
            // taken.
            const ssize_t got = read(fd, chunk, sizeof chunk);
            if (got > 0) {
                queue.Push(chunk, static_cast<std::size_t>(got));
                continue;
            }
            if (got < 0) {
                if (errno == EINTR || errno == EAGAIN) continue;
                gone = errno;
                return;
            }
            // A raw tty also reads nothing when a purge took the bytes that woke the poll; a
            // hung-up one says so in the poll or refuses its settings.
            termios settings{};
            const bool hungUp = (watched[0].revents & (POLLHUP | POLLERR)) != 0;
            if (tcgetattr(fd, &settings) != 0) {
                gone = errno;
                return;
            }
            if (hungUp) {
                gone = 0;
                return;
            }
        }
    }

    void Stop() {
        if (reader.joinable()) {
            const char stop = 1;
            (void)!write(wakeWrite, &stop, 1);
            reader.join();
        }
        if (wakeRead >= 0) close(wakeRead);
        if (wakeWrite >= 0) close(wakeWrite);
        wakeRead = wakeWrite = -1;
    }
};

AwComm::AwComm() = default;

AwComm::~AwComm() {
    if (port_) PlatformClose();
}

std::string AwComm::DeviceName() const {
    if (!devicePath_.empty()) return devicePath_;
    return "/dev/ttyS" + std::to_string(static_cast<int>(portNumber_) - 1);
}

bool AwComm::PlatformOpen() {
    // An open port is not opened twice by one object; Windows refuses the second handle too.
    if (port_) {
        NoteFailure({PortError::Busy, PortStep::Open, 0, {}, "already open by this port object"});
        return false;
    }
    const std::string device = DeviceName();
    const int fd = open(device.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) {
        NoteFailure(FailureOfErrno(PortStep::Open, errno));
        return false;
    }
    // No sharing: a second process (or a second open here) is refused. TIOCEXCL alone does
    // not stop root, the lock does.
    if (flock(fd, LOCK_EX | LOCK_NB) != 0) {
        NoteFailure(FailureOfErrno(PortStep::Lock, errno));
        close(fd);
        return false;
    }
    (void)ioctl(fd, TIOCEXCL);

    // The five steps of the open, all made even when an early one fails.
    PortFailure refused;
    bool ok = ApplyLineFormat(fd, format_, &refused);
    if (!ok) NoteFailure(std::move(refused));
    if (readBufferSize_ <= 0 || writeBufferSize_ <= 0) {
        ok = false;
        NoteFailure({PortError::Other,
                     PortStep::Buffers,
                     0,
                     {},
                     "buffer sizes " + std::to_string(readBufferSize_) + " and " +
                         std::to_string(writeBufferSize_)});
    }
    for (const int queue : {TCOFLUSH, TCIFLUSH}) {
        if (tcflush(fd, queue) != 0) {
            ok = false;
            NoteFailure(FailureOfErrno(PortStep::Purge, errno));
        }
    }
    if (timeOutMs_ < 0) {
        ok = false;
        NoteFailure({PortError::Other,
                     PortStep::TimeOuts,
                     0,
                     {},
                     "time-out " + std::to_string(timeOutMs_) + " ms"});
    }
    if (!ok) {
        close(fd);
        return false;
    }

    auto port = std::make_unique<Port>(static_cast<std::size_t>(readBufferSize_));
    port->fd = fd;
    port->timeOut = std::chrono::milliseconds(timeOutMs_);
    int wake[2];
    if (pipe2(wake, O_CLOEXEC) != 0) {
        NoteFailure(FailureOfErrno(PortStep::Reader, errno));
        close(fd);
        return false;
    }
    port->wakeRead = wake[0];
    port->wakeWrite = wake[1];
    Port* raw = port.get();
    port->reader = std::thread([raw] { raw->ReadLoop(); });
    port_ = std::move(port);
    return true;
}

bool AwComm::PlatformClose() {
    // The handle is forgotten after the close: a descriptor number may be reused at once.
    if (!port_) return false;
    port_->Stop();
    // The exclusive mark outlives the descriptor where the terminal stays open at its other
    // end (a pseudo-terminal): a restarted process that may not override it could not open
    // the port again.
    (void)ioctl(port_->fd, TIOCNXCL);
    const bool closed = close(port_->fd) == 0;
    port_.reset();
    return closed;
}

PortFailure AwComm::Gone() const {
    const int code = port_ ? port_->gone.load() : kReceiving;
    if (code == kReceiving) return {};
    if (code == 0) return {PortError::DeviceGone, PortStep::Receive, 0, {}, {}};
    PortFailure failure = FailureOfErrno(PortStep::Receive, code);
    // ENXIO and ENODEV name a device that is no longer there once it was open.
    if (failure.kind == PortError::NoSuchDevice) failure.kind = PortError::DeviceGone;
    return failure;
}

bool AwComm::PlatformModemStatus(std::uint32_t& bits) {
    int lines = 0;
    if (!port_ || ioctl(port_->fd, TIOCMGET, &lines) != 0) return false;
    bits = 0;
    if ((lines & TIOCM_CTS) != 0) bits |= modem::Cts;
    if ((lines & TIOCM_DSR) != 0) bits |= modem::Dsr;
    if ((lines & TIOCM_RNG) != 0) bits |= modem::Ring;
    if ((lines & TIOCM_CD) != 0) bits |= modem::Rlsd;
    return true;
}

bool AwComm::PlatformSetLine(bool dtrLine, bool on) {
    const int line = dtrLine ? TIOCM_DTR : TIOCM_RTS;
    return port_ && ioctl(port_->fd, on ? TIOCMBIS : TIOCMBIC, &line) == 0;
}

bool AwComm::PlatformBreak(bool on) {
    return port_ && ioctl(port_->fd, on ? TIOCSBRK : TIOCCBRK) == 0;
}

bool AwComm::PlatformQueued(bool input, std::int32_t& count) {
    if (!port_) return false;
    if (input) {
        count = static_cast<std::int32_t>(port_->queue.Size());
        return true;
    }
    int waiting = 0;
    if (ioctl(port_->fd, TIOCOUTQ, &waiting) != 0) return false;
    count = waiting;
    return true;
}

bool AwComm::PlatformWrite(const Bytes& bytes) {
    if (!port_) return false;
    using Clock = std::chrono::steady_clock;
    // A write held by flow control gives up after 10 ms a byte plus the time-out.
    const auto deadline = Clock::now() + port_->timeOut +
                          std::chrono::milliseconds(10) * static_cast<std::int64_t>(bytes.size());
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t wrote = write(port_->fd, bytes.data() + done, bytes.size() - done);
        if (wrote > 0) {
            done += static_cast<std::size_t>(wrote);
            continue;
        }
        if (wrote < 0 && errno == EINTR) continue;
        if (wrote < 0 && errno != EAGAIN) return false;
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
        if (left.count() <= 0) return false;
        pollfd out{port_->fd, POLLOUT, 0};
        (void)poll(&out, 1, static_cast<int>(left.count()));
    }
    return true;
}

bool AwComm::PlatformRead(std::uint8_t* into, std::int32_t count) {
    if (!port_) return false;
    // The total read time-out is 10 ms a byte plus the time-out; the interval time-out is the
    // time-out itself.
    const auto total = port_->timeOut + std::chrono::milliseconds(10) * count;
    return port_->queue.TakeExactly(into, static_cast<std::size_t>(count), total, port_->timeOut);
}

bool AwComm::PlatformPurgeInput() {
    if (!port_) return false;
    const bool flushed = tcflush(port_->fd, TCIFLUSH) == 0;
    port_->queue.Clear();
    return flushed;
}

}  // namespace orbline
