// Easy creation: one or two LDs and global hot spares on the unconfigured drives of one controller, chosen from
// numbered rows.
#include "commands/handlers.h"

#include "commands/configuration_change.h"
#include "commands/zebcli_cmd_ld/creation/creation.h"
#include "commands/zebcli_cmd_ld/creation/drive_table.h"
#include "commands/zebcli_cmd_ld/creation/easy_menus.h"
#include "commands/zebcli_cmd_ld/creation/plan_report.h"
#include "commands/zebcli_cmd_ld/creation/rules.h"
#include "log/raidctl.h"
#include "log/zebcli_log.h"
#include "main/zebcli_cmd_com/base/source.h"
#include "main/zebcli_cmd_com/input/options.h"
#include "main/zebcli_cmd_com/input/prompts.h"
#include "main/zebcli_cmd_com/model/lookup.h"
#include "main/zebcli_cmd_com/text/number_list.h"
#include "main/zebcli_cmd_com/text/vocabulary.h"
#include "storelib/common/StoreLib/hot_spare.h"
#include "storelib/common/StoreLib/physical_drive.h"
#include "storelib/records/status.h"

#include <array>

namespace {

constexpr Speaker kEasyHandler{kLdSource, "CliCmdExecCfgLDEasyMakeAdd"};

/// Keeps the usable drives as the unconfigured ones, shows the table of all drives, and says why a drive that looks
/// unconfigured is not used.
void listDrives(Controller ctrl, _AFCONT* conts) {
    BoundedList<std::uint8_t, kMaxSlots> usable;
    std::array<unsigned char, kMaxSlots> present{};
    GetDeviceFoundList(ctrl.contNo, conts, present);
    for (unsigned slot = 0; slot < kMaxSlots; ++slot)
        if (const auto slotNo = static_cast<std::uint8_t>(slot); present[slot] != 0 && isUsable(ctrl, slotNo))
            usable.add(slotNo);
    keepUnconfigured(usable.list());
    SetSelectHDDList(nullptr, conts, ctrl.contNo, 0);
    for (unsigned slot = 0; slot < kMaxSlots; ++slot) {
        const auto slotNo = static_cast<std::uint8_t>(slot);
        char reason[kTextSize];
        if (present[slot] != 0 && ctrl.pd(slotNo).fwState == kPdUnconfiguredGood && !isUsable(ctrl, slotNo, reason))
            CliLogging(kPrint, kLdSource, __LINE__, "Information - PD(Physical Drive) %d is not used: %s.", slotNo,
                       reason);
    }
}

/// Whether the unconfigured drives are some and alike; of more than 16 the first 16 are kept.
bool haveDrives(Controller ctrl) {
    if (unconfiguredPds == 0) {
        CliLogging(kPrintAndLog, kLdSource, __LINE__,
                   "Error - Controller[%d] There is no unconfigured PD(Physical Drive).", ctrl.contNo);
        return false;
    }
    if (refuseMixedDrives(ctrl))
        return false;
    if (unconfiguredPds > kMostEasyDrives) {
        CliLogging(kPrintAndLog, kLdSource, __LINE__,
                   "Information - The number of unconfigured PDs(physical drives) is over 16.\n"
                   "Create LD(Logical Drive) with 16 PDs(physical drives).\n");
        unconfiguredPds = kMostEasyDrives;
    }
    return true;
}

/// Finds what can be built. Returns false after it has been said that there is nothing.
bool haveVariants(Controller ctrl, EasyVariants& variants) {
    if (!readPatterns()) {
        sayNoPatterns();
        return false;
    }
    findVariants(ctrl, variants);
    if (variants.empty())
        CliLogging(kPrintAndLog, kLdSource, __LINE__,
                   "Error - Controller[%d] No RAID level can be created with %d PDs(Physical Drives).", ctrl.contNo,
                   static_cast<int>(unconfiguredPds));
    return !variants.empty();
}

void makePlan(Controller ctrl, const EasyVariant& variant, CreationPlan& plan) {
    const EasyDivision division = divide(ctrl, variant);
    startPlan(plan, ctrl);
    for (unsigned i = 0; i < variant.lds; ++i) {
        PlannedArray& group = addGroup(plan, variant.level[i], division.drives[i].list());
        FreeSegments free;
        free.add({0, smallestSize(ctrl, group)});
        placeLds(group, {}, free);
        plan.freeSpace[i] = capacityOf(group, free);
    }
    for (const std::uint8_t slotNo : division.spares)
        plan.spares.add(seenDrive(ctrl, slotNo));
    completePlan(plan, kQuickInitialization);
}

bool isConfirmed(const CreationPlan& plan) {
    if (ConfirmDiffPDSize(plan.info, plan.ctrl.contNo) != 0 && !confirmed(kAskCreateDifferentSizes))
        return false;
    return confirmed(kAskExecute);
}

/// Makes the spares of the plan. One that fails leaves the LDs, its drive and the other spares as they are.
bool makeSpares(const CreationPlan& plan) {
    const unsigned char contNo = plan.ctrl.contNo;
    NumberList made;
    bool allMade = true;
    for (const SeenDrive& spare : plan.spares) {
        if (succeeded(SLMakeGlobalHotspare(contNo, spare.slotNo), kEasyHandler, "SLMakeGlobalHotspare error",
                      onPd(contNo, spare.slotNo))) {
            made.add(spare.slotNo);
            continue;
        }
        allMade = false;
        CliLogging(kPrintAndLog, kLdSource, __LINE__,
                   "Error - Failed to assign a Hot Spare.\nPlease confirm PD(Physical Drive) state.\n");
    }
    if (!made.empty())
        CliLogging(kPrint, kLdSource, __LINE__,
                   "Information - Controller[%d] Settings have been changed PD(Physical Drive) %s.", contNo,
                   made.c_str());
    return allMade;
}

} // namespace

int CliCmdExecCfgLDEasyMakeAdd(int argc, char** argv, _AFCONT* conts, int contCount) {
    static EasyVariants variants;
    static CreationPlan plan;
    dumpLog(kLdSource, __LINE__, __func__);
    if (refuseArguments(kLdSource, argc, argv) || refuseSoftwareRaid(kLdSource))
        return 1;
    const auto ctrl = chooseController(kLdSource, conts, contCount);
    if (!ctrl)
        return 1;
    listDrives(*ctrl, conts);
    if (!haveDrives(*ctrl) || !haveVariants(*ctrl, variants))
        return 1;
    const auto variant = chooseVariant(*ctrl, variants);
    if (!variant)
        return 1;
    makePlan(*ctrl, *variant, plan);
    showPlan(plan);
    warnOfDrives(plan);
    if (!isConfirmed(plan) || !lookAgainAtPlans({&plan, 1}, conts, contCount))
        return 1;
    return create(plan, kEasyHandler, conts, contCount) && makeSpares(plan) ? 0 : 1;
}
