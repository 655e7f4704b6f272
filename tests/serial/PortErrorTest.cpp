// Why a port cannot be opened: the errno translator, and each cause Linux gives on
// pseudo-terminals without root.

#include <grp.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <set>

#include "serial/AwComm.h"
#include "support/LineHarness.h"

namespace orbline {
namespace {

TEST(PortError, TranslatesErrnoToAKindWithTheSystemsOwnWords) {
    const std::pair<int, PortError> table[] = {{ENOENT, PortError::NoSuchDevice},
                                               {ENXIO, PortError::NoSuchDevice},
                                               {EACCES, PortError::PermissionDenied},
                                               {EBUSY, PortError::Busy},
                                               {EWOULDBLOCK, PortError::Busy},
                                               {EINVAL, PortError::FormatRefused},
                                               {EIO, PortError::DeviceGone},
                                               {ENOTTY, PortError::Other},
                                               {0, PortError::None}};
    std::set<std::string> texts;
    for (const auto& [code, kind] : table) {
        const OsError error = TranslateOsError(code);
        EXPECT_EQ(error.kind, kind) << code;
        texts.insert(error.text);
    }
    // The system's words for each code, not one text for all.
    EXPECT_EQ(texts.size(), std::size(table));
}

class PortFailureOnPty : public ::testing::Test {
  protected:
    void SetUp() override { comm.SetDevicePath(harness.device()); }

    PortFailure Refused(AwComm& port, PortError kind) {
        EXPECT_FALSE(port.OpenPort1());
        EXPECT_EQ(port.LastError().kind, kind) << DescribePortFailure(port.LastError());
        return port.LastError();
    }

    test::LineHarness harness;
    AwComm comm;
};

TEST_F(PortFailureOnPty, AMissingDeviceIsNoSuchDeviceAtTheOpen) {
    comm.SetDevicePath("/nonexistent/ttyKV0");
    const PortFailure missing = Refused(comm, PortError::NoSuchDevice);
    EXPECT_EQ(missing.step, PortStep::Open);
    EXPECT_EQ(missing.osCode, ENOENT);
    EXPECT_FALSE(missing.osText.empty());
}

// Root opens a device of mode 000 all the same: the open is tried by a child that gives up
// root, and the case is skipped where it cannot.
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
        const bool opened = other.OpenPort1();
        const PortFailure& failure = other.LastError();
        _exit(!opened && failure.kind == PortError::PermissionDenied &&
                      failure.step == PortStep::Open && !failure.osText.empty()
                  ? 0
                  : 1);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    if (WEXITSTATUS(status) == 77) GTEST_SKIP() << "running as root and cannot give it up";
    EXPECT_EQ(status, 0);
}

TEST_F(PortFailureOnPty, APortHeldElsewhereIsBusyAndAnOpenThatSucceedsClearsTheRecord) {
    ASSERT_TRUE(comm.OpenPort1());
    AwComm second;
    second.SetDevicePath(harness.device());
    // Refused at the open by TIOCEXCL, or, for root, at the lock.
    const PortFailure held = Refused(second, PortError::Busy);
    EXPECT_TRUE(held.step == PortStep::Open || held.step == PortStep::Lock);
    EXPECT_FALSE(held.osText.empty());

    ASSERT_TRUE(comm.ClosePort());
    EXPECT_TRUE(second.OpenPort1());
    EXPECT_EQ(second.LastError().kind, PortError::None);
}

TEST_F(PortFailureOnPty, ALineFormatLinuxCannotDoIsRefusedAndNamed) {
    comm.SetHandshake(3);
    EXPECT_EQ(Refused(comm, PortError::FormatRefused).detail, "DTR/DSR handshake");
    comm.SetHandshake(0);
    comm.SetDataBits(4);
    Refused(comm, PortError::FormatRefused);
    EXPECT_EQ(DescribePortFailure(comm.LastError()),
              "line format refused (4 data bits) at line settings");
}

}  // namespace
}  // namespace orbline
