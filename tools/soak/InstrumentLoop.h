#pragma once
// One simulated instrument of the soak: a pseudo-terminal pair whose other end the process
// opens, and a thread that plays the instrument's script on it pass after pass until stopped.
// The line stays open after the last pass, so that the process is closed by its parent first.

#include "PtyPair.h"
#include "SimLine.h"
#include "SimScript.h"

#include <atomic>
#include <string>
#include <thread>

namespace orbline::soak {

class InstrumentLoop {
  public:
    // Throws std::runtime_error when the script cannot be read or the pair cannot be made.
    InstrumentLoop(const std::string& scriptPath, const std::string& linkPath);
    ~InstrumentLoop();
    InstrumentLoop(const InstrumentLoop&) = delete;
    InstrumentLoop& operator=(const InstrumentLoop&) = delete;

    void start();
    // The pass under way is played to its end; no other begins.
    void stop() { stop_ = true; }
    void join();

    // Passes played to their end.
    int passes() const { return passes_; }
    bool failed() const { return failed_; }
    // What the failed pass sent and received, and why it failed (after join).
    const std::string& failedPassLog() const { return failedLog_; }

  private:
    sim::Script script_;
    std::string linkPath_;
    sim::PtyPair pty_;
    sim::SimLine line_;
    std::thread thread_;
    std::atomic<bool> stop_ = false;
    std::atomic<int> passes_ = 0;
    std::atomic<bool> failed_ = false;
    std::string failedLog_;
};

}  // namespace orbline::soak
