// Result edit 1160: the parse and the result lines from literal texts, and the outer step where
// the scenarios (Astm1160Test) do not reach it.

#include "common/AnsiCodec.h"
#include "common/RunContext.h"
#include "common/RuntimeError.h"
#include "edits/MdlEdit011.h"
#include "support/TestSite.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

using namespace Qt::StringLiterals;
using namespace orbline;
using orbline::test::TestSite;

namespace {

const QString kAiaHeader = u"H|\\^&|||AIA-360^1|||||host|RSUPL^BATCH|P|1"_s;

QString R(const QString& seq, const QString& test, const QString& flag = {}) {
    return u"R|%1|^^^%2|1.0|ng/mL||%3||F||||20250416093000"_s.arg(seq, test, flag);
}

Message1160 Parse(const QStringList& pieces, const Carried1160& before = {}) {
    return ParseMessage1160(pieces, {}, before);
}

// The description of the run-time error that parsing the pieces ends with, or "".
QString Failure(const QStringList& pieces) {
    try {
        Parse(pieces);
    } catch (const RuntimeError& error) {
        return error.description();
    }
    return {};
}

// The pieces saved by the dialogue as a message of these reads, AppPath\c1160.
std::int16_t SavePieces(const TestSite& site, const QStringList& reads) {
    for (qsizetype i = 0; i < reads.size(); ++i)
        site.writeFile(u"c1160/c1160_%1.txt"_s.arg(i + 1, 4, 10, QChar(u'0')),
                       EncodeAnsi(reads[i] + u"\r\n"_s));
    return static_cast<std::int16_t>(reads.size() + 1);
}

}  // namespace

// A result record with fewer than six fields goes on in the next piece: the joined record is
// told once, with the number of the piece that completed it and the message read before it.
TEST(Parse1160, PiecesBecomeRecordsAndACutResultIsJoined) {
    const QString cut = R(u"1"_s, u"110^"_s);
    QStringList seen;
    const Message1160 m =
        ParseMessage1160({u"\x05"_s, u"H|\\^&|||AIA-360"_s, u"O|1|0042-^1|"_s, cut.left(12),
                          cut.mid(12), R(u"1"_s, u"1&2\\0"_s), u"Q|1|^K^9||ALL"_s},
                         {}, {u"7"_s, u"A"_s, u"B"_s},
                         [&](const QString& record, std::int16_t number, const Message1160& soFar) {
                             seen << u"%1:%2:%3"_s.arg(number).arg(record.left(5), soFar.sampleId);
                         });
    EXPECT_EQ(seen, (QStringList{u"1:\x05:7"_s, u"2:H|\\^&:7"_s, u"3:O|1|0:7"_s, u"5:R|1|^:421"_s,
                                 u"6:R|1|^:421"_s, u"7:Q|1|^:421"_s}));
    ASSERT_EQ(m.rows.size(), 2u);
    EXPECT_EQ((QStringList{m.sampleId, m.kensaDate + m.kensaTime, m.rows[0].testNumber,
                           m.rows[1].testNumber, m.queryKey.value_or(u"?"_s)}),
              (QStringList{u"421"_s, u"20250416093000"_s, u"110"_s, u"120"_s, u"K9"_s}));

    // Without records that set them, the sample number and the time stay those of before.
    const Message1160 none = Parse({u"H|\\^&|||AIA-360"_s, u"L|1"_s}, {u"7"_s, u"A"_s, u"B"_s});
    EXPECT_EQ(none.sampleId + none.kensaDate + none.kensaTime, u"7AB"_s);
    EXPECT_FALSE(none.queryKey.has_value());
}

// Field 6 gives the judge and the comment (Astm1160Test has "N", "H" and "<").
TEST(Parse1160, JudgeAndCommentOfField6) {
    QStringList judged;
    for (const QString& flag : {u"L"_s, u"LL"_s, u"HH"_s, u">"_s, u" LL "_s, u"<<"_s}) {
        const Row1160 row = Parse({R(u"1"_s, u"110"_s, flag)}).rows.at(0);
        judged << row.judge + row.comment;
    }
    EXPECT_EQ(judged, (QStringList{u"L"_s, u"L"_s, u"H"_s, u"H測定レンジ外"_s, u"L"_s, u""_s}));
}

// The sample number: "-" and "^" dropped, leading zeros dropped as text, the fixed number's rule.
TEST(Parse1160, SampleNumber) {
    EXPECT_EQ(Parse({u"O|1| 00-12^3 "_s}).sampleId, u"123"_s);
    EXPECT_EQ(Parse({u"O|1|^"_s}).sampleId, u"0"_s);
    EXPECT_EQ(Parse({u"O|1|000123456789012345678901"_s}).sampleId, u"123456789012345678901"_s);
    EXPECT_EQ(ParseMessage1160({u"O|1|42"_s}, {u"0"_s, u"F9"_s}, {}).sampleId, u"F9"_s);
}

// Where the old edit met a run-time error, the parse throws it.
TEST(Parse1160, WrongDataThrows) {
    QStringList tooMany{kAiaHeader};
    for (int i = 1; i <= 100; ++i) tooMany << R(u"1"_s, QString::number(i));
    EXPECT_EQ(Failure(tooMany), u""_s);
    tooMany << R(u"1"_s, u"101"_s);
    EXPECT_EQ(Failure(tooMany), errors::SubscriptOutOfRange());
    EXPECT_EQ(Failure({u"H|\\^&|||cobas-e411^1|||||host|P|1"_s}), errors::BadFileNameOrNumber());
    EXPECT_EQ(Failure({u"H|\\^&"_s}), errors::SubscriptOutOfRange());
    EXPECT_EQ(Failure({u"R|2|^^^110|1.0|ng/mL|"_s}), errors::SubscriptOutOfRange());
    EXPECT_EQ(Failure({u"O|1"_s}), errors::SubscriptOutOfRange());
    EXPECT_EQ(Failure({u"Q|1"_s}), errors::SubscriptOutOfRange());
}

// The second result of a test is named after the row before it (row 1 has none); the first
// judged row marks every row after it.
TEST(ResultLines1160, NamesCodesAndTheJudgeThatCarriesOver) {
    Message1160 m = Parse({R(u"2"_s, u"110"_s), R(u"1"_s, u"120"_s), R(u"2"_s, u"130"_s),
                           R(u" 2 "_s, u"140"_s, u"HH"_s), R(u"3"_s, u"150"_s, u"L"_s)},
                          {u"42"_s, {}, {}});
    QStringList items;
    for (const QString& line : ResultLines1160(m, {}).split(u"\r\n"_s))
        items << line.section(u',', 7, 9);
    EXPECT_EQ(items, (QStringList{u"1101,110001,"_s, u"1200,120,"_s, u"1201,130120,"_s,
                                  u"1301,140130,H"_s, u"1500,150,H"_s, u""_s}));
}

// A query or a message without results leaves its empty work file, with no handle open; a
// missing piece ends the reading, and the empty work file is delivered whatever was read. A
// run-time error ends the process before any further delivery; its log line shows the sample
// number read before it.
TEST(Edit1160DeathTest, WorkFilesOfAQueryAndOfAMissingPieceAndAnErrorThatEndsTheProcess) {
    TestSite site;
    RunContext& c = Ctx();
    c.InstrumentCode = u"1160"_s;
    c.IniPrefix = u"KV"_s;
    c.JyusinWKPath = site.path(u"wk"_s);
    c.JyusinDataPath = site.path(u"data"_s);
    const auto openHandles = [] {
        return QDir(u"/proc/self/fd"_s).entryList(QDir::AllEntries | QDir::System).size();
    };
    const qsizetype before = openHandles();
    EditResult1160(SavePieces(site, {kAiaHeader, u"Q|1|^^0387^587^S1||ALL"_s}));
    EditResult1160(SavePieces(site, {kAiaHeader, u"O|1|77|"_s, u"L|1"_s}));
    EXPECT_EQ(openHandles(), before);
    const QStringList work = QDir(site.native(u"wk"_s)).entryList(QDir::Files);
    ASSERT_EQ(work.size(), 2);
    EXPECT_TRUE(site.readFile(u"wk/"_s + work[0]).isEmpty());
    EXPECT_FALSE(site.exists(u"data"_s));

    std::int16_t count = SavePieces(site, {kAiaHeader, R(u"1"_s, u"110"_s), u"P|1"_s});
    ASSERT_TRUE(QFile::remove(site.native(u"c1160/c1160_0003.txt"_s)));
    EditResult1160(count);
    EXPECT_EQ(site.readFile(u"data/1160-KV-2025041609301600004~KVB.csv"_s), QByteArray());
    const auto log = [&] { return DecodeAnsi(site.readFile(u"Tesvane1160.log"_s)); };
    EXPECT_TRUE(log().contains(u"出力完了(Write) -- 1160-77-:"_s));

    count = SavePieces(site, {kAiaHeader, u"O|1|0042"_s, u"R|1|^^^110|1.0|ng/mL||N"_s});
    EXPECT_EXIT(EditResult1160(count), ::testing::ExitedWithCode(1), "");
    EXPECT_TRUE(log().contains(u"プログラム異常終了 -- 【 "_s + errors::SubscriptOutOfRange() +
                               u" 】1160-42-:"_s));
    EXPECT_EQ(QDir(site.native(u"data"_s)).entryList(QDir::Files).size(), 1);
}
