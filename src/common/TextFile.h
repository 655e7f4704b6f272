#pragma once
// Text files in the ANSI code page, each opened, written and closed in one call.

#include <QString>

#include <optional>

namespace orbline {

// Appends text + CR LF, making the file if needed.
bool AppendLine(const QString& path, const QString& text);
// Writes the file anew with text + CR LF.
bool WriteNewLine(const QString& path, const QString& text);
// Writes the file anew with exactly the text (no line end added).
bool WriteNewText(const QString& path, const QString& text);
std::optional<QString> ReadAllText(const QString& path);

}  // namespace orbline
