#include "common/AwCodeConvert.h"

#include <bit>
#include <utility>

namespace orbline {

namespace {

// The EIA punched-tape code of the characters it has; letters of both cases share a code.
constexpr std::pair<char, std::uint8_t> kEiaCodes[] = {
    {'\b', 0x2A}, {'\t', 0x3E}, {'\n', 0x80}, {' ', 0x10}, {'%', 0x0B},    {'&', 0x0E}, {'(', 0x1A},
    {')', 0x4A},  {'+', 0x70},  {',', 0x3B},  {'-', 0x40}, {'\x7F', 0x7F}, {'.', 0x6B}, {'/', 0x31},
    {'0', 0x20},  {'1', 0x01},  {'2', 0x02},  {'3', 0x13}, {'4', 0x04},    {'5', 0x15}, {'6', 0x16},
    {'7', 0x07},  {'8', 0x08},  {'9', 0x19},  {'A', 0x61}, {'B', 0x62},    {'C', 0x73}, {'D', 0x64},
    {'E', 0x75},  {'F', 0x76},  {'G', 0x67},  {'H', 0x68}, {'I', 0x79},    {'J', 0x51}, {'K', 0x52},
    {'L', 0x43},  {'M', 0x54},  {'N', 0x45},  {'O', 0x46}, {'P', 0x57},    {'Q', 0x58}, {'R', 0x49},
    {'S', 0x32},  {'T', 0x23},  {'U', 0x34},  {'V', 0x25}, {'W', 0x26},    {'X', 0x37}, {'Y', 0x38},
    {'Z', 0x29},
};

}  // namespace

const AwCodeConvert& AwCodeConvert::Instance() {
    static const AwCodeConvert instance;
    return instance;
}

AwCodeConvert::AwCodeConvert() {
    // ISO is ASCII with even parity in bit 7.
    for (unsigned a = 0; a < 128; ++a)
        asciiToIso_[a] = static_cast<std::uint8_t>(std::popcount(a) % 2 == 0 ? a : a + 128);
    for (const auto& [c, eia] : kEiaCodes) {
        const auto upper = static_cast<unsigned char>(c);
        asciiToEia_[upper] = eia;
        if (upper >= 'A' && upper <= 'Z') asciiToEia_[upper + ('a' - 'A')] = eia;
    }
    // The reverse tables, from ASCII position 0 up: where two characters share a code, the
    // first one, the upper-case letter, keeps it.
    for (unsigned a = 0; a < 128; ++a) {
        const std::uint8_t iso = asciiToIso_[a];
        const std::uint8_t eia = asciiToEia_[a];
        if (iso != 0) isoToAscii_[iso] = static_cast<std::uint8_t>(a);
        if (eia != 0 && eiaToAscii_[eia] == 0) eiaToAscii_[eia] = static_cast<std::uint8_t>(a);
        if (iso != 0 && eia != 0) {
            isoToEia_[iso] = eia;
            if (eiaToIso_[eia] == 0) eiaToIso_[eia] = iso;
        }
    }
}

std::uint8_t AwCodeConvert::Convert(std::uint8_t byte, int source, int target) const {
    if (source < Ascii || source > Eia) return 0;
    if (source == target) return byte;
    // Indexed by source and target; the diagonal is never read.
    const Table* const tables[3][3] = {
        {nullptr, &asciiToIso_, &asciiToEia_},
        {&isoToAscii_, nullptr, &isoToEia_},
        {&eiaToAscii_, &eiaToIso_, nullptr},
    };
    return (*tables[source][target])[byte];
}

std::uint8_t AwCodeConvert::ConvertToAscii(std::uint8_t byte, int source) const {
    return Convert(byte, source, Ascii);
}

std::uint8_t AwCodeConvert::ConvertToIso(std::uint8_t byte, int source) const {
    return Convert(byte, source, Iso);
}

std::uint8_t AwCodeConvert::ConvertToEia(std::uint8_t byte, int source) const {
    return Convert(byte, source, Eia);
}

}  // namespace orbline
