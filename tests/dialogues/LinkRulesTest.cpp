#include "common/AnsiCodec.h"
#include "dialogues/Classifiers.h"
#include "dialogues/LinkRules.h"

#include <gtest/gtest.h>

#include <QFile>

using namespace Qt::StringLiterals;
using namespace orbline;

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
}

// The plain sum of a received frame, STX to CR LF, is the standard checksum of the frames of a
// real analyser: every frame of the capture verifies.
TEST(LinkRules, ThePlainSumOfEachFrameOfARealCaptureIsItsChecksum) {
    QFile file(QStringLiteral(ORBLINE_FIXTURES_DIR "/captures/cobas-e411-result-three-frames.bin"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QString capture = PortText(file.readAll());
    int frames = 0;
    for (qsizetype at = capture.indexOf(u'\x02'); at >= 0; at = capture.indexOf(u'\x02', at + 1)) {
        const QString frame = capture.mid(at, capture.indexOf(u'\n', at) - at + 1);
        EXPECT_EQ(SumCheckPlain(frame), frame.mid(frame.size() - 4, 2)) << frame.toStdString();
        ++frames;
    }
    EXPECT_EQ(frames, 3);
    EXPECT_EQ(SumCheckNegated(u"\x02"_s), u"100"_s);
}

TEST(Classifiers, TheFrameDialoguesTakeEveryPieceAndTellOnlyAckFromTheRest) {
    EXPECT_EQ(CheckReceive0980(u"\x05"_s), PieceKind::Enq);
    EXPECT_EQ(CheckReceive1160(u"\x04"_s), PieceKind::Eot);
    // A frame with EOT behind it is data, except for the 1660 family.
    const QString frameThenEot =
        u"\x02"
        "1L|1\x03"
        "00\r\n\x04"_s;
    EXPECT_EQ(CheckReceive1190(frameThenEot), PieceKind::Data);
    EXPECT_EQ(CheckReceive1660(frameThenEot), PieceKind::Eot);

    const std::pair<SendStage, ReplyClass> acks[] = {
        {SendStage::Nothing, ReplyClass::NextRecord},
        {SendStage::Header, ReplyClass::NextRecord},
        {SendStage::Patient, ReplyClass::NextRecord},
        {SendStage::Order, ReplyClass::NextRecord},
        {SendStage::FirstOfTwo, ReplyClass::SecondPart},
        {SendStage::Terminator, ReplyClass::TerminatorTaken},
    };
    for (const auto& [stage, reply] : acks) EXPECT_EQ(CheckReply0980(u"\x06"_s, stage), reply);
    for (const QString& refusal : {u"\x15"_s, u"\x05"_s, u"xy"_s, u"\x15\x06"_s})
        EXPECT_EQ(CheckReply1190(refusal, SendStage::Header), ReplyClass::NotAck);
}

TEST(Classifiers, TheFullFrameCheckReportsTheFirstTestThatFails) {
    struct Case {
        QString frame;
        std::int16_t pieceCount;
        std::int16_t code;  // as logged
        std::int16_t eot;
    };
    const Case cases[] = {
        {u"\x02\x05"
         "1CA\x03"_s,
         0, 0, 0},  // ENQ frame
        {u"\x02"
         "D1WBHAA\x03"_s,
         1, 0, 0},  // data
        {u"\x02\x04"
         "1C9\x03"_s,
         1, 0, 1},  // EOT ends the check at once
        {u"\x02\x16"
         "1WSYB6\x03"_s,
         0, 1, 0},  // idle
        {u"\x02"
         "D1RSDA2\x03"_s,
         1, 2, 0},
        {u"D1WBHAA\x03"_s, 1, 100, 0},
        {u"\x02"
         "D1WBHAA"_s,
         1, 110, 0},
        {u"\x02X1WBHAA\x03"_s, 1, 120, 0},
        {u"\x02"
         "D1WBHAA\x03"_s,
         0, 121, 0},
        {u"\x02\x05"
         "1CA\x03"_s,
         1, 122, 0},
        {u"\x02"
         "D1AA\x03"_s,
         1, 123, 0},
        {u"\x02\x05"
         "12CA\x03"_s,
         0, 124, 0},
        {u"\x02"
         "DxWBHAA\x03"_s,
         1, 130, 0},
        {u"\x02"
         "D1WBHBA\x03"_s,
         1, 133, 0},
        {u"\x02"
         "D1WBHAB\x03"_s,
         1, 134, 0},
        {u"\x02"
         "D1XBHA9\x03"_s,
         1, 135, 0},
        {u"\x02"
         "D1WXX84\x03"_s,
         1, 136, 0},
    };
    FrameHistory history;
    for (const Case& c : cases) {
        std::int16_t eot = 1;
        EXPECT_EQ(static_cast<std::int16_t>(CheckFrame0990(c.frame, c.pieceCount, eot, history)),
                  c.code)
            << c.frame.toStdString();
        EXPECT_EQ(eot, c.eot) << c.frame.toStdString();
    }
    EXPECT_EQ(history.frames.get(1), cases[0].frame);
}
