#include "zebstat/work.h"

#include <algorithm>

namespace zebstat {

namespace {

using namespace facts;

std::string nameOf(const PhysicalDrive& drive) {
    const std::string place = drive.enclosureId ? std::to_string(*drive.enclosureId) + ":" : "";
    return "PD" + place + std::to_string(drive.slot);
}

std::string nameOf(const LogicalDrive& ld) {
    const bool isNamed = ld.info && ld.info->name;
    return "LD" + std::to_string(ld.number) + (isNamed ? " '" + *ld.info->name + "'" : "");
}

/// The LDs of the drive's group; of the target of a copyback, which is in none yet, those of its source's.
std::vector<std::uint8_t> ldsOfDrive(const Controller& controller, const PhysicalDriveInfo& info) {
    if (info.logicalDrives && !info.logicalDrives->empty())
        return *info.logicalDrives;
    const PhysicalDrive* source = info.copybackPartner ? controller.driveOf(*info.copybackPartner) : nullptr;
    if (source != nullptr && source->info && source->info->logicalDrives)
        return *source->info->logicalDrives;
    return {};
}

void addWork(const Controller& controller, std::vector<Work>& works) {
    if (controller.logicalDrives)
        for (const LogicalDrive& ld : *controller.logicalDrives)
            if (ld.info)
                for (const Operation& operation : ld.info->operations)
                    works.push_back({{controller.number, true, ld.number}, nameOf(ld), operation, {ld.number}});
    if (controller.physicalDrives)
        for (const PhysicalDrive& drive : *controller.physicalDrives)
            if (drive.info)
                for (const Operation& operation : drive.info->operations)
                    works.push_back({{controller.number, false, drive.deviceId},
                                     nameOf(drive),
                                     operation,
                                     ldsOfDrive(controller, *drive.info)});
}

std::string ailmentOfLd(const Controller& controller, std::uint16_t number) {
    const auto& lds = controller.logicalDrives;
    const auto found = lds ? std::ranges::find(*lds, number, &LogicalDrive::number) : decltype(lds->begin()){};
    if (!lds || found == lds->end() || !found->info)
        return "LD" + std::to_string(number) + " is gone";
    if (found->info->state == "optimal")
        return {};
    std::string state(found->info->state.text);
    std::ranges::replace(state, '_', ' ');
    return nameOf(*found) + " is " + state;
}

std::string ailmentOfDrive(const Controller& controller, std::uint16_t deviceId) {
    const PhysicalDrive* drive = controller.driveOf(deviceId);
    if (drive == nullptr || !drive->info)
        return "the drive with the device id " + std::to_string(deviceId) + " is gone";
    const Word& state = drive->info->state;
    if (state == "failed")
        return nameOf(*drive) + " has failed";
    if (state == "offline" || state == "unconfigured_bad")
        return nameOf(*drive) + " is " + (state == "offline" ? "offline" : "unconfigured bad");
    return {};
}

} // namespace

std::vector<Work> workOf(const Collection& collection) {
    std::vector<Work> works;
    for (const Controller& controller : collection.controllers)
        addWork(controller, works);
    return works;
}

std::string ailmentOf(const Collection& collection, const WorkObject& object) {
    const auto controller = std::ranges::find(collection.controllers, object.controller, &Controller::number);
    if (controller == collection.controllers.end())
        return "controller " + std::to_string(object.controller) + " is gone";
    const std::string ailment =
        object.isLd ? ailmentOfLd(*controller, object.id) : ailmentOfDrive(*controller, object.id);
    return ailment.empty() ? "" : "controller " + std::to_string(object.controller) + ": " + ailment;
}

} // namespace zebstat
