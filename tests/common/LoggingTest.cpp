#include "common/AnsiCodec.h"
#include "common/Form.h"
#include "common/Logging.h"
#include "common/RunContext.h"
#include "common/RuntimeError.h"
#include "support/TestSite.h"

#include <gtest/gtest.h>

#include <QDir>

using namespace Qt::StringLiterals;
using namespace orbline;
using orbline::test::TestSite;

// The scenario tests compare whole logs of the running process; here the parts they cannot
// reach: the run mark, a code shorter than four digits, and the console's own text.
TEST(MainLog, RunMarkShortCodeAndConsoleFormInTheCodePage) {
    TestSite site;
    LogEvent(u"プログラム開始 --   "_s, u"プログラム開始 -- "_s, LogForm::Full);
    Ctx().SampleId = u"123"_s;
    Ctx().RunMark = u"7"_s;
    LogFileOnly(u"出力完了(Write) -- "_s, LogForm::Full);

    EXPECT_TRUE(DecodeAnsi(site.readFile(u"Tesvane2620.log"_s))
                    .endsWith(u"】出力完了(Write) -- 2620-123-7:2025-04-16 09:30:15\r\n"_s));
    // GLogWrite hands back the finished line; a short code is padded in the file name only.
    Ctx().InstrumentCode = u"26"_s;
    QString message = u"x"_s;
    GLogWrite(u"1"_s, message);
    EXPECT_EQ(message, u"【検査： 26-1-2025-04-16 09:30:15】x"_s);
    EXPECT_TRUE(site.exists(u"Tesvane0026.log"_s));
    // The console has three blanks and the newest line on top.
    EXPECT_TRUE(
        Form().Txt_Log.text().startsWith(u"プログラム開始 --   2620--:2025-04-16 09:30:15\r\n"_s));
}

TEST(MainLog, RotatesAtOneMillionAndOneBytes) {
    TestSite site;
    const QByteArray limit(1000000, 'a');
    site.writeFile(u"Tesvane2620.log"_s, limit);
    LogFileOnly(u"next -- "_s, LogForm::Short);
    // Exactly 1000000 bytes: appended to.
    const QByteArray appended = site.readFile(u"Tesvane2620.log"_s);
    EXPECT_GT(appended.size(), 1000000);
    EXPECT_TRUE(appended.startsWith(limit));
    EXPECT_FALSE(site.exists(u"Tesvane_ 2620_2025-04-16.log"_s));

    site.writeFile(u"Tesvane2620.log"_s, QByteArray(1000001, 'b'));
    LogFileOnly(u"after -- "_s, LogForm::Short);
    const QByteArray fresh = site.readFile(u"Tesvane2620.log"_s);
    EXPECT_EQ(DecodeAnsi(fresh),
              u"【検査： 2620-0-2025-04-16 09:30:15】after -- 2620:2025-04-16 09:30:15\r\n"_s);
    EXPECT_EQ(site.readFile(u"Tesvane_ 2620_2025-04-16.log"_s), QByteArray(1000001, 'b'));

    // A second rotation on the same day overwrites the first copy.
    site.writeFile(u"Tesvane2620.log"_s, QByteArray(1000002, 'c'));
    LogFileOnly(u"again -- "_s, LogForm::Short);
    EXPECT_EQ(site.readFile(u"Tesvane_ 2620_2025-04-16.log"_s), QByteArray(1000002, 'c'));
}

TEST(MainLog, AMissingFolderLosesTheLineQuietly) {
    TestSite site;
    Ctx().AppPath = site.path(u"missing"_s);
    LogEvent(u"a --   "_s, u"a -- "_s, LogForm::Short);
    EXPECT_FALSE(site.exists(u"missing"_s));
    EXPECT_FALSE(Form().Txt_Log.text().isEmpty());
}

TEST(Console, NewestFirstAndCappedAtWholeLines) {
    ConsoleText box(40);
    for (int i = 0; i < 20; ++i) box.prepend(u"line %1"_s.arg(i));
    EXPECT_LE(box.text().size(), 40);
    EXPECT_TRUE(box.text().startsWith(u"line 19\r\n"_s));
    EXPECT_TRUE(box.text().endsWith(u"\r\n"_s));
}

TEST(MonthlyStores, WrittenOnlyWhenLogIsOne) {
    TestSite site;
    Ctx().Log = u"0"_s;
    SlogOut(u"raw"_s, 2620, u"20250416093015"_s, 1);
    TraceOut(u"raw"_s, 2620, u"trace"_s, QString());
    EXPECT_FALSE(site.exists(u"Slog"_s));
    EXPECT_FALSE(site.exists(u"Trace"_s));

    Ctx().Log = u"1"_s;
    SlogOut(u"one"_s, 990, u"STAMP"_s, 7);
    SlogOut(u"two"_s, 990, u"STAMP"_s, 7);
    EXPECT_EQ(site.readFile(u"Slog/202504/0990-STAMP_0007.txt"_s), QByteArray("one\r\ntwo\r\n"));
    TraceOut(u"受信"_s, 1660, u"20250416"_s, QString());
    EXPECT_EQ(DecodeAnsi(site.readFile(u"Trace/202504/1660-20250416.txt"_s)), u"受信\r\n"_s);

    site.writeFile(u"c0980/c0980_0001.txt"_s, QByteArray("piece"));
    SlogCopy(site.path(u"c0980\\c0980_0001.txt"_s), 980, u"S"_s, u"3"_s, u"txt"_s);
    EXPECT_EQ(site.readFile(u"Slog/202504/0980-S_3.txt"_s), QByteArray("piece"));

    // The code the stores are named by, and the run-time errors of a code that is none.
    Ctx().InstrumentCode = u"0980"_s;
    EXPECT_EQ(InstrumentCodeNumber(), 980);
    const auto errorOf = [](const QString& code) {
        Ctx().InstrumentCode = code;
        try {
            InstrumentCodeNumber();
        } catch (const RuntimeError& e) {
            return e.description();
        }
        return QString();
    };
    EXPECT_EQ(errorOf(u"AIA"_s), errors::TypeMismatch());
    EXPECT_EQ(errorOf(u"40000"_s), errors::Overflow());
}

// Scenarios over a line read the block files back; what only shows here is that a shorter block
// replaces a longer one of the same number rather than writing into it.
TEST(BlockFiles, AreWrittenAnew) {
    TestSite site;
    QDir().mkpath(site.native(u"c2620"_s));
    for (const QString& block : {u"a longer block"_s, u"short"_s}) {
        Ctx().ReceiveBuffer.put(0, block);
        BlockFileOut(site.path(u"c2620"_s), u"c2620"_s, u"0007"_s);
    }
    EXPECT_EQ(site.readFile(u"c2620/c2620_0007.txt"_s), QByteArray("short\r\n"));
}
