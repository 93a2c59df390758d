// RAID group numbers: the arrays that one LD spans go by one number.
#pragma once

#include "main/zebcli_cmd_com/base/limits.h"
#include "storelib/records/configuration.h"

#include <cstdint>
#include <span>

/// The group number of each array reference. The arrays that one LD spans share a number; CacheCade groups are counted
/// apart.
struct ZEB_TRANS_RG_NO_LIST_T {
    struct Entry {
        std::uint8_t known;
        std::uint8_t cacheCade;
        std::uint8_t groupNo;
    };
    Entry entry[kMaxArrays];
};

/// Numbers the groups from 0 in the order of the arrays.
void MakeTransformRGNo(std::span<const _MR_ARRAY> arrays, std::span<const _MR_LD_CONFIG> lds,
                       ZEB_TRANS_RG_NO_LIST_T& list);

/// The first LD with a span on that array, null when there is none.
const _MR_LD_CONFIG* ldOnArray(std::span<const _MR_LD_CONFIG> lds, std::uint16_t arrayRef);
