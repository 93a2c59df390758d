#include "commands/zebcli_cmd_ld/deletion_checks.h"

#include "commands/zebcli_cmd_ld/ld_targets.h"
#include "log/zebcli_log.h"
#include "main/zebcli_cmd_com/model/lookup.h"
#include "main/zebcli_cmd_com/text/text_field.h"
#include "storelib/common/StoreLib/controller.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <span>
#include <string_view>
#include <unistd.h>

namespace {

bool isFreeOfSnapshots(Controller ctrl, unsigned char ldNo) {
    if (!isSnapshotLd(ctrl.ld(ldNo)))
        return true;
    CliLogging(kPrintAndLog, kLdSource, __LINE__,
               "Error - Controller[%d] Snapshot Base/Repository LD[s](Logical Drive[s]) %d cannot be deleted.",
               ctrl.contNo, ldNo);
    return false;
}

/// Background initialization does not count: it cannot be stopped, and would forbid to undo a creation for hours.
bool isIdle(Controller ctrl, unsigned char ldNo) {
    const bool reconstructs = (ctrl.ld(ldNo).progress.active & kLdProgRecon) != 0;
    if (CheckLDActive(ctrl.contNo, ldNo, ctrl.conts) == kLdIdle && !reconstructs)
        return true;
    CliLogging(kPrintAndLog, kLdSource, __LINE__,
               "Error - Controller[%d] Cannot delete LD(Logical Drive) %d during background operation.", ctrl.contNo,
               ldNo);
    return false;
}

/// Where nobody can tell, there may be one, but not on an LD that is offline: nothing can be read from it any more, and
/// deleting it is the usual cure.
bool holdsNoOs(Controller ctrl, unsigned char ldNo) {
    _SL_PARTITION_INFO_T partition{};
    if (!succeeded(SLGetLDPartition(ctrl.contNo, ldNo, &partition), kDeletion, "SLGetLDPartition error",
                   onLd(ctrl.contNo, ldNo))) {
        if (ctrl.ld(ldNo).config.state == kLdOffline)
            return true;
        CliLogging(kPrintAndLog, kLdSource, __LINE__,
                   "Error - Controller[%d] Failed to confirm whether LD(Logical Drive) %d has OS.", ctrl.contNo, ldNo);
        return false;
    }
    if (partition.osInstalled == 0)
        return true;
    CliLogging(kPrintAndLog, kLdSource, __LINE__, "Error - Controller[%d] Cannot delete OS LD(Logical Drive) %d.",
               ctrl.contNo, ldNo);
    return false;
}

/// Whether Linux refuses exclusive access to the device, which it does while the device or a part of it is mounted,
/// swap or a member of something larger. Any other failure says nothing.
bool isInUse(const char* device) {
    const int descriptor = open(device, O_RDONLY | O_EXCL | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0)
        return errno == EBUSY;
    close(descriptor);
    return false;
}

/// A name that fills its field may be cut, and then be that of another device.
template <std::size_t N>
bool canBeOpened(const char (&name)[N]) {
    return strnlen(name, N) < N && std::string_view(name).starts_with("/dev/");
}

bool isUnused(Controller ctrl, unsigned char ldNo) {
    OsDriveNames names{};
    succeeded(SLGetOSDriveNames(ctrl.contNo, ldNo, &names), kDeletion, "SLGetOSDriveNames error",
              onLd(ctrl.contNo, ldNo));
    for (const auto& name : std::span(names.name).first(names.count)) {
        if (!canBeOpened(name) || !isInUse(name))
            continue;
        CliLogging(kPrintAndLog, kLdSource, __LINE__, "Error - Controller[%d] LD(Logical Drive) %d is used by OS(%s).",
                   ctrl.contNo, ldNo, fieldText(name).c_str());
        return false;
    }
    return true;
}

} // namespace

bool mayDeleteLd(Controller ctrl, unsigned char ldNo) {
    return isFreeOfSnapshots(ctrl, ldNo) && isIdle(ctrl, ldNo) && holdsNoOs(ctrl, ldNo) && isUnused(ctrl, ldNo);
}
