#include "dialogues/OrderPolls.h"

#include "common/Numbers.h"
#include "common/Paths.h"
#include "common/ResultFile.h"
#include "common/Text.h"

using namespace Qt::StringLiterals;

namespace orbline {

bool CountPollRound(std::int16_t& count, std::int16_t every) {
    CountUp(count);
    if (count < every) return false;
    count = 0;
    return true;
}

void PollOrders(std::span<const OrderPoller> pollers, std::span<std::int16_t> counts) {
    const RunContext& c = Ctx();
    if (c.OrderPT != u"4"_s) return;
    for (std::size_t i = 0; i < pollers.size() && i < counts.size(); ++i) {
        const OrderPoller& poller = pollers[i];
        const QString& folder = c.*poller.folder;
        if (Trim(folder).isEmpty()) continue;
        if (poller.needsFolder && !FolderExists(folder)) continue;
        if (!CountPollRound(counts[i], poller.every)) continue;
        if (HasFiles(1, folder) == 1) poller.take();
    }
}

}  // namespace orbline
