// The answer plan of the frame dialogues, reply by reply from the instrument's bytes.

#include "dialogues/AstmAnswer.h"
#include "dialogues/CobasAnswer.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace orbline;

namespace {

const QString kAck = QString(QChar(0x06));
const QString kNak = QString(QChar(0x15));

// Records that show their kind and frame number; the order record is as long as asked.
RecordTexts Records(qsizetype orderLength = 10) {
    return [orderLength](RecordKind kind, const QString& no, const OrderAnswer& a) {
        switch (kind) {
            case RecordKind::Header:
                return no + u"H@"_s;
            case RecordKind::RepeatedHeader:
                return no + u"H @"_s;
            case RecordKind::Patient:
                return no + u"P|"_s + a.test + u"@"_s;
            case RecordKind::Order:
                return (no + u"O|"_s).leftJustified(orderLength - 1, u'x') + u"@"_s;
            case RecordKind::Terminator:
                return no + u"L@"_s;
        }
        return QString();
    };
}

struct Answer {
    AstmAnswerShape shape{};
    RecordTexts records = Records();
    AstmAnswerState state{};

    PlanActions reply(const QString& piece) {
        return AnswerReply(shape, records, state, CheckReply0980(piece, state.stage));
    }
    PlanActions looked(const QString& test) {
        return AnswerLookup(shape, records, state, OrderAnswer{.test = test});
    }
};

PlanActions Frame(const QString& text, FrameEnd end, bool hexMode) {
    return {SendRecord{text, end, hexMode}};
}

const PlanActions kEot{SendControl{Control::Eot}};
const PlanActions kNothing{};

}  // namespace

TEST(AstmAnswer, A0980AnswerRunsHeaderPatientOrderTerminatorThenEot) {
    Answer a{.shape = {.recordEnd = FrameEnd::Etb, .retry = RetryRule::RepeatFrame}};
    EXPECT_EQ(BeginAnswer(a.state),
              (PlanActions{SendControl{Control::Enq},
                           LogPair{u"オーダデータ要求送信中 --  "_s,
                                   u"データデータ要求送信中 -- "_s, LogForm::Short}}));
    EXPECT_TRUE(a.state.answering);
    EXPECT_EQ(a.reply(kAck), Frame(u"1H@"_s, FrameEnd::Etb, true));
    // The lookup runs on the ACK to the header, before the patient record.
    EXPECT_EQ(a.reply(kAck), PlanActions{RunLookup{}});
    EXPECT_EQ(a.looked(u"HbA1c"_s), Frame(u"2P|HbA1c@"_s, FrameEnd::Etb, true));
    EXPECT_EQ(a.reply(kAck), Frame(u"3O|xxxxxx@"_s, FrameEnd::Etb, false));
    EXPECT_EQ(a.reply(kAck), Frame(u"4L@"_s, FrameEnd::Etx, true));
    EXPECT_EQ(a.reply(kAck),
              (PlanActions{SendControl{Control::Eot},
                           LogPair{u"問合情報送信完了(Edit/ETB) -- "_s,
                                   u"問合情報送信完了(Edit/ETB) -- "_s, LogForm::Full}}));
    EXPECT_FALSE(a.state.answering);
    EXPECT_EQ(a.state.frameNo, 0);
}

// Refused: nothing after the ENQ, the header again with a blank and the next number, the
// patient looked up again; the third refusal of the phase ends it without a log line, ACKs
// between them or not. (A refused first part of two: Astm0980Test.)
TEST(AstmAnswer, ARepeatingInstrumentGetsTheFrameAgainWithTheNextNumber) {
    Answer a{.shape = {.retry = RetryRule::RepeatFrame}};
    BeginAnswer(a.state);
    EXPECT_EQ(a.reply(kNak), kNothing);
    EXPECT_EQ(a.reply(kAck), Frame(u"1H@"_s, FrameEnd::Etx, true));
    EXPECT_EQ(a.reply(u"noise"_s), Frame(u"2H @"_s, FrameEnd::Etx, true));
    a.reply(kAck);
    a.looked(u"T"_s);
    EXPECT_EQ(a.reply(kNak), kEot);
    EXPECT_EQ(a.state.stage, SendStage::Nothing);

    Answer b{.shape = {.retry = RetryRule::RepeatFrame}};
    BeginAnswer(b.state);
    b.reply(kAck);
    b.reply(kAck);
    b.looked(u"T"_s);
    EXPECT_EQ(b.reply(kNak), PlanActions{RunLookup{}});
    EXPECT_EQ(b.looked(u"U"_s), Frame(u"3P|U@"_s, FrameEnd::Etx, true));
}

TEST(AstmAnswer, AnAskingInstrumentGetsEnqAndLosesTheRefusedFrame) {
    Answer a;  // 1190: lookup before the patient, ENQ after a refusal
    BeginAnswer(a.state);
    a.reply(kAck);
    EXPECT_EQ(a.reply(kAck), PlanActions{RunLookup{}});
    a.looked(u"WBC"_s);
    EXPECT_EQ(a.reply(kNak), PlanActions{SendControl{Control::Enq}});
    // The ACK to the ENQ counts for the patient record: the order record follows.
    EXPECT_EQ(a.reply(kAck), Frame(u"3O|xxxxxx@"_s, FrameEnd::Etx, false));
}

TEST(AstmAnswer, WithTheLookupAfterTheHeaderNoOrderMeansHeaderAndTerminatorAlone) {
    for (const QString& test : {QString(), u"110"_s}) {
        Answer a{.shape = {.lookupAt = LookupPoint::AfterHeader}};
        BeginAnswer(a.state);
        EXPECT_EQ(a.reply(kAck),
                  (PlanActions{SendRecord{u"1H@"_s, FrameEnd::Etx, true}, RunLookup{}}));
        EXPECT_EQ(a.looked(test), kNothing);
        EXPECT_EQ(a.reply(kAck), test.isEmpty() ? Frame(u"2L@"_s, FrameEnd::Etx, true)
                                                : Frame(u"2P|110@"_s, FrameEnd::Etx, true));
    }
}

TEST(AstmAnswer, ALongOrderRecordIsCutByTheRuleOfItsInstrument) {
    // Counted: from 236 characters, 235 in the first frame, the second under its own number.
    Answer counted{.records = Records(500)};
    counted.state.stage = SendStage::Patient;
    counted.state.frameNo = 2;
    const QString order = Records(500)(RecordKind::Order, u"3"_s, {});
    EXPECT_EQ(counted.reply(kAck), Frame(order.left(235), FrameEnd::Etb, false));
    EXPECT_EQ(counted.reply(kAck), Frame(u"4"_s + order.mid(235, 240), FrameEnd::Etx, false));
    EXPECT_EQ(counted.reply(kAck), Frame(u"5L@"_s, FrameEnd::Etx, true));
    EXPECT_FALSE(NeedsTwoFrames(order.left(235), kCountedLongRecord));
    EXPECT_TRUE(NeedsTwoFrames(order.left(236), kCountedLongRecord));

    // Fixed: from 240, 237 in the first frame, "2" before characters 238 to 477.
    EXPECT_FALSE(NeedsTwoFrames(order.left(239), kFixedLongRecord));
    EXPECT_TRUE(NeedsTwoFrames(order.left(240), kFixedLongRecord));
    EXPECT_EQ(FirstPartOf(order, kFixedLongRecord), order.left(237));
    EXPECT_EQ(SecondPartOf(order, kFixedLongRecord, 9), u"2"_s + order.mid(237, 240));
}

// 1730 keeps its record stage from a stop to a start, while the send stage starts again: an
// ACK after a restart that broke off the phase behind its terminator ends it as if the
// terminator had been taken.
TEST(AstmAnswer, A1730PhaseBrokenOffBehindItsTerminatorEndsAtTheNextAck) {
    AstmAnswerState state;
    state.answering = true;
    state.replyText = u"4L|1|F@"_s;
    state.recordStage = SendStage::Terminator;
    const QString sent = u"問合情報送信完了(Edit/ETX) -- "_s;
    EXPECT_EQ(AnswerReply1730(Records(), state, CheckReply1660(kAck, state.stage)),
              (PlanActions{SendControl{Control::Eot}, LogPair{sent, sent, LogForm::Full},
                           TraceText{u"[Send]    4L|1|F@"_s}}));
    EXPECT_FALSE(state.answering);
    EXPECT_EQ(state.recordStage, SendStage::Nothing);
}
