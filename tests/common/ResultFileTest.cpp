// Result file names, the record line, and the move across file systems. The delivery itself
// (the move, the empty and the failed one, the log pair) runs in the edit tests and the
// scenarios.

#include "common/Paths.h"
#include "common/ResultFile.h"
#include "common/RunContext.h"
#include "support/TestSite.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QTemporaryDir>

#include <sys/stat.h>

using namespace Qt::StringLiterals;
using namespace orbline;
using orbline::test::TestSite;

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
    // The serial widens past 99999 rather than wrapping onto an earlier name.
    Ctx().OutSerial = 99999;
    MakeOutFile(site.path(u"out"_s), second);
    EXPECT_TRUE(second.endsWith(u"20250416093016100000~KVB.csv"_s));
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
}

// The scenarios' records show each field in its place; here the reset values and the cleaning.
TEST(ResultRecordLine, NineteenFieldsFromTheResetWithTheValueCleaned) {
    EXPECT_EQ(ResultRecordLine({.InstrumentCode = u"2620"_s, .ResultValue = u"  <3.0 "_s}),
              u",,0,0,2620,,000000,,,,,,,＜3.0,,MIN,,,"_s);
    EXPECT_EQ(ResultRecordLine({.ResultValue = u">999"_s}).section(u',', 13, 13), u"＞999"_s);
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
    EXPECT_EQ(QDir(other.path()).entryList(QDir::Files | QDir::Hidden),
              (QStringList{u"d~KVB.csv"_s}));
    QFile delivered(other.path() + u"/d~KVB.csv"_s);
    ASSERT_TRUE(delivered.open(QIODevice::ReadOnly));
    EXPECT_EQ(delivered.readAll(), big);
}

TEST(HasFiles, LooksForTheKindsPatternDirectlyInTheFolder) {
    TestSite site;
    const QString orders = site.path(u"orders"_s);
    EXPECT_EQ(HasFiles(1, orders), 0);
    site.writeFile(u"orders/sub/deep.csv"_s, "x");
    site.writeFile(u"orders/a_uke.txt"_s, "x");
    EXPECT_EQ(HasFiles(1, orders), 0);
    EXPECT_EQ(HasFiles(3, orders), 1);
    site.writeFile(u"orders/A1650.CSV"_s, "x");
    EXPECT_EQ(HasFiles(1, orders), 1);
    EXPECT_EQ(HasFiles(4, orders), 0);
}
