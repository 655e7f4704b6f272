#include "dialogues/Dialogue0980.h"

#include "common/Form.h"
#include "common/Text.h"
#include "dialogues/AstmLoop.h"
#include "edits/MdlEdit009.h"
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

QString Patient0980(const AstmLoopState& s) {
    return FrameNoText(s) + u"P|1@"_s;
}

QString Terminator0980(const AstmLoopState& s) {
    return FrameNoText(s) + u"L|1|N@"_s;
}

void Lookup0980(AstmLoopState& s) {
    Form_TesvaneMain& f = Form();
    f.QuerySampleId = Trim(Query(20));
    s.answer.patientId.clear();
    s.answer.sex.clear();
    // The lookup takes the "-" out of the key; the order record echoes the key as it came.
    LookupOrder0980(f.QuerySampleId, s.answer.kana, s.answer.test, u"0980"_s, s.answer.patientId,
                    s.answer.sex);
}

void Edit0980(AstmLoopState& s) {
    EditResult0980(s.PieceCount);
}

const AstmDialogue kDialogue0980{
    .folder = u"c980",
    .prefix = u"c980",
    .queryMark = &RunContext::QueryMark0980,
    .pollEvery = 1000,
    .takeOrders = &TakeOrders0980,
    .checkReceive = &CheckReceive0980,
    .checkReply = &CheckReply0980,
    .edit = &Edit0980,
    .ackEotPiece = false,
    .header = &Header0980,
    .patient = &Patient0980,
    .order = &Order0980,
    .terminator = &Terminator0980,
    .recordEnd = FrameEnd::Etb,
    .lookup = &Lookup0980,
    .lookupAt = LookupPoint::BeforePatient,
    .retry = RetryRule::RepeatFrame,
};

}  // namespace

QString Header0980(const AstmLoopState& s, bool repeated) {
    const RunContext& c = Ctx();
    // A repeated header has a blank behind the sender: the instrument has always seen it so.
    return FrameNoText(s) + u"H|$^&|||"_s + c.EchoSender +
           (repeated ? u" |||||||||"_s : u"|||||||||"_s) + c.EchoVersion + u"@"_s;
}

QString Order0980(const AstmLoopState& s) {
    return FrameNoText(s) + u"O|1|"_s + Query(20) + u"^"_s + Query(23) + u"^"_s + Query(22) +
           u"||^^^"_s + s.answer.test + u"|R||||||||||@"_s;
}

void BeginCommLoop0980() {
    RunAstmLoop(kDialogue0980);
}

}  // namespace orbline
