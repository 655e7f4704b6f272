#include "edits/MdlEdit009.h"

#include "common/Clock.h"
#include "common/Numbers.h"
#include "common/ResultFile.h"
#include "common/RunContext.h"
#include "common/RuntimeError.h"
#include "common/Text.h"
#include "edits/AstmRecords.h"
#include "edits/PieceFiles.h"
#include "edits/ResultDelivery.h"
#include "tables/ItemTables.h"

using namespace Qt::StringLiterals;

namespace orbline {

namespace {

void ReadHeader(const QStringList& fields, Message0980& message) {
    if (const auto sender = FieldAt(fields, 4)) message.echoSender = *sender;
    if (const auto version = FieldAt(fields, 13)) message.echoVersion = *version;
}

void ReadQuery(const QStringList& fields, Message0980& message) {
    if (!message.query) message.query.emplace();
    const std::optional<QString> key = FieldAt(fields, 2);
    if (!key) return;
    const QStringList parts = Split(*key, u"^"_s);
    if (const auto first = FieldAt(parts, 0)) message.query->key = Trim(*first);
    if (const auto second = FieldAt(parts, 1)) message.query->second = *second;
    if (const auto third = FieldAt(parts, 2)) message.query->third = *third;
}

void ReadOrder(const QStringList& fields, const SampleRule& rule, Message0980& message) {
    if (const auto sample = FieldAt(fields, 2)) {
        const QString text = QString(*sample).remove(u'-');
        const QStringList parts = Split(text, u"^"_s);
        if (text.isEmpty()) {
            message.sampleId = u"0"_s;
        } else {
            // The number as text, so that a long barcode stays exact.
            const QString& first = parts.first();
            message.sampleId = IsNumeric(first) ? PlainDecimalText(Trim(first)) : first;
        }
        if (const auto comment = FieldAt(parts, 1)) message.sampleComment = *comment;
    }
    message.sampleId = ApplyIdEntryRule(message.sampleId, rule);
    if (const auto seq = FieldAt(fields, 3))
        message.sampleSeq = FormatNumber(Trim(*seq), u"000000"_s);
    // Field 22 holds the collection date and time; the edit has no use for them.
}

void ReadResult(const QStringList& fields, Message0980& message) {
    // Read before the name decides whether the record is kept: an ADCount record sets it too.
    if (FieldAt(fields, 1) == u"1"_s) {
        if (const auto when = FieldAt(fields, 11)) {
            const QString stamp = Trim(*when);
            message.kensaDate = Left(stamp, 8);
            // Hours and minutes only: the seconds are always "00".
            message.kensaTime = Mid(stamp, 9, 4) + u"00"_s;
        }
    }
    std::optional<QString> name;
    if (const auto field = FieldAt(fields, 2))
        name = QString(*field).remove(u'^').remove(u"Value"_s);
    if (name && name->startsWith(u"ADCount"_s)) return;
    if (message.rows.size() >= kMaxRows0980) return;
    message.rows.push_back({name.value_or(QString()), FieldAt(fields, 3).value_or(QString()),
                            FieldAt(fields, 4).value_or(QString())});
}

QString ItemCodeFor(const QString& name, const QString& instrumentCode) {
    for (const Item0980& item : Items0980()) {
        if (item.name == name) return instrumentCode + item.suffix.toString();
    }
    return name;
}

}  // namespace

Message0980 ParseMessage0980(const QStringList& pieces, const SampleRule& rule,
                             const Carried0980& before) {
    Message0980 message;
    message.kensaDate = before.kensaDate;
    message.kensaTime = before.kensaTime;
    for (const QStringList& fields : RecordsOfPieces(pieces)) {
        const std::optional<QChar> type = RecordType(fields);
        if (!type) continue;
        switch (type->unicode()) {
            case u'H':
                ReadHeader(fields, message);
                break;
            case u'Q':
                ReadQuery(fields, message);
                break;
            case u'O':
                ReadOrder(fields, rule, message);
                break;
            case u'R':
                ReadResult(fields, message);
                break;
            default:  // P, L, the frame trailer and anything else
                break;
        }
    }
    return message;
}

QString ResultLines0980(const Message0980& message, const EditSettings& settings, bool* lineBuilt) {
    QString lines;
    for (const Row0980& row : message.rows) {
        if (Trim(row.name).isEmpty()) continue;
        const ResultFields fields{.KensaDate = message.kensaDate,
                                  .KensaTime = message.kensaTime,
                                  .RunMark = settings.runMarkDefault,
                                  .SampleId = message.sampleId,
                                  .InstrumentCode = settings.instrumentCode,
                                  .InstrumentName = settings.instrumentName,
                                  .SampleSeq = message.sampleSeq,
                                  .ItemCode = ItemCodeFor(row.name, settings.instrumentCode),
                                  .ItemName = row.name,
                                  .ResultValue = FormatOwnDecimals(row.value),
                                  .ResultUnit = row.unit};
        lines += ResultRecordLine(fields) + u",,,,,,,"_s + message.sampleComment + u"\r\n"_s;
        if (lineBuilt != nullptr) *lineBuilt = true;
    }
    return lines;
}

Message0980 EditResult0980(std::int16_t pieceCount) {
    RunContext& c = Ctx();
    const EditSettings settings = EditSettingsFromContext();
    const QString stamp = NowText(u"YYYYMMDDHHMMSS"_s);
    Message0980 message = ParseMessage0980(ReadPieceTexts(u"c980"_s, u"c980"_s, pieceCount, stamp),
                                           settings.sampleRule, {c.KensaDate, c.KensaTime});
    // The log lines read SampleId and RunMark; the next message keeps the examination time.
    c.SampleId = message.sampleId;
    c.RunMark = u"0"_s;
    c.KensaDate = message.kensaDate;
    c.KensaTime = message.kensaTime;
    if (message.query) return message;

    BuildAndDeliver([&](bool* lineBuilt) { return ResultLines0980(message, settings, lineBuilt); },
                    DeliveryNames::OneBurnt);
    return message;
}

}  // namespace orbline
