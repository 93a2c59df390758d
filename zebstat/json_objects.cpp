// Drives, groups, LDs, enclosures and the cache backup unit in the JSON document.
#include "zebstat/json_parts.h"

namespace zebstat {

using namespace facts;

Json operationList(const std::vector<Operation>& operations) {
    Json list = Json::array();
    for (const Operation& operation : operations)
        list.push_back({{"type", operation.type},
                        {"percent", operation.percent()},
                        {"elapsed_seconds", operation.elapsedSeconds},
                        {"remaining_seconds", orNull(operation.remainingSeconds())}});
    return list;
}

Json cacheBackupOf(const CacheBackup& unit) {
    Json object = Json::object();
    putError(object, unit.error);
    putWord(object, "type", unit.type);
    object["serial"] = orNull(unit.serial);
    object["full_capacity_joules"] = orNull(unit.fullCapacityJoules);
    object["remaining_capacity_joules"] = orNull(unit.remainingCapacityJoules);
    object["temperature_celsius"] = orNull(unit.temperatureCelsius);
    object["voltage_volts"] = orNull(unit.voltageVolts);
    object["current_amperes"] = orNull(unit.currentAmperes);
    object["status"] = orNull(unit.status);
    if (unit.statusCode)
        object["status_code"] = *unit.statusCode;
    putWord(object, "auto_learn", unit.autoLearn);
    object["learn_period_seconds"] = orNull(unit.learnPeriodSeconds);
    object["next_learn"] = orNull(unit.nextLearn);
    return object;
}

Json enclosureOf(const Enclosure& enclosure) {
    Json object{{"device_id", enclosure.deviceId}};
    putError(object, enclosure.error);
    object["index"] = enclosure.index;
    putWord(object, "type", enclosure.type);
    object["vendor"] = orNull(enclosure.vendor);
    object["product"] = orNull(enclosure.product);
    object["revision"] = orNull(enclosure.revision);
    object["logical_id"] = orNull(enclosure.logicalId);
    putWord(object, "location", enclosure.location);
    object["connector"] = orNull(enclosure.connector);
    object["slots"] = enclosure.slots;
    object["sensors"] = listOrNull(enclosure.sensors, [](const Sensor& sensor) {
        Json item{{"type", sensor.type}, {"index", sensor.index}};
        putWord(item, "status", sensor.status);
        if (sensor.type == kSensorTemperature)
            item["celsius"] = orNull(sensor.celsius);
        else if (sensor.type == kSensorFan)
            item["rpm"] = orNull(sensor.rpm);
        else if (sensor.type == kSensorVoltage)
            item["volts"] = orNull(sensor.volts);
        return item;
    });
    return object;
}

Json physicalDriveOf(const PhysicalDrive& drive) {
    const auto& info = drive.info;
    using Info = PhysicalDriveInfo;
    const auto value = [&](auto Info::*member) { return info ? Json(*info.*member) : Json(nullptr); };
    const auto maybe = [&](auto Info::*member) { return info ? orNull(*info.*member) : Json(nullptr); };
    const auto word = [&](Word Info::*member) { return info ? std::optional(*info.*member) : std::nullopt; };
    Json object{{"device_id", drive.deviceId}, {"enclosure_id", orNull(drive.enclosureId)}, {"slot", drive.slot}};
    putError(object, drive.error);
    putWord(object, "state", word(&Info::state));
    putWord(object, "media", word(&Info::media));
    putWord(object, "interface", word(&Info::interface));
    object["vendor"] = maybe(&Info::vendor);
    object["product"] = maybe(&Info::product);
    object["revision"] = maybe(&Info::revision);
    object["usable_bytes"] = maybe(&Info::usableBytes);
    object["raw_bytes"] = maybe(&Info::rawBytes);
    object["media_errors"] = value(&Info::mediaErrors);
    object["other_errors"] = value(&Info::otherErrors);
    object["predictive_failures"] = value(&Info::predictiveFailures);
    object["temperature_celsius"] = maybe(&Info::temperatureCelsius);
    putWord(object, "power", word(&Info::power));
    object["device_speed_gbps"] = maybe(&Info::deviceSpeedGbps);
    object["link_speed_gbps"] = maybe(&Info::linkSpeedGbps);
    object["sas_addresses"] = value(&Info::sasAddresses);
    object["role"] = value(&Info::role);
    object["foreign"] = value(&Info::foreign);
    object["raid_group"] = maybe(&Info::raidGroup);
    object["logical_drives"] = maybe(&Info::logicalDrives);
    object["operations"] = info ? operationList(info->operations) : Json(nullptr);
    return object;
}

Json raidGroupOf(const RaidGroup& group) {
    Json object{{"name", group.name}, {"cachecade", group.cachecade}};
    putWord(object, "level", group.level);
    object["arrays"] = group.arrays;
    Json& drives = object["physical_drives"] = Json::array();
    for (const auto& deviceId : group.physicalDrives)
        drives.push_back(orNull(deviceId));
    object["usable_bytes"] = orNull(group.usableBytes);
    object["free_bytes"] = orNull(group.freeBytes);
    object["free_segments"] = listOrNull(group.freeSegments, [](const FreeSegment& segment) -> Json {
        return {{"bytes", orNull(segment.bytes)}, {"bytes_per_drive", orNull(segment.bytesPerDrive)}};
    });
    object["logical_drives"] = group.logicalDrives;
    object["spares"] = group.spares;
    return object;
}

Json logicalDriveOf(const LogicalDrive& ld) {
    const auto& info = ld.info;
    using Info = LogicalDriveInfo;
    const auto value = [&](auto Info::*member) { return info ? Json(*info.*member) : Json(nullptr); };
    const auto maybe = [&](auto Info::*member) { return info ? orNull(*info.*member) : Json(nullptr); };
    const auto word = [&](Word Info::*member) { return info ? std::optional(*info.*member) : std::nullopt; };
    Json object{{"number", ld.number}};
    putError(object, ld.error);
    object["name"] = maybe(&Info::name);
    object["raid_group"] = maybe(&Info::raidGroup);
    putWord(object, "level", word(&Info::level));
    object["size_bytes"] = maybe(&Info::sizeBytes);
    putWord(object, "state", word(&Info::state));
    object["stripe_bytes"] = maybe(&Info::stripeBytes);
    object["span_depth"] = value(&Info::spanDepth);
    object["drives_per_span"] = value(&Info::drivesPerSpan);
    putWord(object, "access", word(&Info::access));
    putWord(object, "disk_cache", word(&Info::diskCache));
    putWord(object, "read_policy", word(&Info::readPolicy));
    putWord(object, "io_policy", word(&Info::ioPolicy));
    object["write_policy"] = nullptr;
    if (info) {
        Json& writePolicy = object["write_policy"];
        putWord(writePolicy, "default", info->defaultWritePolicy);
        putWord(writePolicy, "current", info->currentWritePolicy);
    }
    object["os_device"] = maybe(&Info::osDevice);
    object["os_installed"] = maybe(&Info::osInstalled);
    object["cachecade"] = value(&Info::cachecade);
    object["snapshot"] = nullptr;
    if (info)
        object["snapshot"] = {{"source", info->snapshotSource}, {"repository", info->snapshotRepository}};
    putWord(object, "initialization", word(&Info::initialization));
    object["consistent"] = value(&Info::consistent);
    object["operations"] = info ? operationList(info->operations) : Json(nullptr);
    return object;
}

} // namespace zebstat
