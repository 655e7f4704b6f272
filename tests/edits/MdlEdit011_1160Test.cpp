// Result edit 1160 off its normal path, which Astm1160Test runs end to end.

#include "common/AnsiCodec.h"
#include "common/Logging.h"
#include "common/Paths.h"
#include "common/RunContext.h"
#include "common/RuntimeError.h"
#include "edits/MdlEdit011.h"
#include "edits/PieceFiles.h"
#include "support/TestSite.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

using namespace Qt::StringLiterals;
using namespace orbline;
using orbline::test::TestSite;

namespace {

const QString kAiaHeader = u"H|\\^&|||AIA-360^1|||||host|RSUPL^BATCH|P|1"_s;

struct Site : TestSite {
    Site() {
        Ctx().InstrumentCode = u"1160"_s;
        Ctx().IniPrefix = u"KV"_s;
        Ctx().JyusinWKPath = path(u"wk"_s);
        Ctx().JyusinDataPath = path(u"data"_s);
    }
    QString log() const { return DecodeAnsi(readFile(u"Tesvane1160.log"_s)); }
};

// Saves ENQ, one frame per record and EOT as the dialogue saves its reads; returns the count.
std::int16_t SavePieces(const QStringList& records) {
    QStringList reads{u"\x05"_s};
    for (qsizetype i = 0; i < records.size(); ++i) {
        const QString body = QString::number((i + 1) % 8) + records[i] + u"\r\x03"_s;
        unsigned sum = 0;
        for (const char b : EncodeAnsi(body)) sum += static_cast<unsigned char>(b);
        reads << u"\x02"_s + body + QString::number(sum % 256, 16).rightJustified(2, u'0') +
                     u"\r\n"_s;
    }
    reads << u"\x04"_s;
    const QString folder = PieceFolder(u"c1160"_s);
    if (!FolderExists(folder)) MakeFolder(folder);
    for (qsizetype i = 0; i < reads.size(); ++i) {
        Ctx().ReceiveBuffer.put(0, reads[i]);
        BlockFileOut(folder, u"c1160"_s, u"%1"_s.arg(i + 1, 4, 10, QChar(u'0')));
    }
    return static_cast<std::int16_t>(reads.size());
}

// Runs the edit and returns "code,name,judge|comment" of each delivered line.
QStringList Items(const TestSite& site, const QStringList& records) {
    QDir(site.native(u"data"_s)).removeRecursively();
    QString key;
    EditResult1160(SavePieces(records), key);
    const QStringList files = QDir(site.native(u"data"_s)).entryList(QDir::Files);
    if (files.size() != 1) return {u"<%1 files>"_s.arg(files.size())};
    QStringList items;
    for (const QString& line :
         DecodeAnsi(site.readFile(u"data/"_s + files.first())).split(u"\r\n"_s, Qt::SkipEmptyParts))
        items << line.section(u',', 7, 9) + u"|"_s + line.section(u',', 18);
    return items;
}

QString R(const char* seq, const QByteArray& test, const char* flag = "") {
    return u"R|%1|^^^%2|1.0|ng/mL||%3||F||||20250416093000"_s.arg(
        QLatin1StringView(seq), QLatin1StringView(test), QLatin1StringView(flag));
}

}  // namespace

// The first judged row marks every row after it, whatever their own flag.
TEST(Edit1160, JudgeOfField6) {
    Site site;
    const QString range = u"測定レンジ外"_s;
    const struct {
        const char* flag;
        QString judge, comment;
    } cases[] = {{"L", u"L"_s, {}},    {"LL", u"L"_s, {}},   {"H", u"H"_s, {}},
                 {"HH", u"H"_s, {}},   {"<", u"L"_s, range}, {">", u"H"_s, range},
                 {" LL ", u"L"_s, {}}, {"N", {}, {}},        {"<<", {}, {}}};
    for (const auto& c : cases)
        EXPECT_EQ(Items(site, {kAiaHeader, R("1", "110", c.flag), R("1", "120", "N")}),
                  (QStringList{u"1100,110,"_s + c.judge + u"|"_s + c.comment,
                               u"1200,120,"_s + c.judge + u"|"_s}))
            << c.flag;
}

TEST(Edit1160, SecondResultIsNamedAfterTheRowBefore) {
    Site site;
    EXPECT_EQ(
        Items(site, {kAiaHeader, R("1", "120"), R("2", "130"), R(" 2 ", "140"), R("3", "150")}),
        (QStringList{u"1200,120,|"_s, u"1201,130120,|"_s, u"1301,140130,|"_s, u"1500,150,|"_s}));
    // Row 1 has no row before it.
    EXPECT_EQ(Items(site, {kAiaHeader, R("2", "110")}), QStringList{u"1101,110001,|"_s});
}

// A query, or a message without R records, leaves the empty work file with its handle closed.
TEST(Edit1160, QueryOrNoResultLeavesTheEmptyWorkFile) {
    Site site;
    const auto openHandles = [] {
        return QDir(u"/proc/self/fd"_s).entryList(QDir::AllEntries | QDir::System).size();
    };
    for (const QString& record : {u"Q|1|^^0387^587^S1||ALL"_s, u"O|1|77|"_s}) {
        const std::int16_t count = SavePieces({kAiaHeader, record, u"L|1|N"_s});
        const qsizetype before = openHandles();
        QString key;
        EditResult1160(count, key);
        EXPECT_EQ(openHandles(), before);
        const QStringList work = QDir(site.native(u"wk"_s)).entryList(QDir::Files);
        ASSERT_EQ(work.size(), 1);
        EXPECT_TRUE(site.readFile(u"wk/"_s + work[0]).isEmpty());
        EXPECT_FALSE(site.exists(u"data"_s));
        EXPECT_EQ(Ctx().QueryMark1160 + key, record.startsWith(u'Q') ? u"Q0387587S1"_s : QString());
        Ctx().QueryMark1160.clear();
        ASSERT_TRUE(QFile::remove(site.native(u"wk/"_s + work[0])));
    }
}

TEST(Edit1160, MissingPieceDeliversTheEmptyWorkFile) {
    Site site;
    const std::int16_t count = SavePieces({kAiaHeader, R("1", "110"), u"P|1"_s, u"L|1|N"_s});
    ASSERT_TRUE(QFile::remove(site.native(u"c1160/c1160_0004.txt"_s)));
    QString key;
    EditResult1160(count, key);
    // The row read before the gap is not written.
    EXPECT_EQ(site.readFile(u"data/1160-KV-2025041609301600002~KVB.csv"_s), QByteArray());
    EXPECT_TRUE(site.log().contains(u"出力完了(Write) -- 1160--:"_s));
}

// Any run-time error ends the process through the abnormal path and delivers nothing.
TEST(Edit1160DeathTest, ErrorsEndTheProcess) {
    QStringList tooMany{kAiaHeader};
    for (int i = 1; i <= 101; ++i) tooMany << R("1", QByteArray::number(i));
    const struct {
        const char* what;
        QStringList records;
        QString error;
    } cases[] = {
        {"not AIA-", {u"H|\\^&|||cobas-e411^1|||||host|P|1"_s}, errors::BadFileNameOrNumber()},
        {"no field 12", {kAiaHeader, u"R|1|^^^110|1.0||N"_s}, errors::SubscriptOutOfRange()},
        {"row 101", tooMany, errors::SubscriptOutOfRange()},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        Site site;
        QString key;
        EXPECT_EXIT(EditResult1160(SavePieces(c.records), key), ::testing::ExitedWithCode(1), "");
        EXPECT_TRUE(site.log().contains(u"プログラム異常終了 -- 【 "_s + c.error + u" 】1160"_s));
        EXPECT_FALSE(site.exists(u"data"_s));
    }
}
