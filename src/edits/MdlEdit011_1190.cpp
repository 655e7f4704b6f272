// EditResult1190 of MdlEdit011.h. EditResult1160 lives in MdlEdit011_1160.cpp.

#include "edits/MdlEdit011.h"

#include "common/Clock.h"
#include "common/Numbers.h"
#include "common/ResultFile.h"
#include "common/RunContext.h"
#include "common/RuntimeError.h"
#include "common/Text.h"
#include "common/TextFile.h"
#include "edits/AstmRecords.h"

#include <QStringView>

#include <algorithm>
#include <limits>
#include <optional>
#include <span>

using namespace Qt::StringLiterals;

namespace orbline {

namespace {

struct MeasuredItem {
    QStringView name;
    QStringView code;
    QStringView unit;
};

// The 24 measured items, at positions 1 to 24.
constexpr MeasuredItem kMeasured[] = {
    {u"WBC", u"1190010", u"10*3/uL"},    {u"RBC", u"1190020", u"10*6/uL"},
    {u"HGB", u"1190030", u"g/dL"},       {u"HCT", u"1190040", u"%"},
    {u"MCV", u"1190050", u"fL"},         {u"MCH", u"1190060", u"pg"},
    {u"MCHC", u"1190070", u"g/dL"},      {u"PLT", u"1190080", u"10*3/uL"},
    {u"NEUT%", u"1190090", u"%"},        {u"LYMPH%", u"1190100", u"%"},
    {u"MONO%", u"1190110", u"%"},        {u"EO%", u"1190120", u"%"},
    {u"BASO%", u"1190130", u"%"},        {u"NEUT#", u"1190140", u"10*3/uL"},
    {u"LYMPH#", u"1190150", u"10*3/uL"}, {u"MONO#", u"1190160", u"10*3/uL"},
    {u"EO#", u"1190170", u"10*3/uL"},    {u"BASO#", u"1190180", u"10*3/uL"},
    {u"RDW-SD", u"1190190", u"fL"},      {u"RDW-CV", u"1190200", u"%"},
    {u"PDW", u"1190210", u"fL"},         {u"MPV", u"1190220", u"fL"},
    {u"P-LCR", u"1190230", u"%"},        {u"PCT", u"1190240", u"%"},
};

constexpr QStringView kWbcAbnormal[] = {
    u"WBC_Abn_Scattergram", u"Neutropenia",  u"Neutrophilia", u"Lymphopenia",  u"Lymphocytosis",
    u"Leukocytopenia",      u"Leukocytosis", u"Monocytosis",  u"Eosinophilia", u"Basophilia"};
constexpr QStringView kWbcSuspect[] = {u"Blasts?", u"Immature_Gran?",   u"Left_Shift?",
                                       u"NRBC?",   u"Atypical_Lympho?", u"Abn_Lympho?"};
constexpr QStringView kRbcAbnormal[] = {
    u"RBC_Abn_Distribution", u"Dimorphic_Population", u"Anisocytosis", u"Microcytosis",
    u"Macrocytosis",         u"Hypochromia",          u"Anemia",       u"Erythrocytosis"};
constexpr QStringView kRbcSuspect[] = {u"RBC_Agglutination?", u"Turbidity/HGB_Interference?",
                                       u"Iron_Deficiency?",   u"HGB_Defect?",
                                       u"Fragments?",         u"PRBC?"};
constexpr QStringView kPltAbnormal[] = {u"PLT_Abn_Distribution", u"Thrombocytopenia",
                                        u"Thrombocytosis"};
constexpr QStringView kPltSuspect[] = {u"PLT_Clumps?", u"PLT_Clumps(S)?"};

struct FlagGroup {
    QStringView text;
    int firstCode;
    std::span<const QStringView> flags;
};

// Searched group by group, in this order; within a group the codes run up by ten.
constexpr FlagGroup kFlagGroups[] = {
    {u"WBC Abnormal", 1190250, kWbcAbnormal}, {u"WBC Suspect", 1190350, kWbcSuspect},
    {u"RBC Abnormal", 1190410, kRbcAbnormal}, {u"RBC Suspect", 1190490, kRbcSuspect},
    {u"PLT Abnormal", 1190550, kPltAbnormal}, {u"PLT Suspect", 1190580, kPltSuspect},
};

// Columns of a result row in RecordFields.
constexpr qsizetype kName = 0;
constexpr qsizetype kValue = 1;
constexpr qsizetype kUnit = 2;
constexpr qsizetype kFlag = 3;
constexpr qsizetype kWhen = 4;

// The start values of each call. KensaDate and KensaTime come from the first row.
void StartCall() {
    ResetSampleAndItemFields();
    RunContext& c = Ctx();
    c.QueryMark1190 = u"0"_s;
    c.RecordCount = 0;
    c.RecordFields.clear();
    // The units of the measured items go into the shared list; nothing reads them from there.
    for (qsizetype i = 0; i < static_cast<qsizetype>(std::size(kMeasured)); ++i)
        c.ItemUnits.put(i + 1, kMeasured[i].unit.toString());
}

void ApplyIdEntryRule() {
    RunContext& c = Ctx();
    // IDEntry "2" takes the fixed number even when it is empty; otherwise only a given one.
    if (c.IDEntry == u"2"_s || !c.FixedSampleId.isEmpty()) c.SampleId = c.FixedSampleId;
}

void ReadResult(const QStringList& fields) {
    RunContext& c = Ctx();
    if (c.RecordCount == std::numeric_limits<std::int16_t>::max()) return;
    c.RecordCount += 1;
    c.QueryMark1190 = u"R"_s;
    const qsizetype row = c.RecordCount;  // past row 100 the puts do nothing: the record is lost
    if (const auto name = FieldAt(fields, 2)) {
        // Instrument-specific components from the sixth on are dropped.
        c.RecordFields.put(row, kName, Trim(Split(*name, u"^"_s).mid(0, 5).join(QString())));
    }
    if (const auto value = FieldAt(fields, 3)) c.RecordFields.put(row, kValue, Trim(*value));
    if (const auto unit = FieldAt(fields, 4)) c.RecordFields.put(row, kUnit, Trim(*unit));
    if (const auto flag = FieldAt(fields, 6)) c.RecordFields.put(row, kFlag, Trim(*flag));
    if (const auto when = FieldAt(fields, 12)) c.RecordFields.put(row, kWhen, Trim(*when));
}

void ReadQuery(const QStringList& fields) {
    RunContext& c = Ctx();
    c.QueryMark1190 = u"Q"_s;
    const std::optional<QString> key = FieldAt(fields, 2);
    if (!key) return;
    const QStringList parts = Split(*key, u"^"_s);
    if (const auto third = FieldAt(parts, 2)) {
        c.RecordFields.put(0, 20, Trim(*third));
        c.RecordFields.put(0, 21, *third);
    }
    if (const auto first = FieldAt(parts, 0)) c.RecordFields.put(0, 22, *first);
    if (const auto second = FieldAt(parts, 1)) c.RecordFields.put(0, 23, *second);
}

void ReadOrder(const QStringList& fields) {
    RunContext& c = Ctx();
    const std::optional<QString> specimen = FieldAt(fields, 3);
    if (fields.size() >= 5) {
        // Only the first O record of a message sets the sample number.
        if (c.SampleId == u"0"_s || c.SampleId.isEmpty()) {
            if (const auto id = FieldAt(Split(Trim(*specimen), u"^"_s), 2)) {
                QString cleaned = *id;
                cleaned.remove(u'^').remove(u'B').remove(u'M').remove(u'・').remove(QChar(0xF8F0));
                c.SampleId = Trim(cleaned);
            }
            ApplyIdEntryRule();
        }
    } else {
        c.SampleId = u"0"_s;
    }
    if (specimen) {
        if (const auto seq = FieldAt(Split(*specimen, u"^"_s), 0))
            c.SampleSeq = FormatNumber(*seq, u"000000"_s);
    }
    // Field 22 holds the collection date and time; the edit reads them and has no use for them.
}

void ReadRecord(const QStringList& fields) {
    const std::optional<QChar> type = RecordType(fields);
    if (!type) return;
    switch (type->unicode()) {
        case u'R':
            ReadResult(fields);
            return;
        case u'Q':
            ReadQuery(fields);
            return;
        case u'O':
            ReadOrder(fields);
            return;
        default:  // H, P, C, M, S, L, the frame trailer and anything else
            return;
    }
}

std::optional<QString> MeasuredCode(const QString& name) {
    const auto* found = std::find_if(std::begin(kMeasured), std::end(kMeasured),
                                     [&](const MeasuredItem& item) { return item.name == name; });
    if (found == std::end(kMeasured)) return std::nullopt;
    return found->code.toString();
}

struct FlagMatch {
    QString itemName;  // group text + "_" + place
    QString itemCode;
};

std::optional<FlagMatch> FindFlag(const QString& name) {
    for (const FlagGroup& group : kFlagGroups) {
        int place = 1;
        for (const QStringView flag : group.flags) {
            if (flag == name)
                return FlagMatch{group.text.toString() + u"_"_s + QString::number(place),
                                 QString::number(group.firstCode + 10 * (place - 1))};
            ++place;
        }
    }
    return std::nullopt;
}

void ApplyFlagText(const QString& flagText) {
    RunContext& c = Ctx();
    if (flagText == u"H"_s) {
        c.JudgeFlag = u"H"_s;
    } else if (flagText == u"L"_s) {
        c.JudgeFlag = u"L"_s;
    } else if (flagText == u">"_s) {
        c.ResultComment = u"直線性保証外"_s;
    } else if (flagText == u"A"_s) {
        c.ResultComment = u"解析、ハードエラー"_s;
        c.JudgeFlag.clear();
    } else if (flagText == u"W"_s) {
        c.ResultComment = u"低信頼性"_s;
        c.JudgeFlag.clear();
    }
}

// The text of the result file: the measured items, and with OutIP other than "0" the flags.
QString ResultText() {
    RunContext& c = Ctx();
    QString text;
    for (qsizetype row = 1; row <= c.RecordCount; ++row) {
        const std::optional<QString> name = c.RecordFields.get(row, kName);
        if (!name) break;  // rows past the table's end were never stored
        c.ItemName = *name;
        c.ResultValue = c.RecordFields.get(row, kValue).value_or(QString());
        c.ResultUnit = c.RecordFields.get(row, kUnit).value_or(QString());
        if (row == 1) {
            const QString when = c.RecordFields.get(row, kWhen).value_or(QString());
            c.KensaDate = Left(when, 8);
            c.KensaTime = Mid(when, 9, 6);
        }
        // ItemCode is not reset between rows: a row that matches nothing keeps the last code,
        // and such a row is never written.
        const std::optional<QString> code = MeasuredCode(c.ItemName);
        if (code) c.ItemCode = *code;
        QString flagText = c.RecordFields.get(row, kFlag).value_or(QString()).remove(u'N');
        if (!code) {
            if (c.OutIP == u"0"_s) continue;
            const std::optional<FlagMatch> flag = FindFlag(c.ItemName);
            if (!flag) continue;
            c.ResultValue = c.ItemName;  // the flag's own name
            c.ItemName = flag->itemName;
            c.ItemCode = flag->itemCode;
            c.ResultUnit.clear();
            flagText.clear();
        }
        c.Judge1.clear();
        c.Judge2.clear();
        c.JudgeFlag.clear();
        c.ResultComment.clear();
        c.ResultValue = FormatOwnDecimals(c.ResultValue);
        ApplyFlagText(flagText);
        c.RunMark = c.RunMarkDefault;
        // ResultRecord trims the value and gives "<" and ">" their full-width forms.
        text += ResultRecord() + u"\r\n"_s;
    }
    return text;
}

void WriteResult() {
    WriteAndDeliver(ResultText(), DeliveryNames::One);
}

}  // namespace

void EditResult1190(std::int16_t pieceCount) {
    PassOver([&] {
        StartCall();
        const QString stamp = NowText(u"YYYYMMDDHHMMSS"_s);
        const QString folder = u"c"_s + Ctx().InstrumentCode;
        ForEachPieceRecord(folder, folder, pieceCount, stamp, [](const QStringList& fields) {
            PassOver([&] { ReadRecord(fields); });
        });
        if (Ctx().QueryMark1190 == u"Q"_s) return;
        WriteResult();
    });
}

}  // namespace orbline
