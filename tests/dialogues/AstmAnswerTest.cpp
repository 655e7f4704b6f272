// The answer plan of the frame dialogues where the line does not show it; the plan as a whole
// runs over the line in the Astm scenarios.

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

}  // namespace

// The plan's other steps go over the line in Astm0980Test, Astm1160Test and Astm1190Test; here
// what the bytes on the line do not show: a refused patient record is looked up again, the
// order record goes out of the hexadecimal mode, and where the counted cut begins.
TEST(AstmAnswer, ARefusedPatientIsLookedUpAgainAndTheOrderLeavesTheHexMode) {
    Answer a{.shape = {.retry = RetryRule::RepeatFrame}};
    BeginAnswer(a.state);
    a.reply(kAck);
    a.reply(kAck);
    a.looked(u"T"_s);
    EXPECT_EQ(a.reply(kNak), PlanActions{RunLookup{}});
    EXPECT_EQ(a.looked(u"U"_s), Frame(u"3P|U@"_s, FrameEnd::Etx, true));
    EXPECT_EQ(a.reply(kAck), Frame(u"4O|xxxxxx@"_s, FrameEnd::Etx, false));

    const QString order = Records(500)(RecordKind::Order, u"3"_s, {});
    EXPECT_FALSE(NeedsTwoFrames(order.left(235), kCountedLongRecord));
    EXPECT_TRUE(NeedsTwoFrames(order.left(236), kCountedLongRecord));
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
