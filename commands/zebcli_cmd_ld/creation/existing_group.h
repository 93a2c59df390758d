// A RAID group that is there already, for further LDs in its free space.
#pragma once

#include "commands/zebcli_cmd_ld/creation/usable_drive.h"
#include "main/zebcli_cmd_com/base/bounded_list.h"
#include "main/zebcli_cmd_com/model/raid_level.h"
#include "storelib/records/configuration.h"

#include <cstdint>
#include <span>

/// An LD of the group as a plan saw it.
struct GroupLd {
    std::uint8_t ldNo = 0;
    ZEB_RAID_LVL level = kRaidUnknown;
    std::uint8_t spanDepth = 0;
    std::uint8_t state = 0;
    bool cacheCade = false;
    bool reconstructs = false;
    std::uint64_t startBlock = 0; ///< of its first span
    std::uint64_t blocks = 0;

    bool operator==(const GroupLd&) const = default;
};

/// A free stretch of the group: the same place on each of its drives.
struct FreeSegment {
    std::uint64_t start = 0;
    std::uint64_t blocks = 0;

    bool operator==(const FreeSegment&) const = default;
};
using FreeSegments = BoundedList<FreeSegment, kMaxFreeSegments>;

/// The group as a plan saw it. Its arrays, and the drives that are left in them, are in span order.
struct ExistingGroup {
    BoundedList<std::uint16_t, kMaxSpans> arrayRefs;
    BoundedList<SeenDrive, kMaxSlots> drives;
    BoundedList<GroupLd, kMaxLds> lds; ///< ascending
    FreeSegments segments; ///< free on all arrays, ascending

    bool operator==(const ExistingGroup&) const = default;
};

/// The array of the snapshot with that reference, null when there is none.
const _MR_ARRAY* arrayByRef(const _AFCONT& cont, std::uint16_t arrayRef);

/// Finds the group that has an LD and exactly these drives, in any order; of a RAID10 each pair of them must form a
/// span. Its free segments are left empty. Reads the snapshot only.
bool findGroup(Controller ctrl, std::span<const std::uint8_t> slots, bool inPairs, ExistingGroup& group);

/// Reads the free segments of the group afresh. Returns the status of the first read that failed.
std::uint32_t readFreeSegments(Controller ctrl, ExistingGroup& group);

/// Takes the free segments of the group from the snapshot.
void takeFreeSegments(Controller ctrl, ExistingGroup& group);

/// Whether LDs of that level can be added: all LDs of the group are of the level, none of them is a CacheCade LD.
bool isGroupOfLevel(const ExistingGroup& group, ZEB_RAID_LVL level);

/// Whether every LD of the group is optimal and none is in reconstruction.
bool isGroupHealthy(const ExistingGroup& group);
