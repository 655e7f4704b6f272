#pragma once
// What the frame dialogues share on the line: control bytes, the hexadecimal notation in which
// outgoing bytes are prepared, the frame of the host, and its checksums. Pure functions of
// text; the loops move bytes between the port and them.

#include <QChar>
#include <QString>
#include <QStringView>

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
// The check of a received frame: 256 minus the sum of positions 2 to length - 3, two digits at
// least. (The frame dialogues 0980, 1160 and 1190 never compare a received checksum.)
QString SumCheckNegated(const QString& text);

// The notation of a whole host frame: STX, the converted record, ETB or ETX, the first and the
// last digit of the checksum, CR LF.
QString FrameHexText(const QString& recordText, FrameEnd end);

// When a record takes two frames, and how they are cut. The frame dialogues split at 236
// characters, the first frame carrying 235 and the second its own frame number in front of
// characters 236 to 475; the cobas family splits at 240 with 237 in the first frame and a fixed
// "2" in front of characters 238 to 477. There is no third frame: the rest is dropped.
struct LongRecordRule {
    qsizetype from;            // records of this many characters or more take two frames
    qsizetype firstLength;     // characters in the first frame
    qsizetype lastCharacter;   // the last character the second frame carries
    QStringView secondNumber;  // in front of the second frame; empty: its frame number
};
inline constexpr LongRecordRule kCountedLongRecord{236, 235, 475, {}};
inline constexpr LongRecordRule kFixedLongRecord{240, 237, 477, u"2"};

bool NeedsTwoFrames(const QString& recordText, const LongRecordRule& rule);
QString FirstPartOf(const QString& longRecord, const LongRecordRule& rule);
QString SecondPartOf(const QString& longRecord, const LongRecordRule& rule, std::int16_t frameNo);

}  // namespace orbline
