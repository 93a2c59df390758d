// Manual rebuild.
#include "commands/handlers.h"

#include "commands/zebcli_cmd_pd/pd_targets.h"
#include "log/raidctl.h"
#include "log/zebcli_log.h"
#include "main/zebcli_cmd_com/base/trace.h"
#include "main/zebcli_cmd_com/input/start_stop_words.h"
#include "main/zebcli_cmd_com/model/raid_groups.h"
#include "main/zebcli_cmd_com/text/number_list.h"
#include "storelib/common/StoreLib/physical_drive.h"
#include "storelib/records/status.h"

namespace {

constexpr Speaker kRebuildHandler{kPdSource, "CliCmdExecPDRbld"};

/// Stands in the failure list for a drive whose allowed operations could not be read.
constexpr unsigned kNoDriveNumber = 255;

/// Deliberate: both words start a rebuild; there is none that stops it.
constexpr auto kRebuildWords = std::to_array<OptionWord>({
    {.word = "start", .bit = kStart, .refusedAfter = kStart | kStop},
    {.word = "stop", .bit = kStop, .refusedAfter = kStart | kStop, .offered = false},
});

/// Deliberate: a PD list together with a controller option needs a word, one without does not.
bool completeForRebuild(const Options& options) {
    return (options.pdGiven && !options.ctrlGiven) || options.bits != 0;
}

/// The drives of one controller that started to rebuild, and those that did not.
struct RebuildResult {
    NumberList started;
    NumberList failed;
};

void rebuildDrive(Controller ctrl, unsigned char slotNo, RebuildResult& result) {
    const unsigned char contNo = ctrl.contNo;
    const auto fail = [&](int line) {
        traceUntagged({kRebuildHandler, line}, "SLStartRebuild error", onSlot(contNo, slotNo));
        result.failed.add(slotNo);
    };
    _MR_PD_INFO pd{};
    if (SLGetPDInfo(contNo, slotNo, &pd) != kSlSuccess || (pd.fwState != kPdOffline && pd.fwState != kPdFailed)) {
        fail(__LINE__);
        return;
    }
    if (GetRaidLvlFromPD(contNo, slotNo, ctrl.conts) == kRaid0) {
        CliLogging(kPrintAndLog, nullptr, 0, "Error - Cannot Rebuild/Copyback for RAID0.");
        return;
    }
    _MR_PD_ALLOWED_OPS allowed{};
    if (SLGetPDAllowedOperation(contNo, slotNo, &allowed) != kSlSuccess) {
        // Counted twice on purpose: here without a drive number, below as a drive that must not rebuild.
        traceUntagged(kRebuildHandler, "SLGetPDAllowedOperation error", onSlot(contNo, slotNo));
        CliLogging(kPrint, kPdSource, __LINE__, "%s", "");
        result.failed.add(kNoDriveNumber);
        allowed = _MR_PD_ALLOWED_OPS{};
    }
    if ((allowed.ops & kPdOpStartRebuild) != 0 && SLStartRebuild(contNo, slotNo) == kSlSuccess)
        result.started.add(slotNo);
    else
        fail(__LINE__);
}

void rebuildOnController(Controller ctrl, const PdList& pds) {
    RebuildResult result;
    for (const unsigned char slotNo : listedDrives(pds))
        rebuildDrive(ctrl, slotNo, result);
    if (!result.started.empty())
        CliLogging(kPrint, kPdSource, __LINE__,
                   "Information - Controller[%d] Start Manual Rebuild on PD(Physical Drive) %s.", ctrl.contNo,
                   result.started.c_str());
    if (!result.failed.empty())
        CliLogging(kPrintAndLog, kPdSource, __LINE__,
                   "Error - Controller[%d] Failed to start Manual Rebuild on PD(Physical Drive) %s.\n"
                   "Please confirm LD(Logical Drive) state.",
                   ctrl.contNo, result.failed.c_str());
}

} // namespace

constexpr OptionTable kPdRebuildOptions = pdOptions(kRebuildWords);

int CliCmdExecPDRbld(int argc, char** argv, _AFCONT* conts, int contCount) {
    dumpLog(kPdSource, __LINE__, __func__);
    Options options;
    if (!parsePdCommand(kPdRebuildOptions, completeForRebuild, argc, argv, contCount, conts, options))
        return 1;
    for (const unsigned char contNo : selectedControllers(options.ctrls, contCount))
        rebuildOnController({contNo, conts}, options.pds);
    return 0;
}
