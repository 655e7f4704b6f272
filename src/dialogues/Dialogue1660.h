#pragma once
// The cobas analyser 1660: results in, and an order query answered with one message of five
// records that carries the specimen's tests and kana name.

#include "dialogues/AstmAnswer.h"
#include "edits/MdlEdit016.h"

#include <QString>

namespace orbline {

// Runs until the session ends (Connected false).
void BeginCommLoop1660();

// The message of the answer, with "@" for each CR.
QString ReplyText1660(const CobasQuery& query, const OrderAnswer& answer);

}  // namespace orbline
