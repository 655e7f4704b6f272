// The port on a pseudo-terminal: the formats it opens and refuses, its input queue, and a port
// that is not open. Why an open fails is PortErrorTest; whole dialogues are the scenarios'.

#include <gtest/gtest.h>

#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <chrono>
#include <fstream>
#include <thread>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

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

// The Windows device control block takes this word as it is. Each mode follows the one before,
// so a bit the clear left behind shows.
TEST(AwComm, EachHandshakeSetsItsOwnFlagWord) {
    AwComm comm;
    const std::uint32_t expected[] = {0x1011, 0x1311, 0x2015, 0x1069, 0x0001};
    for (std::uint8_t mode = 0; mode < 5; ++mode) {
        comm.SetHandshake(mode);
        EXPECT_EQ(comm.Format().Flags, expected[mode]) << int(mode);
        EXPECT_EQ(comm.Handshake(), mode == 4 ? 0 : mode);
    }
}

TEST(AwComm, PortZeroOpensNothingAndEveryCallOnAPortNotOpenFails) {
    AwComm comm;
    comm.SetPortNumber(0);
    EXPECT_FALSE(comm.OpenPort1());
    EXPECT_EQ(comm.PlatformOpenCount(), 0u);
    EXPECT_FALSE(comm.ClosePort());
    EXPECT_EQ(comm.ReadBufferDataSize(), -1);
    EXPECT_EQ(comm.WriteBufferDataSize(), -1);
    EXPECT_FALSE(comm.WriteBinary(Notation("<ENQ>")));
    EXPECT_TRUE(comm.ReadBinary1().empty());
    EXPECT_FALSE(comm.ClearReadBuffer());
    comm.SetBreak(true);
    comm.SetDtr(true);
    EXPECT_FALSE(comm.CD() || comm.Dtr());

    comm.SetPortNumber(12);
    EXPECT_EQ(comm.DeviceName(), "/dev/ttyS11");
}

// What Linux cannot do fails the open with the setting named, and no refused open keeps the
// port. 7200 and 14400 have no rate constant.
TEST_F(AwCommOnPty, OpensEveryFormatTheDeviceCanDoAndRefusesTheRest) {
    struct Format {
        std::int32_t rate;
        std::int16_t bits, parity, stop;
        std::uint8_t handshake;
        std::string refused;
    };
    const Format formats[] = {
        {7200, 7, 2, 0, 0, ""},
        {14400, 8, 1, 2, 2, ""},
        {115200, 7, 3, 0, 0, ""},
        {2400, 8, 4, 2, 4, ""},
        {300, 5, 0, 0, 0, ""},
        {9600, 8, 0, 0, 1, "Xon/Xoff handshake with equal Xon and Xoff characters"},
        {9600, 8, 0, 0, 3, "DTR/DSR handshake"},
        {9600, 8, 0, 1, 0, "one and a half stop bits"},
        {9600, 4, 0, 0, 0, "4 data bits"},
        {9600, 8, 5, 0, 0, "parity 5"},
        {0, 8, 0, 0, 0, "rate 0"},
    };
    for (const Format& f : formats) {
        AwComm port;
        port.SetDevicePath(harness.device());
        port.SetBaudRate(f.rate);
        port.SetDataBits(f.bits);
        port.SetParity(f.parity);
        port.SetStopBits(f.stop);
        port.SetHandshake(f.handshake);
        EXPECT_EQ(port.OpenPort1(), f.refused.empty()) << f.rate << " " << f.refused;
        EXPECT_EQ(
            DescribePortFailure(port.LastError()),
            f.refused.empty() ? "" : "line format refused (" + f.refused + ") at line settings");
    }
    EXPECT_TRUE(comm.OpenPort1());
    // The exclusive mark goes with the close: the pseudo-terminal stays open at the
    // instrument's end, and a restarted process that is not root could not open it again.
    const int probe = ::open(harness.device().c_str(), O_RDWR | O_NOCTTY);
    int exclusive = -1;
    EXPECT_EQ(ioctl(probe, TIOCGEXCL, &exclusive), 0);
    EXPECT_EQ(exclusive, 1);
    EXPECT_TRUE(comm.ClosePort());
    EXPECT_EQ(ioctl(probe, TIOCGEXCL, &exclusive), 0);
    EXPECT_EQ(exclusive, 0);
    ::close(probe);
}

TEST_F(AwCommOnPty, AReadTakesExactlyItsCountOrLosesAShortRead) {
    comm.SetTimeOut(100);
    ASSERT_TRUE(comm.OpenPort1());
    ASSERT_TRUE(harness.line.send(Notation("ABCDE")));
    ASSERT_TRUE(WaitForQueued(comm, 5, 2s));
    EXPECT_EQ(comm.ReadBinary2(2), Notation("AB"));
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

// Bytes become text one character a byte: ASCII, half-width kana, the rest in the private range.
TEST_F(AwCommOnPty, ReadsOneCharacterPerByteAndAClearDropsWhatWaits) {
    ASSERT_TRUE(comm.OpenPort1());
    ASSERT_TRUE(harness.line.send(Notation("1H|<xB1><x82><CR>")));
    ASSERT_TRUE(WaitForQueued(comm, 6, 2s));
    EXPECT_EQ(ReadText1(comm), u"1H|\uFF71\uF802\r"_qs);
    ASSERT_TRUE(harness.line.send(Notation("noise")));
    ASSERT_TRUE(WaitForQueued(comm, 5, 2s));
    EXPECT_TRUE(comm.ClearReadBuffer());
    EXPECT_EQ(comm.ReadBufferDataSize(), 0);
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
