#pragma once
// The ways the dialogues turn reads of the port into the pieces they act on. Each is a pure
// state machine: a read in, at most one piece out; the loop only moves reads into them. None
// bounds what it holds: a frame that never ends keeps growing, as the instrument's link has
// always let it (the port's own queue is bounded, a reader is not).

#include <QChar>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <optional>

namespace orbline {

// Whether a joiner holds the start of a piece that has not ended yet.
enum class JoinPhase { Empty, Partial };

// Reads joined until one ends with the end mark (ETX): the one-text messages of 1650 and the
// strict frames of 0990. An empty read gives nothing.
struct JoinToEnd {
    QChar mark;
    JoinPhase phase = JoinPhase::Empty;
    QString text{};
};
std::optional<QString> Join(JoinToEnd& joiner, const QString& read);

// A read that begins with STX is joined with the next reads until the text ends in CR LF; any
// other read is a piece as it came (1660).
struct JoinToCrLf {
    JoinPhase phase = JoinPhase::Empty;
    QString text{};
};
std::optional<QString> Join(JoinToCrLf& joiner, const QString& read);

// A printed report in up to eleven frames: each frame joined over reads until it ends with ETB
// (a further frame follows) or ETX (the report is complete). A frame that does not begin with
// STX never completes: every later read is added to it. A twelfth frame has nowhere to go and
// the report is lost with everything after it (0855).
enum class ChainPhase { Waiting, Partial, Lost };
inline constexpr qsizetype kChainFrames = 11;
struct EtbChain {
    ChainPhase phase = ChainPhase::Waiting;
    QStringList frames{};  // frames[index] is being filled
    qsizetype index = 0;
};
// The frames of a complete report, in order.
std::optional<QStringList> Join(EtbChain& chain, const QString& read);

// The tonometer's blocks: reads added until the text ends in CR; then its ends decide whether
// it is a block. A text of none of the kinds stays and the next read is added to it (2620).
enum class BlockKind {
    Start,  // first character ENQ
    Data,   // ETX before the closing CR
    Final,  // EOT before the closing CR
};
struct Block {
    BlockKind kind;
    QString text{};
};
struct BlockReader {
    JoinPhase phase = JoinPhase::Empty;
    QString text{};
};
struct BlockStep {
    bool endsInCr = false;  // the text held ends in CR (such texts are counted, blocks or not)
    std::optional<Block> block;
};
BlockStep Join(BlockReader& reader, const QString& read);

// One read is one frame of the chemistry analysers (2140, 2990); its second byte tells what it
// is. The last-frame mark stays from frame to frame: a ";" inquiry sets it, and a data frame of
// any other second byte that follows is then taken as the last of its message.
enum class FrameKind : std::int16_t {
    Data = 0,     // the message goes on, or ends when the mark is set
    Poll = 1,     // ">"
    Inquiry = 2,  // ";": the order inquiry
    NoStx = 10,   // not a frame
};
struct SecondByteFrames {
    bool lastFrame = false;
};
struct KindedFrame {
    FrameKind kind;
    bool lastFrame;  // the mark after this frame
};
KindedFrame ClassifyFrame(SecondByteFrames& frames, const QString& read);

}  // namespace orbline
