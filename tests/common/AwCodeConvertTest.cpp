#include "common/AwCodeConvert.h"

#include <gtest/gtest.h>

#include <bit>
#include <cctype>
#include <set>

using namespace orbline;

namespace {

const AwCodeConvert& Codes() {
    return AwCodeConvert::Instance();
}

std::uint8_t Byte(unsigned value) {
    return static_cast<std::uint8_t>(value);
}

}  // namespace

TEST(AwCodeConvert, IsoIsAsciiWithEvenParityAndNothingAbove127) {
    for (unsigned a = 0; a < 256; ++a) {
        const std::uint8_t iso = Codes().ConvertToIso(Byte(a), AwCodeConvert::Ascii);
        if (a >= 128) {
            EXPECT_EQ(iso, 0) << a;
            continue;
        }
        EXPECT_EQ(iso & 0x7F, a);
        EXPECT_EQ(std::popcount(iso) % 2, 0) << a;
    }
    EXPECT_EQ(Codes().ConvertToIso('A', AwCodeConvert::Ascii), 65);
    EXPECT_EQ(Codes().ConvertToIso('C', AwCodeConvert::Ascii), 195);
}

// A few rows of the tape code, the ones where a slip is easy: LF above bit 7, DEL, the blank,
// letters of both cases on one code.
TEST(AwCodeConvert, EiaRows) {
    const struct {
        char ascii;
        unsigned eia;
    } rows[] = {{'\n', 0x80}, {'\x7F', 0x7F}, {' ', 0x10}, {'\b', 0x2A}, {'0', 0x20},
                {'9', 0x19},  {'C', 0x73},    {'c', 0x73}, {'z', 0x29},  {'%', 0x0B}};
    for (const auto& row : rows)
        EXPECT_EQ(Codes().ConvertToEia(Byte(static_cast<unsigned char>(row.ascii)), 0), row.eia)
            << row.ascii;
    EXPECT_EQ(Codes().ConvertToEia('!', AwCodeConvert::Ascii), 0);
    EXPECT_EQ(Codes().ConvertToEia(0xC1, AwCodeConvert::Ascii), 0);
}

// Every character both codes have comes back, from EIA as upper case; ISO and EIA agree.
TEST(AwCodeConvert, RoundTripsWhereTheTablesDefineThem) {
    std::set<std::uint8_t> eiaCodes;
    int eiaCharacters = 0;
    for (unsigned a = 1; a < 128; ++a) {
        const std::uint8_t iso = Codes().ConvertToIso(Byte(a), AwCodeConvert::Ascii);
        EXPECT_EQ(Codes().ConvertToAscii(iso, AwCodeConvert::Iso), a);
        const std::uint8_t eia = Codes().ConvertToEia(Byte(a), AwCodeConvert::Ascii);
        if (eia == 0) continue;
        ++eiaCharacters;
        eiaCodes.insert(eia);
        const auto upper = Byte(static_cast<unsigned>(std::toupper(static_cast<int>(a))));
        EXPECT_EQ(Codes().ConvertToAscii(eia, AwCodeConvert::Eia), upper) << a;
        EXPECT_EQ(Codes().ConvertToEia(iso, AwCodeConvert::Iso), eia) << a;
        EXPECT_EQ(Codes().ConvertToIso(eia, AwCodeConvert::Eia),
                  Codes().ConvertToIso(upper, AwCodeConvert::Ascii))
            << a;
    }
    // 24 signs and digits and 26 letters in two cases, on 50 distinct codes.
    EXPECT_EQ(eiaCharacters, 76);
    EXPECT_EQ(eiaCodes.size(), 50U);
    for (unsigned e = 0; e < 256; ++e) {
        const std::uint8_t iso = Codes().ConvertToIso(Byte(e), AwCodeConvert::Eia);
        EXPECT_EQ(iso != 0, eiaCodes.contains(Byte(e))) << e;
        if (iso != 0) {
            EXPECT_EQ(Codes().ConvertToEia(iso, AwCodeConvert::Iso), e);
        }
    }
}

TEST(AwCodeConvert, SameCodeIsUnchangedAndAnUnknownSourceGivesZero) {
    for (unsigned b = 0; b < 256; ++b) {
        EXPECT_EQ(Codes().ConvertToAscii(Byte(b), AwCodeConvert::Ascii), b);
        EXPECT_EQ(Codes().ConvertToIso(Byte(b), AwCodeConvert::Iso), b);
        EXPECT_EQ(Codes().ConvertToEia(Byte(b), AwCodeConvert::Eia), b);
    }
    for (const int source : {-1, 3}) {
        EXPECT_EQ(Codes().ConvertToAscii('A', source), 0);
        EXPECT_EQ(Codes().ConvertToIso('A', source), 0);
        EXPECT_EQ(Codes().ConvertToEia('A', source), 0);
    }
}
