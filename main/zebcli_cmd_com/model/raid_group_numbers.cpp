#include "main/zebcli_cmd_com/model/raid_group_numbers.h"

#include "storelib/records/views.h"

#include <algorithm>

void MakeTransformRGNo(std::span<const _MR_ARRAY> arrays, std::span<const _MR_LD_CONFIG> lds,
                       ZEB_TRANS_RG_NO_LIST_T& list) {
    list = ZEB_TRANS_RG_NO_LIST_T{};
    std::uint8_t nextGroup = 0;
    std::uint8_t nextCacheCadeGroup = 0;
    for (const _MR_ARRAY& array : arrays) {
        const std::uint16_t arrayRef = array.arrayRef;
        if (arrayRef >= kMaxArrays || list.entry[arrayRef].known != 0)
            continue;
        const _MR_LD_CONFIG* ld = ldOnArray(lds, arrayRef);
        const bool cacheCade = ld != nullptr && ld->cacheCade != 0;
        std::uint8_t& next = cacheCade ? nextCacheCadeGroup : nextGroup;
        const ZEB_TRANS_RG_NO_LIST_T::Entry entry{1, static_cast<std::uint8_t>(cacheCade), next++};
        list.entry[arrayRef] = entry;
        if (ld == nullptr)
            continue;
        for (const _MR_SPAN& span : spansOf(*ld))
            if (span.arrayRef < kMaxArrays && list.entry[span.arrayRef].known == 0)
                list.entry[span.arrayRef] = entry;
    }
}

const _MR_LD_CONFIG* ldOnArray(std::span<const _MR_LD_CONFIG> lds, std::uint16_t arrayRef) {
    const auto found = std::find_if(lds.begin(), lds.end(), [&](const _MR_LD_CONFIG& ld) {
        const auto spans = spansOf(ld);
        return std::any_of(spans.begin(), spans.end(), [&](const _MR_SPAN& span) { return span.arrayRef == arrayRef; });
    });
    return found != lds.end() ? &*found : nullptr;
}
