#pragma once
// Flushing a file's data, or a folder's entries, to the disk. Platform code; free of Qt so
// that the Windows file can be checked by the cross compiler.

#include <filesystem>

namespace orbline {

bool SyncFile(const std::filesystem::path& file);
bool SyncFolder(const std::filesystem::path& folder);

}  // namespace orbline
