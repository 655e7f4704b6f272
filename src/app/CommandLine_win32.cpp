#include "app/CommandLine.h"

#include <windows.h>

namespace orbline {

bool RawCommandArguments(std::u16string& text) {
    const wchar_t* line = GetCommandLineW();
    if (line == nullptr) return false;
    // The program's name comes first, quoted when it holds blanks.
    if (*line == L'"') {
        ++line;
        while (*line != L'\0' && *line != L'"') ++line;
        if (*line == L'"') ++line;
    } else {
        while (*line != L'\0' && *line != L' ' && *line != L'\t') ++line;
    }
    while (*line == L' ' || *line == L'\t') ++line;
    text.clear();
    for (; *line != L'\0'; ++line) text.push_back(static_cast<char16_t>(*line));
    return true;
}

}  // namespace orbline
