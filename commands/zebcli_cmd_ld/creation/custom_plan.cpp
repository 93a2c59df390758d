#include "commands/zebcli_cmd_ld/creation/custom_plan.h"

#include "commands/zebcli_cmd_ld/cache_policy.h"
#include "commands/zebcli_cmd_ld/creation/rules.h"
#include "commands/zebcli_cmd_ld/ld_targets.h"
#include "log/zebcli_log.h"
#include "main/zebcli_cmd_com/model/lookup.h"
#include "main/zebcli_cmd_com/text/vocabulary.h"
#include "storelib/records/status.h"

#include <algorithm>

namespace {

constexpr unsigned kSsd = 1;

/// One controller's checks.
struct Check {
    const CustomRequest& request;
    Controller ctrl;
    Speaker handler;
    CreationPlan& plan;

    const char* levelText() const { return shownLevel(request.level, request.cacheCade, ctrl.contNo); }
    NewObjects newObjects() const {
        return {std::max(static_cast<unsigned>(request.sizes.size()), 1U), spanCountOf(plan.info.array[0])};
    }
};

bool supportsOptions(const Check& check) {
    const bool cacheCade = (IsEnablePF(check.ctrl.contNo, check.ctrl.conts) & kOptionCacheCade) != 0;
    if (supportsCachePolicyWords(check.request.options, check.ctrl) && (cacheCade || !check.request.cacheCade))
        return true;
    CliLogging(kPrintAndLog, kLdSource, __LINE__,
               "Error - The specified parameter is not supported at the current configuration.");
    return false;
}

bool fits(Controller ctrl, const NamedDrive& drive) {
    return !drive.enclosure ||
           (*drive.enclosure != kNoDevice && *drive.enclosure == ctrl.pd(drive.slotNo).enclDeviceId);
}

bool haveDrives(const Check& check) {
    for (const NamedDrive& drive : check.request.drives)
        if (IsExistPD(check.ctrl.contNo, drive.slotNo, check.ctrl.conts) == 0 || !fits(check.ctrl, drive)) {
            CliLogging(kPrintAndLog, kLdSource, __LINE__, "Error - Controller[%d] The specified %s %d: doesn't exist.",
                       check.ctrl.contNo, "Physical Drive", drive.slotNo);
            return false;
        }
    return true;
}

/// Lays the LDs into the free segments and says so when they do not fit, with the capacity that is free.
bool layOut(const Check& check, PlannedArray& group, const FreeSegments& segments, FreeSegments& left) {
    left = segments;
    if (placeLds(group, check.request.sizes, left))
        return true;
    CliLogging(kPrintAndLog, kLdSource, __LINE__,
               "Error - Controller[%d] The specified size is over the free space(%s GB).", check.ctrl.contNo,
               gbText(capacityOf(group, segments)).c_str());
    return false;
}

bool areUsable(const Check& check) {
    for (const NamedDrive& drive : check.request.drives) {
        char reason[kTextSize];
        if (isUsable(check.ctrl, drive.slotNo, reason))
            continue;
        CliLogging(kPrintAndLog, kLdSource, __LINE__,
                   "Error - Controller[%d] PD(Physical Drive) %d cannot be used: %s.", check.ctrl.contNo, drive.slotNo,
                   reason);
        return false;
    }
    return true;
}

bool areAlike(const Check& check) {
    keepUnconfigured(slotsOf(check.plan.info.array[0]));
    if (refuseMixedDrives(check.ctrl))
        return false;
    const auto& drives = check.plan.drives;
    const auto isSsd = [&](const SeenDrive& drive) { return mediaOf(check.ctrl.pd(drive.slotNo)) == kSsd; };
    if (!check.request.cacheCade || std::all_of(drives.begin(), drives.end(), isSsd))
        return true;
    CliLogging(kPrintAndLog, kLdSource, __LINE__, "Error - Cannot create CacheCade LD(Logical Drive) with HDD.");
    return false;
}

bool canBeBuilt(const Check& check) {
    const CustomRequest& request = check.request;
    if (IsSupportRaidLvl(request.level, check.ctrl.conts, check.ctrl.contNo) == 0) {
        CliLogging(kPrintAndLog, kLdSource, __LINE__, "Error - Controller[%d] %s is not supported.", check.ctrl.contNo,
                   check.levelText());
        return false;
    }
    const bool patterns = request.cacheCade || readPatterns();
    const auto drives = static_cast<unsigned>(request.drives.size());
    if (canBuild(check.ctrl, request.level, request.cacheCade, drives))
        return true;
    if (!patterns)
        sayNoPatterns();
    else
        CliLogging(kPrintAndLog, kLdSource, __LINE__,
                   "Error - Controller[%d] %s cannot be created with %d PDs(Physical Drives).", check.ctrl.contNo,
                   check.levelText(), static_cast<int>(drives));
    return false;
}

bool planNewGroup(const Check& check, std::span<const std::uint8_t> slots) {
    if (!areUsable(check))
        return false;
    PlannedArray& group = addGroup(check.plan, check.request.level, slots);
    group.cacheCade = check.request.cacheCade ? 1 : 0;
    if (!areAlike(check) || !canBeBuilt(check) || refuseTooMany(check.ctrl, check.newObjects()))
        return false;
    FreeSegments whole;
    whole.add({0, smallestSize(check.ctrl, group)});
    FreeSegments left;
    if (!layOut(check, group, whole, left))
        return false;
    check.plan.freeSpace[0] = capacityOf(group, left);
    return true;
}

bool canTakeLds(const Check& check) {
    const ExistingGroup& group = check.plan.existing;
    const GroupName name = groupName(check.plan);
    if (!isGroupOfLevel(group, check.request.level)) {
        CliLogging(kPrintAndLog, kLdSource, __LINE__, "Error - Controller[%d] %s is not %s.", check.ctrl.contNo,
                   name.text, check.levelText());
        return false;
    }
    if (!isGroupHealthy(group)) {
        CliLogging(kPrintAndLog, kLdSource, __LINE__,
                   "Error - Controller[%d] Please confirm LD(Logical Drive) state of %s.", check.ctrl.contNo,
                   name.text);
        return false;
    }
    return !refuseTooMany(check.ctrl, {check.newObjects().lds, 0});
}

bool readFreeSpace(const Check& check) {
    if (succeeded(readFreeSegments(check.ctrl, check.plan.existing), check.handler, "SLGetArrayInfo error",
                  onController(check.ctrl.contNo)))
        return true;
    CliLogging(kPrintAndLog, kLdSource, __LINE__, "Error - Controller[%d] Failed to read the free space of %s.",
               check.ctrl.contNo, groupName(check.plan).text);
    return false;
}

bool planInFreeSpace(const Check& check) {
    CreationPlan& plan = check.plan;
    plan.inFreeSpace = true;
    BoundedList<std::uint8_t, kMaxSlots> slots;
    for (const SeenDrive& drive : plan.existing.drives)
        slots.add(drive.slotNo);
    PlannedArray& group = addGroup(plan, check.request.level, slots.list());
    if (!canTakeLds(check) || !readFreeSpace(check))
        return false;
    FreeSegments left;
    if (!layOut(check, group, countingSegments(group, plan.existing.segments), left))
        return false;
    plan.freeSpace[0] = capacityOf(group, countingSegments(group, left));
    return true;
}

} // namespace

bool planOnController(const CustomRequest& request, Controller ctrl, Speaker handler, CreationPlan& plan) {
    const Check check{request, ctrl, handler, plan};
    startPlan(plan, ctrl);
    if (!supportsOptions(check) || !haveDrives(check))
        return false;
    BoundedList<std::uint8_t, kMaxSlots> slots;
    for (const NamedDrive& drive : request.drives)
        slots.add(drive.slotNo);
    if (!request.cacheCade && findGroup(ctrl, slots.list(), request.level == kRaid10, plan.existing))
        return planInFreeSpace(check);
    return planNewGroup(check, slots.list());
}

void setUpPlan(const CustomRequest& request, CreationPlan& plan) {
    completePlan(plan, request.cacheCade ? kNoInitialization : kQuickInitialization);
    PlannedArray& group = plan.info.array[0];
    if (plan.inFreeSpace) {
        const _MR_LD_PROPERTIES& lowest = plan.ctrl.ld(plan.existing.lds[0].ldNo).config.properties;
        group.defaultCachePolicy = lowest.defaultCachePolicy;
        group.diskCachePolicy = lowest.diskCachePolicy;
    }
    group.defaultCachePolicy = withCachePolicyWords(request.options, group.defaultCachePolicy);
}
