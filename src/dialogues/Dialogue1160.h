#pragma once
// The "AIA-" analyser 1160: results in, and an order query answered with its tests, or with a
// header and a terminator alone when the specimen has no order.

#include "dialogues/AstmAnswer.h"

#include <QString>

namespace orbline {

// Runs until the session ends (Connected false).
void BeginCommLoop1160();

// The records of the answer to a query for the key.
QString Record1160(const QString& queryKey, RecordKind kind, const QString& frameNo,
                   const OrderAnswer& answer);

}  // namespace orbline
