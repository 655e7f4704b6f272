#include "app/ConsolePanes.h"
#include "common/Clock.h"
#include "common/Form.h"
#include "common/FormLists.h"
#include "serial/AwComm.h"
#include "support/LineHarness.h"
#include "support/TestSite.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace orbline;
using orbline::test::LineHarness;
using orbline::test::TestSite;

namespace {

// The form as the load event and the start command leave it.
void ConsoleForm() {
    Form().HiddenChar = QString(QChar(0x80));
    FillLineLists();
    FillConsoleLists();
    BuildCodeTables();
}

// A person types text into a pane and leaves the box.
void Type(Pane pane, const QString& text) {
    PaneTextEntered(pane);
    PaneTextLeft(pane, text);
}

}  // namespace

// Each change reads the text by the old mode and shows the bytes by the new one: CR has no
// ISO character without its parity bit, so it is lost on the way through the ISO mode.
TEST(ConsolePanes, ModeChangesCarryTheBytesAcross) {
    TestSite site;
    ConsoleForm();
    Type(Pane::Send, u"41 42 0D"_s);
    const struct {
        qsizetype mode;
        QString text;
    } steps[] = {{2, u"AB\r"_s}, {1, u"065 066 013 "_s}, {0, u"41 42 0D "_s},
                 {3, u"AB"_s},   {0, u"41 42 "_s},       {0, u"41 42 "_s}};
    for (const auto& step : steps) {
        ChangePaneMode(Pane::Send, step.mode);
        EXPECT_EQ(Form().textDataW, step.text) << step.mode;
    }
    EXPECT_EQ(Form().sendBytes.bytes, QByteArray("AB"));

    // Typed in the EIA mode, lower case is stored in EIA and comes back upper case.
    ChangePaneMode(Pane::Send, 4);
    Type(Pane::Send, u"ab"_s);
    ChangePaneMode(Pane::Send, 0);
    EXPECT_EQ(Form().textDataW, u"61 62 "_s);
    ChangePaneMode(Pane::Send, 4);
    EXPECT_EQ(Form().textDataW, u"AB"_s);
}

// The receive pane takes bytes from its box only while it does not follow the line.
TEST(ConsolePanes, LeavingTheReceiveBoxKeepsTheLinesBytesWhileAutoUpdating) {
    TestSite site;
    ConsoleForm();
    Form().receiveBytes.bytes = "\x06";
    Form().receiveBytes.count = 1;
    SetAutoUpdateReceive(true);
    Type(Pane::Receive, u"15"_s);
    EXPECT_EQ(Form().receiveBytes.bytes, QByteArray("\x06"));
    SetAutoUpdateReceive(false);
    Type(Pane::Receive, u"15 15"_s);
    EXPECT_EQ(Form().receiveBytes.bytes, QByteArray("\x15\x15"));
    EXPECT_EQ(Form().labelBytesR, u"2"_s);
}

TEST(ConsolePanes, LoopWriteRefusesAMinimumAboveTheMaximum) {
    TestSite site;
    ConsoleForm();
    Form().comboMin.position = 0x81;
    Form().comboMax.position = 0x80;
    EXPECT_EQ(SetLoopWrite(true), u"最小値と最大値の関係が正しくありません。    "_s);
    EXPECT_EQ(Form().checkLoopWrite.value, 0);
    EXPECT_TRUE(Form().comboMin.enabled);

    Form().comboMin.position = 0x80;
    EXPECT_EQ(SetLoopWrite(true), QString());
    EXPECT_EQ(Form().checkLoopWrite.value, 1);
    EXPECT_FALSE(Form().comboMin.enabled || Form().comboMax.enabled ||
                 Form().comboCondition.enabled);
    EXPECT_EQ(Form().loopWriteSince, Now());
    SetLoopWrite(false);
    EXPECT_TRUE(Form().comboMin.enabled && Form().comboMax.enabled &&
                Form().comboCondition.enabled);
}

// Every byte value goes to the file and back, into the other pane in its own mode.
TEST(ConsolePanes, SaveAndLoadRoundTrip) {
    TestSite site;
    ConsoleForm();
    QByteArray all;
    for (int b = 0; b < 256; ++b) all.append(static_cast<char>(b));
    Form().sendBytes.bytes = all;
    Form().sendBytes.count = 256;
    const QString path = site.native(u"pane.bin"_s);
    EXPECT_EQ(SavePane(Pane::Send, path), u"送信データを保存しました。    "_s);
    EXPECT_EQ(site.readFile(u"pane.bin"_s), all);

    Form().comboModeR.position = 1;
    LoadPane(Pane::Receive, path);
    EXPECT_EQ(Form().receiveBytes.bytes, all);
    EXPECT_EQ(Form().labelBytesR, u"256"_s);
    EXPECT_TRUE(Form().textDataR.startsWith(u"000 001 002 "_s));
    EXPECT_EQ(Form().textDataR, Form().receiveText.ToString());

    EXPECT_EQ(SavePane(Pane::Receive, site.native(u"no/such/folder/pane.bin"_s)),
              u"このファイル名で保存することはできません。    "_s);
    LoadPane(Pane::Receive, site.native(u"missing.bin"_s));
    EXPECT_TRUE(Form().textDataR.isEmpty());
    EXPECT_EQ(Form().receiveBytes.count, 0);
}

// buttonWrite only keeps the bytes with the delimiter; the line stays silent.
TEST(ConsolePanes, WriteAppendsTheDelimiterAndSendsNothing) {
    TestSite site;
    LineHarness harness;
    ConsoleForm();
    Form().comm().SetDevicePath(harness.device());
    ASSERT_TRUE(Form().comm().OpenPort1());
    const QByteArray delimiters[] = {"", "\r", "\n", "\r\n", "\x03"};
    for (qsizetype position = 0; position < 5; ++position) {
        ClearPane(Pane::Send);
        Type(Pane::Send, u"41 42"_s);
        Form().comboDelimiter.position = position;
        WriteSendPane();
        const QByteArray expected = "AB" + delimiters[position];
        EXPECT_EQ(Form().sendBytes.bytes, expected) << position;
        EXPECT_EQ(Form().sendBytes.count, expected.size());
    }
    EXPECT_TRUE(harness.line.drain(std::chrono::milliseconds(200)).empty());
}
