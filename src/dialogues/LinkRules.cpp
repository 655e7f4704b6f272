#include "dialogues/LinkRules.h"

#include "common/AnsiCodec.h"
#include "common/Text.h"

using namespace Qt::StringLiterals;

namespace orbline {

namespace {

constexpr char16_t kFirstKatakana = 0xFF65;  // "･"
constexpr char16_t kLastKatakana = 0xFF9F;   // "ﾟ"

bool IsAsciiAlnum(QChar c) {
    const char16_t u = c.unicode();
    return (u >= u'0' && u <= u'9') || (u >= u'A' && u <= u'Z') || (u >= u'a' && u <= u'z');
}

bool IsTableKatakana(QChar c) {
    return c.unicode() >= kFirstKatakana && c.unicode() <= kLastKatakana;
}

QString HexByte(std::uint32_t value) {
    return u"%1 "_s.arg(value & 0xFF, 2, 16, QChar(u'0')).toUpper();
}

// The notation of a character that the table knows, or a blank.
QString TableHex(QChar c, QStringView punctuation) {
    if (IsAsciiAlnum(c) || punctuation.contains(c)) return HexByte(c.unicode());
    // Half-width katakana sit at A1..DF in the code page, 0xFEC0 below their UTF-16 code.
    if (IsTableKatakana(c)) return HexByte(c.unicode() - 0xFEC0u);
    return u"20 "_s;
}

// Upper-case hexadecimal of the runtime's Hex(): a negative sum as its 32-bit two's
// complement, one digit padded with "0".
QString SumText(std::int32_t sum) {
    QString text = QString::number(static_cast<std::uint32_t>(sum), 16).toUpper();
    if (text.size() == 1) text.prepend(u'0');
    return text;
}

std::int32_t Reduced(std::int32_t sum) {
    return sum > 256 ? sum - 256 : sum;
}

std::int32_t SumOfRange(const QString& text, qsizetype from, qsizetype to) {
    std::int32_t sum = 0;
    for (qsizetype i = from; i <= to && i <= text.size(); ++i)
        sum = Reduced(sum + CharCode(text.at(i - 1)));
    return sum;
}

}  // namespace

std::int32_t CharCode(QChar character) {
    const QByteArray bytes = EncodeAnsi(QString(character));
    if (bytes.size() == 1) return static_cast<std::uint8_t>(bytes.at(0));
    if (bytes.size() == 2) {
        const auto word = static_cast<std::uint16_t>((static_cast<std::uint8_t>(bytes.at(0)) << 8) |
                                                     static_cast<std::uint8_t>(bytes.at(1)));
        return static_cast<std::int16_t>(word);
    }
    return 0;
}

QString CharToHexDump(QChar character) {
    if (character == u'@') return u"0D "_s;
    return TableHex(character, u",.-/:;=<>?!#$%&'()~^_\\|\"");
}

QString TextToHexDump(const QString& frameText) {
    QString hex = u"02 "_s;
    for (qsizetype i = 1; i + 1 < frameText.size(); ++i)
        hex += TableHex(frameText.at(i), u",.-/:;=<>?_|");
    return hex + u"03 "_s;
}

QString SumCheckSend(const QString& recordText, FrameEnd end) {
    std::int32_t sum = 0;
    for (const QChar c : recordText) sum = Reduced(sum + (c == u'@' ? 13 : CharCode(c)));
    sum = Reduced(sum + (end == FrameEnd::Etx ? 3 : 23));
    return SumText(sum);
}

QString SumCheckNegated(const QString& text) {
    return SumText(256 - SumOfRange(text, 2, text.size() - 3));
}

QString FrameHexText(const QString& recordText, FrameEnd end) {
    const QString sum = SumCheckSend(recordText, end);
    QString hex = u"02 "_s;
    for (const QChar c : recordText) hex += CharToHexDump(c);
    hex += end == FrameEnd::Etx ? u"03 "_s : u"17 "_s;
    // Only the first and the last digit go out: a sum of 256 ("100") is sent as "1" "0".
    hex += CharToHexDump(sum.front()) + CharToHexDump(sum.back());
    return hex + u"0D 0A "_s;
}

bool NeedsTwoFrames(const QString& recordText, const LongRecordRule& rule) {
    return recordText.size() >= rule.from;
}

QString FirstPartOf(const QString& longRecord, const LongRecordRule& rule) {
    return Left(longRecord, rule.firstLength);
}

QString SecondPartOf(const QString& longRecord, const LongRecordRule& rule, std::int16_t frameNo) {
    const QString number =
        rule.secondNumber.isEmpty() ? QString::number(frameNo) : rule.secondNumber.toString();
    return number + Mid(longRecord, rule.firstLength + 1, rule.lastCharacter - rule.firstLength);
}

}  // namespace orbline
