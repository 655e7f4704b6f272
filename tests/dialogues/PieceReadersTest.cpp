// The readers from literal bytes, written in the simulator's notation: each read in, the pieces
// that come out.

#include "dialogues/PieceReaders.h"
#include "dialogues/ReadWindow.h"
#include "support/Frames.h"

#include <gtest/gtest.h>

using namespace orbline;
using orbline::test::PortBytes;

namespace {

QStringList Bs(std::initializer_list<const char*> notations) {
    QStringList out;
    for (const char* n : notations) out.append(PortBytes(n));
    return out;
}

// Feeds reads in order and collects what comes out.
template <typename Reader>
auto Pieces(Reader& reader, std::initializer_list<const char*> reads) {
    QList<typename decltype(Join(reader, QString()))::value_type> out;
    for (const QString& read : Bs(reads))
        if (auto piece = Join(reader, read)) out.append(*piece);
    return out;
}

}  // namespace

// A read is what arrived within the wait of its first byte; without a wait each look reads, and a
// rest keeps the next read back.
TEST(ReadWindow, AReadIsWhatArrivedWithinTheWaitOfItsFirstByte) {
    ReadWindow w{.waitMs = 100};
    EXPECT_EQ(TakeRead(w, 0, QString()), std::nullopt);  // nothing seen, nothing started
    EXPECT_EQ(TakeRead(w, 5, PortBytes("<STX>1H|")), std::nullopt);
    EXPECT_EQ(TakeRead(w, 60, PortBytes("x")), std::nullopt);
    EXPECT_EQ(SleepBeforeNextLook(w, 100, 10), 5);
    // Bytes that came by the read are in it: a second frame shares the read.
    EXPECT_EQ(TakeRead(w, 105, PortBytes("<CR><LF><STX>2")), PortBytes("<STX>1H|x<CR><LF><STX>2"));
    EXPECT_EQ(TakeRead(w, 300, PortBytes("P")), std::nullopt);
    EXPECT_EQ(TakeRead(w, 400, QString()), PortBytes("P"));

    ReadWindow resting{.restMs = 100};
    EXPECT_EQ(TakeRead(resting, 0, PortBytes("a")), PortBytes("a"));
    EXPECT_EQ(TakeRead(resting, 40, PortBytes("b")), std::nullopt);
    EXPECT_EQ(TakeRead(resting, 90, PortBytes("c")), std::nullopt);
    EXPECT_EQ(TakeRead(resting, 100, QString()), PortBytes("bc"));
    EXPECT_EQ(TakeRead(resting, 101, PortBytes("d")), std::nullopt);
    EXPECT_EQ(TakeRead(resting, 200, QString()), PortBytes("d"));
}

TEST(PieceReaders, AMessageIsJoinedUpToItsEndMarkAFrameUpToItsCrLf) {
    JoinToEnd etx{.mark = QChar(0x03)};
    EXPECT_EQ(Pieces(etx, {"<STX>D1", "", "23<ETX>", "<STX>R<ETX>"}),
              Bs({"<STX>D123<ETX>", "<STX>R<ETX>"}));
    // Noise with no end mark stays in front of the next message.
    EXPECT_EQ(Pieces(etx, {"zz", "<STX>D<ETX>"}), Bs({"zz<STX>D<ETX>"}));

    // A read that begins with STX is joined up to its CR LF; others pass as they came.
    JoinToCrLf crlf;
    EXPECT_EQ(Pieces(crlf, {"<ENQ>", "<STX>1H|", "x<CR>", "<LF>", "<ACK>", "<EOT>"}),
              Bs({"<ENQ>", "<STX>1H|x<CR><LF>", "<ACK>", "<EOT>"}));
    // A frame cut off for good takes everything after it until a read ends in CR LF.
    EXPECT_EQ(Pieces(crlf, {"<STX>2P", "<EOT>", "<ENQ><CR><LF>"}),
              Bs({"<STX>2P<EOT><ENQ><CR><LF>"}));
}

TEST(PieceReaders, AReportIsChainedByEtbAndEndedByEtx) {
    EtbChain chain;
    EXPECT_EQ(Pieces(chain, {"<STX>A", "a<ETB>", "<STX>B<ETB>", "<STX>C", "c<ETX>"}),
              QList<QStringList>{Bs({"<STX>Aa<ETB>", "<STX>B<ETB>", "<STX>Cc<ETX>"})});
    // A frame that does not begin with STX never completes.
    EtbChain wrong;
    EXPECT_TRUE(Pieces(wrong, {"x", "<STX>A<ETX>"}).isEmpty());
    EXPECT_EQ(wrong.phase, ChainPhase::Partial);
    // Eleven frames fit; the twelfth is lost with the report.
    EtbChain longReport;
    for (int i = 0; i < 11; ++i) EXPECT_FALSE(Join(longReport, PortBytes("<STX>f<ETB>")));
    EXPECT_FALSE(Join(longReport, PortBytes("<STX>last<ETX>")));
    EXPECT_EQ(longReport.phase, ChainPhase::Lost);
}

TEST(PieceReaders, ATonometerBlockIsDecidedByTheEndsOfTheTextInCr) {
    BlockReader r;
    EXPECT_EQ(Join(r, PortBytes("<ENQ><CR>")).block.value().kind, BlockKind::Start);
    // A block over several reads; its first line ends in CR but is no block yet.
    const BlockStep line = Join(r, PortBytes("[IOP]<CR>"));
    EXPECT_TRUE(line.endsInCr && !line.block);
    EXPECT_FALSE(Join(r, PortBytes(" 15")).endsInCr);
    const Block data = Join(r, PortBytes("<CR><ETX><CR>")).block.value();
    EXPECT_EQ(data.kind, BlockKind::Data);
    EXPECT_EQ(data.text, PortBytes("[IOP]<CR> 15<CR><ETX><CR>"));
    // Two blocks in one read are one text: only its end decides.
    EXPECT_EQ(Join(r, PortBytes("a<ETX><CR>b<EOT><CR>")).block.value().kind, BlockKind::Final);
}

TEST(PieceReaders, TheSecondByteTellsTheFrameAndTheLastFrameMarkCarriesOn) {
    SecondByteFrames f;
    struct Step {
        const char* read;
        FrameKind kind;
        bool last;
    };
    const Step steps[] = {
        {"<STX>1data<ETX>", FrameKind::Data, false},
        {"<STX>><ETX>", FrameKind::Poll, false},
        {"<STX>;inquiry<ETX>", FrameKind::Inquiry, true},
        // After an inquiry a data frame of any other second byte ends its message.
        {"<STX>2data<ETX>", FrameKind::Data, true},
        {"noise", FrameKind::NoStx, false},
        {"<STX>:last<ETX>", FrameKind::Data, true},
        {"<STX>", FrameKind::Data, true},
    };
    for (const Step& s : steps) {
        const KindedFrame k = ClassifyFrame(f, PortBytes(s.read));
        EXPECT_EQ(k.kind, s.kind) << s.read;
        EXPECT_EQ(k.lastFrame, s.last) << s.read;
    }
}
