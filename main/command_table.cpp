#include "main/command_table.h"

#include "commands/handlers.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace {

// Help and version ask for a snapshot too: they need a working library and one to four controllers before they print.
constexpr auto strcFuncTbl = std::to_array<CommandRow>({
    {"lde", CliCmdExecCfgLDEasyMakeAdd, 1},
    {"ldc", CliCmdExecCfgLDCustomMakeAdd, 1},
    {"lddel", CliCmdExecCfgLDDel, 1},
    {"pdhsp", CliCmdExecPDHSP, 1},
    {"ctrlinfo", CliCmdExecAdpInfo, 1},
    {"ldpdinfo", CliCmdExecLDInfo, 1},
    {"pdinfo", CliCmdExecPDInfo, 1},
    {"cbinfo", CliCmdExecCacheBkupInfo, 1},
    {"cblearn", CliCmdExecCacheBkup, 1},
    {"enclinfo", CliCmdExecEnclInfo, 1},
    {"v", CliCmdExecVersion, 1},
    {"h", CliCmdExecHelp, 1},
    {"help", CliCmdExecHelp, 1},
    {"?", CliCmdExecHelp, 1},
    {"ldsetprop", CliCmdExecLDSetProp, 1},
    {"ctrlautorbld", CliCmdExecAdpRbldMode, 1},
    {"ctrlsetprop", CliCmdExecAdpSetProp, 1},
    {"ctrlpr", CliCmdExecAdpPR, 1},
    {"ldinit", CliCmdExecLDINIT, 1},
    {"pdrbld", CliCmdExecPDRbld, 1},
    {"ldcc", CliCmdExecLDCC, 1},
    {"ldpdprog", CliCmdExecLDPDProg, 1},
    {"tstevt", CliCmdExecTSTEVT, 1},
    {"pdlocate", CliCmdExecPDLocate, 1},
    {"pdonline", CliCmdExecPDOnline, 1},
    {"pdoffline", CliCmdExecPDOffline, 1},
    {"pdmakegood", CliCmdExecPDMakeGood, 1},
    {"log", CliCmdExecLog, 0},
    {"sse", CliCmdExecSSEnableEasy, 1},
    {"snapshot", CliCmdExecSnapshot, 1},
});
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
