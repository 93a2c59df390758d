// The physical drives, by device id.
#include "facts/collect_parts.h"
#include "facts/text.h"
#include "facts/units.h"
#include "main/zebcli_cmd_com/model/lookup.h"
#include "storelib/common/StoreLib/passthrough.h"
#include "storelib/common/StoreLib/physical_drive.h"
#include "storelib/records/views.h"

#include <algorithm>
#include <set>
#include <tuple>

namespace facts {

namespace {

std::optional<double> speedOf(std::uint8_t code) {
    constexpr double kSpeeds[] = {1.5, 3.0, 6.0};
    if (code < 1 || code > std::size(kSpeeds))
        return std::nullopt;
    return kSpeeds[code - 1];
}

/// A copyback has no place of its own in the record: it tells its progress in the rebuild's.
std::vector<Operation> operationsOf(const _MR_PD_PROGRESS& progress) {
    const struct {
        std::uint32_t bit;
        std::string_view type;
        const _MR_PROGRESS& amount;
    } works[] = {{kPdProgRebuild, "rebuild", progress.rebuild},
                 {kPdProgPatrolRead, "patrol_read", progress.patrolRead},
                 {kPdProgClear, "clear", progress.clear},
                 {kPdProgCopyback, "copyback", progress.rebuild}};
    std::vector<Operation> operations;
    for (const auto& work : works)
        if ((progress.active & work.bit) != 0)
            operations.push_back({work.type, work.amount.progress, work.amount.elapsed});
    return operations;
}

std::string_view roleOf(std::uint16_t ddfType) {
    if ((ddfType & kDdfGlobalSpare) != 0)
        return kRoleGlobalSpare;
    if ((ddfType & kDdfSpare) != 0)
        return kRoleDedicatedSpare;
    return (ddfType & kDdfInLd) != 0 ? kRoleMember : kRoleNone;
}

PhysicalDriveInfo infoOf(const _MR_PD_INFO& record) {
    constexpr WordRow kMedia[] = {{0, "hdd"}, {1, "ssd"}};
    constexpr WordRow kInterfaces[] = {{1, "scsi"}, {2, "sas"}, {3, "sata"}, {4, "fc"}};
    constexpr WordRow kPower[] = {{0, "on"}, {1, "off"}, {255, "transition"}};
    PhysicalDriveInfo info;
    info.state = wordFor(physicalDriveStates(), record.fwState);
    info.media = wordFor(kMedia, mediaOf(record));
    info.interface = wordFor(kInterfaces, interfaceOf(record));
    info.vendor = fieldText(record.inquiry.vendor);
    info.product = fieldText(record.inquiry.product);
    info.revision = fieldText(record.inquiry.revision);
    info.usableBytes = bytesOfBlocks(record.coercedSize);
    info.rawBytes = bytesOfBlocks(record.rawSize);
    info.mediaErrors = record.mediaErrorCount;
    info.otherErrors = record.otherErrorCount;
    info.predictiveFailures = record.predFailCount;
    info.power = wordFor(kPower, record.powerState);
    info.deviceSpeedGbps = speedOf(record.deviceSpeed);
    info.linkSpeedGbps = speedOf(record.linkSpeed);
    for (const std::uint64_t address : sasAddressesOf(record))
        info.sasAddresses.push_back(hexText(address, 16));
    info.role = roleOf(record.ddfType);
    info.foreign = (record.ddfType & kDdfForeign) != 0;
    if (record.copybackPartner != kNoDevice)
        info.copybackPartner = record.copybackPartner;
    info.operations = operationsOf(record.progress);
    return info;
}

/// The temperature of a drive, if it has the page. Only for a drive that runs: the question could wake it.
std::optional<unsigned> temperatureOf(Asker& asker, const PhysicalDrive& drive) {
    constexpr unsigned char kNotTold = 255;
    int supported = 0;
    unsigned char celsius = kNotTold;
    if (!asker.tells(drive.object(), "SLIsTempPageSupportedByDevice", SLIsTempPageSupportedByDevice, drive.deviceId,
                     &supported) ||
        supported == 0)
        return std::nullopt;
    if (!asker.tells(drive.object(), "SLGetPDTemperatureByDevice", SLGetPDTemperatureByDevice, drive.deviceId,
                     &celsius) ||
        celsius == kNotTold)
        return std::nullopt;
    return celsius;
}

/// The listed disks, each device id once, by enclosure, slot and device id; those without an enclosure last.
std::vector<PhysicalDrive> listedDrives(const _MR_PD_LIST& list) {
    constexpr std::uint16_t kNoEnclosure = 0xFF; // as well as kNoDevice
    std::vector<PhysicalDrive> drives;
    std::set<std::uint16_t> seen;
    for (const _MR_PD_ADDRESS& entry : entriesOf(list)) {
        if (entry.scsiDevType != kScsiDisk || !seen.insert(entry.deviceId).second)
            continue;
        PhysicalDrive& drive = drives.emplace_back();
        drive.deviceId = entry.deviceId;
        drive.slot = entry.slotNo;
        if (entry.enclDeviceId != kNoEnclosure && entry.enclDeviceId != kNoDevice)
            drive.enclosureId = entry.enclDeviceId;
    }
    const auto place = [](const PhysicalDrive& drive) {
        return std::tuple(!drive.enclosureId, drive.enclosureId, drive.slot, drive.deviceId);
    };
    std::ranges::sort(drives, {}, place);
    return drives;
}

} // namespace

void collectPhysicalDrives(Asker& asker, Controller& controller, Scope scope) {
    _MR_PD_LIST list{};
    if (asker.ask(ControllerObject{}, "SLGetPDList", SLGetPDList, &list))
        return;
    controller.physicalDrives = listedDrives(list);
    for (PhysicalDrive& drive : *controller.physicalDrives) {
        _MR_PD_INFO record{};
        drive.error = asker.ask(drive.object(), "SLGetPDInfoByDevice", SLGetPDInfoByDevice, drive.deviceId, &record);
        if (drive.error)
            continue;
        drive.info = infoOf(record);
        if (scope == Scope::Everything && drive.info->power == "on")
            drive.info->temperatureCelsius = temperatureOf(asker, drive);
    }
}

} // namespace facts
