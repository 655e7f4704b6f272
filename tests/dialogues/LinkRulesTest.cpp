#include "dialogues/Classifiers.h"
#include "dialogues/LinkRules.h"
#include "support/Frames.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace orbline;
using orbline::test::PortBytes;

TEST(LinkRules, TheNotationKnowsItsTableAndSendsEverythingElseAsABlank) {
    const std::pair<QChar, const char16_t*> cases[] = {
        {u'@', u"0D "},  {u'a', u"61 "}, {u'Z', u"5A "}, {u'7', u"37 "},  {u'|', u"7C "},
        {u'\\', u"5C "}, {u'"', u"22 "}, {u'^', u"5E "}, {u'$', u"24 "},  {u' ', u"20 "},
        {u'*', u"20 "},  {u'+', u"20 "}, {u'[', u"20 "}, {u'`', u"20 "},  {u'ｱ', u"B1 "},
        {u'･', u"A5 "},  {u'ﾟ', u"DF "}, {u'｡', u"20 "}, {u'漢', u"20 "}, {QChar(0xF790), u"20 "},
    };
    for (const auto& [c, hex] : cases)
        EXPECT_EQ(CharToHexDump(c), QString::fromUtf16(hex)) << QString(c).toStdString();
    // The smaller table of whole frames: first and last are STX and ETX whatever they are.
    EXPECT_EQ(TextToHexDump(u"xA@!ｱ|y"_s), u"02 41 20 20 B1 7C 03 "_s);
}

TEST(LinkRules, TheChecksumIsReducedOnlyAboveTwoHundredFiftySix) {
    EXPECT_EQ(SumCheckSend(u"1L|1|N@"_s, FrameEnd::Etx), u"04"_s);
    EXPECT_EQ(SumCheckSend(u"1L|1|J@"_s, FrameEnd::Etx), u"100"_s);
    EXPECT_EQ(FrameHexText(u"1L|1|J@"_s, FrameEnd::Etx),
              u"02 31 4C 7C 31 7C 4A 0D 03 31 30 0D 0A "_s);
    // ETB counts 23; a blank counts 32 and a kanji its own code, though both go out as 20.
    EXPECT_EQ(SumCheckSend(u"1L|1|N@"_s, FrameEnd::Etb), u"18"_s);
    EXPECT_EQ(SumCheckSend(u"1P| @"_s, FrameEnd::Etx), u"2D"_s);
    EXPECT_EQ(FrameHexText(u"1P|漢@"_s, FrameEnd::Etx).mid(12, 3), u"20 "_s);
    EXPECT_NE(SumCheckSend(u"1P|漢@"_s, FrameEnd::Etx), SumCheckSend(u"1P| @"_s, FrameEnd::Etx));
    // A received text too short for its range sums to nothing.
    EXPECT_EQ(SumCheckNegated(PortBytes("<STX>")), u"100"_s);
}

TEST(Classifiers, TheFrameDialoguesTakeEveryPieceAndTellOnlyAckFromTheRest) {
    EXPECT_EQ(CheckReceive0980(PortBytes("<ENQ>")), PieceKind::Enq);
    EXPECT_EQ(CheckReceive1160(PortBytes("<EOT>")), PieceKind::Eot);
    // A frame with EOT behind it is data, except for the 1660 family.
    const QString frameThenEot = PortBytes("<STX>1L|1<ETX>00<CR><LF><EOT>");
    EXPECT_EQ(CheckReceive1190(frameThenEot), PieceKind::Data);
    EXPECT_EQ(CheckReceive1660(frameThenEot), PieceKind::Eot);

    // The class of an ACK in each stage shows in the answer plan's tests, which read it here.
    for (const char* refusal : {"<NAK>", "<ENQ>", "xy", "<NAK><ACK>"})
        EXPECT_EQ(CheckReply1190(PortBytes(refusal), SendStage::Header), ReplyClass::NotAck);
}

TEST(Classifiers, TheFullFrameCheckReportsTheFirstTestThatFails) {
    struct Case {
        const char* frame;
        std::int16_t pieceCount;
        std::int16_t code;  // as logged
        std::int16_t eot;
    };
    const Case cases[] = {
        {"<STX><ENQ>1CA<ETX>", 0, 0, 0},     // ENQ frame
        {"<STX>D1WBHAA<ETX>", 1, 0, 0},      // data
        {"<STX><EOT>1C9<ETX>", 1, 0, 1},     // EOT ends the check at once
        {"<STX><SYN>1WSYB6<ETX>", 0, 1, 0},  // idle
        {"<STX>D1RSDA2<ETX>", 1, 2, 0},      // RSD
        {"D1WBHAA<ETX>", 1, 100, 0},         // no STX
        {"<STX>D1WBHAA", 1, 110, 0},         // no ETX
        {"<STX>X1WBHAA<ETX>", 1, 120, 0},    // unknown kind
        {"<STX>D1WBHAA<ETX>", 0, 121, 0},    // data before ENQ
        {"<STX><ENQ>1CA<ETX>", 1, 122, 0},   // ENQ inside
        {"<STX>D1AA<ETX>", 1, 123, 0},       // data too short
        {"<STX><ENQ>12CA<ETX>", 0, 124, 0},  // control too long
        {"<STX>DxWBHAA<ETX>", 1, 130, 0},    // number not numeric
        {"<STX>D1WBHBA<ETX>", 1, 133, 0},    // first sum digit
        {"<STX>D1WBHAB<ETX>", 1, 134, 0},    // second sum digit
        {"<STX>D1XBHA9<ETX>", 1, 135, 0},    // data kind
        {"<STX>D1WXX84<ETX>", 1, 136, 0},    // data class
    };
    FrameHistory history;
    for (const Case& c : cases) {
        std::int16_t eot = 1;
        const FrameCheck check = CheckFrame0990(PortBytes(c.frame), c.pieceCount, eot, history);
        EXPECT_EQ(static_cast<std::int16_t>(check), c.code) << c.frame;
        EXPECT_EQ(eot, c.eot) << c.frame;
    }
    EXPECT_EQ(history.frames.get(1), PortBytes(cases[0].frame));
}
