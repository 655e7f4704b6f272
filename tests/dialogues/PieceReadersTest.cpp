// The readers from literal bytes: each read in, the pieces that come out.

#include "dialogues/PieceReaders.h"
#include "dialogues/ReadWindow.h"

#include <gtest/gtest.h>

#include <optional>

using namespace Qt::StringLiterals;
using namespace orbline;

namespace {

// Feeds reads in order and collects what comes out.
template <typename Reader>
auto Pieces(Reader& reader, const QStringList& reads) {
    QList<typename decltype(Join(reader, QString()))::value_type> out;
    for (const QString& read : reads)
        if (auto piece = Join(reader, read)) out.append(*piece);
    return out;
}

}  // namespace

TEST(ReadWindow, AReadIsWhatArrivedWithinTheWaitOfItsFirstByte) {
    ReadWindow w{.waitMs = 100};
    EXPECT_EQ(TakeRead(w, 0, QString()), std::nullopt);  // nothing seen, nothing started
    EXPECT_EQ(TakeRead(w, 5,
                       u"\x02"
                       "1H|"_s),
              std::nullopt);
    EXPECT_EQ(SleepBeforeNextLook(w, 95, 10), 10);
    EXPECT_EQ(TakeRead(w, 60, u"x"_s), std::nullopt);
    EXPECT_EQ(SleepBeforeNextLook(w, 100, 10), 5);
    // Bytes that came by the read are in it: a second frame shares the read.
    EXPECT_EQ(TakeRead(w, 105,
                       u"\r\n\x02"
                       "2"_s),
              u"\x02"
              "1H|x\r\n\x02"
              "2"_s);
    EXPECT_EQ(w.phase, WindowPhase::Idle);
    // The next byte opens a new window of its own.
    EXPECT_EQ(TakeRead(w, 300, u"P"_s), std::nullopt);
    EXPECT_EQ(TakeRead(w, 399, QString()), std::nullopt);
    EXPECT_EQ(TakeRead(w, 400, QString()), u"P"_s);
}

TEST(ReadWindow, WithoutAWaitEachLookReadsAndARestKeepsTheNextReadBack) {
    ReadWindow plain;
    EXPECT_EQ(TakeRead(plain, 0, u"a"_s), u"a"_s);
    EXPECT_EQ(TakeRead(plain, 1, u"b"_s), u"b"_s);

    ReadWindow resting{.restMs = 100};
    EXPECT_EQ(TakeRead(resting, 0, u"a"_s), u"a"_s);
    EXPECT_EQ(TakeRead(resting, 40, u"b"_s), std::nullopt);
    EXPECT_EQ(TakeRead(resting, 90, u"c"_s), std::nullopt);
    EXPECT_EQ(TakeRead(resting, 100, QString()), u"bc"_s);
    EXPECT_EQ(TakeRead(resting, 250, QString()), std::nullopt);
    EXPECT_EQ(resting.phase, WindowPhase::Idle);
}

TEST(PieceReaders, AMessageIsJoinedUpToItsEndMark) {
    JoinToEnd etx{.mark = u'\x03'};
    EXPECT_EQ(Pieces(etx, {u"\x02"
                           "D1"_s,
                           QString(), u"23\x03"_s, u"\x02R\x03"_s}),
              (QStringList{u"\x02"
                           "D123\x03"_s,
                           u"\x02R\x03"_s}));
    // Noise with no end mark stays in front of the next message.
    EXPECT_EQ(Pieces(etx, {u"zz"_s,
                           u"\x02"
                           "D\x03"_s}),
              QStringList{u"zz\x02"
                          "D\x03"_s});
}

TEST(PieceReaders, AFrameThatBeginsWithStxIsJoinedUpToItsCrLf) {
    JoinToCrLf crlf;
    EXPECT_EQ(Pieces(crlf, {u"\x05"_s,
                            u"\x02"
                            "1H|"_s,
                            u"x\r"_s, u"\n"_s, u"\x06"_s, u"\x04"_s}),
              (QStringList{u"\x05"_s,
                           u"\x02"
                           "1H|x\r\n"_s,
                           u"\x06"_s, u"\x04"_s}));
    // A frame cut off for good takes everything after it until a read ends in CR LF.
    EXPECT_EQ(Pieces(crlf, {u"\x02"
                            "2P"_s,
                            u"\x04"_s, u"\x05\r\n"_s}),
              QStringList{u"\x02"
                          "2P\x04\x05\r\n"_s});
}

TEST(PieceReaders, AReportIsChainedByEtbAndEndedByEtx) {
    EtbChain chain;
    EXPECT_EQ(Pieces(chain, {u"\x02"
                             "A"_s,
                             u"a\x17"_s,
                             u"\x02"
                             "B\x17"_s,
                             u"\x02"
                             "C"_s,
                             u"c\x03"_s}),
              (QList<QStringList>{{u"\x02"
                                   "Aa\x17"_s,
                                   u"\x02"
                                   "B\x17"_s,
                                   u"\x02"
                                   "Cc\x03"_s}}));
    EXPECT_EQ(Pieces(chain, {u"\x02"
                             "only\x03"_s}),
              QList<QStringList>{{u"\x02"
                                  "only\x03"_s}});
    // A frame that does not begin with STX never completes.
    EtbChain wrong;
    EXPECT_TRUE(Pieces(wrong, {u"x"_s,
                               u"\x02"
                               "A\x03"_s})
                    .isEmpty());
    EXPECT_EQ(wrong.phase, ChainPhase::Partial);
    // Eleven frames fit; the twelfth is lost with the report.
    EtbChain longReport;
    QStringList reads;
    for (int i = 0; i < 11; ++i)
        reads.append(
            u"\x02"
            "f\x17"_s);
    reads.append(
        u"\x02"
        "last\x03"_s);
    EXPECT_TRUE(Pieces(longReport, reads).isEmpty());
    EXPECT_EQ(longReport.phase, ChainPhase::Lost);
}

TEST(PieceReaders, ATonometerBlockIsDecidedByTheEndsOfTheTextInCr) {
    BlockReader r;
    const BlockStep start = Join(r, u"\x05\r"_s);
    ASSERT_TRUE(start.block);
    EXPECT_EQ(start.block->kind, BlockKind::Start);
    // A block over two reads; its first line ends in CR but is no block yet.
    const BlockStep line = Join(r, u"[IOP]\r"_s);
    EXPECT_TRUE(line.endsInCr);
    EXPECT_FALSE(line.block);
    EXPECT_FALSE(Join(r, u" 15"_s).endsInCr);
    const BlockStep data = Join(r, u"\r\x03\r"_s);
    ASSERT_TRUE(data.block);
    EXPECT_EQ(data.block->kind, BlockKind::Data);
    EXPECT_EQ(data.block->text, u"[IOP]\r 15\r\x03\r"_s);
    // Two blocks in one read are one text: only its end decides.
    const BlockStep both = Join(r, u"a\x03\rb\x04\r"_s);
    ASSERT_TRUE(both.block);
    EXPECT_EQ(both.block->kind, BlockKind::Final);
    // An ETX only inside the text leaves it waiting.
    EXPECT_FALSE(Join(r, u"x\x03y\r"_s).block);
    EXPECT_EQ(r.text, u"x\x03y\r"_s);
}

TEST(PieceReaders, TheSecondByteTellsTheFrameAndTheLastFrameMarkCarriesOn) {
    SecondByteFrames f;
    struct Step {
        QString read;
        FrameKind kind;
        bool last;
    };
    const Step steps[] = {
        {u"\x02"
         "1data\x03"_s,
         FrameKind::Data, false},
        {u"\x02>\x03"_s, FrameKind::Poll, false},
        {u"\x02;inquiry\x03"_s, FrameKind::Inquiry, true},
        // After an inquiry a data frame of any other second byte ends its message.
        {u"\x02"
         "2data\x03"_s,
         FrameKind::Data, true},
        {u"noise"_s, FrameKind::NoStx, false},
        {u"\x02:last\x03"_s, FrameKind::Data, true},
        {u"\x02"_s, FrameKind::Data, true},
    };
    for (const Step& s : steps) {
        const KindedFrame k = ClassifyFrame(f, s.read);
        EXPECT_EQ(k.kind, s.kind) << s.read.toStdString();
        EXPECT_EQ(k.lastFrame, s.last) << s.read.toStdString();
    }
}
