#pragma once
// The haematology analyser 1190: results in, and an order query answered with the patient and
// the tests of the specimen's order.

#include <QString>

namespace orbline {

struct AstmLoopState;

// Runs until the session ends (Connected false).
void BeginCommLoop1190();

QString Patient1190(const AstmLoopState& state);
QString Order1190(const AstmLoopState& state);

}  // namespace orbline
