#include "facts/controller.h"

#include <algorithm>

namespace facts {

const PhysicalDrive* Controller::driveOf(std::uint16_t deviceId) const {
    if (!physicalDrives)
        return nullptr;
    const auto found = std::ranges::find(*physicalDrives, deviceId, &PhysicalDrive::deviceId);
    return found != physicalDrives->end() ? &*found : nullptr;
}

const LogicalDrive* Controller::ldOf(std::uint8_t ldNo) const {
    if (!logicalDrives)
        return nullptr;
    const auto found = std::ranges::find(*logicalDrives, ldNo, &LogicalDrive::number);
    return found != logicalDrives->end() ? &*found : nullptr;
}

} // namespace facts
