#include "dialogues/ReadWindow.h"

#include <algorithm>

namespace orbline {

namespace {

QString GiveRead(ReadWindow& w, std::int64_t now) {
    QString read = std::move(w.held);
    w.held.clear();
    if (w.restMs > 0) {
        w.phase = WindowPhase::Resting;
        w.until = now + w.restMs;
    } else {
        w.phase = WindowPhase::Idle;
    }
    return read;
}

// The first bytes of a read: a window without a wait reads them at once.
std::optional<QString> Begin(ReadWindow& w, std::int64_t now) {
    if (w.waitMs <= 0) return GiveRead(w, now);
    w.phase = WindowPhase::Gathering;
    w.until = now + w.waitMs;
    return std::nullopt;
}

}  // namespace

std::optional<QString> TakeRead(ReadWindow& w, std::int64_t now, const QString& bytes) {
    w.held += bytes;
    switch (w.phase) {
        case WindowPhase::Idle:
            if (w.held.isEmpty()) return std::nullopt;
            return Begin(w, now);
        case WindowPhase::Gathering:
            if (now < w.until) return std::nullopt;
            return GiveRead(w, now);
        case WindowPhase::Resting:
            if (now < w.until) return std::nullopt;
            w.phase = WindowPhase::Idle;
            // What came while resting is seen now, as the next round of the loop sees it.
            if (w.held.isEmpty()) return std::nullopt;
            return Begin(w, now);
    }
    return std::nullopt;
}

std::int64_t SleepBeforeNextLook(const ReadWindow& w, std::int64_t now, std::int64_t roundMs) {
    switch (w.phase) {
        case WindowPhase::Idle:
            return roundMs;
        case WindowPhase::Gathering:
        case WindowPhase::Resting:
            return std::clamp<std::int64_t>(w.until - now, 0, roundMs);
    }
    return roundMs;
}

}  // namespace orbline
