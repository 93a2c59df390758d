// Initialization and consistency check of LDs: start and stop.
#include "commands/handlers.h"

#include "commands/zebcli_cmd_ld/ld_targets.h"
#include "log/raidctl.h"
#include "log/zebcli_log.h"
#include "main/zebcli_cmd_com/base/trace.h"
#include "main/zebcli_cmd_com/input/start_stop_words.h"
#include "main/zebcli_cmd_com/model/live_questions.h"
#include "main/zebcli_cmd_com/model/raid_level.h"
#include "main/zebcli_cmd_com/text/number_list.h"
#include "storelib/common/StoreLib/logical_drive.h"
#include "storelib/records/status.h"

#include <utility>

namespace {

constexpr Speaker kCheck{kLdSource, "CliCmdExecLDCC"};
constexpr Speaker kInit{kLdSource, "CliCmdExecLDINIT"};

enum class Outcome { Done, Failed, FailedOnRaid0, PassedOver };

/// One command in one mode: what is done with each LD, and the words of the summary lines.
struct Operation {
    Outcome (*perform)(Controller ctrl, unsigned char ldNo);
    const char* done;
    const char* failed;
    const char* advice; ///< behind the failure line, with the line ends
};

/// What became of the LD that a wrapper was called for; a failure is traced.
Outcome outcomeOf(std::uint32_t status, const TraceOrigin& origin, const char* text, Controller ctrl,
                  unsigned char ldNo) {
    return succeeded(status, origin, text, onLd(ctrl.contNo, ldNo)) ? Outcome::Done : Outcome::Failed;
}

Outcome startCheck(Controller ctrl, unsigned char ldNo) {
    if (CheckLDActive(ctrl.contNo, ldNo, ctrl.conts) != kLdIdle)
        return Outcome::Failed;
    if (SLTransLateRAIDLvl(&ctrl.ld(ldNo).config) == kRaid0)
        return Outcome::FailedOnRaid0;
    return outcomeOf(SLStartCheckConsistency(ctrl.contNo, ldNo), kCheck, "SLStartCheckConsistency error", ctrl, ldNo);
}

Outcome stopCheck(Controller ctrl, unsigned char ldNo) {
    if (CheckLDActive(ctrl.contNo, ldNo, ctrl.conts) != kLdChecking)
        return Outcome::Failed;
    return outcomeOf(SLCancelCheckConsistency(ctrl.contNo, ldNo), kCheck, "SLCancelCheckConsistency error", ctrl, ldNo);
}

Outcome startInit(Controller ctrl, unsigned char ldNo) {
    const _MR_LD_INFO& ld = ctrl.ld(ldNo);
    if (CheckLDActive(ctrl.contNo, ldNo, ctrl.conts) != kLdIdle)
        return Outcome::Failed;
    if (IsOSInstallLD(ctrl.contNo, ldNo, ctrl.conts) != 0) {
        CliLogging(kPrintAndLog, kLdSource, __LINE__, "Error - Cannot initialize OS LD(Logical Drive).");
        return Outcome::PassedOver;
    }
    if (ld.config.cacheCade != 0) {
        CliLogging(kPrintAndLog, kLdSource, __LINE__,
                   "Error - Controller[%d] CacheCade LD[s](Logical Drive[s]) %d doesn't need Initialization.",
                   ctrl.contNo, ldNo);
        return Outcome::PassedOver;
    }
    if (isSnapshotLd(ld)) {
        CliLogging(kPrintAndLog, kLdSource, __LINE__,
                   "Error - Controller[%d] Snapshot Base/Repository LD[s](Logical Drive[s]) %d doesn't need "
                   "Initialization.",
                   ctrl.contNo, ldNo);
        return Outcome::PassedOver;
    }
    return outcomeOf(SLStartInitialization(ctrl.contNo, ldNo), kInit, "SLStartInitialization error", ctrl, ldNo);
}

Outcome stopInit(Controller ctrl, unsigned char ldNo) {
    if (CheckLDActive(ctrl.contNo, ldNo, ctrl.conts) != kLdInitializing)
        return Outcome::Failed;
    return outcomeOf(SLCancelInitialization(ctrl.contNo, ldNo), kInit, "SLCancelInitialization error", ctrl, ldNo);
}

// "Check Consistency" in the failure lines against "Consistency Check" in the others, and the line ends that differ,
// are part of the texts.
constexpr Operation kStartCheck{startCheck, "Start Consistency Check", "start Check Consistency",
                                "\r\nPlease confirm LD(Logical Drive) state."};
constexpr Operation kStopCheck{stopCheck, "Stop Consistency Check", "stop Check Consistency",
                               "\r\nPlease confirm whether to have already ended."};
constexpr Operation kStartInit{startInit, "Start Initialization", "start Initialization",
                               "\nPlease confirm LD(Logical Drive) state.\n"};
constexpr Operation kStopInit{stopInit, "Stop Initialization", "stop Initialization",
                              "\nPlease confirm whether to have already ended.\n"};

void sayDone(const Operation& operation, unsigned char contNo, const NumberList& lds) {
    if (!lds.empty())
        CliLogging(kPrint, kLdSource, __LINE__, "Information - Controller[%d] %s on LD(Logical Drive) %s.", contNo,
                   operation.done, lds.c_str());
}

void sayFailed(const Operation& operation, unsigned char contNo, const NumberList& lds) {
    if (!lds.empty())
        CliLogging(kPrintAndLog, kLdSource, __LINE__, "Error - Controller[%d] Failed to %s on LD(Logical Drive) %s.%s",
                   contNo, operation.failed, lds.c_str(), operation.advice);
}

void performOnController(const Operation& operation, Controller ctrl, std::span<const unsigned char> lds) {
    NumberList done;
    NumberList failed;
    bool saidRaid0 = false;
    for (const unsigned char ldNo : lds) {
        const Outcome outcome = operation.perform(ctrl, ldNo);
        if (outcome == Outcome::FailedOnRaid0 && !std::exchange(saidRaid0, true))
            CliLogging(kPrintAndLog, kLdSource, __LINE__, "Error - Controller[%d] Cannot Check Consistency for RAID0.",
                       ctrl.contNo);
        if (outcome == Outcome::Done)
            done.add(ldNo);
        else if (outcome != Outcome::PassedOver)
            failed.add(ldNo);
    }
    sayDone(operation, ctrl.contNo, done);
    sayFailed(operation, ctrl.contNo, failed);
}

int runOperation(const Operation& start, const Operation& stop, int argc, char** argv, const _AFCONT* conts,
                 int contCount) {
    Options options;
    if (!readArguments(kLdBackgroundOptions, argc, argv, contCount, options))
        return 1;
    for (const unsigned char contNo : selectedControllers(options.ctrls, contCount)) {
        const SelectedLds lds = selectedLds(options.lds, {contNo, conts});
        if (lds.count == 0)
            sayNoLd(contNo);
        performOnController(options.has(kStart) ? start : stop, {contNo, conts}, lds.list());
    }
    return 0;
}

} // namespace

constexpr OptionTable kLdBackgroundOptions = ldOptions(kStartStopWords);

int CliCmdExecLDINIT(int argc, char** argv, _AFCONT* conts, int contCount) {
    dumpLog(kLdSource, __LINE__, __func__);
    return runOperation(kStartInit, kStopInit, argc, argv, conts, contCount);
}

int CliCmdExecLDCC(int argc, char** argv, _AFCONT* conts, int contCount) {
    dumpLog(kLdSource, __LINE__, __func__);
    return runOperation(kStartCheck, kStopCheck, argc, argv, conts, contCount);
}
