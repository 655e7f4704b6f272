// kv_simulator: plays an instrument's side of the line from a script.
//
//   kv_simulator [--device PATH | --pty LINK] [--rate BAUD] [--record FILE] [--capture FILE]
//                [--passes N] SCRIPT
//
// --capture writes the session in the byte notation, whole, for kv_replay.
// --device opens a serial port (or one end of a socat pair) raw at the rate; --pty makes a
// pseudo-terminal pair and points LINK at the end the code under test opens; --passes plays
// the script N times over (wait-open in the first pass only). Exit status:
// 0 when every step passed, 1 when a step failed, 2 for a bad command line or script.

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

#include "PtyPair.h"
#include "SimLine.h"
#include "SimScript.h"
#include "common/Clock.h"
#include "serial/LineSettings_posix.h"

namespace {

constexpr const char* kUsage =
    "usage: kv_simulator [--device PATH | --pty LINK] [--rate BAUD] [--record FILE]\n"
    "                    [--capture FILE] [--passes N] SCRIPT\n";

struct Options {
    std::string device;
    std::string ptyLink;
    std::string record;
    std::string capture;
    std::string script;
    std::uint32_t rate = 9600;
    int passes = 1;
};

// Digits only, at most nine of them.
std::optional<std::uint32_t> Count(const std::string& value) {
    if (value.empty() || value.size() > 9 ||
        value.find_first_not_of("0123456789") != std::string::npos) {
        return std::nullopt;
    }
    return static_cast<std::uint32_t>(std::stoul(value));
}

std::optional<Options> ParseArguments(int argc, char** argv) {
    Options options;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        const bool hasValue = i + 1 < argc;
        if (arg == "--device" && hasValue) {
            options.device = argv[++i];
        } else if (arg == "--pty" && hasValue) {
            options.ptyLink = argv[++i];
        } else if (arg == "--record" && hasValue) {
            options.record = argv[++i];
        } else if (arg == "--capture" && hasValue) {
            options.capture = argv[++i];
        } else if (arg == "--rate" && hasValue) {
            const std::optional<std::uint32_t> rate = Count(argv[++i]);
            if (!rate) return std::nullopt;
            options.rate = *rate;
        } else if (arg == "--passes" && hasValue) {
            const std::optional<std::uint32_t> passes = Count(argv[++i]);
            if (!passes || *passes == 0) return std::nullopt;
            options.passes = static_cast<int>(*passes);
        } else if (!arg.empty() && arg[0] != '-' && options.script.empty()) {
            options.script = arg;
        } else {
            return std::nullopt;
        }
    }
    if (options.script.empty() || options.device.empty() == options.ptyLink.empty())
        return std::nullopt;
    return options;
}

int OpenDevice(const std::string& path, std::uint32_t rate) {
    const int fd = open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) throw std::runtime_error("cannot open " + path + ": " + std::strerror(errno));
    orbline::LineFormat format;
    format.BaudRate = rate;
    if (!orbline::ApplyLineFormat(fd, format)) {
        close(fd);
        throw std::runtime_error("cannot set " + path + " to " + std::to_string(rate) + " 8N1");
    }
    return fd;
}

}  // namespace

int main(int argc, char** argv) {
    const std::optional<Options> options = ParseArguments(argc, argv);
    if (!options) {
        std::cerr << kUsage;
        return 2;
    }
    using namespace orbline::sim;
    Script script;
    std::unique_ptr<PtyPair> pty;
    int fd = -1;
    try {
        script = LoadScript(options->script);
        if (!options->ptyLink.empty()) {
            pty = std::make_unique<PtyPair>();
            std::remove(options->ptyLink.c_str());
            if (symlink(pty->slavePath().c_str(), options->ptyLink.c_str()) != 0)
                throw std::runtime_error("cannot make the link " + options->ptyLink);
            std::cout << "pty " << pty->slavePath() << " as " << options->ptyLink << std::endl;
            fd = pty->masterFd();
        } else {
            fd = OpenDevice(options->device, options->rate);
        }
    } catch (const std::exception& e) {
        std::cerr << "kv_simulator: " << e.what() << '\n';
        return 2;
    }

    SimLine line(fd);
    line.setRate(options->rate);
    RunOptions run;
    run.timeScale = orbline::TimeScale();
    if (pty) run.takeOpenedMark = [&pty] { return pty->takeOpenedMark(); };
    std::ofstream capture;
    if (!options->capture.empty()) {
        capture.open(options->capture, std::ios::binary);
        if (!capture) {
            std::cerr << "kv_simulator: cannot write " << options->capture << '\n';
            return 2;
        }
        run.capture = &capture;
    }
    const PassCount count = RunPasses(
        script, line, run, [&](int passed) { return passed < options->passes; }, std::cout);
    const bool passed = !count.failed;
    if (options->passes > 1) std::cout << count.passed << " passes" << std::endl;

    if (!options->record.empty()) {
        std::ofstream out(options->record, std::ios::binary);
        out.write(reinterpret_cast<const char*>(line.record().data()),
                  static_cast<std::streamsize>(line.record().size()));
    }
    // Everything sent reaches the other end before the line goes away.
    constexpr std::chrono::seconds kTakeLimit{5};
    if (pty) {
        if (!pty->waitUntilTaken(kTakeLimit)) std::cout << "! the other end left bytes unread\n";
        std::remove(options->ptyLink.c_str());
    } else {
        tcdrain(fd);
        close(fd);
    }
    std::cout << (passed ? "passed" : "failed") << std::endl;
    return passed ? 0 : 1;
}
