// Help and version.
#include "commands/handlers.h"

#include "log/raidctl.h"
#include "log/zebcli_log.h"
#include "main/zebcli_cmd_com/base/source.h"
#include "main/zebcli_cmd_com/base/string_shims.h"
#include "main/zebcli_cmd_com/input/options.h"
#include "main/zebcli_cmd_com/model/lookup.h"
#include "main/zebcli_cmd_com/text/text_field.h"
#include "storelib/common/StoreLib/controller.h"
#include "storelib/records/status.h"

namespace {

constexpr char kProductVersion[] = "2.3";
constexpr char kFileVersion[] = "2.2.0.6";
constexpr int kRightsYear = 2026;

// The lines of the usage text; "%s" in the one of ldc is the part about CacheCade.
#define ZEB_CTRL "{-aN|-a0,1,2|-aAll}"
#define ZEB_LD "{-Lx|-L0,1,2|-Lall}"
#define ZEB_PD "-pd[{E0}:S0,{E1}:S1,...]"

constexpr char kUsage[] =
    "zebcli -lde\n"
    "zebcli -ldc -r0|-r1|-r5|-r6[{E0}:S0,{E1}:S1,...]|-r10 | -array0[{E0}:S0,{E1}:S1,...] "
    "-array1[{E0}:S0,{E1}:S1,...] [-arrayx[0:0,1:1,...N:N]]%s {-wt|-wb|-wbcb} {-nora|-ra} {-direct|-cached} "
    "{-szxxx [-szyyy ...]} " ZEB_CTRL "\n"
    "zebcli -lddel\n"
    "zebcli -pdhsp -ghs|-dhs " ZEB_PD " " ZEB_CTRL "\n"
    "zebcli -pdhsp -rmv {-nochk} " ZEB_PD " " ZEB_CTRL "\n"
    "zebcli -ctrlinfo " ZEB_CTRL "\n"
    "zebcli -ldpdinfo " ZEB_LD " " ZEB_CTRL "\n"
    "zebcli -pdinfo {" ZEB_PD "} " ZEB_CTRL "\n"
    "zebcli -cbinfo " ZEB_CTRL "\n"
    "zebcli -cblearn " ZEB_CTRL "\n"
    "zebcli -enclinfo " ZEB_CTRL "\n"
    "zebcli -v\n"
    "zebcli -ldsetprop {-name NameString} {-nora|-ra} {-wt|-wb|-wbcb} {-direct|-cached} {-rw|-ro|-blocked} "
    "{-endskcache|-disdskcache|-unchanged} " ZEB_LD " " ZEB_CTRL "\n"
    "zebcli -ctrlautorbld -enbl|-dsbl " ZEB_CTRL "\n"
    "zebcli -ctrlsetprop {-trh|-trm|-trl} {-hddcpybkenbl|-hddcpybkdsbl} {-ssdcpybkenbl|-ssdcpybkdsbl} "
    "{-pdfailenbl|-pdfaildsbl} " ZEB_CTRL "\n"
    "zebcli -ctrlpr {-dsbl|-enblauto|-enblman} {-hour|-day|-week|-month} {-setstarttime mmddyyyyhh} {-start|-stop} " //
    ZEB_CTRL "\n"
    "zebcli -ldinit -start|-stop " ZEB_LD " " ZEB_CTRL "\n"
    "zebcli -ldcc -start|-stop " ZEB_LD " " ZEB_CTRL "\n"
    "zebcli -pdrbld -start " ZEB_PD " " ZEB_CTRL "\n"
    "zebcli -ldpdprog\n"
    "zebcli -tstevt -inf|-wrn|-err\n"
    "zebcli -pdlocate -start|-stop " ZEB_PD " " ZEB_CTRL "\n"
    "zebcli -pdoffline " ZEB_PD " " ZEB_CTRL "\n"
    "zebcli -pdonline " ZEB_PD " " ZEB_CTRL "\n"
    "zebcli -pdmakegood " ZEB_PD " " ZEB_CTRL "\n"
    "zebcli -log\n"
    "\n"
    "Quorvel RAID Pellucor Command Line Tool Ver %s\n"
    "Copyright (C) %d QUORVEL, Ltd. All rights reserved.";

#undef ZEB_CTRL
#undef ZEB_LD
#undef ZEB_PD

constexpr char kCacheCadePart[] = " | -cachecade[{E0}:S0,{E1}:S1,...]";

/// The first controller with an advanced option decides; FastPath plays no part.
bool offersCacheCade(const _AFCONT* conts, int contCount) {
    for (int contNo = 0; contNo < contCount; ++contNo) {
        const unsigned mask = IsEnablePF(static_cast<unsigned char>(contNo), conts);
        if ((mask & (kOptionCacheCade | kOptionSnapshot)) != 0)
            return (mask & kOptionCacheCade) != 0;
    }
    return false;
}

} // namespace

int CliCmdExecHelp(int argc, char** argv, _AFCONT* conts, int contCount) {
    dumpLog(kCtrlSource, __LINE__, __func__);
    if (refuseArguments(kCtrlSource, argc, argv))
        return 1;
    CliLogging(kPrint, kCtrlSource, __LINE__, kUsage, offersCacheCade(conts, contCount) ? kCacheCadePart : "",
               kProductVersion, kRightsYear);
    return 0;
}

int CliCmdExecVersion(int argc, char** argv, _AFCONT* /*conts*/, int /*contCount*/) {
    dumpLog(kCtrlSource, __LINE__, __func__);
    if (refuseArguments(kCtrlSource, argc, argv))
        return 1;
    char libraryVersion[sizeof(_SL_LIB_VER_T) + 2] = {};
    _SL_LIB_VER_T version{};
    if (SLGetLibraryVersion(&version) == kSlSuccess)
        wsprintf(libraryVersion, "%s.%s", fieldText(version.version).c_str(), fieldText(version.revision).c_str());
    CliLogging(kPrint, kCtrlSource, __LINE__,
               "Quorvel RAID Pellucor Command Line Tool\n"
               "   Product Name     : Quorvel RAID Pellucor\n"
               "   Product Version  : %s\n"
               "   Company Name     : QUORVEL, Ltd.\n"
               "   File Version     : %s\n"
               "   StoreLib Version : %s\n"
               "   Copyright (C) %d QUORVEL, Ltd. All rights reserved.",
               kProductVersion, kFileVersion, libraryVersion, kRightsYear);
    return 0;
}
