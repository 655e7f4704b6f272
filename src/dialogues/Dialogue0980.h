#pragma once
// The glycohaemoglobin analyser 0980: results in, and an order query answered with the test to
// run ("HbA1c" when the specimen has no order).

#include <QString>

namespace orbline {

struct AstmLoopState;

// Runs until the session ends (Connected false).
void BeginCommLoop0980();

// The records of the answer, for tests.
QString Header0980(const AstmLoopState& state, bool repeated);
QString Order0980(const AstmLoopState& state);

}  // namespace orbline
