// RAID groups: the arrays under one number each, the drives and LDs on them, and the texts that name them.
#pragma once

#include "main/zebcli_cmd_com/model/raid_level.h"
#include "storelib/records/configuration.h"

#include <cstdint>
#include <span>

struct _AFCONT;
struct Controller;

/// The group number of each array reference. The arrays that one LD spans share a number; CacheCade groups are counted
/// apart.
struct ZEB_TRANS_RG_NO_LIST_T {
    struct Entry {
        std::uint8_t known;
        std::uint8_t cacheCade;
        std::uint8_t groupNo;
    };
    Entry entry[128];
};

/// The groups that a dedicated spare can serve.
struct _RG_SEL_LIST_T {
    struct Entry {
        std::uint8_t groupNo;
        ZEB_RAID_LVL level;
        std::uint16_t arrayRef; ///< the array of the group's first span
    };
    std::uint32_t count;
    Entry entry[128];
};

/// Numbers the groups from 0 in the order of the configuration's arrays.
void MakeTransformRGNo(const _AFCONT& cont, ZEB_TRANS_RG_NO_LIST_T& list);

/// The drives of an array, empty positions included.
std::span<const _MR_ARRAY_PD> drivesOf(const _MR_ARRAY& array);

/// The array of the snapshot that holds the drive in that slot, null when none does; the last one that does.
const _MR_ARRAY* arrayOfPd(Controller ctrl, unsigned char slotNo);

/// The first LD with a span on that array, null when there is none.
const _MR_LD_CONFIG* ldOnArray(const _AFCONT& cont, std::uint16_t arrayRef);

/// The RAID level of the group that holds the drive, RAID0 when it is in none.
ZEB_RAID_LVL GetRaidLvlFromPD(unsigned char contNo, unsigned char slotNo, const _AFCONT* conts);

/// Lists the groups with redundancy, without the CacheCade ones, in number order.
void MakeRaidLvlList(unsigned char contNo, const _AFCONT* conts, _RG_SEL_LIST_T& list);

/// The name of an array's group: "RG%u", of a CacheCade group "scRG%u"; "-" when the array is not known.
void mkRaidGroupArrayStr(unsigned char contNo, const _AFCONT* conts, std::uint16_t arrayRef, std::span<char> out);

/// The group of the drive in that slot; of a dedicated spare the groups that it serves, joined with ", "; else "-".
void mkRaidGroupStr(unsigned char contNo, const _AFCONT* conts, unsigned char slotNo, std::span<char> out);

/// The LDs on the drive's group, "LD0, 1", in the group's order; "-" when there are none.
void mkLDStrListUsedHDD(unsigned char contNo, const _AFCONT* conts, unsigned char slotNo, std::span<char> out);

/// What a drive is used for: "GHS" for a global spare, "DHS" for a dedicated one, else mkLDStrListUsedHDD.
void mkLDAssignStr(unsigned char contNo, const _AFCONT* conts, unsigned char slotNo, std::span<char> out);
