// Requests that add LDs to the configuration. Statuses as in storelib/records/status.h; 0 is success.
//
// One request carries all groups of a plan, so that either every LD of it is there afterwards or none.
#pragma once

#include "storelib/common/StoreLib/raid_level.h"
#include "storelib/records/configuration.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <span>

/// A planned configuration: RAID groups, each with its drives and the LDs on it. Sizes are blocks of 512 bytes.
struct _SL_CREATE_LD_INFO_T {
    struct Ld {
        std::uint8_t ldNo;
        char name[16];
        std::uint64_t size; ///< usable
        std::uint8_t initType;
        std::uint64_t startBlock; ///< on each drive
        std::uint64_t blocksPerPd;
    };
    struct Array {
        ZEB_RAID_LVL level;
        std::uint16_t pdCount;
        std::uint8_t slotNo[kMaxSpans * kMaxArrayDrives]; ///< in order; of a RAID10 span by span
        std::uint8_t accessPolicy;
        std::uint8_t diskCachePolicy;
        std::uint8_t defaultCachePolicy;
        std::uint8_t stripeSize; ///< stripe size code
        std::uint8_t ldCount;
        Ld ld[64];
        std::uint8_t cacheCade;
        std::uint16_t arrayRef[kMaxSpans]; ///< one for each span
    };
    std::uint8_t arrayCount;
    Array array[2];
};
using PlannedArray = _SL_CREATE_LD_INFO_T::Array;
using PlannedLd = _SL_CREATE_LD_INFO_T::Ld;

/// The groups of a plan, the drives and the LDs of a group, cut to the room there is.
inline std::span<PlannedArray> groupsOf(_SL_CREATE_LD_INFO_T& plan) {
    return {plan.array, std::min<std::size_t>(plan.arrayCount, std::size(plan.array))};
}
inline std::span<const PlannedArray> groupsOf(const _SL_CREATE_LD_INFO_T& plan) {
    return {plan.array, std::min<std::size_t>(plan.arrayCount, std::size(plan.array))};
}
inline std::span<const std::uint8_t> slotsOf(const PlannedArray& group) {
    return {group.slotNo, std::min<std::size_t>(group.pdCount, std::size(group.slotNo))};
}
inline std::span<PlannedLd> ldsOf(PlannedArray& group) {
    return {group.ld, std::min<std::size_t>(group.ldCount, std::size(group.ld))};
}
inline std::span<const PlannedLd> ldsOf(const PlannedArray& group) {
    return {group.ld, std::min<std::size_t>(group.ldCount, std::size(group.ld))};
}

/// The spans of that many drives: a RAID10 has one for every two of them, any other level one.
inline unsigned spanCountOf(ZEB_RAID_LVL level, unsigned drives) {
    return level == kRaid10 ? std::min(drives / 2, kMaxSpans) : 1;
}
inline unsigned spanCountOf(const PlannedArray& group) {
    return spanCountOf(group.level, group.pdCount);
}

/// Makes the groups of the plan, each of new arrays. The sequence numbers of the drives are read just before the send.
std::uint32_t SLCreateLD(unsigned char contNo, const _SL_CREATE_LD_INFO_T* plan);

/// Makes the CacheCade LD of the plan, on a new array.
std::uint32_t SLCreateCacheCadeLD(unsigned char contNo, const _SL_CREATE_LD_INFO_T* plan);

/// Makes the LDs of the plan's only group in the free space of the arrays that form it, as the configuration has them,
/// span by span. Returns 12 when the drives of the arrays are not the group's.
std::uint32_t SLAddLDToRG(unsigned char contNo, const _SL_CREATE_LD_INFO_T* plan, std::span<const _MR_ARRAY> arrays);
