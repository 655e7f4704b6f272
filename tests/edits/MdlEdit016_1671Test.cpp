// Result edit 1671: the charts from literal lines, compared with hand-worked charts in
// fixtures/tympanometer, the error lines, and the files of the outer step.

#include "common/AnsiCodec.h"
#include "common/RunContext.h"
#include "common/RuntimeError.h"
#include "edits/MdlEdit016.h"
#include "support/TestSite.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

using namespace Qt::StringLiterals;
using namespace orbline;
using orbline::test::TestSite;

namespace {

// A "J" line: marker at 3, identifier at 5, date at 18, points + 1 at 27, step at 30, ear at
// 34, PVT at 68; then S.C., PEAK, GRAD and the samples; the ETX.
QString J(const QString& date, const QString& points, const QString& step, const QString& ear,
          const QString& pvt, const QStringList& fields) {
    return u"01J 0000004711xxx"_s + date + u"xxx"_s + points + step + ear + QString(33, u'x') +
           pvt + u","_s + fields.join(u',') + u"\x03"_s;
}

// An "M" line: time change at 30, ear at 34, pressure at 35, equivalent volume at 71; fields 1
// to 3 unread, the groups, and the ETX alone as the last field.
QString M(const QString& ear, const QString& volume, const QStringList& groups) {
    return u"01M 0000004711xxx250416xxx0010010"_s + ear + u"-015"_s + QString(32, u'x') + volume +
           u",x,y,z,"_s + groups.join(u',') + u",\x03"_s;
}

const QString kLeft =
    J(u"250416"_s, u"271"_s, u"5000"_s, u"L"_s, u"0850"_s,
      {u" 1250"_s, u"-15"_s, u"120"_s, u"1200"_s, u""_s, u"/12"_s, u"1350"_s, u"600"_s, u"1101"_s});
const QString kRight =
    J(u"250416"_s, u"271"_s, u"5000"_s, u"R"_s, u"0850"_s,
      {u"1250"_s, u"-15"_s, u"120"_s, u"1200"_s, u"1350"_s, u"1101"_s, u"950"_s, u"900"_s});
const QString kLeftOfPair =
    J(u"250416"_s, u"403"_s, u"7500"_s, u"L"_s, u"1000"_s,
      {u"----"_s, u"-20"_s, u"95"_s, u"1400"_s, u"1300"_s, u"1200"_s, u"750"_s});
const QStringList kReflex{
    M(u"R"_s, u"0850"_s, {u"3120125"_s, u"412"_s, u"4110250"_s}),
    M(u"L"_s, u"1000"_s, {u"5231200"_s, u"62102/-"_s}),
};

QStringList Fixture(const QString& name) {
    QFile file(QStringLiteral(ORBLINE_FIXTURES_DIR "/tympanometer/") + name);
    if (!file.open(QIODevice::ReadOnly)) return {u"missing fixture"_s};
    return DecodeAnsi(file.readAll()).split(u"\r\n"_s);
}

QStringList Pressures(const PressureTable1671& table) {
    QStringList out;
    for (const PressureRow1671& row : table.rows) out << row.pressure + u"="_s + row.compliance;
    return out;
}

void Configure(const TestSite& site) {
    RunContext& c = Ctx();
    c.InstrumentCode = u"1671"_s;
    c.IniPrefix = u"KV"_s;
    c.InstrumentName = u"TYMP"_s;
    c.CrpName = u"REFLEX"_s;
    c.RunMarkDefault = u"1"_s;
    c.JyusinWKPath = site.path(u"wk"_s);
    c.JyusinDataPath = site.path(u"data"_s);
    c.JyusinDataPath2 = site.path(u"chart"_s);
}

QStringList Files(const TestSite& site, const QString& folder) {
    return QDir(site.native(folder)).entryList(QDir::Files);
}

}  // namespace

// Rows fall from 200 by the step; the free row is empty, or the -200 row of a 269 or 270 point
// test that ends above -200, which doesn't count as a row.
TEST(PressureTable1671, StepsAndTheFreeRow) {
    struct Case {
        QString points, step;
        QStringList samples;
        QStringList rows;
        int count;
    };
    const Case cases[] = {
        {u"271"_s,
         u"    "_s,
         {u"1000"_s, u"1000"_s, u"1100"_s},
         {u"200=0.15"_s, u"198.5=0.15"_s, u"197=0.25"_s, u"-200=0.25"_s},
         3},
        {u"270"_s,
         u"0133"_s,
         {u"850"_s, u"/"_s, u"849"_s},
         {u"200=0"_s, u"198.67=-0.001"_s, u"-200=-0.001"_s},
         2},
        {u"269"_s, u"5000"_s, {u"900"_s}, {u"200=0.05"_s, u"="_s}, 1},
        {u"271"_s,
         u"8000"_s,
         {u"1"_s, u"2"_s, u"3"_s, u"4"_s, u"5"_s, u"6"_s},
         {u"200=-0.849"_s, u"120=-0.848"_s, u"40=-0.847"_s, u"-40=-0.846"_s, u"-120=-0.845"_s,
          u"-200=-0.844"_s, u"="_s},
         6},
        {u"271"_s, u"5000"_s, {}, {u"="_s}, 0},
    };
    for (const Case& c : cases) {
        const PressureTable1671 table =
            ReadPressureTable1671(J(u"250416"_s, c.points, c.step, u"R"_s, u"0850"_s,
                                    QStringList{u"1"_s, u"2"_s, u"3"_s} + c.samples));
        EXPECT_EQ(Pressures(table), c.rows) << c.step.toStdString();
        EXPECT_EQ(table.PressureRowCount, c.count) << c.step.toStdString();
    }
    for (const QString& bad : {u"12a"_s, u" "_s}) {
        EXPECT_THROW(ReadPressureTable1671(J(u"250416"_s, u"271"_s, u"5000"_s, u"R"_s, u"0850"_s,
                                             {u"1"_s, u"2"_s, u"3"_s, bad})),
                     RuntimeError);
    }
    EXPECT_THROW(PointCount1671(J(u"250416"_s, u"2x1"_s, u"5000"_s, u"R"_s, u"0850"_s, {})),
                 RuntimeError);
    EXPECT_THROW(ReadPressureTable1671(J(u"250416"_s, u"271"_s, u"0001"_s, u"R"_s, u"0850"_s,
                                         QStringList(1004, u"900"_s))),
                 RuntimeError);
}

TEST(Chart1671, HandWorkedChartsOfOneEarBothEarsAndAReflexBatch) {
    EXPECT_EQ(SingleEarChart1671(kLeft), Fixture(u"single-left.csv"_s).mid(0, 14));
    const QString right = EarFile1671(kRight).join(u"\r\n"_s);
    const QString left = EarFile1671(kLeftOfPair).join(u"\n"_s) + u"\n"_s;
    EXPECT_EQ(MergedChart1671(right, left, 402), Fixture(u"pair.csv"_s).mid(0, 18));
    EXPECT_EQ(ReflexChart1671(kReflex, u"4711"_s), Fixture(u"reflex.csv"_s).mid(0, 24));
}

// The right ear alone: the other column, and the S.C. line of a value that is no number.
TEST(Chart1671, RightEarColumnsAndEarFileTexts) {
    const QString line = J(u"250416"_s, u"100"_s, u"5000"_s, u"R"_s, u"abcd"_s,
                           {u"--"_s, u"7"_s, u"8"_s, u"1000"_s});
    EXPECT_EQ(
        SingleEarChart1671(line),
        (QStringList{u"RS-M1,0.00,"_s, u"TYMPANOMETRY,,"_s, u",RIGHT,"_s, u"PVT.,0,,[mL]"_s,
                     u"S.C.,,[mL]"_s, u"PEAK.,7,,[daPa]"_s, u"GRAD.,8,[daPa]"_s,
                     u"PRES ,COMPLIANCE[ml],"_s, u"[daPa], RIGHT ,,"_s, u",,,"_s, u"200,1,,"_s}));
    EXPECT_EQ(EarFile1671(line).mid(2, 4),
              (QStringList{u", RIGHT,"_s, u"PVT.,0,[mL]"_s, u"S.C.,,[mL]"_s, u"PEAK.,7,[daPa]"_s}));
    EXPECT_EQ(EarFile1671(line).last(), u"200,1,"_s);
}

// The closing row is 400 only past 300 points and 200 daPa; a CR alone stays in its line; the
// floor -0.1 holds on both sides; a side that ends first leaves its last value.
TEST(Chart1671, MergeClosingRowAndLineEnds) {
    const QString head = u"h,r,\n"_s.repeated(9);
    const QString lhead = u"h,l,\n"_s.repeated(9);
    struct Case {
        QString right, left;
        int points;
        QStringList rows;
    };
    const Case cases[] = {
        {u"250,-0.3,\n"_s, u"250,0.2,\r\n"_s, 402, {u"250,-0.1,0.2,"_s, u"400,-0.1,0.2,"_s}},
        {u"250,-0.3,\n"_s, u"250,0.2,\r\n"_s, 270, {u"250,-0.1,0.2,"_s, u"200,-0.1,0.2,"_s}},
        {u"198.5,1,\n200,2,\n"_s,
         u"198,3,\n"_s,
         402,
         {u"198,1,3,"_s, u"200,2,3,"_s, u"200,2,3,"_s}},
        {u"100,1,\r200,2,\n"_s, u"100,3,\n"_s, 402, {u"100,1,3,"_s, u"200,1,3,"_s}},
    };
    for (const Case& c : cases) {
        const QStringList chart = MergedChart1671(head + c.right, lhead + c.left, c.points);
        EXPECT_EQ(chart.first(), u"h,r,l,"_s);
        EXPECT_EQ(chart.mid(9), c.rows) << c.right.toStdString();
    }
}

TEST(Chart1671, ReflexGroupsPassedOverAndAVolumeThatIsNoNumber) {
    const QStringList chart =
        ReflexChart1671({M(u"R"_s, u"----"_s, {u"312012"_s, u"9120042"_s}),
                         M(u"R"_s, u"0850"_s, {}), M(u"X"_s, u"0850"_s, {u"3110100"_s})},
                        u"7"_s);
    EXPECT_EQ(
        chart,
        (QStringList{
            u"RS-M1,RION"_s, u"Reflex,R,【右耳】"_s, u"ID,7"_s, u"YMD,20250416"_s,
            u"時間変化,0010"_s, u"圧力,-015,daPa"_s, u"等価容積,----,mL"_s,
            u"0005,9120042,9,1,1,0042,0.042,"_s, u"R-END"_s, u"R-END"_s,
            u"連番,元データ,刺激音種類,刺激音レベル,提示及び同期／反対側,データ,/1000,差"_s,
            u"KVB-0500-X-START"_s, u"0004,3110100,3,1,1,0100,0.1,-0.75"_s, u"KVB-0500-X-END"_s}));
}

TEST(Lines1671, ErrorLinesForEveryKindOfCall) {
    const EditSettings settings{u"1671"_s, u"TYMP"_s, u"1"_s, {}, u"0"_s};
    const QString tail = u",1671,TYMP"_s;
    const QString other = J(u"250417"_s, u"271"_s, u"5000"_s, u"R"_s, u"0850"_s, {});
    struct Case {
        QStringList lines;
        Call1671 call;
        std::optional<QString> line;
    };
    const Case cases[] = {
        {{}, Call1671::OneEar, u"ERROR:受信データなし。"_s + tail},
        {{u""_s, kLeft}, Call1671::BothEars, u"ERROR:受信データなし。"_s + tail},
        {{u"01X rest\x03"_s}, Call1671::OneEar, u"ERROR:検査名が違います。 X"_s + tail},
        {{u"01\x03"_s}, Call1671::Reflex, u"ERROR:検査名が違います。 \x03"_s + tail},
        {{u"01Q"_s, kLeft}, Call1671::BothEars, u"ERROR:検査名が違います。 Q"_s + tail},
        {{kRight, other},
         Call1671::BothEars,
         u"ERROR:検査日が左右で違います。　250416-250417"_s + tail},
        {{kRight}, Call1671::BothEars, u"ERROR:検査日が左右で違います。　250416-"_s + tail},
        {{kRight, kLeft}, Call1671::BothEars, std::nullopt},
        {{kRight, other}, Call1671::OneEar, std::nullopt},
        {{kLeft}, Call1671::Reflex, std::nullopt},
    };
    for (const Case& c : cases)
        EXPECT_EQ(RejectedLine1671(c.lines, c.call, settings), c.line)
            << c.lines.join(u'|').toStdString();
}

// Each call delivers its chart whole into JyusinDataPath2 beside a file of that name, which
// stays, and then the record that points to it; the ear files are gone.
TEST(Edit1671, ChartThenTheRecordThatPointsToIt) {
    struct Case {
        QStringList lines;
        Call1671 call;
        QString fixture, prefix, name, fixedId, id;
    };
    const Case cases[] = {
        {{kLeft}, Call1671::OneEar, u"single-left.csv"_s, u"T"_s, u"TYMP"_s, {}, u"4711"_s},
        {{kRight, kLeftOfPair, kLeft},
         Call1671::BothEars,
         u"pair.csv"_s,
         u"T"_s,
         u"TYMP"_s,
         u"007"_s,
         u"7"_s},
        {kReflex, Call1671::Reflex, u"reflex.csv"_s, u"R"_s, u"REFLEX"_s, {}, u"4711"_s},
    };
    for (const Case& c : cases) {
        TestSite site;
        Configure(site);
        Ctx().FixedSampleId = c.fixedId;
        const QString taken = u"chart/1671-"_s + c.prefix + u"-2025041609301600002~KVB.csv"_s;
        site.writeFile(taken, "earlier");
        EditResult1671(c.lines, c.call);
        EXPECT_EQ(site.readFile(taken), "earlier");
        const QString chart =
            site.path(u"chart\\1671-"_s + c.prefix + u"-2025041609301600003~KVB.csv"_s);
        EXPECT_EQ(
            DecodeAnsi(site.readFile(u"chart/"_s + chart.section(u'\\', -1))).split(u"\r\n"_s),
            Fixture(c.fixture))
            << c.fixture.toStdString();
        EXPECT_EQ(DecodeAnsi(site.readFile(u"data/1671-KV-2025041609301600004~KVB.csv"_s)),
                  u"20250416,000000,1,"_s + c.id + u",1671,"_s + c.name +
                      u",000000,,,,,,,,,MIN,"_s + chart + u",,\r\n"_s);
        EXPECT_EQ(Files(site, u"wk"_s), QStringList());
        EXPECT_EQ(QDir(site.native()).entryList({u"1671-*"_s}), QStringList());
        EXPECT_TRUE(DecodeAnsi(site.readFile(u"Tesvane1671.log"_s))
                        .contains(u"出力完了(Write) -- 1671-"_s + c.id + u"-1:"_s));
    }
}

// A pair of one ear, a stale left file from an earlier run notwithstanding, and a stray line
// of any call: an error line and no chart.
TEST(Edit1671, ErrorLinesReachTheResultFileWithoutAChart) {
    TestSite site;
    Configure(site);
    site.writeFile(u"1671-4711-L.csv"_s, "stale");
    EditResult1671({kRight, kRight}, Call1671::BothEars);
    EditResult1671({u"01Z\x03"_s}, Call1671::Reflex);
    EXPECT_EQ(DecodeAnsi(site.readFile(u"data/1671-KV-2025041609301600002~KVB.csv"_s)),
              u"ERROR:検査データ左右なし（システム障害）,1671,TYMP\r\n"_s);
    EXPECT_EQ(DecodeAnsi(site.readFile(u"data/1671-KV-2025041609301600004~KVB.csv"_s)),
              u"ERROR:検査名が違います。 Z,1671,TYMP\r\n"_s);
    EXPECT_FALSE(site.exists(u"chart"_s));
    EXPECT_EQ(QDir(site.native()).entryList({u"1671-*"_s}), QStringList());
}

// A sample that is no number ends the process before any chart or record is delivered.
TEST(Edit1671DeathTest, ARunTimeErrorLeavesNoChartAndNoRecord) {
    TestSite site;
    Configure(site);
    const QString bad =
        J(u"250416"_s, u"271"_s, u"5000"_s, u"R"_s, u"0850"_s, {u"1"_s, u"2"_s, u"3"_s, u"9x9"_s});
    EXPECT_EXIT(EditResult1671({bad}, Call1671::OneEar), ::testing::ExitedWithCode(1), "");
    EXPECT_FALSE(site.exists(u"chart"_s));
    EXPECT_FALSE(site.exists(u"data"_s));
}
