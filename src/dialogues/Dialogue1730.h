#pragma once
// The immunoassay analyser 1730: results in, and an order query answered with four records,
// each in a frame of its own.

#include "dialogues/AstmAnswer.h"
#include "edits/MdlEdit016.h"

#include <QString>

namespace orbline {

// Runs until the session ends (Connected false).
void BeginCommLoop1730();

// The records of the answer, their frame numbers fixed in the texts. The order record carries
// the time the loop began ("YYYYMMDDHHMMSS"), however long ago that was.
QString Record1730(const CobasQuery& query, const QString& loopStart, RecordKind kind,
                   const OrderAnswer& answer);

}  // namespace orbline
