#pragma once
// Frames and bytes written in the simulator's notation ("<STX>1H|<CR><ETX><SUM><CR><LF>"), for
// the tests of every layer: the one frame builder of the suite.

#include "support/LineHarness.h"

#include <QString>

#include <string>

namespace orbline::test {

// "<STX>" + text + end + "<SUM><CR><LF>".
std::string Frame(const std::string& text, const std::string& end = "<ETX>");

// The bytes of the notation as the port hands them to a dialogue: one character per byte.
QString PortBytes(const std::string& notation);

}  // namespace orbline::test
