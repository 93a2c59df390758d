#include "commands/zebcli_cmd_ctrl/setting_results.h"

#include "log/zebcli_log.h"
#include "main/zebcli_cmd_com/base/source.h"

void saySettingsChanged(unsigned char contNo, int line) {
    CliLogging(kPrint, kCtrlSource, line, "Information - Controller[%d] Settings have been changed.", contNo);
}

void saySettingsFailed(const TraceOrigin& origin, const char* text, unsigned char contNo) {
    traceFailure(origin, text, onController(contNo));
    CliLogging(kPrintAndLog, kCtrlSource, origin.line,
               "Error - Failed to change Controller[%d] Settings.\n"
               "Please confirm OS event log whether there is no problem with RAID controller.\n",
               contNo);
}

void sayParameterNotSupported(int line) {
    CliLogging(kPrintAndLog, kCtrlSource, line,
               "Error - The specified parameter is not supported at the current configuration.");
}
