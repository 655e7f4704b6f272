#include "dialogues/Dialogue0855.h"

#include "common/AwCommText.h"
#include "common/Clock.h"
#include "common/EventYield.h"
#include "common/Form.h"
#include "common/RunContext.h"
#include "common/RuntimeError.h"
#include "dialogues/CommCycle.h"
#include "dialogues/PieceReaders.h"
#include "edits/MdlEdit008.h"

#include <cstdint>

namespace orbline {

namespace {

// The receive buffer holds the report's frames from element 0, as the edit reads them.
void EditReport(const QStringList& frames) {
    RunContext& c = Ctx();
    for (qsizetype i = 0; i < frames.size(); ++i) c.ReceiveBuffer.checked(i) = frames.at(i);
    EditResult0855(static_cast<std::int16_t>(frames.size() - 1));
}

}  // namespace

void BeginCommLoop0855() {
    EtbChain chain;
    while (Form().Connected) {
        EndSessionIfPortGone();
        if (!NextCycleHasBytes()) continue;
        ErasePaneArrays();
        const QString read = ReadText1(Form().comm());
        // The link's own pace: the rest of a frame gathers while it waits.
        YieldToEvents();
        Sleep(100);
        const std::optional<QStringList> report = Join(chain, read);
        if (!report) continue;
        // A step that fails is passed over; the loop listens on.
        PassOver([&] { EditReport(*report); });
    }
}

}  // namespace orbline
