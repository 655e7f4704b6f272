#include "edits/MdlEdit009.h"

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

using namespace Qt::StringLiterals;

namespace orbline {

namespace {

struct Item {
    QStringView name;
    QStringView suffix;  // behind InstrumentCode: "0980" + "010"
};

// The fixed item table; the setting HbA1c has no part in it.
constexpr Item kItems[] = {
    {u"HbA1c", u"010"},      {u"IFCC", u"020"},       {u"HbF", u"030"},
    {u"GLU", u"040"},        {u"PeakHbA1ab", u"050"}, {u"PeakHbF", u"060"},
    {u"Peak#C", u"070"},     {u"PeakHbA1c", u"080"},  {u"PeakA0", u"090"},
    {u"TimeBottom", u"100"}, {u"TimeBase", u"110"},   {u"TimeBefore", u"120"},
    {u"TimeAfter", u"130"},  {u"TimeGain", u"140"},   {u"AreaTotal", u"150"},
    {u"NGSP", u"160"},
};

// Columns of a result row in RecordFields.
constexpr qsizetype kName = 0;
constexpr qsizetype kValue = 1;
constexpr qsizetype kUnit = 2;

// What one call carries from record to record besides RunContext.
struct Message {
    QString sampleComment;  // second part of the O record's field 2
};

// The start values of each call. KensaDate, KensaTime and QueryMark0980 are not among them:
// the first two keep the previous message's values until an R record sets them.
void StartCall() {
    ResetSampleAndItemFields();
    RunContext& c = Ctx();
    c.RecordCount = 0;
    c.RecordFields.clear();
}

void ApplyIdEntryRule() {
    RunContext& c = Ctx();
    // IDEntry "2" takes the fixed number even when it is empty; otherwise only a given one.
    if (c.IDEntry == u"2"_s || !c.FixedSampleId.isEmpty()) c.SampleId = c.FixedSampleId;
}

void ReadHeader(const QStringList& fields) {
    RunContext& c = Ctx();
    if (const auto sender = FieldAt(fields, 4)) c.EchoSender = *sender;
    if (const auto version = FieldAt(fields, 13)) c.EchoVersion = *version;
}

void ReadQuery(const QStringList& fields) {
    RunContext& c = Ctx();
    c.QueryMark0980 = u"Q"_s;
    const std::optional<QString> key = FieldAt(fields, 2);
    if (!key) return;
    const QStringList parts = Split(*key, u"^"_s);
    if (const auto first = FieldAt(parts, 0)) c.RecordFields.put(0, 20, Trim(*first));
    if (const auto second = FieldAt(parts, 1)) c.RecordFields.put(0, 23, *second);
    if (const auto third = FieldAt(parts, 2)) c.RecordFields.put(0, 22, *third);
}

void ReadOrder(const QStringList& fields, Message& message) {
    RunContext& c = Ctx();
    if (const auto sample = FieldAt(fields, 2)) {
        const QString text = QString(*sample).remove(u'-');
        const QStringList parts = Split(text, u"^"_s);
        if (text.isEmpty()) {
            c.SampleId = u"0"_s;
        } else {
            // The number as text, so that a long barcode stays exact.
            const QString& first = parts.first();
            c.SampleId = IsNumeric(first) ? PlainDecimalText(Trim(first)) : first;
        }
        if (const auto comment = FieldAt(parts, 1)) message.sampleComment = *comment;
    }
    ApplyIdEntryRule();
    if (const auto seq = FieldAt(fields, 3)) c.SampleSeq = FormatNumber(Trim(*seq), u"000000"_s);
    // Field 22 holds the collection date and time; the edit reads them and has no use for them.
}

void ReadResult(const QStringList& fields) {
    RunContext& c = Ctx();
    if (FieldAt(fields, 1) == u"1"_s) {
        if (const auto when = FieldAt(fields, 11)) {
            const QString stamp = Trim(*when);
            c.KensaDate = Left(stamp, 8);
            // Hours and minutes only: the seconds are always "00".
            c.KensaTime = Mid(stamp, 9, 4) + u"00"_s;
        }
    }
    std::optional<QString> name;
    if (const auto field = FieldAt(fields, 2))
        name = QString(*field).remove(u'^').remove(u"Value"_s);
    if (name && name->startsWith(u"ADCount"_s)) return;
    if (c.RecordCount == std::numeric_limits<std::int16_t>::max()) return;
    c.RecordCount += 1;
    // Past row 100 the puts do nothing: the record is lost.
    if (name) c.RecordFields.put(c.RecordCount, kName, *name);
    if (const auto value = FieldAt(fields, 3)) c.RecordFields.put(c.RecordCount, kValue, *value);
    if (const auto unit = FieldAt(fields, 4)) c.RecordFields.put(c.RecordCount, kUnit, *unit);
}

void ReadRecord(const QStringList& fields, Message& message) {
    const std::optional<QChar> type = RecordType(fields);
    if (!type) return;
    switch (type->unicode()) {
        case u'H':
            ReadHeader(fields);
            return;
        case u'Q':
            ReadQuery(fields);
            return;
        case u'O':
            ReadOrder(fields, message);
            return;
        case u'R':
            ReadResult(fields);
            return;
        default:  // P, L, the frame trailer and anything else
            return;
    }
}

QString ItemCodeFor(const QString& name) {
    const auto* found = std::find_if(std::begin(kItems), std::end(kItems),
                                     [&](const Item& item) { return item.name == name; });
    if (found == std::end(kItems)) return name;
    return Ctx().InstrumentCode + found->suffix.toString();
}

// The text of the result file: one line per kept row, in the 0980 form of the record.
QString ResultText(const Message& message) {
    RunContext& c = Ctx();
    QString text;
    for (qsizetype row = 1; row <= c.RecordCount; ++row) {
        const std::optional<QString> name = c.RecordFields.get(row, kName);
        if (!name) break;  // rows past the table's end were never stored
        c.ItemName = *name;
        if (Trim(c.ItemName).isEmpty()) continue;
        c.ResultValue = c.RecordFields.get(row, kValue).value_or(QString());
        c.ResultUnit = c.RecordFields.get(row, kUnit).value_or(QString());
        c.ItemCode = ItemCodeFor(c.ItemName);
        c.Judge1.clear();
        c.Judge2.clear();
        c.JudgeFlag.clear();
        c.ResultComment.clear();
        c.ResultValue = FormatOwnDecimals(c.ResultValue);
        c.RunMark = c.RunMarkDefault;
        // ResultRecord trims the value and gives "<" and ">" their full-width forms.
        text += ResultRecord() + u",,,,,,,"_s + message.sampleComment + u"\r\n"_s;
    }
    return text;
}

void WriteResult(const Message& message) {
    WriteAndDeliver(ResultText(message), DeliveryNames::OneBurnt);
}

}  // namespace

void EditResult0980(std::int16_t pieceCount) {
    PassOver([&] {
        StartCall();
        const QString stamp = NowText(u"YYYYMMDDHHMMSS"_s);
        Message message;
        ForEachPieceRecord(u"c980"_s, u"c980"_s, pieceCount, stamp, [&](const QStringList& fields) {
            PassOver([&] { ReadRecord(fields, message); });
        });
        if (Ctx().QueryMark0980 == u"Q"_s) return;
        WriteResult(message);
    });
}

}  // namespace orbline
