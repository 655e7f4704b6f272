#pragma once
// A pseudo-terminal pair: the master is the instrument's end, the slave's path is handed to
// the code under test, which opens it as its serial port.

#include <chrono>
#include <string>

namespace orbline::sim {

class PtyPair {
  public:
    // Throws std::runtime_error when the system has no pseudo-terminal to give.
    PtyPair();
    ~PtyPair();
    PtyPair(const PtyPair&) = delete;
    PtyPair& operator=(const PtyPair&) = delete;

    int masterFd() const { return master_; }
    const std::string& slavePath() const { return slavePath_; }

    // True once the code under test has opened the port and set its line format (which
    // clears a mark this pair leaves in the tty's settings). The mark is then set again, so
    // that the next open can be seen as well.
    bool takeOpenedMark();

    // Waits until the other end has read everything sent to it, at most `limit`. Closing the
    // master hangs the port up, and a hang-up throws away what was not yet read.
    bool waitUntilTaken(std::chrono::milliseconds limit) const;

  private:
    int master_ = -1;
    // Held open, in raw mode, so that the master never sees a hang-up between two opens of the
    // code under test and nothing is echoed before it sets its own line format.
    int slaveKeeper_ = -1;
    std::string slavePath_;
};

}  // namespace orbline::sim
