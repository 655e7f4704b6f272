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
// Moves a closed file so that a reader of the target folder never sees it partly written:
// the data is flushed to disk first, a rename within one file system is atomic, and across
// file systems the copy is made under a temporary name beside the target and renamed there.
// On failure the source stays where it was.
bool MoveFileDurable(const QString& source, const QString& target);

}  // namespace orbline
