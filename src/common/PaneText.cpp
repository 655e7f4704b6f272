#include "common/PaneText.h"

#include "common/AwCodeConvert.h"
#include "common/Form.h"
#include "common/Numbers.h"
#include "common/Text.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace orbline {

namespace {

// The pane's text buffer: what does not fit is cut.
constexpr qsizetype kFormatRoom = 51200;
// Characters of a line in the two number modes before its CR LF.
constexpr std::int32_t kLineWidth = 48;

// A token as the runtime reads "&H" + token or a decimal token into a byte: anything else, a
// value above 255 included, is a failed conversion and gives 0.
std::uint8_t TokenByte(const QString& token, bool hexadecimal) {
    if (!hexadecimal) {
        const auto number = ToInt32(token);
        return (number && *number >= 0 && *number <= 255) ? static_cast<std::uint8_t>(*number) : 0;
    }
    int value = 0;
    for (const QChar c : token) {
        const int digit = QStringView(u"0123456789ABCDEF").indexOf(c.toUpper());
        if (digit < 0) return 0;
        value = value * 16 + digit;
        if (value > 255) return 0;
    }
    return static_cast<std::uint8_t>(value);
}

QByteArray TokensToBytes(const QString& text, bool hexadecimal) {
    QString tokens = Trim(text);
    if (tokens.isEmpty()) return {};
    tokens.replace(u"\r\n"_s, u" "_s);
    while (tokens.contains(u"  "_s)) tokens.replace(u"  "_s, u" "_s);
    QByteArray bytes;
    for (const QString& token : tokens.split(u' '))
        bytes.append(static_cast<char>(TokenByte(token, hexadecimal)));
    return bytes;
}

QByteArray CharactersToBytes(const QString& text) {
    QByteArray bytes;
    const QString hidden = Form().HiddenChar;
    for (const QChar c : text)
        if (hidden.isEmpty() || c != hidden.at(0))
            bytes.append(static_cast<char>(c.unicode() & 0xFF));
    return bytes;
}

// Source code number of a tape mode.
int TapeCode(qsizetype mode) {
    return mode == 3 ? AwCodeConvert::Iso : AwCodeConvert::Eia;
}

}  // namespace

QByteArray ConvertToBinary(const QString& text, qsizetype mode) {
    switch (mode) {
        case 0:
            return TokensToBytes(text, true);
        case 1:
            return TokensToBytes(text, false);
        case 2:
            return CharactersToBytes(text);
        case 3:
        case 4: {
            const AwCodeConvert& codes = AwCodeConvert::Instance();
            QByteArray bytes = CharactersToBytes(text);
            for (char& b : bytes) {
                const auto ascii = static_cast<std::uint8_t>(b);
                b = static_cast<char>(mode == 3 ? codes.ConvertToIso(ascii, AwCodeConvert::Ascii)
                                                : codes.ConvertToEia(ascii, AwCodeConvert::Ascii));
            }
            return bytes;
        }
        default:
            return {};
    }
}

std::int32_t GetByteArrayLength(const QByteArray& bytes) {
    return static_cast<std::int32_t>(bytes.size());
}

QString FormatBinary(const QByteArray& bytes, std::int32_t count, bool continueLine,
                     qsizetype mode) {
    const Form_TesvaneMain& f = Form();
    const AwCodeConvert& codes = AwCodeConvert::Instance();
    const qsizetype n = std::clamp<qsizetype>(count, 0, bytes.size());
    std::int32_t linePosition = continueLine ? f.receiveText.Length() : 0;
    QString text;
    for (qsizetype i = 0; i < n && text.size() < kFormatRoom; ++i) {
        const auto b = static_cast<std::uint8_t>(bytes.at(i));
        switch (mode) {
            case 0:
            case 1: {
                const QString& digits = mode == 0 ? f.hexTable.at(b) : f.decimalTable.at(b);
                text += digits + u' ';
                linePosition += static_cast<std::int32_t>(digits.size()) + 1;
                if (linePosition >= kLineWidth) {
                    text += u"\r\n"_s;
                    linePosition = 0;
                }
                break;
            }
            case 2:
                text += f.charTable.at(b);
                break;
            case 3:
            case 4: {
                const std::uint8_t ascii = codes.ConvertToAscii(b, TapeCode(mode));
                if (ascii != 0) text += f.charTable.at(ascii);
                break;
            }
            default:
                break;
        }
    }
    return text.left(kFormatRoom);
}

}  // namespace orbline
