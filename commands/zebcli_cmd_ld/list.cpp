// The LD/PD report: RAID groups with their LDs, settings and drives.
#include "commands/handlers.h"

#include "commands/zebcli_cmd_ld/creation/construction.h"
#include "commands/zebcli_cmd_ld/ld_targets.h"
#include "commands/zebcli_cmd_ld/setting_tables.h"
#include "log/raidctl.h"
#include "log/zebcli_log.h"
#include "main/zebcli_cmd_com/base/string_shims.h"
#include "main/zebcli_cmd_com/model/capacity.h"
#include "main/zebcli_cmd_com/model/live_questions.h"
#include "main/zebcli_cmd_com/text/raid_group_words.h"
#include "main/zebcli_cmd_com/text/report.h"
#include "main/zebcli_cmd_com/text/text_field.h"
#include "main/zebcli_cmd_com/text/vocabulary.h"

#include <algorithm>
#include <array>
#include <optional>
#include <span>

namespace {

constexpr std::uint64_t kFreeSpaceFloor = 4; // MB per drive
constexpr unsigned kBlocksToMbShift = 11;

/// The group record of each array of the configuration, by array reference; null where there is no such array.
using GroupRecords = std::array<const _SL_ARRAY_INFO_T*, kMaxArrays>;

GroupRecords groupRecords(const _AFCONT& cont) {
    GroupRecords records{};
    for (const _MR_ARRAY& array : arraysOf(cont))
        if (array.arrayRef < kMaxArrays)
            records[array.arrayRef] = &cont.arrayInfo[array.arrayRef];
    return records;
}

/// The record of the RAID group that holds the LD. A reference without an array is a gap. The scan ends at the first
/// record without an LD; a group behind it is not found, and the answer is null.
const _SL_ARRAY_INFO_T* findGroup(const GroupRecords& records, unsigned ldNo) {
    for (const _SL_ARRAY_INFO_T* record : records) {
        if (record == nullptr)
            continue;
        const auto lds = ldsOf(*record);
        if (lds.empty() || std::find(lds.begin(), lds.end(), ldNo) != lds.end())
            return lds.empty() ? nullptr : record;
    }
    return nullptr;
}

/// The LD whose settings stand for the group: the one as many numbers behind the LD found as the group has further LDs,
/// whichever group that is in; with LDs numbered in a row it is the group's last one. Deliberate. Where the controller
/// has no such LD, the last of the group that it has.
const _MR_LD_CONFIG& settingsOf(Controller ctrl, const _SL_ARRAY_INFO_T& group, unsigned foundLd) {
    const auto exists = [&](unsigned ldNo) {
        return ldNo < kMaxLds && IsExistLD(ctrl.contNo, static_cast<unsigned char>(ldNo), ctrl.conts) != 0;
    };
    const auto lds = ldsOf(group);
    const unsigned behind = foundLd + static_cast<unsigned>(lds.size()) - 1U;
    if (exists(behind))
        return ctrl.ld(behind).config;
    const auto last = std::find_if(lds.rbegin(), lds.rend(), exists);
    return ctrl.ld(last != lds.rend() ? *last : foundLd).config;
}

void addFreeSpace(Report& report, Controller ctrl, const _SL_ARRAY_INFO_T& group, const _MR_LD_CONFIG& ld) {
    const unsigned short drives = driveCountOf(ld);
    const auto segments = freeSegmentsOf(group);
    report.label("     Free Space");
    if (segments.empty())
        report.add("%sGB", gbText(0).c_str());
    for (std::size_t i = 0; i < segments.size(); ++i) {
        std::uint64_t capacity = CalcLDCapa(SLTransLateRAIDLvl(&ld), drives, segments[i].size, ctrl.contNo);
        if ((capacity >> kBlocksToMbShift) <= kFreeSpaceFloor * drives)
            capacity = 0;
        report.add("%s%sGB", i == 0 ? "" : ", ", gbText(capacity).c_str());
    }
}

void reportSummary(Report& report, Controller ctrl, const _SL_ARRAY_INFO_T& group, const _MR_LD_CONFIG& ld) {
    char name[kTextSize];
    mkRaidGroupArrayStr(ctrl.contNo, ctrl.conts, ld.span[0].arrayRef, name);
    report.add("%s\n", name);
    report.field("     # of LD", "%d", static_cast<int>(ldsOf(group).size()));
    report.field("     Total Capacity", "%sGB", gbText(group.totalSize).c_str());
    addFreeSpace(report, ctrl, group, ld);
    report.emit();
}

/// One line for an LD, behind the given lead.
void addLdLine(Report& report, Controller ctrl, const char* lead, unsigned ldNo) {
    const _MR_LD_CONFIG& ld = ctrl.ld(ldNo).config;
    char state[kTextSize];
    mkLDStateStr(ctrl.contNo, ctrl.conts, &ld, state);
    report.add("%sLD%u (%s, %sGB, %s)\r\n", lead, ldNo, fieldText(ld.properties.name).c_str(),
               gbText(GetLDSize(&ld, ctrl.contNo)).c_str(), state);
}

/// The facts of the group are those of its LD `found`, the rest are settings of the LD `reported`.
void addGeneral(Report& report, Controller ctrl, const _MR_LD_CONFIG& found, const _MR_LD_CONFIG& reported) {
    char name[kTextSize];
    mkRaidGroupArrayStr(ctrl.contNo, ctrl.conts, found.span[0].arrayRef, name);
    // The tab in the heading and the bare "\n" behind the group's name are deliberate: scripts read them so.
    report.add("### General Information\t###\r\n");
    report.label("RG No.");
    report.add("%s\n", name);
    report.field("RAID Level", "%s", raidLevelText(SLTransLateRAIDLvl(&found), ctrl.contNo));
    if (reported.cacheCade == 0)
        report.field("Stripe Size", "%s", settingLabel(supportedStripeSizes(), reported.stripeSize));
    report.field("# of PD", "%d", driveCountOf(found));
    if (reported.cacheCade == 0)
        report.field("Access Policy", "%s", settingLabel(setitemAccessPolicy, reported.properties.accessPolicy));
}

/// The LDs that a CacheCade LD serves: those with cached IO.
void addAssociatedLds(Report& report, Controller ctrl) {
    report.add("Associated CacheCade LD  :\r\n"); // no value, and no blank where one would stand
    for (const _MR_LD_LIST_ENTRY& entry : ldEntries(ctrl.cont())) {
        if (entry.targetId >= kMaxLds)
            continue;
        const _MR_LD_CONFIG& ld = ctrl.ld(entry.targetId).config;
        if (ld.cacheCade == 0 && (ld.properties.defaultCachePolicy & kIoPolicyMask) == kCachedIo)
            addLdLine(report, ctrl, "  ", entry.targetId);
    }
}

/// Read and IO policy are those of the default cache policy on purpose.
void addSettings(Report& report, const _MR_LD_PROPERTIES& properties, bool softwareRaid) {
    const unsigned defaultPolicy = properties.defaultCachePolicy;
    report.gap();
    report.heading("LD Settings Information");
    report.field("Disk Cache Policy", "%s", settingLabel(setitemDiskCachePolicy, properties.diskCachePolicy));
    report.field("Read Policy", "%s", settingLabel(setitemReadPolicy, defaultPolicy & kReadPolicyMask));
    report.field("IO Policy", "%s", settingLabel(setitemIOPolicy, defaultPolicy & kIoPolicyMask));
    if (softwareRaid)
        return;
    const unsigned current = properties.currentCachePolicy & kWritePolicyMask;
    const bool writesBack = current == kWriteBack || current == kAlwaysWriteBack;
    report.field("Current Write Policy", "%s",
                 writesBack ? "Write Back" : settingLabel(supportedWritePolicies(), current));
    report.field("Default Write Policy", "%s",
                 settingLabel(supportedWritePolicies(), defaultPolicy & kWritePolicyMask));
}

void reportDrive(Report& report, Controller ctrl, const _SL_ARRAY_INFO_T& span, unsigned char slotNo) {
    const _MR_PD_INFO& pd = ctrl.pd(slotNo);
    char text[kTextSize];
    report.add(">>PD%u (LD%u", slotNo, span.ldTargetId[0]);
    for (const std::uint8_t ldNo : ldsOf(span).subspan(ldsOf(span).empty() ? 0 : 1))
        report.add(", %u", ldNo);
    report.add(")\r\n");
    mkPDStateStr(pd.fwState, text);
    report.field("Status", "%s", text);
    report.field("Capacity", "%s GB", gbText(pd.coercedSize).c_str());
    mkMediaTypeStr(&pd, text);
    report.field("Media Type", "%s", text);
    report.field("Media Error Count", "%d", static_cast<int>(pd.mediaErrorCount));
    report.field("Pred Fail Count", "%d", static_cast<int>(pd.predFailCount));
    report.emit();
}

void reportGroup(Report& report, Controller ctrl, const GroupRecords& records, const _SL_ARRAY_INFO_T& group,
                 unsigned foundLd, bool softwareRaid) {
    for (const std::uint8_t ldNo : ldsOf(group))
        if (ldNo < kMaxLds)
            addLdLine(report, ctrl, ">", ldNo);
    const _MR_LD_CONFIG& found = ctrl.ld(foundLd).config;
    const _MR_LD_CONFIG& reported = settingsOf(ctrl, group, foundLd);
    addGeneral(report, ctrl, found, reported);
    if (reported.cacheCade != 0)
        addAssociatedLds(report, ctrl);
    addSettings(report, reported.properties, softwareRaid);
    report.emit();
    report.heading("PD Information");
    for (const _MR_SPAN& span : spansOf(found)) {
        const _SL_ARRAY_INFO_T* record = span.arrayRef < kMaxArrays ? records[span.arrayRef] : nullptr;
        if (record == nullptr)
            continue;
        for (const _MR_ARRAY_PD& drive : drivesOf(*record))
            if (drive.ref.deviceId != kNoDevice)
                reportDrive(report, ctrl, *record, drive.slotNo);
    }
}

/// What is asked once per run, when the first group is reported.
class SoftwareRaidAnswer {
  public:
    bool ask() {
        if (!answer_)
            answer_ = IsSoftwareRAID() != 0;
        return *answer_;
    }

  private:
    std::optional<bool> answer_;
};

/// Reports each group that holds a selected LD once, whatever the numbers of its LDs.
void reportController(Controller ctrl, bool withSummary, const LdList& listed, SoftwareRaidAnswer& software) {
    SetSupportWritePolicy(ctrl.contNo, ctrl.conts);
    SetSupportStripeSize(ctrl.contNo, ctrl.conts);
    CliLogging(kPrint, kLdSource, __LINE__, "\nRAID Controller: %d\n", ctrl.contNo);
    const SelectedLds selected = selectedLds(listed, ctrl);
    if (selected.count == 0)
        sayNoLd(ctrl.contNo);
    const GroupRecords records = groupRecords(ctrl.cont());
    std::array<bool, kByteValues> done{}; // by LD number: the LDs of the groups that were reported
    Report report;
    for (const unsigned char ldNo : selected.list()) {
        const _SL_ARRAY_INFO_T* group = done[ldNo] ? nullptr : findGroup(records, ldNo);
        if (group == nullptr)
            continue;
        if (withSummary)
            reportSummary(report, ctrl, *group, ctrl.ld(ldNo).config);
        reportGroup(report, ctrl, records, *group, ldNo, software.ask());
        for (const std::uint8_t member : ldsOf(*group))
            done[member] = true;
    }
    report.emit();
}

} // namespace

constexpr OptionTable kLdInfoOptions = ldOptions();

int CliCmdExecLDInfo(int argc, char** argv, _AFCONT* conts, int contCount) {
    dumpLog(kLdSource, __LINE__, __func__);
    Options options;
    if (!readArguments(kLdInfoOptions, argc, argv, contCount, options))
        return 1;
    SoftwareRaidAnswer software;
    for (const unsigned char contNo : selectedControllers(options.ctrls, contCount))
        reportController({contNo, conts}, !options.ldGiven, options.lds, software);
    return 0;
}
