#include "dialogues/Dialogue1190.h"

#include "common/Clock.h"
#include "common/Form.h"
#include "common/Text.h"
#include "dialogues/AstmLoop.h"
#include "edits/MdlEdit011.h"
#include "orders/OrderIntake.h"
#include "orders/OrderLookups.h"

using namespace Qt::StringLiterals;

namespace orbline {

namespace {

QString FrameNoText(const AstmLoopState& s) {
    return QString::number(s.FrameNo);
}

QString Query(qsizetype column) {
    return Ctx().RecordFields.get(0, column).value_or(QString());
}

QString Header1190(const AstmLoopState& s, bool /*repeated: a refused frame is not repeated*/) {
    return FrameNoText(s) + u"H|\\^&|||||||||||E1394-97@"_s;
}

QString Terminator1190(const AstmLoopState& s) {
    return FrameNoText(s) + u"L|1|N@"_s;
}

void Lookup1190(AstmLoopState& s) {
    Form().QuerySampleId = Trim(Query(20));
    // Cleared first, so that a specimen without an order never carries the patient of the
    // query before.
    s.answer.patientId.clear();
    s.answer.sex.clear();
    s.answer.dateTime = NowText(u"YYYYMMDDHHMMSS"_s);
    LookupOrder1190(Form().QuerySampleId, s.answer.kana, s.answer.test, u"1190"_s,
                    s.answer.patientId, s.answer.sex);
}

void Edit1190(AstmLoopState& s) {
    EditResult1190(s.PieceCount);
}

const AstmDialogue kDialogue1190{
    .folder = u"c1190",
    .prefix = u"c1190",
    .queryMark = &RunContext::QueryMark1190,
    .clearsMarkOnEntry = false,
    .pollEvery = 100,
    .takeOrders = &TakeOrders1190,
    .checkReceive = &CheckReceive1190,
    .checkReply = &CheckReply1190,
    .edit = &Edit1190,
    .ackEotPiece = true,
    .header = &Header1190,
    .patient = &Patient1190,
    .order = &Order1190,
    .terminator = &Terminator1190,
    .recordEnd = FrameEnd::Etx,
    .lookup = &Lookup1190,
    .lookupAt = LookupPoint::BeforePatient,
    .retry = RetryRule::AskAgain,
};

}  // namespace

QString Patient1190(const AstmLoopState& s) {
    // The kana name splits at its first blank into family and given name.
    const QString& kana = s.answer.kana;
    const qsizetype blank = InStr(kana, u" "_s);
    const QString first = blank == 0 ? kana : Left(kana, blank - 1);
    const QString second = blank == 0 ? QString() : Mid(kana, blank + 1);
    return FrameNoText(s) + u"P|1|||"_s + s.answer.patientId + u"|^"_s + first + u"^"_s + second +
           u"|||"_s + SexLetter(s.answer.sex) + u"|||||^||||||||||||@"_s;
}

QString Order1190(const AstmLoopState& s) {
    return FrameNoText(s) + u"O|1|"_s + Query(22) + u"^"_s + Query(23) + u"^"_s + Query(21) +
           u"^B||"_s + s.answer.test + u"||"_s + s.answer.dateTime + u"|||||N||||||||||||||Q@"_s;
}

void BeginCommLoop1190() {
    RunAstmLoop(kDialogue1190);
}

}  // namespace orbline
