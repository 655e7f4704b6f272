// Why a port cannot be opened: the one translation of the system's error codes, and a port that
// another opener holds. The refused formats are in AwCommTest; a missing device and a port held
// by another process, as the logs tell them, in SessionEndsTest.

#include <gtest/gtest.h>

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

// Refused at the open by TIOCEXCL or, for root, at the lock; the record of an open that
// succeeds is clear.
TEST(PortError, AHeldPortIsBusyUntilItsHolderClosesIt) {
    test::LineHarness harness;
    AwComm holder;
    AwComm second;
    holder.SetDevicePath(harness.device());
    second.SetDevicePath(harness.device());
    ASSERT_TRUE(holder.OpenPort1());
    EXPECT_FALSE(second.OpenPort1());
    const PortFailure& held = second.LastError();
    EXPECT_EQ(held.kind, PortError::Busy) << DescribePortFailure(held);
    EXPECT_TRUE(held.step == PortStep::Open || held.step == PortStep::Lock);

    ASSERT_TRUE(holder.ClosePort());
    EXPECT_TRUE(second.OpenPort1());
    EXPECT_EQ(second.LastError().kind, PortError::None);
}

}  // namespace
}  // namespace orbline
