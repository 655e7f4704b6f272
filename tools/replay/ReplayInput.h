#pragma once
// What a replay plays: the instrument's pieces in order, with the link's replies that a capture
// shows between them. Pure: text or files in, steps out.

#include "ByteNotation.h"

#include <optional>
#include <string>
#include <vector>

namespace orbline::replay {

enum class StepKind {
    Send,   // the instrument's piece, written in one go
    Reply,  // the link's answer as captured: waited for by its length, compared
    Pause,  // milliseconds, before the time scale
    Rate,   // the line rate of the sends from here on (0: unpaced)
    Chunk,  // the sends from here on cut into pieces of `length` bytes, `milliseconds` apart
};

struct Step {
    StepKind kind = StepKind::Send;
    sim::Bytes bytes{};
    std::size_t length = 0;  // Reply: the bytes to wait for; Rate: baud; Chunk: piece size
    int milliseconds = 0;    // Pause, Chunk
};

// A capture in the simulator's notation: "> BYTES" (sent by the instrument), "< BYTES" (by
// the link; a shortened "... (N bytes)" counts N), "pause MS", "rate BAUD", "chunk SIZE MS"
// (so a printer's lines arrive in the reads they came in). Other lines (comments, the
// simulator's own remarks) are skipped. Empty optional and a reason for a bad line, and for a
// shortened "> " line, whose bytes are lost.
std::optional<std::vector<Step>> ParseCapture(const std::string& text, std::string& error);

// The piece files of a dialogue's work folder ("prefix_NNNN.txt", the bytes of one read each
// and the line end the dialogue wrote after them), as sends in the order of their numbers. Empty
// optional and a reason when there are none.
std::optional<std::vector<Step>> ReadPieceFolder(const std::string& folder, std::string& error);

}  // namespace orbline::replay
