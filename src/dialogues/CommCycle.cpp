#include "dialogues/CommCycle.h"

#include "common/Clock.h"
#include "common/Diagnostics.h"
#include "common/EventYield.h"
#include "common/Form.h"
#include "common/Logging.h"
#include "serial/AwComm.h"
#include "serial/PortError.h"

using namespace Qt::StringLiterals;

namespace orbline {

bool NextCycleHasBytes() {
    YieldToEvents();
    Sleep(10);
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

}  // namespace orbline
