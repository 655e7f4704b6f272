#pragma once
// Paths are built with "\" between parts, as the system has always built them. On POSIX a "\"
// is a directory separator: it becomes "/" here, at the file-system boundary, and only here.

#include <QString>

#include <cstdint>
#include <filesystem>
#include <optional>

namespace orbline {

QString NativePath(const QString& path);
std::filesystem::path FsPath(const QString& path);

bool FileExists(const QString& path);
bool FolderExists(const QString& path);
// Makes the last level only; a missing parent is a failure.
bool MakeFolder(const QString& path);
// Deletes a folder with everything in it.
bool DeleteFolderTree(const QString& path);
bool DeleteFile(const QString& path);
std::optional<std::int64_t> FileLength(const QString& path);
bool CopyFileOver(const QString& source, const QString& target);
enum class MoveResult { Moved, TargetExists, Failed };
// Moves a closed file so that a reader of the target folder never sees it partly written, and
// never onto a file that is there: the data is flushed to disk first, the target name is taken
// in one step that fails when it exists (TargetExists, also when another process takes it at
// the same moment), and across file systems the copy is made under a staging name of this
// process beside the target and renamed there the same way. Unless Moved, the source stays
// where it was and nothing is left beside the target.
MoveResult MoveFileDurable(const QString& source, const QString& target);

}  // namespace orbline
