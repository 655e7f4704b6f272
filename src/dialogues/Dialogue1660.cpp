#include "dialogues/Dialogue1660.h"

#include "common/Text.h"
#include "dialogues/AstmLoop.h"
#include "dialogues/CobasAnswer.h"
#include "orders/OrderIntake.h"
#include "orders/OrderLookups.h"

using namespace Qt::StringLiterals;

namespace orbline {

namespace {

struct Memory1660 final : AstmMemory {
    CobasQuery query;
};

Memory1660& Memory() {
    return MemoryOf<Memory1660>();
}

bool Edit1660(std::int16_t pieceCount) {
    const std::optional<CobasQuery> query = EditResult1660(pieceCount);
    if (!query) return false;
    Memory().query = *query;
    return true;
}

OrderAnswer Lookup1660(const OrderAnswer&) {
    OrderAnswer answer;
    LookupOrder1660(Memory().query.sampleId, answer.kana, answer.test, u"1660"_s);
    return answer;
}

constexpr OrderPoller kPollers[] = {
    {&RunContext::OrderPath, 1000, &TakeOrders1660, true},
    {&RunContext::OrderPath2, 1000, &TakeOrders1660_2, true},
};

const AstmDialogue kDialogue1660{
    .folder = u"c1660",
    .prefix = u"c1660",
    .memory = &AstmMemoryOf<Memory1660>,
    .pollers = kPollers,
    .readWaitMs = 10,
    .framing = Framing::JoinedToCrLf,
    .checkReceive = &CheckReceive1660,
    .checkReply = &CheckReply1660,
    .edit = &Edit1660,
    .lookup = &Lookup1660,
    .plan = {&AnswerReply1660,
             [](AstmAnswerState& state, const OrderAnswer& answer) {
                 return AnswerLookup1660(state, ReplyText1660(Memory().query, answer));
             }},
    .logsDetail = true,
};

}  // namespace

QString ReplyText1660(const CobasQuery& query, const OrderAnswer& answer) {
    const QString id =
        query.sampleId.isEmpty() ? QString() : PadLeftFixed(query.sampleId, 22, u" "_s);
    const auto& p = query.places;
    // Any "891" in the tests, also inside a longer code, marks the order.
    const QString kind = answer.test.contains(u"891"_s) ? u"4"_s : u"1"_s;
    return u"1H|\\^&|||RODEO|||||COBAS^1|TSDWN^REPLY|P|1@"_s +  //
           u"P|1|||||||U||||||0^Y@"_s +                         //
           u"O|1|"_s + id + u"|"_s + p[0] + u"^"_s + p[1] + u"^"_s + p[2] + u"^^"_s + p[3] +
           u"^"_s + p[4] + u"|"_s + answer.test + u"|R||"_s + u"||||A||||"_s + kind +
           u"||||||||||O@"_s +                         //
           u"C|1|I|"_s + answer.kana + u"^^^^|G@"_s +  //
           u"L|1|N@"_s;
}

void BeginCommLoop1660() {
    RunAstmLoop(kDialogue1660);
}

}  // namespace orbline
