#pragma once
// The top of a dialogue's cycle that reads as soon as bytes are seen: yield to the events (a
// stop or a close request runs there), wait 10 ms, and ask the port how many bytes wait.

namespace orbline {

// True when the session still runs and at least one byte waits in the port's queue.
bool NextCycleHasBytes();

// Called by every dialogue loop each round, once it has acted on what it read: when the open
// port can receive no more (the device went away, the line hung up) and its queue is empty,
// the session ends as an abnormal end, and with it the process (status 1), so that a service
// manager starts it again instead of leaving it deaf. Returns otherwise.
void EndSessionIfPortGone();

}  // namespace orbline
