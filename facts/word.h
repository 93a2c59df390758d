// A code of the hardware in a word.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace facts {

inline constexpr std::string_view kUnknownWord = "unknown";

/// The word of a code; of a code without a word "unknown", and the code.
struct Word {
    std::string_view text; ///< a constant of the program
    std::optional<std::uint32_t> code; ///< only where there is no word for it

    bool operator==(std::string_view other) const { return text == other; }
};

/// One row of a vocabulary.
struct WordRow {
    std::uint32_t code;
    std::string_view text;
};

/// The word of the row with that code.
Word wordFor(std::span<const WordRow> rows, std::uint32_t code);

/// The vocabularies, for those that need every word of a set.
std::span<const WordRow> physicalDriveStates();
std::span<const WordRow> logicalDriveStates();
std::span<const WordRow> sensorStatuses();
std::span<const WordRow> operationTypes();
/// Bits of the cache backup unit's firmware status, by number.
std::span<const WordRow> cacheBackupStatuses();

} // namespace facts
