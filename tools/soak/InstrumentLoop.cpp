#include "InstrumentLoop.h"

#include "common/Clock.h"

#include <unistd.h>

#include <cstdio>
#include <sstream>
#include <stdexcept>

namespace orbline::soak {

InstrumentLoop::InstrumentLoop(const std::string& scriptPath, const std::string& linkPath)
    : script_(sim::LoadScript(scriptPath)), linkPath_(linkPath), line_(pty_.masterFd()) {
    std::remove(linkPath_.c_str());
    if (symlink(pty_.slavePath().c_str(), linkPath_.c_str()) != 0)
        throw std::runtime_error("cannot make the link " + linkPath_);
}

InstrumentLoop::~InstrumentLoop() {
    stop();
    join();
    std::remove(linkPath_.c_str());
}

void InstrumentLoop::start() {
    thread_ = std::thread([this] {
        sim::RunOptions options;
        options.timeScale = TimeScale();
        options.takeOpenedMark = [this] { return pty_.takeOpenedMark(); };
        // Only the log of the pass under way is kept: ten minutes of them would be megabytes.
        std::ostringstream log;
        const sim::PassCount count = sim::RunPasses(
            script_, line_, options,
            [&](int passed) {
                passes_ = passed;
                log.str(std::string());
                return !stop_;
            },
            log);
        passes_ = count.passed;
        if (count.failed) failedLog_ = log.str();
        failed_ = count.failed;
    });
}

void InstrumentLoop::join() {
    if (thread_.joinable()) thread_.join();
}

}  // namespace orbline::soak
