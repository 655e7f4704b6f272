// Result edit 1671 where the scenario's hand-worked charts don't reach: the pressure table, the
// right ear alone, the merge and the reflex rows from literal lines, the error lines, the files.

#include "common/AnsiCodec.h"
#include "common/RunContext.h"
#include "common/RuntimeError.h"
#include "edits/MdlEdit016.h"
#include "support/TestSite.h"

#include <gtest/gtest.h>

#include <QDir>

using namespace Qt::StringLiterals;
using namespace orbline;
using orbline::test::TestSite;

namespace {

// "a|b|c" as a list, to keep the tables to one line a case.
QStringList L(const QString& text) {
    return text.isEmpty() ? QStringList() : text.split(u'|');
}

// A right "J" line: date at 18, points + 1 and step at 27, PVT at 68; then S.C., PEAK, GRAD,
// the samples and the ETX.
QString J(const QString& head, const QString& fields, const QString& date = u"250416"_s) {
    return u"01J 0000004711xxx"_s + date + u"xxx"_s + head + u"R"_s + QString(33, u'x') + fields +
           u"\x03"_s;
}

// An "M" line: time change at 30, ear at 34, pressure at 35, volume at 71; three fields not
// read, the groups, and the ETX alone as the last field.
QString M(const QString& ear, const QString& volume, const QString& groups) {
    return u"01M 0000004711xxx250416xxx0010010"_s + ear + u"-015"_s + QString(32, u'x') + volume +
           u",x,y,z,"_s + groups + u",\x03"_s;
}

const QString kRight = J(u"2715000"_s, u"0850,1250,-15,120,1200"_s);

void Configure(const TestSite& site) {
    RunContext& c = Ctx();
    std::tie(c.InstrumentCode, c.IniPrefix, c.InstrumentName, c.CrpName, c.RunMarkDefault) =
        std::tuple(u"1671"_s, u"KV"_s, u"TYMP"_s, u"REFLEX"_s, u"1"_s);
    std::tie(c.JyusinWKPath, c.JyusinDataPath, c.JyusinDataPath2) =
        std::tuple(site.path(u"wk"_s), site.path(u"data"_s), site.path(u"chart"_s));
}

}  // namespace

// Rows fall from 200 by the step (1.5 when blank); the free row is empty, or the -200 row of a
// 269 or 270 point test that ends above -200, which PressureRowCount doesn't count.
TEST(PressureTable1671, StepsAndTheFreeRow) {
    const std::tuple<QString, QString, QString, int> cases[] = {
        {u"271    "_s, u"1000|1000|1100"_s, u"200=0.15|198.5=0.15|197=0.25|-200=0.25"_s, 3},
        {u"2700133"_s, u"850|/|849"_s, u"200=0|198.67=-0.001|-200=-0.001"_s, 2},
        {u"2695000"_s, u"900"_s, u"200=0.05|="_s, 1},
        {u"2718000"_s, u"1|2|3|4|5|6"_s,
         u"200=-0.849|120=-0.848|40=-0.847|-40=-0.846|-120=-0.845|-200=-0.844|="_s, 6},
        {u"2715000"_s, u""_s, u"="_s, 0},
    };
    for (const auto& [head, samples, rows, count] : cases) {
        const PressureTable1671 table =
            ReadPressureTable1671(J(head, u"0850,1,2,3,"_s + L(samples).join(u',')));
        QStringList read;
        for (const PressureRow1671& row : table.rows)
            read << row.pressure + u"="_s + row.compliance;
        EXPECT_EQ(read, L(rows)) << head.toStdString();
        EXPECT_EQ(table.PressureRowCount, count) << head.toStdString();
    }
    for (const QString& line :
         {J(u"2715000"_s, u"0850,1,2,3,12a"_s), J(u"2x15000"_s, u"0850,1,2,3,900"_s),
          J(u"2710001"_s, u"0850,1,2,3"_s + u",900"_s.repeated(1001))})
        EXPECT_THROW(ReadPressureTable1671(line), RuntimeError);
}

// The right ear alone (the left is in the scenario); a PVT that is no number counts as 0.
TEST(Chart1671, RightEarAlone) {
    EXPECT_EQ(SingleEarChart1671(J(u"1005000"_s, u"abcd,--,7,8,1000"_s)),
              L(u"RS-M1,0.00,|TYMPANOMETRY,,|,RIGHT,|PVT.,0,,[mL]|S.C.,,[mL]|PEAK.,7,,[daPa]|"
                u"GRAD.,8,[daPa]|PRES ,COMPLIANCE[ml],|[daPa], RIGHT ,,|,,,|200,1,,"_s));
}

// Lines end in LF or CR LF, and a CR alone stays in its line; the floor -0.1; pressures as
// whole numbers; the 400 row only past 300 points and 200 daPa; a side that ends first leaves
// its last value.
TEST(Chart1671, MergeOfEarFileTexts) {
    const std::tuple<QString, QString, int, QString> cases[] = {
        {u"250,-0.3,\n"_s, u"250,0.2,\r\n"_s, 402, u"250,-0.1,0.2,|400,-0.1,0.2,"_s},
        {u"250,-0.3,\n"_s, u"250,0.2,\r\n"_s, 270, u"250,-0.1,0.2,|200,-0.1,0.2,"_s},
        {u"198.5,1,\n200,2,\n"_s, u"198,3,"_s, 402, u"198,1,3,|200,2,3,|200,2,3,"_s},
        {u"100,1,\r200,2,\n"_s, u"100,3,\n"_s, 402, u"100,1,3,|200,1,3,"_s},
    };
    for (const auto& [right, left, points, rows] : cases) {
        const QStringList chart = MergedChart1671(u"h,r,\r\n"_s.repeated(9) + right,
                                                  u"h,l,\n"_s.repeated(9) + left, points);
        EXPECT_EQ(chart.first(), u"h,r,l,"_s);
        EXPECT_EQ(chart.mid(9), L(rows)) << right.toStdString();
    }
}

// A group of 6 at index 4 leaves out the heading; a volume that is no number leaves the
// difference empty; an ear other than R or L has no head; the end line takes the last kind.
TEST(Chart1671, ReflexGroupsPassedOverAndAVolumeThatIsNoNumber) {
    EXPECT_EQ(ReflexChart1671({M(u"R"_s, u"----"_s, u"312012,9120042"_s), M(u"R"_s, u"0850"_s, {}),
                               M(u"X"_s, u"0850"_s, u"3110100"_s)},
                              u"7"_s),
              L(u"RS-M1,RION|Reflex,R,【右耳】|ID,7|YMD,20250416|時間変化,0010|圧力,-015,daPa|"
                u"等価容積,----,mL|0005,9120042,9,1,1,0042,0.042,|R-END|R-END|"
                u"連番,元データ,刺激音種類,刺激音レベル,提示及び同期／反対側,データ,/1000,差|"
                u"KVB-0500-X-START|0004,3110100,3,1,1,0100,0.1,-0.75|KVB-0500-X-END"_s));
}

TEST(Lines1671, ErrorLinesOfNoLinesAndOfTwoDates) {
    const EditSettings settings{u"1671"_s, u"TYMP"_s, u"1"_s, {}, u"0"_s};
    const std::pair<QStringList, QString> cases[] = {
        {{}, u"ERROR:受信データなし。"_s},
        {{kRight, J(u"2715000"_s, {}, u"250417"_s)},
         u"ERROR:検査日が左右で違います。　250416-250417"_s},
        {{kRight}, u"ERROR:検査日が左右で違います。　250416-"_s},
    };
    for (const auto& [lines, error] : cases)
        EXPECT_EQ(RejectedLine1671(lines, Call1671::BothEars, settings), error + u",1671,TYMP"_s);
}

// The chart moves whole beside a file of its name, which stays, and the record points to it
// with the fixed identifier; a pair of one ear is an error line, a stale left file of an
// earlier run notwithstanding. No ear file is left.
TEST(Edit1671, ChartBesideATakenNameAndAPairOfOneEar) {
    TestSite site;
    Configure(site);
    Ctx().FixedSampleId = u"007"_s;
    const QString taken = u"chart/1671-R-2025041609301600002~KVB.csv"_s;
    site.writeFile(taken, "earlier");
    site.writeFile(u"1671-7-L.csv"_s, "stale");
    EditResult1671({M(u"R"_s, u"0850"_s, {})}, Call1671::Reflex);
    EditResult1671({kRight, kRight}, Call1671::BothEars);
    EXPECT_EQ(site.readFile(taken), "earlier");
    EXPECT_EQ(DecodeAnsi(site.readFile(u"data/1671-KV-2025041609301600004~KVB.csv"_s)),
              u"20250416,000000,1,7,1671,REFLEX,000000,,,,,,,,,MIN,%1,,\r\n"_s.arg(
                  site.path(u"chart/1671-R-2025041609301600003~KVB.csv"_s)));
    EXPECT_EQ(DecodeAnsi(site.readFile(u"data/1671-KV-2025041609301600006~KVB.csv"_s)),
              u"ERROR:検査データ左右なし（システム障害）,1671,TYMP\r\n"_s);
    EXPECT_EQ(QDir(site.native()).entryList({u"1671-*"_s}), QStringList());
}

// A sample that is no number ends the process before any chart or record is delivered.
TEST(Edit1671DeathTest, ARunTimeErrorLeavesNoChartAndNoRecord) {
    TestSite site;
    Configure(site);
    const QString bad = J(u"2715000"_s, u"0850,1,2,3,9x9"_s);
    EXPECT_EXIT(EditResult1671({bad}, Call1671::OneEar), ::testing::ExitedWithCode(1), "");
    EXPECT_FALSE(site.exists(u"chart"_s));
    EXPECT_FALSE(site.exists(u"data"_s));
}
