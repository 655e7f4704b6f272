#pragma once
// Result edit of the glycohaemoglobin analyser 0980: ASTM-like records read from the saved
// pieces of a message. A message with a Q record is left to the dialogue as an order query;
// any other becomes one result file with one record per measured item.

#include <cstdint>

namespace orbline {

// Reads pieces 1 .. pieceCount - 1 of AppPath\c980. Sets QueryMark0980 to "Q" for a query and
// leaves its key in RecordFields(0, 20/22/23) and the header's EchoSender and EchoVersion.
// Errors are passed over: a step that fails has no effect.
void EditResult0980(std::int16_t pieceCount);

}  // namespace orbline
