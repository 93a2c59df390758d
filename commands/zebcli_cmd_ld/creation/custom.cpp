// Custom creation: one RAID group of named drives, further LDs in the free space of the group that they form, or a
// CacheCade LD.
#include "commands/handlers.h"

#include "commands/configuration_change.h"
#include "commands/zebcli_cmd_ld/cache_policy.h"
#include "commands/zebcli_cmd_ld/creation/association.h"
#include "commands/zebcli_cmd_ld/creation/creation.h"
#include "commands/zebcli_cmd_ld/creation/custom_plan.h"
#include "commands/zebcli_cmd_ld/creation/plan_report.h"
#include "log/raidctl.h"
#include "main/zebcli_cmd_com/base/source.h"
#include "main/zebcli_cmd_com/input/prompts.h"
#include "main/zebcli_cmd_com/model/lookup.h"

#include <algorithm>
#include <array>

namespace {

constexpr Speaker kCustomHandler{kLdSource, "CliCmdExecCfgLDCustomMakeAdd"};

using Plans = std::span<CreationPlan>;

/// Checks all controllers, then sets all plans up, so that nothing is asked for a plan before every check has passed.
bool makePlans(const CustomRequest& request, std::span<const unsigned char> controllers, const _AFCONT* conts,
               Plans plans) {
    for (std::size_t i = 0; i < plans.size(); ++i)
        if (!planOnController(request, {controllers[i], conts}, kCustomHandler, plans[i]))
            return false;
    for (CreationPlan& plan : plans)
        setUpPlan(request, plan);
    return true;
}

void showPlans(Plans plans) {
    for (const CreationPlan& plan : plans) {
        showPlan(plan);
        warnOfDrives(plan);
    }
}

bool acceptsAlwaysWriteBack(const CustomRequest& request, Plans plans) {
    return !request.options.has(kWb) || std::all_of(plans.begin(), plans.end(), [](const CreationPlan& plan) {
        return confirmed(IsCacheBkupPresent(plan.ctrl.conts, plan.ctrl.contNo) != 0 ? kAskCreateWriteBackWithBackup
                                                                                    : kAskCreateWriteBackWithoutBackup);
    });
}

bool acceptsDifferentSizes(const CustomRequest& request, Plans plans) {
    const bool differ = std::any_of(plans.begin(), plans.end(), [](const CreationPlan& plan) {
        return !plan.inFreeSpace && ConfirmDiffPDSize(plan.info, plan.ctrl.contNo) != 0;
    });
    return !differ || confirmed(request.cacheCade ? kAskCreateCacheCadeDifferentSizes : kAskCreateDifferentSizes);
}

/// All questions, before the first change.
bool isConfirmed(const CustomRequest& request, Plans plans) {
    if (!acceptsAlwaysWriteBack(request, plans) || !acceptsDifferentSizes(request, plans))
        return false;
    if (request.cacheCade)
        for (CreationPlan& plan : plans)
            askAssociation(plan, plans.size() > 1);
    return confirmed(kAskExecute);
}

} // namespace

int CliCmdExecCfgLDCustomMakeAdd(int argc, char** argv, _AFCONT* conts, int contCount) {
    static std::array<CreationPlan, kMaxControllers> allPlans;
    dumpLog(kLdSource, __LINE__, __func__);
    CustomRequest request;
    if (!readCustomArguments(argc, argv, contCount, request) || refuseSoftwareRaid(kLdSource))
        return 1;
    const auto controllers = selectedControllers(request.options.ctrls, contCount);
    const Plans plans = std::span(allPlans).first(controllers.size());
    if (!makePlans(request, controllers, conts, plans))
        return 1;
    showPlans(plans);
    if (!isConfirmed(request, plans) || !lookAgainAtPlans(plans, conts, contCount))
        return 1;
    const bool created = std::all_of(plans.begin(), plans.end(), [&](CreationPlan& plan) {
        return create(plan, kCustomHandler, conts, contCount) && associate(plan, kCustomHandler);
    });
    return created ? 0 : 1;
}
