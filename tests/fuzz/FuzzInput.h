#pragma once
// What the libFuzzer targets share: the input as the port's text, cut into reads and into the
// pieces an instrument sends one at a time, and the one way a broken property is reported.

#include "common/AnsiCodec.h"
#include "edits/EditSettings.h"

#include <QString>
#include <QStringList>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace orbline::fuzz {

// One character per byte, as the port gives them.
inline QString Text(const std::uint8_t* data, std::size_t size) {
    return PortText(data, static_cast<qsizetype>(size));
}

// Reads of 1 to 40 characters, their lengths taken from the text itself, so that a finding
// replays the same cuts.
QStringList Reads(const QString& text);

// The pieces: each ends after LF, ENQ or EOT (the frames and the control pieces of a
// transmission), the rest is the last piece.
QStringList Pieces(const QString& text);

// Settings of an edit with the instrument's code, a name and IDEntry "0".
EditSettings Settings(const char* code);

// A property the target checks does not hold: libFuzzer keeps the input.
inline void Require(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "property broken: %s\n", what);
    std::abort();
}

}  // namespace orbline::fuzz
