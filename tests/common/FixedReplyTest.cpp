#include "common/FixedReply.h"
#include "common/Form.h"
#include "common/FormLists.h"
#include "serial/AwComm.h"
#include "support/LineHarness.h"
#include "support/TestSite.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace orbline;
using orbline::test::LineHarness;
using orbline::test::Notation;
using orbline::test::TestSite;

TEST(ConvertToBinary, HexadecimalDecimalAndCharacterModes) {
    TestSite site;
    Form().HiddenChar = QString(QChar(0x80));
    // Blanks in runs and a CR LF separate tokens; a token that is no byte gives 0.
    EXPECT_EQ(ConvertToBinary(u" 02  06\r\n0d "_s, 0), QByteArray("\x02\x06\x0D", 3));
    EXPECT_EQ(ConvertToBinary(u"ZZ 1FF 0x1 -1 00FF"_s, 0), QByteArray("\0\0\0\0\xFF", 5));
    EXPECT_EQ(ConvertToBinary(u"   "_s, 0), QByteArray());
    EXPECT_EQ(ConvertToBinary(u"2 6 13 256 x"_s, 1), QByteArray("\x02\x06\x0D\0\0", 5));
    EXPECT_EQ(ConvertToBinary(u"A\u0080B\u30A2"_s, 2), QByteArray("AB\xA2"));
}

// The bytes of each reply on the line are the scenarios'; here the send pane around them.
TEST(SendFixedReply, ReadsTheTextInThePanesModeAndEmptiesThePane) {
    TestSite site;
    LineHarness harness;
    FillLineLists();
    Form().comm().SetDevicePath(harness.device());
    ASSERT_TRUE(Form().comm().OpenPort1());
    SendFixedReply(FixedReply::AckCr);
    EXPECT_EQ(harness.line.receive(2, std::chrono::seconds(2)), Notation("<ACK><CR>"));
    EXPECT_EQ(Form().sendBytes.count, 0);
    EXPECT_EQ(Form().labelBytesW, u"0"_s);

    // In the character mode the digits of the table's text go.
    Form().comboModeW.position = 2;
    SendFixedReply(FixedReply::Ack);
    EXPECT_EQ(harness.line.receive(2, std::chrono::seconds(2)), Notation("06"));
    EXPECT_TRUE(harness.line.drain(std::chrono::milliseconds(100)).empty());
}
