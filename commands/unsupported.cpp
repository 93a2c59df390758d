// Commands that have a row but no behaviour yet.
#include "commands/handlers.h"

#include "log/raidctl.h"
#include "log/zebcli_log.h"
#include "main/zebcli_cmd_com/base/source.h"

namespace {

int refuseCommand(const char* source, const char* handler, int line = __builtin_LINE()) {
    dumpLog(source, line, handler);
    CliLogging(kPrintAndLog, source, line, "Error - This command is not supported at the current configuration.");
    return 1;
}

} // namespace

int CliCmdExecCfgLDEasyMakeAdd(int, char**, _AFCONT*, int) {
    return refuseCommand(kLdSource, __func__);
}

int CliCmdExecCfgLDCustomMakeAdd(int, char**, _AFCONT*, int) {
    return refuseCommand(kLdSource, __func__);
}
