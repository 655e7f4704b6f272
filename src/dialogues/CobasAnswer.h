#pragma once
// The order phases of the cobas-family instruments as pure plans, on the reply classes of
// their one classifier (stages Nothing, FirstOfTwo and Terminator). A text of 240 characters
// or more goes in two frames, the second numbered "2"; what stands past character 477 is lost.
//
// 1660 answers a query with one message of five records; 1730 with four records, each in a
// frame of its own and each waiting for its ACK.

#include "dialogues/AstmAnswer.h"

#include <QString>

namespace orbline {

// 1660. On the ACK to the host's ENQ the lookup runs; its answer brings the message.
PlanActions AnswerReply1660(AstmAnswerState& state, ReplyClass reply);
// The message with "@" for each CR, built from the lookup's answer.
PlanActions AnswerLookup1660(AstmAnswerState& state, const QString& replyText);

// 1730. The records by their kind (header, patient, order, terminator), for the lookup's
// answer. A record that was refused is not sent again: the next ACK moves on. After the second
// frame of a long record every ACK sends that frame once more.
PlanActions AnswerReply1730(const RecordTexts& records, AstmAnswerState& state, ReplyClass reply);
PlanActions AnswerLookup1730(const RecordTexts& records, AstmAnswerState& state,
                             const OrderAnswer& answer);

}  // namespace orbline
