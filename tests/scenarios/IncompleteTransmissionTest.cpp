// A transmission that stops before its EOT (the instrument switched off, the cable knocked),
// then a complete one for another specimen: the result file holds the complete one's records
// alone, the broken one's pieces are kept aside, and the log says so.

#include "support/AstmInstrument.h"

#include "SimScript.h"

#include <gtest/gtest.h>

#include <QDir>

#include <thread>

using namespace Qt::StringLiterals;
using namespace orbline::test;

TEST(IncompleteTransmission, IsKeptAsideAndNeverJoinsTheNextSpecimensResult) {
    const QByteArray xn550 = ReadFixture(u"captures/sysmex-xn550-result.bin"_s);
    const std::string h0980 = Frame("1H|\\^&|||HLC-723G11^01.02|||||||||1.0<CR>");
    // Code, folder, broken transmission, complete one, the complete one's sample number.
    const std::tuple<QString, QString, std::string, std::string, QString> cases[] = {
        {u"0980"_s, u"c980"_s,
         "<ENQ>" + h0980 + Frame("2P|1<CR>O|1|001111|1<CR>R|1|^^^HbA1cValue|9.90|%<CR>"),
         "<ENQ>" + h0980 + Frame("2P|1<CR>O|1|001234|7<CR>R|1|^^^HbA1cValue|5.60|%<CR>") +
             Frame("3L|1|N<CR>") + "<EOT>",
         u"1234"_s},
        {u"1190"_s, u"c1190"_s,
         "<ENQ>" + Frame("1H|\\^&|||XN-550^00-12|||||||||E1394-97<CR>") +
             Frame("2O|1||^^009999^B|^^^^WBC<CR>R|1|^^^^WBC^1|99.9|10*3/uL||N<CR>"),
         orbline::sim::Visible(orbline::sim::Bytes(xn550.begin(), xn550.end())), u"27"_s},
    };
    for (const auto& [code, folder, broken, complete, sample] : cases) {
        SCOPED_TRACE(code.toStdString());
        LinkProcess link;
        StartInstrument(link, code, code == u"0980"_s ? u"HLC"_s : u"XN-550"_s);
        SendAcked(link, broken);
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        SendAcked(link, complete);
        ASSERT_TRUE(link.waitForDeliveries(1));
        EXPECT_TRUE(link.waitForLog(u"受信未完了(退避) -- "_s + code));
        link.requestClose();
        EXPECT_EQ(link.finish(), 0);
        const QStringList records = DeliveredRecords(link);
        ASSERT_FALSE(records.isEmpty());
        for (const QString& record : records) {
            EXPECT_EQ(record.section(u',', 3, 3), sample) << record.toStdString();
            EXPECT_FALSE(record.contains(u"9.90"_s) || record.contains(u"99.9"_s));
        }
        // The broken transmission's pieces, its ENQ first, in a folder of their own.
        const QDir aside(link.native(folder + u"_incomplete"_s));
        const QStringList kept = aside.entryList(QDir::Dirs | QDir::NoDotAndDotDot);
        ASSERT_EQ(kept.size(), 1);
        EXPECT_EQ(QDir(aside.filePath(kept.first())).entryList(QDir::Files).size(),
                  static_cast<qsizetype>(orbline::sim::CutIntoFrames(Notation(broken)).size()));
    }
}
