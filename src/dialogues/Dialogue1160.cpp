#include "dialogues/Dialogue1160.h"

#include "dialogues/AstmLoop.h"
#include "edits/MdlEdit011.h"
#include "orders/OrderLookups.h"

using namespace Qt::StringLiterals;

namespace orbline {

namespace {

struct Memory1160 final : AstmMemory {
    QString queryKey;
};

Memory1160& Memory() {
    return MemoryOf<Memory1160>();
}

bool Edit1160(std::int16_t pieceCount) {
    const Message1160 message = EditResult1160(pieceCount);
    Memory().queryKey = message.queryKey.value_or(QString());
    return message.queryKey.has_value();
}

OrderAnswer Lookup1160(const OrderAnswer& previous) {
    OrderAnswer answer = previous;
    answer.test.clear();
    LookupOrder1160(Memory().queryKey, u"1160"_s, answer.test);
    return answer;
}

QString Record(RecordKind kind, const QString& frameNo, const OrderAnswer& answer) {
    return Record1160(Memory().queryKey, kind, frameNo, answer);
}

constexpr AstmAnswerShape kShape{
    .recordEnd = FrameEnd::Etx, .lookupAt = LookupPoint::AfterHeader, .retry = RetryRule::AskAgain};

const AstmDialogue kDialogue1160{
    .folder = u"c1160",
    .prefix = u"c1160",
    .memory = &AstmMemoryOf<Memory1160>,
    .clearsMarkOnEntry = true,
    .checkReceive = &CheckReceive1160,
    .checkReply = &CheckReply1160,
    .clearsEotBeforeEdit = true,
    .edit = &Edit1160,
    .lookup = &Lookup1160,
    .plan = kRecordPlan<kShape, &Record>,
};

}  // namespace

QString Record1160(const QString& queryKey, RecordKind kind, const QString& frameNo,
                   const OrderAnswer& answer) {
    switch (kind) {
        case RecordKind::Header:
        case RecordKind::RepeatedHeader:  // a refused frame is not repeated here
            return frameNo + u"H|\\^&@"_s;
        case RecordKind::Patient:
            return frameNo + u"P|1||||^|||@"_s;
        case RecordKind::Order:
            return frameNo + u"O|1|"_s + queryKey + u"||"_s + answer.test + u"|||||||||||Sp.1@"_s;
        case RecordKind::Terminator:
            return frameNo + u"L|1@"_s;
    }
    return {};
}

void BeginCommLoop1160() {
    RunAstmLoop(kDialogue1160);
}

}  // namespace orbline
