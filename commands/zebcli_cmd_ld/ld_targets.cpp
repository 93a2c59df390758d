#include "commands/zebcli_cmd_ld/ld_targets.h"

#include "log/zebcli_log.h"

#include <algorithm>

SelectedLds selectedLds(const LdList& listed, Controller ctrl) {
    SelectedLds selected{};
    for (unsigned ldNo = 0; ldNo < kMaxLds; ++ldNo) {
        const auto number = static_cast<unsigned char>(ldNo);
        if (std::find(listed.begin(), listed.end(), number) != listed.end() &&
            IsExistLD(ctrl.contNo, number, ctrl.conts) != 0)
            selected.ldNo[selected.count++] = number;
    }
    return selected;
}

void sayNoLd(unsigned char contNo, int line) {
    CliLogging(kPrintAndLog, kLdSource, line, "Error - Controller[%d] The specified %s doesn't exist.", contNo,
               "Logical Drive");
}

const char* shownLevel(ZEB_RAID_LVL level, bool cacheCade, unsigned char contNo) {
    if (cacheCade)
        return "CacheCade";
    const char* name = RaidlvlToStr(level, contNo);
    return name != nullptr ? name : "-";
}

unsigned short driveCountOf(const _MR_LD_CONFIG& ld) {
    return static_cast<unsigned short>(ld.numDrives * spansOf(ld).size());
}

bool isSnapshotLd(const _MR_LD_INFO& ld) {
    return ld.config.snapshotSource != 0 || (ld.snapshotUse & kLdIsRepository) != 0;
}
