#include "edits/MdlEdit016.h"

#include "common/Clock.h"
#include "common/Logging.h"
#include "common/Numbers.h"
#include "common/ResultFile.h"
#include "common/RunContext.h"
#include "common/RuntimeError.h"
#include "common/Text.h"
#include "edits/ResultDelivery.h"
#include "tables/ItemTables.h"

using namespace Qt::StringLiterals;

namespace orbline {

namespace {

// A result slot: code, value and flag.
constexpr qsizetype kFirstSlot = 54;
constexpr qsizetype kSlotLength = 9;

struct Judgement {
    QString flag;
    QString comment;
};

Judgement JudgementOf(const QString& slotFlag) {
    const QString flag = Trim(slotFlag);
    if (flag == u"+"_s) return {u"H"_s, u"上下限管理値超"_s};
    if (flag == u">"_s) return {u"H"_s, u"レポートリミット上限"_s};
    if (flag == u"-"_s) return {u"L"_s, u"上下限管理値未満"_s};
    if (flag == u"<"_s) return {u"L"_s, u"レポートリミット下限"_s};
    if (flag == u"!"_s) return {QString(), u"希釈倍率変更測定による凝固時間"_s};
    if (flag == u"*"_s) return {QString(), u"測定エラー時、または、平均データの乖離データ発生時"_s};
    return {QString(), flag};
}

const ResultItem1650* FindItem(const QString& resultCode) {
    for (const ResultItem1650& item : ResultItems1650())
        if (item.resultCode == resultCode) return &item;
    return nullptr;
}

// The instrument sends no decimal point: a known item's value gets its decimals by moving the
// point in the text, so no digit is lost to binary arithmetic. Unknown items stay as sent.
QString SlotValue(const QString& sent, const ResultItem1650* item) {
    QString value = sent;
    if (item && IsNumeric(value)) {
        const QString decimals = QString::number(item->decimals);
        value = FormatNumber(PlainDecimalText(value) + u"E-"_s + decimals,
                             u"#0."_s + QString(item->decimals, u'0'));
    }
    return FormatOwnDecimals(value);
}

QString SampleIdOf(const QString& message, const SampleRule& rule) {
    const QString taken = Trim(Mid(message, 27, 15)).remove(u'-');
    return ApplyIdEntryRule(SampleNumberAsRead(taken), rule);
}

}  // namespace

Edit1650 ResultLines1650(const QString& message, const EditSettings& settings) {
    Edit1650 edit;
    const QString tail =
        u","_s + settings.instrumentCode + u","_s + settings.instrumentName + u"\r\n"_s;
    if (message.isEmpty()) {
        edit.lines = u"ERROR:受信データなし。"_s + tail;
        return edit;
    }
    const QString kind = Mid(message, 2, 1);
    if (kind != u"D"_s) {
        edit.lines = u"ERROR:テキスト区分エラー1。 "_s + kind + tail;
        return edit;
    }
    ResultFields fields{.KensaDate = u"20"_s + Mid(message, 11, 6),
                        .KensaTime = Mid(message, 17, 4) + u"00"_s,
                        .RunMark = settings.runMarkDefault,
                        .SampleId = SampleIdOf(message, settings.sampleRule),
                        .InstrumentCode = settings.instrumentCode,
                        .InstrumentName = settings.instrumentName};
    edit.sampleId = fields.SampleId;
    // The ETX counts as text, and a slot may end up to two characters past it.
    const qsizetype allowedEnd = message.size() + 2;
    qsizetype at = kFirstSlot;
    for (int slot = 0; slot < kMaxSlots1650 && at + kSlotLength <= allowedEnd;
         ++slot, at += kSlotLength) {
        const QString code = Mid(message, at, 3);
        const ResultItem1650* item = FindItem(code);
        fields.ItemCode = item ? item->code.toString() : code;
        fields.ItemName = item ? item->name.toString() : code;
        fields.ResultUnit = item ? item->unit.toString() : QString();
        fields.ResultValue = SlotValue(Mid(message, at + 3, 5), item);
        const Judgement judgement = JudgementOf(Mid(message, at + 8, 1));
        fields.JudgeFlag = judgement.flag;
        fields.ResultComment = judgement.comment;
        edit.lines += ResultRecordLine(fields) + u"\r\n"_s;
        edit.recordBuilt = true;
    }
    return edit;
}

void EditResult1650(const QString& message) {
    try {
        RunContext& c = Ctx();
        SlogOut(message, InstrumentCodeNumber(), NowText(u"YYYYMMDDHHMMSS"_s), 1);
        const EditSettings settings = EditSettingsFromContext();
        const Edit1650 edit = ResultLines1650(message, settings);
        // An error line leaves the log lines with the sample of the message before.
        if (edit.sampleId) {
            c.SampleId = *edit.sampleId;
            c.RunMark = edit.recordBuilt ? settings.runMarkDefault : u"0"_s;
        }
        WriteAndDeliverOrThrow(edit.lines);
    } catch (const RuntimeError& error) {
        ErrorExit(error.description());
    }
}

}  // namespace orbline
