#pragma once
// The tympanometer 1671 prints its tests to the line and expects nothing back. A test has no
// end mark: it is over when the line has been silent for five seconds. Then the pieces are
// repaired into lines (each ending in ETX) and the lines are scanned into the calls of the edit.

#include "edits/MdlEdit016.h"

#include <QString>
#include <QStringList>

#include <vector>

namespace orbline {

// The lines of the pieces, in order: each piece cleaned of its CR LF pairs alone (a pair cut
// over two pieces stays); the first ETX of a piece closes the line being built and the rest of
// the piece begins the next one, later ETX included. The unfinished line at the end is lost.
QStringList RepairLines1671(const QStringList& pieces);

// One call of the edit: `count` lines from `first` (0-based).
struct ScanCall1671 {
    Call1671 call;
    qsizetype first;
    qsizetype count;
    bool operator==(const ScanCall1671&) const = default;
};

// The calls for the lines, by the third character of each: two "J" lines in a row are both ears
// of one test, a "J" alone one ear, an "M" line begins a reflex batch that takes every line to
// the end. A line marked otherwise is one call of its own, which the edit answers with its error
// line, and the scan moves on.
std::vector<ScanCall1671> ScanLines1671(const QStringList& lines);

// Runs until the session ends (Connected false).
void BeginCommLoop1671();

}  // namespace orbline
