#include "SimLine.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <thread>

namespace orbline::sim {

using Clock = std::chrono::steady_clock;

SimLine::SimLine(int fd) : fd_(fd) {
    const int flags = fcntl(fd_, F_GETFL);
    if (flags >= 0) fcntl(fd_, F_SETFL, flags | O_NONBLOCK);
}

void SimLine::setChunks(std::size_t size, std::chrono::milliseconds pause) {
    chunkSize_ = size;
    chunkPause_ = pause;
}

bool SimLine::send(const Bytes& bytes) {
    const std::size_t piece = chunkSize_ == 0 ? bytes.size() : chunkSize_;
    for (std::size_t from = 0; from < bytes.size(); from += piece) {
        if (from > 0) {
            const auto until = Clock::now() + chunkPause_;
            while (Clock::now() < until) {
                const auto left =
                    std::chrono::duration_cast<std::chrono::milliseconds>(until - Clock::now());
                pump(static_cast<int>(std::max<std::int64_t>(left.count(), 0)));
            }
        }
        if (!sendPiece(bytes, from, std::min(piece, bytes.size() - from))) return false;
    }
    return true;
}

bool SimLine::sendPiece(const Bytes& bytes, std::size_t from, std::size_t count) {
    const auto start = Clock::now();
    const std::chrono::nanoseconds byteTime =
        baud_ == 0 ? std::chrono::nanoseconds(0)
                   : std::chrono::nanoseconds(10'000'000'000LL / static_cast<std::int64_t>(baud_));
    std::size_t sent = 0;
    while (sent < count) {
        std::size_t due = count - sent;
        if (baud_ != 0) {
            const auto elapsed = Clock::now() - start;
            due = std::min<std::size_t>(count, static_cast<std::size_t>(elapsed / byteTime) + 1) -
                  sent;
        }
        if (due > 0) {
            const ssize_t wrote = write(fd_, bytes.data() + from + sent, due);
            if (wrote < 0 && errno == EINTR) continue;
            if (wrote < 0 && errno != EAGAIN) {
                error_ = std::string("write failed: ") + std::strerror(errno);
                return false;
            }
            const std::size_t done = wrote < 0 ? 0 : static_cast<std::size_t>(wrote);
            sent += done;
            if (done < due) {
                if (baud_ != 0) {
                    error_ = "the line would have blocked after " + std::to_string(from + sent) +
                             " bytes: the receiver does not keep up";
                    return false;
                }
                pollfd out{fd_, POLLOUT, 0};
                (void)poll(&out, 1, 100);
            }
        }
        // Whatever the other end says meanwhile is taken in, as a real instrument would.
        pump(0);
        if (sent < count && baud_ != 0) {
            const auto next = start + byteTime * static_cast<std::int64_t>(sent);
            std::this_thread::sleep_until(
                std::max(next, Clock::now() + std::chrono::milliseconds(1)));
        }
    }
    return true;
}

void SimLine::pump(int waitMs) {
    pollfd in{fd_, POLLIN, 0};
    if (poll(&in, 1, waitMs) <= 0 || (in.revents & POLLIN) == 0) {
        // A hang-up (no one holds the other end) would wake poll at once: wait out the time.
        if (in.revents != 0 && waitMs > 0)
            std::this_thread::sleep_for(std::chrono::milliseconds(std::min(waitMs, 10)));
        return;
    }
    std::uint8_t chunk[4096];
    for (;;) {
        const ssize_t got = read(fd_, chunk, sizeof chunk);
        if (got <= 0) break;
        pending_.insert(pending_.end(), chunk, chunk + got);
        record_.insert(record_.end(), chunk, chunk + got);
    }
}

Bytes SimLine::receive(std::size_t count, std::chrono::milliseconds within) {
    const auto deadline = Clock::now() + within;
    pump(0);
    while (pending_.size() < count) {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
        if (left.count() <= 0) break;
        pump(static_cast<int>(left.count()));
    }
    const std::size_t take = std::min(count, pending_.size());
    Bytes taken(pending_.begin(), pending_.begin() + static_cast<std::ptrdiff_t>(take));
    pending_.erase(pending_.begin(), pending_.begin() + static_cast<std::ptrdiff_t>(take));
    return taken;
}

Bytes SimLine::drain(std::chrono::milliseconds within) {
    const auto deadline = Clock::now() + within;
    for (;;) {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
        if (left.count() <= 0) break;
        pump(static_cast<int>(left.count()));
    }
    Bytes taken;
    taken.swap(pending_);
    return taken;
}

}  // namespace orbline::sim
