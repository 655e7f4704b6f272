#include "common/AnsiCodec.h"

#include <gtest/gtest.h>

#include <QSet>

#include <cstdio>
#include <random>
#include <string>
#include <vector>

using namespace Qt::StringLiterals;

namespace orbline {
namespace {

// Failures show code units and bytes in hex: mojibake in a terminal proves nothing.
std::string Units(const QString& text) {
    std::string out;
    for (const QChar c : text) {
        char buffer[8];
        std::snprintf(buffer, sizeof buffer, "%s%04X", out.empty() ? "" : " ", c.unicode());
        out += buffer;
    }
    return out;
}

std::string Hex(const QByteArray& bytes) {
    return bytes.toHex(' ').toUpper().toStdString();
}

QByteArray Bytes(const char* hex) {
    return QByteArray::fromHex(QByteArray(hex));
}

template <typename Visit>
void ForEachPair(Visit visit) {
    for (unsigned lead = 0x81; lead <= 0xFC; lead = lead == 0x9F ? 0xE0 : lead + 1)
        for (unsigned trail = 0x40; trail <= 0xFC; trail = trail == 0x7E ? 0x80 : trail + 1)
            visit(lead, trail);
}

struct DecodeCase {
    const char* bytes;
    QString text;
};

void ExpectDecodes(const std::vector<DecodeCase>& cases) {
    for (const DecodeCase& c : cases)
        EXPECT_EQ(Units(DecodeAnsi(Bytes(c.bytes))), Units(c.text)) << "bytes " << c.bytes;
}

TEST(AnsiDecode, EachClassOfByteGivesItsCharacter) {
    ExpectDecodes({
        {"", u""_s},
        // ASCII, including the two bytes other Shift-JIS tables turn into yen and overline,
        // and the controls ICU's IBM table moves around.
        {"00 1A 1C 5C 7E 7F", u"\u0000\u001A\u001C\\~\u007F"_s},
        // Half-width katakana, both ends of the range.
        {"A1 B9 DD BB DF", u"\uFF61\uFF79\uFF9D\uFF7B\uFF9F"_s},
        // Bytes that stand alone without a character of their own.
        {"80 A0 FD FE FF", u"\u0080\uF8F0\uF8F1\uF8F2\uF8F3"_s},
        // JIS X 0208: first and last kanji of level 1 and level 2, kana, Cyrillic, blank.
        {"88 9F 98 72 98 9F EA A4", u"亜腕弌熙"_s},
        {"82 A0 82 9F 83 40 84 40 81 40", u"あぁァА\u3000"_s},
        // Symbols where code page 932 parts from the JIS-style tables.
        {"81 5C 81 5F 81 60 81 61 81 7C", u"\u2015\uFF3C\uFF5E\u2225\uFF0D"_s},
        {"81 91 81 92 81 CA 81 50", u"\uFFE0\uFFE1\uFFE2\uFFE3"_s},
        // NEC row 13.
        {"87 40 87 55 87 7E 87 82 87 8A 87 90 87 9C", u"①Ⅱ㍻№㈱≒∪"_s},
        // NEC-selected IBM extensions and the IBM extensions.
        {"ED 40 EE EC EE EF EE F9 EE FC", u"纊黑ⅰ\uFFE2\uFF02"_s},
        {"FA 40 FA 4A FA 54 FA 5C FC 4B", u"ⅰⅠ\uFFE2纊黑"_s},
        // User-defined area: the Windows private-use block, first and last.
        {"F0 40 F0 7E F0 80 F9 FC", u"\uE000\uE03E\uE03F\uE757"_s},
        // Trail bytes cover the katakana and A0 too: these are pairs, not singles.
        {"81 A0 81 A1 82 A9", u"□■か"_s},
    });
}

TEST(AnsiDecode, BytesThatFormNoCharacterGiveMiddleDot) {
    ExpectDecodes({
        // A pair of valid shape but no character takes both bytes.
        {"85 40", u"\u30FB"_s},
        {"81 AD 41", u"\u30FBA"_s},  // hole inside row 2
        {"98 73", u"\u30FB"_s},      // between level 1 and level 2
        {"87 9D", u"\u30FB"_s},      // hole in NEC row 13
        {"FC 4C", u"\u30FB"_s},      // after the last IBM extension
        // The real middle dot is a character, not an error.
        {"81 45", u"\u30FB"_s},
        // A lead byte with a byte outside the trail range behind it: the byte after it stands
        // alone.
        {"81 20", u"\u30FB "_s},
        {"81 0D 0A", u"\u30FB\r\n"_s},
        {"81 7F", u"\u30FB\u007F"_s},
        {"81 FD 41", u"\u30FB\uF8F1A"_s},
        // A lead byte at the end: the value was cut in the middle of a pair.
        {"81", u"\u30FB"_s},
        {"83 76 83", u"プ\u30FB"_s},
        // Pairing goes left to right: 81 81 is "＝", so the 60 stands alone.
        {"81 81 60", u"＝`"_s},
    });
}

struct EncodeCase {
    QString text;
    const char* bytes;
};

void ExpectEncodes(const std::vector<EncodeCase>& cases) {
    for (const EncodeCase& c : cases)
        EXPECT_EQ(Hex(EncodeAnsi(c.text)), Hex(Bytes(c.bytes))) << "text " << Units(c.text);
}

TEST(AnsiEncode, CharacterWithSeveralPairsTakesTheWindowsOne) {
    ExpectEncodes({
        // JIS X 0208 over NEC row 13 and the IBM extensions.
        {u"\u2252\u2261\u222B\u221A\u22A5\u2220\u2229\u222A"_s,
         "81 E0 81 DF 81 E7 81 E3 81 DB 81 DA 81 BF 81 BE"},
        {u"\u2235"_s, "81 E6"},  // also 87 9A and FA 5B
        {u"\uFFE2"_s, "81 CA"},  // also EE F9 and FA 54
        // NEC row 13 over the IBM extensions.
        {u"\u2160\u2169"_s, "87 54 87 5D"},
        {u"\u2116\u2121\u3231"_s, "87 82 87 84 87 8A"},
        // IBM extensions over the NEC-selected ones.
        {u"\u2170\u2179"_s, "FA 40 FA 49"},
        {u"\uFFE4\uFF07\uFF02"_s, "FA 55 FA 56 FA 57"},
        {u"纊黑"_s, "FA 5C FC 4B"},
        // Single bytes of the code page and the port text of bytes.
        {u"\u0000\u007F"_s, "00 7F"},
        {u"\u0080\uF8F0\uF8F1\uF8F2\uF8F3"_s, "80 A0 FD FE FF"},
        {u"\uF800\uF801\uF820\uF821\uF85F\uF87D\uF87F"_s, "80 81 A0 A1 DF FD FF"},
        {u"\uE000\uE757"_s, "F0 40 F9 FC"},
    });
}

TEST(AnsiEncode, CharacterWithoutBytesIsOneQuestionMark) {
    ExpectEncodes({
        {u"é"_s, "3F"},
        {u"a\u00E9b"_s, "61 3F 62"},
        {u"\u2212"_s, "3F"},  // minus sign: the code page has only U+FF0D
        {u"\u301C"_s, "3F"},  // JIS wave dash: no best fit to 81 60
        // Best fits only, which the conversion does not use: yen, overline, not, cent,
        // pound, double vertical line.
        {u"\u00A5\u203E\u00AC\u00A2\u00A3\u2016"_s, "3F 3F 3F 3F 3F 3F"},
        {u"\U0001F600"_s, "3F"},  // surrogate pair: one code point
        {u"x\U0001F600\U0001F600y"_s, "78 3F 3F 79"},
        {QString(QChar(char16_t(0xD800))), "3F"},              // lone high half
        {QString(QChar(char16_t(0xDC00))) + u"A"_s, "3F 41"},  // lone low half
        {QString(QChar(char16_t(0xD800))) + QChar(char16_t(0xD800)) + QChar(char16_t(0xDC00)),
         "3F 3F"},
        // Next to the port text and the byte stand-ins, but outside them.
        {u"\uF77F\uF880\uF8EF\uF8F4"_s, "3F 3F 3F 3F"},
        {u"\uE758\uFFFD"_s, "3F 3F"},
    });
}

// Every pair, alone and in one stream, and every BMP character: catches a table with a row or
// column missing or shifted, a decoder that loses its place, and an encoding that does not
// invert the decoding (a JIS-row pair must come back as itself).
TEST(AnsiCodec, EveryPairAndEveryCharacter) {
    QSet<char16_t> decodable;
    for (int b = 0; b < 256; ++b) {
        if ((b >= 0x81 && b <= 0x9F) || (b >= 0xE0 && b <= 0xFC)) continue;
        const QByteArray single(1, char(b));
        const QString text = DecodeAnsi(single);
        EXPECT_EQ(Hex(EncodeAnsi(text)), Hex(single));
        decodable.insert(text.front().unicode());
    }
    int characters = 0;
    int jisRowPairs = 0;
    QByteArray stream;
    QString expected;
    ForEachPair([&](unsigned lead, unsigned trail) {
        QByteArray pair;
        pair.append(char(lead)).append(char(trail));
        const QString text = DecodeAnsi(pair);
        ASSERT_EQ(text.size(), 1) << Hex(pair);
        stream += pair;
        expected += text;
        if (text == u"\u30FB"_s && pair != Bytes("81 45")) return;
        ++characters;
        decodable.insert(text.front().unicode());
        if (lead >= 0xF0 && lead <= 0xF9) {
            const unsigned index = (lead - 0xF0) * 188 + trail - (trail < 0x80 ? 0x40 : 0x41);
            EXPECT_EQ(text.front().unicode(), 0xE000 + index) << Hex(pair);
        }
        const QByteArray back = EncodeAnsi(text);
        ASSERT_EQ(back.size(), 2) << Hex(pair);
        EXPECT_EQ(Units(DecodeAnsi(back)), Units(text)) << Hex(pair);
        const auto backLead = static_cast<unsigned char>(back[0]);
        if (lead == 0x87) {
            EXPECT_TRUE(backLead == 0x87 || backLead == 0x81) << Hex(pair);
        } else if (lead >= 0xFA && lead <= 0xFC) {
            EXPECT_TRUE(backLead >= 0xFA || backLead == 0x87 || backLead == 0x81) << Hex(pair);
        } else if (lead == 0xED || lead == 0xEE) {
            EXPECT_TRUE(backLead != 0xED && backLead != 0xEE) << Hex(pair);  // all have twins
        } else {
            EXPECT_EQ(Hex(back), Hex(pair));
            ++jisRowPairs;
        }
    });
    EXPECT_EQ(characters, 7724 + 1880);  // assigned + user-defined
    EXPECT_EQ(jisRowPairs, 6879 + 1880);
    EXPECT_EQ(DecodeAnsi(stream), expected);

    for (char32_t u = 0; u <= 0xFFFF; ++u) {
        const auto unit = char16_t(u);
        if (QChar::isSurrogate(unit) || decodable.contains(unit)) continue;
        const QString text(QChar{unit});
        // Port text of 80-FF is its byte; nothing else outside the decoding has one.
        const QByteArray bytes =
            unit >= 0xF800 && unit <= 0xF87F ? QByteArray(1, char(u - 0xF780)) : Bytes("3F");
        EXPECT_EQ(Hex(EncodeAnsi(text)), Hex(bytes)) << Units(text);
    }
}

TEST(AnsiCodec, JapaneseTextsRoundTrip) {
    const std::vector<EncodeCase> texts = {
        {u"プログラム開始 -- "_s, "83 76 83 8D 83 4F 83 89 83 80 8A 4A 8E 6E 20 2D 2D 20"},
        {u"【検査： "_s, "81 79 8C 9F 8D B8 81 46 20"},
        {u"ＨｂＡ１ｃ"_s, "82 67 82 82 82 60 82 50 82 83"},
        {u"＜"_s, "81 83"},
        {u"ｹﾝｻ\r\n"_s, "B9 DD BB 0D 0A"},
        {u"C:\\検査\\結果.txt ～ ①"_s,
         "43 3A 5C 8C 9F 8D B8 5C 8C 8B 89 CA 2E 74 78 74 20 81 60 20 87 40"},
    };
    for (const EncodeCase& c : texts) {
        const QByteArray bytes = Bytes(c.bytes);
        EXPECT_EQ(Hex(EncodeAnsi(c.text)), Hex(bytes)) << Units(c.text);
        EXPECT_EQ(Units(DecodeAnsi(bytes)), Units(c.text)) << c.bytes;
    }
}

TEST(PortText, GivesOneCharacterPerByteThatEncodesBack) {
    EXPECT_EQ(Units(PortText(Bytes("00 41 5C 7E 7F A1 DF"))),
              Units(u"\u0000A\\~\u007F\uFF61\uFF9F"_s));
    EXPECT_EQ(Units(PortText(Bytes("80 81 9F A0 E0 FC FD FF"))),
              Units(u"\uF800\uF801\uF81F\uF820\uF860\uF87C\uF87D\uF87F"_s));
    EXPECT_TRUE(PortText(nullptr, 0).isEmpty());

    QByteArray all;
    for (int b = 0; b < 256; ++b) all.append(char(b));
    EXPECT_EQ(PortText(all).size(), 256);
    EXPECT_EQ(Hex(EncodeAnsi(PortText(all))), Hex(all));

    // Random lines off the port: lead bytes split from their trails, bytes no code page
    // reading would keep; all of it must reach the file unchanged.
    std::mt19937 random(932);
    std::uniform_int_distribution<int> byte(0, 255);
    std::uniform_int_distribution<int> length(0, 200);
    for (int round = 0; round < 2000; ++round) {
        QByteArray bytes(length(random), Qt::Uninitialized);
        for (char& c : bytes) c = char(byte(random));
        const QString text = PortText(bytes);
        ASSERT_EQ(text.size(), bytes.size());
        ASSERT_EQ(Hex(EncodeAnsi(text)), Hex(bytes));
        ASSERT_EQ(PortText(reinterpret_cast<const unsigned char*>(bytes.constData()), bytes.size()),
                  text);
    }
}

}  // namespace
}  // namespace orbline
