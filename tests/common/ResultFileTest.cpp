// Result file names, the record line, and the move that never replaces a file, also across
// file systems. The delivery itself (the move, the empty and the failed one, the log pair) runs
// in the edit tests and the scenarios.

#include "common/Paths.h"
#include "common/ResultFile.h"
#include "common/RunContext.h"
#include "support/TestSite.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QTemporaryDir>

#include <algorithm>
#include <latch>
#include <thread>

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

// A work file of the name is a dead process's leftover and goes; a delivered file never does.
TEST(ResultFileName, DeliveredFilesOfTheNameStayAndTheNextFreeSerialIsUsed) {
    TestSite site;
    Ctx().IniPrefix = u"TN"_s;
    Ctx().JyusinDataPath = site.path(u"data"_s);
    site.writeFile(u"wk/2620-TN-2025041609301600001~KVB.csv"_s, "leftover");
    site.writeFile(u"data/2620-TN-2025041609301600002~KVB.csv"_s, "first");
    site.writeFile(u"data/2620-TN-2025041609301600003~KVB.csv"_s, "second");
    QString work;
    MakeOutFile(site.path(u"wk"_s), work);
    EXPECT_FALSE(FileExists(work));
    site.writeFile(u"wk/2620-TN-2025041609301600001~KVB.csv"_s, "third");
    QString delivered;
    EXPECT_EQ(DeliverWorkFile(work, FailedMove::Throws, &delivered), Delivery::Delivered);
    EXPECT_EQ(delivered, site.path(u"data\\2620-TN-2025041609301600004~KVB.csv"_s));
    EXPECT_EQ(site.readFile(u"data/2620-TN-2025041609301600002~KVB.csv"_s), "first");
    EXPECT_EQ(site.readFile(u"data/2620-TN-2025041609301600003~KVB.csv"_s), "second");
    EXPECT_EQ(site.readFile(u"data/2620-TN-2025041609301600004~KVB.csv"_s), "third");
    // A name taken for its serial alone (the 0980 edit's) leaves the file of that name too.
    Ctx().OutSerial = 1;
    MakeDeliveryName(site.path(u"data"_s), delivered);
    EXPECT_TRUE(delivered.endsWith(u"00002~KVB.csv"_s));
    EXPECT_EQ(site.readFile(u"data/2620-TN-2025041609301600002~KVB.csv"_s), "first");

    QString deep;
    MakeOutFile(site.path(u"a\\b"_s), deep);
    EXPECT_FALSE(site.exists(u"a"_s));
    EXPECT_EQ(Ctx().OutSerial, 3);
}

// Two movers take one name at the same moment: one gets it, the other is told and takes the
// next; both files arrive whole.
TEST(Delivery, TwoMovesRacingForOneNameBothArriveUnderDifferentNames) {
    TestSite site;
    for (int round = 0; round < 20; ++round) {
        const QString name = u"r"_s + QString::number(round);
        site.writeFile(u"a.csv"_s, QByteArray(4096, 'a'));
        site.writeFile(u"b.csv"_s, QByteArray(4096, 'b'));
        MoveResult results[2] = {};
        std::latch start(2);
        auto move = [&](int i, const QString& source) {
            start.arrive_and_wait();
            results[i] = MoveFileDurable(site.path(source), site.path(name));
        };
        std::thread a(move, 0, u"a.csv"_s);
        std::thread b(move, 1, u"b.csv"_s);
        a.join();
        b.join();
        ASSERT_EQ(std::count(results, results + 2, MoveResult::Moved), 1) << round;
        ASSERT_EQ(std::count(results, results + 2, MoveResult::TargetExists), 1) << round;
        const bool aWon = results[0] == MoveResult::Moved;
        EXPECT_EQ(MoveFileDurable(site.path(aWon ? u"b.csv"_s : u"a.csv"_s),
                                  site.path(name + u"-next"_s)),
                  MoveResult::Moved);
        EXPECT_EQ(site.readFile(name), QByteArray(4096, aWon ? 'a' : 'b'));
        EXPECT_EQ(site.readFile(name + u"-next"_s), QByteArray(4096, aWon ? 'b' : 'a'));
    }
}

// The scenarios' records show each field in its place; here the reset values and the cleaning.
TEST(ResultRecordLine, NineteenFieldsFromTheResetWithTheValueCleaned) {
    EXPECT_EQ(ResultRecordLine({.InstrumentCode = u"2620"_s, .ResultValue = u"  <3.0 "_s}),
              u",,0,0,2620,,000000,,,,,,,＜3.0,,MIN,,,"_s);
    EXPECT_EQ(ResultRecordLine({.ResultValue = u">999"_s}).section(u',', 13, 13), u"＞999"_s);
}

TEST(Delivery, AcrossFileSystemsTheFileArrivesWholeReplacingNothingAndNoStagingNameStays) {
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
    const QString folder = QString(other.path()).replace(u'/', u'\\');
    QFile taken(other.path() + u"/d~KVB.csv"_s);
    ASSERT_TRUE(taken.open(QIODevice::WriteOnly) && taken.write("taken") == 5);
    taken.close();
    EXPECT_EQ(MoveFileDurable(work, folder + u"\\d~KVB.csv"_s), MoveResult::TargetExists);
    EXPECT_TRUE(FileExists(work));
    ASSERT_TRUE(taken.open(QIODevice::ReadOnly));
    EXPECT_EQ(taken.readAll(), "taken");

    ASSERT_EQ(MoveFileDurable(work, folder + u"\\e~KVB.csv"_s), MoveResult::Moved);
    EXPECT_FALSE(FileExists(work));
    EXPECT_EQ(QDir(other.path()).entryList(QDir::Files | QDir::Hidden),
              (QStringList{u"d~KVB.csv"_s, u"e~KVB.csv"_s}));
    QFile delivered(other.path() + u"/e~KVB.csv"_s);
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
