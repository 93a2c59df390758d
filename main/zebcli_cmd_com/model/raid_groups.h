// RAID groups: the arrays under one number each, and the drives and LDs on them.
#pragma once

#include "main/zebcli_cmd_com/base/limits.h"
#include "main/zebcli_cmd_com/model/raid_level.h"
#include "main/zebcli_cmd_com/model/snapshot.h"
#include "storelib/records/configuration.h"

#include <cstdint>
#include <span>

/// The groups that a dedicated spare can serve.
struct _RG_SEL_LIST_T {
    struct Entry {
        std::uint8_t groupNo;
        ZEB_RAID_LVL level;
        std::uint16_t arrayRef; ///< the array of the group's first span
    };
    std::uint32_t count;
    Entry entry[kMaxArrays];
};

/// The array of the snapshot that holds the drive in that slot, null when none does; the last one that does.
const _MR_ARRAY* arrayOfPd(Controller ctrl, unsigned char slotNo);

/// The RAID level of the group that holds the drive, RAID0 when it is in none.
ZEB_RAID_LVL GetRaidLvlFromPD(unsigned char contNo, unsigned char slotNo, const _AFCONT* conts);

/// Lists the groups with redundancy, without the CacheCade ones, in number order.
void MakeRaidLvlList(unsigned char contNo, const _AFCONT* conts, _RG_SEL_LIST_T& list);
