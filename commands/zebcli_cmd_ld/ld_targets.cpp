#include "commands/zebcli_cmd_ld/ld_targets.h"

#include "log/zebcli_log.h"

#include <algorithm>

SelectedLds selectedLds(const LdSelection& selection, unsigned char contNo) {
    SelectedLds selected{};
    for (const unsigned char ldNo : selection[contNo])
        if (ldNo != kNoTarget)
            selected.ldNo[selected.count++] = ldNo;
    if (selected.count == 0)
        CliLogging(kPrintAndLog, kLdSource, __LINE__, "Error - Controller[%d] The specified %s doesn't exist.", contNo,
                   "Logical Drive");
    return selected;
}

unsigned short driveCountOf(const _MR_LD_CONFIG& ld) {
    return static_cast<unsigned short>(ld.numDrives * std::min<std::size_t>(ld.spanDepth, kMaxSpans));
}

bool isSnapshotLd(const _MR_LD_INFO& ld) {
    return ld.config.snapshotSource != 0 || (ld.snapshotUse & kLdIsRepository) != 0;
}
