#include "app/Launch.h"
#include "app/Session.h"
#include "common/AnsiCodec.h"
#include "common/Form.h"
#include "console/ConsoleLayout.h"
#include "console/ConsoleWindow.h"
#include "support/LineHarness.h"
#include "support/TestSite.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QGroupBox>
#include <QImage>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTimer>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace orbline;
using orbline::console::ConsoleWindow;

namespace {

// What a person reads off the window at one moment.
struct Seen {
    QString title;
    bool openEnabled = false;
    bool stopEnabled = false;
    bool portListEnabled = false;
    bool writeEnabled = false;
    bool autoUpdate = false;
    QString cts;
    QString newestLogLine;
    QImage picture;
};

Seen Look(ConsoleWindow& window) {
    window.refresh();
    Seen seen;
    seen.title = window.windowTitle();
    seen.openEnabled = window.findChild<QPushButton*>(u"Cmd_Open"_s)->isEnabled();
    seen.stopEnabled = window.findChild<QPushButton*>(u"Cmd_Kaijyo"_s)->isEnabled();
    seen.portListEnabled = window.findChild<QComboBox*>(u"comboPort"_s)->isEnabled();
    seen.writeEnabled = window.findChild<QPushButton*>(u"buttonWrite"_s)->isEnabled();
    seen.autoUpdate = window.findChild<QCheckBox*>(u"checkAutoUpdateR"_s)->isChecked();
    seen.cts = window.findChild<QLabel*>(u"labelCts"_s)->text();
    seen.newestLogLine =
        window.findChild<QPlainTextEdit*>(u"Txt_Log"_s)->toPlainText().section(u'\n', 0, 0);
    seen.picture = window.grab().toImage();
    return seen;
}

QStringList Captions(const ConsoleWindow& window) {
    QStringList captions;
    for (const QPushButton* button : window.findChildren<QPushButton*>())
        captions.append(button->text());
    for (const QCheckBox* box : window.findChildren<QCheckBox*>()) captions.append(box->text());
    for (const QGroupBox* group : window.findChildren<QGroupBox*>())
        captions.append(group->title());
    captions.sort();
    return captions;
}

}  // namespace

// A whole session under the window: the start command runs the dialogue, the stop button is
// pressed from inside the dialogue's yield, and the window is photographed on either side.
TEST(ConsoleWindow, ShowsTheSessionConnectedThenStopped) {
    test::TestSite site;
    test::LineHarness harness;
    site.writeFile(u"KV_Orbline.ini"_s,
                   EncodeAnsi(u"[User]\r\nJyusinDataPath="_s + site.path(u"data"_s) +
                              u"\r\n[TNMC]\r\nName=TOMEY\r\nName2=眼圧計 1\r\nPort=3\r\n"
                              u"BaudRate=2400\r\nParity=e\r\nDataBits=7\r\nDevice="_s +
                              QString::fromStdString(harness.device()) + u"\r\n"_s));
    QDir().mkpath(site.native(u"data"_s));
    RunLoadEventStart(u"2620=1=TN="_s + site.path());
    ConsoleWindow window;
    window.resize(console::kFullWidth, console::kFullHeight);
    window.show();

    Seen connected;
    QTimer::singleShot(200, &window, [&] {
        connected = Look(window);
        window.findChild<QPushButton*>(u"Cmd_Kaijyo"_s)->click();
    });
    Cmd_Open();  // returns when the stop button has ended the session
    const Seen stopped = Look(window);

    EXPECT_EQ(connected.title, u"(2620) 眼圧計 1"_s);
    EXPECT_FALSE(connected.openEnabled);
    EXPECT_TRUE(connected.stopEnabled);
    EXPECT_FALSE(connected.portListEnabled);
    EXPECT_TRUE(connected.writeEnabled);
    EXPECT_TRUE(connected.autoUpdate);
    // A pseudo-terminal has no modem lines.
    EXPECT_EQ(connected.cts, u"CTS-OFF"_s);
    EXPECT_TRUE(connected.newestLogLine.contains(u"受信開始(Wait) -- "_s))
        << connected.newestLogLine.toStdString();
    EXPECT_EQ(window.findChild<QComboBox*>(u"comboBaudRate"_s)->currentText(), u"2400"_s);
    EXPECT_EQ(window.findChild<QComboBox*>(u"comboParity"_s)->currentText(), u"偶数"_s);

    EXPECT_TRUE(stopped.openEnabled);
    EXPECT_FALSE(stopped.stopEnabled);
    EXPECT_TRUE(stopped.portListEnabled);
    EXPECT_FALSE(stopped.writeEnabled);
    EXPECT_FALSE(stopped.autoUpdate);
    EXPECT_TRUE(stopped.newestLogLine.contains(u"接続終了 -- "_s))
        << stopped.newestLogLine.toStdString();

    QStringList expected{u"通信開始"_s,   u"通信終了"_s,         u"終  了"_s,
                         u"LOGクリア"_s,  u"送  信"_s,           u"クリア"_s,
                         u"整形"_s,       u"クリア"_s,           u"整形"_s,
                         u"更新"_s,       u"接  続"_s,           u"RTS"_s,
                         u"DTR"_s,        u"自動更新"_s,         u"連続送信"_s,
                         u"通信条件"_s,   u"制御 ・ モニター"_s, u"送信データ自動生成"_s,
                         u"送信データ"_s, u"受信データ"_s};
    expected.sort();
    EXPECT_EQ(Captions(window), expected);

    // The pictures, for a person to look at and for the README.
    const QString folder = QStringLiteral(ORBLINE_SCREENSHOT_DIR);
    QDir().mkpath(folder);
    EXPECT_TRUE(connected.picture.save(folder + u"/console-connected.png"_s));
    EXPECT_TRUE(stopped.picture.save(folder + u"/console-stopped.png"_s));
}
