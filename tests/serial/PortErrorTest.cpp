// Why a port cannot be opened: the one translation of the system's error codes. The refused
// formats are in AwCommTest; a missing device and a held port, as the logs tell them, in
// SessionEndsTest.

#include <gtest/gtest.h>

#include <cerrno>
#include <set>

#include "serial/AwComm.h"

namespace orbline {
namespace {

TEST(PortError, TranslatesErrnoToAKindWithTheSystemsOwnWords) {
    const std::pair<int, PortError> table[] = {
        {ENXIO, PortError::NoSuchDevice}, {EACCES, PortError::PermissionDenied},
        {EBUSY, PortError::Busy},         {EINVAL, PortError::FormatRefused},
        {EWOULDBLOCK, PortError::Busy},   {EIO, PortError::DeviceGone},
        {ENOTTY, PortError::Other},       {0, PortError::None}};
    std::set<std::string> texts;
    for (const auto& [code, kind] : table) {
        const OsError error = TranslateOsError(code);
        EXPECT_EQ(error.kind, kind) << code;
        texts.insert(error.text);
    }
    // The system's words for each code, not one text for all.
    EXPECT_EQ(texts.size(), std::size(table));
}

}  // namespace
}  // namespace orbline
