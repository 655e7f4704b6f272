// Result file names and the move that never replaces a file, also across file systems. The
// record line (its reset fields and cleaned value) and the delivery itself (the move, the empty
// and the failed one, the log pair) run in the edit tests and the scenarios.

#include "common/Paths.h"
#include "common/ResultFile.h"
#include "common/RunContext.h"
#include "support/TestSite.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QTemporaryDir>

#include <latch>
#include <thread>

#include <sys/stat.h>

using namespace Qt::StringLiterals;
using namespace orbline;
using orbline::test::TestSite;

// 09:30 on the 16th: "...0930" then the day "16", no seconds. The 0980 edit's extra delivery
// name leaves a delivered file of that name; the move past it is SiteDeliveryTest's.
TEST(ResultFileName, StampIsMinuteThenDayAndTakenDeliveryNamesStay) {
    TestSite site;
    Ctx().IniPrefix = u"TN"_s;
    const QString name = u"data/2620-TN-2025041609301600001~KVB.csv"_s;
    site.writeFile(name, "1");
    QString path;
    MakeDeliveryName(site.path(u"data"_s), path);
    EXPECT_EQ(path, site.path(name));
    EXPECT_EQ(site.readFile(name), "1");

    // The serial widens past 99999 rather than wrapping onto an earlier name; one level of
    // folder is made, no more.
    Ctx().OutSerial = 99999;
    MakeOutFile(site.path(u"out"_s), path);
    EXPECT_TRUE(path.endsWith(u"20250416093016100000~KVB.csv"_s));
    EXPECT_TRUE(site.exists(u"out"_s));
    MakeOutFile(site.path(u"a\\b"_s), path);
    EXPECT_FALSE(site.exists(u"a"_s));
}

// Two movers take one name at once: one gets it, the other is told and replaces nothing.
TEST(Delivery, OfTwoMovesRacingForOneNameOneTakesItAndTheOtherReplacesNothing) {
    TestSite site;
    for (int round = 0; round < 20; ++round) {
        const QString name = u"r"_s + QString::number(round);
        for (const QString& file : {u"a"_s, u"b"_s}) site.writeFile(file, file.toLatin1());
        MoveResult results[2] = {};
        std::latch start(2);
        auto move = [&](int i, const QString& source) {
            start.arrive_and_wait();
            results[i] = MoveFileDurable(site.path(source), site.path(name));
        };
        std::thread other(move, 1, u"b"_s);
        move(0, u"a"_s);
        other.join();
        const bool aWon = results[0] == MoveResult::Moved;
        EXPECT_EQ(results[aWon ? 1 : 0], MoveResult::TargetExists) << round;
        EXPECT_EQ(site.readFile(name) + site.readFile(aWon ? u"b"_s : u"a"_s), aWon ? "ab" : "ba");
    }
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
    const QString target = QString(other.path()).replace(u'/', u'\\') + u"\\d~KVB.csv"_s;
    site.writeFile(u"taken"_s, "taken");
    ASSERT_EQ(MoveFileDurable(site.path(u"taken"_s), target), MoveResult::Moved);
    EXPECT_EQ(MoveFileDurable(work, target), MoveResult::TargetExists);
    ASSERT_EQ(MoveFileDurable(work, target + u"2"_s), MoveResult::Moved);
    EXPECT_FALSE(FileExists(work));
    EXPECT_EQ(QDir(other.path()).entryList(QDir::Files | QDir::Hidden),
              (QStringList{u"d~KVB.csv"_s, u"d~KVB.csv2"_s}));
    QFile taken(other.path() + u"/d~KVB.csv"_s);
    QFile delivered(other.path() + u"/d~KVB.csv2"_s);
    ASSERT_TRUE(taken.open(QIODevice::ReadOnly) && delivered.open(QIODevice::ReadOnly));
    EXPECT_EQ(taken.readAll() + delivered.readAll(), "taken" + big);
}

TEST(HasFiles, LooksForCsvFilesDirectlyInTheFolder) {
    TestSite site;
    const QString orders = site.path(u"orders"_s);
    EXPECT_EQ(HasFiles(1, orders), 0);
    site.writeFile(u"orders/sub/deep.csv"_s, "x");
    site.writeFile(u"orders/a_uke.txt"_s, "x");
    EXPECT_EQ(HasFiles(1, orders), 0);
    site.writeFile(u"orders/A1650.CSV"_s, "x");
    EXPECT_EQ(HasFiles(1, orders), 1);
}
