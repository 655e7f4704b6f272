#include "dialogues/Dialogue0990.h"

#include "common/AwCommText.h"
#include "common/FixedReply.h"
#include "common/Form.h"
#include "common/Logging.h"
#include "common/Numbers.h"
#include "common/Paths.h"
#include "common/RunContext.h"
#include "common/RuntimeError.h"
#include "dialogues/Classifiers.h"
#include "dialogues/CommCycle.h"
#include "dialogues/LinkRules.h"
#include "dialogues/PieceReaders.h"
#include "edits/MdlEdit009.h"

#include <cstdint>

using namespace Qt::StringLiterals;

namespace orbline {

namespace {

// The frame check keeps every frame it saw for the life of the process, across sessions: in the
// form's memory of the dialogue.
struct Memory0990 final : DialogueMemory {
    FrameHistory history;
};

FrameHistory& History() {
    return MemoryOf<Memory0990>().history;
}

struct Run0990 {
    QString folder = Ctx().AppPath + u"\\c990"_s;
    std::int16_t pieceCount = 0;
    std::int16_t eotFlag = 0;
    std::int16_t synCount = 0;

    void Store() {
        CountUp(pieceCount);
        if (pieceCount == 1) {
            // The frames of the transmission before go with the first frame of this one.
            if (FolderExists(folder)) DeleteFolderTree(folder);
            MakeFolder(folder);
            LogTextFull(u"データ受信中 -- "_s);
        }
        // BlockFileOut writes the receive buffer, which holds the frame.
        BlockFileOut(folder, u"c990"_s, FormatNumber(QString::number(pieceCount), u"0000"_s));
        SendFixedReply(FixedReply::FrameAccepted);
        if (eotFlag != 1) return;
        EditResult0990(pieceCount);
        pieceCount = 0;
    }

    void Idle() {
        pieceCount = 0;
        SendFixedReply(FixedReply::FrameAccepted);
        CountUp(synCount);
        if (synCount == 1) LogTextFull(u"[SYN]データ受信 -- "_s);
    }

    void Refuse(FrameCheck check) {
        SendFixedReply(FixedReply::FrameRefused);
        LogTextFull(u"受信チェックエラー CD=("_s +
                    QString::number(static_cast<std::int16_t>(check)) + u")"_s);
    }

    void Answer(const QString& frame) {
        const FrameCheck check = CheckFrame0990(frame, pieceCount, eotFlag, History());
        switch (check) {
            case FrameCheck::Good:
                Store();
                return;
            case FrameCheck::Idle:
                Idle();
                return;
            case FrameCheck::Rsd:
                SendFixedReply(FixedReply::FrameRefused);
                return;
            case FrameCheck::NoStx:
            case FrameCheck::NoEtx:
            case FrameCheck::UnknownKind:
            case FrameCheck::NoEnqFirst:
            case FrameCheck::NotDataInside:
            case FrameCheck::DataTooShort:
            case FrameCheck::ControlTooLong:
            case FrameCheck::NumberNotNumeric:
            case FrameCheck::NumberBelowZero:
            case FrameCheck::NumberAboveNine:
            case FrameCheck::FirstSumDigit:
            case FrameCheck::SecondSumDigit:
            case FrameCheck::UnknownDataKind:
            case FrameCheck::UnknownDataClass:
            case FrameCheck::IdleNotW:
            case FrameCheck::IdleNotSy:
                // Not stored, and the count stays: the meter may send the frame again.
                Refuse(check);
                return;
        }
    }
};

}  // namespace

void BeginCommLoop0990() {
    Run0990 run;
    JoinToEnd joiner{ctl::ETX};
    while (Form().Connected) {
        EndSessionIfPortGone();
        if (!NextCycleHasBytes()) continue;
        ErasePaneArrays();
        // No timer and no length: a frame ends when what was read so far ends with ETX.
        const std::optional<QString> frame = Join(joiner, ReadText1(Form().comm()));
        if (!frame) continue;
        Ctx().ReceiveBuffer.checked(0) = *frame;
        // A step that fails is passed over; the polling goes on.
        PassOver([&] { run.Answer(*frame); });
    }
}

}  // namespace orbline
