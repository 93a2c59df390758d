// The texts that name RAID groups and what a drive is used for.
#pragma once

#include "main/zebcli_cmd_com/model/snapshot.h"

#include <cstdint>
#include <span>

/// The name of an array's group: "RG%u", of a CacheCade group "scRG%u"; "-" when the array is not known.
void mkRaidGroupArrayStr(unsigned char contNo, const _AFCONT* conts, std::uint16_t arrayRef, std::span<char> out);

/// The group of the drive in that slot; of a dedicated spare the groups that it serves, joined with ", "; else "-".
void mkRaidGroupStr(unsigned char contNo, const _AFCONT* conts, unsigned char slotNo, std::span<char> out);

/// The LDs on the drive's group, "LD0, 1", in the group's order; "-" when there are none.
void mkLDStrListUsedHDD(unsigned char contNo, const _AFCONT* conts, unsigned char slotNo, std::span<char> out);

/// What a drive is used for: "GHS" for a global spare, "DHS" for a dedicated one, else mkLDStrListUsedHDD.
void mkLDAssignStr(unsigned char contNo, const _AFCONT* conts, unsigned char slotNo, std::span<char> out);
