#include "common/RuntimeError.h"
#include "common/Text.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace orbline;

// Split, FieldAt and SplitLines have no test of their own: the parse tests of the edits and the
// table loaders fail on each of their rules.

TEST(Text, PositionsCountFromOneAndOutOfRangeArgumentsThrow) {
    const QString s = u"ABCDEF"_s;
    EXPECT_EQ(Mid(s, 1, 2), u"AB"_s);
    EXPECT_EQ(Mid(s, 3), u"CDEF"_s);
    EXPECT_EQ(Mid(s, 6, 10), u"F"_s);
    EXPECT_EQ(Mid(s, 7), QString());
    EXPECT_EQ(Left(s, 10), s);
    EXPECT_EQ(Right(s, 2), u"EF"_s);
    EXPECT_EQ(Left(s, 0), QString());
    EXPECT_THROW(Mid(s, 0), RuntimeError);
    EXPECT_THROW(Mid(s, 1, -1), RuntimeError);
    EXPECT_THROW(Left(s, -1), RuntimeError);
    EXPECT_THROW(Right(s, -1), RuntimeError);

    EXPECT_EQ(InStr(s, u"CD"_s), 3);
    EXPECT_EQ(InStr(4, s, u"CD"_s), 0);
    EXPECT_EQ(InStr(s, u"X"_s), 0);
    EXPECT_EQ(InStr(3, s, QString()), 3);
    EXPECT_EQ(InStr(3, u"a,b,c"_s, u","_s), 4);
    EXPECT_EQ(InStr(9, s, u"A"_s), 0);
    EXPECT_THROW(InStr(0, s, u"A"_s), RuntimeError);
    // Japanese text counts characters, not bytes.
    EXPECT_EQ(Mid(u"【検査： 2620"_s, 6, 4), u"2620"_s);
}

TEST(Text, TrimRemovesBlanksOnly) {
    EXPECT_EQ(Trim(u"  12.5  "_s), u"12.5"_s);
    EXPECT_EQ(Trim(u"\t12\r\n"_s), u"\t12\r\n"_s);
    EXPECT_EQ(Trim(u"　全角　"_s), u"　全角　"_s);
    EXPECT_EQ(Trim(u"   "_s), QString());
    EXPECT_EQ(LTrim(u"  a  "_s), u"a  "_s);
    EXPECT_EQ(RTrim(u"  a  "_s), u"  a"_s);
}

TEST(Text, FixedFieldPaddingFillsAndCuts) {
    EXPECT_EQ(PadLeftFixed(u"123"_s, 6, u"0"_s), u"000123"_s);
    EXPECT_EQ(PadRightFixed(u"123"_s, 6, u" "_s), u"123   "_s);
    EXPECT_EQ(PadLeftFixed(u"1234567"_s, 4, u" "_s), u"4567"_s);
    EXPECT_EQ(PadRightFixed(u"1234567"_s, 4, u" "_s), u"1234"_s);
    EXPECT_EQ(PadLeftFixed(QString(), 3, u"xy"_s), u"xxx"_s);
    EXPECT_EQ(PadLeftFixed(u"ab"_s, 0, u" "_s), QString());
    EXPECT_THROW(PadLeftFixed(u"a"_s, 3, QString()), RuntimeError);
}

TEST(Text, PassOverSkipsAFailingStepAndRunsTheNext) {
    QString kept = u"old"_s;
    int ran = 0;
    const bool first = PassOver([&] { kept = Mid(u"abc"_s, 0, 1); });
    const bool second = PassOver([&] { ++ran; });
    EXPECT_FALSE(first);
    EXPECT_TRUE(second);
    EXPECT_EQ(kept, u"old"_s);
    EXPECT_EQ(ran, 1);
}
