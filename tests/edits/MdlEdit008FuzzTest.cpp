// Random and mutated reports through the 0855 edit, as the report chain hands them over: no
// crash, no hang, and the file is either one error line or records only, never more than two a
// test. A fixed seed keeps a failure reproducible; KV_ORBLINE_FUZZ_ROUNDS runs longer.

#include "common/Text.h"
#include "dialogues/PieceReaders.h"
#include "edits/MdlEdit008.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

using namespace Qt::StringLiterals;
using namespace orbline;

namespace {

// A report of all 14 tests in two frames, the second starting with a line cut by the first.
QString Report() {
    QString text = u"\x02VPU-4210          12345         2020/04/16 12:34      12\r\n"_s;
    for (const QString& name :
         {u"GLU"_s, u"PRO"_s, u"BIL"_s, u"URO"_s, u"PH"_s, u"S.G."_s, u"BLD"_s, u"KET"_s, u"NIT"_s,
          u"LEU"_s, u"CRE"_s, u"ALB"_s, u"A/C"_s, u"P/C"_s})
        text += PadRightFixed(name, 6, u" "_s) + u"*2+*    <0.10mg/dL \r\n"_s;
    return text.insert(text.size() / 2, u"\x17\x02"_s) + u"\x03"_s;
}

}  // namespace

TEST(ResultEdit0855Fuzz, AnyReportGivesAnErrorLineOrRecordsAndNothingElse) {
    const QString report = Report();
    const EditSettings settings{u"0855"_s, u"UA"_s, {}, {u"0"_s, {}}, u"0"_s};
    std::mt19937 random(20261124);
    const auto pick = [&](int below) {
        return std::uniform_int_distribution<int>(0, std::max(0, below - 1))(random);
    };
    // Half of the random characters are the ones the chain and the edit look for.
    const auto character = [&] {
        static constexpr char16_t kMarked[] = {0x02, 0x03, 0x17, u' ', u'*', u'/', u':',
                                               u'+', u'<', u'P', u'H', u'.', u'0'};
        return QChar(pick(2) == 0 ? kMarked[pick(std::size(kMarked))] : char16_t(pick(256)));
    };
    const char* rounds = std::getenv("KV_ORBLINE_FUZZ_ROUNDS");
    int edited = 0;
    int withRecords = 0;
    for (int round = 0, last = rounds != nullptr ? std::atoi(rounds) : 1500; round < last;
         ++round) {
        // Random text, or the report with characters changed, inserted and dropped.
        const bool randomText = pick(3) == 0;
        QString text = randomText ? QString(pick(900), QChar()) : report;
        for (QChar& c : text)
            if (randomText || pick(40) == 0) c = character();
        for (int n = pick(8); n > 0; --n)
            text.insert(pick(static_cast<int>(text.size())), character());
        for (int n = pick(8); n > 0 && !text.isEmpty(); --n)
            text.remove(pick(static_cast<int>(text.size())), 1);

        EtbChain chain;
        for (qsizetype at = 0, length = 0; at < text.size(); at += length) {
            length = 1 + pick(80);
            const std::optional<QStringList> frames = Join(chain, text.mid(at, length));
            if (!frames) continue;
            ++edited;
            const Edit0855 edit = ResultLines0855(*frames, settings);
            ASSERT_TRUE(edit.lines.isEmpty() || edit.lines.endsWith(u"\r\n"_s)) << round;
            // Whether the model is known, read here without the edit's help.
            const QString model = ReportText0855(*frames).mid(1, 8);
            const bool known =
                model == u"VPU-4210"_s || model == u"VPU-4010"_s || model == u"VAE-4020"_s;
            if (!known) {
                ASSERT_EQ(edit.lines, u"ERROR:検査機器が違います。"_s + model + u",0855,UA\r\n"_s)
                    << round;
                ASSERT_FALSE(edit.recordBuilt) << round;
                continue;
            }
            // Each record has its one result kind; a field may hold a line end, so lines are
            // not counted.
            const qsizetype records = edit.lines.count(u",MIN,"_s);
            ASSERT_FALSE(edit.lines.contains(u"ERROR:"_s)) << round;
            ASSERT_EQ(edit.recordBuilt, records > 0) << round;
            ASSERT_LE(records, 28) << round;
            ASSERT_EQ(edit.lines.isEmpty(), records == 0) << round;
            if (records > 0) ++withRecords;
        }
    }
    // The mutations leave many reports readable: the records were reached, not only the errors.
    EXPECT_GT(edited, 300);
    EXPECT_GT(withRecords, 100);
}
