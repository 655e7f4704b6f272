// The port on Windows: one synchronous communications handle, the calls as the system has
// always made them. The driver keeps the input queue.

#include <windows.h>

#include <cstddef>
#include <cstring>
#include <utility>

#include "serial/AwComm.h"

namespace orbline {
namespace {

DCB ToDeviceControlBlock(const LineFormat& format) {
    DCB block;
    std::memset(&block, 0, sizeof block);  // DCBlength and the characters stay 0
    block.BaudRate = format.BaudRate;
    // The flag word is a run of bit fields right after BaudRate.
    static_assert(sizeof(DWORD) == sizeof(format.Flags));
    std::memcpy(reinterpret_cast<unsigned char*>(&block) + offsetof(DCB, BaudRate) + sizeof(DWORD),
                &format.Flags, sizeof(DWORD));
    block.XonLim = format.XonLim;
    block.XoffLim = format.XoffLim;
    block.ByteSize = format.ByteSize;
    block.Parity = format.Parity;
    block.StopBits = format.StopBits;
    block.XonChar = format.XonChar;
    block.XoffChar = format.XoffChar;
    return block;
}

PortFailure FailureOfLastError(PortStep step, DWORD code) {
    OsError os = TranslateOsError(code);
    // A call that failed is a failure even if the system has no code for it.
    const PortError kind = os.kind == PortError::None ? PortError::Other : os.kind;
    return {kind, step, static_cast<std::int64_t>(code), std::move(os.text), {}};
}

// A handle that worked and now fails with one of these has lost its device. Access is checked
// only at the open, so a denial on an open handle is also a device pulled out (as USB adapters
// answer).
bool LostDevice(DWORD code) {
    return code == ERROR_ACCESS_DENIED || TranslateOsError(code).kind == PortError::DeviceGone;
}

}  // namespace

struct AwComm::Port {
    HANDLE handle = INVALID_HANDLE_VALUE;
    COMMTIMEOUTS timeouts{};
    COMSTAT status{};
    // The first failure that showed the device gone; the handle stays until the owner closes it.
    PortFailure gone;

    void NoteIfGone() {
        const DWORD code = GetLastError();
        if (gone.kind != PortError::None || !LostDevice(code)) return;
        gone = FailureOfLastError(PortStep::Receive, code);
        gone.kind = PortError::DeviceGone;
    }
};

AwComm::AwComm() = default;

AwComm::~AwComm() {
    if (port_) PlatformClose();
}

std::string AwComm::DeviceName() const {
    // The "\\.\" prefix serves every port number, also those above 9.
    return "\\\\.\\COM" + std::to_string(static_cast<unsigned>(portNumber_));
}

bool AwComm::PlatformOpen() {
    if (port_) {
        NoteFailure({PortError::Busy, PortStep::Open, 0, {}, "already open by this port object"});
        return false;
    }
    const std::string device = DeviceName();
    const HANDLE handle = CreateFileA(device.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                      OPEN_EXISTING, 0, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
        NoteFailure(FailureOfLastError(PortStep::Open, GetLastError()));
        return false;
    }

    auto port = std::make_unique<Port>();
    port->handle = handle;
    DCB block = ToDeviceControlBlock(format_);
    // All five calls are made even when an early one fails. The error of each is read at once,
    // before another call can change it.
    bool ok = true;
    const auto step = [&](PortStep which, BOOL result) {
        if (result != FALSE) return;
        NoteFailure(FailureOfLastError(which, GetLastError()));
        ok = false;
    };
    step(PortStep::LineSettings, SetCommState(handle, &block));
    step(PortStep::Buffers, SetupComm(handle, static_cast<DWORD>(readBufferSize_),
                                      static_cast<DWORD>(writeBufferSize_)));
    step(PortStep::Purge, PurgeComm(handle, PURGE_TXCLEAR));
    step(PortStep::Purge, PurgeComm(handle, PURGE_RXCLEAR));
    const auto timeOut = static_cast<DWORD>(timeOutMs_);
    port->timeouts.ReadIntervalTimeout = timeOut;
    port->timeouts.ReadTotalTimeoutMultiplier = 10;
    port->timeouts.ReadTotalTimeoutConstant = timeOut;
    port->timeouts.WriteTotalTimeoutMultiplier = 10;
    port->timeouts.WriteTotalTimeoutConstant = timeOut;
    step(PortStep::TimeOuts, SetCommTimeouts(handle, &port->timeouts));
    if (!ok) {
        CloseHandle(handle);
        return false;
    }
    port_ = std::move(port);
    return true;
}

bool AwComm::PlatformClose() {
    // The handle is forgotten after the close, so that a second close cannot hit a handle
    // that Windows has given to someone else meanwhile.
    if (!port_) return false;
    const bool closed = CloseHandle(port_->handle) != FALSE;
    port_.reset();
    return closed;
}

PortFailure AwComm::Gone() const {
    return port_ ? port_->gone : PortFailure{};
}

bool AwComm::PlatformModemStatus(std::uint32_t& bits) {
    DWORD lines = 0;
    if (!port_ || GetCommModemStatus(port_->handle, &lines) == FALSE) return false;
    bits = lines;
    return true;
}

bool AwComm::PlatformSetLine(bool dtrLine, bool on) {
    const DWORD function = dtrLine ? (on ? SETDTR : CLRDTR) : (on ? SETRTS : CLRRTS);
    return port_ && EscapeCommFunction(port_->handle, function) != FALSE;
}

bool AwComm::PlatformBreak(bool on) {
    if (!port_) return false;
    return (on ? SetCommBreak(port_->handle) : ClearCommBreak(port_->handle)) != FALSE;
}

bool AwComm::PlatformQueued(bool input, std::int32_t& count) {
    if (!port_) return false;
    DWORD errors = 0;
    // Also clears a line error, so an overrun never blocks the port.
    if (ClearCommError(port_->handle, &errors, &port_->status) == FALSE) {
        port_->NoteIfGone();
        return false;
    }
    count = static_cast<std::int32_t>(input ? port_->status.cbInQue : port_->status.cbOutQue);
    return true;
}

bool AwComm::PlatformWrite(const Bytes& bytes) {
    if (!port_) return false;
    DWORD written = 0;
    const auto length = static_cast<DWORD>(bytes.size());
    return WriteFile(port_->handle, bytes.data(), length, &written, nullptr) != FALSE &&
           written == length;
}

bool AwComm::PlatformRead(std::uint8_t* into, std::int32_t count) {
    if (!port_) return false;
    DWORD got = 0;
    const auto wanted = static_cast<DWORD>(count);
    if (ReadFile(port_->handle, into, wanted, &got, nullptr) == FALSE) {
        port_->NoteIfGone();
        return false;
    }
    return got == wanted;
}

bool AwComm::PlatformPurgeInput() {
    return port_ && PurgeComm(port_->handle, PURGE_RXCLEAR) != FALSE;
}

}  // namespace orbline
