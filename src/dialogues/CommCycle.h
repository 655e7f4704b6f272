#pragma once
// The top of a dialogue's cycle that reads as soon as bytes are seen: yield to the events (a
// stop or a close request runs there), wait 10 ms, and ask the port how many bytes wait.

namespace orbline {

// True when the session still runs and at least one byte waits in the port's queue.
bool NextCycleHasBytes();

}  // namespace orbline
