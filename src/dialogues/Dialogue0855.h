#pragma once
// The urine analyser only prints: a report in up to eleven STX frames, chained with ETB and
// ended with ETX. The host sends nothing back, not even an acknowledgement, and has no orders;
// the edit writes the only log line.

namespace orbline {

// Runs until the session ends (Connected false).
void BeginCommLoop0855();

}  // namespace orbline
