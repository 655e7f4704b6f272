#pragma once
// The tonometer only sends: each block of its print-out is acknowledged with ACK CR, kept, and
// at the final block the whole message goes to the edit. No checksum, no negative reply, no
// time-out.

namespace orbline {

// Runs until the session ends (Connected false).
void BeginCommLoop2620();

}  // namespace orbline
