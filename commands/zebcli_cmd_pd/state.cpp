// Drive state changes: unconfigured good, offline, online.
#include "commands/handlers.h"

#include "commands/zebcli_cmd_pd/pd_targets.h"
#include "log/raidctl.h"
#include "log/zebcli_log.h"
#include "main/zebcli_cmd_com/base/trace.h"
#include "main/zebcli_cmd_com/text/number_list.h"
#include "storelib/common/StoreLib/physical_drive.h"
#include "storelib/records/status.h"

namespace {

using StateChange = std::uint32_t (*)(unsigned char contNo, unsigned char slotNo);

void changeOnController(const char* handler, StateChange change, unsigned char contNo, const PdList& pds) {
    NumberList changed;
    for (const unsigned char slotNo : listedDrives(pds)) {
        if (change(contNo, slotNo) == kSlSuccess) {
            changed.add(slotNo);
            continue;
        }
        // All three commands leave the same text on purpose.
        traceFailure({kPdSource, handler}, "SLMakeDriveOnline error", onPd(contNo, slotNo));
        CliLogging(kPrintAndLog, kPdSource, __LINE__,
                   "Error - Controller[%d] Failed to change PD(Physical Drive) %d state.\n"
                   "Please confirm PD(Physical Drive) state.",
                   contNo, slotNo);
    }
    if (!changed.empty())
        CliLogging(kPrint, kPdSource, __LINE__,
                   "Information - Controller[%d] PD(Physical Drive) state have been changed on PD(Physical Drive) %s.",
                   contNo, changed.c_str());
}

int changeState(const char* handler, StateChange change, int argc, char** argv, const _AFCONT* conts, int contCount) {
    Options options;
    if (!parsePdCommand(
            kPdStateOptions, [](const Options& given) { return given.pdGiven; }, argc, argv, contCount, conts, options))
        return 1;
    for (const unsigned char contNo : selectedControllers(options.ctrls, contCount))
        changeOnController(handler, change, contNo, options.pds);
    return 0;
}

} // namespace

constexpr OptionTable kPdStateOptions = pdOptions();

int CliCmdExecPDMakeGood(int argc, char** argv, _AFCONT* conts, int contCount) {
    dumpLog(kPdSource, __LINE__, __func__);
    return changeState(__func__, SLMakeDriveUnconfGood, argc, argv, conts, contCount);
}

int CliCmdExecPDOffline(int argc, char** argv, _AFCONT* conts, int contCount) {
    dumpLog(kPdSource, __LINE__, __func__);
    return changeState(__func__, SLMakeDriveOffline, argc, argv, conts, contCount);
}

int CliCmdExecPDOnline(int argc, char** argv, _AFCONT* conts, int contCount) {
    dumpLog(kPdSource, __LINE__, __func__);
    return changeState(__func__, SLMakeDriveOnline, argc, argv, conts, contCount);
}
