#include "edits/MdlEdit026.h"

#include "common/AnsiCodec.h"
#include "common/RunContext.h"
#include "common/RuntimeError.h"
#include "support/TestSite.h"

#include <gtest/gtest.h>

#include <QDir>

#include <random>

using namespace Qt::StringLiterals;
using namespace orbline;
using orbline::test::TestSite;

namespace {

const QString kDataFolder = u"data"_s;
const QString kWorkFolder = u"wk"_s;

void PrepareSite(const TestSite& site) {
    Ctx().IniPrefix = u"TN"_s;
    Ctx().InstrumentName = u"眼圧計"_s;
    Ctx().RunMarkDefault = u"1"_s;
    Ctx().JyusinWKPath = site.path(kWorkFolder);
    Ctx().JyusinDataPath = site.path(kDataFolder);
}

void LoadBlocks(const QStringList& blocks) {
    for (qsizetype i = 0; i < blocks.size(); ++i) Ctx().BlockList.put(i, blocks[i]);
    Ctx().BlockCount = static_cast<std::int16_t>(blocks.size());
}

QStringList Entries(const TestSite& site, const QString& folder) {
    return QDir(site.native(folder)).entryList(QDir::Files, QDir::Name);
}

QString MainLog(const TestSite& site) {
    return DecodeAnsi(site.readFile(u"Tesvane2620.log"_s));
}

ScanInputs2620 DefaultInputs() {
    return {false, u"20990101"_s, {u"0"_s, {}}};
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

QString Record(const QString& dateTimeSample, const QString& item, const QString& valueUnit) {
    return dateTimeSample.section(u',', 0, 1) + u",1,"_s + dateTimeSample.section(u',', 2) +
           u",2620,眼圧計,000000,"_s + item + u",,,,,"_s + valueUnit + u",MIN,,,"_s;
}

}  // namespace

// The print-outs of tests/fixtures/tonometer go through the running process in the
// scenario tests.

TEST(Edit2620FtLayout, TomeyLineSetsSampleDateAndTimeAndOnlyTrTlLinesGiveRows) {
    ScanInputs2620 in = DefaultInputs();
    in.ftLayout = true;
    // Sample number in the six columns twelve behind "TOMEY", date behind it, time after a gap.
    const QString head = u"xxTOMEY   SN: 00042 99.12.31 23:59"_s;
    EXPECT_EQ(Summary(Scan({u"TR9\r"_s}, in)), (QStringList{u"2620010=9 "_s}));
    const std::vector<Row2620> rows =
        Scan({head + u"\r<BY TIME> TR11\r<BY RELIABILITY> TL12\rTR 15\rTL17 [7]\r"_s,
              u"TL\r[IOP]          mmHg\r   14       15 [AVG]\r"_s},
             in);
    EXPECT_EQ(Summary(rows), (QStringList{u"2620010=1 "_s, u"2620020=17 "_s, u"2620020= "_s}));
    EXPECT_EQ(rows[0], (Row2620{u"20991231"_s, u"235900"_s, u"42"_s, u"2620010"_s, u"IOP-R"_s,
                                u"1"_s, QString(), u"000000"_s}));

    // Before any TOMEY line: today, no time, no sample number.
    const std::vector<Row2620> early = Scan({u"TL17\r"_s}, in);
    ASSERT_EQ(early.size(), 1u);
    EXPECT_EQ(early[0].date, u"20990101"_s);
    EXPECT_TRUE(early[0].time.isEmpty() && early[0].sampleId.isEmpty());

    // The FT layout reads blocks from three characters, the default layout from five.
    EXPECT_TRUE(Scan({u"TR9"_s}, in).size() == 1 && Scan({u"TR"_s}, in).empty());
    const auto sampleAfter = [](const QString& block) {
        return Scan({block, u"[C.IOP]\r   14"_s}, DefaultInputs()).front().sampleId;
    };
    EXPECT_EQ(sampleAfter(u"ID:5"_s), QString());
    EXPECT_EQ(sampleAfter(u"ID:56"_s), u"56"_s);
}

TEST(Edit2620SampleNumber, LeadingZerosGoAsTextAndTheFixedNumberWins) {
    const auto sampleOf = [](const QString& line, const QString& idEntry, const QString& fixed) {
        const ScanInputs2620 in{false, u"20990101"_s, {idEntry, fixed}};
        const std::vector<Row2620> rows =
            Scan({line + u"\r[C.IOP]        mmHg\r   14       15\r"_s}, in);
        return rows.empty() ? u"<no row>"_s : rows.front().sampleId;
    };
    EXPECT_EQ(sampleOf(u"No.:00123"_s, u"0"_s, QString()), u"123"_s);
    EXPECT_EQ(sampleOf(u"PATIENT ID:A12"_s, u"0"_s, QString()), u"A12"_s);
    EXPECT_EQ(sampleOf(u"No.:12345678901234567890"_s, u"0"_s, QString()),
              u"12345678901234567890"_s);
    EXPECT_EQ(sampleOf(u"No. 77"_s, u"0"_s, QString()), u"0"_s);
    EXPECT_EQ(sampleOf(u"No.:"_s, u"0"_s, QString()), u"0"_s);
    EXPECT_EQ(sampleOf(u"No.:00123"_s, u"2"_s, QString()), QString());
    EXPECT_EQ(sampleOf(u"No.:00123"_s, u"0"_s, u"F9"_s), u"F9"_s);

    ScanInputs2620 ft{true, u"20990101"_s, {u"2"_s, {}}};
    EXPECT_EQ(Scan({u"TOMEY       00123 25.04.16 09:30\rTR15\r"_s}, ft).front().sampleId,
              QString());
    ft.sampleRule.idEntry = u"0"_s;
    EXPECT_EQ(Scan({u"TOMEY       A12    25.04.16 09:30\rTR15\r"_s}, ft).front().sampleId,
              u"A12   "_s);
    EXPECT_EQ(Scan({u"TOMEY\rTR15\r"_s}, ft).front().sampleId, u"0"_s);
}

TEST(Edit2620DefaultLayout, DatesSectionsAndTheColumnsOfValueLines) {
    const ScanInputs2620 in = DefaultInputs();
    // A slash with no room for a year in front gives today and midnight.
    std::vector<Row2620> rows = Scan({u"DATE 2025/04/15 16:45\r[C.IOP]\r  1\rVER/1.02\r"
                                      u"[C.IOP]\r  2"_s},
                                     in);
    ASSERT_EQ(rows.size(), 4u);
    EXPECT_EQ(rows[0].date + rows[0].time, u"20250415164500"_s);
    EXPECT_EQ(rows[2].date + rows[2].time, u"20990101000000"_s);

    // The corrected pressure counts every line; the other sections only bracketed ones.
    const QString lines = u"   RIGHT    LEFT\r   14       15\r   16       17\r"_s;
    EXPECT_EQ(Summary(Scan({u"[C.IOP]        mmHg\r"_s + lines}, in)),
              (QStringList{u"2620030=14    mmHg"_s, u"2620040=15 mmHg"_s, u"2620030=16    mmHg"_s,
                           u"2620040=17 mmHg"_s, u"2620030= mmHg"_s, u"2620040= mmHg"_s}));
    EXPECT_TRUE(Scan({u"[IOP]          mmHg\r"_s + lines}, in).empty());
    EXPECT_TRUE(Scan({u"[CCT]          um\r"_s + lines}, in).empty());
    // The section is forgotten at the next block.
    rows = Scan({u"[CCT]          um\r   540 [A]\r"_s, u"   541      542 [A]\r"_s}, in);
    EXPECT_EQ(Summary(rows), (QStringList{u"2620050=540 [ um"_s, u"2620060= um"_s}));
    // An LF after a CR stays in the next line and shifts its columns.
    rows = Scan({u"[C.IOP]\r\n   14       15\r"_s}, in);
    EXPECT_EQ(rows.front().value, u" 14  "_s);
}

// A plain "0" formats to nothing and is still written; a row without a value is not.
TEST(ResultLines2620, ValuesAreFormattedByTheirOwnShapeAndEmptyOnesSkipped) {
    const std::vector<Row2620> rows =
        Scan({u"No.:7\r[C.IOP]        mmHg\r   0        08\r   15.0     <5\r"_s}, DefaultInputs());
    const QString sample = u"20990101,,7"_s;
    EXPECT_EQ(ResultLines2620(rows, {u"2620"_s, u"眼圧計"_s, u"1"_s, {}, {}}).split(u"\r\n"_s),
              (QStringList{Record(sample, u"2620030,C.IOP-R"_s, u",mmHg"_s),
                           Record(sample, u"2620040,C.IOP-L"_s, u"8,mmHg"_s),
                           Record(sample, u"2620030,C.IOP-R"_s, u"15.0,mmHg"_s),
                           Record(sample, u"2620040,C.IOP-L"_s, u"＜5,mmHg"_s), QString()}));
}

TEST(Edit2620Edit, NothingToReportLogsNoOutputAndLeavesNoFile) {
    TestSite site;
    PrepareSite(site);
    LoadBlocks({u"\x05\r"_s, u"\x04\r"_s});
    EditResult2620();
    EXPECT_TRUE(MainLog(site).contains(u"出力データなし -- 2620-0-0:"_s));
    EXPECT_FALSE(site.exists(kDataFolder));
    EXPECT_FALSE(site.exists(kWorkFolder));

    // Rows that are all empty make a file that is deleted rather than delivered. Any FT01Format
    // but "1" reads the default layout, where the section gives the rows.
    Ctx().FT01Format = u"2"_s;
    LoadBlocks({u"[C.IOP]\r\r"_s});
    EditResult2620();
    EXPECT_TRUE(MainLog(site).contains(u"Size=0のため出力なし -- "_s));
    EXPECT_TRUE(Entries(site, kWorkFolder).isEmpty());
    EXPECT_FALSE(site.exists(kDataFolder));
}

// A row past a hundred ends the process before any file; a failed delivery leaves the work
// file, and the log line shows the run mark of the lines written.
TEST(Edit2620DeathTest, AnErrorEndsTheProcess) {
    TestSite site;
    PrepareSite(site);
    LoadBlocks({u"[C.IOP]        mmHg\r"_s + u"   14       15\r"_s.repeated(51)});
    EXPECT_EXIT(EditResult2620(), ::testing::ExitedWithCode(1), "");
    EXPECT_TRUE(MainLog(site).contains(u"プログラム異常終了 -- 【 "_s +
                                       errors::SubscriptOutOfRange() + u" 】2620-0-0:"_s));
    EXPECT_FALSE(site.exists(kDataFolder) || site.exists(kWorkFolder));

    Ctx().JyusinDataPath = site.path(u"no\\such\\folder"_s);
    LoadBlocks({u"No.:7\r[C.IOP]        mmHg\r   14       15\r"_s});
    EXPECT_EXIT(EditResult2620(), ::testing::ExitedWithCode(1), "");
    EXPECT_EQ(Entries(site, kWorkFolder).size(), 1);
    EXPECT_TRUE(MainLog(site).contains(u"プログラム異常終了 -- 【 "_s + errors::PathNotFound() +
                                       u" 】2620-7-1:"_s));
}

// Any bytes a broken line can bring give rows or, past a hundred rows, the error exit's
// RuntimeError; never another failure.
TEST(Edit2620Scan, RandomTextNeverFailsOtherThanByTheRowLimit) {
    std::mt19937 random(2620);
    const QString alphabet = u"\r\n\x03\x04\x05/:.[]<>TRLOMEYNoID0123456789 abcRIGHT"_s;
    for (const bool ft : {false, true}) {
        ScanInputs2620 inputs = DefaultInputs();
        inputs.ftLayout = ft;
        for (int round = 0; round < 300; ++round) {
            QString block;
            const int length = static_cast<int>(random() % 200);
            for (int i = 0; i < length; ++i)
                block.append(alphabet.at(static_cast<qsizetype>(random() % alphabet.size())));
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
