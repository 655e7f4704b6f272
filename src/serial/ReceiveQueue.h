#pragma once
// The port's own input queue: a reader thread fills it as a UART driver fills its buffer, the
// logic thread takes from it. Bytes that arrive while it is full are dropped, as a driver drops
// them; the tty below holds only a few kilobytes, so this queue is what lets the logic thread
// run an edit for seconds without losing a byte.

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <vector>

namespace orbline {

class ReceiveQueue {
  public:
    explicit ReceiveQueue(std::size_t capacity);

    // Returns how many bytes found room.
    std::size_t Push(const std::uint8_t* bytes, std::size_t count);
    std::size_t Size() const;
    void Clear();

    // Waits until count bytes are there, then moves them into `into`. Gives up when the whole
    // read takes longer than `total`, or when `interval` passes between two arrivals after the
    // first; then whatever came (up to count) is taken and lost, and the result is false.
    bool TakeExactly(std::uint8_t* into, std::size_t count, std::chrono::milliseconds total,
                     std::chrono::milliseconds interval);

  private:
    void TakeLocked(std::uint8_t* into, std::size_t count);

    mutable std::mutex mutex_;
    std::condition_variable arrived_;
    std::vector<std::uint8_t> ring_;
    std::size_t head_ = 0;  // oldest byte
    std::size_t size_ = 0;
};

}  // namespace orbline
