// The locate LED of drives.
#include "commands/handlers.h"

#include "commands/zebcli_cmd_pd/pd_targets.h"
#include "log/raidctl.h"
#include "log/zebcli_log.h"
#include "main/zebcli_cmd_com/base/trace.h"
#include "main/zebcli_cmd_com/input/start_stop_words.h"
#include "main/zebcli_cmd_com/text/number_list.h"
#include "storelib/common/StoreLib/physical_drive.h"
#include "storelib/records/status.h"

namespace {

constexpr Speaker kLocateHandler{kPdSource, "CliCmdExecPDLocate"};
constexpr unsigned char ucLocateLEDsts = 0;

bool completeForLocate(const Options& options) {
    return options.pdGiven && options.bits != 0;
}

/// A drive that fails does not keep the others from blinking.
void startOnController(unsigned char contNo, const PdList& pds) {
    NumberList blinking;
    for (const unsigned char slotNo : listedDrives(pds)) {
        if (SLStartLocatePD(contNo, slotNo, ucLocateLEDsts) == kSlSuccess) {
            blinking.add(slotNo);
            continue;
        }
        traceFailure(kLocateHandler, "SLStartLocatePD error", onPd(contNo, slotNo));
        CliLogging(kPrintAndLog, kPdSource, __LINE__,
                   "Error - Controller[%d] Failed to blink PD(Physical Drive) %d location LED.", contNo, slotNo);
    }
    if (!blinking.empty())
        CliLogging(kPrint, kPdSource, __LINE__,
                   "Information - Controller[%d] Blink PD(Physical Drive) location LED on PD(Physical Drive) %s.",
                   contNo, blinking.c_str());
}

/// Unlike with start, the first drive that fails ends the work on this controller; deliberate.
void stopOnController(unsigned char contNo, const PdList& pds) {
    NumberList off;
    for (const unsigned char slotNo : listedDrives(pds)) {
        if (SLStopLocatePD(contNo, slotNo) != kSlSuccess) {
            traceFailure(kLocateHandler, "SLStopLocatePD error", onPd(contNo, slotNo));
            CliLogging(kPrintAndLog, kPdSource, __LINE__,
                       "Error - Controller[%d] Failed to off PD(Physical Drive) %d location LED.", contNo, slotNo);
            break;
        }
        off.add(slotNo);
    }
    if (!off.empty())
        CliLogging(kPrint, kPdSource, __LINE__,
                   "Information - Controller[%d] Off PD(Physical Drive) location LED on PD(Physical Drive) %s.", contNo,
                   off.c_str());
}

} // namespace

constexpr OptionTable kPdLocateOptions = pdOptions(kStartStopWords);

int CliCmdExecPDLocate(int argc, char** argv, _AFCONT* conts, int contCount) {
    dumpLog(kPdSource, __LINE__, __func__);
    Options options;
    if (!parsePdCommand(kPdLocateOptions, completeForLocate, argc, argv, contCount, conts, options))
        return 1;
    for (const unsigned char contNo : selectedControllers(options.ctrls, contCount)) {
        if (options.has(kStart))
            startOnController(contNo, options.pds);
        else
            stopOnController(contNo, options.pds);
    }
    return 0;
}
