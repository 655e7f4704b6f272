#pragma once
// Frames and bytes written in the simulator's notation ("<STX>1H|<CR><ETX><SUM><CR><LF>"), for
// the tests of every layer: the one frame builder of the suite.

#include "support/LineHarness.h"

#include <QString>

#include <string>
#include <vector>

namespace orbline::test {

// "<STX>" + text + end + "<SUM><CR><LF>".
std::string Frame(const std::string& text, const std::string& end = "<ETX>");

// The bytes of the notation as the port hands them to a dialogue: one character per byte.
QString PortBytes(const std::string& notation);

// A frame of the chemistry analysers (2140, 2990) in its columns: STX, the mark (">", ":",
// ";" or another), unused fields, the identifier in 13 columns, the date and time as
// "MMDDYYHHMM", the number of item groups in 3 columns and the groups (10 characters each:
// number in 3, value in 6, error mark), then ETX. An inquiry (";") ends after the time.
std::string ChemistryFrame(char mark, const std::string& id, const std::vector<std::string>& groups,
                           const std::string& dateTime = "0416200925");
// One item group: the number right-aligned in 3, the value right-aligned in 6, the mark.
std::string ItemGroup(const std::string& number, const std::string& value, char mark = ' ');

}  // namespace orbline::test
