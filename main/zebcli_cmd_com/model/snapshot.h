// The controller snapshot: what the handlers read of every controller, taken once per run.
//
// A physical drive is named by its slot number, an LD by its target id, an array by its reference.
#pragma once

#include "main/zebcli_cmd_com/base/limits.h"
#include "main/zebcli_cmd_com/model/raid_group_numbers.h"
#include "storelib/records/views.h"

#include <cstdint>
#include <span>

/// The snapshot of one controller; its index in the array is the controller number. Allocated zeroed, filled by
/// AllocDriveInfo and UpdateDriveInfo, released by FreeDriveInfo.
struct _AFCONT {
    std::uint32_t count; ///< of the records in the array
    std::uint32_t configSize; ///< bytes of the configuration block
    _MR_CTRL_INFO ctrlInfo;
    _MR_ENCL_LIST enclList; ///< filled in the first record only, on purpose: the others read as having no enclosure
    std::uint16_t slotCount;
    _MR_PD_LIST* pdList;
    _MR_PD_INFO pdInfo[kMaxSlots]; ///< by slot number
    _MR_LD_LIST* ldList;
    _MR_LD_INFO ldInfo[kMaxLds]; ///< by target id
    _MR_CONFIG_DATA* config;
    _SL_ARRAY_INFO_T arrayInfo[kMaxArrays]; ///< by array reference
    ZEB_TRANS_RG_NO_LIST_T rgNoList;
    void* snapshotInfo[kMaxLds]; ///< by target id
    void* snapshotRepo[kMaxLds]; ///< by target id
};

/// One controller as the commands look at it: its number, and the snapshot in which that is its place.
struct Controller {
    unsigned char contNo;
    const _AFCONT* conts;

    const _AFCONT& cont() const { return conts[contNo]; }
    const _MR_PD_INFO& pd(unsigned char slotNo) const { return cont().pdInfo[slotNo]; }
    /// For an LD number below kMaxLds.
    const _MR_LD_INFO& ld(unsigned ldNo) const { return cont().ldInfo[ldNo]; }
};

/// Allocates the blocks of each record. Returns 1, or 0 at the first that fails; FreeDriveInfo releases the others.
int AllocDriveInfo(_AFCONT* conts, int count);

/// Reads everything from every controller. Returns 1, or 0 when a query failed; the records are partly filled then. A
/// failing snapshot feature is no failure.
int UpdateDriveInfo(_AFCONT* conts, int count);

/// What the operator is told where that failed.
inline constexpr char kAccessError[] =
    "Error - An error has occurred on accessing to RAID controller.\nQuits the application.\n";

/// Releases what the other two made; copes with partly filled records and with a null array.
void FreeDriveInfo(_AFCONT* conts, int count);

/// What the snapshot holds of the lists, cut to what there is room for.
std::span<const _MR_PD_ADDRESS> pdAddresses(const _AFCONT& cont);
std::span<const _MR_LD_LIST_ENTRY> ldEntries(const _AFCONT& cont);
std::span<const _MR_ARRAY> arraysOf(const _AFCONT& cont);
std::span<const _MR_LD_CONFIG> ldConfigsOf(const _AFCONT& cont);
std::span<const _MR_SPARE> sparesOf(const _AFCONT& cont);
