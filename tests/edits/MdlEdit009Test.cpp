// Result edit 0980: the parse and the result lines from literal texts, and the outer step where
// the scenarios (Astm0980Test) do not reach it. The sample number's fixed-number rule, shared by
// every edit, is pinned here in full; the other edits show only that they apply it.

#include "edits/MdlEdit009.h"

#include "common/AnsiCodec.h"
#include "common/RunContext.h"
#include "common/RuntimeError.h"
#include "support/TestSite.h"

#include <gtest/gtest.h>

#include <QDir>

using namespace Qt::StringLiterals;
using namespace orbline;
using orbline::test::TestSite;

namespace {

// STX, frame number, record, CR, ETX, a checksum, CR LF: a piece as the dialogue saves it.
QString Frame(int number, const QString& record) {
    return u"\x02"_s + QString::number(number) + record + u"\r\x03"_s + u"5A\r\n"_s;
}

QString Sample(const QString& field, const SampleRule& rule = {}) {
    return ParseMessage0980({u"O|1|"_s + field}, rule, {}).sampleId;
}

}  // namespace

// Several Q records: a component is overwritten only when present; a Q record without the field
// still makes a query. A header field that is not there leaves its echo absent.
TEST(Parse0980, QueryAndEcho) {
    const Message0980 m =
        ParseMessage0980({Frame(1, u"H|\\^&|||HLC"_s), Frame(2, u"Q|1| 0012-34 ^R05^P3||ALL"_s),
                          Frame(3, u"Q|2| K9 "_s)},
                         {}, {});
    ASSERT_TRUE(m.query.has_value());
    EXPECT_EQ((QStringList{m.query->key, m.query->second, m.query->third, *m.echoSender}),
              (QStringList{u"K9"_s, u"R05"_s, u"P3"_s, u"HLC"_s}));
    EXPECT_FALSE(m.echoVersion.has_value());
    const Message0980 bare = ParseMessage0980({u"Q|1"_s}, {}, {});
    EXPECT_TRUE(bare.query.has_value() && bare.query->key.isEmpty());
}

// IDEntry "2" takes the fixed number even when it is empty; a long barcode stays exact.
TEST(Parse0980, SampleNumberAndTheFixedNumberRule) {
    EXPECT_EQ(Sample(u"0012-34^X"_s), u"1234"_s);
    EXPECT_EQ(Sample(u""_s), u"0"_s);
    EXPECT_EQ(Sample(u"^X"_s), u""_s);
    EXPECT_EQ(Sample(u"00012345678901234567890"_s), u"12345678901234567890"_s);
    EXPECT_EQ(Sample(u"001234"_s, {u"2"_s, {}}), u""_s);
    EXPECT_EQ(Sample(u"001234"_s, {u"0"_s, u"F77"_s}), u"F77"_s);
}

// A read that cuts r1 in its name makes a row without value and a text that is no record; a
// cut inside field 0 of r2 leaves its second read whole. ADCount is no result, but its date
// counts. Without a first result that has its date, the message keeps the one before.
TEST(Parse0980, RowsOfCutReadsAndTheExaminationTime) {
    const QString r1 = Frame(2, u"R|1|^^^HbA1cValue|5.60|%|||||||20250416104233"_s);
    const QString r2 = Frame(3, u"R|2|^^^GLU^Value|98|mg/dL"_s);
    const qsizetype cut = r1.indexOf(u"1cValue"_s);
    const Message0980 m = ParseMessage0980(
        {u"\x05"_s, r1.left(cut), r1.mid(cut), r2.left(2), r2.mid(2)}, {}, {u"A"_s, u"B"_s});
    ASSERT_EQ(m.rows.size(), 2u);
    EXPECT_EQ((QStringList{m.rows[0].name, m.rows[0].value, m.rows[1].name, m.rows[1].value,
                           m.rows[1].unit, m.kensaDate, m.kensaTime}),
              (QStringList{u"HbA"_s, u""_s, u"GLU"_s, u"98"_s, u"mg/dL"_s, u"A"_s, u"B"_s}));

    QStringList records{u"R|1|^^^ADCount^Value|1234||||||||202504161042"_s};
    for (int i = 0; i < 101; ++i) records << u"R|2|^^^GLU|%1"_s.arg(i);
    const Message0980 many = ParseMessage0980({records.join(u"\r"_s)}, {}, {u"A"_s, u"B"_s});
    EXPECT_EQ(many.kensaDate + many.kensaTime, u"20250416104200"_s);
    ASSERT_EQ(many.rows.size(), kMaxRows0980);
    EXPECT_EQ(many.rows.back().value, u"99"_s);
}

// An item the table does not name is its own code (Astm0980Test has the named ones); a row whose
// name is blank is passed over. A number with its point past position 32767 breaks the lines
// off, after one was built: the run mark is set.
TEST(ResultLines0980, UnnamedItemsBlankNamesAndAValueNoMaskHolds) {
    Message0980 m;
    m.rows = {{u" "_s, u"1"_s, u""_s}, {u"HbA"_s, u"5.60"_s, u"%"_s}};
    const EditSettings settings{u"0980"_s, u"HLC"_s, u"1"_s, {}, {}};
    EXPECT_EQ(ResultLines0980(m, settings),
              u",,1,0,0980,HLC,000000,HbA,HbA,,,,,5.60,%,MIN,,,,,,,,,,\r\n"_s);
    m.rows.push_back({u"GLU"_s, QString(32768, u'1') + u".5"_s, u""_s});
    bool lineBuilt = false;
    EXPECT_THROW(ResultLines0980(m, settings, &lineBuilt), RuntimeError);
    EXPECT_TRUE(lineBuilt);
}

// What RunContext carries between messages: the failed move of the first is passed over and
// logged as a delivery, the second keeps the first one's time, the third, empty, logs its
// own sample number and the reset run mark.
TEST(Edit0980, RunContextBetweenMessagesAndAFailedMove) {
    TestSite site;
    RunContext& c = Ctx();
    c.InstrumentCode = u"0980"_s;
    c.InstrumentName = u"HLC"_s;
    c.RunMarkDefault = u"1"_s;
    c.JyusinWKPath = site.path(u"wk"_s);
    c.JyusinDataPath = site.path(u"no\\such\\folder"_s);
    const auto edit = [&](const QStringList& reads) {
        for (qsizetype i = 0; i < reads.size(); ++i)
            site.writeFile(u"c980/c980_%1.txt"_s.arg(i + 1, 4, 10, QChar(u'0')),
                           (reads[i] + u"\r\n"_s).toLatin1());
        EditResult0980(static_cast<std::int16_t>(reads.size() + 1));
    };
    const auto log = [&] { return DecodeAnsi(site.readFile(u"Tesvane0980.log"_s)); };

    edit({u"O|1|001234"_s, u"R|1|^^^HbA1cValue|5.6|%|||||||202504160925"_s});
    EXPECT_TRUE(log().contains(u"出力完了(Write) -- 0980-1234-1:"_s));
    EXPECT_EQ(QDir(site.native(u"wk"_s)).entryList(QDir::Files).size(), 1);
    EXPECT_FALSE(site.exists(u"no"_s));

    c.JyusinDataPath = site.path(u"data"_s);
    edit({u"O|1|77"_s, u"R|2|^^^GLU|98|mg/dL"_s});
    const QStringList delivered = QDir(site.native(u"data"_s)).entryList(QDir::Files);
    ASSERT_EQ(delivered.size(), 1);
    EXPECT_EQ(DecodeAnsi(site.readFile(u"data/"_s + delivered[0])),
              u"20250416,092500,1,77,0980,HLC,000000,0980040,GLU,,,,,98,mg/dL,MIN,,,,,,,,,,\r\n"_s);

    edit({u"O|1|5"_s});
    EXPECT_TRUE(log().contains(u"Size=0のため出力なし -- 0980-5-0:"_s));
}
