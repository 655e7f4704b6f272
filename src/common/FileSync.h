#pragma once
// Flushing a file's data, or a folder's entries, to the disk, and a rename that never replaces
// a file. Platform code; free of Qt so that the Windows file can be checked by the cross
// compiler.

#include <filesystem>

namespace orbline {

bool SyncFile(const std::filesystem::path& file);
bool SyncFolder(const std::filesystem::path& folder);

enum class Rename { Done, TargetExists, OtherFileSystem, Failed };
// Renames within one file system in one step that fails when `to` exists, so that of two
// processes taking one name at the same moment exactly one gets it.
Rename RenameNoReplace(const std::filesystem::path& from, const std::filesystem::path& to);

}  // namespace orbline
