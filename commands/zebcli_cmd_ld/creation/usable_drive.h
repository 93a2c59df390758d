// Which drives can be taken for a new RAID group.
#pragma once

#include "main/zebcli_cmd_com/model/snapshot.h"

#include <cstdint>
#include <span>

/// Whether the drive in that slot is usable: unconfigured good, in no LD and no spare, without a foreign configuration,
/// idle, of some size, and the only one with its slot number. Where it is not, the reason stands in `reason`: the first
/// that holds. Reads the snapshot only.
bool isUsable(Controller ctrl, unsigned char slotNo, std::span<char> reason);
bool isUsable(Controller ctrl, unsigned char slotNo);

/// A drive as a plan saw it.
struct SeenDrive {
    std::uint8_t slotNo = 0;
    std::uint16_t deviceId = 0;
    std::uint64_t coercedSize = 0; ///< blocks

    bool operator==(const SeenDrive&) const = default;
};

/// The drive in that slot as the snapshot shows it.
SeenDrive seenDrive(Controller ctrl, unsigned char slotNo);

/// Whether the drive is still the one that was seen, and still usable.
bool isUnchanged(Controller ctrl, const SeenDrive& seen);
