#pragma once
// The glycohaemoglobin analyser 0980: results in, and an order query answered with the test to
// run ("HbA1c" when the specimen has no order).

#include "dialogues/AstmAnswer.h"
#include "edits/MdlEdit009.h"

#include <QString>

namespace orbline {

// The header fields of the instrument that the answer echoes.
struct Echo0980 {
    QString sender;   // field 4 of its H record
    QString version;  // field 13
};

// Runs until the session ends (Connected false).
void BeginCommLoop0980();

// The records of the answer to a query.
QString Record0980(const Query0980& query, const Echo0980& echo, RecordKind kind,
                   const QString& frameNo, const OrderAnswer& answer);

}  // namespace orbline
