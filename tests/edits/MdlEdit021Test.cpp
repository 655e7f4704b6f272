// Result edits 2140 and 2990 from literal frames: what the scenarios through the running process
// do not reach (value shapes, marks, names and codes, identifiers, counts), and the error exit.

#include "edits/MdlEdit021.h"

#include "common/AnsiCodec.h"
#include "common/RunContext.h"
#include "common/RuntimeError.h"
#include "support/Frames.h"
#include "support/TestSite.h"
#include "tables/MdlOption.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace orbline;
using namespace orbline::test;

namespace {

const EditSettings kSettings{u"2140"_s, u"TBA"_s, u"1"_s, {}, {}};

ChemistryMessage Read(const std::vector<QString>& frames, const SampleRule& rule = {}) {
    ChemistryMessage message;
    for (const QString& frame : frames) ReadChemistryFrame(frame, rule, message);
    return message;
}

QString FrameOf(const std::string& id, const std::vector<std::string>& groups,
                const std::string& dateTime = "0416200925") {
    return PortBytes(ChemistryFrame(':', id, groups, dateTime));
}

using Cases = std::vector<std::pair<std::string, QString>>;

// Each case: an item group and its record from ItemCode on. Gives the unknown numbers.
QStringList ExpectLines(const Cases& cases, const ChemistryParams& params) {
    std::vector<std::string> groups;
    QString expected;
    for (const auto& [group, items] : cases) {
        groups.push_back(group);
        expected += u"20200416,092500,0,12,2140,TBA,000000,"_s + items + u"\r\n"_s;
    }
    const ChemistryEdit edit =
        ResultLinesChemistry(Read({FrameOf("12", groups)}), params, kSettings);
    EXPECT_EQ(edit.lines, expected);
    return edit.unknownItems;
}

}  // namespace

// The built-in option rows order 生食 (46) as 2140290; the result list has it at 2140280.
TEST(ResultLinesChemistry, ValuesMarksNamesAndCodes) {
    TestSite site;
    LoadOption2140();
    const RunContext& c = Ctx();
    EXPECT_EQ(
        ExpectLines(
            {{ItemGroup("3", "000000"), u"2140030,T-BIL,,,,,,,MIN,,,"_s},
             {ItemGroup("5", "-1.50", 'Q'), u"2140050,LDH,,,,,-1.50,,MIN,,,セルブランク異常"_s},
             {ItemGroup("7", "12", 'a'), u"2140070,ALT,,,,,12,,MIN,,,サンプル詰まり検知"_s},
             {ItemGroup("46", "8", '@'), u"2140280,生食,,,,,8,,MIN,,,偶発誤差［R－4 s］"_s},
             {ItemGroup("99", ">9"), u"99未登録,99未登録,,,,,＞9,,MIN,,,"_s}},
            {{c.OptionTable2140, c.OptionCount2140, 0, 1}, u"2140"_s}),
        QStringList{u"99"_s});
}

// Every frame replaces the identifier, date and time; a fixed number replaces any identifier.
TEST(ReadChemistryFrame, IdentifierDateAndTimeOfTheLastFrame) {
    const std::tuple<std::string, SampleRule, QString> cases[] = {
        {"", {}, u"0"_s},
        {"A-0012", {}, u"A-0012"_s},
        {"42", {u"0"_s, u"F9"_s}, u"F9"_s},
        {"A-1", {u"2"_s, {}}, QString()}};
    for (const auto& [id, rule, sampleId] : cases) {
        const ChemistryMessage message =
            Read({FrameOf("77", {ItemGroup("1", "1")}, "1231991159"), FrameOf(id, {})}, rule);
        EXPECT_EQ(message.sampleId + message.kensaDate + message.kensaTime,
                  sampleId + u"20200416092500"_s);
        EXPECT_EQ(message.groups.size(), 1u);
    }
}

// The count in columns 49 to 51 rounds half to even; groups past the text read as empty.
TEST(ReadChemistryFrame, GroupCountsAndTheLimit) {
    const QString frame =
        FrameOf("1", {ItemGroup("1", "1"), ItemGroup("2", "2"), ItemGroup("3", "3")});
    const std::pair<QString, int> cases[] = {{u"abc"_s, 0}, {u" -1"_s, 0},  {u"0.5"_s, 0},
                                             {u"1.5"_s, 2}, {u"2.5"_s, 2},  {u"1E0"_s, 1},
                                             {u"  5"_s, 5}, {u"100"_s, 100}};
    for (const auto& [count, groups] : cases)
        EXPECT_EQ(Read({QString(frame).replace(48, 3, count)}).groups.size(), groups)
            << count.toStdString();
    ChemistryMessage message = Read({QString(frame).replace(48, 3, u" 98"_s)});
    EXPECT_THROW(ReadChemistryFrame(frame, {}, message), RuntimeError);
    EXPECT_EQ(message.groups.size(), kMaxChemistryGroups);
    EXPECT_THROW(Read({QString(frame).replace(48, 3, u"9E9"_s)}), RuntimeError);
}

// A 101st group, or a frame past the buffer, ends the process with nothing delivered; the
// abnormal end names the specimen of the frame being read.
TEST(Edit2140DeathTest, TooManyGroupsOrFramesEndTheProcess) {
    TestSite site;
    RunContext& c = Ctx();
    c.InstrumentCode = u"2140"_s;
    c.JyusinWKPath = site.path(u"wk"_s);
    c.JyusinDataPath = site.path(u"data"_s);
    ChemistryFrames frames(kChemistryFrameSlots);
    frames.put(1, FrameOf("7", std::vector<std::string>(60, ItemGroup("1", "1"))));
    frames.put(3, FrameOf("8", std::vector<std::string>(41, ItemGroup("1", "1"))));
    const auto log = [&] {
        return DecodeAnsi(site.readFile(u"Tesvane"_s + c.InstrumentCode + u".log"_s));
    };
    EXPECT_EXIT(EditResult2140(frames, 3), ::testing::ExitedWithCode(1), "");
    EXPECT_TRUE(log().contains(errors::SubscriptOutOfRange() + u" 】2140-8-0:"_s));
    c.InstrumentCode = u"2990"_s;
    frames.put(3, QString());
    EXPECT_EXIT(EditResult2990(frames, 101), ::testing::ExitedWithCode(1), "");
    EXPECT_TRUE(log().contains(errors::SubscriptOutOfRange() + u" 】2990-7-0:"_s));
    EXPECT_FALSE(site.exists(u"wk"_s) || site.exists(u"data"_s));
}
