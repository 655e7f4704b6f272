#include "common/AnsiCodec.h"
#include "common/Diagnostics.h"
#include "common/RunContext.h"
#include "support/TestSite.h"

#include <gtest/gtest.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace orbline;

TEST(Diagnostics, OneLineToStandardErrorAndTheFileInTheCodePageRotatedAtTheMainLogsSize) {
    orbline::test::TestSite site;
    site.writeFile(u"KV_Orbline2620.diag"_s, QByteArray(1000000, 'a'));
    site.writeFile(u"KV_Orbline2620.old.diag"_s, "older");
    ::testing::internal::CaptureStderr();
    Diagnose(u"ポート 1: 理由\r\nつづき"_s);
    Diagnose(u"x"_s);
    const QString first = u"2025-04-16 09:30:15 2620 ポート 1: 理由  つづき"_s;
    EXPECT_EQ(QString::fromLocal8Bit(::testing::internal::GetCapturedStderr()),
              first + u"\n2025-04-16 09:30:15 2620 x\n"_s);
    // The first line still fits; the second finds the file at the size and starts a new one.
    EXPECT_EQ(site.readFile(u"KV_Orbline2620.old.diag"_s),
              QByteArray(1000000, 'a') + EncodeAnsi(first + u"\r\n"_s));
    EXPECT_EQ(site.readFile(u"KV_Orbline2620.diag"_s), "2025-04-16 09:30:15 2620 x\r\n");
}

TEST(DiagnosticsDeathTest, AStandardErrorWhoseReaderHasGoneCostsTheLineNotTheProcess) {
    orbline::test::TestSite site;
    EXPECT_EXIT(
        {
            int ends[2];
            if (::pipe(ends) != 0) ::_exit(2);
            ::close(ends[0]);
            ::dup2(ends[1], STDERR_FILENO);
            Diagnose(u"nobody reads"_s);
            ::_exit(0);
        },
        ::testing::ExitedWithCode(0), "");
    EXPECT_TRUE(site.exists(u"KV_Orbline2620.diag"_s));
}
