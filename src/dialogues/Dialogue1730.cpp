#include "dialogues/Dialogue1730.h"

#include "common/Clock.h"
#include "dialogues/AstmLoop.h"
#include "dialogues/CobasAnswer.h"
#include "orders/OrderIntake.h"
#include "orders/OrderLookups.h"

using namespace Qt::StringLiterals;

namespace orbline {

namespace {

struct Memory1730 final : AstmMemory {
    CobasQuery query;
    QString loopStart;
};

Memory1730& Memory() {
    return MemoryOf<Memory1730>();
}

bool Edit1730(std::int16_t pieceCount) {
    const std::optional<CobasQuery> query = EditResult1730(pieceCount);
    if (!query) return false;
    Memory().query = *query;
    return true;
}

// The key is the patient's (KANJYAINFO); the kana name is not used in the answer.
OrderAnswer Lookup1730(const OrderAnswer&) {
    OrderAnswer answer;
    LookupOrder1730(Memory().query.sampleId, answer.kana, answer.test, u"1730"_s);
    return answer;
}

QString Record(RecordKind kind, const QString&, const OrderAnswer& answer) {
    const Memory1730& memory = Memory();
    return Record1730(memory.query, memory.loopStart, kind, answer);
}

constexpr OrderPoller kPollers[] = {{&RunContext::OrderPath, 1000, &TakeOrders1730}};

const AstmDialogue kDialogue1730{
    .folder = u"c1730",
    .prefix = u"c1730",
    .memory = &AstmMemoryOf<Memory1730>,
    .pollers = kPollers,
    .checkReceive = &CheckReceive1660,
    .checkReply = &CheckReply1660,
    .edit = &Edit1730,
    .lookup = &Lookup1730,
    .plan = {[](AstmAnswerState& state, ReplyClass reply) {
                 return AnswerReply1730(&Record, state, reply);
             },
             [](AstmAnswerState& state, const OrderAnswer& answer) {
                 return AnswerLookup1730(&Record, state, answer);
             }},
    .replyTraceMark = u"[Receive] ",
};

}  // namespace

QString Record1730(const CobasQuery& query, const QString& loopStart, RecordKind kind,
                   const OrderAnswer& answer) {
    const auto& p = query.places;
    switch (kind) {
        case RecordKind::Header:
        case RecordKind::RepeatedHeader:
            return u"1H|\\^&||||||||||P||@"_s;
        case RecordKind::Patient:
            return u"2P|1@"_s;
        case RecordKind::Order:
            return u"3O|1|"_s + query.sampleId + u"|"_s + p[0] + u"^"_s + p[1] + u"^"_s + p[2] +
                   u"^^"_s + p[3] + u"^"_s + p[4] + u"|"_s + answer.test + u"|R|"_s + loopStart +
                   u"|||||N||||||||||||||Q|||||@"_s;
        case RecordKind::Terminator:
            return u"4L|1|F@"_s;
    }
    return {};
}

void BeginCommLoop1730() {
    Memory().loopStart = NowText(u"YYYYMMDDHHMMSS"_s);
    RunAstmLoop(kDialogue1730);
}

}  // namespace orbline
