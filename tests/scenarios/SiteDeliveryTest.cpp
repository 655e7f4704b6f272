// Processes of one site restarted within a minute: the same stamp, the serials from 1 again.

#include "support/LinkProcess.h"

#include <gtest/gtest.h>

#include <QThread>

#include <cmath>
#include <random>

using namespace Qt::StringLiterals;
using namespace orbline::test;

namespace {

// Lines of the main log with the text, once at least `atLeast` or after 10 s.
qsizetype Logged(const LinkProcess& link, const QString& text, qsizetype atLeast = 0) {
    for (int i = 0; i < 2000 && link.logMessages().filter(text).size() < atLeast; ++i)
        QThread::msleep(5);
    return link.logMessages().filter(text).size();
}

// True when a new process acknowledged every block of a print-out, the last just before its edit.
bool StartAndSendPrintOut(LinkProcess& link) {
    const qsizetype listening = Logged(link, u"受信開始(Wait)"_s);
    link.start();
    bool acked = Logged(link, u"受信開始(Wait)"_s, listening + 1) > listening;
    for (const QByteArray& block :
         TonometerBlocks(ReadFixture(u"tonometer/default-both-eyes.bin"_s)))
        acked = acked && link.line.line.send(orbline::sim::Bytes(block.begin(), block.end())) &&
                link.line.line.receive(2, std::chrono::seconds(5)) == Notation("<ACK><CR>");
    return acked;
}

}  // namespace

// Two processes that end normally, then 100 killed at random moments of the edit and the
// delivery (a fixed seed, so that a failure repeats): every delivered file stays, whole.
TEST(SiteDelivery, ProcessesRestartedWithinAMinuteNeverReplaceADeliveredFile) {
    LinkProcess link;
    link.timeScale = u"0.05"_s;
    link.writeSettings();
    for (int run = 1; run <= 2; ++run) {
        ASSERT_TRUE(StartAndSendPrintOut(link));
        ASSERT_EQ(Logged(link, u"出力完了(Write)"_s, run), run);
        EXPECT_EQ(link.close(), 0);
    }
    // The work file takes serial 1, the first delivery 2; the second process finds 2 taken.
    EXPECT_EQ(link.deliveries(), QStringList({u"2620-TN-2025041609301600002~KVB.csv"_s,
                                              u"2620-TN-2025041609301600003~KVB.csv"_s}));
    const QString whole = link.readDelivery(link.deliveries().value(0));

    std::mt19937 random(2620);
    std::uniform_real_distribution<double> logScale(0.0, 1.0);
    for (int run = 0; run < 100; ++run) {
        ASSERT_TRUE(StartAndSendPrintOut(link)) << run;
        // The edit and the move take 3 to over 50 ms, as fast as the disk syncs: kills 0.5 to
        // 200 ms after the last ACK, even on a log scale, land before, in and after them.
        QThread::usleep(static_cast<unsigned long>(500.0 * std::pow(400.0, logScale(random))));
        link.close(9);  // SIGKILL
    }
    for (const QString& name : link.deliveries())
        EXPECT_EQ(link.readDelivery(name), whole) << name.toStdString();
    const qsizetype logged = Logged(link, u"出力完了(Write)"_s);
    EXPECT_GE(link.deliveries().size(), logged);  // more where killed between move and log
    EXPECT_TRUE(logged >= 12 && logged <= 92) << logged;
}
