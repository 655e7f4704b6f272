#include "common/Clock.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace orbline;

// The patterns the system uses. "MM" is the month after the year, the minute after the hour.
TEST(Clock, FormatLettersOfTheSystem) {
    const QDateTime t(QDate(2025, 4, 16), QTime(9, 7, 5));
    EXPECT_EQ(FormatDateTime(t, u"YYYY-MM-DD HH:MM:SS"_s), u"2025-04-16 09:07:05"_s);
    // Minutes after the hour, then the day again.
    EXPECT_EQ(FormatDateTime(t, u"YYYYMMDDHHMMDD"_s), u"20250416090716"_s);
    EXPECT_EQ(FormatDateTime(t, u"YYYYMMDDHHMMSS"_s), u"20250416090705"_s);
    EXPECT_EQ(FormatDateTime(t, u"YYYYMM"_s), u"202504"_s);
    EXPECT_EQ(FormatDateTime(t, u"YYYY/MM/DD"_s), u"2025/04/16"_s);
}
