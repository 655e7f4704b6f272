// Random and mutated chemistry frames through the frame reader and the result lines: no crash,
// no hang, one line for each group the counts ask for, and the row limit as the one failure.

#include "common/Numbers.h"
#include "common/RunContext.h"
#include "common/RuntimeError.h"
#include "common/Text.h"
#include "edits/MdlEdit021.h"
#include "support/Frames.h"
#include "support/Fuzz.h"
#include "support/TestSite.h"
#include "tables/MdlOption.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace orbline;

TEST(ChemistryEditFuzz, OneLinePerCountedGroupAndOnlyTheLimitThrows) {
    test::TestSite site;
    LoadOption2140();
    const ChemistryParams params{{Ctx().OptionTable2140, Ctx().OptionCount2140, 0, 1}, u"2140"_s};
    test::Fuzz pick{std::mt19937(2140)};
    const QString alphabet = u"0123456789 .-+E,<>AQa?$\x02\x03ｱ\uF781"_s;
    const std::string values[] = {"1.20", "000123", "000000", "  <LT>0.5", "-----", ""};
    for (int round = 0, last = test::Fuzz::Rounds(1500); round < last; ++round) {
        ChemistryMessage message;
        qsizetype asked = 0;
        bool thrown = false;
        for (int f = 1 + pick(3); f > 0 && !thrown; --f) {
            std::vector<std::string> groups(pick(40));
            for (std::string& group : groups)
                group =
                    test::ItemGroup(std::to_string(pick(100)), values[pick(6)], "AQa? $"[pick(6)]);
            QString frame =
                test::PortBytes(test::ChemistryFrame(':', std::to_string(pick(99999)), groups));
            // Random counts (9E9 overflows), changed, inserted characters, cut frames.
            if (pick(2) == 0)
                frame.replace(48, 3, QString::number(pick(1000) - 50).rightJustified(3));
            if (pick(9) == 0) frame.replace(48, 3, u"9E9"_s);
            pick.scatter(frame, 60, [&] { return alphabet.at(pick(alphabet.size())); });
            if (pick(8) == 0) frame.truncate(pick(80));
            // What the count asks for, read independently of the reader.
            const QString count = Trim(Mid(frame, 49, 3));
            const std::optional<std::int32_t> n = IsNumeric(count) ? ToInt32(count) : 0;
            asked += n ? std::max(0, *n) : 0;
            try {
                ReadChemistryFrame(frame, {}, message);
            } catch (const RuntimeError&) {
                thrown = true;
            }
            ASSERT_EQ(thrown, !n || asked > 100) << round;
        }
        if (thrown) continue;
        ASSERT_EQ(message.groups.size(), std::size_t(asked)) << round;
        const ChemistryEdit edit =
            ResultLinesChemistry(message, params, {u"2140"_s, u"TBA"_s, u"1"_s, {}, {}});
        const QStringList lines = edit.lines.split(u"\r\n"_s);
        ASSERT_EQ(lines.size(), asked + 1) << round;
        for (qsizetype i = 0; i < asked; ++i)
            ASSERT_EQ(lines[i].endsWith(u"未登録"_s) || lines[i].contains(u"未登録,"_s),
                      edit.unknownItems.contains(message.groups[std::size_t(i)].number))
                << round;
    }
}
