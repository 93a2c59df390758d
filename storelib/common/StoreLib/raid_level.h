// RAID levels as the program stores them.
#pragma once

#include "storelib/records/logical_drive.h"

#include <cstdint>

enum ZEB_RAID_LVL : std::uint32_t {
    kRaid0 = 0,
    kRaid1 = 1,
    kRaid5 = 2,
    kRaid6 = 3,
    kRaid10 = 4, ///< a spanned RAID1
    kRaidLevels = 5,
    kRaidUnknown = kRaidLevels, ///< a level of the firmware that the program does not know
};

/// The level of an LD, from its primary RAID level and its span depth.
ZEB_RAID_LVL SLTransLateRAIDLvl(const _MR_LD_CONFIG* ld);
