#include "dialogues/Dialogue1190.h"

#include "common/Clock.h"
#include "common/Text.h"
#include "dialogues/AstmLoop.h"
#include "orders/OrderIntake.h"
#include "orders/OrderLookups.h"

using namespace Qt::StringLiterals;

namespace orbline {

namespace {

struct Memory1190 final : AstmMemory {
    Query1190 query;
};

Memory1190& Memory() {
    return MemoryOf<Memory1190>();
}

bool Edit1190(std::int16_t pieceCount) {
    const Message1190 message = EditResult1190(pieceCount);
    if (!message.query) return false;
    Memory().query = *message.query;
    return true;
}

OrderAnswer Lookup1190(const OrderAnswer& previous) {
    OrderAnswer answer = previous;
    // Cleared first, so that a specimen without an order never carries the patient of the
    // query before.
    answer.patientId.clear();
    answer.sex.clear();
    answer.dateTime = NowText(u"YYYYMMDDHHMMSS"_s);
    LookupOrder1190(Trim(Memory().query.key), answer.kana, answer.test, u"1190"_s, answer.patientId,
                    answer.sex);
    return answer;
}

QString Record(RecordKind kind, const QString& frameNo, const OrderAnswer& answer) {
    return Record1190(Memory().query, kind, frameNo, answer);
}

// The sex code of an order as the record writes it.
QString SexLetter(const QString& code) {
    if (code == u"1"_s) return u"M"_s;
    if (code == u"2"_s) return u"F"_s;
    return u"U"_s;
}

constexpr OrderPoller kPollers[] = {{&RunContext::OrderPath, 100, &TakeOrders1190}};

constexpr AstmAnswerShape kShape{.recordEnd = FrameEnd::Etx,
                                 .lookupAt = LookupPoint::BeforePatient,
                                 .retry = RetryRule::AskAgain};

const AstmDialogue kDialogue1190{
    .folder = u"c1190",
    .prefix = u"c1190",
    .memory = &AstmMemoryOf<Memory1190>,
    .pollers = kPollers,
    .checkReceive = &CheckReceive1190,
    .checkReply = &CheckReply1190,
    .ackEotPiece = true,
    .edit = &Edit1190,
    .lookup = &Lookup1190,
    .plan = kRecordPlan<kShape, &Record>,
};

}  // namespace

QString Record1190(const Query1190& query, RecordKind kind, const QString& frameNo,
                   const OrderAnswer& answer) {
    switch (kind) {
        case RecordKind::Header:
        case RecordKind::RepeatedHeader:  // a refused frame is not repeated here
            return frameNo + u"H|\\^&|||||||||||E1394-97@"_s;
        case RecordKind::Patient: {
            // The kana name splits at its first blank into family and given name.
            const QString& kana = answer.kana;
            const qsizetype blank = InStr(kana, u" "_s);
            const QString first = blank == 0 ? kana : Left(kana, blank - 1);
            const QString second = blank == 0 ? QString() : Mid(kana, blank + 1);
            return frameNo + u"P|1|||"_s + answer.patientId + u"|^"_s + first + u"^"_s + second +
                   u"|||"_s + SexLetter(answer.sex) + u"|||||^||||||||||||@"_s;
        }
        case RecordKind::Order:
            return frameNo + u"O|1|"_s + query.first + u"^"_s + query.second + u"^"_s +
                   query.third + u"^B||"_s + answer.test + u"||"_s + answer.dateTime +
                   u"|||||N||||||||||||||Q@"_s;
        case RecordKind::Terminator:
            return frameNo + u"L|1|N@"_s;
    }
    return {};
}

void BeginCommLoop1190() {
    RunAstmLoop(kDialogue1190);
}

}  // namespace orbline
