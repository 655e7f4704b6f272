#include "serial/ReceiveQueue.h"

#include <algorithm>
#include <cstring>

namespace orbline {

ReceiveQueue::ReceiveQueue(std::size_t capacity) : ring_(capacity) {}

std::size_t ReceiveQueue::Push(const std::uint8_t* bytes, std::size_t count) {
    std::size_t stored = 0;
    {
        const std::lock_guard lock(mutex_);
        const std::size_t capacity = ring_.size();
        stored = std::min(count, capacity - size_);
        std::size_t tail = (head_ + size_) % std::max<std::size_t>(capacity, 1);
        for (std::size_t done = 0; done < stored;) {
            const std::size_t run = std::min(stored - done, capacity - tail);
            std::memcpy(ring_.data() + tail, bytes + done, run);
            done += run;
            tail = (tail + run) % capacity;
        }
        size_ += stored;
    }
    if (stored > 0) arrived_.notify_all();
    return stored;
}

std::size_t ReceiveQueue::Size() const {
    const std::lock_guard lock(mutex_);
    return size_;
}

void ReceiveQueue::Clear() {
    const std::lock_guard lock(mutex_);
    head_ = 0;
    size_ = 0;
}

void ReceiveQueue::TakeLocked(std::uint8_t* into, std::size_t count) {
    const std::size_t capacity = ring_.size();
    for (std::size_t done = 0; done < count;) {
        const std::size_t run = std::min(count - done, capacity - head_);
        if (into != nullptr) std::memcpy(into + done, ring_.data() + head_, run);
        done += run;
        head_ = (head_ + run) % capacity;
    }
    size_ -= count;
}

bool ReceiveQueue::TakeExactly(std::uint8_t* into, std::size_t count,
                               std::chrono::milliseconds total,
                               std::chrono::milliseconds interval) {
    using Clock = std::chrono::steady_clock;
    std::unique_lock lock(mutex_);
    const auto deadline = Clock::now() + total;
    std::size_t seen = size_;
    auto lastArrival = Clock::now();
    while (size_ < count) {
        auto until = deadline;
        if (seen > 0) until = std::min(until, lastArrival + interval);
        if (arrived_.wait_until(lock, until) == std::cv_status::timeout && size_ == seen) break;
        if (size_ != seen) {
            seen = size_;
            lastArrival = Clock::now();
        }
    }
    if (size_ >= count) {
        TakeLocked(into, count);
        return true;
    }
    TakeLocked(nullptr, size_);
    return false;
}

}  // namespace orbline
