// The part of the result edits 1660 and 1730 that is the same for both.

#include "edits/MdlEdit016_Cobas.h"

#include "common/Clock.h"
#include "common/Numbers.h"
#include "common/ResultFile.h"
#include "common/RunContext.h"
#include "common/Text.h"
#include "edits/AstmRecords.h"

using namespace Qt::StringLiterals;

namespace orbline {

namespace {

// Put in the place of every record boundary so that the message splits in one step.
const QString kRecordSeparator = u"medicalin"_s;

struct FlagColumns {
    QStringView flag;
    QStringView judge;
    QStringView alarm;
};

constexpr FlagColumns kFlags[] = {
    {u"L", u"L", u""},
    {u"H", u"H", u""},
    {u"N", u"", u""},
    {u"LL", u"L", u"パニック値以下かテクニカルレンジ以下"},
    {u"HH", u"H", u"パニック値以上かテクニカルレンジ以上"},
    {u"A", u"", u"異常（データアラーム 23・26・27 以外）"},
};

QList<QStringList> Records(const QStringList& pieceTexts) {
    QString joined = pieceTexts.join(QString());
    joined.remove(u"\r\n"_s);
    joined.replace(u'\r', kRecordSeparator);
    joined.replace(QChar(0x02), kRecordSeparator);
    QList<QStringList> records;
    for (const QString& line : Split(joined, kRecordSeparator)) {
        if (!line.isEmpty()) records.append(Split(line, u"|"_s));
    }
    return records;
}

QString CleanedSampleNumber(const QString& field) {
    QString cleaned = Trim(field);
    cleaned.remove(u'^').remove(u'・').remove(QChar(0xF8F0));
    return cleaned.isEmpty() ? u"0"_s : cleaned;
}

void ReadQuery(const QStringList& fields, const CobasDialect& dialect, CobasQuery& query) {
    const auto part = [&](std::size_t i) {
        return CheckedField(Split(CheckedField(fields, 2), u"^"_s), dialect.queryParts.at(i));
    };
    RunStep(dialect.onError, [&] { query.sampleId = Trim(part(0)); });
    for (std::size_t i = 0; i < query.places.size(); ++i)
        RunStep(dialect.onError, [&] { query.places.at(i) = part(i + 1); });
}

void ReadOrder(const QStringList& fields, const CobasDialect& dialect, const SampleRule& rule,
               CobasMessage& message) {
    RunStep(dialect.onError, [&] {
        message.sampleId = dialect.sampleNumber(CleanedSampleNumber(CheckedField(fields, 2)), rule);
    });
    RunStep(dialect.onError, [&] {
        const QString seq = CheckedField(Split(CheckedField(fields, 3), u"^"_s), 0);
        message.sampleSeq = FormatNumber(seq, u"000000"_s);
    });
    RunStep(dialect.onError, [&] {
        const QString when = CheckedField(fields, dialect.orderDateField);
        message.kensaDate = Left(when, 8);
        message.kensaTime = Mid(when, 9, 6);
    });
}

// A missing flag field clears both columns; a flag not in the table leaves them as they are,
// which for a new row is empty.
void ReadFlag(const std::optional<QString>& field, CobasRow& row) {
    if (!field) {
        row.judge.clear();
        row.alarm.clear();
        return;
    }
    const QString flag = Trim(*field);
    for (const FlagColumns& known : kFlags) {
        if (known.flag == flag) {
            row.judge = known.judge.toString();
            row.alarm = known.alarm.toString();
            return;
        }
    }
}

void ReadResult(const QStringList& fields, const CobasDialect& dialect, CobasMessage& message) {
    if (message.rows.size() >= kMaxRowsCobas) {
        switch (dialect.onError) {
            case OnError::ErrorExit:
                throw RuntimeError(errors::SubscriptOutOfRange());
            case OnError::PassOver:
                return;
        }
    }
    const auto field = [&](qsizetype i) { return FieldAt(fields, i).value_or(QString()); };
    CobasRow row;
    row.code = dialect.testCode(field(2));
    row.value = Trim(field(3));
    row.unit = Trim(field(4));
    ReadFlag(FieldAt(fields, 6), row);
    row.sampleId = message.sampleId;
    if (dialect.readMore != nullptr) dialect.readMore(fields, message, row);
    row.kensaDate = message.kensaDate;
    row.kensaTime = message.kensaTime;
    message.rows.push_back(row);
}

QString ItemName(const std::vector<CobasItem>& items, const QString& code) {
    for (const CobasItem& item : items) {
        if (item.code == code) return item.name;
    }
    return code;
}

}  // namespace

CobasMessage ParseCobasMessage(const QStringList& pieceTexts, const CobasDialect& dialect,
                               const SampleRule& rule) {
    CobasMessage message;
    CobasQuery query;
    bool asksForOrders = false;  // the last of Q and R records decides
    for (const QStringList& fields : Records(pieceTexts)) {
        const std::optional<QChar> kind = RecordType(fields);
        if (!kind) continue;
        switch (kind->unicode()) {
            case u'Q':
                asksForOrders = true;
                ReadQuery(fields, dialect, query);
                break;
            case u'O':
                ReadOrder(fields, dialect, rule, message);
                break;
            case u'R':
                asksForOrders = false;
                ReadResult(fields, dialect, message);
                break;
            default:  // H, P, M, C, L, what is left of a cut record, and anything else
                break;
        }
    }
    if (asksForOrders) message.query = query;
    return message;
}

QString CobasResultLines(const CobasMessage& message, const EditSettings& settings,
                         const std::vector<CobasItem>& items, OnError onError) {
    QString lines;
    for (const CobasRow& row : message.rows) {
        ResultFields fields{.KensaDate = row.kensaDate,
                            .KensaTime = row.kensaTime,
                            .SampleId = row.sampleId,
                            .InstrumentCode = settings.instrumentCode,
                            .InstrumentName = settings.instrumentName,
                            .SampleSeq = message.sampleSeq,
                            .ItemCode = row.code,
                            .ItemName = ItemName(items, row.code),
                            .JudgeFlag = row.judge,
                            .Judge1 = row.judge1,
                            .Judge2 = row.judge2,
                            .ResultValue = row.value,
                            .ResultUnit = row.unit,
                            .ResultComment = row.alarm};
        // As many decimals as the instrument sent, and a digit before the point.
        RunStep(onError, [&] { fields.ResultValue = FormatOwnDecimals(row.value); });
        lines += ResultRecordLine(fields) + u"\r\n"_s;
    }
    return lines;
}

CobasMessage ReadCobasMessage(std::int16_t pieceCount, const PieceRules& rules,
                              const std::function<CobasMessage(const QStringList&)>& parse) {
    RunContext& c = Ctx();
    c.SampleId = u"0"_s;
    c.RunMark = u"0"_s;
    const QString stamp = NowText(u"YYYYMMDDHHMMSS"_s);
    const QString folder = u"c"_s + c.InstrumentCode;
    CobasMessage message = parse(ReadPieceTexts(folder, folder, pieceCount, stamp, rules));
    c.SampleId = message.rows.empty() ? message.sampleId : message.rows.back().sampleId;
    return message;
}

}  // namespace orbline
