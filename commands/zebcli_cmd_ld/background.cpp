// Initialization and consistency check of LDs: start and stop.
#include "commands/handlers.h"

#include "commands/zebcli_cmd_ld/ld_targets.h"
#include "log/raidctl.h"
#include "log/zebcli_log.h"
#include "main/zebcli_cmd_com/number_list.h"
#include "main/zebcli_cmd_com/raid_level.h"
#include "storelib/common/StoreLib/logical_drive.h"
#include "storelib/records/status.h"

#include <array>

namespace {

enum ModeBit : unsigned { kStart = 1, kStop = 2 };
constexpr unsigned kModes = kStart | kStop;
constexpr auto kModeWords = std::to_array<OptionWord>({{"start", kStart, kModes}, {"stop", kStop, kModes}});
constexpr OptionTable kOptions = ldOptions(kModeWords);

enum class Outcome { Done, Failed, PassedOver };

/// One command in one mode: what is done with each LD, and the summary lines. The lines name the controller and the
/// LDs.
struct Operation {
    Outcome (*perform)(unsigned char contNo, unsigned char ldNo, const _AFCONT* conts, bool& saidRaid0);
    void (*sayDone)(unsigned char contNo, const char* lds);
    void (*sayFailed)(unsigned char contNo, const char* lds);
};

/// Leaves the trace of a failed wrapper.
Outcome outcomeOf(std::uint32_t status, const char* func, const char* text, unsigned char contNo, unsigned char ldNo,
                  int line = __builtin_LINE()) {
    if (status == kSlSuccess)
        return Outcome::Done;
    Utillogging(kLdSource, line, kTraceError, "func=%s: %s, contNo=%u, ldNo=%u", func, text, contNo, ldNo);
    return Outcome::Failed;
}

Outcome startCheck(unsigned char contNo, unsigned char ldNo, const _AFCONT* conts, bool& saidRaid0) {
    if (CheckLDActive(contNo, ldNo, conts) != kLdIdle)
        return Outcome::Failed;
    if (SLTransLateRAIDLvl(&conts[contNo].ldInfo[ldNo].config) == kRaid0) {
        if (!saidRaid0)
            CliLogging(kPrintAndLog, kLdSource, __LINE__, "Error - Controller[%d] Cannot Check Consistency for RAID0.",
                       contNo);
        saidRaid0 = true;
        return Outcome::Failed;
    }
    return outcomeOf(SLStartCheckConsistency(contNo, ldNo), "CliCmdExecLDCC", "SLStartCheckConsistency error", contNo,
                     ldNo);
}

Outcome stopCheck(unsigned char contNo, unsigned char ldNo, const _AFCONT* conts, bool& /*saidRaid0*/) {
    if (CheckLDActive(contNo, ldNo, conts) != kLdChecking)
        return Outcome::Failed;
    return outcomeOf(SLCancelCheckConsistency(contNo, ldNo), "CliCmdExecLDCC", "SLCancelCheckConsistency error", contNo,
                     ldNo);
}

Outcome startInit(unsigned char contNo, unsigned char ldNo, const _AFCONT* conts, bool& /*saidRaid0*/) {
    const _MR_LD_INFO& ld = conts[contNo].ldInfo[ldNo];
    if (CheckLDActive(contNo, ldNo, conts) != kLdIdle)
        return Outcome::Failed;
    if (IsOSInstallLD(contNo, ldNo, conts) != 0) {
        CliLogging(kPrintAndLog, kLdSource, __LINE__, "Error - Cannot initialize OS LD(Logical Drive).");
        return Outcome::PassedOver;
    }
    if (ld.config.cacheCade != 0) {
        CliLogging(kPrintAndLog, kLdSource, __LINE__,
                   "Error - Controller[%d] CacheCade LD[s](Logical Drive[s]) %d doesn't need Initialization.", contNo,
                   ldNo);
        return Outcome::PassedOver;
    }
    if (isSnapshotLd(ld)) {
        CliLogging(kPrintAndLog, kLdSource, __LINE__,
                   "Error - Controller[%d] Snapshot Base/Repository LD[s](Logical Drive[s]) %d doesn't need "
                   "Initialization.",
                   contNo, ldNo);
        return Outcome::PassedOver;
    }
    return outcomeOf(SLStartInitialization(contNo, ldNo), "CliCmdExecLDINIT", "SLStartInitialization error", contNo,
                     ldNo);
}

Outcome stopInit(unsigned char contNo, unsigned char ldNo, const _AFCONT* conts, bool& /*saidRaid0*/) {
    if (CheckLDActive(contNo, ldNo, conts) != kLdInitializing)
        return Outcome::Failed;
    return outcomeOf(SLCancelInitialization(contNo, ldNo), "CliCmdExecLDINIT", "SLCancelInitialization error", contNo,
                     ldNo);
}

// "Check Consistency" in the failure lines against "Consistency Check" in the others is part of the texts.
constexpr Operation kStartCheck{
    startCheck,
    [](unsigned char contNo, const char* lds) {
        CliLogging(kPrint, kLdSource, __LINE__,
                   "Information - Controller[%d] Start Consistency Check on LD(Logical Drive) %s.", contNo, lds);
    },
    [](unsigned char contNo, const char* lds) {
        CliLogging(kPrintAndLog, kLdSource, __LINE__,
                   "Error - Controller[%d] Failed to start Check Consistency on LD(Logical Drive) %s.\r\n"
                   "Please confirm LD(Logical Drive) state.",
                   contNo, lds);
    }};
constexpr Operation kStopCheck{
    stopCheck,
    [](unsigned char contNo, const char* lds) {
        CliLogging(kPrint, kLdSource, __LINE__,
                   "Information - Controller[%d] Stop Consistency Check on LD(Logical Drive) %s.", contNo, lds);
    },
    [](unsigned char contNo, const char* lds) {
        CliLogging(kPrintAndLog, kLdSource, __LINE__,
                   "Error - Controller[%d] Failed to stop Check Consistency on LD(Logical Drive) %s.\r\n"
                   "Please confirm whether to have already ended.",
                   contNo, lds);
    }};
constexpr Operation kStartInit{
    startInit,
    [](unsigned char contNo, const char* lds) {
        CliLogging(kPrint, kLdSource, __LINE__,
                   "Information - Controller[%d] Start Initialization on LD(Logical Drive) %s.", contNo, lds);
    },
    [](unsigned char contNo, const char* lds) {
        CliLogging(kPrintAndLog, kLdSource, __LINE__,
                   "Error - Controller[%d] Failed to start Initialization on LD(Logical Drive) %s.\n"
                   "Please confirm LD(Logical Drive) state.\n",
                   contNo, lds);
    }};
constexpr Operation kStopInit{
    stopInit,
    [](unsigned char contNo, const char* lds) {
        CliLogging(kPrint, kLdSource, __LINE__,
                   "Information - Controller[%d] Stop Initialization on LD(Logical Drive) %s.", contNo, lds);
    },
    [](unsigned char contNo, const char* lds) {
        CliLogging(kPrintAndLog, kLdSource, __LINE__,
                   "Error - Controller[%d] Failed to stop Initialization on LD(Logical Drive) %s.\n"
                   "Please confirm whether to have already ended.\n",
                   contNo, lds);
    }};

void performOnController(const Operation& operation, unsigned char contNo, std::span<const unsigned char> lds,
                         const _AFCONT* conts) {
    NumberList done;
    NumberList failed;
    bool saidRaid0 = false;
    for (const unsigned char ldNo : lds) {
        const Outcome outcome = operation.perform(contNo, ldNo, conts, saidRaid0);
        if (outcome == Outcome::Done)
            done.add(ldNo);
        else if (outcome == Outcome::Failed)
            failed.add(ldNo);
    }
    if (!done.empty())
        operation.sayDone(contNo, done.c_str());
    if (!failed.empty())
        operation.sayFailed(contNo, failed.c_str());
}

int runOperation(const Operation& start, const Operation& stop, int argc, char** argv, const _AFCONT* conts,
                 int contCount) {
    Options options;
    if (!parseOptions(kOptions, argc, argv, contCount, options))
        return 1;
    if (options.bits == 0) {
        refuseToken(kLdSource, __LINE__, argc > 2 ? argv[2] : nullptr);
        return 1;
    }
    if (!selectDefaultTargets(kOptions, contCount, options))
        return 1;
    LdSelection selection{};
    getAdpLdArray(options.ctrls, options.lds, selection, conts);
    for (const unsigned char contNo : selectedControllers(options.ctrls, contCount)) {
        const SelectedLds lds = selectedLds(selection, contNo);
        performOnController(options.has(kStart) ? start : stop, contNo, lds.list(), conts);
    }
    return 0;
}

} // namespace

int CliCmdExecLDINIT(int argc, char** argv, _AFCONT* conts, int contCount) {
    dumpLog(kLdSource, __LINE__, __func__);
    return runOperation(kStartInit, kStopInit, argc, argv, conts, contCount);
}

int CliCmdExecLDCC(int argc, char** argv, _AFCONT* conts, int contCount) {
    dumpLog(kLdSource, __LINE__, __func__);
    return runOperation(kStartCheck, kStopCheck, argc, argv, conts, contCount);
}
