#pragma once
// The watchdog of a service manager, kept from the logic thread: a timer on that thread tells
// the manager the process is alive. Timers run only when the thread comes round to its events
// (each dialogue yields every round of about 10 ms, and a stopped form waits in the event
// loop), so a loop that hangs stops the messages and the manager restarts the process.

namespace orbline {

// Once, after the application object exists. Does nothing unless a watchdog was asked for.
void StartServiceWatchdog();

}  // namespace orbline
