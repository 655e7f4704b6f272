#pragma once
// The notation of bytes in simulator scripts and logs: printable ASCII as it stands, control
// bytes by name (<STX>, <ACK>, <CR>, ...), any other byte as <xHH>. In a script, <SUM> stands
// for the two hexadecimal digits of the checksum of the frame before it: the sum modulo 256 of
// the bytes after the last <STX> up to and including the <ETX> or <ETB>.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace orbline::sim {

using Bytes = std::vector<std::uint8_t>;

// Empty optional and a reason in `error` for an unknown name or an unclosed "<".
std::optional<Bytes> ParseBytes(const std::string& text, std::string& error);
std::string Visible(const Bytes& bytes);

// Pseudo-random bytes from a seed, none of them a control byte, so that noise never frames
// anything by chance. The seed moves on, so two calls give different noise.
Bytes Noise(std::size_t count, std::uint32_t& seed);

}  // namespace orbline::sim
