#pragma once
// The order phase of the frame dialogues as a pure plan: the host has
// taken the line with ENQ, and each reply of the instrument moves the answer on by one record
// (header, patient, order in one or two frames, terminator) until EOT gives the line back.
// What differs by instrument is a shape (where the lookup runs, what a refusal brings, how a
// long record is cut) and the texts of its records.

#include "dialogues/Classifiers.h"
#include "dialogues/LinkRules.h"
#include "dialogues/PlanActions.h"

#include <QString>

#include <cstdint>
#include <functional>

namespace orbline {

// What the lookup found for the order query, kept for the records that carry it.
struct OrderAnswer {
    QString test{};  // the tests in the instrument's notation
    QString kana{};
    QString patientId{};
    QString sex{};       // the stored code: "1", "2" or other
    QString dateTime{};  // "YYYYMMDDHHMMSS" when the lookup ran
    bool operator==(const OrderAnswer&) const = default;
};

enum class RecordKind { Header, RepeatedHeader, Patient, Order, Terminator };
// The text of a record for its frame number and the answer of the lookup.
using RecordTexts =
    std::function<QString(RecordKind kind, const QString& frameNo, const OrderAnswer& answer)>;

// Where an instrument's order lookup runs.
enum class LookupPoint {
    BeforePatient,  // on the ACK to the header; the patient record follows
    AfterHeader,    // right after the header; without an order the terminator follows
};
// What a refused frame leads to.
enum class RetryRule {
    RepeatFrame,  // the frame of the stage goes out again, with the next frame number
    AskAgain,     // ENQ again: its ACK counts for the refused frame, which is lost
};

struct AstmAnswerShape {
    FrameEnd recordEnd = FrameEnd::Etx;  // header, patient and a one-frame order record
    LookupPoint lookupAt = LookupPoint::BeforePatient;
    RetryRule retry = RetryRule::AskAgain;
    LongRecordRule longRecord = kCountedLongRecord;
};

// What the plan does when the lookup's answer comes back.
enum class AfterLookup { Nothing, SendPatient, ChooseAfterHeader };

struct AstmAnswerState {
    bool answering = false;  // the query mark: "Q" while the host answers
    SendStage stage = SendStage::Nothing;
    std::int16_t frameNo = 0;
    std::int16_t refusals = 0;  // replies other than ACK in this phase, ACKs between or not
    QString longRecord;         // the whole text of an order record that takes two frames
    QString replyText;          // what went out last where a plan sends a text of its own
    OrderAnswer answer;
    AfterLookup afterLookup = AfterLookup::Nothing;
    // The record sent last where it is not the send stage (1730): kept from a stop to a start.
    SendStage recordStage = SendStage::Nothing;
};

// The order phase of one dialogue: what the host does at each reply of the instrument and when
// the answer of its lookup comes back.
struct AnswerPlan {
    PlanActions (*reply)(AstmAnswerState& state, ReplyClass reply) = nullptr;
    PlanActions (*lookup)(AstmAnswerState& state, const OrderAnswer& answer) = nullptr;
};

// The refusals an order phase takes before it gives the line back.
inline constexpr std::int16_t kMaxRefusals = 3;

// EOT gives the line back; the next ENQ of the instrument starts a new reception.
PlanAction EndAnswer(AstmAnswerState& state);
// Counts a reply other than ACK; false when it is the last the phase takes.
bool ShouldAskAgain(AstmAnswerState& state);

// The host takes the line: ENQ and the order request log pair.
PlanActions BeginAnswer(AstmAnswerState& state);
// The instrument's reply to the host's last frame, as its classifier saw it.
PlanActions AnswerReply(const AstmAnswerShape& shape, const RecordTexts& records,
                        AstmAnswerState& state, ReplyClass reply);
// The answer of the lookup a RunLookup asked for.
PlanActions AnswerLookup(const AstmAnswerShape& shape, const RecordTexts& records,
                         AstmAnswerState& state, const OrderAnswer& answer);

// The record-by-record plan of a dialogue with this shape and these record texts.
using RecordText = QString (*)(RecordKind kind, const QString& frameNo, const OrderAnswer& answer);
template <const AstmAnswerShape& shape, RecordText record>
inline constexpr AnswerPlan kRecordPlan{
    [](AstmAnswerState& state, ReplyClass reply) {
        return AnswerReply(shape, record, state, reply);
    },
    [](AstmAnswerState& state, const OrderAnswer& answer) {
        return AnswerLookup(shape, record, state, answer);
    },
};

}  // namespace orbline
