#pragma once
// What the frame dialogues share on the line: control bytes, the hexadecimal notation in which
// outgoing bytes are prepared, the frame of the host, and its checksums. Pure functions of
// text; the loops move bytes between the port and them.

#include <QChar>
#include <QString>

#include <cstdint>

namespace orbline {

namespace ctl {
inline constexpr QChar STX = QChar(0x02);
inline constexpr QChar ETX = QChar(0x03);
inline constexpr QChar EOT = QChar(0x04);
inline constexpr QChar ENQ = QChar(0x05);
inline constexpr QChar ACK = QChar(0x06);
inline constexpr QChar NAK = QChar(0x15);
inline constexpr QChar SYN = QChar(0x16);
inline constexpr QChar ETB = QChar(0x17);
}  // namespace ctl

// How a frame of the host ends: ETX (the end code "1") or ETB (the end code "2").
enum class FrameEnd { Etx, Etb };

// The code of a character as the checksums count it: a one-byte character its byte, a
// two-byte character of the code page its two bytes as a signed 16-bit number, as the old
// runtime's Asc gave it.
std::int32_t CharCode(QChar character);

// The notation of one character of a record: "@" is the record separator CR ("0D "), the
// listed ASCII characters and half-width katakana give their code, everything else a blank.
QString CharToHexDump(QChar character);
// A whole frame in the smaller table: "02 " for the first character, "03 " for the last, the
// characters between through the table (without "@" and the rarer punctuation).
QString TextToHexDump(const QString& frameText);

// The checksum of a host frame: the record's codes ("@" counting 13) and the end code, each
// addition reduced by 256 only when the sum is above 256, so a sum of exactly 256 gives "100".
QString SumCheckSend(const QString& recordText, FrameEnd end);
// Checks over received text: 256 minus the sum of positions 2 to length - 3, and the plain sum
// of positions 2 to length - 4. Two digits at least.
QString SumCheckNegated(const QString& text);
QString SumCheckPlain(const QString& text);

// The notation of a whole host frame: STX, the converted record, ETB or ETX, the first and the
// last digit of the checksum, CR LF.
QString FrameHexText(const QString& recordText, FrameEnd end);

// Records of this many characters or more go out in two frames; the second carries at most
// the characters up to the last one here.
inline constexpr qsizetype kLongRecordFrom = 236;
inline constexpr qsizetype kLongRecordLast = 475;
bool NeedsTwoFrames(const QString& recordText);
// The first frame's text: the first 235 characters.
QString FirstPartOf(const QString& longRecord);
// The second frame's text: its own frame number, then characters 236 to 475.
QString SecondPartOf(const QString& longRecord, std::int16_t frameNo);

}  // namespace orbline
