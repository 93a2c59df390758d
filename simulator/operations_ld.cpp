// Operations on LDs: properties, initialisation, consistency check, deletion.
#include "simulator/consequences.h"
#include "simulator/operations.h"

#include <algorithm>

namespace zebsim {

namespace {

bool rebuildsOn(const Controller& ctrl, const LogicalDrive& ld) {
    return std::any_of(ctrl.drives.begin(), ctrl.drives.end(), [&](const Drive& drive) {
        const Array* array = arrayOfDrive(ctrl, drive.deviceId);
        return drive.state == kPdRebuild && array != nullptr && usesArray(ld, array->ref);
    });
}

/// What keeps a new check or initialisation from starting; `own` is the work that would be started.
std::uint32_t checkIdle(const Controller& ctrl, const LogicalDrive& ld, const Task& own) {
    if (own || ld.check)
        return kAlreadyRunning;
    if (ld.init)
        return kInitInProgress;
    if (ld.reconstruction)
        return kReconstructionInProgress;
    return rebuildsOn(ctrl, ld) ? kRebuildInProgress : kSuccess;
}

std::uint32_t start(Call& call, LogicalDrive& ld, Task& work) {
    work = Progress{};
    ++ld.seq;
    return changed(call);
}

std::uint32_t cancel(Call& call, LogicalDrive& ld, Task& work) {
    if (!work)
        return kWrongState;
    work.reset();
    ++ld.seq;
    return changed(call);
}

bool isAcceptable(const _MR_LD_PROPERTIES& record) {
    constexpr std::uint8_t kCacheBits = 0x7F;
    constexpr std::uint8_t kUnusedAccess = 1;
    constexpr std::uint8_t kHighestAccess = 3;
    constexpr std::uint8_t kHighestDiskCache = 2;
    return (record.defaultCachePolicy & ~kCacheBits) == 0 && record.accessPolicy != kUnusedAccess &&
           record.accessPolicy <= kHighestAccess && record.diskCachePolicy <= kHighestDiskCache;
}

} // namespace

std::uint32_t setLdProperties(Call& call, LogicalDrive& ld) {
    const auto record = received<_MR_LD_PROPERTIES>(call);
    if (record.ref.targetId != ld.id || !isAcceptable(record))
        return kInvalidParameter;
    ld.name.assign(record.name, strnlen(record.name, sizeof record.name));
    ld.cachePolicy = record.defaultCachePolicy;
    ld.currentCachePolicy = effectiveCachePolicy(call.ctrl, ld.cachePolicy);
    ld.accessPolicy = record.accessPolicy;
    ld.diskCachePolicy = record.diskCachePolicy;
    ld.noBackgroundInit = record.noBgi != 0;
    ld.snapshotFlags = record.snapshotFlags;
    ++ld.seq;
    return changed(call);
}

std::uint32_t deleteLd(Call& call, LogicalDrive& ld) {
    if (ld.init)
        return kInitInProgress;
    if (ld.reconstruction)
        return kReconstructionInProgress;
    if (call.ctrl.pinnedCache)
        return kCachePinned;
    if (call.model.strictDelete && rebuildsOn(call.ctrl, ld))
        return kRebuildInProgress;
    if (call.model.strictDelete && ld.check)
        return kWrongState;
    removeLd(call.ctrl, ld);
    return changed(call);
}

std::uint32_t startCheck(Call& call, LogicalDrive& ld) {
    if (!isRedundant(ld.level))
        return kWrongLevel;
    const std::uint32_t status = checkIdle(call.ctrl, ld, ld.check);
    if (status != kSuccess)
        return status;
    return ld.state == kLdOptimal ? start(call, ld, ld.check) : std::uint32_t{kLdNotOptimal};
}

std::uint32_t startInit(Call& call, LogicalDrive& ld) {
    constexpr std::uint8_t kFull = 1;
    const std::uint32_t status = checkIdle(call.ctrl, ld, ld.init);
    if (status != kSuccess)
        return status;
    if (ld.state == kLdOffline)
        return kLdNotOptimal;
    ld.backgroundInit.reset();
    ld.osInstalled = false;
    if (call.request.param.bytes[0] == kFull)
        return start(call, ld, ld.init);
    // A quick initialisation only clears the ends of the LD; it is done at once.
    ld.initState = 1;
    ++ld.seq;
    return changed(call);
}

std::uint32_t cancelCheck(Call& call, LogicalDrive& ld) {
    return cancel(call, ld, ld.check);
}
std::uint32_t cancelInit(Call& call, LogicalDrive& ld) {
    return cancel(call, ld, ld.init);
}

} // namespace zebsim
