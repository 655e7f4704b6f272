#include "app/ServiceWatchdog.h"

#include "common/ServiceNotify.h"

#include <QCoreApplication>
#include <QTimer>

#include <algorithm>
#include <chrono>

namespace orbline {

void StartServiceWatchdog() {
    const auto timeout =
        std::chrono::duration_cast<std::chrono::milliseconds>(ServiceWatchdogTimeout());
    if (timeout.count() <= 0 || QCoreApplication::instance() == nullptr) return;
    // Half the time, so that one late round does not yet count as a hang. Never a thread of
    // its own: that would keep a hung loop looking alive.
    auto* timer = new QTimer(QCoreApplication::instance());
    timer->setInterval(std::max<std::chrono::milliseconds::rep>(1, timeout.count() / 2));
    QObject::connect(timer, &QTimer::timeout, [] { NotifyService(ServiceState::Alive); });
    timer->start();
}

}  // namespace orbline
