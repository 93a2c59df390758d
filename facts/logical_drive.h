// A logical drive.
#pragma once

#include "facts/object.h"
#include "facts/operation.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace facts {

/// What the LD's own information tells.
struct LogicalDriveInfo {
    std::optional<std::string> name;
    std::optional<std::string> raidGroup;
    Word level;
    std::optional<std::uint64_t> sizeBytes;
    Word state;
    std::optional<std::uint32_t> stripeBytes;
    unsigned spanDepth = 0;
    unsigned drivesPerSpan = 0;
    Word access;
    Word diskCache;
    Word readPolicy;
    Word ioPolicy;
    Word defaultWritePolicy;
    Word currentWritePolicy;
    std::optional<std::string> osDevice;
    std::optional<bool> osInstalled;
    bool cachecade = false;
    bool snapshotSource = false;
    bool snapshotRepository = false;
    Word initialization;
    bool consistent = false;
    std::vector<Operation> operations;

    /// Set to write back, but writing through just now.
    bool writeBackLost() const;
};

struct LogicalDrive {
    std::uint8_t number = 0;
    std::optional<Failure> error; ///< its information could not be read
    std::optional<LogicalDriveInfo> info; ///< there unless it could not
};

} // namespace facts
