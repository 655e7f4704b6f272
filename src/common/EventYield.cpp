#include "common/EventYield.h"

#include <QCoreApplication>

namespace orbline {

void YieldToEvents() {
    // Without an application object (tools, unit tests) there is no event queue to run.
    QCoreApplication::processEvents();
}

}  // namespace orbline
