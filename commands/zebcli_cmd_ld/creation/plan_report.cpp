#include "commands/zebcli_cmd_ld/creation/plan_report.h"

#include "commands/zebcli_cmd_ld/ld_targets.h"
#include "commands/zebcli_cmd_ld/setting_tables.h"
#include "log/zebcli_log.h"
#include "main/zebcli_cmd_com/base/string_shims.h"
#include "main/zebcli_cmd_com/text/text_field.h"
#include "storelib/common/StoreLib/passthrough.h"
#include "storelib/records/status.h"

namespace {

/// A group's drives with their enclosures, joined with ",", the spans with " + ".
struct DriveList {
    char text[kMaxSlots * sizeof "65535:255 + "];
};

DriveList drivesOf(Controller ctrl, const PlannedArray& group) {
    DriveList list{};
    const auto slots = slotsOf(group);
    const std::size_t drivesPerSpan = slots.size() / spanCountOf(group);
    for (std::size_t i = 0; i < slots.size(); ++i) {
        if (i != 0)
            lstrcat(list.text, i % drivesPerSpan == 0 ? " + " : ",");
        const _MR_PD_INFO& pd = ctrl.pd(slots[i]);
        char drive[16];
        if (pd.enclDeviceId != kNoDevice)
            wsprintf(drive, "%u:%u", pd.enclDeviceId, slots[i]);
        else
            wsprintf(drive, "%u", slots[i]);
        lstrcat(list.text, drive);
    }
    return list;
}

void showField(const char* label, const char* value) {
    CliLogging(kPrintAndLog, kLdSource, __LINE__, "  %-15s: %s", label, value);
}

void showSettings(const PlannedArray& group) {
    const unsigned policy = group.defaultCachePolicy;
    if (group.cacheCade == 0)
        showField("Stripe Size", settingLabel(supportedStripeSizes(), group.stripeSize));
    showField("Write Policy", settingLabel(supportedWritePolicies(), policy & kWritePolicyMask));
    showField("Read Policy", settingLabel(setitemReadPolicy, policy & kReadPolicyMask));
    showField("IO Policy", settingLabel(setitemIOPolicy, policy & kIoPolicyMask));
    showField("Disk Cache", settingLabel(setitemDiskCachePolicy, group.diskCachePolicy));
    if (group.cacheCade == 0)
        showField("Access Policy", settingLabel(setitemAccessPolicy, group.accessPolicy));
    showField("Initialization", group.ld[0].initType != 0 ? "Quick" : "None");
}

void showGroup(const CreationPlan& plan, const PlannedArray& group, std::uint64_t freeSpace) {
    const Controller ctrl = plan.ctrl;
    for (const PlannedLd& ld : ldsOf(group))
        CliLogging(kPrintAndLog, kLdSource, __LINE__, ">LD%u (%s, %sGB, %s)", ld.ldNo, fieldText(ld.name).c_str(),
                   gbText(ld.size).c_str(), shownLevel(group.level, group.cacheCade != 0, ctrl.contNo));
    if (plan.inFreeSpace)
        showField("RG No.", groupName(plan).text);
    showField("PD No.", drivesOf(ctrl, group).text);
    showSettings(group);
    CliLogging(kPrintAndLog, kLdSource, __LINE__, "  Free Space     : %sGB", gbText(freeSpace).c_str());
}

void warnOfDrive(Controller ctrl, unsigned char slotNo) {
    int bootDisk = 0;
    if (SLCheckBootDisk(ctrl.contNo, slotNo, &bootDisk) == kSlSuccess && bootDisk != 0)
        CliLogging(kPrintAndLog, kLdSource, __LINE__, "Warning - PD(Physical Drive) %d has a boot sector.", slotNo);
    const _MR_PD_INFO& pd = ctrl.pd(slotNo);
    if (pd.mediaErrorCount != 0 || pd.predFailCount != 0)
        CliLogging(kPrintAndLog, kLdSource, __LINE__,
                   "Warning - PD(Physical Drive) %d has errors(Media Error Count %u, Pred Fail Count %u).", slotNo,
                   static_cast<unsigned>(pd.mediaErrorCount), static_cast<unsigned>(pd.predFailCount));
}

} // namespace

void showPlan(const CreationPlan& plan) {
    SetSupportStripeSize(plan.ctrl.contNo, plan.ctrl.conts);
    SetSupportWritePolicy(plan.ctrl.contNo, plan.ctrl.conts);
    CliLogging(kPrintAndLog, kLdSource, __LINE__,
               "Controller[%d] The following LD[s](Logical Drive[s]) will be created.", plan.ctrl.contNo);
    const auto groups = groupsOf(plan.info);
    for (std::size_t g = 0; g < groups.size(); ++g)
        showGroup(plan, groups[g], plan.freeSpace[g]);
    for (const SeenDrive& spare : plan.spares)
        CliLogging(kPrintAndLog, kLdSource, __LINE__, ">PD%u (GHS, %sGB)", spare.slotNo,
                   gbText(spare.coercedSize).c_str());
}

void warnOfDrives(const CreationPlan& plan) {
    if (plan.inFreeSpace)
        return;
    for (const SeenDrive& drive : plan.drives)
        warnOfDrive(plan.ctrl, drive.slotNo);
}
