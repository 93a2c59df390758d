#include "commands/zebcli_cmd_ld/creation/rules.h"

#include "commands/zebcli_cmd_ld/creation/numbers.h"
#include "log/zebcli_log.h"
#include "main/zebcli_cmd_com/base/source.h"

#include <algorithm>
#include <array>

namespace {

constexpr unsigned kDrivesPerRaid10Span = 2;

/// The fewest and the most drives of one span of a level, and the multiple that all drives must be, whatever the
/// patterns say. A RAID10 of one span would read back as RAID1.
struct DriveCounts {
    unsigned least;
    unsigned most;
    unsigned multiple;
};
constexpr std::array<DriveCounts, kRaidLevels> kDriveCounts{
    {{1, kMaxArrayDrives, 1}, {2, 2, 1}, {3, kMaxArrayDrives, 1}, {3, kMaxArrayDrives, 1}, {4, kMaxSlots, 2}}};

/// A limit of 0 is none.
bool isWithin(unsigned number, unsigned limit) {
    return limit == 0 || number <= limit;
}

} // namespace

bool canBuild(Controller ctrl, ZEB_RAID_LVL level, bool cacheCade, unsigned drives) {
    const DriveCounts& counts = kDriveCounts[level];
    const unsigned spans = level == kRaid10 ? drives / kDrivesPerRaid10Span : 1;
    const unsigned drivesPerSpan = level == kRaid10 ? kDrivesPerRaid10Span : drives;
    const _MR_CTRL_INFO& info = ctrl.cont().ctrlInfo;
    return (cacheCade || isRaidConstructOk(drives, level, ctrl.conts, ctrl.contNo) != 0) && drives >= counts.least &&
           drives <= counts.most && drives % counts.multiple == 0 &&
           isWithin(drives, GetMaxPdNumForRaidLvl(level, ctrl.conts, ctrl.contNo)) &&
           isWithin(drivesPerSpan, info.maxArms) && spans <= kMaxSpans && isWithin(spans, info.maxSpans);
}

bool hasRoom(Controller ctrl, NewObjects wanted) {
    const _MR_CTRL_INFO& info = ctrl.cont().ctrlInfo;
    return takenLds(ctrl.cont()).count() + wanted.lds <= ldLimit(info) &&
           takenArrays(ctrl.cont()).count() + wanted.arrays <= arrayLimit(info);
}

bool refuseTooMany(Controller ctrl, NewObjects wanted) {
    const _MR_CTRL_INFO& info = ctrl.cont().ctrlInfo;
    if (hasRoom(ctrl, wanted))
        return false;
    if (!hasRoom(ctrl, {wanted.lds, 0}))
        CliLogging(kPrintAndLog, kLdSource, __LINE__,
                   "Error - Controller[%d] The number of LDs(Logical Drives) is over %d.", ctrl.contNo,
                   static_cast<int>(ldLimit(info)));
    else
        CliLogging(kPrintAndLog, kLdSource, __LINE__, "Error - Controller[%d] The number of RAID Groups is over %d.",
                   ctrl.contNo, static_cast<int>(arrayLimit(info)));
    return true;
}

void keepUnconfigured(std::span<const std::uint8_t> slots) {
    unconfiguredPds = static_cast<unsigned>(std::min(slots.size(), unconfiguredPdList.size()));
    std::copy_n(slots.begin(), unconfiguredPds, unconfiguredPdList.begin());
}

bool refuseMixedDrives(Controller ctrl) {
    if (IsMixedInterfacePD(ctrl.conts, ctrl.contNo) != 0) {
        CliLogging(kPrintAndLog, kLdSource, __LINE__,
                   "Error - Cannot create LD(Logical Drive) with the different Interface Type(SAS/SATA).");
        return true;
    }
    if (IsMixedMediaTypePD(ctrl.conts, ctrl.contNo) != 0) {
        CliLogging(kPrintAndLog, kLdSource, __LINE__,
                   "Error - Cannot create LD(Logical Drive) with the different Media Type(HDD/SSD).");
        return true;
    }
    return false;
}

bool readPatterns() {
    ReadConfigPatFile(&configPat);
    return std::any_of(std::begin(configPat.row), std::end(configPat.row),
                       [](const _configPat_T::Row& row) { return row.count != 0; });
}

void sayNoPatterns() {
    CliLogging(kPrintAndLog, kLdSource, __LINE__, "Error - Failed to read the configuration pattern file.");
}
