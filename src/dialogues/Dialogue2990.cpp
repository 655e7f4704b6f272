#include "dialogues/Dialogue2990.h"

#include "dialogues/ChemistryLoop.h"

namespace orbline {

namespace {

// A bad frame is acknowledged too, so the instrument never repeats it: it is lost with only
// the log line as a trace.
constexpr ChemistryDialogue kDialogue2990{
    .noStxReply = FixedReply::Positive,
    .dataFrameLog = DataFrameLog::EachWithCount,
    .slogsDataFrames = true,
    .edit = &EditResult2990,
};

}  // namespace

void BeginCommLoop2990() {
    RunChemistryLoop(kDialogue2990);
}

}  // namespace orbline
