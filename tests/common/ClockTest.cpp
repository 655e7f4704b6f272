#include "common/Clock.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace orbline;

TEST(Clock, FormatLettersOfTheSystem) {
    const QDateTime t(QDate(2025, 4, 16), QTime(9, 7, 5));
    EXPECT_EQ(FormatDateTime(t, u"YYYY-MM-DD HH:MM:SS"_s), u"2025-04-16 09:07:05"_s);
    // Minutes after the hour, then the day again.
    EXPECT_EQ(FormatDateTime(t, u"YYYYMMDDHHMMDD"_s), u"20250416090716"_s);
    EXPECT_EQ(FormatDateTime(t, u"YYYYMMDDHHMMSS"_s), u"20250416090705"_s);
    EXPECT_EQ(FormatDateTime(t, u"YYYYMM"_s), u"202504"_s);
    EXPECT_EQ(FormatDateTime(t, u"YYMMDD"_s), u"250416"_s);
    EXPECT_EQ(FormatDateTime(t, u"HHMM"_s), u"0907"_s);
    EXPECT_EQ(FormatDateTime(t, u"MM:SS"_s), u"07:05"_s);
    EXPECT_EQ(FormatDateTime(t, u"yyyy/mm/dd"_s), u"2025/04/16"_s);
}

TEST(Clock, FixedNowForTests) {
    ::setenv("KV_ORBLINE_NOW", "2030-12-31 23:59:58", 1);
    EXPECT_EQ(NowText(u"YYYYMMDDHHMMSS"_s), u"20301231235958"_s);
    ::unsetenv("KV_ORBLINE_NOW");
}
