#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <chrono>
#include <fstream>
#include <thread>

#include "common/AwCommText.h"
#include "serial/AwComm.h"
#include "support/LineHarness.h"

namespace orbline {
namespace {

using namespace std::chrono_literals;
using test::LineHarness;
using test::Notation;

// Polls the port as the dialogues do, until `count` bytes wait or the time is up.
bool WaitForQueued(AwComm& comm, std::int32_t count, std::chrono::milliseconds within) {
    const auto deadline = std::chrono::steady_clock::now() + within;
    while (comm.ReadBufferDataSize() < count) {
        if (std::chrono::steady_clock::now() > deadline) return false;
        std::this_thread::sleep_for(2ms);
    }
    return true;
}

class AwCommOnPty : public ::testing::Test {
  protected:
    void SetUp() override { comm.SetDevicePath(harness.device()); }

    LineHarness harness;
    AwComm comm;
};

TEST(AwComm, HandshakeSetsTheFlagWordAndReadsBackItsMode) {
    AwComm comm;
    const std::uint32_t expected[] = {0x1011, 0x1311, 0x2015, 0x1069, 0x0001};
    for (std::uint8_t mode = 0; mode < 5; ++mode) {
        comm.SetHandshake(mode);
        EXPECT_EQ(comm.Format().Flags, expected[mode]) << int(mode);
        EXPECT_EQ(comm.Handshake(), mode == 4 ? 0 : mode);
    }
    // The clear of the setter leaves nothing of the mode before.
    comm.SetHandshake(1);
    comm.SetHandshake(2);
    EXPECT_EQ(comm.Format().Flags, 0x2015u);
}

TEST(AwComm, PortNumberZeroOpensNothingAndNumbersNameTheDevice) {
    AwComm comm;
    comm.SetPortNumber(0);
    EXPECT_FALSE(comm.OpenPort1());
    EXPECT_EQ(comm.PlatformOpenCount(), 0u);
    EXPECT_EQ(comm.ReadBufferDataSize(), -1);

    comm.SetPortNumber(1);
    EXPECT_EQ(comm.DeviceName(), "/dev/ttyS0");
    comm.SetPortNumber(12);
    EXPECT_EQ(comm.DeviceName(), "/dev/ttyS11");
}

TEST_F(AwCommOnPty, AcceptsEveryLineFormatTheDeviceCanDo) {
    struct Format {
        std::int32_t rate;
        std::int16_t bits, parity, stop;
        std::uint8_t handshake;
    };
    // 7200 and 14400 have no rate constant.
    const Format formats[] = {{9600, 8, 0, 0, 0},   {7200, 7, 2, 0, 0}, {14400, 8, 1, 2, 2},
                              {115200, 7, 3, 0, 0}, {2400, 8, 4, 2, 4}, {300, 5, 0, 0, 0}};
    for (const Format& f : formats) {
        comm.SetBaudRate(f.rate);
        comm.SetDataBits(f.bits);
        comm.SetParity(f.parity);
        comm.SetStopBits(f.stop);
        comm.SetHandshake(f.handshake);
        EXPECT_TRUE(comm.OpenPort1()) << f.rate;
        EXPECT_TRUE(comm.ClosePort()) << f.rate;
    }
}

TEST_F(AwCommOnPty, RefusesWhatTheDeviceCannotDoAndLeavesThePortFree) {
    // Xon/Xoff with both characters 0, DTR/DSR flow, one and a half stop bits, nine bits,
    // parity 5, rate 0: each open fails, and none keeps the port locked.
    const auto refused = [&](auto change) {
        AwComm probe;
        probe.SetDevicePath(harness.device());
        change(probe);
        return !probe.OpenPort1();
    };
    EXPECT_TRUE(refused([](AwComm& c) { c.SetHandshake(1); }));
    EXPECT_TRUE(refused([](AwComm& c) { c.SetHandshake(3); }));
    EXPECT_TRUE(refused([](AwComm& c) { c.SetStopBits(1); }));
    EXPECT_TRUE(refused([](AwComm& c) { c.SetDataBits(9); }));
    EXPECT_TRUE(refused([](AwComm& c) { c.SetParity(5); }));
    EXPECT_TRUE(refused([](AwComm& c) { c.SetBaudRate(0); }));
    EXPECT_TRUE(comm.OpenPort1());
}

TEST_F(AwCommOnPty, WritesAndReadsWhatWaitsInOrder) {
    ASSERT_TRUE(comm.OpenPort1());
    EXPECT_TRUE(comm.WriteBinary(Notation("<ACK><CR>")));
    EXPECT_TRUE(comm.WriteBinary({}));
    EXPECT_TRUE(WriteText(comm, u"Q\u0141"_qs));  // U+0141 keeps only its low byte
    EXPECT_EQ(harness.line.receive(4, 2s), Notation("<ACK><CR>QA"));
    EXPECT_EQ(comm.WriteBufferDataSize(), 0);

    EXPECT_EQ(comm.ReadBufferDataSize(), 0);
    EXPECT_TRUE(ReadText1(comm).isEmpty());
    harness.line.setChunks(3, 20ms);
    ASSERT_TRUE(harness.line.send(Notation("<STX>1H|<xB1><x82><CR><ETX>")));
    ASSERT_TRUE(WaitForQueued(comm, 8, 2s));
    EXPECT_EQ(comm.ReadBufferDataSize(), 8);
    // One character per byte: ASCII, half-width kana, and the rest in the private range.
    EXPECT_EQ(ReadText1(comm), u"\u00021H|\uFF71\uF802\r\u0003"_qs);
    EXPECT_EQ(comm.ReadBufferDataSize(), 0);
}

TEST_F(AwCommOnPty, ReadBinary2TakesExactlyOrLosesAShortRead) {
    comm.SetTimeOut(100);
    ASSERT_TRUE(comm.OpenPort1());
    ASSERT_TRUE(harness.line.send(Notation("ABCDE")));
    ASSERT_TRUE(WaitForQueued(comm, 5, 2s));
    EXPECT_EQ(comm.ReadBinary2(2), Notation("AB"));
    EXPECT_TRUE(comm.ReadBinary2(0).empty());
    // Three wait, five are asked for: nothing comes back and the three are gone.
    EXPECT_TRUE(comm.ReadBinary2(5).empty());
    EXPECT_EQ(comm.ReadBufferDataSize(), 0);

    // Bytes that arrive within the time-outs complete the read.
    std::thread late([&] {
        std::this_thread::sleep_for(30ms);
        harness.line.send(Notation("XYZ"));
    });
    EXPECT_EQ(comm.ReadBinary2(3), Notation("XYZ"));
    late.join();
}

TEST_F(AwCommOnPty, ClearReadBufferDropsWhatWaits) {
    ASSERT_TRUE(comm.OpenPort1());
    ASSERT_TRUE(harness.line.send(Notation("noise")));
    ASSERT_TRUE(WaitForQueued(comm, 5, 2s));
    EXPECT_TRUE(comm.ClearReadBuffer());
    EXPECT_EQ(comm.ReadBufferDataSize(), 0);
    EXPECT_FALSE(comm.ClearWriteBuffer());
}

TEST_F(AwCommOnPty, CloseAndReopenKeepTheSettings) {
    comm.SetBaudRate(14400);
    ASSERT_TRUE(comm.OpenPort1());
    EXPECT_TRUE(comm.ClosePort());
    EXPECT_FALSE(comm.ClosePort());
    EXPECT_EQ(comm.ReadBufferDataSize(), -1);
    EXPECT_EQ(comm.WriteBufferDataSize(), -1);
    EXPECT_FALSE(comm.WriteBinary(Notation("<ENQ>")));
    EXPECT_TRUE(comm.ReadBinary1().empty());
    EXPECT_FALSE(comm.ClearReadBuffer());

    ASSERT_TRUE(comm.OpenPort1());
    EXPECT_EQ(comm.BaudRate(), 14400);
    ASSERT_TRUE(harness.line.send(Notation("<ENQ>")));
    ASSERT_TRUE(WaitForQueued(comm, 1, 2s));
    EXPECT_EQ(comm.ReadBinary1(), Notation("<ENQ>"));
}

TEST_F(AwCommOnPty, APseudoTerminalHasNoModemLines) {
    ASSERT_TRUE(comm.OpenPort1());
    EXPECT_FALSE(comm.CD());
    EXPECT_FALSE(comm.Dsr());
    EXPECT_FALSE(comm.Cts());
    EXPECT_FALSE(comm.RI());
    // The stored state follows only a call that succeeded.
    comm.SetDtr(true);
    comm.SetRts(true);
    EXPECT_FALSE(comm.Dtr());
    EXPECT_FALSE(comm.Rts());
    // Lines and the break on a closed port fail the same way.
    EXPECT_TRUE(comm.ClosePort());
    comm.SetBreak(true);
    EXPECT_FALSE(comm.CD());
}

TEST_F(AwCommOnPty, ASecondOpenOfAHeldPortFails) {
    ASSERT_TRUE(comm.OpenPort1());
    AwComm second;
    second.SetDevicePath(harness.device());
    EXPECT_FALSE(second.OpenPort1());
    EXPECT_FALSE(comm.OpenPort1()) << "one object opens one port";

    // Another process fares no better, root or not.
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        AwComm other;
        other.SetDevicePath(harness.device());
        _exit(other.OpenPort1() ? 0 : 3);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(WEXITSTATUS(status), 3);

    EXPECT_TRUE(comm.ClosePort());
    EXPECT_TRUE(second.OpenPort1());
}

TEST_F(AwCommOnPty, AFullQueueDropsWhatDoesNotFitAsADriverDoes) {
    comm.SetReadBufferSize(16);
    ASSERT_TRUE(comm.OpenPort1());
    ASSERT_TRUE(harness.line.send(Notation("0123456789ABCDEFGHIJ")));
    ASSERT_TRUE(WaitForQueued(comm, 16, 2s));
    std::this_thread::sleep_for(50ms);
    EXPECT_EQ(comm.ReadBinary1(), Notation("0123456789ABCDEF"));
}

// Runs at full length: ten seconds of not reading while the instrument sends 60,000 bytes at
// 115200 baud. The simulator fails if a write would have blocked.
TEST(AwComm, NoByteLostWhileNotReadingForTenSecondsFullLength) {
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    sim::Bytes pattern(60000);
    for (std::size_t i = 0; i < pattern.size(); ++i)
        pattern[i] = static_cast<std::uint8_t>((i * 7 + i / 256) & 0xFF);
    const std::string folder = dir.path().toStdString();
    std::ofstream(folder + "/pattern.bin", std::ios::binary)
        .write(reinterpret_cast<const char*>(pattern.data()), std::streamsize(pattern.size()));
    // The ENQ tells the instrument that the port is open and flushed: a test that must not
    // lose a byte does not rely on the pause after wait-open.
    std::ofstream(folder + "/send.sim")
        << "wait-open 5000\nexpect <ENQ>\nrate 115200\nsend-file pattern.bin\n";

    // The simulator makes the pair and plays the instrument's end; the port opens the other.
    QProcess simulator;
    simulator.setStandardOutputFile(dir.filePath(u"simulator.log"_qs));
    simulator.start(QStringLiteral(KV_SIMULATOR_EXE),
                    {u"--pty"_qs, dir.filePath(u"tty"_qs), dir.filePath(u"send.sim"_qs)});
    const QString link = dir.filePath(u"tty"_qs);
    for (int tries = 0; tries < 500 && !QFileInfo::exists(link); ++tries)
        std::this_thread::sleep_for(10ms);
    AwComm port;
    port.SetBaudRate(115200);
    port.SetDevicePath(folder + "/tty");
    ASSERT_TRUE(port.OpenPort1());
    ASSERT_TRUE(port.WriteBinary({0x05}));
    std::this_thread::sleep_for(10s);
    ASSERT_TRUE(simulator.waitForFinished(15000));
    QFile log(dir.filePath(u"simulator.log"_qs));
    log.open(QIODevice::ReadOnly);
    EXPECT_EQ(simulator.exitCode(), 0) << log.readAll().toStdString();

    // The last piece may still be on its way from the tty into the queue.
    EXPECT_TRUE(WaitForQueued(port, 60000, 2s)) << port.ReadBufferDataSize();
    EXPECT_TRUE(port.ReadBinary1() == pattern);
}

}  // namespace
}  // namespace orbline
