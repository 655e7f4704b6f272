#include "common/StandardError.h"

#include <cstdio>

namespace orbline {

void WriteStandardError(const char* bytes, std::size_t size) {
    // A windowed process may have no standard error at all; the write then fails quietly.
    std::fwrite(bytes, 1, size, stderr);
    std::fflush(stderr);
}

}  // namespace orbline
