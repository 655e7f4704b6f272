#include "common/FileSync.h"

#include <windows.h>

namespace orbline {

bool SyncFile(const std::filesystem::path& file) {
    HANDLE handle = CreateFileW(file.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) return false;
    const bool ok = FlushFileBuffers(handle) != 0;
    CloseHandle(handle);
    return ok;
}

// NTFS commits a rename in its journal; there is no folder handle to flush.
bool SyncFolder(const std::filesystem::path&) {
    return true;
}

}  // namespace orbline
