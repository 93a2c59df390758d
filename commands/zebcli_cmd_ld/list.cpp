// The LD/PD report: RAID groups with their LDs, settings and drives.
#include "commands/handlers.h"

#include "commands/zebcli_cmd_ld/creation/construction.h"
#include "commands/zebcli_cmd_ld/ld_targets.h"
#include "commands/zebcli_cmd_ld/setting_tables.h"
#include "log/raidctl.h"
#include "log/zebcli_log.h"
#include "main/zebcli_cmd_com/base/string_shims.h"
#include "main/zebcli_cmd_com/model/capacity.h"
#include "main/zebcli_cmd_com/text/report.h"
#include "main/zebcli_cmd_com/text/text_field.h"
#include "main/zebcli_cmd_com/text/vocabulary.h"

#include <algorithm>
#include <span>

namespace {

constexpr OptionTable kOptions = ldOptions({});
constexpr std::uint64_t kFreeSpaceFloor = 4; // MB per drive
constexpr unsigned kBlocksToMbShift = 11;

/// What the report of one controller is about.
struct ReportContext {
    unsigned char contNo;
    const _AFCONT* conts;
    bool withSummary;

    const _AFCONT& cont() const { return conts[contNo]; }
};

std::span<const std::uint8_t> ldsOf(const _SL_ARRAY_INFO_T& group) {
    return {group.ldTargetId, std::min<std::size_t>(group.ldCount, std::size(group.ldTargetId))};
}

std::span<const _MR_ARRAY_PD> drivesOf(const _SL_ARRAY_INFO_T& group) {
    return {group.pd, std::min<std::size_t>(group.pdCount, std::size(group.pd))};
}

/// The records of the RAID group that holds the LD, from the one of its first span on. The scan ends at the first
/// record without an LD; a group behind it is not found, and the answer is empty.
std::span<const _SL_ARRAY_INFO_T> findGroup(const _AFCONT& cont, unsigned ldNo) {
    const std::span<const _SL_ARRAY_INFO_T> groups(cont.arrayInfo);
    for (std::size_t i = 0; i < groups.size() && groups[i].ldCount != 0; ++i) {
        const auto lds = ldsOf(groups[i]);
        if (std::find(lds.begin(), lds.end(), ldNo) != lds.end())
            return groups.subspan(i);
    }
    return {};
}

double ldCapacity(const ReportContext& context, const _MR_LD_CONFIG& ld) {
    return blocksToGb(GetLDSize(&ld, context.contNo));
}

void addFreeSpace(Report& report, const ReportContext& context, const _SL_ARRAY_INFO_T& group,
                  const _MR_LD_CONFIG& ld) {
    const unsigned short drives = driveCountOf(ld);
    const unsigned segments = std::min<unsigned>(group.freeCount, kMaxFreeSegments);
    if (segments == 0)
        report.add("     Free Space          : 0.000GB");
    for (unsigned i = 0; i < segments; ++i) {
        std::uint64_t capacity = CalcLDCapa(SLTransLateRAIDLvl(&ld), drives, group.freeSegment[i].size, context.contNo);
        if ((capacity >> kBlocksToMbShift) <= kFreeSpaceFloor * drives)
            capacity = 0;
        if (i == 0)
            report.add("     Free Space          : %0.3fGB", blocksToGb(capacity));
        else
            report.add(", %0.3fGB", blocksToGb(capacity));
    }
}

void reportSummary(Report& report, const ReportContext& context, const _SL_ARRAY_INFO_T& group,
                   const _MR_LD_CONFIG& ld) {
    char name[kTextSize];
    mkRaidGroupArrayStr(context.contNo, context.conts, ld.span[0].arrayRef, name);
    report.add("%s", name);
    report.add("\n     # of LD             : %d\r\n", static_cast<int>(ldsOf(group).size()));
    report.add("     Total Capacity      : %0.3fGB\r\n", blocksToGb(group.totalSize));
    addFreeSpace(report, context, group, ld);
    report.emit();
}

/// One line for an LD, behind the given lead.
void addLdLine(Report& report, const ReportContext& context, const char* lead, unsigned ldNo) {
    const _MR_LD_CONFIG& ld = context.cont().ldInfo[ldNo].config;
    char state[kTextSize];
    mkLDStateStr(context.contNo, context.conts, &ld, state);
    char capacity[32];
    wsprintf(capacity, "%0.3fGB", ldCapacity(context, ld));
    report.add("%sLD%u (%s, %s, %s)\r\n", lead, ldNo, fieldText(ld.properties.name).c_str(), capacity, state);
}

/// The facts of the group are those of its LD `found`, the rest are settings of the LD `reported`.
void addGeneral(Report& report, const ReportContext& context, const _MR_LD_CONFIG& found,
                const _MR_LD_CONFIG& reported) {
    char name[kTextSize];
    mkRaidGroupArrayStr(context.contNo, context.conts, found.span[0].arrayRef, name);
    // The tab in the heading and the bare "\n" behind the group's name are deliberate: scripts read them so.
    report.add("%s\r\n", "### General Information\t###");
    report.add("%s                   : %s\n", "RG No.", name);
    report.add("%s               : %s\r\n", "RAID Level", raidLevelText(SLTransLateRAIDLvl(&found), context.contNo));
    if (reported.cacheCade == 0)
        report.add("%s              : %s\r\n", "Stripe Size",
                   settingLabel(supportedStripeSizes(), reported.stripeSize));
    report.add("%s                  : %d\r\n", "# of PD", driveCountOf(found));
    if (reported.cacheCade == 0)
        report.add("%s            : %s\r\n", "Access Policy",
                   settingLabel(setitemAccessPolicy, reported.properties.accessPolicy));
}

/// The LDs that a CacheCade LD serves: those with cached IO.
void addAssociatedLds(Report& report, const ReportContext& context) {
    report.add("%s  :\r\n", "Associated CacheCade LD");
    for (const _MR_LD_LIST_ENTRY& entry : ldEntries(context.cont())) {
        if (entry.targetId >= kMaxLds)
            continue;
        const _MR_LD_CONFIG& ld = context.cont().ldInfo[entry.targetId].config;
        if (ld.cacheCade == 0 && (ld.properties.defaultCachePolicy & kIoPolicyMask) == kCachedIo)
            addLdLine(report, context, "  ", entry.targetId);
    }
}

/// Read and IO policy are those of the default cache policy on purpose.
void addSettings(Report& report, const _MR_LD_PROPERTIES& properties) {
    const unsigned defaultPolicy = properties.defaultCachePolicy;
    report.add("\r\n%s\r\n", "### LD Settings Information ###");
    report.add("%s        : %s\r\n", "Disk Cache Policy",
               settingLabel(setitemDiskCachePolicy, properties.diskCachePolicy));
    report.add("%s              : %s\r\n", "Read Policy",
               settingLabel(setitemReadPolicy, defaultPolicy & kReadPolicyMask));
    report.add("%s                : %s\r\n", "IO Policy", settingLabel(setitemIOPolicy, defaultPolicy & kIoPolicyMask));
    if (IsSoftwareRAID() != 0)
        return;
    const unsigned current = properties.currentCachePolicy & kWritePolicyMask;
    const bool writesBack = current == kWriteBack || current == kAlwaysWriteBack;
    report.add("%s     : %s\r\n", "Current Write Policy",
               writesBack ? "Write Back" : settingLabel(supportedWritePolicies(), current));
    report.add("%s     : %s\r\n", "Default Write Policy",
               settingLabel(supportedWritePolicies(), defaultPolicy & kWritePolicyMask));
}

void reportDrive(Report& report, const ReportContext& context, const _SL_ARRAY_INFO_T& span, unsigned char slotNo) {
    const _MR_PD_INFO& pd = context.cont().pdInfo[slotNo];
    char text[kTextSize];
    report.add(">>PD%u (LD%u", slotNo, span.ldTargetId[0]);
    for (const std::uint8_t ldNo : ldsOf(span).subspan(std::min<std::size_t>(span.ldCount, 1)))
        report.add(", %u", ldNo);
    report.add(")");
    report.add("\r\n");
    mkPDStateStr(pd.fwState, text);
    report.add("%s                   : %s\r\n", "Status", text);
    wsprintf(text, "%0.3f", blocksToGb(pd.coercedSize));
    report.add("%s                 : %s GB\r\n", "Capacity", text);
    mkMediaTypeStr(&pd, text);
    report.add("%s               : %s\r\n", "Media Type", text);
    report.add("%s        : %d\r\n", "Media Error Count", static_cast<int>(pd.mediaErrorCount));
    report.add("%s          : %d\r\n", "Pred Fail Count", static_cast<int>(pd.predFailCount));
    report.emit();
}

void reportGroup(Report& report, const ReportContext& context, std::span<const _SL_ARRAY_INFO_T> groups,
                 unsigned foundLd, unsigned reportedLd) {
    for (const std::uint8_t ldNo : ldsOf(groups.front()))
        if (ldNo < kMaxLds)
            addLdLine(report, context, ">", ldNo);
    static constexpr _MR_LD_CONFIG kAbsent{};
    const _MR_LD_CONFIG& found = context.cont().ldInfo[foundLd].config;
    const _MR_LD_CONFIG& reported = reportedLd < kMaxLds ? context.cont().ldInfo[reportedLd].config : kAbsent;
    addGeneral(report, context, found, reported);
    if (reported.cacheCade != 0)
        addAssociatedLds(report, context);
    addSettings(report, reported.properties);
    report.emit();
    report.add("%s\r\n", "### PD Information ###");
    const std::size_t spans = std::min<std::size_t>({found.spanDepth, kMaxSpans, groups.size()});
    for (const _SL_ARRAY_INFO_T& span : groups.first(spans))
        for (const _MR_ARRAY_PD& drive : drivesOf(span))
            if (drive.ref.deviceId != kNoDevice)
                reportDrive(report, context, span, drive.slotNo);
}

/// Reports each group that holds a selected LD once. The settings shown are those of the LD that stands as many numbers
/// behind the one found as the group has further LDs; with LDs numbered in a row that is the group's last one.
/// Deliberate.
void reportController(const ReportContext& context, const LdSelection& selection) {
    SetSupportWritePolicy(context.contNo, context.conts);
    SetSupportStripeSize(context.contNo, context.conts);
    CliLogging(kPrint, kLdSource, __LINE__, "\nRAID Controller: %d\n", context.contNo);
    if (selectedLds(selection, context.contNo).count == 0)
        return;
    Report report;
    for (unsigned ldNo = 0; ldNo < kMaxLds; ++ldNo) {
        const auto groups = selection[context.contNo][ldNo] != kNoTarget ? findGroup(context.cont(), ldNo)
                                                                         : std::span<const _SL_ARRAY_INFO_T>{};
        if (groups.empty())
            continue;
        if (context.withSummary)
            reportSummary(report, context, groups.front(), context.cont().ldInfo[ldNo].config);
        const unsigned foundLd = ldNo;
        ldNo += static_cast<unsigned>(ldsOf(groups.front()).size()) - 1U;
        reportGroup(report, context, groups, foundLd, ldNo);
    }
    report.emit();
}

} // namespace

int CliCmdExecLDInfo(int argc, char** argv, _AFCONT* conts, int contCount) {
    dumpLog(kLdSource, __LINE__, __func__);
    Options options;
    if (!readArguments(kOptions, argc, argv, contCount, options))
        return 1;
    LdSelection selection{};
    getAdpLdArray(options.ctrls, options.lds, selection, conts);
    for (const unsigned char contNo : selectedControllers(options.ctrls, contCount))
        reportController({contNo, conts, !options.ldGiven}, selection);
    return 0;
}
