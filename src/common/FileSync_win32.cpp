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

// Without MOVEFILE_REPLACE_EXISTING the move fails when the target exists. Without
// MOVEFILE_COPY_ALLOWED, which would copy onto the final name where a reader could take a
// partial file: across volumes the caller copies to a staging name first.
Rename RenameNoReplace(const std::filesystem::path& from, const std::filesystem::path& to) {
    if (MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_WRITE_THROUGH) != 0) return Rename::Done;
    switch (GetLastError()) {
        case ERROR_ALREADY_EXISTS:
        case ERROR_FILE_EXISTS:
            return Rename::TargetExists;
        case ERROR_NOT_SAME_DEVICE:
            return Rename::OtherFileSystem;
        default:
            return Rename::Failed;
    }
}

}  // namespace orbline
