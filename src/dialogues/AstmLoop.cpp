#include "dialogues/AstmLoop.h"

#include "common/AwCommText.h"
#include "common/Clock.h"
#include "common/EventYield.h"
#include "common/FixedReply.h"
#include "common/Form.h"
#include "common/Logging.h"
#include "common/Numbers.h"
#include "common/Paths.h"
#include "common/ResultFile.h"
#include "common/RuntimeError.h"
#include "common/Text.h"
#include "dialogues/CommCycle.h"
#include "edits/PieceFiles.h"

#include <limits>

using namespace Qt::StringLiterals;

namespace orbline {

namespace {

constexpr std::int16_t kFrameReply = 4;
constexpr std::int16_t kAck = 5;
constexpr std::int16_t kNak = 6;
constexpr std::int16_t kEnq = 7;
constexpr std::int16_t kEot = 8;
// The refusals an order phase takes before it gives the line back.
constexpr std::int16_t kMaxRefusals = 3;
// The rest of a frame gets this long to arrive after its first byte.
constexpr int kReadWaitMs = 100;

// 16-bit counters: an addition past the range fails and is passed over, so they stay there.
void CountUp(std::int16_t& counter) {
    if (counter < std::numeric_limits<std::int16_t>::max()) counter += 1;
}

// A code that is no 16-bit number fails this step alone; the dialogue goes on.
void Trace(const QString& text, const QString& stamp) {
    PassOver([&] { TraceOut(text, InstrumentCodeNumber(), stamp, u"1"_s); });
}

QString& QueryMark(const AstmDialogue& d) {
    return Ctx().*d.queryMark;
}

void PollOrders(const AstmDialogue& d, AstmLoopState& s) {
    const RunContext& c = Ctx();
    if (d.pollEvery <= 0 || c.OrderPT != u"4"_s || Trim(c.OrderPath).isEmpty()) return;
    CountUp(s.PollCount);
    if (s.PollCount < d.pollEvery) return;
    if (HasFiles(1, c.OrderPath) == 1) d.takeOrders();
    s.PollCount = 0;
}

// Header, patient and terminator never go out in a mode the operator picked in the list.
void SendInHexMode(AstmLoopState& s, const QString& text, FrameEnd end, SendStage next) {
    Form().comboModeW.position = 0;
    BuildFrame(s, text, end, next);
}

void SendHeader(const AstmDialogue& d, AstmLoopState& s, bool repeated) {
    CountUp(s.FrameNo);
    SendInHexMode(s, d.header(s, repeated), d.recordEnd, SendStage::Header);
}

void SendPatient(const AstmDialogue& d, AstmLoopState& s) {
    CountUp(s.FrameNo);
    SendInHexMode(s, d.patient(s), d.recordEnd, SendStage::Patient);
}

void SendOrder(const AstmDialogue& d, AstmLoopState& s) {
    CountUp(s.FrameNo);
    const QString text = d.order(s);
    if (!NeedsTwoFrames(text)) {
        BuildFrame(s, text, d.recordEnd, SendStage::Order);
        return;
    }
    Form().LongRecord = text;
    BuildFrame(s, FirstPartOf(text), FrameEnd::Etb, SendStage::FirstOfTwo);
}

void SendSecondPart(AstmLoopState& s) {
    CountUp(s.FrameNo);
    // Anything past the second frame's share is dropped.
    BuildFrame(s, SecondPartOf(Form().LongRecord, s.FrameNo), FrameEnd::Etx, SendStage::Order);
}

void SendTerminator(const AstmDialogue& d, AstmLoopState& s) {
    CountUp(s.FrameNo);
    SendInHexMode(s, d.terminator(s), FrameEnd::Etx, SendStage::Terminator);
}

// EOT gives the line back; the next ENQ of the instrument starts a new reception.
void EndOrderPhase(const AstmDialogue& d, AstmLoopState& s, bool completed) {
    SendFixedReply(kEot);
    QueryMark(d).clear();
    s.Stage = SendStage::Nothing;
    s.PieceCount = 0;
    s.FrameNo = 0;
    if (completed)
        LogEvent(u"問合情報送信完了(Edit/ETB) -- "_s, u"問合情報送信完了(Edit/ETB) -- "_s,
                 LogForm::Full);
}

void SendNextRecord(const AstmDialogue& d, AstmLoopState& s) {
    switch (s.Stage) {
        case SendStage::Nothing:
            SendHeader(d, s, false);
            if (d.lookupAt == LookupPoint::AfterHeader) {
                d.lookup(s);
                // Without an order the answer is header and terminator alone.
                if (s.answer.test.isEmpty()) s.Stage = SendStage::Order;
            }
            return;
        case SendStage::Header:
            if (d.lookupAt == LookupPoint::BeforePatient) d.lookup(s);
            SendPatient(d, s);
            return;
        case SendStage::Patient:
            SendOrder(d, s);
            return;
        case SendStage::Order:
            SendTerminator(d, s);
            return;
        case SendStage::FirstOfTwo:
        case SendStage::Terminator:
            // Their ACKs have codes of their own.
            return;
    }
}

void RepeatFrame(const AstmDialogue& d, AstmLoopState& s) {
    switch (s.Stage) {
        case SendStage::Nothing:
        case SendStage::FirstOfTwo:
            // Nothing goes out; the loop waits for the next piece.
            return;
        case SendStage::Header:
            SendHeader(d, s, true);
            return;
        case SendStage::Patient:
            d.lookup(s);
            SendPatient(d, s);
            return;
        case SendStage::Order:
            SendOrder(d, s);
            return;
        case SendStage::Terminator:
            SendTerminator(d, s);
            return;
    }
}

void AnswerReply(const AstmDialogue& d, AstmLoopState& s, const QString& piece) {
    const std::int16_t code = d.checkReply(piece, s.PieceCount, s.Stage);
    Trace(piece, s.StampText);
    switch (code) {
        case reply::kNextRecord:
            SendNextRecord(d, s);
            return;
        case reply::kSecondPart:
            SendSecondPart(s);
            return;
        case reply::kTerminatorTaken:
            EndOrderPhase(d, s, true);
            return;
        case reply::kLeave:
            EndOrderPhase(d, s, false);
            return;
        default:
            break;
    }
    // The refusals count over the whole phase: an ACK between them does not clear the count.
    if (s.PieceCount >= kMaxRefusals) {
        EndOrderPhase(d, s, false);
        return;
    }
    if (d.retry == RetryRule::AskAgain)
        SendFixedReply(kEnq);
    else
        RepeatFrame(d, s);
}

void TakePiece(const AstmDialogue& d, AstmLoopState& s) {
    const std::int16_t code =
        d.checkReceive(Ctx().ReceiveBuffer.checked(0), s.PieceCount, s.EotFlag);
    if (code >= 10) {
        SendFixedReply(kNak);
        const QString text = u"受信チェックエラー CD=("_s + QString::number(code) + u")"_s;
        LogEvent(text, text, LogForm::Short);
        return;
    }
    if (code != 0) return;

    CountUp(s.PieceCount);
    const QString folder = PieceFolder(d.folder.toString());
    if (s.PieceCount == 1) {
        // The pieces of the message before go with the first piece of this one.
        if (FolderExists(folder)) DeleteFolderTree(folder);
        MakeFolder(folder);
        LogEvent(u"データ受信中 --  "_s, u"データ受信中 -- "_s, LogForm::Short);
        s.StampText = NowText(u"YYYYMMDDHHMMSS"_s);
    }
    BlockFileOut(folder, d.prefix.toString(),
                 FormatNumber(QString::number(s.PieceCount), u"0000"_s));
    if (s.EotFlag != 1) {
        SendFixedReply(kAck);
        return;
    }

    d.edit(s);
    if (QueryMark(d) == u"Q"_s) {
        YieldToEvents();
        Sleep(10);
        SendFixedReply(kEnq);
        LogEvent(u"オーダデータ要求送信中 --  "_s, u"データデータ要求送信中 -- "_s, LogForm::Short);
        s.Stage = SendStage::Nothing;
    }
    s.PieceCount = 0;
    if (d.ackEotPiece) SendFixedReply(kAck);
}

void OneRound(const AstmDialogue& d, AstmLoopState& s) {
    YieldAndWait();
    PollOrders(d, s);
    if (!PortHasBytes()) return;

    ErasePaneArrays();
    YieldToEvents();
    Sleep(kReadWaitMs);
    QString& piece = Ctx().ReceiveBuffer.checked(0);
    piece = ReadText1(Form().comm());
    // Only a port closed in the yield reads nothing; that is no piece.
    if (piece.isEmpty()) return;

    if (QueryMark(d) == u"Q"_s)
        AnswerReply(d, s, piece);
    else
        TakePiece(d, s);
}

}  // namespace

void BuildFrame(AstmLoopState& s, const QString& recordText, FrameEnd end, SendStage next) {
    Ctx().SendBytes = FrameHexText(recordText, end).toLatin1();
    SendFixedReply(kFrameReply);
    s.Stage = next;
    Trace(recordText, s.StampText);
}

QString SexLetter(const QString& code) {
    if (code == u"1"_s) return u"M"_s;
    if (code == u"2"_s) return u"F"_s;
    return u"U"_s;
}

void RunAstmLoop(const AstmDialogue& dialogue) {
    AstmLoopState state;
    Form().LongRecord.clear();
    if (dialogue.clearsMarkOnEntry) QueryMark(dialogue).clear();
    while (Form().Connected) {
        // A step that fails is passed over; the polling goes on.
        PassOver([&] { OneRound(dialogue, state); });
    }
}

}  // namespace orbline
