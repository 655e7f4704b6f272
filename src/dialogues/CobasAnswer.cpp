#include "dialogues/CobasAnswer.h"

using namespace Qt::StringLiterals;

namespace orbline {

namespace {

const QString kSentEtx = u"問合情報送信完了(Edit/ETX) -- "_s;
const QString kSentEtb = u"問合情報送信完了(Edit/ETB) -- "_s;
// In front of the texts that 1730 sends, in the trace.
const QString kSendMark = u"[Send]    "_s;

LogPair Sent(const QString& text) {
    return LogPair{text, text, LogForm::Full};
}

PlanActions Refused(AstmAnswerState& state) {
    if (ShouldAskAgain(state)) return {SendControl{Control::Enq}};
    return {EndAnswer(state)};
}

// The text of the record a 1730 stage sends, and the stage after it.
void SendRecord1730(const RecordTexts& records, AstmAnswerState& state, RecordKind kind,
                    PlanActions& actions) {
    const QString text = records(kind, QString(), state.answer);
    state.replyText = text;
    actions.emplace_back(TraceText{kSendMark + text});
    // The header goes out in the hexadecimal mode; the rest in the mode that stands then.
    const bool hexMode = kind == RecordKind::Header;
    if (!NeedsTwoFrames(text, kFixedLongRecord)) {
        actions.emplace_back(SendRecord{text, FrameEnd::Etx, hexMode});
        return;
    }
    actions.emplace_back(SendRecord{FirstPartOf(text, kFixedLongRecord), FrameEnd::Etb, hexMode});
    state.stage = SendStage::FirstOfTwo;
}

}  // namespace

PlanActions AnswerReply1660(AstmAnswerState& state, ReplyClass reply) {
    switch (reply) {
        case ReplyClass::NextRecord:
            return {RunLookup{}};
        case ReplyClass::SecondPart: {
            const QString second = SecondPartOf(state.replyText, kFixedLongRecord, 0);
            state.stage = SendStage::Terminator;
            return {SendRecord{second, FrameEnd::Etx, false}, TraceText{state.replyText},
                    Sent(kSentEtx), DetailLine{u"詳細ログ(006) -- "_s, second}};
        }
        case ReplyClass::TerminatorTaken:
        case ReplyClass::Leave:
            return {EndAnswer(state)};
        case ReplyClass::NotAck:
            return Refused(state);
    }
    return {};
}

PlanActions AnswerLookup1660(AstmAnswerState& state, const QString& replyText) {
    state.replyText = replyText;
    PlanActions actions{DetailLine{u"詳細ログ(004) -- "_s, replyText}};
    if (!NeedsTwoFrames(replyText, kFixedLongRecord)) {
        state.stage = SendStage::Terminator;
        actions.insert(
            actions.end(),
            {SendRecord{replyText, FrameEnd::Etx, true}, Sent(kSentEtx), TraceText{replyText},
             DetailLine{u"詳細ログ(005) -- "_s, FrameHexText(replyText, FrameEnd::Etx)}});
        return actions;
    }
    const QString first = FirstPartOf(replyText, kFixedLongRecord);
    state.stage = SendStage::FirstOfTwo;
    actions.insert(actions.end(),
                   {SendRecord{first, FrameEnd::Etb, true}, TraceText{replyText}, Sent(kSentEtb),
                    DetailLine{u"詳細ログ -- "_s, FrameHexText(first, FrameEnd::Etb)}});
    return actions;
}

PlanActions AnswerReply1730(const RecordTexts& records, AstmAnswerState& state, ReplyClass reply) {
    PlanActions actions;
    switch (reply) {
        case ReplyClass::NextRecord:
            switch (state.recordStage) {
                case SendStage::Nothing:
                    return {RunLookup{}};
                case SendStage::Header:
                    state.recordStage = SendStage::Patient;
                    SendRecord1730(records, state, RecordKind::Patient, actions);
                    return actions;
                case SendStage::Patient:
                    state.recordStage = SendStage::Order;
                    SendRecord1730(records, state, RecordKind::Order, actions);
                    return actions;
                case SendStage::Order:
                    state.recordStage = SendStage::Terminator;
                    state.stage = SendStage::Terminator;
                    SendRecord1730(records, state, RecordKind::Terminator, actions);
                    return actions;
                case SendStage::FirstOfTwo:
                case SendStage::Terminator:
                    // Reached only when the phase was broken off after the terminator: it
                    // ends as if the terminator had been taken.
                    state.recordStage = SendStage::Nothing;
                    return {EndAnswer(state), Sent(kSentEtx),
                            TraceText{kSendMark + state.replyText}};
            }
            return {};
        case ReplyClass::SecondPart: {
            const QString second = SecondPartOf(state.replyText, kFixedLongRecord, 0);
            return {SendRecord{second, FrameEnd::Etx, false}, TraceText{kSendMark + second}};
        }
        case ReplyClass::TerminatorTaken:
            state.recordStage = SendStage::Nothing;
            return {EndAnswer(state), Sent(kSentEtx)};
        case ReplyClass::Leave:
            state.recordStage = SendStage::Nothing;
            return {EndAnswer(state)};
        case ReplyClass::NotAck:
            return Refused(state);
    }
    return {};
}

PlanActions AnswerLookup1730(const RecordTexts& records, AstmAnswerState& state,
                             const OrderAnswer& answer) {
    state.answer = answer;
    state.recordStage = SendStage::Header;
    PlanActions actions;
    SendRecord1730(records, state, RecordKind::Header, actions);
    return actions;
}

}  // namespace orbline
