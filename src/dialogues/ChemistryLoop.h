#pragma once
// The loop that the chemistry analysers 2140 and 2990 share. A frame is whatever arrived
// within one second of its first byte; its second byte says whether it is a poll, a data frame
// of a result message or an order inquiry. Every frame is answered at once with a short fixed
// frame; a message's data frames are gathered until its last one and then edited.

#include "common/FixedReply.h"
#include "edits/MdlEdit021.h"

#include <QString>

#include <cstdint>

namespace orbline {

// How the loop logs a data frame.
enum class DataFrameLog {
    FirstOfMessage,  // "データ受信中 -- " at the first frame of a message
    EachWithCount,   // "データ受信 -- " and the frame's number, at every frame
};

struct ChemistryDialogue {
    FixedReply noStxReply;  // the reply to a read that does not begin with STX
    DataFrameLog dataFrameLog;
    bool slogsDataFrames;  // each data frame to the Slog as it comes, besides the edit's copy
    // The order exchange for an inquiry; nullptr: the inquiry is acknowledged and dropped.
    void (*inquiry)(const QString& frame, ChemistryFrames& frames) = nullptr;
    void (*edit)(const ChemistryFrames& frames, std::int16_t count) = nullptr;
};

// Runs until the session ends (Connected false).
void RunChemistryLoop(const ChemistryDialogue& dialogue);

}  // namespace orbline
