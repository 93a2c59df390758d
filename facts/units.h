// Sizes as the records give them, in bytes.
#pragma once

#include <cstdint>
#include <optional>

namespace facts {

/// Blocks of 512 bytes in bytes; nothing for 2^63 bytes and more, which no hardware has.
inline std::optional<std::uint64_t> bytesOfBlocks(std::uint64_t blocks) {
    constexpr std::uint64_t kBlock = 512;
    constexpr std::uint64_t kTooMany = (std::uint64_t{1} << 63U) / kBlock;
    if (blocks >= kTooMany)
        return std::nullopt;
    return blocks * kBlock;
}

/// The bytes of a stripe size code, 4 (8 KiB) to 11 (1 MiB); nothing for a code without a meaning.
inline std::optional<std::uint32_t> bytesOfStripeCode(std::uint8_t code) {
    constexpr std::uint8_t kLowest = 4;
    constexpr std::uint8_t kHighest = 11;
    if (code < kLowest || code > kHighest)
        return std::nullopt;
    return 512U << code;
}

} // namespace facts
