#include "dialogues/AstmLoop.h"

#include "common/AwCommText.h"
#include "common/Clock.h"
#include "common/Diagnostics.h"
#include "common/EventYield.h"
#include "common/FixedReply.h"
#include "common/Logging.h"
#include "common/Numbers.h"
#include "common/Paths.h"
#include "common/RuntimeError.h"
#include "dialogues/CommCycle.h"
#include "dialogues/PieceReaders.h"
#include "dialogues/ReadWindow.h"
#include "edits/PieceFiles.h"
#include "serial/AwComm.h"

#include <filesystem>
#include <vector>

using namespace Qt::StringLiterals;

namespace orbline {

namespace {

// The idle round of every dialogue.
constexpr int kRoundMs = 10;

// The name, or name-2, name-3, ... where a folder of that name is there already.
QString FreeFolderName(const QString& name) {
    QString free = name;
    for (int n = 2; FolderExists(free) && n < 1000; ++n) free = name + u"-"_s + QString::number(n);
    return free;
}

// A code that is no 16-bit number fails this step alone; the dialogue goes on.
void Trace(const QString& text, const QString& stamp) {
    PassOver([&] { TraceOut(text, InstrumentCodeNumber(), stamp, u"1"_s); });
}

// The variables of one run of the loop, at their start values.
struct AstmRun {
    explicit AstmRun(const AstmDialogue& dialogue)
        : d(dialogue), pollCounts(dialogue.pollers.size(), 0) {
        plan.answering = dialogue.memory().answering;
        plan.recordStage = dialogue.memory().recordStage;
        window.waitMs = ScaledMilliseconds(dialogue.readWaitMs);
    }

    const AstmDialogue& d;
    std::int16_t pieceCount = 0;
    std::int16_t eotFlag = 0;
    QString stamp;
    AstmAnswerState plan;
    ReadWindow window;
    JoinToCrLf joiner;
    std::vector<std::int16_t> pollCounts;

    void Carry(const PlanActions& actions) {
        for (const PlanAction& action : actions)
            std::visit([this](const auto& a) { Do(a); }, action);
    }
    void Do(const SendRecord& a) {
        if (a.hexMode) Form().comboModeW.position = 0;
        Ctx().SendBytes = FrameHexText(a.text, a.end).toLatin1();
        SendFixedReply(FixedReply::Prepared);
        Trace(a.text, stamp);
    }
    void Do(const SendControl& a) {
        switch (a.control) {
            case Control::Enq:
                SendFixedReply(FixedReply::Enq);
                return;
            case Control::Eot:
                SendFixedReply(FixedReply::Eot);
                return;
        }
    }
    void Do(const LogPair& a) { LogEvent(a.console, a.file, a.form); }
    void Do(const RunLookup&) {
        const OrderAnswer answer = d.lookup(plan.answer);
        Carry(d.plan.lookup(plan, answer));
    }
    void Do(const TraceText& a) { Trace(a.text, stamp); }
    void Do(const DetailLine& a) { LogDetail(a.text, a.value); }
    void Detail(const QString& text, const QString& value) const {
        if (d.logsDetail) LogDetail(text, value);
    }

    // The instrument sends: every piece is saved, and acknowledged but for the EOT piece.
    void TakePiece(const QString& piece) {
        const PieceKind kind = d.checkReceive(piece);
        // The receive classifiers never refuse a piece: its code is always 0.
        Detail(u"詳細ログ(001) -- "_s, piece + u":0"_s);
        Detail(u"詳細ログ(002) -- "_s, piece);
        switch (kind) {
            case PieceKind::Enq:
                // An ENQ inside a transmission: the one before never ended, and its pieces must
                // not become part of this one's result.
                if (pieceCount > 0) SetAsideIncomplete();
                eotFlag = 0;
                break;
            case PieceKind::Eot:
                eotFlag = 1;
                break;
            case PieceKind::Data:
                break;
        }
        CountUp(pieceCount);
        const QString folder = PieceFolder(d.folder.toString());
        if (pieceCount == 1) {
            // The pieces of the message before go with the first piece of this one.
            if (FolderExists(folder)) DeleteFolderTree(folder);
            MakeFolder(folder);
            LogEvent(u"データ受信中 --  "_s, u"データ受信中 -- "_s, LogForm::Short);
            stamp = NowText(u"YYYYMMDDHHMMSS"_s);
        }
        BlockFileOut(folder, d.prefix.toString(),
                     FormatNumber(QString::number(pieceCount), u"0000"_s));
        if (eotFlag != 1) {
            SendFixedReply(FixedReply::Ack);
            return;
        }
        if (d.clearsEotBeforeEdit) eotFlag = 0;
        if (d.edit(pieceCount)) {
            YieldToEvents();
            Sleep(kRoundMs);
            Carry(BeginAnswer(plan));
        }
        pieceCount = 0;
        if (d.ackEotPiece) SendFixedReply(FixedReply::Ack);
    }

    // The pieces of a transmission that ended without EOT go to a folder of their own beside
    // the work folder, where no edit reads them and no new transmission erases them.
    void SetAsideIncomplete() {
        const QString folder = PieceFolder(d.folder.toString());
        const QString parent = folder + u"_incomplete"_s;
        if (!FolderExists(parent)) MakeFolder(parent);
        const QString aside = FreeFolderName(parent + u"\\"_s + stamp);
        std::error_code error;
        std::filesystem::rename(FsPath(folder), FsPath(aside), error);
        LogEvent(u"受信未完了(退避) --  "_s, u"受信未完了(退避) -- "_s, LogForm::Short);
        // Pieces that cannot be moved go with the new transmission's folder: lost, but never
        // read into its result.
        Diagnose(u"a transmission of "_s + QString::number(pieceCount) +
                 u" pieces ended without EOT before a new ENQ; its pieces "_s +
                 (error ? u"could not be kept ("_s + QString::fromStdString(error.message()) +
                              u") and are dropped"_s
                        : u"are kept in "_s + NativePath(aside)));
        pieceCount = 0;
    }

    // The host answers: every piece is the reply to its last frame.
    void AnswerPiece(const QString& piece) {
        const ReplyClass reply = d.checkReply(piece, plan.stage);
        Trace(d.replyTraceMark.toString() + piece, stamp);
        Detail(u"詳細ログ(003) -- "_s, piece);
        Carry(d.plan.reply(plan, reply));
    }

    void OneRound() {
        std::optional<QString> read =
            NextWindowedRead(window, [this] { PollOrders(d.pollers, pollCounts); });
        if (read && d.framing == Framing::JoinedToCrLf) read = Join(joiner, *read);
        if (!read) return;
        QString& piece = Ctx().ReceiveBuffer.checked(0);
        piece = std::move(*read);
        if (plan.answering)
            AnswerPiece(piece);
        else
            TakePiece(piece);
    }
};

}  // namespace

void RunAstmLoop(const AstmDialogue& dialogue) {
    AstmMemory& memory = dialogue.memory();
    if (dialogue.clearsMarkOnEntry) memory.answering = false;
    AstmRun run(dialogue);
    while (Form().Connected) {
        // A step that fails is passed over; the polling goes on.
        PassOver([&] { run.OneRound(); });
        dialogue.memory().answering = run.plan.answering;
        dialogue.memory().recordStage = run.plan.recordStage;
    }
}

}  // namespace orbline
