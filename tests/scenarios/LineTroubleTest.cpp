// Trouble on the line that must not pass unseen: a far end that goes away, unmatched settings.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <QFile>

#include "support/AstmInstrument.h"

using namespace Qt::StringLiterals;
using namespace orbline::test;

// Mid-message, and after an EOT the read window (500 ms here) still holds; idle: SimulatorScripts.
TEST(LineTrouble, AFarEndThatGoesAwayEndsTheProcessAbnormallyWithinTwoSeconds) {
    const std::string head = "<ENQ>" + Frame("1H|\\^&|||HLC-723G11^01.02|||||||||1.0<CR>");
    const std::tuple<QString, QString, std::string, int> cases[] = {
        {u"0980"_s, u"1"_s, head, 0},
        {u"0980"_s, u"5"_s,
         head + Frame("2O|1|001234|7<CR>R|1|^^^HbA1cValue|5.60|%<CR>L|1|N<CR>") + "<EOT>", 1}};
    for (const auto& [code, timeScale, sent, delivered] : cases) {
        LinkProcess link;
        link.timeScale = timeScale;
        StartInstrument(link, code, u"HLC"_s);
        SendAcked(link, sent);
        ASSERT_TRUE(link.line.pty.waitUntilTaken(std::chrono::seconds(2)));
        // The instrument's end closes; its number names /dev/null until the pair closes it.
        const int null = open("/dev/null", O_RDWR | O_CLOEXEC);
        ASSERT_EQ(dup3(null, link.line.pty.masterFd(), O_CLOEXEC), link.line.pty.masterFd());
        close(null);
        EXPECT_EQ(link.finish(2000), 1) << sent;
        EXPECT_EQ(link.deliveries().size(), delivered);
        EXPECT_TRUE(link.logMessages().join(u'\n').contains(
            u"\n回線切断 -- "_s + code + u":2025-04-16 09:30:15\nプログラム異常終了 -- 【  】"_s));
        EXPECT_TRUE(link.diagnosticLog(code).contains(
            QString::fromStdString(link.line.device()) +
            u") went away while open: device gone or line hung up ("_s));
    }
}

// Each unmatched line setting, also a missing one, is named once; the lists fall back as before.
TEST(LineTrouble, EachUnmatchedLineSettingIsNamedOnceOnStandardErrorAndInTheDiagnosticLog) {
    LinkProcess link;
    link.writeSettings();
    QFile ini(link.native(u"KV_Orbline.ini"_s));
    ASSERT_TRUE(ini.open(QIODevice::ReadWrite));
    const QByteArray text = ini.readAll().replace("=9600", "=abc").replace("Parity=n\r\n", "");
    ASSERT_TRUE(ini.resize(0) && ini.write(text) > 0 && ini.flush());
    link.start();
    ASSERT_TRUE(link.waitForLog(u"受信開始(Wait)"_s));
    const QString tail = u" matches no entry of its list; the line uses "_s;
    const QStringList warnings{
        u"2025-04-16 09:30:15 2620 setting BaudRate=abc of section TNMC"_s + tail + u"75"_s,
        u"2025-04-16 09:30:15 2620 setting Parity of section TNMC is empty or missing and"_s +
            tail + u"なし"_s};
    EXPECT_EQ(link.standardError(), warnings.join(u'\n') + u'\n');
    EXPECT_EQ(link.diagnosticLog(), warnings.join(u"\r\n"_s) + u"\r\n"_s);
}
