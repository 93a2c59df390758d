// Operations on drives: states, rebuild, locate, hot spares.
#include "simulator/consequences.h"
#include "simulator/operations.h"

#include <algorithm>

namespace zebsim {

namespace {

/// The drive that the request names, once its sequence number is the drive's; otherwise the status that refuses it.
std::uint32_t checkDrive(Call& call, Drive*& drive) {
    drive = namedDrive(call);
    if (drive == nullptr)
        return kDeviceNotFound;
    return drive->seq == call.request.ref.pdRef.seqNo ? kSuccess : kInvalidSequence;
}

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

std::uint32_t setLocate(Call& call, bool on) {
    Drive* drive = namedDrive(call);
    if (drive == nullptr)
        return kDeviceNotFound;
    call.changed = drive->locate != on;
    drive->locate = on;
    return kSuccess;
}

/// What holds for every new spare.
std::uint32_t checkNewSpare(Call& call, Drive*& drive) {
    const std::uint32_t status = checkDrive(call, drive);
    if (status != kSuccess)
        return status;
    if (drive->state != kPdUnconfiguredGood || drive->foreign)
        return kWrongState;
    return call.ctrl.spares.size() >= call.ctrl.maxSpares ? kTooManySpares : kSuccess;
}

std::uint32_t addSpare(Call& call, Drive& drive, std::vector<std::uint16_t> arrays) {
    call.ctrl.spares.push_back({drive.deviceId, std::move(arrays), true, false});
    changeDriveState(call.ctrl, drive, kPdHotSpare);
    startSpares(call.ctrl);
    call.changed = true;
    return kSuccess;
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

std::uint32_t makeDriveOnline(Call& call) {
    Drive* drive = nullptr;
    const std::uint32_t status = checkDrive(call, drive);
    if (status != kSuccess)
        return status;
    if (!isOut(*drive) || arrayOfDrive(call.ctrl, drive->deviceId) == nullptr)
        return kWrongState;
    changeDriveState(call.ctrl, *drive, kPdOnline);
    call.changed = true;
    return kSuccess;
}

std::uint32_t makeDriveOffline(Call& call) {
    Drive* drive = nullptr;
    const std::uint32_t status = checkDrive(call, drive);
    if (status != kSuccess)
        return status;
    const bool working = drive->state == kPdOnline || drive->state == kPdRebuild;
    if (!working || arrayOfDrive(call.ctrl, drive->deviceId) == nullptr)
        return kWrongState;
    endCopyback(call.ctrl, *drive);
    changeDriveState(call.ctrl, *drive, kPdOffline);
    startSpares(call.ctrl);
    call.changed = true;
    return kSuccess;
}

std::uint32_t makeDriveUnconfiguredGood(Call& call) {
    Drive* drive = nullptr;
    const std::uint32_t status = checkDrive(call, drive);
    if (status != kSuccess)
        return status;
    const bool lonely = arrayOfDrive(call.ctrl, drive->deviceId) == nullptr;
    if (!lonely || (drive->state != kPdUnconfiguredBad && !isOut(*drive)))
        return kWrongState;
    changeDriveState(call.ctrl, *drive, kPdUnconfiguredGood);
    call.changed = true;
    return kSuccess;
}

std::uint32_t startRebuild(Call& call) {
    Drive* drive = nullptr;
    std::uint32_t status = checkDrive(call, drive);
    if (status != kSuccess)
        return status;
    if (drive->state == kPdRebuild)
        return kAlreadyRunning;
    const Array* array = arrayOfDrive(call.ctrl, drive->deviceId);
    if (!isOut(*drive) || array == nullptr)
        return kWrongState;
    status = checkRebuild(call.ctrl, *array);
    if (status != kSuccess)
        return status;
    changeDriveState(call.ctrl, *drive, kPdRebuild);
    drive->rebuild = Progress{};
    call.changed = true;
    return kSuccess;
}

std::uint32_t cancelRebuild(Call& call) {
    Drive* drive = nullptr;
    const std::uint32_t status = checkDrive(call, drive);
    if (status != kSuccess)
        return status;
    if (drive->state != kPdRebuild)
        return kWrongState;
    changeDriveState(call.ctrl, *drive, kPdOffline);
    call.changed = true;
    return kSuccess;
}

std::uint32_t startLocate(Call& call) {
    return setLocate(call, true);
}
std::uint32_t stopLocate(Call& call) {
    return setLocate(call, false);
}

std::uint32_t makeGlobalSpare(Call& call) {
    Drive* drive = nullptr;
    const std::uint32_t status = checkNewSpare(call, drive);
    return status == kSuccess ? addSpare(call, *drive, {}) : status;
}

std::uint32_t makeDedicatedSpare(Call& call) {
    Drive* drive = nullptr;
    std::uint32_t status = checkNewSpare(call, drive);
    if (status != kSuccess)
        return status;
    const auto wanted = received<_SL_DEDICATED_SPARE_T>(call);
    constexpr unsigned kMostArrays = 16;
    if (wanted.arrayCount == 0 || wanted.arrayCount > kMostArrays)
        return kInvalidParameter;
    std::vector<std::uint16_t> arrays;
    for (unsigned i = 0; i < wanted.arrayCount; ++i) {
        const std::uint16_t ref = wanted.arrayRef[i];
        status = checkService(call.ctrl, *drive, ref);
        if (status != kSuccess)
            return status;
        if (std::find(arrays.begin(), arrays.end(), ref) == arrays.end())
            arrays.push_back(ref);
    }
    return addSpare(call, *drive, std::move(arrays));
}

std::uint32_t removeSpare(Call& call) {
    Drive* drive = nullptr;
    const std::uint32_t status = checkDrive(call, drive);
    if (status != kSuccess)
        return status;
    if (drive->state != kPdHotSpare)
        return kWrongState;
    std::erase_if(call.ctrl.spares, [&](const Spare& spare) { return spare.deviceId == drive->deviceId; });
    changeDriveState(call.ctrl, *drive, kPdUnconfiguredGood);
    call.changed = true;
    return kSuccess;
}

} // namespace zebsim
