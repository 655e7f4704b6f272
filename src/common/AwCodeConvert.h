#pragma once
// Single bytes between ASCII and the two punched-tape codes, ISO and EIA, for the console's
// text modes "テキスト(ISO)" and "テキスト(EIA)". No dialogue uses it.

#include <array>
#include <cstdint>

namespace orbline {

class AwCodeConvert {
  public:
    // Source code numbers of the conversions; any other number gives 0.
    static constexpr int Ascii = 0;
    static constexpr int Iso = 1;
    static constexpr int Eia = 2;

    // The one object, made on first use and never changed after.
    static const AwCodeConvert& Instance();

    // The byte in the target code; unchanged when the source is the target, 0 when the target
    // has no such character.
    std::uint8_t ConvertToAscii(std::uint8_t byte, int source) const;
    std::uint8_t ConvertToIso(std::uint8_t byte, int source) const;
    std::uint8_t ConvertToEia(std::uint8_t byte, int source) const;

  private:
    using Table = std::array<std::uint8_t, 256>;

    AwCodeConvert();
    std::uint8_t Convert(std::uint8_t byte, int source, int target) const;

    Table asciiToIso_{};
    Table asciiToEia_{};
    Table isoToAscii_{};
    Table eiaToAscii_{};
    Table isoToEia_{};
    Table eiaToIso_{};
};

}  // namespace orbline
