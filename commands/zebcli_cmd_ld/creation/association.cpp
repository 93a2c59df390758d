#include "commands/zebcli_cmd_ld/creation/association.h"

#include "commands/configuration_change.h"
#include "commands/zebcli_cmd_ld/cache_policy.h"
#include "log/zebcli_log.h"
#include "main/zebcli_cmd_com/base/source.h"
#include "main/zebcli_cmd_com/input/prompts.h"
#include "main/zebcli_cmd_com/text/number_list.h"
#include "storelib/common/StoreLib/logical_drive.h"
#include "storelib/records/status.h"

namespace {

bool asks(Controller ctrl, const LdNumbers& lds) {
    return !lds.empty() && (ctrl.cont().ctrlInfo.ldOperations & kLdOpIoPolicy) != 0;
}

bool isConfirmed(const NumberList& lds) {
    auto* text = reinterpret_cast<unsigned char*>(const_cast<char*>(lds.c_str())); // only read
    return ComChk(nullptr, nullptr, text, kAskAssociateCacheCade, 0) == 1;
}

/// Sets the IO policy of one LD; all else goes back as it was read, the sequence number included.
bool setCachedIo(unsigned char contNo, unsigned char ldNo, Speaker handler) {
    _MR_LD_INFO ld{};
    if (!succeeded(SLGetLDInfo(contNo, ldNo, &ld), handler, "SLGetLDInfo error", onLd(contNo, ldNo)))
        return false;
    _MR_LD_PROPERTIES properties = ld.config.properties;
    properties.ref.targetId = ldNo;
    properties.defaultCachePolicy =
        static_cast<std::uint8_t>((properties.defaultCachePolicy & kKeptCachePolicy & ~kIoPolicyMask) | kCachedIo);
    return succeeded(SLSetLDProperties(contNo, &properties), handler, "SLSetLDProperties error", onLd(contNo, ldNo));
}

void sayAssociated(unsigned char contNo, const NumberList& done) {
    if (!done.empty())
        CliLogging(kPrint, kLdSource, __LINE__,
                   "Information - Controller[%d] LD(Logical Drive) Settings have been changed on LD(Logical Drive) %s.",
                   contNo, done.c_str());
}

} // namespace

void askAssociation(CreationPlan& plan, bool nameController) {
    LdNumbers candidates;
    NumberList text;
    for (const _MR_LD_LIST_ENTRY& entry : ldEntries(plan.ctrl.cont()))
        if (entry.targetId < kMaxLds && isAssociable(plan.ctrl, entry.targetId)) {
            candidates.add(entry.targetId);
            text.add(entry.targetId);
        }
    if (!asks(plan.ctrl, candidates))
        return;
    if (nameController)
        sayController(kLdSource, plan.ctrl);
    if (isConfirmed(text))
        plan.associated = candidates;
}

bool associate(const CreationPlan& plan, Speaker handler) {
    const unsigned char contNo = plan.ctrl.contNo;
    NumberList done;
    for (const std::uint8_t ldNo : plan.associated) {
        if (!setCachedIo(contNo, ldNo, handler)) {
            sayAssociated(contNo, done);
            CliLogging(kPrintAndLog, kLdSource, __LINE__,
                       "Error - Controller[%d] Failed to change LD(Logical Drive) %d Settings.", contNo, ldNo);
            return false;
        }
        done.add(ldNo);
    }
    sayAssociated(contNo, done);
    return true;
}
