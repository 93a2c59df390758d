// Background work on a drive or an LD.
#pragma once

#include "facts/word.h"

#include <cstdint>
#include <optional>

namespace facts {

struct Operation {
    std::string_view type; ///< a word of operationTypes()
    std::uint16_t progress = 0; ///< 65535 is all of it
    std::uint16_t elapsedSeconds = 0;

    unsigned percent() const; ///< whole, rounded down
    double ratio() const; ///< 0 to 1
    /// What is left at the pace so far; nothing at its start, and at the end of the hardware's counter of seconds.
    std::optional<std::uint32_t> remainingSeconds() const;
};

} // namespace facts
