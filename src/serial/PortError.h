#pragma once
// Why the port could not be opened, or why an open port stopped receiving, in words an operator
// can act on, with the operating system's own code and text beside them. Free of Qt, like the
// rest of serial/.

#include <cstdint>
#include <string>

namespace orbline {

enum class PortError {
    None,
    NoSuchDevice,      // nothing at that name
    PermissionDenied,  // the process may not open it
    Busy,              // held by another process, or already open here
    FormatRefused,     // the line format is refused by the device, its driver or this platform
    DeviceGone,        // the device went away or the line hung up
    Other,
};

// The step of the open that failed; Receive for a port that failed after it was open.
enum class PortStep { None, Open, Lock, LineSettings, Buffers, Purge, TimeOuts, Reader, Receive };

struct PortFailure {
    PortError kind = PortError::None;
    PortStep step = PortStep::None;
    // errno on POSIX, GetLastError() on Windows; 0 where no call of the system failed (a
    // setting this platform cannot do, refused before any call).
    std::int64_t osCode = 0;
    // The system's words for osCode, in UTF-8; empty when osCode is 0.
    std::string osText;
    // What the port itself found, where the system's words do not say it: the line setting
    // refused ("4 data bits", "parity not kept by the driver"), for instance.
    std::string detail;
};

// An operating system's error, translated.
struct OsError {
    PortError kind = PortError::Other;
    std::string text;  // UTF-8
};

// The one translator of each platform: errno on POSIX (PortError_posix.cpp), GetLastError()
// on Windows (PortError_win32.cpp).
#ifdef _WIN32
OsError TranslateOsError(unsigned long code);
#else
OsError TranslateOsError(int code);
#endif

// Plain English words for the report: "permission denied", "line settings".
const char* PortErrorWords(PortError kind);
const char* PortStepWords(PortStep step);

// "<kind> (<os text>; <detail>) at <step>", the parts that are empty left out; "" for None.
std::string DescribePortFailure(const PortFailure& failure);

}  // namespace orbline
