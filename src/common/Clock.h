#pragma once
// The one clock. Two environment variables exist for tests only:
//   KV_ORBLINE_TIME_SCALE  a factor for every protocol wait (0.1 makes 1000 ms into 100 ms);
//   KV_ORBLINE_NOW         a fixed "now", written "YYYY-MM-DD HH:MM:SS".

#include <QDateTime>
#include <QString>

#include <cstdint>

namespace orbline {

QDateTime Now();

// Formats with the runtime's date format letters, case-insensitive: YYYY, YY, MM, DD, HH, SS.
// "MM" right after an hour token (separators between them allowed) or right before a seconds
// token means minutes, otherwise months: so "YYYYMMDDHHMMDD" is year, month, day, hour,
// minute, day. Any other character is copied as it stands.
QString FormatDateTime(const QDateTime& when, const QString& pattern);
// FormatDateTime(Now(), pattern).
QString NowText(const QString& pattern);

// A protocol wait, scaled for tests. Blocks the thread; yields nothing.
void Sleep(int milliseconds);
// A wait the caller has already scaled.
void SleepScaled(std::int64_t milliseconds);
// Milliseconds of a clock that only goes forward, for the read windows of the dialogues.
std::int64_t MonotonicMs();
int ScaledMilliseconds(int milliseconds);
double TimeScale();

}  // namespace orbline
