// The answer plan of the frame dialogues, reply by reply, from the classes of the replies.

#include "dialogues/AstmAnswer.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace orbline;

namespace {

constexpr auto kAck = ReplyClass::NextRecord;
constexpr auto kNak = ReplyClass::NotAck;

// Records that show their kind and frame number; the order record is as long as asked.
struct Records {
    qsizetype orderLength = 10;
    RecordTexts texts() const {
        return [length = orderLength](RecordKind kind, const QString& no, const OrderAnswer& a) {
            switch (kind) {
                case RecordKind::Header:
                    return no + u"H@"_s;
                case RecordKind::RepeatedHeader:
                    return no + u"H @"_s;
                case RecordKind::Patient:
                    return no + u"P|"_s + a.test + u"@"_s;
                case RecordKind::Order:
                    return (no + u"O|"_s).leftJustified(length - 1, u'x') + u"@"_s;
                case RecordKind::Terminator:
                    return no + u"L@"_s;
            }
            return QString();
        };
    }
};

struct Answer {
    AstmAnswerShape shape{};
    RecordTexts records = Records{}.texts();
    AstmAnswerState state{};

    PlanActions begin() { return BeginAnswer(state); }
    PlanActions reply(ReplyClass r) {
        return AnswerReply(shape, records, state, r == kAck ? Ack() : r);
    }
    PlanActions looked(const QString& test) {
        return AnswerLookup(shape, records, state, OrderAnswer{.test = test});
    }
    // The class an ACK gets in the stage the plan stands in, as the classifiers give it.
    ReplyClass Ack() const {
        switch (state.stage) {
            case SendStage::FirstOfTwo:
                return ReplyClass::SecondPart;
            case SendStage::Terminator:
                return ReplyClass::TerminatorTaken;
            case SendStage::Nothing:
            case SendStage::Header:
            case SendStage::Patient:
            case SendStage::Order:
                return ReplyClass::NextRecord;
        }
        return ReplyClass::NextRecord;
    }
};

PlanActions Frame(const QString& text, FrameEnd end, bool hexMode) {
    return {SendRecord{text, end, hexMode}};
}

const PlanActions kEot{SendControl{Control::Eot}};
const PlanActions kEnq{SendControl{Control::Enq}};
const PlanActions kNothing{};
const LogPair kCompleted{u"問合情報送信完了(Edit/ETB) -- "_s, u"問合情報送信完了(Edit/ETB) -- "_s,
                         LogForm::Full};

}  // namespace

TEST(AstmAnswer, A0980AnswerRunsHeaderPatientOrderTerminatorThenEot) {
    Answer a{.shape = {.recordEnd = FrameEnd::Etb, .retry = RetryRule::RepeatFrame}};
    EXPECT_EQ(a.begin(), (PlanActions{SendControl{Control::Enq},
                                      LogPair{u"オーダデータ要求送信中 --  "_s,
                                              u"データデータ要求送信中 -- "_s, LogForm::Short}}));
    EXPECT_TRUE(a.state.answering);
    EXPECT_EQ(a.reply(kAck), Frame(u"1H@"_s, FrameEnd::Etb, true));
    // The lookup runs on the ACK to the header, before the patient record.
    EXPECT_EQ(a.reply(kAck), PlanActions{RunLookup{}});
    EXPECT_EQ(a.looked(u"HbA1c"_s), Frame(u"2P|HbA1c@"_s, FrameEnd::Etb, true));
    EXPECT_EQ(a.reply(kAck), Frame(u"3O|xxxxxx@"_s, FrameEnd::Etb, false));
    EXPECT_EQ(a.reply(kAck), Frame(u"4L@"_s, FrameEnd::Etx, true));
    EXPECT_EQ(a.reply(kAck), (PlanActions{SendControl{Control::Eot}, kCompleted}));
    EXPECT_FALSE(a.state.answering);
    EXPECT_EQ(a.state.frameNo, 0);
}

TEST(AstmAnswer, ARepeatingInstrumentGetsTheFrameAgainWithTheNextNumber) {
    Answer a{.shape = {.recordEnd = FrameEnd::Etb, .retry = RetryRule::RepeatFrame}};
    a.begin();
    // A refused ENQ sends nothing.
    EXPECT_EQ(a.reply(kNak), kNothing);
    EXPECT_EQ(a.reply(kAck), Frame(u"1H@"_s, FrameEnd::Etb, true));
    EXPECT_EQ(a.reply(kNak), Frame(u"2H @"_s, FrameEnd::Etb, true));
    // The third refusal of the phase ends it, ACKs between them or not, without a log line.
    EXPECT_EQ(a.reply(kAck), PlanActions{RunLookup{}});
    EXPECT_EQ(a.looked(QString()), Frame(u"3P|@"_s, FrameEnd::Etb, true));
    EXPECT_EQ(a.reply(kNak), kEot);
    EXPECT_FALSE(a.state.answering);
    EXPECT_EQ(a.state.stage, SendStage::Nothing);
}

TEST(AstmAnswer, ARefusedPatientIsLookedUpAgainAndARefusedFirstPartSendsNothing) {
    Answer a{.shape = {.retry = RetryRule::RepeatFrame},
             .records = Records{.orderLength = 300}.texts()};
    a.begin();
    a.reply(kAck);
    a.reply(kAck);
    a.looked(u"T"_s);
    EXPECT_EQ(a.reply(kNak), PlanActions{RunLookup{}});
    EXPECT_EQ(a.looked(u"U"_s), Frame(u"3P|U@"_s, FrameEnd::Etx, true));
    const PlanActions first = a.reply(kAck);
    ASSERT_EQ(first.size(), 1u);
    EXPECT_EQ(std::get<SendRecord>(first[0]).text.size(), 235);
    EXPECT_EQ(a.reply(kNak), kNothing);
    EXPECT_EQ(a.state.stage, SendStage::FirstOfTwo);
}

TEST(AstmAnswer, AnAskingInstrumentGetsEnqAndLosesTheRefusedFrame) {
    Answer a;  // 1190: lookup before the patient, ENQ after a refusal
    a.begin();
    a.reply(kAck);
    EXPECT_EQ(a.reply(kAck), PlanActions{RunLookup{}});
    a.looked(u"WBC"_s);
    EXPECT_EQ(a.reply(kNak), kEnq);
    EXPECT_EQ(a.state.stage, SendStage::Patient);
    // The ACK to the ENQ counts for the patient record: the order record follows.
    EXPECT_EQ(a.reply(kAck), Frame(u"3O|xxxxxx@"_s, FrameEnd::Etx, false));
    EXPECT_EQ(a.reply(kNak), kEnq);
    EXPECT_EQ(a.reply(ReplyClass::Leave), kEot);
}

TEST(AstmAnswer, WithTheLookupAfterTheHeaderNoOrderMeansHeaderAndTerminatorAlone) {
    Answer a{.shape = {.lookupAt = LookupPoint::AfterHeader}};
    a.begin();
    EXPECT_EQ(a.reply(kAck), (PlanActions{SendRecord{u"1H@"_s, FrameEnd::Etx, true}, RunLookup{}}));
    EXPECT_EQ(a.looked(QString()), kNothing);
    EXPECT_EQ(a.reply(kAck), Frame(u"2L@"_s, FrameEnd::Etx, true));

    Answer withOrder{.shape = {.lookupAt = LookupPoint::AfterHeader}};
    withOrder.begin();
    withOrder.reply(kAck);
    withOrder.looked(u"110"_s);
    EXPECT_EQ(withOrder.reply(kAck), Frame(u"2P|110@"_s, FrameEnd::Etx, true));
}

TEST(AstmAnswer, ALongOrderRecordIsCutByTheRuleOfItsInstrument) {
    // Counted: from 236 characters, 235 in the first frame, the second under its own number.
    Answer counted{.records = Records{.orderLength = 500}.texts()};
    counted.state.stage = SendStage::Patient;
    counted.state.frameNo = 2;
    const QString order = Records{.orderLength = 500}.texts()(RecordKind::Order, u"3"_s, {});
    EXPECT_EQ(counted.reply(kAck), Frame(order.left(235), FrameEnd::Etb, false));
    EXPECT_EQ(counted.reply(kAck), Frame(u"4"_s + order.mid(235, 240), FrameEnd::Etx, false));
    EXPECT_EQ(counted.reply(kAck), Frame(u"5L@"_s, FrameEnd::Etx, true));
    EXPECT_FALSE(NeedsTwoFrames(order.left(235), kCountedLongRecord));
    EXPECT_TRUE(NeedsTwoFrames(order.left(236), kCountedLongRecord));
    Answer exactly{.records = Records{.orderLength = 235}.texts()};
    exactly.state.stage = SendStage::Patient;
    EXPECT_EQ(std::get<SendRecord>(exactly.reply(kAck)[0]).end, FrameEnd::Etx);

    // Fixed: from 240, 237 in the first frame, "2" before characters 238 to 477.
    EXPECT_FALSE(NeedsTwoFrames(order.left(239), kFixedLongRecord));
    EXPECT_TRUE(NeedsTwoFrames(order.left(240), kFixedLongRecord));
    EXPECT_EQ(FirstPartOf(order, kFixedLongRecord), order.left(237));
    EXPECT_EQ(SecondPartOf(order, kFixedLongRecord, 9), u"2"_s + order.mid(237, 240));
}
