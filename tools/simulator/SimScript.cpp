#include "SimScript.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <ostream>
#include <sstream>
#include <stdexcept>
#include <thread>

namespace orbline::sim {
namespace {

constexpr std::uint8_t kStx = 0x02;
constexpr std::uint8_t kEot = 0x04;
constexpr std::uint8_t kEnq = 0x05;
constexpr std::uint8_t kAck = 0x06;
constexpr std::uint8_t kNak = 0x15;
constexpr std::uint8_t kCr = 0x0D;
constexpr std::uint8_t kLf = 0x0A;
constexpr int kFrameAttempts = 6;
constexpr std::int64_t kDefaultLimitMs = 5000;

struct CommandName {
    const char* word;
    Command command;
};

constexpr CommandName kCommands[] = {
    {"rate", Command::Rate},          {"chunk", Command::Chunk},
    {"timeout", Command::TimeLimit},  {"send", Command::Send},
    {"send-file", Command::SendFile}, {"frames", Command::Frames},
    {"expect", Command::Expect},      {"expect-any", Command::ExpectAny},
    {"pause", Command::Pause},        {"noise", Command::Noise},
    {"drain", Command::Drain},        {"wait-open", Command::WaitOpen},
};

Bytes ReadFileBytes(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) throw std::runtime_error("cannot read " + path);
    return Bytes(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

std::int64_t Number(const std::string& word, const std::string& where) {
    if (word.empty() || word.find_first_not_of("0123456789") != std::string::npos ||
        word.size() > 12) {
        throw std::runtime_error(where + "not a number: '" + word + "'");
    }
    return std::stoll(word);
}

std::vector<std::string> Words(const std::string& text) {
    std::istringstream in(text);
    std::vector<std::string> words;
    for (std::string word; in >> word;) words.push_back(word);
    return words;
}

// Long pieces are shown by their start and their length, so a log stays readable.
std::string Shown(const Bytes& bytes) {
    constexpr std::size_t kShown = 120;
    if (bytes.size() <= kShown) return Visible(bytes);
    return Visible(Bytes(bytes.begin(), bytes.begin() + kShown)) + "... (" +
           std::to_string(bytes.size()) + " bytes)";
}

std::chrono::milliseconds Scaled(std::int64_t ms, double scale) {
    return std::chrono::milliseconds(static_cast<std::int64_t>(static_cast<double>(ms) * scale));
}

}  // namespace

std::vector<Bytes> CutIntoFrames(const Bytes& transmission) {
    std::vector<Bytes> pieces;
    Bytes current;
    for (std::size_t i = 0; i < transmission.size(); ++i) {
        const std::uint8_t b = transmission[i];
        current.push_back(b);
        // Inside a frame a CR only separates records; the frame ends at its LF. Outside one, a
        // line of a CR-terminated instrument ends at its CR or CR LF.
        const bool inFrame = current.front() == kStx;
        const bool lone = current.size() == 1 && (b == kEnq || b == kEot);
        const bool lineEnd =
            b == kLf ||
            (!inFrame && b == kCr && (i + 1 == transmission.size() || transmission[i + 1] != kLf));
        if (lone || lineEnd) {
            pieces.push_back(current);
            current.clear();
        }
    }
    if (!current.empty()) pieces.push_back(current);
    return pieces;
}

Script ParseScript(const std::string& text, const std::string& name, const std::string& folder) {
    Script script;
    std::istringstream in(text);
    int lineNumber = 0;
    for (std::string line; std::getline(in, line);) {
        ++lineNumber;
        if (!line.empty() && line.back() == '\r') line.pop_back();
        const std::size_t begin = line.find_first_not_of(' ');
        if (begin == std::string::npos || line[begin] == '#') continue;
        const std::size_t wordEnd = line.find(' ', begin);
        const std::string word = line.substr(begin, wordEnd - begin);
        // Everything after the one blank that ends the command word, blanks included.
        const std::string rest =
            wordEnd == std::string::npos ? std::string() : line.substr(wordEnd + 1);
        const std::string where = name + ":" + std::to_string(lineNumber) + ": ";

        const auto* known = std::find_if(std::begin(kCommands), std::end(kCommands),
                                         [&](const CommandName& c) { return word == c.word; });
        if (known == std::end(kCommands)) {
            std::string message = where;
            message += "unknown command '" + word + "'";
            throw std::runtime_error(message);
        }
        Step step;
        step.command = known->command;
        step.lineNumber = lineNumber;
        const std::vector<std::string> args = Words(rest);
        const auto wantArgs = [&](std::size_t count) {
            if (args.size() != count) {
                std::string message = where;
                message += "'" + word + "' takes " + std::to_string(count) + " argument(s)";
                throw std::runtime_error(message);
            }
        };
        switch (step.command) {
            case Command::Rate:
            case Command::TimeLimit:
            case Command::Pause:
            case Command::Noise:
            case Command::Drain:
            case Command::WaitOpen:
                wantArgs(1);
                step.first = Number(args[0], where);
                break;
            case Command::Chunk:
                wantArgs(2);
                step.first = Number(args[0], where);
                step.second = Number(args[1], where);
                break;
            case Command::Send:
            case Command::Expect: {
                std::string error;
                const auto bytes = ParseBytes(rest, error);
                if (!bytes) throw std::runtime_error(where + error);
                if (bytes->empty()) throw std::runtime_error(where + "no bytes given");
                step.bytes = *bytes;
                break;
            }
            case Command::Frames:
                // Inline bytes in the notation, or a file.
                if (!rest.empty() && rest.front() == '<') {
                    std::string error;
                    const auto bytes = ParseBytes(rest, error);
                    if (!bytes) throw std::runtime_error(where + error);
                    step.bytes = *bytes;
                    step.frames = CutIntoFrames(step.bytes);
                    break;
                }
                [[fallthrough]];
            case Command::SendFile: {
                wantArgs(1);
                const std::string path = args[0].front() == '/' ? args[0] : folder + "/" + args[0];
                try {
                    step.bytes = ReadFileBytes(path);
                } catch (const std::runtime_error& e) {
                    throw std::runtime_error(where + e.what());
                }
                if (step.command == Command::Frames) step.frames = CutIntoFrames(step.bytes);
                break;
            }
            case Command::ExpectAny:
                wantArgs(0);
                break;
        }
        script.steps.push_back(std::move(step));
    }
    return script;
}

Script LoadScript(const std::string& path) {
    const Bytes bytes = ReadFileBytes(path);
    const std::size_t slash = path.find_last_of('/');
    const std::string folder = slash == std::string::npos ? "." : path.substr(0, slash);
    return ParseScript(std::string(bytes.begin(), bytes.end()), path, folder);
}

bool RunScript(const Script& script, SimLine& line, const RunOptions& options, std::ostream& log) {
    const double scale = options.timeScale;
    std::chrono::milliseconds limit = Scaled(kDefaultLimitMs, scale);
    std::uint32_t seed = 20261122u;
    for (const Step& step : script.steps) {
        const std::string at = "line " + std::to_string(step.lineNumber) + ": ";
        const auto fail = [&](const std::string& reason) {
            log << "! " << at << reason << '\n';
            return false;
        };
        const auto captured = [&](const char* mark, const Bytes& bytes) {
            if (options.capture != nullptr) *options.capture << mark << Visible(bytes) << '\n';
        };
        const auto sendLogged = [&](const Bytes& bytes) {
            log << "> " << Shown(bytes) << '\n';
            captured("> ", bytes);
            return line.send(bytes);
        };
        const auto receivedLogged = [&](const Bytes& bytes, bool whole) {
            log << "< " << (whole ? Visible(bytes) : Shown(bytes)) << '\n';
            captured("< ", bytes);
        };
        switch (step.command) {
            case Command::Rate:
                if (options.capture != nullptr) *options.capture << "rate " << step.first << '\n';
                line.setRate(static_cast<std::uint32_t>(step.first));
                break;
            case Command::Chunk:
                if (options.capture != nullptr)
                    *options.capture << "chunk " << step.first << ' ' << step.second << '\n';
                line.setChunks(static_cast<std::size_t>(step.first), Scaled(step.second, scale));
                break;
            case Command::TimeLimit:
                limit = Scaled(step.first, scale);
                break;
            case Command::Send:
            case Command::SendFile:
                if (!sendLogged(step.bytes)) return fail(line.error());
                break;
            case Command::Noise:
                if (!sendLogged(Noise(static_cast<std::size_t>(step.first), seed)))
                    return fail(line.error());
                break;
            case Command::Frames:
                for (const Bytes& frame : step.frames) {
                    const bool last = frame.size() == 1 && frame[0] == kEot;
                    int attempt = 0;
                    for (;;) {
                        if (!sendLogged(frame)) return fail(line.error());
                        if (last) break;
                        const Bytes reply = line.receive(1, limit);
                        receivedLogged(reply, true);
                        if (reply.empty()) return fail("no answer to the frame in time");
                        if (reply[0] == kAck) break;
                        if (reply[0] != kNak) return fail("answer is neither <ACK> nor <NAK>");
                        if (++attempt == kFrameAttempts) return fail("frame refused six times");
                    }
                }
                break;
            case Command::Expect: {
                const Bytes got = line.receive(step.bytes.size(), limit);
                receivedLogged(got, false);
                if (got != step.bytes) return fail("expected " + Visible(step.bytes));
                break;
            }
            case Command::ExpectAny: {
                const Bytes got = line.receive(1, limit);
                receivedLogged(got, false);
                if (got.empty()) return fail("nothing arrived in time");
                break;
            }
            case Command::Pause:
                if (options.capture != nullptr) *options.capture << "pause " << step.first << '\n';
                std::this_thread::sleep_for(Scaled(step.first, scale));
                break;
            case Command::Drain: {
                const Bytes got = line.drain(Scaled(step.first, scale));
                receivedLogged(got, false);
                break;
            }
            case Command::WaitOpen: {
                if (!options.takeOpenedMark)
                    return fail("wait-open needs a pseudo-terminal of the simulator's own (--pty)");
                const auto deadline = std::chrono::steady_clock::now() + Scaled(step.first, scale);
                while (!options.takeOpenedMark()) {
                    if (std::chrono::steady_clock::now() >= deadline)
                        return fail("no one opened the port in time");
                    std::this_thread::sleep_for(std::chrono::milliseconds(20));
                }
                // The opener flushes its input right after it sets the line format; let it
                // finish first.
                std::this_thread::sleep_for(std::chrono::milliseconds(200));
                log << "= port opened\n";
                break;
            }
        }
        log.flush();
    }
    return true;
}

PassCount RunPasses(const Script& script, SimLine& line, const RunOptions& options,
                    const std::function<bool(int passed)>& another, std::ostream& log) {
    Script later = script;
    std::erase_if(later.steps, [](const Step& step) { return step.command == Command::WaitOpen; });
    PassCount count;
    while (count.passed == 0 || another(count.passed)) {
        if (!RunScript(count.passed == 0 ? script : later, line, options, log)) {
            count.failed = true;
            break;
        }
        ++count.passed;
    }
    return count;
}

}  // namespace orbline::sim
