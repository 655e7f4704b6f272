#pragma once
// The instrument's end of a line: sends at the line rate with non-blocking writes and records
// everything that comes back. A write that would block means the other end did not take the
// bytes in time; on a real UART they would have been dropped, so it counts as a failure.

#include <chrono>
#include <cstdint>
#include <string>

#include "ByteNotation.h"

namespace orbline::sim {

class SimLine {
  public:
    // The descriptor stays the caller's; it is switched to non-blocking.
    explicit SimLine(int fd);

    // Bits per second; each byte takes ten bit times (start, eight, stop). 0 sends unpaced.
    void setRate(std::uint32_t baud) { baud_ = baud; }
    // Cut what is sent into pieces of `size` bytes with `pause` between them (0: whole).
    void setChunks(std::size_t size, std::chrono::milliseconds pause);

    // False, with the reason in error(), when a paced write would have blocked.
    bool send(const Bytes& bytes);
    // Waits until `count` bytes not yet taken are there, or the time is up; takes and returns
    // them (fewer when the time ran out).
    Bytes receive(std::size_t count, std::chrono::milliseconds within);
    // Takes everything that comes within the time.
    Bytes drain(std::chrono::milliseconds within);

    // Everything received since the start, taken or not.
    const Bytes& record() const { return record_; }
    const std::string& error() const { return error_; }

  private:
    bool sendPiece(const Bytes& bytes, std::size_t from, std::size_t count);
    // Reads what is there, waiting at most `waitMs` for the first byte.
    void pump(int waitMs);

    int fd_;
    std::uint32_t baud_ = 0;
    std::size_t chunkSize_ = 0;
    std::chrono::milliseconds chunkPause_{0};
    Bytes pending_;
    Bytes record_;
    std::string error_;
};

}  // namespace orbline::sim
