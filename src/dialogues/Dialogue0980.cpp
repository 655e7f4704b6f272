#include "dialogues/Dialogue0980.h"

#include "common/Text.h"
#include "dialogues/AstmLoop.h"
#include "orders/OrderIntake.h"
#include "orders/OrderLookups.h"

using namespace Qt::StringLiterals;

namespace orbline {

namespace {

struct Memory0980 final : AstmMemory {
    Query0980 query;
    // The header fields the answer echoes: the last ones a message carried.
    Echo0980 echo;
};

Memory0980& Memory() {
    return MemoryOf<Memory0980>();
}

bool Edit0980(std::int16_t pieceCount) {
    const Message0980 message = EditResult0980(pieceCount);
    Memory0980& memory = Memory();
    if (message.echoSender) memory.echo.sender = *message.echoSender;
    if (message.echoVersion) memory.echo.version = *message.echoVersion;
    if (!message.query) return false;
    memory.query = *message.query;
    return true;
}

OrderAnswer Lookup0980(const OrderAnswer& previous) {
    OrderAnswer answer = previous;
    // The lookup leaves these as they are when no order is found: a specimen without an order
    // must not carry the patient of the query before.
    answer.patientId.clear();
    answer.sex.clear();
    // The lookup takes the "-" out of the key; the order record echoes the key as it came.
    QString key = Trim(Memory().query.key);
    LookupOrder0980(key, answer.kana, answer.test, u"0980"_s, answer.patientId, answer.sex);
    return answer;
}

QString Record(RecordKind kind, const QString& frameNo, const OrderAnswer& answer) {
    const Memory0980& memory = Memory();
    return Record0980(memory.query, memory.echo, kind, frameNo, answer);
}

constexpr OrderPoller kPollers[] = {{&RunContext::OrderPath, 1000, &TakeOrders0980}};

constexpr AstmAnswerShape kShape{.recordEnd = FrameEnd::Etb,
                                 .lookupAt = LookupPoint::BeforePatient,
                                 .retry = RetryRule::RepeatFrame};

const AstmDialogue kDialogue0980{
    .folder = u"c980",
    .prefix = u"c980",
    .memory = &AstmMemoryOf<Memory0980>,
    .pollers = kPollers,
    .checkReceive = &CheckReceive0980,
    .checkReply = &CheckReply0980,
    .edit = &Edit0980,
    .lookup = &Lookup0980,
    .plan = kRecordPlan<kShape, &Record>,
};

}  // namespace

QString Record0980(const Query0980& query, const Echo0980& echo, RecordKind kind,
                   const QString& frameNo, const OrderAnswer& answer) {
    switch (kind) {
        case RecordKind::Header:
            return frameNo + u"H|$^&|||"_s + echo.sender + u"|||||||||"_s + echo.version + u"@"_s;
        case RecordKind::RepeatedHeader:
            // A blank behind the sender: the instrument has always seen a repeated header so.
            return frameNo + u"H|$^&|||"_s + echo.sender + u" |||||||||"_s + echo.version + u"@"_s;
        case RecordKind::Patient:
            return frameNo + u"P|1@"_s;
        case RecordKind::Order:
            return frameNo + u"O|1|"_s + query.key + u"^"_s + query.second + u"^"_s + query.third +
                   u"||^^^"_s + answer.test + u"|R||||||||||@"_s;
        case RecordKind::Terminator:
            return frameNo + u"L|1|N@"_s;
    }
    return {};
}

void BeginCommLoop0980() {
    RunAstmLoop(kDialogue0980);
}

}  // namespace orbline
