#include "main/zebcli_cmd_com/model/raid_level.h"

#include "main/zebcli_cmd_com/base/source.h"
#include "main/zebcli_cmd_com/base/trace.h"

#include <array>

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
