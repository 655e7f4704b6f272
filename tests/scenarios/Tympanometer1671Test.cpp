// The tympanometer 1671 against the running process: tests printed in many small reads, each
// taken up after five seconds of silence (half a second here), nothing ever sent on the line,
// the charts compared with the hand-worked ones and the records that point to them.

#include "support/AstmInstrument.h"

#include "common/AnsiCodec.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QThread>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace orbline::test;

namespace {

// The lines of the edit's chart fixtures: marker, identifier 4711, date, points + 1, step, ear,
// PVT; then the values and the ETX.
std::string J(const std::string& ear, const std::string& head, const std::string& fields) {
    return "01J 0000004711xxx250416xxx" + head + ear + std::string(33, 'x') + fields + "<ETX>";
}
const std::string kLeft = J("L", "2715000", "0850, 1250,-15,120,1200,,/12,1350,600,1101");
const std::string kPair = J("R", "2715000", "0850,1250,-15,120,1200,1350,1101,950,900") +
                          "<CR><LF>" + J("L", "4037500", "1000,----,-20,95,1400,1300,1200,750");
std::string M(const std::string& ear, const std::string& volume, const std::string& groups) {
    return "01M 0000004711xxx250416xxx0010010" + ear + "-015" + std::string(32, 'x') + volume +
           ",x,y,z," + groups + ",<ETX>";
}
const std::string kReflex =
    M("R", "0850", "3120125,412,4110250") + M("L", "1000", "5231200,62102/-");

// Sends the text in reads of 16 bytes, 30 ms apart: far less than the silence.
void SendInSmallReads(LinkProcess& link, const std::string& text) {
    const orbline::sim::Bytes bytes = Notation(text);
    for (std::size_t at = 0; at < bytes.size(); at += 16) {
        ASSERT_TRUE(link.line.line.send(
            {bytes.begin() + at, bytes.begin() + std::min(bytes.size(), at + 16)}));
        QThread::msleep(30);
    }
}

QStringList Lines(const QByteArray& bytes) {
    return orbline::DecodeAnsi(bytes).split(u"\r\n"_s);
}

}  // namespace

// Each test is one pass after the silence: a pair of ears in many reads, one ear, a reflex batch,
// and a stray line that ends as an error line while the link goes on with the next test.
TEST(Tympanometer1671, EachTestAfterTheSilenceAndNothingSentBack) {
    LinkProcess link;
    link.timeScale = u"0.1"_s;
    StartInstrument(link, u"1671"_s, u"TYMP"_s, u"CrpName=REFLEX\r\n"_s);
    const std::pair<std::string, QString> tests[] = {
        {kPair, u"pair.csv"_s},        {kLeft, u"single-left.csv"_s}, {kReflex, u"reflex.csv"_s},
        {"01X stray<ETX>", QString()}, {kLeft, u"single-left.csv"_s},
    };
    int delivered = 0;
    for (const auto& [text, chart] : tests) {
        SendInSmallReads(link, text);
        // Nothing before the silence, and nothing on the line at all.
        EXPECT_EQ(link.deliveries().size(), delivered);
        EXPECT_EQ(Drained(link, 1000ms), "");
        ASSERT_TRUE(link.waitForDeliveries(++delivered));
    }
    EXPECT_EQ(link.close(), 0);

    QStringList files = link.deliveries();
    files.sort();
    ASSERT_EQ(files.size(), 5);
    for (int i = 0; i < 5; ++i) {
        const QStringList record = link.readDelivery(files.at(i)).split(u"\r\n"_s);
        if (tests[i].second.isEmpty()) {
            EXPECT_EQ(record.first(), u"ERROR:検査名が違います。 X,1671,TYMP"_s);
            continue;
        }
        const QStringList fields = record.first().split(u',');
        EXPECT_EQ(
            RecordFields({record.first()}, {0, 1, 3, 4, 5}),
            QStringList{u"20250416,000000,4711,1671,"_s + (i == 2 ? u"REFLEX"_s : u"TYMP"_s)});
        QFile chart(fields.value(16).replace(u'\\', u'/'));
        ASSERT_TRUE(chart.open(QIODevice::ReadOnly)) << fields.value(16).toStdString();
        EXPECT_EQ(Lines(chart.readAll()), Lines(ReadFixture(u"tympanometer/"_s + tests[i].second)))
            << tests[i].second.toStdString();
    }
    // Five passes, and only the pieces of the last test are left for inspection.
    const QStringList log = link.logMessages();
    EXPECT_EQ(log.filter(u"出力完了(Write) -- 1671-"_s).size(), 5);
    EXPECT_EQ(QDir(link.native(u"c1671_Rep"_s)).entryList(QDir::Files).size(), 1);
}

// A close request while the silence runs ends the process within a second, with its close lines.
TEST(Tympanometer1671, ACloseRequestIsTakenWhileTheSilenceRuns) {
    LinkProcess link;
    StartInstrument(link, u"1671"_s, u"TYMP"_s);
    SendInSmallReads(link, kLeft);
    QElapsedTimer clock;
    clock.start();
    EXPECT_EQ(link.close(), 0);
    EXPECT_LT(clock.elapsed(), 1000);
    const QStringList log = link.logMessages();
    ASSERT_GE(log.size(), 3);
    EXPECT_TRUE(log.at(log.size() - 3).startsWith(u"プログラム終了(Query) -- 1671:"_s));
    EXPECT_TRUE(log.last().startsWith(u"接続終了 -- 1671:"_s));
}
