// Result edit of the instrument 1160, the analyser whose header names it "AIA-".
//
// The dialogue saves every read of the port as one piece file; this instrument sends one record
// a frame, so the edit takes each piece (its lines joined, line ends dropped, frame bytes kept)
// as one record text. A result record that a read cut in two is joined with the next piece. The
// edit has an error exit: any run-time error, a field that is not there included, ends the
// process through ErrorExit.

#include "edits/MdlEdit011.h"

#include "common/Clock.h"
#include "common/Logging.h"
#include "common/Numbers.h"
#include "common/Paths.h"
#include "common/ResultFile.h"
#include "common/RunContext.h"
#include "common/RuntimeError.h"
#include "common/Text.h"
#include "common/TextFile.h"
#include "edits/PieceFiles.h"

#include <QStringList>

#include <optional>
#include <vector>

using namespace Qt::StringLiterals;

namespace orbline {

namespace {

const QString kPieceFolder = u"c1160"_s;
const QString kPiecePrefix = u"c1160"_s;

// ResultTable holds rows 1 to 100; one more is a run-time error.
constexpr std::size_t kMaxRows = 100;

// One row of ResultTable, columns 0 to 7.
struct Row {
    QString testNumber;  // 0
    QString value;       // 1
    QString unit;        // 2
    QString lower;       // 3
    QString upper;       // 4
    QString judge;       // 5
    QString sequence;    // 6
    QString comment;     // 7
};

QString Without(QString text, QStringView characters) {
    for (const QChar c : characters) text.remove(c);
    return text;
}

// The record type: the last character of field 0.
QChar RecordType(const QStringList& fields) {
    const QString first = CheckedField(fields, 0);
    return first.isEmpty() ? QChar() : first.back();
}

// Type H: an instrument that is not an "AIA-" is reported by a line written to the handle
// SlogOut used last. That handle is closed by then, so the write itself is the run-time error
// that ends the process: the line is built, and never reaches a file.
void ReadHeader(const QStringList& fields) {
    const QString sender = CheckedField(fields, 4);
    if (Left(sender, 4) == u"AIA-"_s) return;
    RunContext& c = Ctx();
    c.ResultLine = u"ERROR:検査機器エラー。str="_s + Trim(Left(sender, 7)) + u","_s +
                   c.InstrumentCode + u","_s + c.InstrumentName;
    throw RuntimeError(errors::BadFileNameOrNumber());
}

// Type O: the specimen number.
void ReadOrder(const QStringList& fields) {
    RunContext& c = Ctx();
    QString id = Without(Trim(Without(CheckedField(fields, 2), u"-")), u"^");
    if (id.isEmpty())
        id = u"0"_s;
    else if (IsNumeric(id))
        id = PlainDecimalText(Trim(id));
    // IDEntry "2" takes the fixed number even when it is empty; otherwise a fixed number wins.
    c.SampleId = (c.IDEntry == u"2"_s || !c.FixedSampleId.isEmpty()) ? c.FixedSampleId : id;
}

// Type Q: an order query; the dialogue answers it with the key.
void ReadQuery(const QStringList& fields, QString& queryKey) {
    Ctx().QueryMark1160 = u"Q"_s;
    queryKey = Without(CheckedField(fields, 2), u"^");
}

// Type R: one more row of ResultTable.
void ReadResult(const QStringList& fields, std::vector<Row>& rows) {
    RunContext& c = Ctx();
    if (CheckedField(fields, 1) == u"1"_s) {
        // Every first result of a test sets the time: the file carries the last one's.
        const QString completed = CheckedField(fields, 12);
        c.KensaDate = Trim(Left(completed, 8));
        c.KensaTime = Trim(Mid(completed, 9, 6));
    }
    if (rows.size() >= kMaxRows) throw RuntimeError(errors::SubscriptOutOfRange());
    Row row;
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
    rows.push_back(row);
}

// The result lines of the rows, each with CR LF.
QString ResultLines(const std::vector<Row>& rows) {
    RunContext& c = Ctx();
    c.RunMark = u"0"_s;
    c.ItemCode.clear();
    c.ItemName.clear();
    c.ResultValue.clear();
    c.ResultUnit.clear();
    c.Extra1.clear();
    c.Extra2.clear();
    c.SampleSeq.clear();
    c.Judge1.clear();
    c.Judge2.clear();
    c.JudgeFlag.clear();
    c.ResultKind = u"MIN"_s;
    QString text;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const Row& row = rows[i];
        if (row.sequence != u"2"_s) {
            c.ItemName = row.testNumber;
            c.ItemCode = row.testNumber + u"0"_s;
        } else if (i == 0) {
            // The second result of a test, with no row in front of it.
            c.ItemName = row.testNumber + u"001"_s;
            c.ItemCode = row.testNumber + u"1"_s;
        } else {
            c.ItemName = row.testNumber + rows[i - 1].testNumber;
            c.ItemCode = rows[i - 1].testNumber + u"1"_s;
        }
        c.ResultValue = row.value;  // as the instrument sent it: no number format
        c.ResultUnit = row.unit;
        c.Judge1 = row.lower;
        c.Judge2 = row.upper;
        c.ResultComment = row.comment;
        CleanResultValue();
        // Never reset between rows: the first judged row marks every row after it.
        if (c.JudgeFlag.isEmpty()) c.JudgeFlag = row.judge;
        c.RunMark = c.RunMarkDefault;
        text += ResultRecord() + u"\r\n"_s;
    }
    return text;
}

void RunEdit(std::int16_t pieceCount, QString& queryKey) {
    RunContext& c = Ctx();
    const QString stamp = NowText(u"YYYYMMDDHHMMSS"_s);

    // The work file exists before anything of the message is read.
    QString workPath;
    MakeOutFile(c.JyusinWKPath, workPath);
    if (!WriteNewText(workPath, QString())) throw RuntimeError(errors::PathNotFound());

    std::vector<Row> rows;
    bool pieceMissing = false;
    std::int16_t carryFlag = 0;
    QString pieceText;
    for (std::int16_t number = 1; number <= pieceCount - 1; ++number) {
        const QString path = PieceFilePath(kPieceFolder, kPiecePrefix, number);
        if (!FileExists(path)) {
            pieceMissing = true;
            break;
        }
        if (carryFlag == 0) pieceText.clear();
        const std::optional<QString> content = ReadAllText(path);
        if (!content) throw RuntimeError(errors::FileNotFound());
        for (const QString& line : SplitLines(*content, LineEnds::CrLfOrCrOrLf)) pieceText += line;

        const QStringList fields = Split(pieceText, u"|"_s);
        // An empty text has no field 0 and is no result record; it is passed over below.
        if (!fields.isEmpty() && RecordType(fields) == u'R' && fields.size() < 6) {
            carryFlag = 1;  // the next piece goes on with this record
            continue;
        }
        carryFlag = 0;
        SlogOut(pieceText, InstrumentCodeNumber(), stamp, number);
        if (fields.isEmpty()) continue;
        switch (RecordType(fields).unicode()) {
            case u'H':
                ReadHeader(fields);
                break;
            case u'O':
                ReadOrder(fields);
                break;
            case u'Q':
                ReadQuery(fields, queryKey);
                break;
            case u'R':
                ReadResult(fields, rows);
                break;
            default:
                break;  // P, C, L and anything else change nothing
        }
    }

    if (!pieceMissing) {
        // A query, or a message with no result: the empty work file stays where it is, with its
        // handle closed, so a long run does not pile up open handles.
        if (c.QueryMark1160 == u"Q"_s || rows.empty()) return;
        if (!WriteNewText(workPath, ResultLines(rows))) throw RuntimeError(errors::PathNotFound());
    }
    // A missing piece ends the reading and comes here with no row written. There is no test of
    // the size: an empty file is delivered as well.
    DeliverWorkFileAsIs(workPath);
}

}  // namespace

void EditResult1160(std::int16_t pieceCount, QString& queryKey) {
    try {
        RunEdit(pieceCount, queryKey);
    } catch (const RuntimeError& error) {
        ErrorExit(error.description());
    }
}

}  // namespace orbline
