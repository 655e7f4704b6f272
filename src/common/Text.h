#pragma once
// Text operations with the system's semantics: positions count from 1, a position or length
// out of range throws RuntimeError (as the runtime raises its argument error), and Trim
// removes blanks only.

#include <QString>
#include <QStringList>

#include <optional>

namespace orbline {

// Characters from position start (1-based); all the rest, or at most length characters.
// start beyond the end gives the empty text. start < 1 or length < 0 throws.
QString Mid(const QString& text, qsizetype start);
QString Mid(const QString& text, qsizetype start, qsizetype length);
// The first / last n characters, or the whole text when it is shorter. n < 0 throws.
QString Left(const QString& text, qsizetype n);
QString Right(const QString& text, qsizetype n);
// Position (1-based) of find in text at or after start, 0 when absent. An empty find gives
// start when start lies within the text or just past it. start < 1 throws.
qsizetype InStr(const QString& text, const QString& find);
qsizetype InStr(qsizetype start, const QString& text, const QString& find);
// Removes U+0020 only: tabs, CR, LF and full-width blanks stay.
QString Trim(const QString& text);
QString LTrim(const QString& text);
QString RTrim(const QString& text);
// Repetitions of the first character of fill; an empty fill or a negative count throws.
QString RepeatChar(qsizetype count, const QString& fill);

// Field formatters of the fixed-layout dialogues: a shorter text is filled with the first
// character of fill in front (PadLeftFixed) or behind (PadRightFixed), and the result is the
// rightmost (left pad) or leftmost (right pad) length characters, so a longer text is cut.
QString PadLeftFixed(const QString& text, qsizetype length, const QString& fill);
QString PadRightFixed(const QString& text, qsizetype length, const QString& fill);

// Split on a separator: the empty text gives no field at all, "a," gives "a" and "".
QStringList Split(const QString& text, const QString& separator);
// A field that is not there is absent, not empty.
std::optional<QString> FieldAt(const QStringList& fields, qsizetype index);
// The same for procedures with an error exit: a missing field throws.
QString CheckedField(const QStringList& fields, qsizetype index);

// Line-end rules for reading a text line by line.
enum class LineEnds {
    CrLfOrCrOrLf,  // a line ends at CR LF, at CR or at LF
    CrOrCrLf,      // a line ends at CR or CR LF; a lone LF is part of the line
    CrLfOrLf,      // a line ends at CR LF or at LF; a lone CR is part of the line
};
// A final line end does not start another line: "a\r\n" is one line, "a\r\n\r\n" two.
QStringList SplitLines(const QString& text, LineEnds rule);

}  // namespace orbline
