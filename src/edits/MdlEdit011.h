#pragma once
// Result edits of the two E1394 instruments 1160 (the "AIA-" analyser) and 1190 (haematology).
// Each reads the saved pieces of one message: a Q record is left to the dialogue as an order
// query, anything else becomes one result file. The parses and the result lines are pure; the
// EditResult steps add the piece files, the result file and the logs.

#include "edits/EditSettings.h"

#include <QString>
#include <QStringList>

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace orbline {

// 1160. One row of the result table.
struct Row1160 {
    QString testNumber;  // the name field without "^", "\" and "&"
    QString value;
    QString unit;
    QString lower;  // of the range "lower to upper"
    QString upper;
    QString judge;     // "L", "H" or empty
    QString sequence;  // "2" for the second result of a test
    QString comment;
};

// What a 1160 message keeps from the message before until one of its records sets it.
struct Carried1160 {
    QString sampleId;
    QString kensaDate;
    QString kensaTime;
};

// The result table holds rows 1 to 100; one more is a run-time error.
inline constexpr std::size_t kMaxRows1160 = 100;

struct Message1160 {
    std::vector<Row1160> rows;
    QString sampleId;
    QString kensaDate;
    QString kensaTime;
    std::optional<QString> queryKey;  // field 2 of the last Q record, without "^"
};

// Told of each record before it is read: its text, the number of the piece that completed it
// and the message read before it.
using RecordSeen1160 =
    std::function<void(const QString& record, std::int16_t pieceNumber, const Message1160& soFar)>;

// The message in the texts of pieces 1, 2, ... in order: each piece's lines joined, line ends
// dropped, one record each; a result record with fewer than six fields goes on in the next
// piece, and one still cut at the end is dropped. Throws RuntimeError where the instrument's
// data is wrong: a header that is not "AIA-", a record short of a field it needs, a 101st row.
Message1160 ParseMessage1160(const QStringList& pieces, const SampleRule& rule,
                             const Carried1160& before, const RecordSeen1160& seen = {});

// The CR LF lines of the result file. The first judged row marks every row after it.
QString ResultLines1160(const Message1160& message, const EditSettings& settings);

// Reads pieces 1 .. pieceCount - 1 of AppPath\c1160 and, for a message with results and no
// query, writes and delivers its result file. Leaves in RunContext what is read from there
// later: SampleId and RunMark for the log lines, SampleId, KensaDate and KensaTime for the next
// message. A run-time error ends the process through the error exit.
Message1160 EditResult1160(std::int16_t pieceCount);

// 1190. The order query of the last Q record, when no R record came after it.
struct Query1190 {
    QString key;     // the third component of field 2, trimmed
    QString third;   // the same as it came
    QString first;   // the rack
    QString second;  // the position
};

// One R record; a field that is not there leaves its text empty.
struct Row1190 {
    QString name;  // the first five components of field 2 joined, trimmed
    QString value;
    QString unit;
    QString flag;
    QString when;  // "YYYYMMDDHHMMSS"
};

// The result rows are kept up to this many; the records past it are lost.
inline constexpr std::size_t kMaxRows1190 = 100;

struct Message1190 {
    std::vector<Row1190> rows;
    QString sampleId = QStringLiteral("0");
    QString sampleSeq = QStringLiteral("000000");
    // A component of several Q records is overwritten only when present.
    std::optional<Query1190> query;
};

// The message in the texts of its pieces (the EOT piece left out).
Message1190 ParseMessage1190(const QStringList& pieces, const SampleRule& rule);

// The CR LF lines of the result file: the measured items, and with OutIP other than "0" the
// flags of the flag groups. A numeric value with its point past position 32767 throws
// RuntimeError; lineBuilt, when given, then tells whether a line came before it, since the
// run mark of the log lines follows the lines built.
QString ResultLines1190(const Message1190& message, const EditSettings& settings,
                        bool* lineBuilt = nullptr);

// Reads pieces 1 .. pieceCount - 1 of AppPath\c<InstrumentCode> and, for a message that is no
// query, writes and delivers its result file. Leaves in RunContext what is read from there
// later: SampleId and RunMark for the log lines. Errors are passed over.
Message1190 EditResult1190(std::int16_t pieceCount);

}  // namespace orbline
