// Asks the library, each question once. What cannot be read is an error beside the facts, never the end of them.
#pragma once

#include "facts/collection.h"

#include <cstdint>
#include <span>

namespace facts {

enum class Scope {
    Everything,
    Work, ///< drives, groups and LDs with their states and their work, without temperatures and sizes of free space
};

/// The facts of those controllers of the library, which has been initialised.
Collection collect(std::span<const std::uint8_t> controllers, Scope scope = Scope::Everything);

} // namespace facts
