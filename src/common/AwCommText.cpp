#include "common/AwCommText.h"

#include "common/AnsiCodec.h"

namespace orbline {
namespace {

QString BytesToText(const Bytes& bytes) {
    return PortText(bytes.data(), static_cast<qsizetype>(bytes.size()));
}

}  // namespace

QString ReadText1(AwComm& comm) {
    return BytesToText(comm.ReadBinary1());
}

QString ReadText2(AwComm& comm, std::int32_t count) {
    return BytesToText(comm.ReadBinary2(count));
}

bool WriteText(AwComm& comm, const QString& text) {
    Bytes bytes;
    bytes.reserve(static_cast<std::size_t>(text.size()));
    for (const QChar unit : text) bytes.push_back(static_cast<std::uint8_t>(unit.unicode() & 0xFF));
    return comm.WriteBinary(bytes);
}

}  // namespace orbline
