#pragma once
// The system's ANSI code page (932, Shift-JIS with the NEC and IBM extensions), converted as
// the Windows conversion does, and the one-byte-per-character text of bytes from the port.
//
// Decoding (bytes to text):
//   - 00-7F: ASCII (5C is "\", 7E is "~").
//   - A1-DF: half-width katakana U+FF61-U+FF9F.
//   - a lead byte (81-9F, E0-FC) and a trail byte (40-7E, 80-FC) form a pair: its character;
//     a pair with no character in the code page is U+30FB "・" (both bytes consumed).
//   - a lead byte with no valid trail byte behind it (end of data, or a byte outside the trail
//     range) is U+30FB; the byte after it is then read on its own.
//   - 80 is U+0080, A0 is U+F8F0, FD, FE, FF are U+F8F1, U+F8F2, U+F8F3.
// Encoding (text to bytes):
//   - every character the decoding gives comes back as its bytes; where several pairs decode
//     to one character, the JIS X 0208 pair wins over the NEC row 13 pair, that over the IBM
//     extension (FA-FC), that over the NEC-selected IBM extension (ED-EE);
//   - U+F780 + b (the port text of a byte b of 80-FF) is the byte b;
//   - a character with no byte in the code page is "?".

#include <QByteArray>
#include <QString>

namespace orbline {

QString DecodeAnsi(const QByteArray& bytes);
QByteArray EncodeAnsi(const QString& text);

// Bytes from the port as text, one character per byte: 00-7F as ASCII, A1-DF as half-width
// katakana, every other byte as U+F780 + byte. EncodeAnsi of the result gives the bytes back.
QString PortText(const QByteArray& bytes);
QString PortText(const unsigned char* bytes, qsizetype count);

}  // namespace orbline
