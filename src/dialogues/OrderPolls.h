#pragma once
// The look into an order folder that a dialogue makes every so many rounds of its loop, when
// the setting OrderPT is "4". A dialogue may poll several folders, each with its own count.

#include "common/RunContext.h"

#include <QString>

#include <cstdint>
#include <span>

namespace orbline {

struct OrderPoller {
    QString RunContext::*folder;  // OrderPath or OrderPath2
    std::int16_t every;           // rounds between two looks
    void (*take)();               // the order intake of the folder
    bool needsFolder = false;     // counts only while the folder exists
};

// Counts one round; true when the poller's turn has come, its count then going back to 0.
bool CountPollRound(std::int16_t& count, std::int16_t every);

// One round of the loop for each poller; counts has one element for each.
void PollOrders(std::span<const OrderPoller> pollers, std::span<std::int16_t> counts);

}  // namespace orbline
