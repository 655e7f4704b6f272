#pragma once
// The panes' two directions: pane text to bytes by a mode, and bytes to pane text. The mode is
// the position in the mode lists: 0 hexadecimal, 1 decimal, 2 ASCII, 3 ISO, 4 EIA.

#include <QByteArray>
#include <QString>

#include <cstdint>

namespace orbline {

// Modes 0 and 1 read blank-separated tokens (CR LF counts as a blank); a token that is no byte
// value gives 0. Mode 2 gives one byte per character, its low byte, and none for HiddenChar;
// modes 3 and 4 then carry each byte from ASCII into ISO or EIA (0 where the code has none).
// Every byte for the port passes through here in mode 0.
QByteArray ConvertToBinary(const QString& text, qsizetype mode);
std::int32_t GetByteArrayLength(const QByteArray& bytes);

// The first count bytes as pane text, by the form's code tables: mode 0 "41 " with CR LF after
// each 48 characters of a line, mode 1 "065 " likewise, mode 2 the character table, modes 3 and
// 4 the character of the byte read as ISO or EIA (nothing where ASCII has none). With
// continueLine the line position starts from the length already in the receive builder. The
// text is at most 51200 characters.
QString FormatBinary(const QByteArray& bytes, std::int32_t count, bool continueLine,
                     qsizetype mode);

}  // namespace orbline
