#pragma once
// When a dialogue reads the port. Each round the loop drains what the port holds into the
// window with the time; once bytes are seen, the window waits its time for the rest of a frame
// to arrive and then gives everything as one read, and may rest before it looks again. A read
// is therefore whatever arrived within the wait of its first byte, not a frame.
//
// Pure: no port, no clock. The loop moves bytes and the time into it and carries out the
// reads it gives.

#include <QString>

#include <cstdint>
#include <optional>

namespace orbline {

enum class WindowPhase {
    Idle,       // nothing held
    Gathering,  // bytes seen; the read happens at `until`
    Resting,    // a read was just given; nothing is given before `until`
};

struct ReadWindow {
    std::int64_t waitMs = 0;  // from the first byte to the read: 100, 10, 1000 or 0
    std::int64_t restMs = 0;  // after a read, before the next look: 100 for some, else 0
    WindowPhase phase = WindowPhase::Idle;
    std::int64_t until = 0;
    QString held{};
};

// Adds what the port gave at `now` (may be empty) and gives the read that is due by then.
std::optional<QString> TakeRead(ReadWindow& window, std::int64_t now, const QString& bytes);

// How long the loop may sleep before it must look again, at most `roundMs`.
std::int64_t SleepBeforeNextLook(const ReadWindow& window, std::int64_t now, std::int64_t roundMs);

}  // namespace orbline
