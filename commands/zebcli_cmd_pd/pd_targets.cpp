#include "commands/zebcli_cmd_pd/pd_targets.h"

#include "log/zebcli_log.h"
#include "main/zebcli_cmd_com/model/lookup.h"

#include <algorithm>

std::span<const unsigned char> listedDrives(const PdList& pds) {
    const std::span<const unsigned char> all(pds);
    return all.first(static_cast<std::size_t>(std::find(all.begin(), all.end(), kNoTarget) - all.begin()));
}

bool allDrivesExist(const Options& options, int contCount, const _AFCONT* conts) {
    for (const unsigned char contNo : selectedControllers(options.ctrls, contCount))
        for (const unsigned char slotNo : listedDrives(options.pds)) {
            if (IsExistPD(contNo, slotNo, conts) != 0)
                continue;
            CliLogging(kPrintAndLog, kPdSource, __LINE__, "Error - Controller[%d] The specified %s %d: doesn't exist.",
                       contNo, "Physical Drive", slotNo);
            return false;
        }
    return true;
}

bool parsePdCommand(const OptionTable& table, bool (*isComplete)(const Options&), int argc, char** argv, int contCount,
                    const _AFCONT* conts, Options& options, int line) {
    if (!parseOptions(table, argc, argv, contCount, options, line))
        return false;
    if (!isComplete(options)) {
        refuseToken(kPdSource, line, argv[argc - 1]);
        return false;
    }
    return selectDefaultTargets(table, contCount, options) && allDrivesExist(options, contCount, conts);
}
