#include "support/Frames.h"

#include "common/AnsiCodec.h"

#include <algorithm>

namespace orbline::test {

std::string Frame(const std::string& text, const std::string& end) {
    return "<STX>" + text + end + "<SUM><CR><LF>";
}

QString PortBytes(const std::string& notation) {
    const sim::Bytes bytes = Notation(notation);
    return PortText(bytes.data(), static_cast<qsizetype>(bytes.size()));
}

namespace {

std::string PadLeft(const std::string& text, std::size_t width) {
    return text.size() >= width ? text : std::string(width - text.size(), ' ') + text;
}

}  // namespace

std::string ChemistryFrame(char mark, const std::string& id, const std::vector<std::string>& groups,
                           const std::string& dateTime) {
    // Positions 3 to 14, the identifier (15 to 27), 28 to 32, then the date and time (33 to 42).
    std::string frame = std::string("<STX>") + mark + "01" + "00001" + "N" + "001" + " " + id +
                        std::string(13 - std::min<std::size_t>(id.size(), 13), ' ') + "00000" +
                        dateTime;
    if (mark != ';') {
        frame += "000000" + PadLeft(std::to_string(groups.size()), 3);
        for (const std::string& group : groups) frame += group;
    }
    return frame + "<ETX>";
}

std::string ItemGroup(const std::string& number, const std::string& value, char mark) {
    return PadLeft(number, 3) + PadLeft(value, 6) + mark;
}

}  // namespace orbline::test
