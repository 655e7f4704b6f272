#include "dialogues/CommCycle.h"

#include "common/AwCommText.h"
#include "common/Clock.h"
#include "common/Diagnostics.h"
#include "common/EventYield.h"
#include "common/Form.h"
#include "common/Logging.h"
#include "serial/AwComm.h"
#include "serial/PortError.h"

using namespace Qt::StringLiterals;

namespace orbline {

namespace {

// The idle round of every dialogue.
constexpr int kRoundMs = 10;

}  // namespace

bool NextCycleHasBytes() {
    YieldToEvents();
    Sleep(kRoundMs);
    Form_TesvaneMain& f = Form();
    // A stop that ran in the yield has closed the port; the loop notices it through Connected.
    if (!f.Connected) return false;
    return f.comm().ReadBufferDataSize() >= 1;
}

void EndSessionIfPortGone() {
    Form_TesvaneMain& f = Form();
    // A stop or a close has closed the port on purpose; that is no loss.
    if (!f.Connected || !f.Comm) return;
    AwComm& comm = *f.Comm;
    const PortFailure gone = comm.Gone();
    // What came before the loss is read first, as any bytes are.
    if (gone.kind == PortError::None || comm.ReadBufferDataSize() >= 1) return;
    LogEvent(u"回線切断 --   "_s, u"回線切断 -- "_s, LogForm::Short);
    DiagnosePort(comm, u"went away while open"_s, gone);
    // No error was raised: the text of the abnormal end is empty, as after a failed open.
    ErrorExit(QString());
}

std::optional<QString> NextWindowedRead(ReadWindow& window, const std::function<void()>& whenIdle) {
    YieldToEvents();
    SleepScaled(SleepBeforeNextLook(window, MonotonicMs(), ScaledMilliseconds(kRoundMs)));
    if (window.phase == WindowPhase::Idle && whenIdle) whenIdle();
    Form_TesvaneMain& f = Form();
    // A stop that ran in the yield has closed the port.
    if (!f.Connected) return std::nullopt;
    if (window.phase == WindowPhase::Idle) EndSessionIfPortGone();
    QString bytes;
    if (f.comm().ReadBufferDataSize() >= 1) {
        if (window.phase == WindowPhase::Idle) ErasePaneArrays();
        bytes = ReadText1(f.comm());
    }
    return TakeRead(window, MonotonicMs(), bytes);
}

}  // namespace orbline
