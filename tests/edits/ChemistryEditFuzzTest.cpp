// Random and mutated chemistry frames through the frame reader and the result lines: no crash,
// no hang, one line for each group the counts ask for, and the row limit as the one failure.
// A fixed seed keeps a failure reproducible; KV_ORBLINE_FUZZ_ROUNDS runs longer.

#include "common/Numbers.h"
#include "common/RunContext.h"
#include "common/RuntimeError.h"
#include "common/Text.h"
#include "edits/MdlEdit021.h"
#include "support/Frames.h"
#include "support/TestSite.h"
#include "tables/MdlOption.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <random>

using namespace Qt::StringLiterals;
using namespace orbline;

TEST(ChemistryEditFuzz, OneLinePerCountedGroupAndOnlyTheLimitThrows) {
    test::TestSite site;
    LoadOption2140();
    const ChemistryParams params{{Ctx().OptionTable2140, Ctx().OptionCount2140, 0, 1}, u"2140"_s};
    const EditSettings settings{u"2140"_s, u"TBA"_s, u"1"_s, {u"0"_s, {}}, {}};
    std::mt19937 random(2140);
    const auto pick = [&](int below) {
        return std::uniform_int_distribution<int>(0, std::max(0, below - 1))(random);
    };
    const QString alphabet = u"0123456789 .-+E,<>AQa?$\x02\x03ｱ\uF781"_s;
    const auto character = [&] { return alphabet.at(pick(static_cast<int>(alphabet.size()))); };
    const std::string values[] = {"1.20", "000123", "000000", "  <LT>0.5", "-----", "12", ""};
    const std::string marks = "AQa?$ *=b";
    const QString counts[] = {u"abc"_s, u" -1"_s, u"1E2"_s, u"9E9"_s, u"0.5"_s, u"   "_s};

    const char* rounds = std::getenv("KV_ORBLINE_FUZZ_ROUNDS");
    for (int round = 0, last = rounds != nullptr ? std::atoi(rounds) : 1500; round < last;
         ++round) {
        std::vector<QString> frames(1 + pick(3));
        for (QString& frame : frames) {
            std::vector<std::string> groups(pick(40));
            for (std::string& group : groups)
                group = test::ItemGroup(std::to_string(pick(100)), values[pick(7)],
                                        marks[std::size_t(pick(int(marks.size())))]);
            frame =
                test::PortBytes(test::ChemistryFrame(':', std::to_string(pick(100000)), groups));
            if (pick(2) == 0)
                frame.replace(
                    48, 3,
                    pick(2) == 0 ? counts[pick(6)] : QString::number(pick(1000)).rightJustified(3));
            for (QChar& c : frame)
                if (pick(60) == 0) c = character();
            for (int n = pick(4); n > 0; --n)
                frame.insert(pick(int(frame.size()) + 1), character());
            for (int n = pick(4); n > 0 && !frame.isEmpty(); --n)
                frame.remove(pick(int(frame.size())), 1);
            if (pick(8) == 0) frame.truncate(pick(80));
        }
        // What the counts ask for, read from the columns independently of the reader.
        std::int64_t asked = 0;
        bool overflow = false;
        ChemistryMessage message;
        for (const QString& frame : frames) {
            const QString count = Trim(Mid(frame, 49, 3));
            const std::optional<std::int32_t> n = IsNumeric(count) ? ToInt32(count) : 0;
            overflow = overflow || !n;
            asked += n ? std::max(0, *n) : 0;
            try {
                ReadChemistryFrame(frame, {}, message);
            } catch (const RuntimeError& error) {
                ASSERT_TRUE(!n ? error.description() == errors::Overflow()
                               : asked > 100 && message.groups.size() == kMaxChemistryGroups)
                    << "round " << round;
                break;
            }
            ASSERT_TRUE(n && asked <= 100) << "round " << round;
        }
        if (overflow || asked > 100) continue;

        ASSERT_EQ(message.groups.size(), static_cast<std::size_t>(asked)) << "round " << round;
        const ChemistryEdit edit = ResultLinesChemistry(message, params, settings);
        const QStringList lines = edit.lines.split(u"\r\n"_s);
        ASSERT_EQ(lines.size(), asked + 1) << "round " << round;
        ASSERT_TRUE(lines.last().isEmpty());
        const bool commas = std::any_of(frames.begin(), frames.end(),
                                        [](const QString& f) { return f.contains(u','); });
        for (qsizetype i = 0; i + 1 < lines.size() && !commas; ++i) {
            const QStringList fields = lines[i].split(u',');
            ASSERT_EQ(fields.size(), 19) << "round " << round;
            ASSERT_EQ(fields[3], message.sampleId);
            ASSERT_EQ(fields[8].endsWith(u"未登録"_s),
                      edit.unknownItems.contains(message.groups[std::size_t(i)].number));
        }
    }
}
