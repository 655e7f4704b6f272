// Result edit 2620: the scanners and the result lines from literal texts, and the outer step's
// ends. The print-outs of tests/fixtures/tonometer, one of each kind, go through the running
// process in Tonometer2620Test.

#include "edits/MdlEdit026.h"

#include "common/AnsiCodec.h"
#include "common/RunContext.h"
#include "common/RuntimeError.h"
#include "support/Fuzz.h"
#include "support/TestSite.h"

#include <gtest/gtest.h>

#include <QDir>

using namespace Qt::StringLiterals;
using namespace orbline;
using orbline::test::TestSite;

namespace {

void LoadBlocks(const QStringList& blocks) {
    for (qsizetype i = 0; i < blocks.size(); ++i) Ctx().BlockList.put(i, blocks[i]);
    Ctx().BlockCount = static_cast<std::int16_t>(blocks.size());
}

QString MainLog(const TestSite& site) {
    return DecodeAnsi(site.readFile(u"Tesvane2620.log"_s));
}

ScanInputs2620 Inputs(bool ft, const SampleRule& rule = {u"0"_s, {}}) {
    return {ft, u"20990101"_s, rule};
}

std::vector<Row2620> Scan(const QStringList& blocks, const ScanInputs2620& inputs) {
    ScanState2620 state = StartScan2620(inputs);
    for (const QString& block : blocks) ScanBlock2620(block, inputs, state);
    return state.rows;
}

// item code, value, unit of each row
QStringList Summary(const std::vector<Row2620>& rows) {
    QStringList out;
    for (const Row2620& r : rows) out.append(r.itemCode + u"="_s + r.value + u" "_s + r.unit);
    return out;
}

}  // namespace

// After the TOMEY line (its columns are the ft print-out's in Tonometer2620Test) only TR and TL
// lines give rows; the <BY ...> lines hold "TR" and give none.
TEST(Edit2620FtLayout, TomeyLineSetsSampleDateAndTimeAndOnlyTrTlLinesGiveRows) {
    const std::vector<Row2620> rows =
        Scan({u"xxTOMEY   SN: 00042 99.12.31 23:59\r<BY TIME> TR11\r<BY RELIABILITY> TL12\r"
              u"TR 15\rTL17 [7]\r"_s,
              u"TL\r[IOP]          mmHg\r   14       15 [AVG]\r"_s},
             Inputs(true));
    EXPECT_EQ(Summary(rows), (QStringList{u"2620010=1 "_s, u"2620020=17 "_s, u"2620020= "_s}));

    // Before any TOMEY line: today, no time, no sample number.
    const std::vector<Row2620> early = Scan({u"TL17\r"_s}, Inputs(true));
    ASSERT_EQ(early.size(), 1u);
    EXPECT_EQ(early[0].date + u"|"_s + early[0].time + early[0].sampleId, u"20990101|"_s);

    // The FT layout reads blocks from three characters, the default layout from five.
    EXPECT_TRUE(Scan({u"TR9"_s}, Inputs(true)).size() == 1 &&
                Scan({u"TR"_s}, Inputs(true)).empty());
    const auto sampleAfter = [](const QString& block) {
        return Scan({block, u"[C.IOP]\r   14"_s}, Inputs(false)).front().sampleId;
    };
    EXPECT_EQ(sampleAfter(u"ID:5"_s), QString());
    EXPECT_EQ(sampleAfter(u"ID:56"_s), u"56"_s);
}

// Leading zeros go as text, so a long barcode stays exact; a number that is not numeric keeps
// its blanks; none read is "0"; a fixed number wins in either layout.
TEST(Edit2620SampleNumber, LeadingZerosGoAsTextAndTheFixedNumberWins) {
    struct Case {
        bool ft;
        QString line;
        SampleRule rule;
        QString sample;
    };
    const Case cases[] = {
        {false, u"No.:12345678901234567890"_s, {u"0"_s, {}}, u"12345678901234567890"_s},
        {false, u"No. 77"_s, {u"0"_s, {}}, u"0"_s},
        {false, u"No.:00123"_s, {u"0"_s, u"F9"_s}, u"F9"_s},
        {true, u"TOMEY       A12    25.04.16 09:30"_s, {u"0"_s, {}}, u"A12   "_s},
        {true, u"TOMEY"_s, {u"0"_s, {}}, u"0"_s},
        {true, u"TOMEY       00123 25.04.16 09:30"_s, {u"2"_s, {}}, QString()},
    };
    for (const Case& c : cases) {
        const QString values = c.ft ? u"TR15\r"_s : u"[C.IOP]        mmHg\r   14       15\r"_s;
        const std::vector<Row2620> rows = Scan({c.line + u"\r"_s + values}, Inputs(c.ft, c.rule));
        EXPECT_EQ(rows.empty() ? u"<no row>"_s : rows.front().sampleId, c.sample)
            << c.line.toStdString();
    }
}

TEST(Edit2620DefaultLayout, DatesSectionsAndTheColumnsOfValueLines) {
    // A slash with no room for a year in front gives today and midnight, whatever came before.
    std::vector<Row2620> rows =
        Scan({u"DATE 2025/04/15 16:45\r[C.IOP]\r  1\rVER/1.02\r[C.IOP]\r  2"_s}, Inputs(false));
    ASSERT_EQ(rows.size(), 4u);
    EXPECT_EQ(rows[2].date + rows[2].time, u"20990101000000"_s);

    // The corrected pressure counts every line but the column header, an empty one too.
    EXPECT_EQ(Summary(Scan({u"[C.IOP]        mmHg\r   RIGHT    LEFT\r   14       15\r"
                            u"   16       17\r"_s},
                           Inputs(false))),
              (QStringList{u"2620030=14    mmHg"_s, u"2620040=15 mmHg"_s, u"2620030=16    mmHg"_s,
                           u"2620040=17 mmHg"_s, u"2620030= mmHg"_s, u"2620040= mmHg"_s}));
    // The section is forgotten at the next block.
    rows = Scan({u"[CCT]          um\r   540 [A]\r"_s, u"   541      542 [A]\r"_s}, Inputs(false));
    EXPECT_EQ(Summary(rows), (QStringList{u"2620050=540 [ um"_s, u"2620060= um"_s}));
    // An LF after a CR stays in the next line and shifts its columns.
    rows = Scan({u"[C.IOP]\r\n   14       15\r"_s}, Inputs(false));
    EXPECT_EQ(rows.front().value, u" 14  "_s);
}

// A plain "0" formats to nothing and is still written; a row without a value is not.
TEST(ResultLines2620, ValuesKeepTheirOwnShapeAndEmptyOnesAreSkipped) {
    const std::vector<Row2620> rows =
        Scan({u"[C.IOP]        mmHg\r   0        08\r   15.0     <5\r"_s}, Inputs(false));
    QStringList values;
    const QString lines = ResultLines2620(rows, {u"2620"_s, u"眼圧計"_s, u"1"_s, {}, {}});
    for (const QString& line : lines.split(u"\r\n"_s, Qt::SkipEmptyParts))
        values << line.section(u',', 13, 14);
    EXPECT_EQ(values, (QStringList{u",mmHg"_s, u"8,mmHg"_s, u"15.0,mmHg"_s, u"＜5,mmHg"_s}));
}

// Nothing to report leaves no file; rows that are all empty make a file that is deleted rather
// than delivered. A row past a hundred ends the process before any file; a failed delivery
// leaves the work file, and the log line shows the run mark of the lines written.
TEST(Edit2620DeathTest, NothingToReportLeavesNoFileAndAnErrorEndsTheProcess) {
    TestSite site;
    Ctx().IniPrefix = u"TN"_s;
    Ctx().InstrumentName = u"眼圧計"_s;
    Ctx().RunMarkDefault = u"1"_s;
    Ctx().JyusinWKPath = site.path(u"wk"_s);
    Ctx().JyusinDataPath = site.path(u"data"_s);
    LoadBlocks({u"\x05\r"_s, u"\x04\r"_s});
    EditResult2620();
    EXPECT_TRUE(MainLog(site).contains(u"出力データなし -- 2620-0-0:"_s));
    EXPECT_FALSE(site.exists(u"data"_s) || site.exists(u"wk"_s));

    // Any FT01Format but "1" reads the default layout, where the section gives the rows.
    Ctx().FT01Format = u"2"_s;
    LoadBlocks({u"[C.IOP]\r\r"_s});
    EditResult2620();
    EXPECT_TRUE(MainLog(site).contains(u"Size=0のため出力なし -- "_s));
    EXPECT_TRUE(QDir(site.native(u"wk"_s)).isEmpty());
    EXPECT_FALSE(site.exists(u"data"_s));

    LoadBlocks({u"[C.IOP]        mmHg\r"_s + u"   14       15\r"_s.repeated(51)});
    EXPECT_EXIT(EditResult2620(), ::testing::ExitedWithCode(1), "");
    EXPECT_TRUE(MainLog(site).contains(u"プログラム異常終了 -- 【 "_s +
                                       errors::SubscriptOutOfRange() + u" 】2620-0-0:"_s));
    EXPECT_TRUE(QDir(site.native(u"wk"_s)).isEmpty());
    EXPECT_FALSE(site.exists(u"data"_s));

    Ctx().JyusinDataPath = site.path(u"no\\such\\folder"_s);
    LoadBlocks({u"No.:7\r[C.IOP]        mmHg\r   14       15\r"_s});
    EXPECT_EXIT(EditResult2620(), ::testing::ExitedWithCode(1), "");
    EXPECT_EQ(QDir(site.native(u"wk"_s)).entryList(QDir::Files).size(), 1);
    EXPECT_TRUE(MainLog(site).contains(u"プログラム異常終了 -- 【 "_s + errors::PathNotFound() +
                                       u" 】2620-7-1:"_s));
}

// Any bytes a broken line can bring give rows or, past a hundred rows, the error exit's
// RuntimeError; never another failure.
TEST(Edit2620Scan, RandomTextNeverFailsOtherThanByTheRowLimit) {
    test::Fuzz pick{std::mt19937(2620)};
    const QString alphabet = u"\r\n\x03\x04\x05/:.[]<>TRLOMEYNoID0123456789 abcRIGHT"_s;
    for (const bool ft : {false, true}) {
        const ScanInputs2620 inputs = Inputs(ft);
        for (int round = 0; round < 300; ++round) {
            QString block(pick(200), QChar());
            pick.scatter(block, 1, [&] { return alphabet.at(pick(alphabet.size())); });
            ScanState2620 state = StartScan2620(inputs);
            try {
                ScanBlock2620(block, inputs, state);
            } catch (const RuntimeError&) {
                EXPECT_EQ(state.rows.size(), static_cast<size_t>(kMaxRows2620))
                    << block.toStdString();
            }
        }
    }
}
