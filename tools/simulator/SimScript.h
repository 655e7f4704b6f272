#pragma once
// A simulator script: one command a line, run in order against a line. The format is
// described in the README.

#include <chrono>
#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

#include "SimLine.h"

namespace orbline::sim {

enum class Command {
    Rate,
    Chunk,
    TimeLimit,
    Send,
    SendFile,
    Frames,
    Expect,
    ExpectAny,
    Pause,
    Noise,
    Drain,
    WaitOpen,
};

struct Step {
    Command command = Command::Send;
    int lineNumber = 0;
    Bytes bytes;                // send, expect, and the contents of a file
    std::vector<Bytes> frames;  // frames: the transmission cut into what is answered
    std::int64_t first = 0;     // rate, chunk size, milliseconds, noise count
    std::int64_t second = 0;    // chunk pause
};

struct Script {
    std::vector<Step> steps;
};

// Parses a script. Relative file names are taken from `folder`. Throws std::runtime_error
// with "name:line: reason" on a bad line or a missing file.
Script ParseScript(const std::string& text, const std::string& name, const std::string& folder);
Script LoadScript(const std::string& path);

// Cuts a transmission into the pieces an instrument sends one at a time and waits for an
// answer after: ENQ, each frame from STX up to its LF, EOT; outside frames, a line up to its
// CR or CR LF.
std::vector<Bytes> CutIntoFrames(const Bytes& transmission);

struct RunOptions {
    double timeScale = 1.0;                // for pauses and time limits, not for the line rate
    std::function<bool()> takeOpenedMark;  // for wait-open; empty when not on an own pty
    // Where to write the session whole, for a replay: "> " sent, "< " received, and the
    // rate, chunk and pause commands as they come.
    std::ostream* capture = nullptr;
};

// Runs the steps; false at the first that fails, with the reason written to `log`. Every byte
// sent and received is written there too, in the byte notation.
bool RunScript(const Script& script, SimLine& line, const RunOptions& options, std::ostream& log);

// Plays the script pass after pass, as an instrument that repeats its work on a line that
// stays open: its wait-open steps run in the first pass only, since the other end keeps the
// port open. `another` is asked before each later pass, with the passes done so far. Stops at
// the first pass that fails.
struct PassCount {
    int passed = 0;
    bool failed = false;
};
PassCount RunPasses(const Script& script, SimLine& line, const RunOptions& options,
                    const std::function<bool(int passed)>& another, std::ostream& log);

}  // namespace orbline::sim
