#include "support/Frames.h"

#include "common/AnsiCodec.h"

namespace orbline::test {

std::string Frame(const std::string& text, const std::string& end) {
    return "<STX>" + text + end + "<SUM><CR><LF>";
}

QString PortBytes(const std::string& notation) {
    const sim::Bytes bytes = Notation(notation);
    return PortText(bytes.data(), static_cast<qsizetype>(bytes.size()));
}

}  // namespace orbline::test
