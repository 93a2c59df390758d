// Background work under way: which there is, on what, and how that fares.
#pragma once

#include "facts/collection.h"
#include "zebstat/options.h"

#include <compare>
#include <cstdint>
#include <string>
#include <vector>

namespace zebstat {

/// A drive, by its device id, or an LD, by its number.
struct WorkObject {
    std::uint8_t controller = 0;
    bool isLd = false;
    std::uint16_t id = 0;
    auto operator<=>(const WorkObject&) const = default;
};

/// One operation, and whose it is.
struct Work {
    WorkObject object;
    std::string name; ///< of the object, as a person calls it: "PD7", "LD3 'DATA'"
    facts::Operation operation;
    std::vector<std::uint8_t> logicalDrives; ///< the LDs that it concerns
};

/// All work, by controller, LDs first.
std::vector<Work> workOf(const facts::Collection& collection);

/// Why the object is not well, as a sentence; empty when it is: an LD that is optimal, a drive that is there and has
/// not failed.
std::string ailmentOf(const facts::Collection& collection, const WorkObject& object);

} // namespace zebstat
