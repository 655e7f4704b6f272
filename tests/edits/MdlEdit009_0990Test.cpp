// Result edit 0990, where the scenarios don't reach: the identifier as the launch's rule sets it,
// the checksum digit the cut leaves in the body, the bound of the table, a failure before delivery.

#include "common/RunContext.h"
#include "common/RuntimeError.h"
#include "edits/MdlEdit009.h"
#include "support/TestSite.h"

#include <gtest/gtest.h>

#include <QDir>

using namespace Qt::StringLiterals;
using namespace orbline;

TEST(Parse0990, RuleOfTheLaunchTheDigitLeftInTheBodyAndTheBound) {
    const std::tuple<QString, SampleRule, QString, QString> cases[] = {
        {u"|PID=123  |CMT=short"_s, {}, u"123"_s, u"short7"_s},
        {u"|BGD= 100"_s, {u"0"_s, u"F-1"_s}, u"F-1"_s, {}},
        {u"|PID=55"_s + QString(14, QChar(0x7F)), {u"2"_s, {}}, QString(), {}},
    };
    for (const auto& [body, rule, sampleId, comment] : cases) {
        const auto rows = ParseFrames0990({u"\u0002D1WBD"_s + body + u"7A\u0003\r\n"_s}, rule);
        ASSERT_EQ(rows.size(), 1u);
        EXPECT_EQ(std::pair(rows[0].sampleId, rows[0].comment), std::pair(sampleId, comment));
    }
    const QString frame = u"\u0002D1WBD|BGD= 100A7\u0003\r\n"_s;
    EXPECT_EQ(ParseFrames0990({frame.repeated(2000)}, {}).size(), 2000u);
    EXPECT_THROW(ParseFrames0990({frame.repeated(1000), frame.repeated(1001)}, {}), RuntimeError);
}

// A work file that cannot be written ends the process before any file is delivered.
TEST(Edit0990DeathTest, AFailedWorkFileDeliversNone) {
    test::TestSite site;
    RunContext& c = Ctx();
    std::tie(c.InstrumentCode, c.IniPrefix) = std::pair(u"0990"_s, u"TN"_s);
    std::tie(c.JyusinWKPath, c.JyusinDataPath) =
        std::pair(site.path(u"wk"_s), site.path(u"data"_s));
    site.writeFile(u"c990/c990_0001.txt"_s, QByteArray("\002D1WBD|BGD= 100A7\003\r\n").repeated(4));
    site.writeFile(u"c990/c990_0002.txt"_s, "\002\0041C9\003\r\n");
    // The third work file's name is taken by a folder.
    ASSERT_TRUE(QDir().mkpath(site.native(u"wk/0990-TN-2025041609301600003~KVB.csv"_s)));
    std::int16_t count = 2;
    EXPECT_EXIT(EditResult0990(count), ::testing::ExitedWithCode(1), "");
    EXPECT_EQ(QDir(site.native(u"data"_s)).entryList(QDir::Files), QStringList());
}
