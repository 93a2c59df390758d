#include "commands/zebcli_cmd_ld/creation/drive_table.h"

#include "commands/zebcli_cmd_ld/slot_table.h"
#include "log/zebcli_log.h"
#include "main/zebcli_cmd_com/base/source.h"
#include "main/zebcli_cmd_com/base/string_shims.h"
#include "main/zebcli_cmd_com/model/lookup.h"
#include "main/zebcli_cmd_com/model/raid_groups.h"
#include "main/zebcli_cmd_com/text/raid_group_words.h"
#include "main/zebcli_cmd_com/text/vocabulary.h"

#include <algorithm>
#include <string_view>

namespace {

using ColumnText = char[kTextSize];

bool isUnconfigured(unsigned char slotNo) {
    const auto listed = std::span(unconfiguredPdList).first(std::min(unconfiguredPds, kMaxSlots));
    return std::find(listed.begin(), listed.end(), slotNo) != listed.end();
}

const char* levelColumn(std::string_view ldColumn, std::string_view group, Controller ctrl, unsigned char slotNo) {
    static constexpr std::string_view kSpares[] = {"GHS", "DHS", "* GHS", "* DHS"};
    if (group == kNone || std::find(std::begin(kSpares), std::end(kSpares), ldColumn) != std::end(kSpares))
        return kNone;
    if (group.starts_with("scRG"))
        return "RAID0";
    return raidLevelText(GetRaidLvlFromPD(ctrl.contNo, slotNo, ctrl.conts), ctrl.contNo);
}

void printRow(const char* pd, const char* ld, const char* group, const char* level, const char* state, const char* type,
              const char* capacity) {
    CliLogging(kPrint, kLdSource, __LINE__, "%-6s %-17s %-6s %-10s %-18s %-4s %-12s", pd, ld, group, level, state, type,
               capacity);
}

void printDrive(const char* name, Controller ctrl, unsigned char slotNo) {
    const _MR_PD_INFO& pd = ctrl.pd(slotNo);
    ColumnText assign;
    mkLDAssignStr(ctrl.contNo, ctrl.conts, slotNo, assign);
    char ld[kTextSize + 2];
    wsprintf(ld, "%s%s", isUnconfigured(slotNo) ? "* " : "", assign);
    cutLdColumn(ld);
    ColumnText group;
    mkRaidGroupStr(ctrl.contNo, ctrl.conts, slotNo, group);
    ColumnText state;
    mkPDStateStr(pd.fwState, state);
    ColumnText type;
    mkMediaTypeStr(&pd, type);
    printRow(name, ld, group, levelColumn(ld, group, ctrl, slotNo), state, type, gbText(pd.coercedSize).c_str());
}

} // namespace

void SetSelectHDDList(const _SL_CREATE_LD_INFO_T* /*plan*/, _AFCONT* conts, unsigned char contNo, int refresh) {
    if (refresh == 1 && UpdateDriveInfo(conts, static_cast<int>(conts->count)) != 1)
        return;
    const Controller ctrl{contNo, conts};
    forEachSlot({kLdSource, __func__}, ctrl, [&](unsigned char slotNo, const char* name, bool present) {
        if (slotNo == 0)
            CliLogging(kPrint, kLdSource, __LINE__,
                       "### Physical Drive(PD) ###\n"
                       "PD No. LD No.            RG No. RAID Level State              Type Capacity[GB]\n"
                       "------ ----------------- ------ ---------- ------------------ ---- ------------");
        if (present)
            printDrive(name, ctrl, slotNo);
        else
            printRow(name, kNone, kNone, kNone, kNone, kNone, kNone);
    });
}
