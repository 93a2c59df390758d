// A RAID group: arrays that share LDs.
#pragma once

#include "facts/object.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace facts {

struct FreeSegment {
    std::optional<std::uint64_t> bytes; ///< usable at the group's level
    std::optional<std::uint64_t> bytesPerDrive;
};

struct RaidGroup {
    std::string name; ///< "RG0", of a CacheCade group "scRG0"
    bool cachecade = false;
    std::optional<Word> level; ///< of its first LD by number
    std::vector<std::uint16_t> arrays;
    std::vector<std::optional<std::uint16_t>> physicalDrives; ///< device ids, array by array; nothing = empty position
    std::optional<std::uint64_t> usableBytes;
    std::optional<std::uint64_t> freeBytes;
    std::optional<std::vector<FreeSegment>> freeSegments;
    std::vector<std::uint8_t> logicalDrives;
    std::vector<std::uint16_t> spares; ///< device ids of its dedicated ones
};

} // namespace facts
