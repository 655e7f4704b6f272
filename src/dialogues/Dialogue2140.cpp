#include "dialogues/Dialogue2140.h"

#include "common/AnsiCodec.h"
#include "common/Clock.h"
#include "common/Logging.h"
#include "common/RunContext.h"
#include "common/Text.h"
#include "dialogues/ChemistryLoop.h"
#include "dialogues/LinkRules.h"
#include "orders/OrderLookups.h"

using namespace Qt::StringLiterals;

namespace orbline {

namespace {

void Slog(const QString& text) {
    SlogOut(text, InstrumentCodeNumber(), NowText(u"YYYYMMDDHHMMSS"_s), 1);
}

void ExchangeOrder(const QString& inquiry, ChemistryFrames& frames) {
    LogTextFull(u"オーダデータ受信(SPE) -- "_s);
    frames.put(0, inquiry);
    Slog(inquiry);
    const std::int16_t code = BuildOrderReply2140(frames);
    if (code != 0) {
        SendFixedReply(FixedReply::Negative);
        LogTextFull(u"オーダデータ送信エラー CD=("_s + QString::number(code) + u") "_s);
        return;
    }
    const QString reply = frames.get(1).value_or(QString());
    Slog(reply);
    Ctx().SendBytes = OrderReplyHex2140(reply).toLatin1();
    SendFixedReply(FixedReply::Prepared);
    LogTextFull(u"オーダデータ送信(SPE) -- "_s);
}

constexpr ChemistryDialogue kDialogue2140{
    .noStxReply = FixedReply::Negative,
    .dataFrameLog = DataFrameLog::FirstOfMessage,
    .slogsDataFrames = false,
    .inquiry = &ExchangeOrder,
    .edit = &EditResult2140,
};

}  // namespace

std::int16_t BuildOrderReply2140(ChemistryFrames& frames) {
    const QString inquiry = frames.get(0).value_or(QString());
    Slog(inquiry);
    RunContext& c = Ctx();
    c.SampleId = Trim(Mid(inquiry, 15, 13));
    if (c.SampleId.isEmpty()) return 1;
    QString items;
    QString mappedCount;
    const std::int16_t code = LookupOrder2140(c.SampleId, u"2140"_s, items, mappedCount);
    // The reply that is sent always says 88; "  0" marks a reply that never goes out. A message
    // still being collected loses its first frame here, as the instrument's link always has.
    frames.put(1, Mid(inquiry, 2, 41) + (code == 0 ? u" 88"_s : u"  0"_s) + items);
    return code;
}

QString OrderReplyHex2140(const QString& replyText) {
    const qsizetype bytes = EncodeAnsi(replyText).size();
    QString hex = u"02 "_s;
    for (qsizetype i = 0; i < bytes; ++i)
        hex += i < replyText.size() ? CharToHexDump(replyText.at(i)) : u"20 "_s;
    return hex + u"03 "_s;
}

void BeginCommLoop2140() {
    RunChemistryLoop(kDialogue2140);
}

}  // namespace orbline
