// State and progress of every LD and every PD slot. Printed with plain standard output.
#include "commands/handlers.h"

#include "commands/zebcli_cmd_ld/slot_table.h"
#include "log/raidctl.h"
#include "main/zebcli_cmd_com/base/source.h"
#include "main/zebcli_cmd_com/base/string_shims.h"
#include "main/zebcli_cmd_com/model/lookup.h"
#include "main/zebcli_cmd_com/text/raid_group_words.h"
#include "main/zebcli_cmd_com/text/vocabulary.h"
#include "storelib/dll_mod.h"

#include <cstdio>

namespace {

constexpr unsigned kErrInfoSize = 32;

void printLd(Controller ctrl, unsigned char ldNo) {
    const _MR_LD_INFO& ld = ctrl.ld(ldNo);
    char name[8];
    wsprintf(name, "LD%d", ldNo);
    char state[kTextSize];
    mkLDStateStr(ctrl.contNo, ctrl.conts, &ld.config, state);
    char progress[kTextSize];
    mkLDProgressStr(&ld.progress, progress);
    char errInfo[kErrInfoSize];
    mkLDErrInfoStr(ctrl.contNo, ctrl.conts, ldNo, errInfo);
    std::printf("%-7s %-27s %-28s %-14s\r\n", name, state, progress, errInfo);
}

void printLds(Controller ctrl) {
    bool first = true;
    for (const _MR_LD_LIST_ENTRY& entry : ldEntries(ctrl.cont())) {
        if (entry.targetId >= kMaxLds)
            continue;
        if (first)
            std::printf("Controller : %d\r\n"
                        "\r\nLD No   State                       Progress                     ErrInfo\r\n"
                        "-------------------------------------------------------------------------------\r\n",
                        ctrl.contNo);
        first = false;
        printLd(ctrl, entry.targetId);
    }
}

void printRow(const char* name, const char* ld, const char* state, const char* type, const char* progress) {
    std::printf("%-6s %-17s %-18s %-4s %-28s\r\n", name, ld, state, type, progress);
}

void printPd(const char* name, Controller ctrl, unsigned char slotNo) {
    const _MR_PD_INFO& pd = ctrl.pd(slotNo);
    char ld[kTextSize];
    mkLDAssignStr(ctrl.contNo, ctrl.conts, slotNo, ld);
    cutLdColumn(ld);
    char state[kTextSize];
    mkPDStateStr(pd.fwState, state);
    char type[kTextSize];
    mkMediaTypeStr(&pd, type);
    char progress[kTextSize];
    mkPDProgressStr(&pd.progress, progress);
    printRow(name, ld, state, type, progress);
}

void printPds(Controller ctrl) {
    forEachSlot({kLdSource, "CliCmdExecLDPDProg"}, ctrl, [&](unsigned char slotNo, const char* name, bool present) {
        if (slotNo == 0)
            // The first line ends in "\n" alone, the second in "\r\n".
            std::printf("\r\nPD No  LD No             State              Type Progress\n"
                        "-----------------------------------------------------------------------------\r\n");
        if (present)
            printPd(name, ctrl, slotNo);
        else
            printRow(name, kNone, kNone, kNone, kNone);
    });
}

} // namespace

int CliCmdExecLDPDProg(int /*argc*/, char** /*argv*/, _AFCONT* conts, int contCount) {
    dumpLog(kLdSource, __LINE__, __func__);
    _SL_CTRL_LIST_T list{};
    if (SLGetCtrlList(&list) != kSlSuccess)
        return 1;
    for (int i = 0; i < contCount; ++i) {
        const Controller ctrl{static_cast<unsigned char>(i), conts};
        printLds(ctrl);
        printPds(ctrl);
    }
    return 0;
}
