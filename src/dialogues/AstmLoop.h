#pragma once
// The loop that the frame dialogues share. It moves bytes from the port through the read
// window, saves and acknowledges each piece of the instrument's message, runs the edit at the
// EOT piece, and when the edit found an order query carries out the answer plan. An
// instrument is a table of this shape; the loop itself is not copied.

#include "common/Form.h"
#include "dialogues/AstmAnswer.h"
#include "dialogues/Classifiers.h"
#include "dialogues/OrderPolls.h"

#include <QString>
#include <QStringView>

#include <cstdint>
#include <span>

namespace orbline {

// What the loop keeps from one session to the next: whether the host is answering, and the
// record it sent last where that is not the send stage. A dialogue's own memory (the query,
// the echoed header fields) derives from it.
struct AstmMemory : DialogueMemory {
    bool answering = false;
    SendStage recordStage = SendStage::Nothing;
};

// The loop's view of the memory of a dialogue of type T.
template <typename T>
AstmMemory& AstmMemoryOf() {
    return MemoryOf<T>();
}

// How reads become pieces.
enum class Framing {
    AsRead,        // a read is a piece
    JoinedToCrLf,  // a read that begins with STX is joined with the next up to its CR LF
};

struct AstmDialogue {
    QStringView folder;  // work folder in AppPath, "c980"
    QStringView prefix;  // piece file prefix, "c980"
    AstmMemory& (*memory)() = nullptr;
    bool clearsMarkOnEntry = false;
    std::span<const OrderPoller> pollers{};
    int readWaitMs = 100;  // from a piece's first byte to its read
    Framing framing = Framing::AsRead;
    PieceKind (*checkReceive)(const QString&) = nullptr;
    ReplyClass (*checkReply)(const QString&, SendStage) = nullptr;
    // The EOT flag is cleared before the edit, so that it never outlives its message.
    bool clearsEotBeforeEdit = false;
    // The EOT piece is acknowledged too, after the ENQ of an order phase.
    bool ackEotPiece = false;
    // Runs the edit on the saved pieces (the last is the EOT piece); true when the message asks
    // for orders, the dialogue keeping the query in its memory.
    bool (*edit)(std::int16_t pieceCount) = nullptr;
    // The order lookup of the query in memory, from the answer of the lookup before.
    OrderAnswer (*lookup)(const OrderAnswer& previous) = nullptr;
    AnswerPlan plan{};
    // The numbered detail lines of reception and answer (LogMeisai).
    bool logsDetail = false;
    // In front of each reply in the trace.
    QStringView replyTraceMark{};
};

// Runs until the session ends (Connected false).
void RunAstmLoop(const AstmDialogue& dialogue);

}  // namespace orbline
