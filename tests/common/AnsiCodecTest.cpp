#include "common/AnsiCodec.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace orbline;

namespace {

QByteArray Bytes(const char* hex) {
    return QByteArray::fromHex(QByteArray(hex));
}

struct Case {
    const char* bytes;
    QString text;
};

TEST(AnsiDecode, EachClassOfByte) {
    const Case cases[] = {
        // ASCII: 5C and 7E stay backslash and tilde; ICU's table moves 1A, 1C and 7F.
        {"00 1A 1C 5C 7E 7F", u"\u0000\u001A\u001C\\~\u007F"_s},
        {"A1 B9 DF", u"\uFF61\uFF79\uFF9F"_s},  // half-width katakana
        {"80 A0 FD FE FF", u"\u0080\uF8F0\uF8F1\uF8F2\uF8F3"_s},
        {"88 9F 98 72 98 9F EA A4 81 40", u"亜腕弌熙\u3000"_s},  // ends of both kanji levels
        // Symbols where code page 932 parts from the JIS-style tables.
        {"81 5C 81 5F 81 60 81 61 81 7C 81 CA", u"\u2015\uFF3C\uFF5E\u2225\uFF0D\uFFE2"_s},
        {"87 40 87 55 87 7E 87 8A", u"①Ⅱ㍻㈱"_s},  // NEC row 13
        {"ED 40 EE EF FA 40 FC 4B", u"纊ⅰⅰ黑"_s},  // NEC-selected IBM, IBM
        {"F0 40 F9 FC", u"\uE000\uE757"_s},        // user-defined area
        {"81 A0 82 A9", u"□か"_s},                 // trails in the katakana range
        // No character: a pair of valid shape takes both bytes; a lead byte with a byte outside
        // the trail range, or at the end (a value cut mid-pair), is alone.
        {"85 40 87 9D 41", u"・・A"_s},
        {"81 20 81 0D 0A", u"・ ・\r\n"_s},
        {"81 FD 41", u"・\uF8F1A"_s},
        {"83 76 83", u"プ・"_s},
        {"81 81 60", u"＝`"_s},  // pairs are read left to right
    };
    for (const Case& c : cases) EXPECT_EQ(DecodeAnsi(Bytes(c.bytes)), c.text) << c.bytes;
}

TEST(AnsiEncode, WindowsChoicesAndQuestionMarks) {
    const Case cases[] = {
        // Duplicates: JIS rows over NEC row 13 over IBM over NEC-selected IBM.
        {"81 E0 81 E6 81 CA", u"\u2252\u2235\uFFE2"_s},
        {"87 54 87 82", u"\u2160\u2116"_s},
        {"FA 40 FA 55 FA 5C", u"\u2170\uFFE4纊"_s},
        {"80 A0 FD FF", u"\u0080\uF8F0\uF8F1\uF8F3"_s},
        {"80 A0 FD FF", u"\uF800\uF820\uF87D\uF87F"_s},  // port text of those bytes
        // No byte in the code page, and no best fit: one "?" per code point.
        {"61 3F 62", u"a\u00E9b"_s},
        {"3F 3F 3F 3F", u"\u2212\u301C\u00A5\u203E"_s},
        {"78 3F 3F 79", u"x\U0001F600\U0001F600y"_s},
        {"3F 41", QString(QChar(char16_t(0xDC00))) + u"A"_s},
        {"3F 3F", u"\uF77F\uF8F4"_s},
        // Texts of the system.
        {"83 76 83 8D 83 4F 83 89 83 80 8A 4A 8E 6E 20 2D 2D 20", u"プログラム開始 -- "_s},
        {"81 79 8C 9F 8D B8 81 46 20", u"【検査： "_s},
        {"82 67 82 82 82 60 82 50 82 83 81 83", u"ＨｂＡ１ｃ＜"_s},
    };
    for (const Case& c : cases) EXPECT_EQ(EncodeAnsi(c.text), Bytes(c.bytes)) << c.bytes;
}

// Every pair alone and in one stream: catches a shifted or missing table row, a decoder that
// loses its place, and an encoding that does not invert the decoding.
TEST(AnsiCodec, EveryPairDecodesAndEncodesBack) {
    int characters = 0;
    QByteArray stream;
    QString expected;
    for (unsigned lead = 0x81; lead <= 0xFC; lead = lead == 0x9F ? 0xE0 : lead + 1) {
        for (unsigned trail = 0x40; trail <= 0xFC; trail = trail == 0x7E ? 0x80 : trail + 1) {
            const QByteArray bytes = QByteArray(1, char(lead)) + char(trail);
            const QString text = DecodeAnsi(bytes);
            ASSERT_EQ(text.size(), 1) << bytes.toHex().toStdString();
            stream += bytes;
            expected += text;
            if (text == u"・"_s && bytes != Bytes("81 45")) continue;
            ++characters;
            const QByteArray back = EncodeAnsi(text);
            EXPECT_EQ(DecodeAnsi(back), text);
            const bool hasTwin =
                lead == 0x87 || (lead >= 0xED && lead <= 0xEE) || (lead >= 0xFA && lead <= 0xFC);
            if (!hasTwin) {
                EXPECT_EQ(back, bytes);
            }
            EXPECT_NE(back[0], char(0xED));
            EXPECT_NE(back[0], char(0xEE));
        }
    }
    EXPECT_EQ(characters, 7724 + 1880);  // assigned + user-defined
    EXPECT_EQ(DecodeAnsi(stream), expected);
}

TEST(PortText, OneCharacterPerByteThatEncodesBack) {
    EXPECT_EQ(PortText(Bytes("41 5C A1 DF 80 81 A0 E0 FF")),
              u"A\\\uFF61\uFF9F\uF800\uF801\uF820\uF860\uF87F"_s);
    QByteArray all;
    for (int b = 0; b < 256; ++b) all.append(char(b));
    EXPECT_EQ(EncodeAnsi(PortText(all)), all);
}

}  // namespace
