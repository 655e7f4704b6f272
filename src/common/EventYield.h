#pragma once
// The yield of the polling loops: the events that came in since the last one (a close request,
// a timer) run here, nested on top of the loop that yields.

namespace orbline {

void YieldToEvents();

}  // namespace orbline
