#pragma once
// Result edit of the glycohaemoglobin analyser 0980: ASTM-like records read from the saved
// pieces of a message. A message with a Q record is left to the dialogue as an order query;
// any other becomes one result file with one record per measured item. The parse and the
// result lines are pure; EditResult0980 adds the piece files, the result file and the logs.
// Errors are passed over: a step that fails has no effect.

#include "edits/EditSettings.h"

#include <QString>
#include <QStringList>

#include <cstdint>
#include <optional>
#include <vector>

namespace orbline {

// The order query of a Q record: the components of its field 2.
struct Query0980 {
    QString key;     // the first, trimmed
    QString second;  // as it came
    QString third;   // as it came
};

// One kept R record: the name without "^" and "Value", field 3 and field 4 ("" when absent).
struct Row0980 {
    QString name;
    QString value;
    QString unit;
};

// What a message keeps from the message before until an R record sets it.
struct Carried0980 {
    QString kensaDate;
    QString kensaTime;
};

// The result rows are kept up to this many; the records past it are lost.
inline constexpr std::size_t kMaxRows0980 = 100;

struct Message0980 {
    std::vector<Row0980> rows;
    QString sampleId = QStringLiteral("0");
    QString sampleSeq = QStringLiteral("000000");
    QString sampleComment;  // behind the 19 fields of each line
    QString kensaDate;
    QString kensaTime;
    // Present when the message holds a Q record; a component is overwritten only when present.
    std::optional<Query0980> query;
    // The header's fields 4 and 13, present only when the field is.
    std::optional<QString> echoSender;
    std::optional<QString> echoVersion;
};

// The message in the texts of its pieces (the EOT piece left out).
Message0980 ParseMessage0980(const QStringList& pieces, const SampleRule& rule,
                             const Carried0980& before);

// The CR LF lines of the result file: the 19 fields, seven more separators and the sample
// comment. A numeric value with its point past position 32767 throws RuntimeError (the
// runtime's 16-bit position overflows); lineBuilt, when given, then tells whether a line came
// before it, since the run mark of the log lines follows the lines built.
QString ResultLines0980(const Message0980& message, const EditSettings& settings,
                        bool* lineBuilt = nullptr);

// Reads pieces 1 .. pieceCount - 1 of AppPath\c980 and, for a message that is no query, writes
// and delivers its result file. Leaves in RunContext what is read from there later: SampleId
// and RunMark for the log lines, KensaDate and KensaTime for the next message.
Message0980 EditResult0980(std::int16_t pieceCount);

// Result edit of the blood glucose meter 0990: every "BD" record of the stored frames is one
// measurement and becomes a result file of its own, the glucose value and, when there is one,
// the comment. The files of a transmission reach the delivery folder together, after all are
// written. A run-time error ends the process through the error exit.

// One "BD" record. The identifier is already normalised: "0" when empty or absent, a number
// without its leading zeros, or the fixed sample number.
struct Measurement0990 {
    QString kensaDate{};  // "20" + YYMMDD
    QString kensaTime{};  // HHMMSS
    QString sampleId = QStringLiteral("0");
    QString value{};
    QString judgement{};  // "1" low, "2" high
    QString comment{};    // trimmed, DEL removed
    bool operator==(const Measurement0990&) const = default;
};

inline constexpr std::size_t kMaxMeasurements0990 = 2000;

// The measurements in the texts of the stored frames (the EOT frame left out), each text read
// line by line. A "BD" record past the 2000th throws RuntimeError.
std::vector<Measurement0990> ParseFrames0990(const QStringList& frameTexts, const SampleRule& rule);

// The CR LF lines of one measurement's result file: the glucose record, and the comment record
// when the comment isn't empty.
QString ResultLines0990(const Measurement0990& measurement, const EditSettings& settings);

// Reads frames 1 .. pieceCount - 1 of AppPath\c990, writes one work file per measurement, then
// moves them all into the delivery folder. Leaves SampleId (of the last measurement) and RunMark
// "0" in RunContext for the log line.
void EditResult0990(std::int16_t& pieceCount);

}  // namespace orbline
