// How a session ends, against the running process and, for the stop command that only a
// console can give, in this process.

#include "app/Launch.h"
#include "app/Session.h"
#include "common/AnsiCodec.h"
#include "common/Form.h"
#include "common/RunContext.h"
#include "serial/AwComm.h"
#include "support/LinkProcess.h"
#include "support/TestSite.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QRegularExpression>
#include <QTimer>

#include <csignal>
#include <thread>

using namespace Qt::StringLiterals;
using namespace orbline::test;

namespace {

QStringList LastLines(const QStringList& lines, qsizetype count) {
    return lines.mid(std::max<qsizetype>(0, lines.size() - count));
}

}  // namespace

TEST(SessionEnds, ACloseRequestWhileConnectedStopsCleanlyAndExitsZero) {
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        LinkProcess link;
        link.writeSettings();
        link.start();
        ASSERT_TRUE(link.waitForLog(u"受信開始(Wait)"_s)) << signal;
        EXPECT_EQ(link.close(signal), 0) << signal;
        EXPECT_EQ(LastLines(link.logMessages(), 3),
                  QStringList({u"プログラム終了(Query) -- 2620"_s + kStamp,
                               u"プログラム終了(kaijyo) -- 2620"_s + kStamp,
                               u"接続終了 -- 2620"_s + kStamp}))
            << signal;
    }
}

TEST(SessionEnds, AnUnknownCodeOpensThePortThenEndsAbnormally) {
    LinkProcess link;
    link.writeSettings();
    link.start(u"9999"_s);
    EXPECT_EQ(link.finish(), 1);
    const QString full = u"9999--"_s + kStamp;
    EXPECT_EQ(link.logMessages(),
              QStringList(
                  {u"プログラム開始 -- "_s + full,
                   u"通信条件(Condition) 1:baud=9600 parity=なし data=8 stop=1:なし:1000"_s,
                   u"受信開始(Wait) -- "_s + full, u"システムエラー：未対応機器 -- "_s + full,
                   u"プログラム異常終了 -- "_s + full, u"プログラム終了(kaijyo) -- 9999"_s + kStamp,
                   u"接続終了 -- 9999"_s + kStamp, u"プログラム終了(Query) -- 9999"_s + kStamp}));
}

// The main log keeps its fixed texts; the cause goes to standard error and to the diagnostic
// log, one and the same line. The system's own words depend on the locale and are not pinned.
TEST(SessionEnds, APortThatCannotBeOpenedEndsWithAnEmptyErrorTextAndSaysWhyElsewhere) {
    const QStringList expected{u"プログラム開始 -- 2620--"_s + kStamp,
                               u"接続失敗 -- 2620"_s + kStamp,
                               u"プログラム異常終了 -- 【  】2620--"_s + kStamp,
                               u"プログラム終了(Query) -- 2620"_s + kStamp};
    const auto expectCause = [](const LinkProcess& link, const QString& pattern) {
        const QRegularExpression line(u"^2025-04-16 09:30:15 2620 port 1 "_s + pattern + u"$"_s);
        const QString diagnosis = link.diagnosticLog();
        ASSERT_TRUE(diagnosis.endsWith(u"\r\n"_s)) << diagnosis.toStdString();
        const QString text = diagnosis.chopped(2);
        EXPECT_TRUE(line.match(text).hasMatch()) << text.toStdString();
        EXPECT_EQ(link.standardError(), text + u"\n"_s);
    };
    {
        LinkProcess link;
        link.writeSettings(QString(), u"/nonexistent/ttyKV0"_s);
        link.start();
        EXPECT_EQ(link.finish(), 1);
        EXPECT_EQ(link.logMessages(), expected);
        expectCause(
            link, u"\\(/nonexistent/ttyKV0\\) cannot be opened: no such device \\(.+\\) at open"_s);
    }
    {
        // A port that another program holds.
        LinkProcess link;
        orbline::AwComm holder;
        holder.SetDevicePath(link.line.device());
        ASSERT_TRUE(holder.OpenPort1());
        link.writeSettings();
        link.start();
        EXPECT_EQ(link.finish(), 1);
        EXPECT_EQ(link.logMessages(), expected);
        expectCause(link,
                    u"\\(/dev/pts/[0-9]+\\) cannot be opened: held by another process "
                    u"\\(.+\\) at (open|lock)"_s);
    }
}

// The stop command comes only from a console, so the two sessions run in this process: the
// stop is posted as an event and runs inside the dialogue's yield, as a button press would.
TEST(SessionEnds, ASecondStartAfterAStopKeepsCountingResultSerials) {
    if (QCoreApplication::instance() == nullptr) {
        static int argc = 1;
        static char name[] = "orbline_tests";
        static char* argv[] = {name, nullptr};
        static QCoreApplication app(argc, argv);
    }
    TestSite site;
    LinkProcess instrument;  // its settings file and pty; the process itself is not started
    instrument.writeSettings(u"FT01Format=1\r\n"_s);
    QFile::copy(instrument.native(u"KV_Orbline.ini"_s), site.native(u"KV_Orbline.ini"_s));
    orbline::RunLoadEventStart(u"2620=0=TN="_s + site.path());

    const auto blocks = TonometerBlocks(ReadFixture(u"tonometer/ft-both-eyes.bin"_s));
    auto& line = instrument.line.line;
    for (int session = 1; session <= 2; ++session) {
        std::thread player([&] {
            // The link is ready once the start command has logged its wait.
            while (orbline::DecodeAnsi(site.readFile(u"Tesvane2620.log"_s))
                       .count(u"受信開始(Wait)"_s) < session)
                std::this_thread::sleep_for(std::chrono::milliseconds(20));
            for (const QByteArray& block : blocks) {
                line.send(orbline::sim::Bytes(block.begin(), block.end()));
                line.receive(2, std::chrono::seconds(5));
            }
        });
        QTimer stopper;
        QElapsedTimer running;
        running.start();
        QObject::connect(&stopper, &QTimer::timeout, [&] {
            // Stops when the session's result is delivered, or after 20 s so that a fault
            // fails the checks below instead of hanging the suite.
            if (instrument.deliveries().size() == session || running.elapsed() > 20000)
                orbline::Cmd_Kaijyo();
        });
        stopper.start(20);
        orbline::Cmd_Open();
        player.join();
        EXPECT_FALSE(orbline::Form().Connected);
        EXPECT_TRUE(orbline::Form().Cmd_OpenEnabled);
    }
    // Each delivery takes two serials: the work file's and the delivered file's.
    const QStringList files = instrument.deliveries();
    ASSERT_EQ(files.size(), 2);
    EXPECT_TRUE(files.at(0).endsWith(u"00002~KVB.csv"_s));
    EXPECT_TRUE(files.at(1).endsWith(u"00004~KVB.csv"_s));
    orbline::ResetForm();
}
