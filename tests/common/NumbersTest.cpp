#include "common/Numbers.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace orbline;

namespace {

struct Case {
    QString text;
    QString mask;
    QString expected;
};

TEST(IsNumeric, AcceptsOnlyPlainSignedDecimalsWithOptionalExponent) {
    for (const QString& text : {u"  125"_s, u"125  "_s, u".5"_s, u"5."_s, u"+1"_s, u"-0"_s,
                                u"1e-3"_s, u"1.5E+3"_s, u"-.5e3"_s, u"00012345678901234567890"_s}) {
        EXPECT_TRUE(IsNumeric(text)) << text.toStdString();
    }
    for (const QString& text :
         {u""_s, u"   "_s, u"-----"_s, u"<3.0"_s, u"1.2.3"_s, u"1E"_s, u"."_s, u"+"_s, u"1 2"_s,
          u"5-"_s, u"&H1F"_s, u"1,000"_s, u"\u00a55"_s, u"\uff11\uff12"_s, u"\t5"_s, u"1D3"_s}) {
        EXPECT_FALSE(IsNumeric(text)) << text.toStdString();
    }
}

// The masks the system uses: "0000", "000000", "#,##0" and those built from a value's shape.
TEST(FormatNumber, FixedMasksOfTheResultFiles) {
    // clang-format off
    const Case cases[] = {
        // Rounding half away from zero, both signs, carrying into a new digit.
        {u"12.30"_s, u"#0.0"_s, u"12.3"_s},   {u"12.35"_s, u"#0.0"_s, u"12.4"_s},
        {u"-12.35"_s, u"#0.0"_s, u"-12.4"_s}, {u"9.99"_s, u"#0.0"_s, u"10.0"_s},
        {u"-99.95"_s, u"#0.0"_s, u"-100.0"_s}, {u"0.05"_s, u"#0.0"_s, u"0.1"_s},
        {u"0.125"_s, u"#0.00"_s, u"0.13"_s},  {u"-0.04"_s, u"#0.0"_s, u"0.0"_s},
        {u"12"_s, u"#0.00"_s, u"12.00"_s},    {u"125E-2"_s, u"#0.0"_s, u"1.3"_s},
        {u"  125"_s, u"#0.0"_s, u"125.0"_s},
        // Forced integer digits; the integer part is never cut.
        {u"26"_s, u"0000"_s, u"0026"_s},      {u"-26"_s, u"0000"_s, u"-0026"_s},
        {u"123456"_s, u"0000"_s, u"123456"_s}, {u"26.5"_s, u"0000"_s, u"0027"_s},
        {u"1234567"_s, u"#,##0"_s, u"1,234,567"_s}, {u"0"_s, u"#,##0"_s, u"0"_s},
        // "#" shows only significant digits.
        {u"1.5E3"_s, u"#"_s, u"1500"_s},      {u"0"_s, u"#"_s, u""_s},
        {u"-0.4"_s, u"#"_s, u""_s},
        // Not numeric: through the mask unchanged, blanks and all.
        {u"<3.0"_s, u"#0.0"_s, u"<3.0"_s},    {u" 1 2"_s, u"#"_s, u" 1 2"_s},
        {u""_s, u"#0.0"_s, u""_s},
    };
    // clang-format on
    for (const Case& c : cases) {
        EXPECT_EQ(FormatNumber(c.text, c.mask), c.expected)
            << c.text.toStdString() << " / " << c.mask.toStdString();
    }
}

TEST(FormatNumber, LongAndExtremeValuesStayExactOrFallBack) {
    // Specimen numbers are longer than a double holds.
    EXPECT_EQ(FormatNumber(u"00012345678901234567890"_s, u"000000"_s), u"12345678901234567890"_s);
    EXPECT_EQ(FormatNumber(u"12345678901234567890.5"_s, u"#"_s), u"12345678901234567891"_s);
    // Past the double range the conversion would overflow: the text stays.
    for (const QString& huge : {u"1E309"_s, u"-1.7976931348623158079373E308"_s, u"1E999999999"_s,
                                u"1E99999999999999999999999"_s}) {
        EXPECT_EQ(FormatNumber(huge, u"#0.0"_s), huge);
        EXPECT_EQ(PlainDecimalText(huge), huge);
        EXPECT_FALSE(ToDouble(huge).has_value());
    }
    EXPECT_EQ(FormatNumber(u"1.7976931348623157E308"_s, u"#"_s).size(), 309);
    EXPECT_EQ(FormatNumber(u"-1E-999999999"_s, u"#0.0"_s), u"0.0"_s);
}

// The edits format every result value with the mask of its own length and point.
TEST(FormatOwnDecimals, KeepsTheValuesShape) {
    const std::pair<QString, QString> cases[] = {
        {u"12.30"_s, u"12.30"_s}, {u"0"_s, u""_s},
        {u"00125"_s, u"125"_s},   {u".25"_s, u".25"_s},
        {u"5."_s, u"5"_s},        {u"0.0"_s, u"0.0"_s},
        {u"-3.50"_s, u"-3.50"_s}, {u"12.345"_s, u"12.345"_s},
        {u"<3.0"_s, u"<3.0"_s},   {u""_s, u""_s},
    };
    for (const auto& [value, expected] : cases)
        EXPECT_EQ(FormatOwnDecimals(value), expected) << value.toStdString();
}

TEST(PlainDecimalText, CanonicalDigitsWithoutADouble) {
    const std::pair<QString, QString> cases[] = {
        {u"0012345"_s, u"12345"_s},
        {u"-0.50"_s, u"-0.5"_s},
        {u"1E3"_s, u"1000"_s},
        {u" +.5 "_s, u"0.5"_s},
        {u"-000"_s, u"0"_s},
        {u"1.5e-3"_s, u"0.0015"_s},
        {u"00012345678901234567890"_s, u"12345678901234567890"_s},
        {u"98765432109876543210.0123456789"_s, u"98765432109876543210.0123456789"_s},
        {u"1E-401"_s, u"0"_s},
        {u"-----"_s, u"-----"_s},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(PlainDecimalText(text), expected) << text.toStdString();
}

TEST(SettingConversions, NumericTextsThatFit) {
    // Integers round half to even, as the runtime's conversion does.
    const std::pair<QString, std::optional<std::int32_t>> ints[] = {
        {u"2.5"_s, 2},         {u"3.5"_s, 4},   {u"-2.5"_s, -2}, {u" 9600 "_s, 9600},
        {u"2147483648"_s, {}}, {u"COM1"_s, {}}, {u"&H10"_s, {}}, {u""_s, {}},
    };
    for (const auto& [text, expected] : ints)
        EXPECT_EQ(ToInt32(text), expected) << text.toStdString();
    EXPECT_EQ(ToSingle(u"1.5"_s), 1.5f);
    EXPECT_FALSE(ToSingle(u"1E39"_s).has_value());
    EXPECT_FALSE(ToSingle(u"1,5"_s).has_value());
}

}  // namespace

// The shortest text that reads back as the same float, never an exponent, never "-0"; the
// tympanometer charts pin the plain cases.
TEST(SingleText, ShortestFixedTextOfAFloat) {
    const std::pair<float, QString> cases[] = {{-0.0f, u"0"_s}, {1e-7f, u"0.0000001"_s}};
    for (const auto& [value, text] : cases) EXPECT_EQ(SingleText(value), text) << value;
}
