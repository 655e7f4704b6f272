// A transmission that stops before its EOT (the instrument switched off, the cable knocked),
// then a complete one for another specimen: the result file holds the complete one's records
// alone, the broken one's pieces are kept aside, and the log says so. The frame dialogues share
// the loop that does it, and tell an ENQ alike: 0980 stands for them.

#include "support/AstmInstrument.h"

#include "SimScript.h"

#include <gtest/gtest.h>

#include <QDir>

#include <thread>

using namespace Qt::StringLiterals;
using namespace orbline::test;

TEST(IncompleteTransmission, IsKeptAsideAndNeverJoinsTheNextSpecimensResult) {
    const std::string head = "<ENQ>" + Frame("1H|\\^&|||HLC-723G11^01.02|||||||||1.0<CR>");
    const std::string broken = head + Frame("2P|1<CR>O|1|001111|1<CR>R|1|^^^HbA1cValue|9.90|%<CR>");
    LinkProcess link;
    StartInstrument(link, u"0980"_s, u"HLC"_s);
    SendAcked(link, broken);
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    SendAcked(link, head + Frame("2P|1<CR>O|1|001234|7<CR>R|1|^^^HbA1cValue|5.60|%<CR>") +
                        Frame("3L|1|N<CR>") + "<EOT>");
    ASSERT_TRUE(link.waitForDeliveries(1));
    EXPECT_TRUE(link.waitForLog(u"受信未完了(退避) -- 0980"_s));
    link.requestClose();
    EXPECT_EQ(link.finish(), 0);
    const QStringList records = DeliveredRecords(link);
    ASSERT_EQ(records.size(), 1);
    EXPECT_EQ(records[0].section(u',', 3, 3), u"1234"_s);
    EXPECT_FALSE(records[0].contains(u"9.90"_s));
    // The broken transmission's pieces, its ENQ first, in a folder of their own.
    const QDir aside(link.native(u"c980_incomplete"_s));
    const QStringList kept = aside.entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    ASSERT_EQ(kept.size(), 1);
    EXPECT_EQ(QDir(aside.filePath(kept.first())).entryList(QDir::Files).size(),
              static_cast<qsizetype>(orbline::sim::CutIntoFrames(Notation(broken)).size()));
}
