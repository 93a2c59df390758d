#include "commands/zebcli_cmd_ld/creation/creation.h"

#include "commands/configuration_change.h"
#include "commands/zebcli_cmd_ld/ld_targets.h"
#include "log/zebcli_log.h"
#include "main/zebcli_cmd_com/text/number_list.h"
#include "storelib/status_text.h"

#include <algorithm>
#include <string_view>

namespace {

/// A wrapper's status and, when it failed, the text of its trace.
struct Sent {
    std::uint32_t status;
    const char* error;
};

Sent sendPlan(const CreationPlan& plan) {
    const unsigned char contNo = plan.ctrl.contNo;
    if (plan.inFreeSpace)
        return {SLAddLDToRG(contNo, &plan.info, plan.arrays.list()), "SLAddLDToRG error"};
    if (plan.isCacheCade())
        return {SLCreateCacheCadeLD(contNo, &plan.info), "SLCreateCacheCadeLD error"};
    return {SLCreateLD(contNo, &plan.info), "SLCreateLD error"};
}

/// The LDs that were not there at the last look, ascending.
LdNumbers newLds(const CreationPlan& plan) {
    LdNumbers lds;
    for (const _MR_LD_LIST_ENTRY& entry : ldEntries(plan.ctrl.cont()))
        if (!plan.ldsBefore.contains(entry.targetId))
            lds.add(entry.targetId);
    return lds;
}

bool hasDrivesOf(Controller ctrl, unsigned char ldNo, const PlannedArray& group) {
    const PdsInLd pds = pdsInLd(ctrl, ldNo);
    const auto planned = slotsOf(group);
    if (pds.count != planned.size())
        return false;
    // The order of the drives within a span is the controller's business.
    const std::size_t drivesPerSpan = planned.size() / spanCountOf(group);
    for (std::size_t i = 0; i < planned.size(); i += drivesPerSpan) {
        const auto span = planned.subspan(i, drivesPerSpan);
        if (!std::is_permutation(span.begin(), span.end(), pds.list().begin() + static_cast<std::ptrdiff_t>(i)))
            return false;
    }
    return true;
}

bool showSameCapacity(std::uint64_t a, std::uint64_t b) {
    return std::string_view(gbText(a).c_str()) == gbText(b).c_str();
}

bool isAsPlanned(Controller ctrl, unsigned char ldNo, const PlannedArray& group, const PlannedLd& planned) {
    if (ldNo >= kMaxLds)
        return false;
    const _MR_LD_CONFIG& ld = ctrl.ld(ldNo).config;
    return SLTransLateRAIDLvl(&ld) == group.level && (ld.cacheCade != 0) == (group.cacheCade != 0) &&
           hasDrivesOf(ctrl, ldNo, group) && showSameCapacity(GetLDSize(&ld, ctrl.contNo), planned.size);
}

bool areAsPlanned(const CreationPlan& plan, const LdNumbers& created) {
    std::size_t next = 0;
    for (const PlannedArray& group : groupsOf(plan.info))
        for (const PlannedLd& ld : ldsOf(group))
            if (next == created.size() || !isAsPlanned(plan.ctrl, created[next++], group, ld))
                return false;
    return next == created.size();
}

} // namespace

bool lookAgainAtPlans(std::span<CreationPlan> plans, _AFCONT* conts, int contCount) {
    if (!lookAgain(kLdSource, conts, contCount))
        return false;
    for (CreationPlan& plan : plans)
        if (!stillHolds(plan)) {
            sayConfigurationChanged(kLdSource, plan.ctrl.contNo);
            return false;
        }
    return true;
}

bool create(CreationPlan& plan, Speaker handler, _AFCONT* conts, int contCount) {
    const unsigned char contNo = plan.ctrl.contNo;
    const Sent sent = sendPlan(plan);
    if (!succeeded(sent.status, handler, sent.error, onController(contNo))) {
        CliLogging(kPrintAndLog, kLdSource, __LINE__,
                   "Error - Controller[%d] Failed to create LD(Logical Drive).\n%s (0x%X)\n"
                   "Please confirm PD(Physical Drive) state.",
                   contNo, SLStrError(sent.status), static_cast<unsigned>(sent.status));
        return false;
    }
    const bool read = UpdateDriveInfo(conts, contCount) == 1;
    const LdNumbers created = read ? newLds(plan) : LdNumbers{};
    if (!read || !areAsPlanned(plan, created)) {
        CliLogging(kPrintAndLog, kLdSource, __LINE__,
                   "Error - Controller[%d] The created LD(Logical Drive) differs from the plan.\n"
                   "Please confirm LD(Logical Drive) state.",
                   contNo);
        return false;
    }
    NumberList numbers;
    for (const std::uint8_t ldNo : created)
        numbers.add(ldNo);
    CliLogging(kPrintAndLog, kLdSource, __LINE__, "Information - Controller[%d] LD(Logical Drive) %s has been created.",
               contNo, numbers.c_str());
    return true;
}
