#include "serial/AwComm.h"

namespace orbline {

std::uint8_t AwComm::Handshake() const {
    const std::uint32_t flags = format_.Flags;
    if ((flags & (dcb::fOutX | dcb::fInX)) != 0) return 1;
    if ((flags & dcb::fRtsControlHandshake) != 0) return 2;
    if ((flags & dcb::fDtrControlHandshake) != 0) return 3;
    return 0;
}

void AwComm::SetHandshake(std::uint8_t mode) {
    std::uint32_t flags = format_.Flags & ~dcb::HandshakeMask;
    switch (mode) {
        case 0:
            flags |= dcb::fDtrControlEnable | dcb::fRtsControlEnable;
            break;
        case 1:
            flags |= dcb::fOutX | dcb::fInX | dcb::fDtrControlEnable | dcb::fRtsControlEnable;
            break;
        case 2:
            flags |= dcb::fOutxCtsFlow | dcb::fDtrControlEnable | dcb::fRtsControlHandshake;
            break;
        case 3:
            flags |= dcb::fOutxDsrFlow | dcb::fDtrControlHandshake | dcb::fDsrSensitivity |
                     dcb::fRtsControlEnable;
            break;
        default:  // only the clear applies
            break;
    }
    format_.Flags = flags;
}

bool AwComm::ModemBit(std::uint32_t bit) {
    std::uint32_t bits = 0;
    return PlatformModemStatus(bits) && (bits & bit) != 0;
}

bool AwComm::CD() {
    return ModemBit(modem::Rlsd);
}
bool AwComm::Dsr() {
    return ModemBit(modem::Dsr);
}
bool AwComm::Cts() {
    return ModemBit(modem::Cts);
}
bool AwComm::RI() {
    return ModemBit(modem::Ring);
}

void AwComm::SetDtr(bool on) {
    if (PlatformSetLine(true, on)) dtrState_ = on;
}

void AwComm::SetRts(bool on) {
    if (PlatformSetLine(false, on)) rtsState_ = on;
}

void AwComm::SetBreak(bool on) {
    PlatformBreak(on);
}

std::int32_t AwComm::WriteBufferDataSize() {
    std::int32_t count = 0;
    return PlatformQueued(false, count) ? count : -1;
}

std::int32_t AwComm::ReadBufferDataSize() {
    std::int32_t count = 0;
    return PlatformQueued(true, count) ? count : -1;
}

bool AwComm::OpenPort1() {
    lastError_ = {};
    if (portNumber_ < 1) {
        NoteFailure({PortError::NoSuchDevice, PortStep::Open, 0, {}, "port number 0"});
        return false;
    }
    ++platformOpens_;
    return PlatformOpen();
}

void AwComm::NoteFailure(PortFailure failure) {
    if (lastError_.kind == PortError::None) lastError_ = std::move(failure);
}

bool AwComm::OpenPort2(std::uint8_t number) {
    portNumber_ = number;
    return OpenPort1();
}

bool AwComm::ClosePort() {
    return PlatformClose();
}

bool AwComm::WriteBinary(const Bytes& bytes) {
    if (bytes.empty()) return true;
    return PlatformWrite(bytes);
}

Bytes AwComm::ReadBinary1() {
    std::int32_t waiting = 0;
    if (!PlatformQueued(true, waiting)) return {};
    return ReadBinary2(waiting);
}

Bytes AwComm::ReadBinary2(std::int32_t count) {
    if (count <= 0) return {};
    Bytes bytes(static_cast<std::size_t>(count));
    if (!PlatformRead(bytes.data(), count)) return {};
    return bytes;
}

bool AwComm::ClearReadBuffer() {
    return PlatformPurgeInput();
}

}  // namespace orbline
