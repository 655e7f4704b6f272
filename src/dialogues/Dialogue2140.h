#pragma once
// The chemistry analyser 2140: polls, result messages and order inquiries ("SPE"), each frame
// answered at once. An inquiry is answered with the items of the specimen's order as 88 flags
// and the patient's kana name.

#include "edits/MdlEdit021.h"

#include <QString>

#include <cstdint>

namespace orbline {

// Builds the reply to the inquiry in element 0 into element 1: positions 2 to 42 of the
// inquiry, " 88" (or "  0" when no item was found), the items and the name of the lookup.
// 0 when element 1 holds a reply to send; 1 for an empty identifier (element 1 untouched), 6
// when the order has no item the instrument knows.
std::int16_t BuildOrderReply2140(ChemistryFrames& frames);

// The frame of a reply in the hexadecimal notation: "02 ", a notation for each byte the text
// takes in the code page, "03 ". A double-byte character goes out as a blank and the steps past
// the last character add one blank each, so the frame keeps the text's byte length.
QString OrderReplyHex2140(const QString& replyText);

// Runs until the session ends (Connected false).
void BeginCommLoop2140();

}  // namespace orbline
