// Result edits 2140 and 2990 from literal frames: the cases a scenario through the running
// process does not reach (value shapes, marks, names and codes, identifiers, counts, the 2990
// columns), and the error exit.

#include "edits/MdlEdit021.h"

#include "common/AnsiCodec.h"
#include "common/RunContext.h"
#include "common/RuntimeError.h"
#include "support/Frames.h"
#include "support/TestSite.h"
#include "tables/MdlOption.h"

#include <gtest/gtest.h>

#include <QDir>

using namespace Qt::StringLiterals;
using namespace orbline;
using orbline::test::ChemistryFrame;
using orbline::test::ItemGroup;
using orbline::test::PortBytes;

namespace {

const EditSettings kSettings{u"2140"_s, u"TBA"_s, u"1"_s, {u"0"_s, {}}, {}};

ChemistryMessage Read(const std::vector<QString>& frames, const SampleRule& rule = {}) {
    ChemistryMessage message;
    for (const QString& frame : frames) ReadChemistryFrame(frame, rule, message);
    return message;
}

QString Frame(const std::string& id, const std::vector<std::string>& groups,
              const std::string& dateTime = "0416200925") {
    return PortBytes(ChemistryFrame(':', id, groups, dateTime));
}

// The record fields from ItemCode on, one entry per line.
QStringList Items(const ChemistryEdit& edit) {
    QStringList items = edit.lines.split(u"\r\n"_s);
    for (QString& line : items) line = line.section(u',', 7);
    return items;
}

}  // namespace

TEST(ResultLines2140, ValuesMarksNamesAndCodes) {
    test::TestSite site;
    LoadOption2140();  // the built-in rows: HPAb is 37 and orders it as 2140280
    const ChemistryParams params{{Ctx().OptionTable2140, Ctx().OptionCount2140, 0, 1}, u"2140"_s};
    const std::pair<std::string, QString> cases[] = {
        {ItemGroup("1", "1.20"), u"2140010,TP,,,,,1.20,,MIN,,,"_s},
        {ItemGroup("2", "000123"), u"2140020,ALB,,,,,123,,MIN,,,"_s},
        {ItemGroup("3", "000000"), u"2140030,T-BIL,,,,,,,MIN,,,"_s},
        {ItemGroup("4", "  <LT>0.5"), u"2140040,D-BIL,,,,,＜0.5,,MIN,,,"_s},
        {ItemGroup("5", "-1.50", 'Q'), u"2140050,LDH,,,,,-1.50,,MIN,,,セルブランク異常"_s},
        {ItemGroup("6", "12", '?'), u"2140060,AST,,,,,12,,MIN,,,?"_s},
        {ItemGroup("7", "12", 'a'), u"2140070,ALT,,,,,12,,MIN,,,サンプル詰まり検知"_s},
        {ItemGroup("37", "8"), u"2140290,HPAb,,,,,8,,MIN,,,"_s},
        {ItemGroup("46", "8", '@'), u"2140280,生食,,,,,8,,MIN,,,偶発誤差［R－4 s］"_s},
        {ItemGroup("99", ">9"), u"99未登録,99未登録,,,,,＞9,,MIN,,,"_s},
    };
    std::vector<std::string> groups;
    QStringList expected;
    for (const auto& [group, items] : cases) {
        groups.push_back(group);
        expected << items;
    }
    const ChemistryEdit edit = ResultLinesChemistry(Read({Frame("12", groups)}), params, kSettings);
    EXPECT_EQ(Items(edit), expected + QStringList{QString()});
    EXPECT_EQ(edit.lines.section(u"\r\n"_s, 0, 0),
              u"20200416,092500,0,12,2140,TBA,000000,2140010,TP,,,,,1.20,,MIN,,,"_s);
    EXPECT_EQ(edit.unknownItems, QStringList{u"99"_s});
}

// Rows 1 and 2 share a number (the first wins); column 0 is not the key.
TEST(ResultLines2990, NumberInColumnOneNameInColumnTwo) {
    BoundedTable table(1000, 10);
    const QStringList rows[] = {{u"5"_s, u"1"_s, u"TP"_s},
                                {{}, u"1"_s, u"ALB"_s},
                                {u"3"_s, u"2"_s, u"XYZ"_s},
                                {{}, u"3"_s, u"生食"_s}};
    for (int row = 1; const QStringList& cells : rows) {
        for (qsizetype column = 0; column < cells.size(); ++column)
            table.put(row, column, cells[column]);
        ++row;
    }
    const ChemistryParams params{{table, 4, 1, 2}, u"2990"_s};
    const ChemistryMessage message = Read({Frame("1", {ItemGroup("1", "1"), ItemGroup("2", "1"),
                                                       ItemGroup("3", "1"), ItemGroup("5", "1")})});
    QStringList codes;
    for (const QString& items : Items(ResultLinesChemistry(message, params, kSettings)))
        codes << items.section(u',', 0, 1);
    EXPECT_EQ(codes, (QStringList{u"2990010,TP"_s, u"XYZ,XYZ"_s, u"2990280,生食"_s,
                                  u"5未登録,5未登録"_s, QString()}));
}

// Every frame replaces the identifier, date and time; a fixed number replaces any identifier.
TEST(ReadChemistryFrame, IdentifierDateAndTimeOfTheLastFrame) {
    struct Case {
        std::string id;
        SampleRule rule;
        QString sampleId;
    };
    const Case cases[] = {
        {"", {}, u"0"_s},
        {"0000000012345", {}, u"12345"_s},
        {"A-0012", {}, u"A-0012"_s},
        {"0042", {u"0"_s, u"F9"_s}, u"F9"_s},
        {"A-1", {u"2"_s, {}}, QString()},
    };
    for (const Case& c : cases) {
        const ChemistryMessage message =
            Read({Frame("77", {ItemGroup("1", "1")}, "1231991159"), Frame(c.id, {})}, c.rule);
        EXPECT_EQ(message.sampleId, c.sampleId) << c.id;
        EXPECT_EQ(message.kensaDate + message.kensaTime, u"20200416092500"_s);
        EXPECT_EQ(message.groups.size(), 1u);
    }
}

// The count in columns 49 to 51 rounds half to even; groups past the text read as empty.
TEST(ReadChemistryFrame, GroupCountsAndTheLimit) {
    const QString frame =
        Frame("1", {ItemGroup("1", "1"), ItemGroup("2", "2"), ItemGroup("3", "3")});
    const std::pair<QString, int> cases[] = {{u"abc"_s, 0}, {u"   "_s, 0}, {u" -1"_s, 0},
                                             {u"0.5"_s, 0}, {u"1.5"_s, 2}, {u"2.5"_s, 2},
                                             {u"1E0"_s, 1}, {u"  5"_s, 5}, {u"100"_s, 100}};
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
    test::TestSite site;
    RunContext& c = Ctx();
    c.InstrumentCode = u"2140"_s;
    c.JyusinWKPath = site.path(u"wk"_s);
    c.JyusinDataPath = site.path(u"data"_s);
    ChemistryFrames frames(kChemistryFrameSlots);
    frames.put(1, Frame("7", std::vector<std::string>(60, ItemGroup("1", "1"))));
    frames.put(3, Frame("8", std::vector<std::string>(41, ItemGroup("1", "1"))));
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
