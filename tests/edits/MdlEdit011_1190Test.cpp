// Result edit 1190 off its normal path, which Astm1190Test runs end to end.

#include "edits/MdlEdit011.h"

#include "common/AnsiCodec.h"
#include "common/Logging.h"
#include "common/Paths.h"
#include "common/RunContext.h"
#include "edits/PieceFiles.h"
#include "support/TestSite.h"

#include <gtest/gtest.h>

#include <QDir>

using namespace Qt::StringLiterals;
using namespace orbline;
using orbline::test::TestSite;

namespace {

struct Site : TestSite {
    Site() {
        Ctx().InstrumentCode = u"1190"_s;
        Ctx().IniPrefix = u"XN"_s;
        Ctx().OutIP = u"0"_s;
        Ctx().JyusinWKPath = path(u"wk"_s);
        Ctx().JyusinDataPath = path(u"data"_s);
    }

    // Saves ENQ, one frame per record and EOT as the dialogue saves its reads, runs the edit
    // and returns "code,name,judge,value,unit,comment" of each line delivered.
    QStringList Items(const QList<QByteArray>& records) const {
        QList<QByteArray> reads{"\x05"};
        for (qsizetype i = 0; i < records.size(); ++i) {
            const QByteArray body = QByteArray::number((i + 1) % 8) + records[i] + "\r\x03";
            unsigned sum = 0;
            for (const char b : body) sum += static_cast<unsigned char>(b);
            reads << "\x02" + body + QByteArray::number(sum % 256, 16).rightJustified(2, '0') +
                         "\r\n";
        }
        reads << "\x04";
        const QString folder = PieceFolder(u"c1190"_s);
        if (!FolderExists(folder)) MakeFolder(folder);
        for (qsizetype i = 0; i < reads.size(); ++i) {
            Ctx().ReceiveBuffer.put(0, PortText(reads[i]));
            BlockFileOut(folder, u"c1190"_s, u"%1"_s.arg(i + 1, 4, 10, QChar(u'0')));
        }
        QDir(native(u"data"_s)).removeRecursively();
        EditResult1190(static_cast<std::int16_t>(reads.size()));
        const QStringList files = QDir(native(u"data"_s)).entryList(QDir::Files);
        QStringList items;
        for (const QString& line :
             DecodeAnsi(readFile(u"data/"_s + files.value(0))).split(u"\r\n"_s, Qt::SkipEmptyParts))
            items << QStringList{line.section(u',', 7, 9), line.section(u',', 13, 14),
                                 line.section(u',', 18)}
                         .join(u',');
        return items;
    }
};

}  // namespace

TEST(Edit1190, FlagTexts) {
    Site site;
    const struct {
        QByteArray flag;
        QString judge, comment;
    } cases[] = {{"H", u"H"_s, {}},
                 {"L", u"L"_s, {}},
                 {">", {}, u"直線性保証外"_s},
                 {"A", {}, u"解析、ハードエラー"_s},
                 {"W", {}, u"低信頼性"_s},
                 {"HN", u"H"_s, {}},
                 {"HL", {}, {}},
                 {"N", {}, {}},
                 {" L ", u"L"_s, {}}};
    QList<QByteArray> records{"O|1||12^1^55|^^^^WBC"};
    for (const auto& c : cases) records << "R|1|^^^^WBC^1|8.13|10*3/uL||" + c.flag + "||F";
    const QStringList items = site.Items(records);
    ASSERT_EQ(items.size(), std::size(cases));
    for (std::size_t i = 0; i < std::size(cases); ++i)
        EXPECT_EQ(items[i],
                  u"1190010,WBC,"_s + cases[i].judge + u",8.13,10*3/uL,"_s + cases[i].comment)
            << cases[i].flag.data();
}

// An item that is not measured is dropped with OutIP "0"; with "1" a named flag becomes an item
// of its group, valued by its own name, its unit and flag text dropped.
TEST(Edit1190, OutIpForItemsThatAreNotMeasured) {
    Site site;
    const QList<QByteArray> records{"R|1|^^^^WBC^1|8.13|10*3/uL||N||F",
                                    "R|2|^^^^Neutrophilia|x|10*3/uL||W||F", "R|3|^^^^Unknown|40",
                                    "R|4|^^^^PLT_Clumps(S)?|0"};
    const QString wbc = u"1190010,WBC,,8.13,10*3/uL,"_s;
    EXPECT_EQ(site.Items(records), QStringList{wbc});
    Ctx().OutIP = u"1"_s;
    EXPECT_EQ(site.Items(records), (QStringList{wbc, u"1190270,WBC Abnormal_3,,Neutrophilia,,"_s,
                                                u"1190590,PLT Suspect_2,,PLT_Clumps(S)?,,"_s}));
}

// Only the first O record with a number sets it. "・" (81 45) and the byte A0 come through the
// code page as they would from the port.
TEST(Edit1190, SampleNumberComesFromTheFirstOrderRecord) {
    Site site;
    site.Items(
        {"O|1||12^1^ 0012B34M\x81\x45"
         "5\xA0 ^B|^^^^WBC",
         "O|2||7^1^999^B|^^^^RBC", "R|1|^^^^WBC^1|8.13"});
    EXPECT_EQ(Ctx().SampleId, u"0012345"_s);
    site.Items({"O|1||5^1^  ^B|", "O|2||5^1^889|", "R|1|^^^^WBC^1|8.13"});
    EXPECT_EQ(Ctx().SampleId, u"889"_s);
}

TEST(Edit1190, RowsPastAHundredAreLost) {
    Site site;
    QList<QByteArray> records;
    for (int i = 1; i <= 102; ++i)
        records << "R|" + QByteArray::number(i) + "|^^^^PLT^1|" + QByteArray::number(i);
    const QStringList items = site.Items(records);
    EXPECT_EQ(Ctx().RecordCount, 102);
    ASSERT_EQ(items.size(), 100);
    EXPECT_EQ(items.last(), u"1190080,PLT,,100,,"_s);
}
