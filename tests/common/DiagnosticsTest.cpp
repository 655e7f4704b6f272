#include "common/AnsiCodec.h"
#include "common/Diagnostics.h"
#include "common/RunContext.h"
#include "support/TestSite.h"

#include <gtest/gtest.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace orbline;
using orbline::test::TestSite;

TEST(Diagnostics, OneLineToStandardErrorAndToTheFileBesideTheMainLog) {
    TestSite site;
    ::testing::internal::CaptureStderr();
    Diagnose(u"ポート 1: 理由\r\nつづき"_s);
    Diagnose(u"second"_s);
    const std::string terminal = ::testing::internal::GetCapturedStderr();

    const QString first = u"2025-04-16 09:30:15 2620 ポート 1: 理由  つづき"_s;
    const QString second = u"2025-04-16 09:30:15 2620 second"_s;
    EXPECT_EQ(QString::fromLocal8Bit(terminal), first + u"\n"_s + second + u"\n"_s);
    // The site's code page with CR LF, as every log of the site.
    EXPECT_EQ(site.readFile(u"KV_Orbline2620.diag"_s),
              EncodeAnsi(first + u"\r\n"_s + second + u"\r\n"_s));
    EXPECT_FALSE(site.exists(u"Tesvane2620.log"_s));
}

TEST(Diagnostics, RotatesToOneOldCopyAtTheMainLogsSize) {
    TestSite site;
    Ctx().InstrumentCode = u"980"_s;
    const QString line = u"2025-04-16 09:30:15 0980 x\r\n"_s;
    site.writeFile(u"KV_Orbline0980.diag"_s, QByteArray(1000000, 'a'));
    ::testing::internal::CaptureStderr();
    Diagnose(u"x"_s);
    EXPECT_EQ(site.readFile(u"KV_Orbline0980.diag"_s), QByteArray(1000000, 'a') + EncodeAnsi(line));
    EXPECT_FALSE(site.exists(u"KV_Orbline0980.old.diag"_s));

    // Over the size: the file becomes the old copy, replacing an older one.
    site.writeFile(u"KV_Orbline0980.old.diag"_s, "older");
    Diagnose(u"x"_s);
    ::testing::internal::GetCapturedStderr();
    EXPECT_EQ(site.readFile(u"KV_Orbline0980.diag"_s), EncodeAnsi(line));
    EXPECT_EQ(site.readFile(u"KV_Orbline0980.old.diag"_s),
              QByteArray(1000000, 'a') + EncodeAnsi(line));
}

TEST(DiagnosticsDeathTest, AWriteThatFailsLosesTheLineAndNothingElse) {
    TestSite site;
    // A site folder that is gone: standard error still has the line.
    Ctx().AppPath = site.path(u"gone"_s);
    ::testing::internal::CaptureStderr();
    Diagnose(u"no folder"_s);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "2025-04-16 09:30:15 2620 no folder\n");
    EXPECT_FALSE(site.exists(u"gone"_s));

    // Standard error a pipe whose reader has gone: no SIGPIPE ends the process.
    EXPECT_EXIT(
        {
            int ends[2];
            if (::pipe(ends) != 0) ::_exit(2);
            ::close(ends[0]);
            ::dup2(ends[1], STDERR_FILENO);
            Diagnose(u"nobody reads"_s);
            Diagnose(u"nobody reads"_s);
            ::_exit(0);
        },
        ::testing::ExitedWithCode(0), "");
}
