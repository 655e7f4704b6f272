#pragma once
// Result edits of the chemistry analysers 2140 and 2990: one routine for both, parameterised by
// the item table the dialogue loaded and the prefix of the test codes. A message is one or more
// fixed-column frames; each item group becomes one result record.

#include "common/BoundedStore.h"

#include <QString>

#include <cstdint>

namespace orbline {

// The frames of one message as the dialogue holds them: elements 1 to 100, one frame each,
// the STX still in front. Element 0 is not read by the edits.
using ChemistryFrames = BoundedArray<QString>;
inline constexpr qsizetype kChemistryFrameSlots = 100;

// Write and deliver the result file of frames 1 to count. A count past the buffer (a message of
// more than 100 frames) or more than 100 item groups ends the process through the error exit,
// and nothing is delivered.
void EditResult2140(const ChemistryFrames& frames, std::int16_t count);
void EditResult2990(const ChemistryFrames& frames, std::int16_t count);

}  // namespace orbline
