#include "main/command_table.h"

#include "commands/handlers.h"
#include "main/zebcli_cmd_com/base/source.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace {

// The targets as the usage shows them.
#define ZEB_CTRL "{-aN|-a0,1,2|-aAll}"
#define ZEB_LD "{-Lx|-L0,1,2|-Lall}"
#define ZEB_PD "-pd[{E0}:S0,{E1}:S1,...]"

// Help and version ask for a snapshot too: they need a working library and one to four controllers before they print.
constexpr auto strcFuncTbl = std::to_array<CommandRow>({
    {.word = "lde",
     .handler = CliCmdExecCfgLDEasyMakeAdd,
     .needsSnapshot = 1,
     .source = kLdSource,
     .usagePlace = 1,
     .usage = "zebcli -lde"},
    {.word = "ldc",
     .handler = CliCmdExecCfgLDCustomMakeAdd,
     .needsSnapshot = 1,
     .source = kLdSource,
     .usagePlace = 2,
     .usage =
         "zebcli -ldc -r0|-r1|-r5|-r6[{E0}:S0,{E1}:S1,...]|-r10 | -array0[{E0}:S0,{E1}:S1,...] "
         "-array1[{E0}:S0,{E1}:S1,...] [-arrayx[0:0,1:1,...N:N]] | -cachecade[{E0}:S0,{E1}:S1,...] {-wt|-wb|-wbcb} "
         "{-nora|-ra} {-direct|-cached} {-szxxx [-szyyy ...]} " ZEB_CTRL},
    {.word = "lddel",
     .handler = CliCmdExecCfgLDDel,
     .needsSnapshot = 1,
     .source = kLdSource,
     .usagePlace = 3,
     .usage = "zebcli -lddel"},
    {.word = "pdhsp",
     .handler = CliCmdExecPDHSP,
     .needsSnapshot = 1,
     .source = kPdSource,
     .options = &kHotSpareOptions,
     .usagePlace = 4,
     .usage = "zebcli -pdhsp -ghs|-dhs " ZEB_PD " " ZEB_CTRL "\n"
              "zebcli -pdhsp -rmv {-nochk} " ZEB_PD " " ZEB_CTRL},
    {.word = "ctrlinfo",
     .handler = CliCmdExecAdpInfo,
     .needsSnapshot = 1,
     .source = kCtrlSource,
     .options = &kCtrlInfoOptions,
     .usagePlace = 5,
     .usage = "zebcli -ctrlinfo " ZEB_CTRL},
    {.word = "ldpdinfo",
     .handler = CliCmdExecLDInfo,
     .needsSnapshot = 1,
     .source = kLdSource,
     .options = &kLdInfoOptions,
     .usagePlace = 6,
     .usage = "zebcli -ldpdinfo " ZEB_LD " " ZEB_CTRL},
    {.word = "pdinfo",
     .handler = CliCmdExecPDInfo,
     .needsSnapshot = 1,
     .source = kPdSource,
     .options = &kPdInfoOptions,
     .usagePlace = 7,
     .usage = "zebcli -pdinfo {" ZEB_PD "} " ZEB_CTRL},
    {.word = "cbinfo",
     .handler = CliCmdExecCacheBkupInfo,
     .needsSnapshot = 1,
     .source = kCtrlSource,
     .options = &kCacheBackupOptions,
     .usagePlace = 8,
     .usage = "zebcli -cbinfo " ZEB_CTRL},
    {.word = "cblearn",
     .handler = CliCmdExecCacheBkup,
     .needsSnapshot = 1,
     .source = kCtrlSource,
     .options = &kCacheBackupOptions,
     .usagePlace = 9,
     .usage = "zebcli -cblearn " ZEB_CTRL},
    {.word = "enclinfo",
     .handler = CliCmdExecEnclInfo,
     .needsSnapshot = 1,
     .source = kPdSource,
     .options = &kEnclInfoOptions,
     .usagePlace = 10,
     .usage = "zebcli -enclinfo " ZEB_CTRL},
    {.word = "v",
     .handler = CliCmdExecVersion,
     .needsSnapshot = 1,
     .source = kCtrlSource,
     .usagePlace = 11,
     .usage = "zebcli -v"},
    {.word = "h", .handler = CliCmdExecHelp, .needsSnapshot = 1, .source = kCtrlSource},
    {.word = "help", .handler = CliCmdExecHelp, .needsSnapshot = 1, .source = kCtrlSource},
    {.word = "?", .handler = CliCmdExecHelp, .needsSnapshot = 1, .source = kCtrlSource},
    {.word = "ldsetprop",
     .handler = CliCmdExecLDSetProp,
     .needsSnapshot = 1,
     .source = kLdSource,
     .options = &kLdSetPropOptions,
     .usagePlace = 12,
     .usage = "zebcli -ldsetprop {-name NameString} {-nora|-ra} {-wt|-wb|-wbcb} {-direct|-cached} {-rw|-ro|-blocked} "
              "{-endskcache|-disdskcache|-unchanged} " ZEB_LD " " ZEB_CTRL},
    {.word = "ctrlautorbld",
     .handler = CliCmdExecAdpRbldMode,
     .needsSnapshot = 1,
     .source = kCtrlSource,
     .options = &kCtrlAutoRebuildOptions,
     .usagePlace = 13,
     .usage = "zebcli -ctrlautorbld -enbl|-dsbl " ZEB_CTRL},
    {.word = "ctrlsetprop",
     .handler = CliCmdExecAdpSetProp,
     .needsSnapshot = 1,
     .source = kCtrlSource,
     .options = &kCtrlSetPropOptions,
     .usagePlace = 14,
     .usage = "zebcli -ctrlsetprop {-trh|-trm|-trl} {-hddcpybkenbl|-hddcpybkdsbl} {-ssdcpybkenbl|-ssdcpybkdsbl} "
              "{-pdfailenbl|-pdfaildsbl} " ZEB_CTRL},
    {.word = "ctrlpr",
     .handler = CliCmdExecAdpPR,
     .needsSnapshot = 1,
     .source = kCtrlSource,
     .options = &kPatrolReadOptions,
     .usagePlace = 15,
     .usage = "zebcli -ctrlpr {-dsbl|-enblauto|-enblman} {-hour|-day|-week|-month} {-setstarttime mmddyyyyhh} "
              "{-start|-stop} " ZEB_CTRL},
    {.word = "ldinit",
     .handler = CliCmdExecLDINIT,
     .needsSnapshot = 1,
     .source = kLdSource,
     .options = &kLdBackgroundOptions,
     .usagePlace = 16,
     .usage = "zebcli -ldinit -start|-stop " ZEB_LD " " ZEB_CTRL},
    {.word = "pdrbld",
     .handler = CliCmdExecPDRbld,
     .needsSnapshot = 1,
     .source = kPdSource,
     .options = &kPdRebuildOptions,
     .usagePlace = 18,
     .usage = "zebcli -pdrbld -start " ZEB_PD " " ZEB_CTRL},
    {.word = "ldcc",
     .handler = CliCmdExecLDCC,
     .needsSnapshot = 1,
     .source = kLdSource,
     .options = &kLdBackgroundOptions,
     .usagePlace = 17,
     .usage = "zebcli -ldcc -start|-stop " ZEB_LD " " ZEB_CTRL},
    {.word = "ldpdprog",
     .handler = CliCmdExecLDPDProg,
     .needsSnapshot = 1,
     .source = kLdSource,
     .usagePlace = 19,
     .usage = "zebcli -ldpdprog"},
    {.word = "tstevt",
     .handler = CliCmdExecTSTEVT,
     .needsSnapshot = 1,
     .source = kCtrlSource,
     .options = &kTestEventOptions,
     .usagePlace = 20,
     .usage = "zebcli -tstevt -inf|-wrn|-err"},
    {.word = "pdlocate",
     .handler = CliCmdExecPDLocate,
     .needsSnapshot = 1,
     .source = kPdSource,
     .options = &kPdLocateOptions,
     .usagePlace = 21,
     .usage = "zebcli -pdlocate -start|-stop " ZEB_PD " " ZEB_CTRL},
    {.word = "pdonline",
     .handler = CliCmdExecPDOnline,
     .needsSnapshot = 1,
     .source = kPdSource,
     .options = &kPdStateOptions,
     .usagePlace = 23,
     .usage = "zebcli -pdonline " ZEB_PD " " ZEB_CTRL},
    {.word = "pdoffline",
     .handler = CliCmdExecPDOffline,
     .needsSnapshot = 1,
     .source = kPdSource,
     .options = &kPdStateOptions,
     .usagePlace = 22,
     .usage = "zebcli -pdoffline " ZEB_PD " " ZEB_CTRL},
    {.word = "pdmakegood",
     .handler = CliCmdExecPDMakeGood,
     .needsSnapshot = 1,
     .source = kPdSource,
     .options = &kPdStateOptions,
     .usagePlace = 24,
     .usage = "zebcli -pdmakegood " ZEB_PD " " ZEB_CTRL},
    {.word = "log",
     .handler = CliCmdExecLog,
     .needsSnapshot = 0,
     .source = kCtrlSource,
     .usagePlace = 25,
     .usage = "zebcli -log"},
    {.word = "sse", .handler = CliCmdExecSSEnableEasy, .needsSnapshot = 1, .source = kLdSource},
    {.word = "snapshot", .handler = CliCmdExecSnapshot, .needsSnapshot = 1, .source = kLdSource},
});

#undef ZEB_CTRL
#undef ZEB_LD
#undef ZEB_PD

static_assert(strcFuncTbl.size() == 30);

} // namespace

std::span<const CommandRow> commandRows() {
    return strcFuncTbl;
}

const CommandRow* findCommand(const char* word) {
    const std::string_view wanted(word);
    const auto* row =
        std::find_if(strcFuncTbl.begin(), strcFuncTbl.end(), [&](const CommandRow& r) { return wanted == r.word; });
    return row != strcFuncTbl.end() ? row : nullptr;
}
