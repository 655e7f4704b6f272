// Random and mutated reports through the report chain into the 0855 edit: no crash, no hang, and
// an unknown model gives its error line alone, a known one records only, at most two a test.

#include "dialogues/PieceReaders.h"
#include "edits/MdlEdit008.h"
#include "support/Fuzz.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace orbline;

TEST(ResultEdit0855Fuzz, AnyReportGivesAnErrorLineOrRecordsAndNothingElse) {
    QString report = u"\x02VPU-4210          12345         2020/04/16 12:34      12\r\n"_s;
    for (const char* name : {"GLU", "PRO", "BIL", "URO", "PH", "S.G.", "BLD", "KET", "NIT", "LEU",
                             "CRE", "ALB", "A/C", "P/C"})
        report += QString::fromLatin1(name).leftJustified(6) + u"*2+*    <0.10mg/dL \r\n"_s;
    report = report.insert(report.size() / 2, u"\x17\x02"_s) + u"\x03"_s;
    test::Fuzz pick{std::mt19937(20261124)};
    const auto character = [&] {
        return QChar(char16_t(uchar(pick.byte("\x02\x03\x17 */:+<PH.0"))));
    };
    int withRecords = 0;
    for (int round = 0, last = test::Fuzz::Rounds(1500); round < last; ++round) {
        const bool randomText = pick(3) == 0;  // else the report with characters changed
        QString text = randomText ? QString(pick(900), QChar()) : report;
        pick.scatter(text, randomText ? 1 : 40, character);
        pick.edit(text, pick(8), character);
        EtbChain chain;
        for (qsizetype at = 0, length = 0; at < text.size(); at += length) {
            const std::optional<QStringList> frames =
                Join(chain, text.mid(at, length = 1 + pick(80)));
            if (!frames) continue;
            const Edit0855 edit =
                ResultLines0855(*frames, {u"0855"_s, u"UA"_s, {}, {u"0"_s, {}}, u"0"_s});
            const QString model = ReportText0855(*frames).mid(1, 8);
            const qsizetype records = edit.lines.count(u",MIN,"_s);  // one result kind a record
            if (model != u"VPU-4210"_s && model != u"VPU-4010"_s && model != u"VAE-4020"_s)
                ASSERT_EQ(edit.lines, u"ERROR:検査機器が違います。"_s + model + u",0855,UA\r\n"_s)
                    << round;
            else
                ASSERT_TRUE(!edit.lines.contains(u"ERROR:"_s) && records <= 28 &&
                            edit.lines.isEmpty() == (records == 0))
                    << round;
            ASSERT_EQ(edit.recordBuilt, records > 0) << round;
            withRecords += records > 0;
        }
    }
    EXPECT_GT(withRecords, 100);  // the mutations leave many reports readable
}
