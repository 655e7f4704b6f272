#include "dialogues/Dialogue1160.h"

#include "common/Form.h"
#include "dialogues/AstmLoop.h"
#include "edits/MdlEdit011.h"
#include "orders/OrderLookups.h"

using namespace Qt::StringLiterals;

namespace orbline {

namespace {

QString FrameNoText(const AstmLoopState& s) {
    return QString::number(s.FrameNo);
}

QString Header1160(const AstmLoopState& s, bool /*repeated: a refused frame is not repeated*/) {
    return FrameNoText(s) + u"H|\\^&@"_s;
}

QString Patient1160(const AstmLoopState& s) {
    return FrameNoText(s) + u"P|1||||^|||@"_s;
}

QString Terminator1160(const AstmLoopState& s) {
    return FrameNoText(s) + u"L|1@"_s;
}

void Lookup1160(AstmLoopState& s) {
    Form().QuerySampleId = s.QueryKey;
    s.answer.test.clear();
    LookupOrder1160(Form().QuerySampleId, u"1160"_s, s.answer.test);
}

void Edit1160(AstmLoopState& s) {
    // The flag never outlives its message here.
    s.QueryKey.clear();
    s.EotFlag = 0;
    s.QueryKey = EditResult1160(s.PieceCount).queryKey.value_or(QString());
}

const AstmDialogue kDialogue1160{
    .folder = u"c1160",
    .prefix = u"c1160",
    .queryMark = &RunContext::QueryMark1160,
    .clearsMarkOnEntry = true,
    .pollEvery = 0,
    .takeOrders = nullptr,
    .checkReceive = &CheckReceive1160,
    .checkReply = &CheckReply1160,
    .edit = &Edit1160,
    .ackEotPiece = false,
    .header = &Header1160,
    .patient = &Patient1160,
    .order = &Order1160,
    .terminator = &Terminator1160,
    .recordEnd = FrameEnd::Etx,
    .lookup = &Lookup1160,
    .lookupAt = LookupPoint::AfterHeader,
    .retry = RetryRule::AskAgain,
};

}  // namespace

QString Order1160(const AstmLoopState& s) {
    return FrameNoText(s) + u"O|1|"_s + Form().QuerySampleId + u"||"_s + s.answer.test +
           u"|||||||||||Sp.1@"_s;
}

void BeginCommLoop1160() {
    RunAstmLoop(kDialogue1160);
}

}  // namespace orbline
