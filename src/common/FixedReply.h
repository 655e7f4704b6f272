#pragma once
// Every byte that goes to the port passes through the hexadecimal notation of the send pane
// ("02 06 0D ") and is turned into bytes just before the write (ConvertToBinary, mode 0).

#include "common/PaneText.h"  // ConvertToBinary and GetByteArrayLength, for the replies' callers

#include <cstdint>

namespace orbline {

// The fixed replies, with the numbers of their table.
enum class FixedReply : std::int16_t {
    FrameAccepted = 1,  // STX ACK "0" "CA" ETX
    FrameRefused = 2,   // STX NAK "0" "BB" ETX
    FrameD0nsd = 3,     // STX "D0NSD" "A7" ETX, sent by no dialogue
    Prepared = 4,       // SendBytes as a dialogue prepared it
    Ack = 5,
    Nak = 6,
    Enq = 7,
    Eot = 8,
    Positive = 10,  // STX ">" ETX
    Negative = 11,  // STX "?" ETX
    AckCr = 12,
    NakCr = 13,
};
// Sets SendBytes from the table (Prepared, or a number outside the table, keeps it), writes it
// to the port through the send pane, yields once and empties the pane. A run-time error in it
// ends the process.
void SendFixedReply(FixedReply reply);

// CTS and DSR of the port into their labels, when the port object exists.
void ShowLineStates();
// The send and receive counts into their labels, as "#,##0".
void ShowByteCounts();

}  // namespace orbline
