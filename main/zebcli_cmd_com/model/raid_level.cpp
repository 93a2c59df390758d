#include "main/zebcli_cmd_com/model/raid_level.h"

#include "main/zebcli_cmd_com/base/source.h"
#include "main/zebcli_cmd_com/base/trace.h"

#include <array>

ZEB_RAID_LVL SLTransLateRAIDLvl(const _MR_LD_CONFIG* ld) {
    switch (ld->primaryRaidLevel) {
    case 0:
        return kRaid0;
    case 1:
        return ld->spanDepth > 1 ? kRaid10 : kRaid1;
    case 5:
        return kRaid5;
    case 6:
        return kRaid6;
    default:
        return kRaidUnknown;
    }
}

const char* RaidlvlToStr(ZEB_RAID_LVL level, unsigned char contNo) {
    static constexpr std::array<const char*, kRaidLevels> kNames{"RAID0", "RAID1", "RAID5", "RAID6", "RAID10"};
    if (level < kNames.size())
        return kNames[level];
    traceFailure({kComSource, __func__}, "raidlvl_Invalid", onLevelWithoutCommas(contNo, level));
    return nullptr;
}

const char* raidLevelText(ZEB_RAID_LVL level, unsigned char contNo) {
    const char* name = RaidlvlToStr(level, contNo);
    return name != nullptr ? name : "";
}
