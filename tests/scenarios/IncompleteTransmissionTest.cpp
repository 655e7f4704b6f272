// A transmission that stops before its EOT, then a complete one for another specimen: the file
// holds the complete one's records alone (1190 would take the broken one's specimen, 0980 the
// complete one's), the broken one's pieces are kept aside, and the log says so.

#include "support/AstmInstrument.h"

#include "SimScript.h"

#include <gtest/gtest.h>

#include <QDir>

using namespace Qt::StringLiterals;
using namespace orbline::test;

TEST(IncompleteTransmission, IsKeptAsideAndNeverJoinsTheNextSpecimensResult) {
    const std::string head = "<ENQ>" + Frame("1H|\\^&|||HLC-723G11^01.02|||||||||1.0<CR>");
    const std::string r = "R|1|^^^^WBC^1|";  // a result either edit reads
    const std::string broken = head + Frame("2O|1|009999|^^009999^B|<CR>" + r + "9.90|%<CR>");
    // Code, work folder, the complete message's O record and the sample number it gives.
    const std::tuple<QString, QString, std::string, QString> cases[] = {
        {u"0980"_s, u"c980"_s, "O|1|001234|7", u"1234"_s},
        {u"1190"_s, u"c1190"_s, "O|1||^^001234^B|", u"001234"_s}};
    for (const auto& [code, folder, order, sample] : cases) {
        SCOPED_TRACE(code.toStdString());
        LinkProcess link;
        StartInstrument(link, code, u"HLC"_s);
        SendAcked(link, broken);
        SendAcked(link, head + Frame("2" + order + "<CR>" + r + "5.60|%<CR>") +
                            Frame("3L|1|N<CR>") + "<EOT>");
        EXPECT_TRUE(link.waitForLog(u"受信未完了(退避) -- "_s + code, 3000));
        ASSERT_TRUE(link.waitForDeliveries(1));
        EXPECT_EQ(link.close(), 0);
        const QStringList records = DeliveredRecords(link);
        EXPECT_EQ(records.size(), 1);
        EXPECT_EQ(records.value(0).section(u',', 3, 3), sample);
        EXPECT_FALSE(records.join(u',').contains(u"9.90"_s));
        // The broken transmission's pieces, its ENQ first, in a folder of their own.
        const QDir aside(link.native(folder + u"_incomplete"_s));
        const QStringList kept = aside.entryList(QDir::Dirs | QDir::NoDotAndDotDot);
        EXPECT_EQ(kept.size(), 1);
        EXPECT_EQ(QDir(aside.filePath(kept.value(0))).entryList(QDir::Files).size(),
                  static_cast<qsizetype>(orbline::sim::CutIntoFrames(Notation(broken)).size()));
    }
}
