#include "simulator/consequences.h"

#include <algorithm>

namespace zebsim {

namespace {

bool isLost(const Controller& ctrl, std::uint16_t deviceId) {
    const Drive* drive = findDrive(ctrl, deviceId);
    return drive == nullptr || drive->state == kPdOffline || drive->state == kPdFailed ||
           drive->state == kPdUnconfiguredBad;
}

/// A rebuild helps the array when every LD on it is redundant and still there.
bool canBeRebuilt(const Controller& ctrl, const Array& array) {
    const auto lds = ldsOfArray(ctrl, array.ref);
    return !lds.empty() && std::all_of(lds.begin(), lds.end(), [](const LogicalDrive* ld) {
        return isRedundant(ld->level) && ld->state != kLdOffline;
    });
}

/// The best spare for the array: dedicated before global, then the smallest that fits. Its place in `spares`, or the
/// end.
std::size_t bestSpare(const Controller& ctrl, const Array& array) {
    std::size_t best = ctrl.spares.size();
    for (std::size_t i = 0; i < ctrl.spares.size(); ++i) {
        const Spare& spare = ctrl.spares[i];
        const Drive* drive = findDrive(ctrl, spare.deviceId);
        const bool serves = spare.arrays.empty() ||
                            std::find(spare.arrays.begin(), spare.arrays.end(), array.ref) != spare.arrays.end();
        if (!serves || drive == nullptr || drive->state != kPdHotSpare || !fitsArray(ctrl, *drive, array))
            continue;
        if (best == ctrl.spares.size()) {
            best = i;
            continue;
        }
        const bool dedicated = !spare.arrays.empty();
        const bool bestDedicated = !ctrl.spares[best].arrays.empty();
        if (dedicated != bestDedicated ? dedicated
                                       : drive->blocks < findDrive(ctrl, ctrl.spares[best].deviceId)->blocks)
            best = i;
    }
    return best;
}

void putInPlace(Controller& ctrl, Array& array, std::size_t position, std::size_t spareIndex) {
    Drive* lost = findDrive(ctrl, array.drives[position]);
    Drive* drive = findDrive(ctrl, ctrl.spares[spareIndex].deviceId);
    ctrl.spares.erase(ctrl.spares.begin() + static_cast<std::ptrdiff_t>(spareIndex));
    array.drives[position] = drive->deviceId;
    if (lost != nullptr)
        changeDriveState(ctrl, *lost, kPdUnconfiguredBad);
    changeDriveState(ctrl, *drive, kPdRebuild);
    drive->rebuild = Progress{};
}

/// Takes a freed drive out of service: what worked is good, what did not is bad.
void freeDrive(Controller& ctrl, Drive& drive) {
    const bool bad = drive.state == kPdFailed || drive.state == kPdOffline || drive.state == kPdUnconfiguredBad;
    endCopyback(ctrl, drive);
    changeDriveState(ctrl, drive, bad ? kPdUnconfiguredBad : kPdUnconfiguredGood);
}

void releaseSpare(Controller& ctrl, std::uint16_t deviceId) {
    std::erase_if(ctrl.spares, [=](const Spare& spare) { return spare.deviceId == deviceId; });
}

void releaseSparesOf(Controller& ctrl, std::uint16_t arrayRef) {
    for (std::size_t i = ctrl.spares.size(); i-- > 0;) {
        Spare& spare = ctrl.spares[i];
        if (std::erase(spare.arrays, arrayRef) == 0 || !spare.arrays.empty())
            continue;
        Drive* drive = findDrive(ctrl, spare.deviceId);
        ctrl.spares.erase(ctrl.spares.begin() + static_cast<std::ptrdiff_t>(i));
        if (drive != nullptr)
            changeDriveState(ctrl, *drive, kPdUnconfiguredGood);
    }
}

void dissolveUnusedArrays(Controller& ctrl) {
    for (std::size_t i = ctrl.arrays.size(); i-- > 0;) {
        if (!ldsOfArray(ctrl, ctrl.arrays[i].ref).empty())
            continue;
        const Array array = ctrl.arrays[i];
        ctrl.arrays.erase(ctrl.arrays.begin() + static_cast<std::ptrdiff_t>(i));
        for (const std::uint16_t id : array.drives) {
            if (Drive* drive = findDrive(ctrl, id); drive != nullptr)
                freeDrive(ctrl, *drive);
        }
        releaseSparesOf(ctrl, array.ref);
    }
}

} // namespace

void changeDriveState(Controller& ctrl, Drive& drive, std::uint16_t state) {
    drive.state = state;
    ++drive.seq;
    drive.rebuild.reset();
    if (state != kPdOnline)
        drive.patrolRead.reset();
    const Array* array = arrayOfDrive(ctrl, drive.deviceId);
    if (array != nullptr)
        refreshLds(ctrl, array->ref);
}

void refreshLds(Controller& ctrl, std::uint16_t arrayRef) {
    for (LogicalDrive& ld : ctrl.lds) {
        const std::uint8_t state = derivedLdState(ctrl, ld, ctrl.arrays);
        if (!usesArray(ld, arrayRef) || state == ld.state)
            continue;
        ld.state = state;
        ++ld.seq;
        if (state == kLdOffline) {
            ld.check.reset();
            ld.init.reset();
            ld.backgroundInit.reset();
            ld.reconstruction.reset();
        }
    }
}

void endCopyback(Controller& ctrl, Drive& drive) {
    Drive* partner = findDrive(ctrl, drive.copybackPartner);
    drive.copybackPartner = kNoDevice;
    if (partner != nullptr)
        partner->copybackPartner = kNoDevice;
    for (Drive* side : {&drive, partner}) {
        if (side == nullptr || !side->copyback)
            continue;
        side->copyback.reset();
        changeDriveState(ctrl, *side, findSpare(ctrl, side->deviceId) ? kPdHotSpare : kPdUnconfiguredGood);
    }
}

void startSpares(Controller& ctrl) {
    if (ctrl.properties.disableAutoRebuild != 0)
        return;
    for (Array& array : ctrl.arrays) {
        for (std::size_t position = 0; position < array.drives.size(); ++position) {
            if (!isLost(ctrl, array.drives[position]) || !canBeRebuilt(ctrl, array))
                continue;
            const std::size_t spare = bestSpare(ctrl, array);
            if (spare != ctrl.spares.size())
                putInPlace(ctrl, array, position, spare);
        }
    }
}

const Drive* anyDriveOf(const Controller& ctrl, const Array& array) {
    for (const std::uint16_t id : array.drives) {
        if (const Drive* drive = findDrive(ctrl, id); drive != nullptr)
            return drive;
    }
    return nullptr;
}

bool fitsArray(const Controller& ctrl, const Drive& drive, const Array& array) {
    const Drive* member = anyDriveOf(ctrl, array);
    return drive.blocks >= array.blocks &&
           (member == nullptr || (member->interface == drive.interface && member->media == drive.media));
}

void removeLd(Controller& ctrl, LogicalDrive& ld) {
    ctrl.lds.erase(ctrl.lds.begin() + (&ld - ctrl.lds.data()));
    dissolveUnusedArrays(ctrl);
}

bool imposeState(Controller& ctrl, Drive& drive, std::uint16_t state) {
    const bool member = arrayOfDrive(ctrl, drive.deviceId) != nullptr;
    const bool out = state == kPdOffline || state == kPdFailed;
    const bool fits = member ? state == kPdOnline || state == kPdRebuild
                             : state == kPdUnconfiguredGood || state == kPdUnconfiguredBad ||
                                   (state == kPdHotSpare && !drive.foreign);
    if (!out && !fits)
        return false;
    endCopyback(ctrl, drive);
    releaseSpare(ctrl, drive.deviceId);
    if (state == kPdHotSpare)
        ctrl.spares.push_back({drive.deviceId, {}, true, false});
    changeDriveState(ctrl, drive, state);
    if (state == kPdRebuild)
        drive.rebuild = Progress{};
    startSpares(ctrl);
    return true;
}

void removeDrive(Controller& ctrl, const Drive& drive) {
    const std::uint16_t id = drive.deviceId;
    endCopyback(ctrl, *findDrive(ctrl, id));
    releaseSpare(ctrl, id);
    Array* array = arrayOfDrive(ctrl, id);
    const auto leave = [=](Array& place) { std::replace(place.drives.begin(), place.drives.end(), id, kNoDevice); };
    std::for_each(ctrl.arrays.begin(), ctrl.arrays.end(), leave);
    for (ForeignConfig& foreign : ctrl.foreign)
        std::for_each(foreign.arrays.begin(), foreign.arrays.end(), leave);
    std::erase_if(ctrl.drives, [=](const Drive& other) { return other.deviceId == id; });
    if (array != nullptr)
        refreshLds(ctrl, array->ref);
    startSpares(ctrl);
}

} // namespace zebsim
