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

// 1650.

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
