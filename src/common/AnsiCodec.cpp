#include "common/AnsiCodec.h"

#include <QStringDecoder>
#include <QtGlobal>

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace orbline {

namespace {

constexpr char16_t kNoCharacter = u'\u30FB';  // what the code page gives for bytes it cannot read
constexpr char16_t kPortTextBase = 0xF780;    // port text of a byte b of 80-FF is U+F780 + b

// Leads 81-9F and E0-FC: 31 + 29 rows of the pair table.
constexpr std::size_t kLeadCount = 60;

constexpr bool IsLead(unsigned b) {
    return (b >= 0x81 && b <= 0x9F) || (b >= 0xE0 && b <= 0xFC);
}
constexpr bool IsTrail(unsigned b) {
    return (b >= 0x40 && b <= 0x7E) || (b >= 0x80 && b <= 0xFC);
}
constexpr int LeadRow(unsigned lead) {
    return lead <= 0x9F ? int(lead) - 0x81 : int(lead) - 0xE0 + 31;
}
constexpr bool IsHalfWidthKatakana(unsigned b) {
    return b >= 0xA1 && b <= 0xDF;
}

// The single bytes that are neither ASCII, katakana nor lead bytes.
constexpr char16_t StandAloneByte(unsigned b) {
    switch (b) {
        case 0x80:
            return 0x0080;
        case 0xA0:
            return 0xF8F0;
        case 0xFD:
            return 0xF8F1;
        case 0xFE:
            return 0xF8F2;
        case 0xFF:
            return 0xF8F3;
        default:
            return 0;
    }
}

// Where one character has several pairs, the lower rank is the one written.
int PairRank(unsigned lead) {
    if (lead == 0x87) return 1;                  // NEC row 13
    if (lead >= 0xFA && lead <= 0xFC) return 2;  // IBM extensions
    if (lead == 0xED || lead == 0xEE) return 3;  // NEC-selected IBM extensions
    return 0;                                    // JIS X 0208 rows and the user-defined area
}

// Encoded form of a UTF-16 unit: 0 has no byte, 0x01nn is the single byte nn, anything from
// 0x8140 up is a lead/trail pair. U+0000 is 0x0100, so 0 stays free to mean "none".
constexpr std::uint16_t kSingleFlag = 0x0100;

struct Tables {
    std::array<char16_t, 256> single{};              // 0 for lead bytes
    std::array<char16_t, kLeadCount * 256> pairs{};  // 0 where the pair has no character
    std::array<std::uint16_t, 0x10000> encode{};
    int pairCharacters = 0;

    Tables() {
        BuildSingles();
        BuildPairs();
        Verify();
        BuildEncode();
    }

    void BuildSingles() {
        for (unsigned b = 0; b < 256; ++b) {
            if (b < 0x80)
                single[b] = char16_t(b);
            else if (IsHalfWidthKatakana(b))
                single[b] = char16_t(0xFF61 + (b - 0xA1));
            else if (!IsLead(b))
                single[b] = StandAloneByte(b);
        }
    }

    // ICU's ibm-943 table agrees with code page 932 on every pair but not on the single
    // bytes (it moves 1A, 1C and 7F around and rejects 80, A0, FD-FF), so only pairs come from it.
    // Each pair gets a decoder of its own: resetState() does not clear hasError(), so a
    // shared one would report every pair after the first error as one (about 10 ms in all).
    void BuildPairs() {
        if (!QStringDecoder("Shift_JIS").isValid())
            qFatal("AnsiCodec: this Qt has no Shift_JIS converter");
        for (unsigned lead = 0x81; lead <= 0xFC; ++lead) {
            if (!IsLead(lead)) continue;
            for (unsigned trail = 0x40; trail <= 0xFC; ++trail) {
                if (!IsTrail(trail)) continue;
                const char pair[2] = {char(lead), char(trail)};
                QStringDecoder decoder("Shift_JIS", QStringConverter::Flag::Stateless);
                const QString text = decoder.decode(QByteArrayView(pair, 2));
                if (decoder.hasError() || text.size() != 1) continue;
                const char16_t c = text.front().unicode();
                // ICU's substitutes, never a character of a pair.
                if (c == 0xFFFD || c < 0x80) continue;
                pairs[LeadRow(lead) * 256 + trail] = c;
                ++pairCharacters;
            }
        }
    }

    char16_t Pair(unsigned lead, unsigned trail) const {
        return pairs[LeadRow(lead) * 256 + trail];
    }

    // A converter that is not code page 932 (an ICU whose Shift_JIS is the plain JIS table,
    // or a different vendor variant) would write wrong bytes silently; refuse to run instead.
    void Verify() const {
        struct Anchor {
            unsigned lead, trail;
            char16_t c;
        };
        static constexpr Anchor kAnchors[] = {
            {0x81, 0x5C, 0x2015}, {0x81, 0x5F, 0xFF3C}, {0x81, 0x60, 0xFF5E}, {0x81, 0x61, 0x2225},
            {0x81, 0x7C, 0xFF0D}, {0x81, 0x91, 0xFFE0}, {0x81, 0xCA, 0xFFE2}, {0x87, 0x40, 0x2460},
            {0x87, 0x55, 0x2161}, {0x88, 0x9F, 0x4E9C}, {0xED, 0x40, 0x7E8A}, {0xF0, 0x40, 0xE000},
            {0xF9, 0xFC, 0xE757}, {0xFA, 0x40, 0x2170}, {0xFC, 0x4B, 0x9ED1},
        };
        bool ok = pairCharacters == 9604;  // 7724 assigned + 1880 user-defined
        for (const Anchor& a : kAnchors) ok = ok && Pair(a.lead, a.trail) == a.c;
        if (!ok) qFatal("AnsiCodec: the Shift_JIS converter of this Qt is not code page 932");
    }

    void BuildEncode() {
        std::vector<std::uint8_t> rank(0x10000, 0);
        for (unsigned lead = 0x81; lead <= 0xFC; ++lead) {
            if (!IsLead(lead)) continue;
            const auto r = std::uint8_t(PairRank(lead) + 1);  // 0 stays "not set"
            for (unsigned trail = 0x40; trail <= 0xFC; ++trail) {
                if (!IsTrail(trail)) continue;
                const char16_t c = Pair(lead, trail);
                if (c == 0 || (rank[c] != 0 && rank[c] <= r)) continue;
                encode[c] = std::uint16_t((lead << 8) | trail);
                rank[c] = r;
            }
        }
        // Single bytes last: they win over any pair, and the port text of a byte is that byte.
        for (unsigned b = 0; b < 256; ++b) {
            if (!IsLead(b)) encode[single[b]] = std::uint16_t(kSingleFlag | b);
            if (b >= 0x80) encode[kPortTextBase + b] = std::uint16_t(kSingleFlag | b);
        }
    }
};

const Tables& GetTables() {
    static const Tables tables;
    return tables;
}

char16_t PortChar(unsigned char b) {
    if (b < 0x80) return char16_t(b);
    if (IsHalfWidthKatakana(b)) return char16_t(0xFF61 + (b - 0xA1));
    return char16_t(kPortTextBase + b);
}

}  // namespace

QString DecodeAnsi(const QByteArray& bytes) {
    const Tables& t = GetTables();
    QString text(bytes.size(), Qt::Uninitialized);  // never more characters than bytes
    char16_t* out = reinterpret_cast<char16_t*>(text.data());
    char16_t* const begin = out;
    const auto* in = reinterpret_cast<const unsigned char*>(bytes.constData());
    const auto* const end = in + bytes.size();
    while (in < end) {
        const unsigned b = *in++;
        if (!IsLead(b)) {
            *out++ = t.single[b];
            continue;
        }
        if (in < end && IsTrail(*in)) {
            const char16_t c = t.Pair(b, *in++);
            *out++ = c != 0 ? c : kNoCharacter;
        } else {
            *out++ = kNoCharacter;  // the byte after it is read on its own
        }
    }
    text.truncate(out - begin);
    return text;
}

QByteArray EncodeAnsi(const QString& text) {
    const Tables& t = GetTables();
    QByteArray bytes(text.size() * 2, Qt::Uninitialized);  // at most two bytes per unit
    char* out = bytes.data();
    char* const begin = out;
    const char16_t* in = reinterpret_cast<const char16_t*>(text.constData());
    const char16_t* const end = in + text.size();
    while (in < end) {
        const char16_t u = *in++;
        const std::uint16_t code = t.encode[u];
        if (code == 0) {
            // One "?" per code point: the low half of a pair goes with its high half.
            if (QChar::isHighSurrogate(u) && in < end && QChar::isLowSurrogate(*in)) ++in;
            *out++ = '?';
        } else if (code & 0x8000) {
            *out++ = char(code >> 8);
            *out++ = char(code & 0xFF);
        } else {
            *out++ = char(code & 0xFF);
        }
    }
    bytes.truncate(out - begin);
    return bytes;
}

QString PortText(const QByteArray& bytes) {
    return PortText(reinterpret_cast<const unsigned char*>(bytes.constData()), bytes.size());
}

QString PortText(const unsigned char* bytes, qsizetype count) {
    QString text(count, Qt::Uninitialized);
    char16_t* out = reinterpret_cast<char16_t*>(text.data());
    for (qsizetype i = 0; i < count; ++i) out[i] = PortChar(bytes[i]);
    return text;
}

}  // namespace orbline
