// Result edit 0990, for what the dialogue's scenarios don't reach: the identifier rules, the
// checksum digit left in the body, the bound of the measurement table, and a failure before
// the deliveries.

#include "common/RunContext.h"
#include "common/RuntimeError.h"
#include "edits/MdlEdit009.h"
#include "support/TestSite.h"

#include <gtest/gtest.h>

#include <QDir>

using namespace Qt::StringLiterals;
using namespace orbline;
using orbline::test::TestSite;

namespace {

// A stored frame line; the checksum digits are never compared by the edit.
QString Frame(const QString& body) {
    return u"\u0002D1WBD"_s + body + u"7A\u0003"_s;
}

const QString kDel = QString(QChar(0x7F));

}  // namespace

// The identifier as read and as the rule of the launch sets it, a record with no PID included;
// the last field of a record, shorter than its width, takes the checksum digit that the cut
// leaves in the body.
TEST(Parse0990, IdentifiersAndTheDigitLeftInTheBody) {
    struct Case {
        QString body;
        SampleRule rule;
        QString sampleId;
        QString comment;
    };
    const Case cases[] = {
        {u"|PID=0000000000000042"_s, {}, u"42"_s, {}},
        {u"|PID=01234567890123456789"_s, {}, u"123456789012345"_s, {}},  // 16 characters taken
        {u"|PID= K-12 "_s + kDel + kDel + u"   |CMT="_s + kDel + u" ok "_s + kDel.repeated(11),
         {},
         u"K-12"_s,
         u"ok"_s},
        {u"|PID=123"_s + kDel.repeated(13) + u"|CMT=short"_s, {}, u"123"_s, u"short7"_s},
        {u"|BGD= 100"_s, {}, u"0"_s, {}},
        {u"|BGD= 100"_s, {u"0"_s, u"F-1"_s}, u"F-1"_s, {}},
        {u"|PID=55"_s + kDel.repeated(14), {u"0"_s, u"F-1"_s}, u"F-1"_s, {}},
        {u"|PID=55"_s + kDel.repeated(14), {u"2"_s, {}}, QString(), {}},
    };
    for (const Case& c : cases) {
        const auto rows = ParseFrames0990({Frame(c.body) + u"\r\n"_s}, c.rule);
        ASSERT_EQ(rows.size(), 1u) << c.body.toStdString();
        EXPECT_EQ(rows[0].sampleId, c.sampleId) << c.body.toStdString();
        EXPECT_EQ(rows[0].comment, c.comment) << c.body.toStdString();
    }
}

// The table holds 2000 measurements; the 2001st is a run-time error.
TEST(Parse0990, TwoThousandMeasurementsAtMost) {
    const QString frame = Frame(u"|BGD= 100"_s) + u"\r\n"_s;
    EXPECT_EQ(ParseFrames0990({frame.repeated(2000)}, {}).size(), 2000u);
    EXPECT_THROW(ParseFrames0990({frame.repeated(1000), frame.repeated(1001)}, {}), RuntimeError);
}

// A work file that cannot be written ends the process before any file is delivered; those
// written before it stay in the work folder.
TEST(Edit0990DeathTest, AFailedWorkFileDeliversNone) {
    TestSite site;
    RunContext& c = Ctx();
    c.InstrumentCode = u"0990"_s;
    c.IniPrefix = u"TN"_s;
    c.JyusinWKPath = site.path(u"wk"_s);
    c.JyusinDataPath = site.path(u"data"_s);
    QByteArray frames;
    for (int i = 1; i <= 4; ++i)
        frames +=
            "\x02"
            "D1WBD|PID=" +
            QByteArray::number(i) +
            "|BGD= 100"
            "7A\x03\r\n";
    site.writeFile(u"c990/c990_0001.txt"_s, frames);
    site.writeFile(u"c990/c990_0002.txt"_s,
                   "\x02\x04"
                   "1C9\x03\r\n");
    // The third work file's name is taken by a folder.
    ASSERT_TRUE(QDir().mkpath(site.native(u"wk/0990-TN-2025041609301600003~KVB.csv"_s)));
    std::int16_t count = 2;
    EXPECT_EXIT(EditResult0990(count), ::testing::ExitedWithCode(1), "");
    EXPECT_EQ(QDir(site.native(u"data"_s)).entryList(QDir::Files), QStringList());
    EXPECT_EQ(QDir(site.native(u"wk"_s)).entryList(QDir::Files).size(), 2);
}
