// Bytes as text: hexadecimal digits in lower case, a run of zero bytes as its length in brackets ("0a0b[120]ff").
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zebrec {

std::string hexOf(std::span<const std::uint8_t> bytes);

/// The bytes of such a text, or nothing when it is malformed or would give more than `most` bytes.
std::optional<std::vector<std::uint8_t>> bytesOfHex(std::string_view text, std::size_t most);

} // namespace zebrec
