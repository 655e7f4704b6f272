#pragma once
// Result edit of the urine analyser 0855. Its report is a printout, not a record format: each
// test is found by searching for its name, and its values stand at fixed distances behind it.
// The parse and the result lines are pure; EditResult0855 adds the receive buffer, the result
// file and the log.

#include "edits/EditSettings.h"

#include <QString>
#include <QStringList>

#include <cstdint>

namespace orbline {

// The report's frames put together in order; a frame of five characters or fewer is left out.
QString ReportText0855(const QStringList& frames);

// What one report becomes: the lines of its result file and what the log line reads.
struct Edit0855 {
    QString lines;  // CR LF lines: result records, none, or one error line
    QString sampleId = QStringLiteral("0");
    bool recordBuilt = false;  // the run mark of the log line follows the records
    bool operator==(const Edit0855&) const = default;
};

// A report whose first frame is empty, or of a model other than VPU-4210, VPU-4010 and
// VAE-4020, gives its error line; otherwise a quantitative and a qualitative record for each of
// the 14 tests that the report shows, in the order of the test table.
Edit0855 ResultLines0855(const QStringList& frames, const EditSettings& settings);

// Reads ReceiveBuffer 0 to lastIndex, writes the result file in the work folder and delivers
// it, also when it is empty. Leaves SampleId and RunMark in RunContext for the log line. A
// run-time error ends the process through the error exit.
void EditResult0855(std::int16_t lastIndex);

}  // namespace orbline
