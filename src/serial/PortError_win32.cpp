#include <windows.h>

#include <string>

#include "serial/PortError.h"

namespace orbline {
namespace {

PortError KindOf(DWORD code) {
    switch (code) {
        case ERROR_SUCCESS:
            return PortError::None;
        case ERROR_FILE_NOT_FOUND:
        case ERROR_PATH_NOT_FOUND:
        case ERROR_BAD_UNIT:
        case ERROR_INVALID_NAME:
            return PortError::NoSuchDevice;
        // A port is opened without sharing, and Windows answers the second opener of a COM
        // port with access denied; ports carry no per-user rights in practice.
        case ERROR_ACCESS_DENIED:
        case ERROR_SHARING_VIOLATION:
        case ERROR_BUSY:
            return PortError::Busy;
        // SetCommState's answer to a device control block the driver cannot apply.
        case ERROR_INVALID_PARAMETER:
        case ERROR_NOT_SUPPORTED:
            return PortError::FormatRefused;
        // What a USB adapter pulled out answers.
        case ERROR_GEN_FAILURE:
        case ERROR_BAD_COMMAND:
        case ERROR_DEV_NOT_EXIST:
        case ERROR_DEVICE_NOT_CONNECTED:
        case ERROR_DEVICE_REMOVED:
        case ERROR_OPERATION_ABORTED:
            return PortError::DeviceGone;
        default:
            return PortError::Other;
    }
}

// The system's message in UTF-8, without the line end Windows puts behind it.
std::string MessageOf(DWORD code) {
    wchar_t wide[512] = {};
    DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                                  nullptr, code, 0, wide, sizeof wide / sizeof wide[0], nullptr);
    while (length > 0 &&
           (wide[length - 1] == L'\r' || wide[length - 1] == L'\n' || wide[length - 1] == L' '))
        --length;
    if (length == 0) return "error " + std::to_string(code);
    const int size = WideCharToMultiByte(CP_UTF8, 0, wide, static_cast<int>(length), nullptr, 0,
                                         nullptr, nullptr);
    std::string text(static_cast<std::size_t>(size > 0 ? size : 0), '\0');
    if (size > 0)
        WideCharToMultiByte(CP_UTF8, 0, wide, static_cast<int>(length), text.data(), size, nullptr,
                            nullptr);
    return text;
}

}  // namespace

OsError TranslateOsError(unsigned long code) {
    return {KindOf(code), MessageOf(code)};
}

}  // namespace orbline
