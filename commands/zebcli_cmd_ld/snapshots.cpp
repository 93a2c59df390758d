// Snapshots. The data blocks of their commands are not known, and a wrong guess destroys a copy, so nothing is sent,
// not even to list them.
#include "commands/handlers.h"

#include "log/raidctl.h"
#include "log/zebcli_log.h"
#include "main/zebcli_cmd_com/base/source.h"

namespace {

int refuseCommand(const char* handler, char** argv, int line = __builtin_LINE()) {
    dumpLog(kLdSource, line, handler);
    CliLogging(kPrintAndLog, kLdSource, line, "Error - The command %s is not available in this version.", argv[1]);
    return 1;
}

} // namespace

int CliCmdExecSSEnableEasy(int /*argc*/, char** argv, _AFCONT* /*conts*/, int /*contCount*/) {
    return refuseCommand(__func__, argv);
}

int CliCmdExecSnapshot(int /*argc*/, char** argv, _AFCONT* /*conts*/, int /*contCount*/) {
    return refuseCommand(__func__, argv);
}
