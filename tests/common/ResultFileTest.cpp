#include "common/AnsiCodec.h"
#include "common/Paths.h"
#include "common/ResultFile.h"
#include "common/RunContext.h"
#include "common/RuntimeError.h"
#include "common/TextFile.h"
#include "support/TestSite.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QTemporaryDir>

#include <sys/stat.h>

using namespace Qt::StringLiterals;
using namespace orbline;
using orbline::test::TestSite;

namespace {
QStringList Entries(const QString& nativeFolder) {
    return QDir(nativeFolder).entryList(QDir::Files | QDir::Hidden, QDir::Name);
}
}  // namespace

TEST(ResultFileName, StampIsMinuteThenDayAndSerialCountsPerName) {
    TestSite site;
    Ctx().IniPrefix = u"TN"_s;
    QString first;
    QString second;
    MakeOutFile(site.path(u"out"_s), first);
    MakeOutFile(site.path(u"out"_s), second);
    // 09:30 on the 16th: "...0930" then the day "16", no seconds.
    EXPECT_EQ(first, site.path(u"out"_s) + u"\\2620-TN-2025041609301600001~KVB.csv"_s);
    EXPECT_EQ(second, site.path(u"out"_s) + u"\\2620-TN-2025041609301600002~KVB.csv"_s);
    EXPECT_TRUE(site.exists(u"out"_s));

    QString ex;
    MakeOutFileEx(site.path(u"chart"_s), ex, u"R"_s);
    EXPECT_TRUE(ex.endsWith(u"\\2620-R-2025041609301600003~KVB.csv"_s));
    Ctx().OutSerial = 99999;
    QString wide;
    MakeOutFile(site.path(u"out"_s), wide);
    EXPECT_TRUE(wide.endsWith(u"20250416093016100000~KVB.csv"_s));
}

TEST(ResultFileName, ExistingFileIsDeletedAndOnlyOneLevelIsMade) {
    TestSite site;
    Ctx().IniPrefix = u"TN"_s;
    site.writeFile(u"out/2620-TN-2025041609301600001~KVB.csv"_s, "stale");
    QString path;
    MakeOutFile(site.path(u"out"_s), path);
    EXPECT_FALSE(FileExists(path));

    QString deep;
    MakeOutFile(site.path(u"a\\b"_s), deep);
    EXPECT_FALSE(site.exists(u"a"_s));
    EXPECT_EQ(Ctx().OutSerial, 2);

    Ctx().JyusinWKPath = QString();
    QString rooted;
    MakeOutFile(Ctx().JyusinWKPath, rooted);
    EXPECT_TRUE(rooted.startsWith(u"\\2620-TN-"_s));
}

TEST(ResultRecordLine, NineteenFieldsFromTheResetWithTheValueCleaned) {
    const ResultFields fields{.KensaDate = u"20250416"_s,
                              .KensaTime = u"093000"_s,
                              .InstrumentCode = u"2620"_s,
                              .InstrumentName = u"眼圧計"_s,
                              .ItemCode = u"0000123"_s,
                              .ItemName = u"IOP"_s,
                              .ResultValue = u"  <3.0 "_s,
                              .ResultUnit = u"mmHg"_s};
    EXPECT_EQ(ResultRecordLine(fields),
              u"20250416,093000,0,0,2620,眼圧計,000000,0000123,IOP,,,,,＜3.0,mmHg,MIN,,,"_s);
    // The RunContext form cleans the value in place and keeps the line in ResultLine.
    TestSite site;
    Ctx().ResultValue = u">999 "_s;
    const QString line = ResultRecord();
    EXPECT_EQ(line, u",,,,2620,,,,,,,,,＞999,,,,,"_s);
    EXPECT_EQ(Ctx().ResultLine + Ctx().ResultValue, line + u"＞999"_s);
}

TEST(Delivery, MovesACompleteFileAndLeavesTheWorkFolderEmpty) {
    TestSite site;
    Ctx().IniPrefix = u"TN"_s;
    Ctx().JyusinWKPath = site.path(u"wk"_s);
    Ctx().JyusinDataPath = site.path(u"data"_s);
    QString work;
    MakeOutFile(Ctx().JyusinWKPath, work);
    ASSERT_TRUE(AppendLine(work, u"line1"_s));
    ASSERT_TRUE(AppendLine(work, u"行2"_s));

    QString delivered;
    EXPECT_EQ(DeliverWorkFile(work, FailedMove::Throws, &delivered), Delivery::Delivered);
    EXPECT_TRUE(Entries(site.native(u"wk"_s)).isEmpty());
    EXPECT_EQ(Entries(site.native(u"data"_s)),
              (QStringList{u"2620-TN-2025041609301600002~KVB.csv"_s}));
    EXPECT_EQ(site.readFile(u"data/2620-TN-2025041609301600002~KVB.csv"_s),
              QByteArray("line1\r\n\x8d\x73\x32\r\n"));
    EXPECT_EQ(ReadAllText(delivered), u"line1\r\n行2\r\n"_s);
    EXPECT_TRUE(
        DecodeAnsi(site.readFile(u"Tesvane2620.log"_s)).contains(u"出力完了(Write) -- 2620-"_s));
}

TEST(Delivery, AnEmptyWorkFileIsDeletedAndNothingIsDelivered) {
    TestSite site;
    Ctx().JyusinWKPath = site.path(u"wk"_s);
    Ctx().JyusinDataPath = site.path(u"data"_s);
    QString work;
    MakeOutFile(Ctx().JyusinWKPath, work);
    ASSERT_TRUE(WriteNewText(work, QString()));
    EXPECT_EQ(DeliverWorkFile(work, FailedMove::Throws), Delivery::Empty);
    EXPECT_FALSE(FileExists(work));
    EXPECT_FALSE(site.exists(u"data"_s));
    LogNoOutput();
    const QString log = DecodeAnsi(site.readFile(u"Tesvane2620.log"_s));
    EXPECT_TRUE(log.contains(u"Size=0のため出力なし -- "_s));
    EXPECT_TRUE(log.contains(u"出力データなし -- "_s));
}

TEST(Delivery, AFailedMoveThrowsAndKeepsTheWorkFile) {
    TestSite site;
    Ctx().JyusinWKPath = site.path(u"wk"_s);
    Ctx().JyusinDataPath = site.path(u"no\\such\\folder"_s);
    QString work;
    MakeOutFile(Ctx().JyusinWKPath, work);
    ASSERT_TRUE(AppendLine(work, u"x"_s));
    EXPECT_THROW(DeliverWorkFile(work, FailedMove::Throws), RuntimeError);
    EXPECT_TRUE(FileExists(work));
}

TEST(Delivery, AcrossFileSystemsTheFileArrivesWholeAndNoStagingNameStays) {
    struct stat tmpStat {};
    struct stat shmStat {};
    if (::stat("/dev/shm", &shmStat) != 0 ||
        ::stat(QDir::tempPath().toLocal8Bit(), &tmpStat) != 0 || shmStat.st_dev == tmpStat.st_dev)
        GTEST_SKIP() << "needs /dev/shm on another file system than the temporary folder";
    TestSite site;
    QTemporaryDir other(u"/dev/shm/orbline-XXXXXX"_s);
    ASSERT_TRUE(other.isValid());
    const QString work = site.path(u"w.csv"_s);
    const QByteArray big(3 * 1024 * 1024, 'r');
    site.writeFile(u"w.csv"_s, big);
    const QString target = QString(other.path()).replace(u'/', u'\\') + u"\\d~KVB.csv"_s;
    ASSERT_TRUE(MoveFileDurable(work, target));
    EXPECT_FALSE(FileExists(work));
    EXPECT_EQ(Entries(other.path()), (QStringList{u"d~KVB.csv"_s}));
    QFile delivered(other.path() + u"/d~KVB.csv"_s);
    ASSERT_TRUE(delivered.open(QIODevice::ReadOnly));
    EXPECT_EQ(delivered.readAll(), big);
}

TEST(HasFiles, LooksForTheKindsPatternDirectlyInTheFolder) {
    TestSite site;
    EXPECT_EQ(HasFiles(1, site.path(u"orders"_s)), 0);
    site.writeFile(u"orders/sub/deep.csv"_s, "x");
    EXPECT_EQ(HasFiles(1, site.path(u"orders"_s)), 0);
    site.writeFile(u"orders/A1650.CSV"_s, "x");
    site.writeFile(u"orders/a_uke.txt"_s, "x");
    EXPECT_EQ(HasFiles(1, site.path(u"orders"_s)), 1);
    EXPECT_EQ(HasFiles(2, site.path(u"orders"_s)), 1);
    EXPECT_EQ(HasFiles(3, site.path(u"orders"_s)), 1);
    EXPECT_EQ(HasFiles(4, site.path(u"orders"_s)), 0);
    site.writeFile(u"only/x.txt"_s, "x");
    EXPECT_EQ(HasFiles(3, site.path(u"only"_s)), 0);
}
