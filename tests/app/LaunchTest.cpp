#include "app/Launch.h"
#include "common/AnsiCodec.h"
#include "common/Form.h"
#include "common/RunContext.h"
#include "support/TestSite.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;
using namespace orbline;
using orbline::test::TestSite;

namespace {

QString Fields(const LaunchFields& f) {
    return QStringList{f.InstrumentCode, f.ShowMode, f.IniPrefix,     f.AppPath,
                       f.FixedSampleId,  f.Spare5,   f.RunMarkDefault}
        .join(u'|');
}

}  // namespace

TEST(CommandLine, SevenFieldsSlashesRemovedAndDefaults) {
    EXPECT_EQ(Fields(ParseCommandLine(u" 2620 = 1 =TN= \\kv\\site =00123= 9 = R "_s)),
              u"2620|1|TN|\\kv\\site|00123|9|R"_s);
    EXPECT_EQ(Fields(ParseCommandLine(u"0980"_s)), u"0980|0||||0|"_s);
    EXPECT_EQ(ParseCommandLine(u"/"_s).InstrumentCode, QString());
    EXPECT_EQ(ParseCommandLine(u"1190=0=AB=C:/kv"_s).AppPath, u"C:kv"_s);
    // An "=" in a path shifts every later field.
    EXPECT_EQ(Fields(ParseCommandLine(u"1190=0=AB=\\a=b=ID"_s)), u"1190|0|AB|\\a|b|ID|"_s);
    EXPECT_EQ(ParseCommandLine(u"1190=0=AB=x=   "_s).FixedSampleId, QString());
}

TEST(CommandLine, ShowModeIsTestedAsANumber) {
    EXPECT_TRUE(ShowsConsole(u"1"_s));
    EXPECT_TRUE(ShowsConsole(u"1.0"_s));
    EXPECT_FALSE(ShowsConsole(u"2"_s));
    EXPECT_FALSE(ShowsConsole(u"0"_s));
    EXPECT_FALSE(ShowsConsole(u"one"_s));
}

TEST(CommandLine, PosixArgumentsJoinWithOneBlank) {
    const char* argv[] = {"kv_orbline", "2620=0=TN=\\opt\\kv", "=ID", "=0"};
    EXPECT_EQ(JoinArguments(4, argv), u"2620=0=TN=\\opt\\kv =ID =0"_s);
}

// The start line of the log is compared by the scenario tests.
TEST(LoadEvent, FillsTheForm) {
    TestSite site;
    RunLoadEventStart(u"2620=0=TN="_s + site.path() + u"==="_s);
    EXPECT_EQ(Ctx().Spare5, u"0"_s);
    EXPECT_EQ(Form().HiddenChar, QString(QChar(0x80)));
    EXPECT_EQ(Form().lblSysDate, u"2025-04-16 Ver 20200416"_s);
    // The lists start on their first entry, the maximum of the automatic data on
    // its last.
    EXPECT_EQ(Form().comboBaudRate.text(), u"75"_s);
    EXPECT_EQ(Form().comboMax.text(), u"&HFF (255)"_s);
}

// The start line under a "\" AppPath is shown by the scenario tests, which
// start the process on a site of its own.
TEST(Executable, WithoutACommandLineItOnlySaysHowToStart) {
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    QProcess bare;
    bare.setWorkingDirectory(dir.path());
    bare.start(QString::fromLocal8Bit(KV_ORBLINE_EXE), {});
    ASSERT_TRUE(bare.waitForFinished(20000));
    EXPECT_EQ(bare.exitCode(), 2);
    EXPECT_TRUE(bare.readAllStandardError().startsWith("usage: kv_orbline"));
    EXPECT_TRUE(QDir(dir.path()).isEmpty());
}
