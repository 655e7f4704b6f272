// Random and mutated reports through the report chain into the 0855 edit: no crash, no hang, and
// an unknown model gives its error line alone, a known one records only, at most two a test.
// A fixed seed keeps a failure reproducible; KV_ORBLINE_FUZZ_ROUNDS runs longer.

#include "dialogues/PieceReaders.h"
#include "edits/MdlEdit008.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

using namespace Qt::StringLiterals;
using namespace orbline;

TEST(ResultEdit0855Fuzz, AnyReportGivesAnErrorLineOrRecordsAndNothingElse) {
    QString report = u"\x02VPU-4210          12345         2020/04/16 12:34      12\r\n"_s;
    for (const char* name : {"GLU", "PRO", "BIL", "URO", "PH", "S.G.", "BLD", "KET", "NIT", "LEU",
                             "CRE", "ALB", "A/C", "P/C"})
        report += QString::fromLatin1(name).leftJustified(6) + u"*2+*    <0.10mg/dL \r\n"_s;
    report = report.insert(report.size() / 2, u"\x17\x02"_s) + u"\x03"_s;
    std::mt19937 random(20261124);
    const auto pick = [&](int below) { return int(random() % unsigned(std::max(1, below))); };
    // Half of the random characters are those the chain and the edit look for.
    const auto character = [&] {
        return pick(2) ? QChar(u"\x02\x03\x17 */:+<PH.0"[pick(13)]) : QChar(pick(256));
    };
    const char* rounds = std::getenv("KV_ORBLINE_FUZZ_ROUNDS");
    int withRecords = 0;
    for (int round = 0, last = rounds ? std::atoi(rounds) : 1500; round < last; ++round) {
        const bool randomText = pick(3) == 0;  // else the report with characters changed
        QString text = randomText ? QString(pick(900), QChar()) : report;
        for (QChar& c : text)
            if (randomText || pick(40) == 0) c = character();
        for (int n = pick(8); n > 0; --n) text.insert(pick(int(text.size())), character());
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
