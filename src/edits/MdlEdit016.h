#pragma once
// Result edits of the coagulation analyser 1650, of the cobas-family instruments 1660 and 1730,
// and of the tympanometer 1671. The parses, the result lines and the charts are pure; the
// EditResult steps add the piece files or the receive buffer, the result file and the logs.

#include "edits/EditSettings.h"

#include <QString>
#include <QStringList>

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

namespace orbline {

// 1650. What one message becomes: the lines of its result file and what the log lines read.
struct Edit1650 {
    QString lines;                    // CR LF lines: result records, or one error line
    std::optional<QString> sampleId;  // a result message's sample number
    bool recordBuilt = false;         // the run mark of the log lines follows the records
    bool operator==(const Edit1650&) const = default;
};

// At most this many result slots are read; the rest of a longer message is lost.
inline constexpr int kMaxSlots1650 = 23;

// The message from STX to ETX: a "D" message gives a record for each nine-character slot from
// position 54 (one whose end lies up to two past the text is still read); an empty message or
// one of another kind gives its error line.
Edit1650 ResultLines1650(const QString& message, const EditSettings& settings);

// Writes and delivers the result file of one message. Leaves SampleId and RunMark in
// RunContext for the log lines. A run-time error ends the process through the error exit.
void EditResult1650(const QString& message);

// 1660 and 1730.

// The order query of a Q record: the specimen and the five fields of its place, which the
// answer hands back unchanged.
struct CobasQuery {
    QString sampleId;               // trimmed
    std::array<QString, 5> places;  // as the instrument sent them
    bool operator==(const CobasQuery&) const = default;
};

// One R record, as its result line takes it.
struct CobasRow {
    QString code{};
    QString value{};
    QString unit{};
    QString judge{};  // "H", "L" or ""
    QString alarm{};
    QString sampleId{};   // of the O record before it
    QString kensaDate{};  // YYYYMMDD
    QString kensaTime{};  // HHMMSS
    QString judge1{};     // 1730: the two parts of field 5
    QString judge2{};
    bool operator==(const CobasRow&) const = default;
};

// The result table holds rows 1 to 100.
inline constexpr std::size_t kMaxRowsCobas = 100;

struct CobasMessage {
    std::vector<CobasRow> rows;
    // What the last O record set (and, in 1730, the date of an R record); every later row takes
    // it, and SampleSeq goes on every line.
    QString sampleId = QStringLiteral("0");
    QString sampleSeq = QStringLiteral("000000");
    QString kensaDate;
    QString kensaTime;
    // Present when the last Q or R record of the message is a Q record.
    std::optional<CobasQuery> query;
};

// The message in the texts of its pieces, each as the edit keeps it (see the EditResult steps):
// joined, CR LF taken out, cut into records at every CR and every STX. A record that a frame
// boundary cut stays cut: each part is read as a record of its own. 1660 throws RuntimeError
// where a Q or O record lacks a field or a "^" part it reads, and at a 101st R record.
CobasMessage ParseMessage1660(const QStringList& pieceTexts, const SampleRule& rule);
// 1730 passes over what it can't read, and the R records past the 100th.
CobasMessage ParseMessage1730(const QStringList& pieceTexts);

// An entry of an item table, searched by code for the name; the first match wins.
struct CobasItem {
    QString code;
    QString name;
};
// 1660: the 206 rows of the order table, row 197 (TG) with the code 130.
const std::vector<CobasItem>& ItemTable1660();
// 1730: ItemCodes and ItemNames of RunContext, entries 1 to ItemCount.
std::vector<CobasItem> ItemTable1730();

// The CR LF lines of the result file. RunMark stays "0": these edits don't take RunMarkDefault.
// 1660 throws RuntimeError on a value it can't format; 1730 writes such a value as it came.
QString ResultLines1660(const CobasMessage& message, const EditSettings& settings);
QString ResultLines1730(const CobasMessage& message, const EditSettings& settings,
                        const std::vector<CobasItem>& items);

// Reads pieces 1 .. pieceCount - 1 of AppPath\c<InstrumentCode> and, for a message that is no
// query, writes and delivers its result file. Gives the query when the message asks for orders.
// Leaves SampleId and RunMark in RunContext for the log lines. 1660 ends the process through
// the error exit on a run-time error; 1730 passes its errors over.
std::optional<CobasQuery> EditResult1660(std::int16_t pieceCount);
std::optional<CobasQuery> EditResult1730(std::int16_t pieceCount);

// 1671. What a call of the tympanometer edit covers.
enum class Call1671 {
    OneEar,    // one "J" line
    BothEars,  // two "J" lines, the right and the left ear of one test
    Reflex,    // a batch of reflex lines, every line to the end of the list
};

// 1671. Chart lines carry no line end; files hold them with CR LF.

// The pressure table of a "J" line: rows 0 to PressureRowCount, falling from 200 by the step.
// The last row is the free one: empty, or the -200 row that closes a 269 or 270 point test.
struct PressureRow1671 {
    QString pressure;
    QString compliance;
    bool operator==(const PressureRow1671&) const = default;
};
struct PressureTable1671 {
    std::vector<PressureRow1671> rows;
    int PressureRowCount = 0;
};
// Throws RuntimeError on a sample or a point count that is no number, and past 1001 rows.
PressureTable1671 ReadPressureTable1671(const QString& line);
// The number of points of a "J" line; throws RuntimeError when it is no number.
int PointCount1671(const QString& line);

// The chart of a single ear, with its value column (right or left) filled.
QStringList SingleEarChart1671(const QString& line);
// The ear file of one line of a pair: its own value column only, no empty row.
QStringList EarFile1671(const QString& line);
// Both ears from the texts of their ear files (lines ending in CR LF or in LF), by rising
// pressure, ended by the 200 row (the 400 row past 300 points and 200 daPa).
QStringList MergedChart1671(const QString& rightText, const QString& leftText, int points);
// The reflex chart of a batch of "M" lines.
QStringList ReflexChart1671(const QStringList& lines, const QString& sampleId);

// The error line (without its line end) of a call whose first line, or whose pair of dates,
// can't be taken; nothing for a call that makes a chart.
std::optional<QString> RejectedLine1671(const QStringList& lines, Call1671 call,
                                        const EditSettings& settings);

// Writes the chart into JyusinDataPath2 and the result file that points to it, for the
// repaired lines of one call (each ending in ETX). A first line that is empty, or marked with
// neither "J" nor "M", gives its error line in the result file instead; so does a pair of two
// dates or a pair whose ear files are missing. A run-time error ends the process through the
// error exit.
void EditResult1671(const QStringList& lines, Call1671 call);

}  // namespace orbline
