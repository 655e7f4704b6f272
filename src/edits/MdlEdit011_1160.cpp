// Result edit of the instrument 1160, the analyser whose header names it "AIA-".
//
// The dialogue saves every read of the port as one piece file; this instrument sends one record
// a frame, so the edit takes each piece (its lines joined, line ends dropped, frame bytes kept)
// as one record text. A result record that a read cut in two is joined with the next piece. The
// edit has an error exit: any run-time error, a field that is not there included, ends the
// process through ErrorExit.

#include "common/Clock.h"
#include "common/Logging.h"
#include "common/Numbers.h"
#include "common/Paths.h"
#include "common/ResultFile.h"
#include "common/RunContext.h"
#include "common/RuntimeError.h"
#include "common/Text.h"
#include "common/TextFile.h"
#include "edits/AstmRecords.h"
#include "edits/MdlEdit011.h"
#include "edits/PieceFiles.h"

using namespace Qt::StringLiterals;

namespace orbline {

namespace {

QString Without(QString text, QStringView characters) {
    for (const QChar c : characters) text.remove(c);
    return text;
}

// Type H: an instrument that is not an "AIA-" is reported by an error line written to the
// handle SlogOut used last. That handle is closed by then, so the write itself is the run-time
// error that ends the process, and the line never reaches a file.
void ReadHeader(const QStringList& fields) {
    if (Left(CheckedField(fields, 4), 4) == u"AIA-"_s) return;
    throw RuntimeError(errors::BadFileNameOrNumber());
}

// Type O: the specimen number.
void ReadOrder(const QStringList& fields, const SampleRule& rule, Message1160& message) {
    QString id = Without(Trim(Without(CheckedField(fields, 2), u"-")), u"^");
    if (id.isEmpty())
        id = u"0"_s;
    else if (IsNumeric(id))
        id = PlainDecimalText(Trim(id));
    message.sampleId = ApplyIdEntryRule(id, rule);
}

// Type R: one more row of the result table.
void ReadResult(const QStringList& fields, Message1160& message) {
    if (CheckedField(fields, 1) == u"1"_s) {
        // Every first result of a test sets the time: the file carries the last one's.
        const QString completed = CheckedField(fields, 12);
        message.kensaDate = Trim(Left(completed, 8));
        message.kensaTime = Trim(Mid(completed, 9, 6));
    }
    if (message.rows.size() >= kMaxRows1160) throw RuntimeError(errors::SubscriptOutOfRange());
    Row1160 row;
    row.testNumber = Trim(Without(CheckedField(fields, 2), u"^\\&"));
    row.value = Trim(CheckedField(fields, 3));
    row.unit = Trim(CheckedField(fields, 4));
    const QString range = CheckedField(fields, 5);
    if (range.contains(u"to"_s)) {
        const QStringList bounds = Split(range, u"to"_s);
        row.lower = Trim(CheckedField(bounds, 0));
        row.upper = Trim(CheckedField(bounds, 1));
    }
    const QString flag = Trim(CheckedField(fields, 6));
    if (flag == u"L"_s || flag == u"LL"_s) {
        row.judge = u"L"_s;
    } else if (flag == u"H"_s || flag == u"HH"_s) {
        row.judge = u"H"_s;
    } else if (flag == u"<"_s) {
        row.judge = u"L"_s;
        row.comment = u"測定レンジ外"_s;
    } else if (flag == u">"_s) {
        row.judge = u"H"_s;
        row.comment = u"測定レンジ外"_s;
    }
    row.sequence = Trim(CheckedField(fields, 1));
    message.rows.push_back(row);
}

void ReadRecord(const QStringList& fields, const SampleRule& rule, Message1160& message) {
    const std::optional<QChar> type = RecordType(fields);
    if (!type) return;
    switch (type->unicode()) {
        case u'H':
            ReadHeader(fields);
            return;
        case u'O':
            ReadOrder(fields, rule, message);
            return;
        case u'Q':
            message.queryKey = Without(CheckedField(fields, 2), u"^");
            return;
        case u'R':
            ReadResult(fields, message);
            return;
        default:  // P, C, L and anything else change nothing
            return;
    }
}

// The texts of the pieces up to the first that is not there or can't be read.
struct SavedPieces {
    enum class End { AllRead, Missing, Unreadable };
    QStringList texts;
    End end = End::AllRead;
};

SavedPieces ReadSavedPieces(std::int16_t pieceCount) {
    SavedPieces pieces;
    for (std::int16_t number = 1; number <= pieceCount - 1; ++number) {
        const QString path = PieceFilePath(u"c1160"_s, u"c1160"_s, number);
        if (!FileExists(path)) {
            pieces.end = SavedPieces::End::Missing;
            break;
        }
        const std::optional<QString> text = ReadAllText(path);
        if (!text) {
            pieces.end = SavedPieces::End::Unreadable;
            break;
        }
        pieces.texts.append(*text);
    }
    return pieces;
}

Message1160 RunEdit(std::int16_t pieceCount) {
    RunContext& c = Ctx();
    const EditSettings settings = EditSettingsFromContext();
    const QString stamp = NowText(u"YYYYMMDDHHMMSS"_s);

    // The work file exists before anything of the message is read.
    QString workPath;
    MakeOutFile(c.JyusinWKPath, workPath);
    if (!WriteNewText(workPath, QString())) throw RuntimeError(errors::PathNotFound());

    const SavedPieces pieces = ReadSavedPieces(pieceCount);
    Message1160 message =
        ParseMessage1160(pieces.texts, settings.sampleRule, {c.SampleId, c.KensaDate, c.KensaTime},
                         [&](const QString& record, std::int16_t number, const Message1160& soFar) {
                             // An abnormal end's log line shows the sample number read so far.
                             c.SampleId = soFar.sampleId;
                             SlogOut(record, InstrumentCodeNumber(), stamp, number);
                         });
    // The log lines read SampleId; the next message keeps what this one did not set.
    c.SampleId = message.sampleId;
    c.KensaDate = message.kensaDate;
    c.KensaTime = message.kensaTime;
    switch (pieces.end) {
        case SavedPieces::End::Unreadable:
            throw RuntimeError(errors::FileNotFound());
        case SavedPieces::End::Missing:
            // Reading ended at the gap and no row is written: the empty work file is delivered,
            // since this edit does not look at the size.
            DeliverWorkFileAsIs(workPath);
            return message;
        case SavedPieces::End::AllRead:
            break;
    }
    // A query, or a message with no result: the empty work file stays where it is, with its
    // handle closed, so a long run does not pile up open handles.
    if (message.queryKey || message.rows.empty()) return message;
    const QString lines = ResultLines1160(message, settings);
    // The delivery's log pair shows the run mark of the lines.
    c.RunMark = settings.runMarkDefault;
    if (!WriteNewText(workPath, lines)) throw RuntimeError(errors::PathNotFound());
    DeliverWorkFileAsIs(workPath);
    return message;
}

}  // namespace

Message1160 ParseMessage1160(const QStringList& pieces, const SampleRule& rule,
                             const Carried1160& before, const RecordSeen1160& seen) {
    Message1160 message;
    message.sampleId = before.sampleId;
    message.kensaDate = before.kensaDate;
    message.kensaTime = before.kensaTime;
    QString record;
    bool carrying = false;
    for (qsizetype i = 0; i < pieces.size(); ++i) {
        if (!carrying) record.clear();
        for (const QString& line : SplitLines(pieces[i], LineEnds::CrLfOrCrOrLf)) record += line;
        const QStringList fields = Split(record, u"|"_s);
        // An empty text has no field 0 and is no result record; it is passed over below.
        carrying = !fields.isEmpty() && RecordType(fields) == u'R' && fields.size() < 6;
        if (carrying) continue;  // the next piece goes on with this record
        if (seen) seen(record, static_cast<std::int16_t>(i + 1), message);
        ReadRecord(fields, rule, message);
    }
    return message;
}

QString ResultLines1160(const Message1160& message, const EditSettings& settings) {
    QString lines;
    // Never reset between rows: the first judged row marks every row after it.
    QString judgeFlag;
    for (std::size_t i = 0; i < message.rows.size(); ++i) {
        const Row1160& row = message.rows[i];
        QString name = row.testNumber;
        QString code = row.testNumber + u"0"_s;
        if (row.sequence == u"2"_s && i == 0) {
            // The second result of a test with no row in front of it.
            name = row.testNumber + u"001"_s;
            code = row.testNumber + u"1"_s;
        } else if (row.sequence == u"2"_s) {
            // The second result of a test, named after the row in front of it.
            const QString& before = message.rows[i - 1].testNumber;
            name = row.testNumber + before;
            code = before + u"1"_s;
        }
        if (judgeFlag.isEmpty()) judgeFlag = row.judge;
        const ResultFields fields{.KensaDate = message.kensaDate,
                                  .KensaTime = message.kensaTime,
                                  .RunMark = settings.runMarkDefault,
                                  .SampleId = message.sampleId,
                                  .InstrumentCode = settings.instrumentCode,
                                  .InstrumentName = settings.instrumentName,
                                  .SampleSeq = QString(),
                                  .ItemCode = code,
                                  .ItemName = name,
                                  .JudgeFlag = judgeFlag,
                                  .Judge1 = row.lower,
                                  .Judge2 = row.upper,
                                  .ResultValue = row.value,  // no number format: as it was sent
                                  .ResultUnit = row.unit,
                                  .ResultComment = row.comment};
        lines += ResultRecordLine(fields) + u"\r\n"_s;
    }
    return lines;
}

Message1160 EditResult1160(std::int16_t pieceCount) {
    try {
        return RunEdit(pieceCount);
    } catch (const RuntimeError& error) {
        ErrorExit(error.description());
    }
}

}  // namespace orbline
