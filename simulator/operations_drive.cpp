// Operations on drives: states, rebuild, locate, hot spares.
#include "simulator/consequences.h"
#include "simulator/operations.h"

#include <algorithm>

namespace zebsim {

namespace {

bool isOut(const Drive& drive) {
    return drive.state == kPdOffline || drive.state == kPdFailed;
}

/// Whether the LDs on the array admit a rebuild now.
std::uint32_t checkRebuild(const Controller& ctrl, const Array& array) {
    const auto lds = ldsOfArray(ctrl, array.ref);
    if (lds.empty())
        return kWrongState;
    for (const LogicalDrive* ld : lds) {
        if (!isRedundant(ld->level))
            return kWrongLevel;
        if (ld->init)
            return kInitInProgress;
        if (ld->reconstruction)
            return kReconstructionInProgress;
        if (ld->state == kLdOffline)
            return kLdNotOptimal;
    }
    return kSuccess;
}

std::uint32_t setLocate(Call& call, Drive& drive, bool on) {
    call.changed = drive.locate != on;
    drive.locate = on;
    return kSuccess;
}

/// What holds for every new spare.
std::uint32_t checkNewSpare(const Call& call, const Drive& drive) {
    if (drive.state != kPdUnconfiguredGood || drive.foreign)
        return kWrongState;
    return call.ctrl.spares.size() >= call.ctrl.maxSpares ? kTooManySpares : kSuccess;
}

std::uint32_t addSpare(Call& call, Drive& drive, std::vector<std::uint16_t> arrays) {
    call.ctrl.spares.push_back({drive.deviceId, std::move(arrays), true, false});
    changeDriveState(call.ctrl, drive, kPdHotSpare);
    startSpares(call.ctrl);
    return changed(call);
}

/// Whether the drive may serve the array.
std::uint32_t checkService(const Controller& ctrl, const Drive& drive, std::uint16_t arrayRef) {
    const Array* array = findArray(ctrl, arrayRef);
    if (array == nullptr)
        return kInvalidArray;
    for (const LogicalDrive* ld : ldsOfArray(ctrl, arrayRef)) {
        if (!isRedundant(ld->level))
            return kWrongLevel;
    }
    if (drive.blocks < array->blocks)
        return kDriveTooSmall;
    return fitsArray(ctrl, drive, *array) ? kSuccess : kMixedInterface;
}

} // namespace

std::uint32_t makeDriveOnline(Call& call, Drive& drive) {
    if (!isOut(drive) || arrayOfDrive(call.ctrl, drive.deviceId) == nullptr)
        return kWrongState;
    changeDriveState(call.ctrl, drive, kPdOnline);
    return changed(call);
}

std::uint32_t makeDriveOffline(Call& call, Drive& drive) {
    const bool working = drive.state == kPdOnline || drive.state == kPdRebuild;
    if (!working || arrayOfDrive(call.ctrl, drive.deviceId) == nullptr)
        return kWrongState;
    endCopyback(call.ctrl, drive);
    changeDriveState(call.ctrl, drive, kPdOffline);
    startSpares(call.ctrl);
    return changed(call);
}

std::uint32_t makeDriveUnconfiguredGood(Call& call, Drive& drive) {
    const bool lonely = arrayOfDrive(call.ctrl, drive.deviceId) == nullptr;
    if (!lonely || (drive.state != kPdUnconfiguredBad && !isOut(drive)))
        return kWrongState;
    changeDriveState(call.ctrl, drive, kPdUnconfiguredGood);
    return changed(call);
}

std::uint32_t startRebuild(Call& call, Drive& drive) {
    if (drive.state == kPdRebuild)
        return kAlreadyRunning;
    const Array* array = arrayOfDrive(call.ctrl, drive.deviceId);
    if (!isOut(drive) || array == nullptr)
        return kWrongState;
    const std::uint32_t status = checkRebuild(call.ctrl, *array);
    if (status != kSuccess)
        return status;
    changeDriveState(call.ctrl, drive, kPdRebuild);
    drive.rebuild = Progress{};
    return changed(call);
}

std::uint32_t cancelRebuild(Call& call, Drive& drive) {
    if (drive.state != kPdRebuild)
        return kWrongState;
    changeDriveState(call.ctrl, drive, kPdOffline);
    return changed(call);
}

std::uint32_t startLocate(Call& call, Drive& drive) {
    return setLocate(call, drive, true);
}
std::uint32_t stopLocate(Call& call, Drive& drive) {
    return setLocate(call, drive, false);
}

std::uint32_t makeGlobalSpare(Call& call, Drive& drive) {
    const std::uint32_t status = checkNewSpare(call, drive);
    return status == kSuccess ? addSpare(call, drive, {}) : status;
}

std::uint32_t makeDedicatedSpare(Call& call, Drive& drive) {
    std::uint32_t status = checkNewSpare(call, drive);
    if (status != kSuccess)
        return status;
    const auto wanted = received<_SL_DEDICATED_SPARE_T>(call);
    constexpr unsigned kMostServed = 16;
    if (wanted.arrayCount == 0 || wanted.arrayCount > kMostServed)
        return kInvalidParameter;
    std::vector<std::uint16_t> arrays;
    for (unsigned i = 0; i < wanted.arrayCount; ++i) {
        const std::uint16_t ref = wanted.arrayRef[i];
        status = checkService(call.ctrl, drive, ref);
        if (status != kSuccess)
            return status;
        if (std::find(arrays.begin(), arrays.end(), ref) == arrays.end())
            arrays.push_back(ref);
    }
    return addSpare(call, drive, std::move(arrays));
}

std::uint32_t removeSpare(Call& call, Drive& drive) {
    if (drive.state != kPdHotSpare)
        return kWrongState;
    std::erase_if(call.ctrl.spares, [&](const Spare& spare) { return spare.deviceId == drive.deviceId; });
    changeDriveState(call.ctrl, drive, kPdUnconfiguredGood);
    return changed(call);
}

} // namespace zebsim
