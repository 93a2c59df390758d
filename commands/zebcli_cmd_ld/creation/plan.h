// What is about to be created on one controller, with copies of all that it rests on: the last look before the first
// change reads the snapshot anew. Sizes are blocks of 512 bytes.
#pragma once

#include "commands/zebcli_cmd_ld/creation/construction.h"
#include "commands/zebcli_cmd_ld/creation/existing_group.h"
#include "commands/zebcli_cmd_ld/creation/usable_drive.h"
#include "main/zebcli_cmd_com/base/bounded_list.h"

#include <array>
#include <cstdint>
#include <span>

/// The wanted sizes of LDs in MB of 1024 x 1024 bytes, in the order of the LDs.
using LdSizes = BoundedList<std::uint32_t, kMaxLds>;
using LdNumbers = BoundedList<std::uint8_t, kMaxLds>;

/// The initialization that new LDs get.
inline constexpr std::uint8_t kNoInitialization = 0;
inline constexpr std::uint8_t kQuickInitialization = 1;

struct CreationPlan {
    Controller ctrl;
    _SL_CREATE_LD_INFO_T info;
    std::array<std::uint64_t, 2> freeSpace; ///< usable capacity that each group leaves free
    BoundedList<SeenDrive, kMaxSlots> drives; ///< of all groups, in order
    BoundedList<SeenDrive, 2> spares; ///< to become global hot spares, ascending
    bool inFreeSpace; ///< the LDs go into a group that is there
    ExistingGroup existing; ///< that group
    BoundedList<_MR_ARRAY, kMaxSpans> arrays; ///< its arrays, as the last look read them
    LdNumbers associated; ///< the LDs that a CacheCade LD is to serve
    LdNumbers ldsBefore; ///< the LDs that were there at the last look

    bool isCacheCade() const { return info.arrayCount != 0 && info.array[0].cacheCade != 0; }
};

/// Starts a plan anew.
void startPlan(CreationPlan& plan, Controller ctrl);

/// Adds a group on those drives, without LDs, with the stripe size of new LDs.
PlannedArray& addGroup(CreationPlan& plan, ZEB_RAID_LVL level, std::span<const std::uint8_t> slots);

/// The stripe size code of a new LD: the default one, or the nearest that the controller takes.
std::uint8_t plannedStripeSize(const _MR_CTRL_INFO& info);

/// The blocks of one stripe on one drive.
inline std::uint64_t stripeBlocks(std::uint8_t stripeSize) {
    return std::uint64_t{1} << stripeSize;
}

/// Lays LDs into the free segments: one for each size, rounded up to whole stripes, into the first segment that has
/// room; without sizes one LD on all whole stripes of the largest segment. The segments begin with a whole stripe; what
/// is left of them stands in them afterwards. Returns false when something does not fit.
bool placeLds(PlannedArray& group, const LdSizes& sizes, FreeSegments& segments);

/// The usable capacity of segments at the group's level.
std::uint64_t capacityOf(const PlannedArray& group, const FreeSegments& segments);

/// The segments that count for further LDs of the group: each from its first whole stripe on, and only where it gives
/// more than 4 MB for each drive.
FreeSegments countingSegments(const PlannedArray& group, const FreeSegments& segments);

/// The name of the group whose free space the plan uses.
struct GroupName {
    char text[16];
};
GroupName groupName(const CreationPlan& plan);

/// Numbers LDs and arrays of the plan, for which the controller must have room, and gives them their default settings.
/// Asks the library for the drives.
void completePlan(CreationPlan& plan, std::uint8_t initType);

/// Whether a CacheCade LD can be made to serve the LD: it exists, is none itself, and is not Cached IO yet.
bool isAssociable(Controller ctrl, std::uint8_t ldNo);

/// Whether what the plan rests on is as it was, by a snapshot read anew: the drives, or the group with its LDs and free
/// space; the numbers; the LDs to associate. Takes over what the request needs of it.
bool stillHolds(CreationPlan& plan);
