#include "dialogues/Dialogue1650.h"

#include "common/AwCommText.h"
#include "common/Clock.h"
#include "common/FixedReply.h"
#include "common/Form.h"
#include "common/Logging.h"
#include "common/RunContext.h"
#include "common/RuntimeError.h"
#include "common/Text.h"
#include "dialogues/CommCycle.h"
#include "dialogues/LinkRules.h"
#include "dialogues/OrderPolls.h"
#include "dialogues/PieceReaders.h"
#include "edits/MdlEdit016.h"
#include "orders/OrderIntake.h"
#include "orders/OrderLookups.h"

#include <array>
#include <cstdint>

using namespace Qt::StringLiterals;

namespace orbline {

namespace {

enum class MessageKind { Result, Query, Other };

MessageKind KindOf(const QString& message) {
    const QString kind = Mid(message, 2, 1);
    if (kind == u"D"_s) return MessageKind::Result;
    if (kind == u"R"_s) return MessageKind::Query;
    return MessageKind::Other;
}

// This dialogue does not ask whether the folder exists before it counts.
constexpr OrderPoller kPollers[] = {{&RunContext::OrderPath, 1000, &TakeOrders1650}};

void SendReply(const QString& query) {
    const QString stamp = NowText(u"YYMMDDHHMM"_s);
    QString kana;
    QString tests;
    LookupOrder1650(QueryKey1650(query), kana, tests, u"1650"_s);
    // The reply must not go out in another mode when the operator has changed the list.
    Form().comboModeW.position = 0;
    Ctx().SendBytes = TextToHexDump(QueryReply1650(query, stamp, tests)).toLatin1();
    SendFixedReply(FixedReply::Prepared);
}

void Answer(const QString& message) {
    switch (KindOf(message)) {
        case MessageKind::Result:
            SendFixedReply(FixedReply::Ack);
            LogEvent(u"測定結果受信完了(Edit) -- "_s, u"測定結果受信完了(Edit) -- "_s,
                     LogForm::Full);
            EditResult1650(message);
            return;
        case MessageKind::Query:
            SendFixedReply(FixedReply::Ack);
            SendReply(message);
            LogEvent(u"問合情報受信完了(Edit) -- "_s, u"問合情報受信完了(Edit) -- "_s,
                     LogForm::Full);
            return;
        case MessageKind::Other:
            SendFixedReply(FixedReply::Nak);
            return;
    }
}

}  // namespace

QString QueryKey1650(const QString& query) {
    return Trim(Mid(query, 27, 15));
}

QString QueryReply1650(const QString& query, const QString& stamp, const QString& tests) {
    const QString blank = u" "_s;
    return blank + u"S2210101U"_s + stamp + PadLeftFixed(Mid(query, 21, 4), 4, blank) +
           PadLeftFixed(Mid(query, 25, 2), 2, blank) + PadLeftFixed(Mid(query, 27, 15), 15, blank) +
           u"C"_s + RepeatChar(11, blank) +
           (tests.isEmpty() ? PadLeftFixed(QString(), 45, blank) : tests) + blank;
}

void BeginCommLoop1650() {
    JoinToEnd joiner{ctl::ETX};
    std::array<std::int16_t, std::size(kPollers)> pollCounts{};
    while (Form().Connected) {
        EndSessionIfPortGone();
        PollOrders(kPollers, pollCounts);
        if (!NextCycleHasBytes()) continue;
        ErasePaneArrays();
        const std::optional<QString> message = Join(joiner, ReadText1(Form().comm()));
        if (!message) continue;
        Ctx().ReceiveBuffer.checked(0) = *message;
        // A step that fails is passed over; the polling goes on.
        PassOver([&] { Answer(*message); });
    }
}

}  // namespace orbline
