#include "ByteNotation.h"

#include <array>
#include <cstdio>

namespace orbline::sim {
namespace {

constexpr std::array<const char*, 32> kControlNames = {
    "NUL", "SOH", "STX", "ETX", "EOT", "ENQ", "ACK", "BEL", "BS",  "HT",  "LF",
    "VT",  "FF",  "CR",  "SO",  "SI",  "DLE", "DC1", "DC2", "DC3", "DC4", "NAK",
    "SYN", "ETB", "CAN", "EM",  "SUB", "ESC", "FS",  "GS",  "RS",  "US"};

constexpr std::uint8_t kStx = 0x02;
constexpr std::uint8_t kEtx = 0x03;
constexpr std::uint8_t kEtb = 0x17;

int HexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return -1;
}

bool AppendChecksum(Bytes& bytes, std::string& error) {
    std::size_t start = bytes.size();
    while (start > 0 && bytes[start - 1] != kStx) --start;
    if (start == 0 || bytes.size() == start || (bytes.back() != kEtx && bytes.back() != kEtb)) {
        error = "<SUM> must follow a frame from <STX> to <ETX> or <ETB>";
        return false;
    }
    unsigned sum = 0;
    for (std::size_t i = start; i < bytes.size(); ++i) sum += bytes[i];
    char digits[3];
    std::snprintf(digits, sizeof digits, "%02X", sum & 0xFFu);
    bytes.push_back(static_cast<std::uint8_t>(digits[0]));
    bytes.push_back(static_cast<std::uint8_t>(digits[1]));
    return true;
}

}  // namespace

std::optional<Bytes> ParseBytes(const std::string& text, std::string& error) {
    Bytes bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '<') {
            bytes.push_back(static_cast<std::uint8_t>(text[i]));
            continue;
        }
        const std::size_t close = text.find('>', i);
        if (close == std::string::npos) {
            error = "unclosed '<' at column " + std::to_string(i + 1);
            return std::nullopt;
        }
        const std::string name = text.substr(i + 1, close - i - 1);
        i = close;
        if (name == "SUM") {
            if (!AppendChecksum(bytes, error)) return std::nullopt;
            continue;
        }
        if (name == "LT") {  // a literal "<"
            bytes.push_back('<');
            continue;
        }
        if (name.size() == 3 && name[0] == 'x' && HexDigit(name[1]) >= 0 &&
            HexDigit(name[2]) >= 0) {
            bytes.push_back(static_cast<std::uint8_t>(HexDigit(name[1]) * 16 + HexDigit(name[2])));
            continue;
        }
        bool known = false;
        for (std::size_t code = 0; code < kControlNames.size(); ++code) {
            if (name == kControlNames[code]) {
                bytes.push_back(static_cast<std::uint8_t>(code));
                known = true;
                break;
            }
        }
        if (!known) {
            error = "unknown byte name <" + name + ">";
            return std::nullopt;
        }
    }
    return bytes;
}

std::string Visible(const Bytes& bytes) {
    std::string text;
    for (const std::uint8_t b : bytes) {
        if (b < kControlNames.size()) {
            text += '<';
            text += kControlNames[b];
            text += '>';
        } else if (b == '<') {
            text += "<LT>";
        } else if (b < 0x7F) {
            text += static_cast<char>(b);
        } else {
            char hex[7];
            std::snprintf(hex, sizeof hex, "<x%02X>", b);
            text += hex;
        }
    }
    return text;
}

Bytes Noise(std::size_t count, std::uint32_t& seed) {
    Bytes bytes;
    bytes.reserve(count);
    while (bytes.size() < count) {
        seed = seed * 1664525u + 1013904223u;
        const auto b = static_cast<std::uint8_t>(seed >> 24);
        if (b >= 0x20) bytes.push_back(b);
    }
    return bytes;
}

}  // namespace orbline::sim
