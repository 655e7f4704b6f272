#pragma once
// The "AIA-" analyser 1160: results in, and an order query answered with its tests, or with a
// header and a terminator alone when the specimen has no order.

#include <QString>

namespace orbline {

struct AstmLoopState;

// Runs until the session ends (Connected false).
void BeginCommLoop1160();

QString Order1160(const AstmLoopState& state);

}  // namespace orbline
