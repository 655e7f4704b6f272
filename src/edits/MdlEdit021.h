#pragma once
// Result edits of the chemistry analysers 2140 and 2990: one routine for both, parameterised by
// the item table the dialogue loaded and the prefix of the test codes. A message is one or more
// fixed-column frames; each item group becomes one result record.

#include "common/BoundedStore.h"
#include "edits/EditSettings.h"

#include <QString>
#include <QStringList>

#include <cstdint>
#include <vector>

namespace orbline {

// The frames of one message as the dialogue holds them: elements 1 to 100, one frame each,
// the STX still in front. Element 0 is not read by the edits.
using ChemistryFrames = BoundedArray<QString>;
inline constexpr qsizetype kChemistryFrameSlots = 100;

// One item group of a frame, each field trimmed.
struct ChemistryGroup {
    QString number;  // the instrument's item number, the key of the item table
    QString value;
    QString mark;  // the error mark
    bool operator==(const ChemistryGroup&) const = default;
};

// The groups of all frames of a message, at most this many.
inline constexpr std::size_t kMaxChemistryGroups = 100;

// What the frames read so far hold. Every frame replaces the identifier, date and time, so all
// records of a message take those of its last frame.
struct ChemistryMessage {
    std::vector<ChemistryGroup> groups;
    QString sampleId = QStringLiteral("0");
    QString kensaDate;  // YYYYMMDD
    QString kensaTime;  // HHMMSS
};

// Reads one frame into the message: the identifier (after the fixed number rule), the date, the
// time, and as many groups as its count says when the count is numeric; a group past the text
// reads as empty. Throws RuntimeError at a 101st group of the message, and at a count that no
// integer holds.
void ReadChemistryFrame(const QString& frame, const SampleRule& rule, ChemistryMessage& message);

// Where an instrument's item table keeps the item number and its name. Rows 1 to count are
// searched in order.
struct ChemistryItemTable {
    const BoundedTable& table;
    std::int16_t count;
    qsizetype keyColumn;
    qsizetype nameColumn;
};

struct ChemistryParams {
    ChemistryItemTable items;
    QString codePrefix;  // "2140", "2990": the k-th name of the edit's own list has prefix + k*10
};

struct ChemistryEdit {
    QString lines;  // CR LF result lines, one for each group
    // The item number of each group whose number has no table row, in order, repeats included.
    QStringList unknownItems;
};

// The result lines of a message. RunMark stays "0": this edit doesn't take RunMarkDefault.
// Throws RuntimeError when the search for a number runs past the table's bound.
ChemistryEdit ResultLinesChemistry(const ChemistryMessage& message, const ChemistryParams& params,
                                   const EditSettings& settings);

// The routine of both entry points below, with the instrument's table and prefix. Leaves
// SampleId and RunMark in RunContext for the log lines.
void EditResultChemistry(const ChemistryFrames& frames, std::int16_t count,
                         const ChemistryParams& params);

// Write and deliver the result file of frames 1 to count. A count past the buffer (a message of
// more than 100 frames) or more than 100 item groups ends the process through the error exit,
// and nothing is delivered.
void EditResult2140(const ChemistryFrames& frames, std::int16_t count);
void EditResult2990(const ChemistryFrames& frames, std::int16_t count);

}  // namespace orbline
