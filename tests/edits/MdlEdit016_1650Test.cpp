// Result edit 1650: the record lines from literal messages (scaling, flags, the slot limits,
// the sample number, the error lines), and the outer step's ends. A whole message through the
// running process is in Coagulation1650Test.

#include "edits/MdlEdit016.h"

#include "common/AnsiCodec.h"
#include "common/RunContext.h"
#include "common/RuntimeError.h"
#include "common/Text.h"
#include "support/TestSite.h"

#include <gtest/gtest.h>

#include <QDir>

using namespace Qt::StringLiterals;
using namespace orbline;
using orbline::test::TestSite;

namespace {

const EditSettings kSettings{u"1650"_s, u"CA-50"_s, u"1"_s, {u"0"_s, {}}, u"0"_s};

// A "D" message of 2025-04-16 09:25: positions 1 to 53, the slots from 54, and the ETX.
QString Message(const QString& sample, const QString& slots) {
    return u"\x02"
           u"D"_s +
           RepeatChar(8, u"x"_s) + u"2504160925"_s + RepeatChar(6, u"y"_s) +
           PadRightFixed(sample, 15, u" "_s) + RepeatChar(12, u"z"_s) + slots + u"\x03"_s;
}

QStringList Records(const QString& message, const EditSettings& settings = kSettings) {
    return ResultLines1650(message, settings).lines.split(u"\r\n"_s, Qt::SkipEmptyParts);
}

}  // namespace

// Each slot alone: the record from the item code on (code, name, judgement, value, unit, kind,
// comment), the head being the same for all.
TEST(ResultLines1650, ScalingFlagsAndUnknownCodesOfOneSlot) {
    struct Case {
        QString slot;
        QString record;
    };
    const Case cases[] = {
        {u"04100125 "_s, u"1650010,PT,,,,,12.5,sec,MIN,,,"_s},
        {u"04400125 "_s, u"1650040,PT-INR,,,,,1.25,,MIN,,,"_s},
        {u"04301000 "_s, u"1650030,PT比,,,,,10.00,,MIN,,,"_s},
        {u"051  125 "_s, u"1650050,APTT,,,,,12.5,sec,MIN,,,"_s},
        {u"62200007 "_s, u"1650230,PFDP,,,,,0.7,ug/mL,MIN,,,"_s},
        {u"062-----+"_s, u"1650060,Fbg,H,,,,-----,mg/dL,MIN,,,上下限管理値超"_s},
        {u"08200000>"_s, u"1650070,TTO,H,,,,0.0,%,MIN,,,レポートリミット上限"_s},
        {u"092 <100<"_s, u"1650080,HpT,L,,,,＜100,%,MIN,,,レポートリミット下限"_s},
        {u"12200990-"_s, u"1650090,因子定量Ⅱ,L,,,,99.0,%,MIN,,,上下限管理値未満"_s},
        {u"21200990!"_s, u"1650150,因子定量ⅩⅠ,,,,,99.0,%,MIN,,,希釈倍率変更測定による凝固時間"_s},
        {u"22200990*"_s,
         u"1650160,因子定量ⅩⅡ,,,,,99.0,%,MIN,,,測定エラー時、または、平均データの乖離データ発生時"_s},
        {u"30200990A"_s, u"1650170,AT3,,,,,99.0,%,MIN,,,A"_s},
        // Unknown codes: the code names the item, and the value only loses its leading zeros;
        // a zero then leaves nothing.
        {u"99900125 "_s, u"999,999,,,,,125,,MIN,,,"_s},
        {u"04000000 "_s, u"040,040,,,,,,,MIN,,,"_s},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.slot.toStdString());
        EXPECT_EQ(Records(Message(u"123"_s, c.slot)),
                  QStringList{u"20250416,092500,1,123,1650,CA-50,000000,"_s + c.record});
    }
}

// The identifier loses blanks, hyphens and leading zeros; the fixed number rule comes last.
TEST(ResultLines1650, SampleNumber) {
    struct Case {
        QString field;
        SampleRule rule;
        QString sampleId;
    };
    const Case cases[] = {
        {u"  00-01-23"_s, {}, u"123"_s},
        {u""_s, {}, u"0"_s},
        {u"A-12 "_s, {}, u"A12"_s},
        {u"---"_s, {}, u"0"_s},
        {u"999999999999999"_s, {}, u"999999999999999"_s},
        {u"0042"_s, {u"2"_s, {}}, u""_s},
        {u"0042"_s, {u"0"_s, u"F1"_s}, u"F1"_s},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.field.toStdString());
        EditSettings settings = kSettings;
        settings.sampleRule = c.rule;
        const Edit1650 edit = ResultLines1650(Message(c.field, u"04100125 "_s), settings);
        EXPECT_EQ(edit.sampleId, c.sampleId);
        EXPECT_EQ(Split(edit.lines, u","_s).value(3), c.sampleId);
    }
}

// The ETX counts as text and a slot may end one past it, so a cut slot is still read (and its
// value carries the ETX); a shorter one is not. Past 23 slots the rest is lost.
TEST(ResultLines1650, HowManySlotsAreRead) {
    const QString full = u"04100125 "_s;
    const QStringList cutBy2 = Records(Message(u"1"_s, full + u"0410012"_s));
    ASSERT_EQ(cutBy2.size(), 2);
    EXPECT_TRUE(cutBy2[1].endsWith(u",1650010,PT,,,,,0012\x03,sec,MIN,,,"_s))
        << cutBy2[1].toStdString();
    EXPECT_EQ(Records(Message(u"1"_s, full + u"041001"_s)).size(), 1);

    const QStringList many = Records(Message(u"1"_s, full.repeated(23) + u"04200500 "_s));
    ASSERT_EQ(many.size(), 23);
    EXPECT_TRUE(many.last().contains(u",1650010,"_s));

    const Edit1650 none = ResultLines1650(Message(u"7"_s, QString()), kSettings);
    EXPECT_EQ(none, (Edit1650{QString(), u"7"_s, false}));
}

// A message that is empty or of another kind gives one error line and no sample number.
TEST(ResultLines1650, ErrorLines) {
    EXPECT_EQ(ResultLines1650(QString(), kSettings),
              (Edit1650{u"ERROR:受信データなし。,1650,CA-50\r\n"_s, std::nullopt, false}));
    EXPECT_EQ(ResultLines1650(u"\x02R12345\x03"_s, kSettings).lines,
              u"ERROR:テキスト区分エラー1。 R,1650,CA-50\r\n"_s);
    EXPECT_EQ(ResultLines1650(u"\x02\x03"_s, kSettings).lines,
              u"ERROR:テキスト区分エラー1。 \x03,1650,CA-50\r\n"_s);
}

// An error line is delivered, and the log lines keep the sample of the message before; a
// result message without a slot leaves an empty file, deleted, with its own sample.
TEST(Edit1650, ErrorLinesAreDeliveredAndEmptyFilesAreNot) {
    TestSite site;
    RunContext& c = Ctx();
    c.InstrumentCode = u"1650"_s;
    c.InstrumentName = u"CA-50"_s;
    c.RunMarkDefault = u"1"_s;
    c.JyusinWKPath = site.path(u"wk"_s);
    c.JyusinDataPath = site.path(u"data"_s);
    c.SampleId = u"55"_s;
    c.RunMark = u"1"_s;
    EditResult1650(u"\x02X\x03"_s);
    const QStringList delivered = QDir(site.native(u"data"_s)).entryList(QDir::Files);
    ASSERT_EQ(delivered.size(), 1);
    EXPECT_EQ(DecodeAnsi(site.readFile(u"data/"_s + delivered[0])),
              u"ERROR:テキスト区分エラー1。 X,1650,CA-50\r\n"_s);

    EditResult1650(Message(u"0077"_s, QString()));
    const QString log = DecodeAnsi(site.readFile(u"Tesvane1650.log"_s));
    EXPECT_TRUE(log.contains(u"出力完了(Write) -- 1650-55-1:2025-04-16 09:30:15"_s))
        << log.toStdString();
    EXPECT_TRUE(log.contains(u"Size=0のため出力なし -- 1650-77-0:2025-04-16 09:30:15"_s))
        << log.toStdString();
    EXPECT_TRUE(QDir(site.native(u"wk"_s)).isEmpty());
    EXPECT_EQ(QDir(site.native(u"data"_s)).entryList(QDir::Files).size(), 1);
}

// A delivery that fails ends the process and leaves the work file.
TEST(Edit1650DeathTest, AFailedDeliveryEndsTheProcess) {
    TestSite site;
    Ctx().InstrumentCode = u"1650"_s;
    Ctx().JyusinWKPath = site.path(u"wk"_s);
    Ctx().JyusinDataPath = site.path(u"no\\such\\folder"_s);
    EXPECT_EXIT(EditResult1650(Message(u"8"_s, u"04100125 "_s)), ::testing::ExitedWithCode(1), "");
    EXPECT_EQ(QDir(site.native(u"wk"_s)).entryList(QDir::Files).size(), 1);
    EXPECT_TRUE(
        DecodeAnsi(site.readFile(u"Tesvane1650.log"_s))
            .contains(u"プログラム異常終了 -- 【 "_s + errors::PathNotFound() + u" 】1650-8-"_s));
}
