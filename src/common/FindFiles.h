#pragma once
// Searching folders for files by a pattern.

#include <QString>
#include <QStringList>

namespace orbline {

// The pattern rules: "*" any run of characters, "?" one character, "#" one digit, "[...]" one
// character of a list with ranges ("[a-c]") or, after "!", not of it. Case counts as given;
// FindFilesDeep lower-cases both sides.
bool MatchesPattern(const QString& name, const QString& pattern);

// Full paths of the matching files: the folder's own files first (by name), then each
// subfolder (by name) searched the same way. A missing folder gives nothing. Paths are built
// with "\" as everywhere in the system.
QStringList FindFilesDeep(const QString& folder, const QString& pattern);

// The file names (not paths) directly in a folder that match, by name, case not counting.
QStringList FilesMatching(const QString& folder, const QString& pattern);

}  // namespace orbline
