#pragma once
// Result edit of the tonometer 2620 (TOMEY). The instrument sends the text of its print-out,
// so the edit is a line scanner over the received blocks: lines are recognised by fixed
// substrings, values are taken from fixed columns. Two print-out layouts exist (setting
// FT01Format). The scanners and the result lines are pure; EditResult2620 adds the logs, the
// result file and the error exit.

#include "edits/EditSettings.h"

#include <QString>

#include <vector>

namespace orbline {

// One row of the edit's row table.
struct Row2620 {
    QString date;
    QString time;
    QString sampleId;
    QString itemCode;
    QString itemName;
    QString value;
    QString unit;
    QString seq;

    bool operator==(const Row2620&) const = default;
};

// The row table holds positions 1 to 100; one more row is a run-time error.
inline constexpr qsizetype kMaxRows2620 = 100;

// What the scanners need besides the text.
struct ScanInputs2620 {
    bool ftLayout = false;  // FT01Format "1"
    QString today;          // "YYYYMMDD"
    SampleRule sampleRule;
};

// What one call carries from line to line and block to block.
struct ScanState2620 {
    QString date;
    QString time;
    QString sampleId;
    QString unit;
    std::vector<Row2620> rows;
};

// The state at the start of a call: the date is today, the rest empty.
ScanState2620 StartScan2620(const ScanInputs2620& inputs);
// Scans one received block in the layout the inputs name. Throws RuntimeError when a row would
// go past position 100.
void ScanBlock2620(const QString& block, const ScanInputs2620& inputs, ScanState2620& state);

// The CR LF lines of the result file: a record for each row with a value, the value in the
// shape of its own decimals, "," in item name and code turned into ".".
QString ResultLines2620(const std::vector<Row2620>& rows, const EditSettings& settings);

// Turns Ctx().BlockList (0 .. BlockCount - 1) into a delivered result file. Leaves in RunContext
// what the log lines read from there: SampleId and RunMark. A run-time error ends the process
// through GAbendExit.
void EditResult2620();

}  // namespace orbline
