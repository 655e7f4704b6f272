#pragma once
// Writing to standard error without risk to the process. Platform code; free of Qt so that the
// Windows file can be checked by the cross compiler.

#include <cstddef>

namespace orbline {

// Writes the bytes whole, or loses them: a standard error that is closed, full or a pipe whose
// reader has gone costs the bytes and nothing else (no SIGPIPE ends the process).
void WriteStandardError(const char* bytes, std::size_t size);

}  // namespace orbline
