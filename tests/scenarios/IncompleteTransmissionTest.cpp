// A transmission that stops before its EOT (the instrument switched off, the cable knocked),
// then a complete one for another specimen: the result file holds the complete one's records
// alone, the broken one's pieces are kept aside, and the log says so.

#include "support/AstmInstrument.h"

#include "SimScript.h"

#include <gtest/gtest.h>

#include <QDir>

#include <thread>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace orbline::test;
namespace sim = orbline::sim;

namespace {

struct Case {
    QString code;
    QString name;
    std::string broken;    // ENQ and frames, no EOT
    std::string complete;  // a whole message of another specimen
    QString sampleOfFile;  // the sample number every delivered record must carry
};

std::string Capture(const char* name) {
    const QByteArray bytes = ReadFixture(u"captures/"_s + QString::fromLatin1(name));
    return sim::Visible(sim::Bytes(bytes.begin(), bytes.end()));
}

}  // namespace

TEST(IncompleteTransmission, IsKeptAsideAndNeverJoinsTheNextSpecimensResult) {
    const std::string header0980 = Frame("1H|\\^&|||HLC-723G11^01.02|||||||||1.0<CR>");
    const Case cases[] = {
        {u"0980"_s, u"HLC"_s,
         "<ENQ>" + header0980 + Frame("2P|1<CR>O|1|001111|1<CR>") +
             Frame("3R|1|^^^HbA1cValue|9.90|%|||||||202504160900<CR>"),
         "<ENQ>" + header0980 + Frame("2P|1<CR>O|1|001234|7<CR>") +
             Frame("3R|1|^^^HbA1cValue|5.60|%|||||||202504160925<CR>") + Frame("4L|1|N<CR>") +
             "<EOT>",
         u"1234"_s},
        {u"1190"_s, u"XN-550"_s,
         "<ENQ>" + Frame("1H|\\^&|||XN-550^00-12|||||||||E1394-97<CR>") +
             Frame("2P|1|||||||U<CR>") + Frame("3O|1||^^009999^B|^^^^WBC|||||||N<CR>") +
             Frame("4R|1|^^^^WBC^1|99.9|10*3/uL||N||||20250416090000<CR>"),
         Capture("sysmex-xn550-result.bin"), u"27"_s},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.code.toStdString());
        LinkProcess link;
        StartInstrument(link, c.code, c.name);
        SendAcked(link, c.broken);
        std::this_thread::sleep_for(300ms);
        SendAcked(link, c.complete);
        ASSERT_TRUE(link.waitForDeliveries(1));
        link.requestClose();
        EXPECT_EQ(link.finish(), 0);

        const QStringList records = DeliveredRecords(link);
        ASSERT_FALSE(records.isEmpty());
        for (const QString& record : records) {
            EXPECT_EQ(record.section(u',', 3, 3), c.sampleOfFile) << record.toStdString();
            EXPECT_FALSE(record.contains(u"9.90"_s) || record.contains(u"99.9"_s));
        }
        EXPECT_TRUE(link.waitForLog(u"受信未完了(退避) -- "_s + c.code));
        // The broken transmission's pieces, its ENQ first, in a folder of their own.
        const QDir aside(
            link.native(u"c"_s + (c.code == u"0980"_s ? u"980"_s : c.code) + u"_incomplete"_s));
        const QStringList kept = aside.entryList(QDir::Dirs | QDir::NoDotAndDotDot);
        ASSERT_EQ(kept.size(), 1);
        EXPECT_EQ(QDir(aside.filePath(kept.first())).entryList(QDir::Files).size(),
                  static_cast<qsizetype>(sim::CutIntoFrames(Notation(c.broken)).size()));
    }
}
