#include "XDisplay.h"
#include "console/ConsoleLayout.h"
#include "support/LinkProcess.h"

#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QThread>

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <thread>

using namespace Qt::StringLiterals;
using namespace orbline;
using orbline::test::LinkProcess;
using orbline::test::XDisplay;

namespace {

bool WaitFor(const std::function<bool()>& condition, int milliseconds = 10000) {
    for (int waited = 0; waited < milliseconds; waited += 50) {
        if (condition()) return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    return condition();
}

// An X server of its own for one test, on the first free display number from :90.
class VirtualDisplay {
  public:
    VirtualDisplay() {
        const QString server = QStandardPaths::findExecutable(u"Xvfb"_s);
        if (server.isEmpty()) return;
        for (int number = 90; number < 110 && !x_; ++number) {
            if (QFile::exists(u"/tmp/.X%1-lock"_s.arg(number))) continue;
            name_ = u":%1"_s.arg(number);
            process_.start(
                server, {name_, u"-screen"_s, u"0"_s, u"800x600x24"_s, u"-nolisten"_s, u"tcp"_s});
            WaitFor(
                [&] {
                    return (x_ = XDisplay::open(name_.toStdString())) != nullptr ||
                           process_.state() == QProcess::NotRunning;
                },
                5000);
        }
    }
    ~VirtualDisplay() {
        x_.reset();
        process_.terminate();
        process_.waitForFinished(3000);
    }
    XDisplay* x() const { return x_.get(); }
    const QString& name() const { return name_; }

  private:
    QProcess process_;
    QString name_;
    std::unique_ptr<XDisplay> x_;
};

int Count(const QStringList& lines, const QString& text) {
    int count = 0;
    for (const QString& line : lines) count += line.contains(text) ? 1 : 0;
    return count;
}

}  // namespace

// The buttons of a shown console, pressed where a person would press them: the stop frees
// the port for another process, the start takes it again, the close button ends the process.
TEST(ConsoleOnAVirtualDisplay, StopStartAndCloseFromTheButtons) {
    VirtualDisplay display;
    if (display.x() == nullptr) GTEST_SKIP() << "no Xvfb: scripts/install-deps.sh installs it";
    LinkProcess link;
    link.showMode = u"1"_s;
    link.environment = {u"DISPLAY="_s + display.name(), u"QT_QPA_PLATFORM=xcb"_s};
    link.writeSettings();
    link.start();
    ASSERT_TRUE(link.waitForLog(u"受信開始(Wait) -- "_s)) << link.standardError().toStdString();
    std::optional<unsigned long> window;
    ASSERT_TRUE(WaitFor([&] { return (window = display.x()->findWindow("(2620) ")).has_value(); }))
        << link.standardError().toStdString();

    display.x()->click(*window, console::kCmdKaijyo.centreX(), console::kCmdKaijyo.centreY());
    ASSERT_TRUE(link.waitForLog(u"接続終了 -- "_s));

    // Another process opens the port that the stop released.
    LinkProcess other;
    other.writeSettings(QString(), QString::fromStdString(link.line.device()));
    other.start();
    EXPECT_TRUE(other.waitForLog(u"受信開始(Wait) -- "_s))
        << other.logMessages().join(u'\n').toStdString();
    EXPECT_EQ(other.close(), 0);

    display.x()->click(*window, console::kCmdOpen.centreX(), console::kCmdOpen.centreY());
    EXPECT_TRUE(WaitFor([&] { return Count(link.logMessages(), u"受信開始(Wait) -- "_s) == 2; }));

    display.x()->requestClose(*window);
    EXPECT_EQ(link.finish(), 0);
    const QStringList log = link.logMessages();
    ASSERT_GE(log.size(), 3);
    EXPECT_TRUE(log.at(log.size() - 3).startsWith(u"プログラム終了(Query) -- "_s));
    EXPECT_TRUE(log.at(log.size() - 2).startsWith(u"プログラム終了(kaijyo) -- "_s));
    EXPECT_TRUE(log.at(log.size() - 1).startsWith(u"接続終了 -- "_s));
}

// Unattended, the process needs no display at all.
TEST(ConsoleOnAVirtualDisplay, WithoutTheConsoleNoDisplayIsNeeded) {
    LinkProcess link;
    link.environment = {u"DISPLAY"_s, u"WAYLAND_DISPLAY"_s, u"QT_QPA_PLATFORM"_s};
    link.writeSettings();
    link.start();
    EXPECT_TRUE(link.waitForLog(u"受信開始(Wait) -- "_s)) << link.standardError().toStdString();
    EXPECT_EQ(link.close(), 0);
}
