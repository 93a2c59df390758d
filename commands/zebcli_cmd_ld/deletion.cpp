// Deletion of LDs: shown, chosen by number, checked, asked about twice, looked at once more, then deleted one by one.
#include "commands/handlers.h"

#include "commands/configuration_change.h"
#include "commands/zebcli_cmd_ld/deletion_checks.h"
#include "commands/zebcli_cmd_ld/deletion_plan.h"
#include "commands/zebcli_cmd_ld/ld_targets.h"
#include "log/raidctl.h"
#include "log/zebcli_log.h"
#include "main/zebcli_cmd_com/input/prompts.h"
#include "main/zebcli_cmd_com/text/number_list.h"
#include "storelib/common/StoreLib/logical_drive.h"
#include "storelib/records/status.h"
#include "storelib/status_text.h"

#include <algorithm>
#include <optional>

namespace {

/// Says of every LD that may not be deleted why not. Returns true when all may.
bool mayDeleteAll(Controller ctrl, const ShownLds& chosen) {
    bool all = true;
    for (const ShownLd& ld : chosen.list())
        all = mayDeleteLd(ctrl, ld.ldNo) && all;
    return all;
}

/// Asks until only LDs are named that may be deleted; nothing when the operator quits. There is no word for all of
/// them on purpose.
std::optional<ShownLds> chooseLds(Controller ctrl, const ShownLds& shown) {
    LdList offered;
    offered.fill(kNoTarget);
    std::ranges::transform(shown.list(), offered.begin(), [](const ShownLd& ld) { return ld.ldNo; });
    while (true) {
        LdList named;
        if (ComChk(named.data(), offered.data(), nullptr, kAskLdListFirst, 0) == 0)
            return std::nullopt;
        ShownLds chosen;
        for (const ShownLd& ld : shown.list())
            if (std::ranges::find(named, ld.ldNo) != named.end())
                chosen.ld[chosen.count++] = ld;
        if (mayDeleteAll(ctrl, chosen))
            return chosen;
    }
}

/// Whether every chosen LD is still what was shown; says so when one is not.
bool areAsShown(Controller ctrl, const ShownLds& chosen) {
    const bool same = std::ranges::all_of(chosen.list(), [&](const ShownLd& ld) {
        return IsExistLD(ctrl.contNo, ld.ldNo, ctrl.conts) != 0 && showLd(ctrl, ld.ldNo) == ld;
    });
    if (!same)
        sayConfigurationChanged(kLdSource, ctrl.contNo);
    return same;
}

/// Deletes one LD. Returns the library's status.
std::uint32_t deleteLd(unsigned char contNo, const ShownLd& ld) {
    Utillogging(kLdSource, __LINE__, kTracePlain, "func=%s: delete, contNo=%u, ldNo=%u, name=%s", kDeletion.func,
                contNo, ld.ldNo, ld.name);
    const std::uint32_t status = SLDeleteLD(contNo, ld.ldNo);
    succeeded(status, kDeletion, "SLDeleteLD error", onLd(contNo, ld.ldNo));
    return status;
}

/// Deletes the LDs in their order up to the first that cannot be: its reason mostly concerns the others too. Says what
/// was done and what was not. Returns true when all are gone.
bool deleteLds(unsigned char contNo, std::span<const ShownLd> lds) {
    NumberList deleted;
    std::uint32_t status = kSlSuccess;
    std::size_t at = 0;
    for (; at < lds.size(); ++at) {
        status = deleteLd(contNo, lds[at]);
        if (status != kSlSuccess)
            break;
        deleted.add(lds[at].ldNo);
    }
    if (!deleted.empty())
        CliLogging(kPrintAndLog, kLdSource, __LINE__,
                   "Information - Controller[%d] LD(Logical Drive) %s has been deleted.", contNo, deleted.c_str());
    if (at == lds.size())
        return true;
    CliLogging(kPrintAndLog, kLdSource, __LINE__,
               "Error - Controller[%d] Failed to delete LD(Logical Drive) %d.\n%s (0x%X)\n"
               "Please confirm LD(Logical Drive) state.",
               contNo, lds[at].ldNo, SLStrError(status), status);
    NumberList left;
    for (const ShownLd& ld : lds.subspan(at + 1))
        left.add(ld.ldNo);
    if (!left.empty())
        CliLogging(kPrintAndLog, kLdSource, __LINE__,
                   "Error - Controller[%d] LD(Logical Drive) %s has not been deleted.", contNo, left.c_str());
    return false;
}

} // namespace

int CliCmdExecCfgLDDel(int argc, char** argv, _AFCONT* conts, int contCount) {
    dumpLog(kLdSource, __LINE__, __func__);
    if (refuseArguments(kLdSource, argc, argv) || refuseSoftwareRaid(kLdSource))
        return 1;
    const auto ctrl = chooseController(kLdSource, conts, contCount);
    if (!ctrl)
        return 1;
    const ShownLds shown = showLds(*ctrl);
    if (shown.count == 0) {
        sayNoLd(ctrl->contNo);
        return 1;
    }
    printLdTable(*ctrl, shown);
    const auto chosen = chooseLds(*ctrl, shown);
    if (!chosen)
        return 1;
    sayDeletionPlan(*ctrl, *chosen);
    if (!confirmed(kAskLoseData) || !confirmed(kAskDelete) || !lookAgain(kLdSource, conts, contCount))
        return 1;
    if (!areAsShown(*ctrl, *chosen) || !mayDeleteAll(*ctrl, *chosen))
        return 1;
    return deleteLds(ctrl->contNo, chosen->list()) ? 0 : 1;
}
