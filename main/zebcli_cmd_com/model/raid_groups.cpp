#include "main/zebcli_cmd_com/model/raid_groups.h"

#include "main/zebcli_cmd_com/model/lookup.h"

#include <algorithm>
#include <array>

const _MR_ARRAY* arrayOfPd(Controller ctrl, unsigned char slotNo) {
    unsigned short deviceId = 0;
    if (GetDeviceId(ctrl.contNo, ctrl.conts, slotNo, &deviceId) == 0)
        return nullptr;
    const _MR_ARRAY* holder = nullptr;
    for (const _MR_ARRAY& array : arraysOf(ctrl.cont())) {
        const auto drives = drivesOf(array);
        if (std::any_of(drives.begin(), drives.end(),
                        [&](const _MR_ARRAY_PD& drive) { return drive.ref.deviceId == deviceId; }))
            holder = &array;
    }
    return holder;
}

ZEB_RAID_LVL GetRaidLvlFromPD(unsigned char contNo, unsigned char slotNo, const _AFCONT* conts) {
    const _MR_ARRAY* array = arrayOfPd({contNo, conts}, slotNo);
    const _MR_LD_CONFIG* ld = array != nullptr ? ldOnArray(ldConfigsOf(conts[contNo]), array->arrayRef) : nullptr;
    return ld != nullptr ? SLTransLateRAIDLvl(ld) : kRaid0;
}

void MakeRaidLvlList(unsigned char contNo, const _AFCONT* conts, _RG_SEL_LIST_T& list) {
    list.count = 0;
    const _AFCONT& cont = conts[contNo];
    std::array<bool, kMaxArrays> listed{};
    for (const _MR_ARRAY& array : arraysOf(cont)) {
        const _MR_LD_CONFIG* ld = ldOnArray(ldConfigsOf(cont), array.arrayRef);
        if (array.arrayRef >= kMaxArrays || ld == nullptr || ld->cacheCade != 0)
            continue;
        const ZEB_TRANS_RG_NO_LIST_T::Entry& group = cont.rgNoList.entry[array.arrayRef];
        const ZEB_RAID_LVL level = SLTransLateRAIDLvl(ld);
        if (level == kRaid0 || level == kRaidUnknown || group.groupNo >= kMaxArrays || listed[group.groupNo])
            continue;
        listed[group.groupNo] = true;
        list.entry[list.count++] = {group.groupNo, level, ld->span[0].arrayRef};
    }
    std::sort(list.entry, list.entry + list.count, [](const auto& a, const auto& b) { return a.groupNo < b.groupNo; });
}
