// EditResult1190 of MdlEdit011.h. EditResult1160 lives in MdlEdit011_1160.cpp.

#include "common/Clock.h"
#include "common/Numbers.h"
#include "common/ResultFile.h"
#include "common/RunContext.h"
#include "common/RuntimeError.h"
#include "common/Text.h"
#include "edits/AstmRecords.h"
#include "edits/MdlEdit011.h"
#include "edits/PieceFiles.h"
#include "edits/ResultDelivery.h"
#include "tables/ItemTables.h"

#include <QStringView>

#include <span>

using namespace Qt::StringLiterals;

namespace orbline {

namespace {

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

void ReadResult(const QStringList& fields, Message1190& message) {
    if (message.rows.size() >= kMaxRows1190) return;
    Row1190 row;
    if (const auto name = FieldAt(fields, 2)) {
        // Instrument-specific components from the sixth on are dropped.
        row.name = Trim(Split(*name, u"^"_s).mid(0, 5).join(QString()));
    }
    if (const auto value = FieldAt(fields, 3)) row.value = Trim(*value);
    if (const auto unit = FieldAt(fields, 4)) row.unit = Trim(*unit);
    if (const auto flag = FieldAt(fields, 6)) row.flag = Trim(*flag);
    if (const auto when = FieldAt(fields, 12)) row.when = Trim(*when);
    message.rows.push_back(row);
}

void ReadQuery(const QStringList& fields, Query1190& query) {
    const std::optional<QString> key = FieldAt(fields, 2);
    if (!key) return;
    const QStringList parts = Split(*key, u"^"_s);
    if (const auto third = FieldAt(parts, 2)) {
        query.key = Trim(*third);
        query.third = *third;
    }
    if (const auto first = FieldAt(parts, 0)) query.first = *first;
    if (const auto second = FieldAt(parts, 1)) query.second = *second;
}

void ReadOrder(const QStringList& fields, const SampleRule& rule, Message1190& message) {
    const std::optional<QString> specimen = FieldAt(fields, 3);
    if (fields.size() >= 5) {
        // Only the first O record of a message sets the sample number.
        if (message.sampleId == u"0"_s || message.sampleId.isEmpty()) {
            if (const auto id = FieldAt(Split(Trim(*specimen), u"^"_s), 2)) {
                QString cleaned = *id;
                cleaned.remove(u'^').remove(u'B').remove(u'M').remove(u'・').remove(QChar(0xF8F0));
                message.sampleId = Trim(cleaned);
            }
            message.sampleId = ApplyIdEntryRule(message.sampleId, rule);
        }
    } else {
        message.sampleId = u"0"_s;
    }
    if (specimen) {
        if (const auto seq = FieldAt(Split(*specimen, u"^"_s), 0))
            message.sampleSeq = FormatNumber(*seq, u"000000"_s);
    }
    // Field 22 holds the collection date and time; the edit has no use for them.
}

std::optional<QString> MeasuredCode(const QString& name) {
    for (const MeasuredItem1190& item : MeasuredItems1190()) {
        if (item.name == name) return item.code.toString();
    }
    return std::nullopt;
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

void ApplyFlagText(const QString& flagText, ResultFields& fields) {
    if (flagText == u"H"_s) {
        fields.JudgeFlag = u"H"_s;
    } else if (flagText == u"L"_s) {
        fields.JudgeFlag = u"L"_s;
    } else if (flagText == u">"_s) {
        fields.ResultComment = u"直線性保証外"_s;
    } else if (flagText == u"A"_s) {
        fields.ResultComment = u"解析、ハードエラー"_s;
        fields.JudgeFlag.clear();
    } else if (flagText == u"W"_s) {
        fields.ResultComment = u"低信頼性"_s;
        fields.JudgeFlag.clear();
    }
}

}  // namespace

Message1190 ParseMessage1190(const QStringList& pieces, const SampleRule& rule) {
    Message1190 message;
    Query1190 query;
    // An R record after a Q record makes the message a result, and a Q record after it a
    // query again.
    bool asksForOrders = false;
    for (const QStringList& fields : RecordsOfPieces(pieces)) {
        const std::optional<QChar> type = RecordType(fields);
        if (!type) continue;
        switch (type->unicode()) {
            case u'R':
                ReadResult(fields, message);
                asksForOrders = false;
                break;
            case u'Q':
                ReadQuery(fields, query);
                asksForOrders = true;
                break;
            case u'O':
                ReadOrder(fields, rule, message);
                break;
            default:  // H, P, C, M, S, L, the frame trailer and anything else
                break;
        }
    }
    if (asksForOrders) message.query = query;
    return message;
}

QString ResultLines1190(const Message1190& message, const EditSettings& settings, bool* lineBuilt) {
    if (message.rows.empty()) return QString();
    // The time of the first row, written or not, stands for all.
    const QString& when = message.rows.front().when;
    QString lines;
    for (const Row1190& row : message.rows) {
        ResultFields fields{.KensaDate = Left(when, 8),
                            .KensaTime = Mid(when, 9, 6),
                            .RunMark = settings.runMarkDefault,
                            .SampleId = message.sampleId,
                            .InstrumentCode = settings.instrumentCode,
                            .InstrumentName = settings.instrumentName,
                            .SampleSeq = message.sampleSeq,
                            .ItemName = row.name,
                            .ResultValue = row.value,
                            .ResultUnit = row.unit};
        QString flagText = QString(row.flag).remove(u'N');
        if (const std::optional<QString> code = MeasuredCode(row.name)) {
            fields.ItemCode = *code;
        } else {
            // By default the file holds only the measured items, and every unknown item is
            // dropped too.
            if (settings.outIp == u"0"_s) continue;
            const std::optional<FlagMatch> flag = FindFlag(row.name);
            if (!flag) continue;
            fields.ItemName = flag->itemName;
            fields.ItemCode = flag->itemCode;
            fields.ResultValue = row.name;  // the flag's own name
            fields.ResultUnit.clear();
            flagText.clear();
        }
        fields.ResultValue = FormatOwnDecimals(fields.ResultValue);
        ApplyFlagText(flagText, fields);
        lines += ResultRecordLine(fields) + u"\r\n"_s;
        if (lineBuilt != nullptr) *lineBuilt = true;
    }
    return lines;
}

Message1190 EditResult1190(std::int16_t pieceCount) {
    RunContext& c = Ctx();
    const EditSettings settings = EditSettingsFromContext();
    const QString stamp = NowText(u"YYYYMMDDHHMMSS"_s);
    const QString folder = u"c"_s + c.InstrumentCode;
    Message1190 message =
        ParseMessage1190(ReadPieceTexts(folder, folder, pieceCount, stamp), settings.sampleRule);
    // The log lines read SampleId and RunMark.
    c.SampleId = message.sampleId;
    c.RunMark = u"0"_s;
    if (message.query) return message;

    BuildAndDeliver([&](bool* lineBuilt) { return ResultLines1190(message, settings, lineBuilt); },
                    DeliveryNames::One);
    return message;
}

}  // namespace orbline
