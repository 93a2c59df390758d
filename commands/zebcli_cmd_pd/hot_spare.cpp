// Hot spares: global ones, ones that are dedicated to a RAID group, and their release.
#include "commands/handlers.h"

#include "commands/zebcli_cmd_pd/pd_targets.h"
#include "log/raidctl.h"
#include "log/zebcli_log.h"
#include "main/zebcli_cmd_com/base/trace.h"
#include "main/zebcli_cmd_com/input/dialogue.h"
#include "main/zebcli_cmd_com/input/prompts.h"
#include "main/zebcli_cmd_com/model/live_questions.h"
#include "main/zebcli_cmd_com/model/lookup.h"
#include "main/zebcli_cmd_com/model/raid_groups.h"
#include "main/zebcli_cmd_com/text/number_list.h"
#include "main/zebcli_cmd_com/text/raid_group_words.h"
#include "main/zebcli_cmd_com/text/vocabulary.h"
#include "storelib/common/StoreLib/hot_spare.h"
#include "storelib/common/StoreLib/logical_drive.h"
#include "storelib/common/StoreLib/physical_drive.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace {

constexpr Speaker kHotSpareHandler{kPdSource, "CliCmdExecPDHSP"};

enum SpareBit : unsigned { kGlobal = 1, kDedicated = 2, kRemove = 4, kNoCheck = 8 };
constexpr unsigned kModes = kGlobal | kDedicated | kRemove;
constexpr auto kHotSpareWords = std::to_array<OptionWord>({
    {.word = "ghs", .bit = kGlobal, .refusedAfter = kModes},
    {.word = "dhs", .bit = kDedicated, .refusedAfter = kModes},
    {.word = "rmv", .bit = kRemove, .refusedAfter = kModes},
    {.word = "nochk", .bit = kNoCheck, .refusedAfter = kNoCheck},
});

bool isComplete(const Options& options) {
    return options.pdGiven && options.has(kModes);
}

/// What becomes of one drive: changed, passed over after its error was said, or the end of the whole command.
enum class Outcome { Changed, PassedOver, EndCommand };

/// One drive of one controller.
struct Target {
    Controller ctrl;
    unsigned char slotNo;

    const _MR_PD_INFO& known() const { return ctrl.pd(slotNo); }
};

Outcome refuse(const char* message, int line = __builtin_LINE()) {
    CliLogging(kPrintAndLog, kPdSource, line, "%s", message);
    return Outcome::PassedOver;
}

Outcome refuseAssignment(int line = __builtin_LINE()) {
    return refuse("Error - Failed to assign a Hot Spare.\nPlease confirm PD(Physical Drive) state.\n", line);
}

Outcome refuseRelease(int line = __builtin_LINE()) {
    return refuse("Error - Failed to release the Hot Spare. Please confirm PD(Physical Drive) state.", line);
}

bool succeeded(std::uint32_t status, const char* text, const Target& target, int line = __builtin_LINE()) {
    return succeeded(status, {kHotSpareHandler, line}, text, onPd(target.ctrl.contNo, target.slotNo));
}

bool readPd(const Target& target, _MR_PD_INFO& pd) {
    return succeeded(SLGetPDInfo(target.ctrl.contNo, target.slotNo, &pd), "SLGetPDInfo error", target);
}

/// Hands the information of each drive of an array that the snapshot knows to the sink until that returns true.
template <class Sink>
bool anyKnownDrive(const Target& target, const _MR_ARRAY& array, Sink sink) {
    const auto drives = drivesOf(array);
    return std::any_of(drives.begin(), drives.end(), [&](const _MR_ARRAY_PD& drive) {
        unsigned char slotNo = 0;
        return drive.ref.deviceId != kNoDevice &&
               GetSlotNo(target.ctrl.contNo, drive.ref.deviceId, &slotNo, target.ctrl.conts) != 0 &&
               sink(target.ctrl.pd(slotNo));
    });
}

/// Whether a configured drive differs from the candidate in what is asked of both.
template <class Property>
bool differsFromConfigured(const Target& target, Property property) {
    const auto arrays = arraysOf(target.ctrl.cont());
    return std::any_of(arrays.begin(), arrays.end(), [&](const _MR_ARRAY& array) {
        return anyKnownDrive(target, array,
                             [&](const _MR_PD_INFO& pd) { return property(pd) != property(target.known()); });
    });
}

/// A global spare may serve any group, so an ill match with the configured drives is only a warning.
Outcome makeGlobal(const Target& target) {
    _MR_PD_INFO pd{};
    if (!readPd(target, pd)) {
        refuseAssignment();
        return Outcome::EndCommand;
    }
    if (pd.fwState != kPdUnconfiguredGood)
        return refuseAssignment();
    if (differsFromConfigured(target, interfaceOf) && !confirmed(kAskGhsInterface))
        return Outcome::EndCommand;
    if (differsFromConfigured(target, mediaOf) && !confirmed(kAskGhsMedia))
        return Outcome::EndCommand;
    const auto arrays = arraysOf(target.ctrl.cont());
    const bool tooSmall =
        std::any_of(arrays.begin(), arrays.end(), [&](const _MR_ARRAY& array) { return array.size > pd.coercedSize; });
    if (tooSmall && !confirmed(kAskGhsCapacity))
        return Outcome::EndCommand;
    if (!succeeded(SLMakeGlobalHotspare(target.ctrl.contNo, target.slotNo), "SLMakeGlobalHotspare error", target))
        return refuseAssignment();
    return Outcome::Changed;
}

void printGroups(const Target& target, const _RG_SEL_LIST_T& groups) {
    std::printf("RG No. RAID Level\n-----------------\n");
    for (const auto& group : std::span(groups.entry).first(groups.count)) {
        char name[kTextSize];
        mkRaidGroupArrayStr(target.ctrl.contNo, target.ctrl.conts, group.arrayRef, name);
        std::printf("%-7s%s\n", name, raidLevelText(group.level, target.ctrl.contNo));
    }
}

/// Asks for a group until one of the list is named; null when the operator quits.
const _RG_SEL_LIST_T::Entry* askGroup(const _RG_SEL_LIST_T& groups) {
    std::array<unsigned char, kMaxArrays> offered;
    const auto listed = std::span(groups.entry).first(groups.count);
    std::transform(listed.begin(), listed.end(), offered.begin(), [](const auto& group) { return group.groupNo; });
    const auto chosen =
        chooseNumber("RG No.(\"Q\"->Quit) :", std::span(offered).first(listed.size()), AtEndOfInput::AsksAgain);
    if (!chosen)
        return nullptr;
    return &*std::find_if(listed.begin(), listed.end(), [&](const auto& group) { return group.groupNo == *chosen; });
}

bool isOfGroup(const _AFCONT& cont, const _MR_ARRAY& array, const _RG_SEL_LIST_T::Entry& group) {
    if (array.arrayRef >= kMaxArrays)
        return false;
    const ZEB_TRANS_RG_NO_LIST_T::Entry& entry = cont.rgNoList.entry[array.arrayRef];
    return entry.known != 0 && entry.cacheCade == 0 && entry.groupNo == group.groupNo;
}

/// A dedicated spare must match its group: interface and media of the first drive that is known, and the size of the
/// arrays.
Outcome checkMatch(const Target& target, const _MR_PD_INFO& candidate, const _RG_SEL_LIST_T::Entry& group) {
    const _MR_PD_INFO* member = nullptr;
    std::uint64_t arraySize = 0;
    for (const _MR_ARRAY& array : arraysOf(target.ctrl.cont())) {
        if (!isOfGroup(target.ctrl.cont(), array, group))
            continue;
        arraySize = std::max<std::uint64_t>(arraySize, array.size);
        if (member == nullptr)
            anyKnownDrive(target, array, [&](const _MR_PD_INFO& pd) {
                member = &pd;
                return true;
            });
    }
    if (member == nullptr)
        return refuseAssignment();
    if (interfaceOf(*member) != interfaceOf(target.known()))
        return refuse("Error - Cannot create DHS(Dedicated Hot Spare) with the different Interface Type(SAS/SATA).");
    if (mediaOf(*member) != mediaOf(target.known()))
        return refuse("Error - Cannot create DHS(Dedicated Hot Spare) with the different Media Type(HDD/SSD).");
    if (arraySize > candidate.coercedSize)
        return refuse("Error - Cannot create DHS(Dedicated Hot Spare) with lower capacity than other configured "
                      "PDs(Physical Drives).");
    return Outcome::Changed;
}

Outcome makeDedicated(const Target& target) {
    _MR_PD_INFO pd{};
    if (IsSoftwareRAID() != 0 || !readPd(target, pd) || pd.fwState != kPdUnconfiguredGood)
        return refuseAssignment();
    static _RG_SEL_LIST_T groups;
    MakeRaidLvlList(target.ctrl.contNo, target.ctrl.conts, groups);
    if (groups.count == 0)
        return refuse("Error - Cannot create DHS(Dedicated Hot Spare) with no RAID Group.");
    printGroups(target, groups);
    const _RG_SEL_LIST_T::Entry* group = askGroup(groups);
    if (group == nullptr)
        return Outcome::EndCommand;
    if (const Outcome outcome = checkMatch(target, pd, *group); outcome != Outcome::Changed)
        return outcome;
    if (!succeeded(SLMakeDedicatedHotspare(target.ctrl.contNo, target.slotNo, group->arrayRef),
                   "SLMakeDedicatedHotspare error", target))
        return refuseAssignment();
    return Outcome::Changed;
}

Outcome releaseSpare(const Target& target, bool check) {
    _MR_PD_INFO pd{};
    if (!readPd(target, pd))
        return refuseAssignment();
    if (pd.fwState != kPdHotSpare)
        return refuseRelease();
    bool ask = check;
    if ((pd.ddfType & kDdfGlobalSpare) != 0) {
        _MR_LD_LIST lds{};
        if (!succeeded(SLGetLDList(target.ctrl.contNo, &lds), "SLGetLDList error", target))
            return refuseAssignment();
        ask = check && lds.count > 0;
    }
    if (ask && !confirmed(kAskReleaseSpare))
        return Outcome::EndCommand;
    if (!succeeded(SLRemoveHotspare(target.ctrl.contNo, target.slotNo), "SLRemoveHotspare error", target))
        return refuseRelease();
    return Outcome::Changed;
}

Outcome change(const Target& target, const Options& options) {
    if (options.has(kGlobal))
        return makeGlobal(target);
    return options.has(kDedicated) ? makeDedicated(target) : releaseSpare(target, !options.has(kNoCheck));
}

/// Returns false when the whole command is over. What was changed stays changed then, without a line about it.
bool changeOnController(Controller ctrl, const Options& options) {
    NumberList changed;
    for (const unsigned char slotNo : listedDrives(options.pds)) {
        const Outcome outcome = change({ctrl, slotNo}, options);
        if (outcome == Outcome::EndCommand)
            return false;
        if (outcome == Outcome::Changed)
            changed.add(slotNo);
    }
    if (!changed.empty())
        CliLogging(kPrint, kPdSource, __LINE__,
                   "Information - Controller[%d] Settings have been changed PD(Physical Drive) %s.", ctrl.contNo,
                   changed.c_str());
    return true;
}

} // namespace

constexpr OptionTable kHotSpareOptions = pdOptions(kHotSpareWords);

int CliCmdExecPDHSP(int argc, char** argv, _AFCONT* conts, int contCount) {
    dumpLog(kPdSource, __LINE__, __func__);
    Options options;
    if (!parsePdCommand(kHotSpareOptions, isComplete, argc, argv, contCount, conts, options))
        return 1;
    for (const unsigned char contNo : selectedControllers(options.ctrls, contCount))
        if (!changeOnController({contNo, conts}, options))
            return 1;
    return 0;
}
