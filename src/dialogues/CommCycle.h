#pragma once
// The top of every dialogue's cycle: yield to the events (a stop or a close request runs
// there), wait 10 ms, and ask the port how many bytes wait.

namespace orbline {

// The yield and the 10 ms wait of one round.
void YieldAndWait();
// True when the session still runs and at least one byte waits in the port's queue.
bool PortHasBytes();
// Both, for a dialogue that does nothing between them.
bool NextCycleHasBytes();

}  // namespace orbline
