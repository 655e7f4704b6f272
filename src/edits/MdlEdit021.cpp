#include "edits/MdlEdit021.h"

#include "common/Clock.h"
#include "common/Logging.h"
#include "common/Numbers.h"
#include "common/ResultFile.h"
#include "common/RunContext.h"
#include "common/RuntimeError.h"
#include "common/Text.h"
#include "edits/ResultDelivery.h"

#include <QStringView>

#include <iterator>
#include <optional>

using namespace Qt::StringLiterals;

namespace orbline {

namespace {

// Columns of a frame, from 1 at the STX.
constexpr qsizetype kIdentifier = 15;
constexpr qsizetype kMonth = 33;
constexpr qsizetype kDay = 35;
constexpr qsizetype kYear = 37;
constexpr qsizetype kTime = 39;
constexpr qsizetype kGroupCount = 49;
constexpr qsizetype kFirstGroup = 52;
constexpr qsizetype kGroupLength = 10;

// The result direction's own names: the k-th has the test code prefix + k*10. 生食 and HPAb
// stand the other way round from the built-in option rows, which the orders use; the two
// directions are kept apart on purpose.
constexpr QStringView kTestNames[] = {
    u"TP",  u"ALB",   u"T-BIL", u"D-BIL", u"LDH", u"AST",   u"ALT",   u"ALP",  u"LAP",  u"r-GTP",
    u"ChE", u"ZTT",   u"TTT",   u"T-CHO", u"TG",  u"HDL-C", u"LDL-C", u"UA",   u"BUN",  u"CRE",
    u"AMY", u"U-AMY", u"CPK",   u"Ca",    u"GLU", u"SAA",   u"CRP",   u"生食", u"HPAb", u"Na",
    u"K",   u"Cl",    u"L",     u"H",     u"I",   u"A/G",   u"AI"};
static_assert(std::size(kTestNames) == 37);

struct MarkText {
    QStringView mark;
    QStringView text;
};

constexpr MarkText kMarkTexts[] = {
    {u"A", u"ADC異常"},
    {u"Q", u"セルブランク異常"},
    {u"V", u"サンプル不足"},
    {u"T", u"試薬不足"},
    {u"Z", u"吸光度オーバー"},
    {u"P", u"PROZONEエラー"},
    {u"I", u"反応限界全点オーバー"},
    {u"J", u"反応限界1点を除いてオーバー"},
    {u"K", u"反応限界2～3点を除いてオーバー"},
    {u"W", u"9点以上のリニアリティ異常"},
    {u"F", u"8点以下のリニアリティ異常"},
    {u"H", u"第1標準液吸光度異常"},
    {u"U", u"DUPLICATEエラー"},
    {u"S", u"STDエラー"},
    {u"Y", u"SENSITIVエラー"},
    {u"B", u"CALIBエラー"},
    {u"G", u"収束エラー"},
    {u"N", u"ノイズエラー"},
    {u"L", u"レベルエラー"},
    {u"E", u"スロープ異常"},
    {u"R", u"プリペア異常"},
    {u"D", u"内標濃度異常"},
    {u"&", u"サンプル値異常"},
    {u"C", u"項目間補正エラー"},
    {u"M", u"項目間補正不能エラー"},
    {u"$", u"テクニカルリミット値オーバー"},
    {u"@", u"偶発誤差［R－4 s］"},
    {u"#", u"系統誤差"},
    {u"+", u"QCエラー1"},
    {u"%", u"計算項目エラー"},
    {u"O", u"オーバーフロー"},
    {u"X", u"計算不能"},
    {u"*", u"編集済項目"},
    {u"!", u"キャリブレーション結果異常"},
    {u"=", u"リピートリミットオーバー"},
    {u"a", u"サンプル詰まり検知"},
    {u"b", u"サンプル詰まり検知レベルエラー"},
};
static_assert(std::size(kMarkTexts) == 37);

QString Field(const QString& frame, qsizetype start, qsizetype length) {
    return Trim(Mid(frame, start, length));
}

// Case-sensitive; a mark not in the table goes into the comment as it came.
QString CommentOf(const QString& mark) {
    for (const MarkText& entry : kMarkTexts)
        if (entry.mark == mark) return entry.text.toString();
    return mark;
}

std::optional<QString> ItemNameOf(const QString& number, const ChemistryItemTable& items) {
    for (qsizetype row = 1; row <= items.count; ++row)
        if (items.table.checked(row, items.keyColumn) == number)
            return items.table.checked(row, items.nameColumn);
    return std::nullopt;
}

// A name outside the list is its own code.
QString TestCodeOf(const QString& name, const QString& prefix) {
    for (qsizetype k = 1; k <= static_cast<qsizetype>(std::size(kTestNames)); ++k)
        if (kTestNames[k - 1] == name)
            return prefix + PadLeftFixed(QString::number(k * 10), 3, u"0"_s);
    return name;
}

void LogUnknownItem(const QString& number) {
    LogTextFull(u"検査名設定なし -- CD："_s + number + u" "_s);
}

void RunEdit(const ChemistryFrames& frames, std::int16_t count, const ChemistryParams& params,
             ChemistryMessage& message) {
    RunContext& c = Ctx();
    const EditSettings settings = EditSettingsFromContext();
    const QString stamp = NowText(u"YYYYMMDDHHMMSS"_s);
    for (qsizetype i = 1; i <= count; ++i) {
        const QString& frame = frames.checked(i);
        if (frame.isEmpty()) continue;
        SlogOut(frame, InstrumentCodeNumber(), stamp, 1);
        ReadChemistryFrame(frame, settings.sampleRule, message);
    }
    const ChemistryEdit edit = ResultLinesChemistry(message, params, settings);
    c.SampleId = message.sampleId;
    for (const QString& number : edit.unknownItems) LogUnknownItem(number);
    WriteAndDeliverOrThrow(edit.lines);
}

}  // namespace

void ReadChemistryFrame(const QString& frame, const SampleRule& rule, ChemistryMessage& message) {
    message.sampleId = ApplyIdEntryRule(SampleNumberAsRead(Field(frame, kIdentifier, 13)), rule);
    message.kensaDate =
        u"20"_s + Field(frame, kYear, 2) + Field(frame, kMonth, 2) + Field(frame, kDay, 2);
    message.kensaTime = Field(frame, kTime, 4) + u"00"_s;
    const QString countText = Field(frame, kGroupCount, 3);
    if (!IsNumeric(countText)) return;
    const std::optional<std::int32_t> count = ToInt32(countText);
    if (!count) throw RuntimeError(errors::Overflow());
    for (qsizetype j = 0; j < *count; ++j) {
        if (message.groups.size() >= kMaxChemistryGroups)
            throw RuntimeError(errors::SubscriptOutOfRange());
        const qsizetype at = kFirstGroup + j * kGroupLength;
        message.groups.push_back(
            {Field(frame, at, 3), Field(frame, at + 3, 6), Field(frame, at + 9, 1)});
    }
}

ChemistryEdit ResultLinesChemistry(const ChemistryMessage& message, const ChemistryParams& params,
                                   const EditSettings& settings) {
    ChemistryEdit edit;
    ResultFields fields{.KensaDate = message.kensaDate,
                        .KensaTime = message.kensaTime,
                        .SampleId = message.sampleId,
                        .InstrumentCode = settings.instrumentCode,
                        .InstrumentName = settings.instrumentName};
    for (const ChemistryGroup& group : message.groups) {
        const std::optional<QString> name = ItemNameOf(group.number, params.items);
        if (!name) edit.unknownItems.append(group.number);
        fields.ItemName = name.value_or(group.number + u"未登録"_s);
        fields.ItemCode = TestCodeOf(fields.ItemName, params.codePrefix);
        // Keeps the decimals sent; a plain zero becomes empty.
        fields.ResultValue = FormatOwnDecimals(group.value);
        fields.ResultComment = CommentOf(group.mark);
        edit.lines += ResultRecordLine(fields) + u"\r\n"_s;
    }
    return edit;
}

void EditResultChemistry(const ChemistryFrames& frames, std::int16_t count,
                         const ChemistryParams& params) {
    RunContext& c = Ctx();
    c.RunMark = u"0"_s;
    ChemistryMessage message;
    c.SampleId = message.sampleId;
    try {
        RunEdit(frames, count, params, message);
    } catch (const RuntimeError& error) {
        // The abnormal end names the specimen of the frame that was being read.
        c.SampleId = message.sampleId;
        ErrorExit(error.description());
    }
}

void EditResult2140(const ChemistryFrames& frames, std::int16_t count) {
    const RunContext& c = Ctx();
    EditResultChemistry(frames, count, {{c.OptionTable2140, c.OptionCount2140, 0, 1}, u"2140"_s});
}

}  // namespace orbline
