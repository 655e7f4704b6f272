#pragma once
// The parent's command line as the one text it passed. Windows keeps that text whole (blanks
// and quotes included), so it is read as it stands; POSIX hands over split arguments, which
// JoinArguments joins again.
//
// Free of Qt in this header: the Windows sibling is checked with a cross compiler without Qt.

#include <string>

namespace orbline {

// The text behind the program's name, when the platform keeps it; false otherwise.
bool RawCommandArguments(std::u16string& text);

}  // namespace orbline
