#include <gtest/gtest.h>

#include <QProcess>
#include <QTemporaryDir>
#include <chrono>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <thread>
#include <utility>

#include "SimScript.h"
#include "serial/AwComm.h"
#include "support/AstmInstrument.h"

namespace orbline::sim {
namespace {

using namespace std::chrono_literals;
using test::Notation;

// The checksum of <SUM> is left to the scenarios: every frame they send is built with it.
TEST(ByteNotation, NamesHexAndTheirErrors) {
    EXPECT_EQ(Notation("<x00><xff><LT>"), (Bytes{0x00, 0xFF, '<'}));
    EXPECT_EQ(Visible(Bytes{0x02, 'A', '<', 0xB1}), "<STX>A<LT><xB1>");

    std::string error;
    EXPECT_FALSE(ParseBytes("<BELL>", error));
    EXPECT_EQ(error, "unknown byte name <BELL>");
    EXPECT_FALSE(ParseBytes("A<SUM>", error));
    EXPECT_FALSE(ParseBytes("<STX", error));
}

TEST(ByteNotation, NoiseHoldsNoControlByteAndChangesFromCallToCall) {
    std::uint32_t seed = 1;
    const Bytes first = Noise(500, seed);
    const Bytes second = Noise(500, seed);
    EXPECT_NE(first, second);
    for (const std::uint8_t b : first) EXPECT_GE(b, 0x20);
}

TEST(SimScript, BadLinesAreReportedWithTheirNumber) {
    const auto message = [](const std::string& text) {
        try {
            ParseScript(text, "s.sim", ".");
        } catch (const std::runtime_error& e) {
            return std::string(e.what());
        }
        return std::string("accepted");
    };
    EXPECT_EQ(message("# fine\nrate 9600\nsned <ENQ>\n"), "s.sim:3: unknown command 'sned'");
    EXPECT_EQ(message("pause soon\n"), "s.sim:1: not a number: 'soon'");
    EXPECT_EQ(message("chunk 4\n"), "s.sim:1: 'chunk' takes 2 argument(s)");
    EXPECT_EQ(message("send-file nowhere.bin\n"), "s.sim:1: cannot read ./nowhere.bin");
    EXPECT_EQ(message("send\n"), "s.sim:1: no bytes given");
    EXPECT_EQ(message("  send <ENQ>\r\n\nexpect <ACK>\n"), "accepted");
}

// The host's side of a capture: ACK every piece except one NAK, which the simulator answers by
// sending that frame again.
TEST(SimScript, PlaysACaptureFrameByFrameAndRepeatsARefusedFrame) {
    QTemporaryDir dir;
    const std::string script = dir.path().toStdString() + "/query.sim";
    std::ofstream(script) << "timeout 2000\nframes " ORBLINE_FIXTURES_DIR
                             "/captures/cobas-e411-query.bin\nexpect <ACK>\n";
    test::LineHarness harness;
    AwComm host;
    host.SetDevicePath(harness.device());
    ASSERT_TRUE(host.OpenPort1());

    std::ostringstream log;
    bool passed = false;
    std::thread instrument(
        [&] { passed = RunScript(LoadScript(script), harness.line, RunOptions{}, log); });
    // The simulator waits for an answer after each piece, so one piece is outstanding at most.
    Bytes piece;
    Bytes received;
    bool refused = false;
    const auto deadline = std::chrono::steady_clock::now() + 5s;
    while (std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(5ms);
        const Bytes got = host.ReadBinary1();
        piece.insert(piece.end(), got.begin(), got.end());
        if (piece.empty() || (piece.back() != 0x05 && piece.back() != 0x0A && piece.back() != 0x04))
            continue;
        received.insert(received.end(), piece.begin(), piece.end());
        if (piece.back() == 0x04) break;
        const bool refuse = piece.front() == 0x02 && !refused;
        refused = refused || refuse;
        host.WriteBinary(Notation(refuse ? "<NAK>" : "<ACK>"));
        piece.clear();
    }
    host.WriteBinary(Notation("<ACK>"));
    instrument.join();
    EXPECT_TRUE(passed) << log.str();
    EXPECT_NE(log.str().find("< <NAK>"), std::string::npos);
    // The refused frame came twice; apart from that the bytes are the capture's.
    Bytes expected = Notation(test::Capture("cobas-e411-query.bin"));
    const Bytes firstFrame = CutIntoFrames(expected)[1];
    expected.insert(expected.begin() + 1, firstFrame.begin(), firstFrame.end());
    EXPECT_EQ(received, expected);
}

// A script played again and again on a line that stays open: the port is opened once, so a
// later pass that waited for an open would fail. A pass that fails ends the passes.
TEST(SimScript, PassesAfterTheFirstDoNotWaitForAnOpen) {
    test::LineHarness harness;
    RunOptions options;
    bool opened = true;
    options.takeOpenedMark = [&] { return std::exchange(opened, false); };
    std::ostringstream log;
    const PassCount three = RunPasses(
        ParseScript("wait-open 300\nsend <ENQ>\n", "s.sim", "."), harness.line, options,
        [](int passed) { return passed < 3; }, log);
    EXPECT_EQ(three.passed, 3) << log.str();
    EXPECT_FALSE(three.failed);

    const PassCount unanswered = RunPasses(
        ParseScript("timeout 50\nexpect <ACK>\n", "s.sim", "."), harness.line, options,
        [](int) { return true; }, log);
    EXPECT_EQ(unanswered.passed, 0);
    EXPECT_TRUE(unanswered.failed);
}

TEST(Simulator, CommandLineAndScriptErrorsExitWithTwo) {
    QProcess simulator;
    simulator.start(QStringLiteral(KV_SIMULATOR_EXE), {u"--pty"_qs});
    ASSERT_TRUE(simulator.waitForFinished(5000));
    EXPECT_EQ(simulator.exitCode(), 2);
    EXPECT_TRUE(simulator.readAllStandardError().startsWith("usage: kv_simulator"));

    QTemporaryDir dir;
    simulator.start(QStringLiteral(KV_SIMULATOR_EXE),
                    {u"--pty"_qs, dir.filePath(u"tty"_qs), dir.filePath(u"missing.sim"_qs)});
    ASSERT_TRUE(simulator.waitForFinished(5000));
    EXPECT_EQ(simulator.exitCode(), 2);
}

}  // namespace
}  // namespace orbline::sim
