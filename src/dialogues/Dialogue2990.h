#pragma once
// The chemistry analyser 2990: the frames of the 2140 without the order exchange. Every frame,
// an inquiry or a bad one too, gets the positive reply; results are named through
// KV_KENSAKOMOKU2990.DAT.

namespace orbline {

// Runs until the session ends (Connected false).
void BeginCommLoop2990();

}  // namespace orbline
