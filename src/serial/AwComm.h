#pragma once
// The one object that touches the serial line. No events and no overlapped input or output:
// everything above it polls. Properties set while the port is open take effect at the next
// open, except Dtr, Rts and Break, which act at once. Failures are false, -1 or an empty
// array; nothing is raised or logged here. Why an open failed is kept for the caller to report
// (LastError).
//
// Free of Qt on purpose: the Windows sibling is checked with a cross compiler that has no Qt.

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "serial/PortError.h"

namespace orbline {

using Bytes = std::vector<std::uint8_t>;

// The line format as the Windows device control block holds it. The values are those of that
// block, unmapped: parity 0 none, 1 odd, 2 even, 3 mark, 4 space; stop bits 0 one, 1 one and a
// half, 2 two.
struct LineFormat {
    std::uint32_t BaudRate = 9600;
    std::uint8_t ByteSize = 8;
    std::uint8_t Parity = 0;
    std::uint8_t StopBits = 0;
    std::uint32_t Flags = 1;  // fBinary only
    std::uint16_t XonLim = 256;
    std::uint16_t XoffLim = 256;
    char XonChar = 0;  // never set by this system
    char XoffChar = 0;
};

// Bits of the flag word, named as Windows names them.
namespace dcb {
inline constexpr std::uint32_t fBinary = 0x0001;
inline constexpr std::uint32_t fOutxCtsFlow = 0x0004;
inline constexpr std::uint32_t fOutxDsrFlow = 0x0008;
inline constexpr std::uint32_t fDtrControlEnable = 0x0010;
inline constexpr std::uint32_t fDtrControlHandshake = 0x0020;
inline constexpr std::uint32_t fDsrSensitivity = 0x0040;
inline constexpr std::uint32_t fOutX = 0x0100;
inline constexpr std::uint32_t fInX = 0x0200;
inline constexpr std::uint32_t fRtsControlEnable = 0x1000;
inline constexpr std::uint32_t fRtsControlHandshake = 0x2000;
inline constexpr std::uint32_t HandshakeMask = 0x337C;
}  // namespace dcb

// Modem status bits as GetCommModemStatus gives them.
namespace modem {
inline constexpr std::uint32_t Cts = 0x10;
inline constexpr std::uint32_t Dsr = 0x20;
inline constexpr std::uint32_t Ring = 0x40;
inline constexpr std::uint32_t Rlsd = 0x80;
}  // namespace modem

class AwComm {
  public:
    AwComm();
    ~AwComm();
    AwComm(const AwComm&) = delete;
    AwComm& operator=(const AwComm&) = delete;

    std::uint8_t PortNumber() const { return portNumber_; }
    void SetPortNumber(std::uint8_t number) { portNumber_ = number; }
    std::int32_t BaudRate() const { return static_cast<std::int32_t>(format_.BaudRate); }
    void SetBaudRate(std::int32_t rate) { format_.BaudRate = static_cast<std::uint32_t>(rate); }
    std::int16_t Parity() const { return format_.Parity; }
    void SetParity(std::int16_t parity) { format_.Parity = static_cast<std::uint8_t>(parity); }
    std::int16_t DataBits() const { return format_.ByteSize; }
    void SetDataBits(std::int16_t bits) { format_.ByteSize = static_cast<std::uint8_t>(bits); }
    std::int16_t StopBits() const { return format_.StopBits; }
    void SetStopBits(std::int16_t bits) { format_.StopBits = static_cast<std::uint8_t>(bits); }
    std::uint8_t Handshake() const;
    void SetHandshake(std::uint8_t mode);
    std::int32_t TimeOut() const { return timeOutMs_; }
    void SetTimeOut(std::int32_t milliseconds) { timeOutMs_ = milliseconds; }

    // Modem lines, read from the open port; false where the platform has none.
    bool CD();
    bool Dsr();
    bool Cts();
    bool RI();
    bool Dtr() const { return dtrState_; }
    void SetDtr(bool on);
    bool Rts() const { return rtsState_; }
    void SetRts(bool on);
    void SetBreak(bool on);

    std::int32_t WriteBufferSize() const { return writeBufferSize_; }
    void SetWriteBufferSize(std::int32_t size) { writeBufferSize_ = size; }
    std::int32_t ReadBufferSize() const { return readBufferSize_; }
    void SetReadBufferSize(std::int32_t size) { readBufferSize_ = size; }
    // Bytes waiting to go out / waiting to be read; -1 when the port is not open.
    std::int32_t WriteBufferDataSize();
    std::int32_t ReadBufferDataSize();

    bool OpenPort1();
    bool OpenPort2(std::uint8_t number);
    bool ClosePort();
    // Why the last open failed: the first step that failed, with the system's code and words.
    // Kind None after an open that succeeded.
    const PortFailure& LastError() const { return lastError_; }
    // Why the open port can receive no more (the device removed, the line hung up), with the
    // system's words, at the step Receive. Kind None while it receives and whenever it is not
    // open: closing the port is no failure. On POSIX the bytes that came before stay in the
    // input queue; on Windows the driver's queue goes with the device.
    PortFailure Gone() const;

    bool WriteBinary(const Bytes& bytes);
    Bytes ReadBinary1();
    // Exactly count bytes, or nothing: a short read loses what it read.
    Bytes ReadBinary2(std::int32_t count);

    // Does nothing: the output queue is never purged after the open. Callers ignore it.
    bool ClearWriteBuffer() { return false; }
    bool ClearReadBuffer();

    // POSIX only: a device path that replaces the one made from the port number. Windows
    // always opens "\\.\COMn".
    void SetDevicePath(std::string path) { devicePath_ = std::move(path); }
    const std::string& DevicePath() const { return devicePath_; }
    // The device the next open would use on this platform.
    std::string DeviceName() const;

    const LineFormat& Format() const { return format_; }

    // How many times the platform was asked to open a device; lets tests see that a refused
    // port number never reaches it.
    std::uint32_t PlatformOpenCount() const { return platformOpens_; }

  private:
    // One small set of calls per platform, in AwComm_posix.cpp or AwComm_win32.cpp.
    struct Port;
    bool PlatformOpen();
    bool PlatformClose();
    bool PlatformModemStatus(std::uint32_t& bits);
    bool PlatformSetLine(bool dtrLine, bool on);
    bool PlatformBreak(bool on);
    bool PlatformQueued(bool input, std::int32_t& count);
    bool PlatformWrite(const Bytes& bytes);
    bool PlatformRead(std::uint8_t* into, std::int32_t count);
    bool PlatformPurgeInput();

    bool ModemBit(std::uint32_t bit);
    // Keeps the first failure of an open: the steps after it are still made and may fail
    // only because of it.
    void NoteFailure(PortFailure failure);

    LineFormat format_;
    std::uint8_t portNumber_ = 1;
    std::int32_t readBufferSize_ = 102400;
    std::int32_t writeBufferSize_ = 102400;
    std::int32_t timeOutMs_ = 1000;
    bool dtrState_ = false;
    bool rtsState_ = false;
    std::string devicePath_;
    std::uint32_t platformOpens_ = 0;
    PortFailure lastError_;
    std::unique_ptr<Port> port_;
};

}  // namespace orbline
