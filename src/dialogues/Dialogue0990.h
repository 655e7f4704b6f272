#pragma once
// The blood glucose meter unloads its stored measurements: a transmission is an ENQ frame, "D"
// frames and an EOT frame, each checked fully and answered with the accepting or the refusing
// frame. The host asks for nothing. Accepted frames are stored, and the EOT frame hands the
// transmission to the edit. An idle frame (SYN) drops a transmission that was broken off.

namespace orbline {

// Runs until the session ends (Connected false).
void BeginCommLoop0990();

}  // namespace orbline
