#include "dialogues/CommCycle.h"

#include "common/Clock.h"
#include "common/EventYield.h"
#include "common/Form.h"
#include "serial/AwComm.h"

namespace orbline {

bool NextCycleHasBytes() {
    YieldToEvents();
    Sleep(10);
    Form_TesvaneMain& f = Form();
    // A stop that ran in the yield has closed the port; the loop notices it through Connected.
    if (!f.Connected) return false;
    return f.comm().ReadBufferDataSize() >= 1;
}

}  // namespace orbline
