// Why a port cannot be opened: the errno translator, and each cause Linux gives without root,
// on pseudo-terminals.

#include <grp.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QTemporaryDir>
#include <cerrno>
#include <fstream>
#include <set>

#include "serial/AwComm.h"
#include "serial/PortError.h"
#include "support/LineHarness.h"

namespace orbline {
namespace {

using test::LineHarness;

TEST(PortError, TranslatesErrnoToAKindWithTheSystemsOwnWords) {
    const struct {
        int code;
        PortError kind;
    } table[] = {
        {ENOENT, PortError::NoSuchDevice},
        {ENOTDIR, PortError::NoSuchDevice},
        {ENODEV, PortError::NoSuchDevice},
        {ENXIO, PortError::NoSuchDevice},
        {EACCES, PortError::PermissionDenied},
        {EPERM, PortError::PermissionDenied},
        {EBUSY, PortError::Busy},
        {EWOULDBLOCK, PortError::Busy},
        {EINVAL, PortError::FormatRefused},
        {EIO, PortError::DeviceGone},
        {ENOTTY, PortError::Other},
        {EMFILE, PortError::Other},
        {987654, PortError::Other},
        {0, PortError::None},
    };
    std::set<std::string> texts;
    for (const auto& row : table) {
        const OsError error = TranslateOsError(row.code);
        EXPECT_EQ(error.kind, row.kind) << row.code;
        EXPECT_FALSE(error.text.empty()) << row.code;
        texts.insert(error.text);
    }
    // The words are the system's for each code, not one text for all.
    EXPECT_EQ(texts.size(), std::size(table));
}

class PortFailureOnPty : public ::testing::Test {
  protected:
    void SetUp() override { comm.SetDevicePath(harness.device()); }

    // Opens and expects a failure of this kind; the record is returned for further checks.
    PortFailure Refused(AwComm& port, PortError kind) {
        EXPECT_FALSE(port.OpenPort1());
        const PortFailure failure = port.LastError();
        EXPECT_EQ(failure.kind, kind) << DescribePortFailure(failure);
        return failure;
    }

    LineHarness harness;
    AwComm comm;
};

TEST_F(PortFailureOnPty, AMissingDeviceOrPortNumberZeroIsNoSuchDevice) {
    comm.SetDevicePath("/nonexistent/ttyKV0");
    const PortFailure missing = Refused(comm, PortError::NoSuchDevice);
    EXPECT_EQ(missing.step, PortStep::Open);
    EXPECT_EQ(missing.osCode, ENOENT);
    EXPECT_FALSE(missing.osText.empty());

    comm.SetPortNumber(0);
    EXPECT_EQ(Refused(comm, PortError::NoSuchDevice).osCode, 0);
}

// Root opens a file of mode 000 all the same: the open is tried by a child that has given up
// root, and skipped where it cannot.
TEST_F(PortFailureOnPty, ADeviceThisUserMayNotOpenIsPermissionDenied) {
    ASSERT_EQ(chmod(harness.device().c_str(), 0), 0);
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        if (geteuid() == 0 && (setgroups(0, nullptr) != 0 || setgid(65534) != 0 ||
                               setuid(65534) != 0 || setuid(0) == 0))
            _exit(77);
        AwComm other;
        other.SetDevicePath(harness.device());
        const bool refused = !other.OpenPort1();
        const PortFailure& failure = other.LastError();
        _exit(refused && failure.kind == PortError::PermissionDenied &&
                      failure.step == PortStep::Open && !failure.osText.empty()
                  ? 0
                  : 1);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    if (WEXITSTATUS(status) == 77) GTEST_SKIP() << "running as root and cannot give it up";
    EXPECT_EQ(WEXITSTATUS(status), 0);
}

TEST_F(PortFailureOnPty, APortHeldElsewhereIsBusyAndAnOpenThatSucceedsClearsTheRecord) {
    ASSERT_TRUE(comm.OpenPort1());
    AwComm second;
    second.SetDevicePath(harness.device());
    // Refused at the open by TIOCEXCL, or, for root, at the lock.
    const PortFailure held = Refused(second, PortError::Busy);
    EXPECT_TRUE(held.step == PortStep::Open || held.step == PortStep::Lock);
    EXPECT_NE(held.osCode, 0);
    EXPECT_FALSE(held.osText.empty());
    Refused(comm, PortError::Busy);

    ASSERT_TRUE(comm.ClosePort());
    EXPECT_TRUE(second.OpenPort1());
    EXPECT_EQ(second.LastError().kind, PortError::None);
}

TEST_F(PortFailureOnPty, ALineFormatLinuxCannotDoIsRefusedAndNamed) {
    const struct {
        void (*change)(AwComm&);
        const char* setting;
    } table[] = {
        {[](AwComm& c) { c.SetDataBits(4); }, "4 data bits"},
        {[](AwComm& c) { c.SetHandshake(3); }, "DTR/DSR handshake"},
        {[](AwComm& c) { c.SetStopBits(1); }, "one and a half stop bits"},
        {[](AwComm& c) { c.SetHandshake(1); },
         "Xon/Xoff handshake with equal Xon and Xoff characters"},
    };
    for (const auto& row : table) {
        AwComm probe;
        probe.SetDevicePath(harness.device());
        row.change(probe);
        const PortFailure refused = Refused(probe, PortError::FormatRefused);
        EXPECT_EQ(refused.step, PortStep::LineSettings);
        EXPECT_EQ(refused.detail, row.setting);
    }
    comm.SetDataBits(4);
    Refused(comm, PortError::FormatRefused);
    EXPECT_EQ(DescribePortFailure(comm.LastError()),
              "line format refused (4 data bits) at line settings");
}

TEST(PortFailure, AFileThatIsNoTerminalFailsAtTheLineSettings) {
    QTemporaryDir dir;
    const std::string file = dir.path().toStdString() + "/notatty";
    std::ofstream(file) << "x";
    AwComm comm;
    comm.SetDevicePath(file);
    EXPECT_FALSE(comm.OpenPort1());
    EXPECT_EQ(comm.LastError().step, PortStep::LineSettings);
    EXPECT_EQ(comm.LastError().osCode, ENOTTY);
    EXPECT_FALSE(comm.LastError().osText.empty());
}

}  // namespace
}  // namespace orbline
