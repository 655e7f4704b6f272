#include "dialogues/ChemistryLoop.h"

#include "common/Clock.h"
#include "common/Form.h"
#include "common/Logging.h"
#include "common/Numbers.h"
#include "common/RunContext.h"
#include "common/RuntimeError.h"
#include "dialogues/CommCycle.h"
#include "dialogues/PieceReaders.h"
#include "dialogues/ReadWindow.h"

using namespace Qt::StringLiterals;

namespace orbline {

namespace {

// The whole framing: the read happens this long after the first byte was seen.
constexpr int kFrameWaitMs = 1000;

// The variables of one run of the loop, at their start values.
struct ChemistryRun {
    explicit ChemistryRun(const ChemistryDialogue& dialogue) : d(dialogue) {
        window.waitMs = ScaledMilliseconds(kFrameWaitMs);
    }

    const ChemistryDialogue& d;
    ReadWindow window;
    SecondByteFrames classifier;
    // Element 0 holds an inquiry, 1 to 100 the data frames of a message. A message's frames are
    // never cleared: the edit reads only as many as the count says.
    ChemistryFrames frames{kChemistryFrameSlots};
    std::int16_t frameCount = 0;
    // Only the first poll of a run reaches the log.
    std::int16_t pollCount = 0;

    void TakeData(const QString& frame) {
        CountUp(frameCount);
        LogDetail(u"詳細ログ(002) -- "_s, frame);
        // Past element 100 the frame is answered and lost; the edit then fails at the bound.
        frames.put(frameCount, frame);
        if (d.slogsDataFrames)
            SlogOut(frame, InstrumentCodeNumber(), NowText(u"YYYYMMDDHHMMSS"_s), 1);
        switch (d.dataFrameLog) {
            case DataFrameLog::FirstOfMessage:
                if (frameCount == 1) LogTextFull(u"データ受信中 -- "_s);
                break;
            case DataFrameLog::EachWithCount:
                LogTextFull(u"データ受信 -- "_s + QString::number(frameCount) + u" "_s);
                break;
        }
        SendFixedReply(FixedReply::Positive);
        if (!classifier.lastFrame) return;
        d.edit(frames, frameCount);
        frameCount = 0;
        classifier.lastFrame = false;
    }

    void Take(const QString& read) {
        const KindedFrame frame = ClassifyFrame(classifier, read);
        const auto code = static_cast<std::int16_t>(frame.kind);
        LogDetail(u"詳細ログ(001) -- "_s, read + u":"_s + QString::number(code));
        switch (frame.kind) {
            case FrameKind::Data:
                TakeData(read);
                return;
            case FrameKind::Poll:
                SendFixedReply(FixedReply::Positive);
                if (pollCount == 0) LogTextFull(u"ANY受信 "_s);
                CountUp(pollCount);
                return;
            case FrameKind::Inquiry:
                if (d.inquiry) {
                    d.inquiry(read, frames);
                    return;
                }
                SendFixedReply(FixedReply::Positive);
                LogTextFull(u"オーダデータ受信(SPE) (未対応)-- "_s);
                return;
            case FrameKind::NoStx:
                // Never stored.
                SendFixedReply(d.noStxReply);
                LogTextFull(u"受信チェックエラー CD=("_s + QString::number(code) + u") "_s);
                return;
        }
    }
};

}  // namespace

void RunChemistryLoop(const ChemistryDialogue& dialogue) {
    ChemistryRun run(dialogue);
    while (Form().Connected) {
        // A step that fails is passed over; the polling goes on.
        PassOver([&] {
            const std::optional<QString> read = NextWindowedRead(run.window);
            if (!read) return;
            Ctx().ReceiveBuffer.checked(0) = *read;
            run.Take(*read);
        });
    }
}

}  // namespace orbline
