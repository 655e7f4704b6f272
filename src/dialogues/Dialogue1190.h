#pragma once
// The haematology analyser 1190: results in, and an order query answered with the patient and
// the tests of the specimen's order.

#include "dialogues/AstmAnswer.h"
#include "edits/MdlEdit011.h"

#include <QString>

namespace orbline {

// Runs until the session ends (Connected false).
void BeginCommLoop1190();

// The records of the answer to a query.
QString Record1190(const Query1190& query, RecordKind kind, const QString& frameNo,
                   const OrderAnswer& answer);

}  // namespace orbline
