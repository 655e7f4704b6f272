#pragma once
// Result edits of the coagulation analyser 1650 and of the cobas-family instruments 1660 and
// 1730. The parses and the result lines are pure; the EditResult steps add the piece files or
// the receive buffer, the result file and the logs.

#include "edits/EditSettings.h"

#include <QString>

#include <array>
#include <cstdint>
#include <optional>

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

// Reads pieces 1 .. pieceCount - 1 of AppPath\c1660 (c1730) and, for a message that is no
// query, writes and delivers its result file. Gives the query when the message asks for
// orders. 1660 ends the process through the error exit on a run-time error; 1730 passes its
// errors over.
std::optional<CobasQuery> EditResult1660(std::int16_t pieceCount);
std::optional<CobasQuery> EditResult1730(std::int16_t pieceCount);

}  // namespace orbline
