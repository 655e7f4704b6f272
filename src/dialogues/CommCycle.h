#pragma once
// The top of a dialogue's cycle that reads as soon as bytes are seen: yield to the events (a
// stop or a close request runs there), wait 10 ms, and ask the port how many bytes wait.

#include "dialogues/ReadWindow.h"

#include <QString>

#include <functional>
#include <optional>

namespace orbline {

// True when the session still runs and at least one byte waits in the port's queue.
bool NextCycleHasBytes();

// Called by every dialogue loop each round, once it has acted on what it read: when the open
// port can receive no more (the device went away, the line hung up) and its queue is empty,
// the session ends as an abnormal end, and with it the process (status 1), so that a service
// manager starts it again instead of leaving it deaf. Returns otherwise.
void EndSessionIfPortGone();

// One round of a dialogue that reads through a read window: yield to the events, sleep until
// the window must look again (at most 10 ms), and move what the port holds into the window.
// `whenIdle` runs in a round with nothing held (the order polls). Gives the read that is due.
std::optional<QString> NextWindowedRead(ReadWindow& window,
                                        const std::function<void()>& whenIdle = {});

}  // namespace orbline
