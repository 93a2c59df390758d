#include "zebstat/metrics.h"

#include "zebstat/metric_families.h"

#include <algorithm>
#include <set>

namespace zebstat {

namespace {

using namespace facts;

constexpr auto kGauge = MetricType::Gauge;
constexpr auto kCounter = MetricType::Counter;

Labels with(Labels labels, const Labels& more) {
    labels.insert(labels.end(), more.begin(), more.end());
    return labels;
}

class Exporter {
  public:
    std::string write(const Collection& collection, const std::vector<Finding>& findings) {
        aboutRun(collection, findings);
        for (const Controller& controller : collection.controllers) {
            const Labels labels{{"controller", std::to_string(controller.number)}};
            metrics_.family("zeb_controller_readable", kGauge, "1 when the controller's own information could be read.")
                .sample(labels, std::uint64_t{controller.info ? 1U : 0U});
            if (controller.info)
                aboutController(labels, controller, *controller.info);
        }
        return metrics_.text();
    }

  private:
    void aboutRun(const Collection& collection, const std::vector<Finding>& findings) {
        metrics_.family("zeb_info", kGauge, "The program that made these metrics, and the library that it asked.")
            .sample({{"version", ZEB_VERSION}, {"library_version", collection.libraryVersion.value_or("")}},
                    std::uint64_t{1});
        metrics_.family("zeb_complete", kGauge, "1 when every request of this run was answered with success.")
            .sample({}, std::uint64_t{collection.complete() ? 1U : 0U});
        metrics_.family("zeb_collection_duration_seconds", kGauge, "How long the requests of this run took.")
            .sample({}, collection.duration.count());
        metrics_.family("zeb_requests", kGauge, "Requests of this run.").sample({}, std::uint64_t{collection.requests});
        metrics_.family("zeb_request_errors", kGauge, "Requests of this run that failed.")
            .sample({}, std::uint64_t{collection.errors.size()});
        for (const Severity severity : {Severity::Critical, Severity::Warning})
            metrics_.family("zeb_findings", kGauge, "What needs attention, by severity.")
                .sample({{"severity", std::string(severityWord(severity))}},
                        std::uint64_t{countOf(findings, severity)});
    }

    void aboutController(const Labels& labels, const Controller& controller, const ControllerInfo& info) {
        metrics_.family("zeb_controller_info", kGauge, "What the controller is.")
            .sample(with(labels, {{"product", info.product.value_or("")},
                                  {"serial", info.serial.value_or("")},
                                  {"firmware_package", info.firmwarePackage.value_or("")},
                                  {"firmware", info.firmwareVersion.value_or("")},
                                  {"driver", controller.driver.value_or(Driver{}).version.value_or("")}}),
                    std::uint64_t{1});
        const auto memoryErrors = [&](const char* type, unsigned count) {
            metrics_.family("zeb_controller_memory_errors_total", kCounter, "Errors of the controller's memory.")
                .sample(with(labels, {{"type", type}}), std::uint64_t{count});
        };
        memoryErrors("correctable", info.memoryCorrectableErrors);
        memoryErrors("uncorrectable", info.memoryUncorrectableErrors);
        if (controller.cacheBackup)
            aboutCacheBackup(labels, *controller.cacheBackup);
        if (controller.enclosures)
            for (const Enclosure& enclosure : *controller.enclosures)
                aboutEnclosure(labels, enclosure);
        if (controller.physicalDrives)
            aboutPhysicalDrives(labels, *controller.physicalDrives);
        if (controller.hotSpares)
            aboutHotSpares(labels, *controller.hotSpares);
        if (controller.logicalDrives)
            for (const LogicalDrive& ld : *controller.logicalDrives)
                aboutLogicalDrive(labels, ld);
        if (controller.raidGroups)
            for (const RaidGroup& group : *controller.raidGroups)
                metrics_
                    .family("zeb_raid_group_free_bytes", kGauge, "Free space of the RAID group, usable at its level.")
                    .sample(with(labels, {{"raid_group", group.name}}), group.freeBytes);
    }

    void aboutCacheBackup(const Labels& labels, const CacheBackup& unit) {
        metrics_.family("zeb_cache_backup_capacity_joules", kGauge, "Capacity of the cache backup unit by design.")
            .sample(labels, unit.fullCapacityJoules);
        metrics_.family("zeb_cache_backup_remaining_joules", kGauge, "Remaining capacity of the cache backup unit.")
            .sample(labels, unit.remainingCapacityJoules);
        metrics_.family("zeb_cache_backup_temperature_celsius", kGauge, "Temperature of the cache backup unit.")
            .sample(labels, unit.temperatureCelsius);
        if (!unit.status)
            return;
        metrics_.family("zeb_cache_backup_status", kGauge, "Flags of the cache backup unit, any number of them 1.");
        const auto flag = [&](std::string_view word) {
            const bool isSet = std::ranges::count(*unit.status, word) != 0;
            metrics_.sample(with(labels, {{"status", std::string(word)}}), std::uint64_t{isSet ? 1U : 0U});
        };
        for (const WordRow& row : cacheBackupStatuses())
            flag(row.text);
        flag(kUnknownWord);
    }

    void aboutEnclosure(const Labels& controller, const Enclosure& enclosure) {
        if (!enclosure.sensors)
            return;
        for (const Sensor& sensor : *enclosure.sensors) {
            const Labels labels = with(controller, {{"enclosure", std::to_string(enclosure.deviceId)},
                                                    {"sensor", std::string(sensor.type)},
                                                    {"index", std::to_string(sensor.index)}});
            metrics_.family("zeb_enclosure_sensor_status", kGauge, "State of the sensor: exactly one status is 1.")
                .states(labels, "status", sensorStatuses(), sensor.status.text);
            metrics_.family("zeb_enclosure_temperature_celsius", kGauge, "Temperature that the sensor reads.")
                .sample(labels, sensor.celsius);
            metrics_.family("zeb_enclosure_fan_rpm", kGauge, "Speed that the fan's sensor reads.")
                .sample(labels, sensor.rpm);
            metrics_.family("zeb_enclosure_voltage_volts", kGauge, "Voltage that the sensor reads.")
                .sample(labels, sensor.volts);
        }
    }

    /// Of two drives in the same place the one with the lower device id has samples.
    void aboutPhysicalDrives(const Labels& controller, const std::vector<PhysicalDrive>& drives) {
        std::set<std::pair<std::string, std::uint8_t>> places;
        for (const PhysicalDrive& drive : drives) { // by place, then by device id
            const std::string enclosure = drive.enclosureId ? std::to_string(*drive.enclosureId) : "";
            if (places.emplace(enclosure, drive.slot).second)
                aboutPhysicalDrive(controller, {{"enclosure", enclosure}, {"slot", std::to_string(drive.slot)}}, drive);
        }
    }

    void aboutHotSpares(const Labels& controller, const HotSpares& spares) {
        metrics_.family("zeb_hot_spares", kGauge, "Hot spares of the controller.");
        metrics_.sample(with(controller, {{"type", "global"}}), std::uint64_t{spares.global});
        metrics_.sample(with(controller, {{"type", "dedicated"}}), std::uint64_t{spares.dedicated});
    }

    void aboutPhysicalDrive(const Labels& controller, const Labels& place, const PhysicalDrive& drive) {
        const Labels labels = with(controller, place);
        metrics_.family("zeb_physical_drive_state", kGauge, "State of the drive: exactly one state is 1.")
            .states(labels, "state", physicalDriveStates(), drive.info ? drive.info->state.text : kUnknownWord);
        if (!drive.info)
            return;
        const PhysicalDriveInfo& info = *drive.info;
        metrics_.family("zeb_physical_drive_info", kGauge, "What the drive is.")
            .sample(with(labels, {{"device_id", std::to_string(drive.deviceId)},
                                  {"vendor", info.vendor.value_or("")},
                                  {"product", info.product.value_or("")},
                                  {"revision", info.revision.value_or("")},
                                  {"media", std::string(info.media.text)},
                                  {"interface", std::string(info.interface.text)}}),
                    std::uint64_t{1});
        metrics_.family("zeb_physical_drive_size_bytes", kGauge, "Usable size of the drive.")
            .sample(labels, info.usableBytes);
        metrics_.family("zeb_physical_drive_temperature_celsius", kGauge, "Temperature of the drive.")
            .sample(labels, info.temperatureCelsius);
        metrics_.family("zeb_physical_drive_media_errors_total", kCounter, "Media errors of the drive.")
            .sample(labels, std::uint64_t{info.mediaErrors});
        metrics_.family("zeb_physical_drive_other_errors_total", kCounter, "Other errors of the drive.")
            .sample(labels, std::uint64_t{info.otherErrors});
        metrics_
            .family("zeb_physical_drive_predictive_failures_total", kCounter,
                    "How often the drive predicted its failure.")
            .sample(labels, std::uint64_t{info.predictiveFailures});
        const Labels object = with({{"object", "pd"}}, with(place, {{"logical_drive", ""}}));
        aboutOperations(with(controller, object), info.operations);
    }

    void aboutLogicalDrive(const Labels& controller, const LogicalDrive& ld) {
        const std::string number = std::to_string(ld.number);
        const Labels labels = with(controller, {{"logical_drive", number}});
        metrics_.family("zeb_logical_drive_state", kGauge, "State of the LD: exactly one state is 1.")
            .states(labels, "state", logicalDriveStates(), ld.info ? ld.info->state.text : kUnknownWord);
        if (!ld.info)
            return;
        const LogicalDriveInfo& info = *ld.info;
        metrics_.family("zeb_logical_drive_info", kGauge, "What the LD is.")
            .sample(with(labels, {{"name", info.name.value_or("")},
                                  {"level", std::string(info.level.text)},
                                  {"raid_group", info.raidGroup.value_or("")},
                                  {"os_device", info.osDevice.value_or("")}}),
                    std::uint64_t{1});
        metrics_.family("zeb_logical_drive_size_bytes", kGauge, "Size of the LD.").sample(labels, info.sizeBytes);
        metrics_
            .family("zeb_logical_drive_write_back_lost", kGauge,
                    "1 when the LD is set to write back, but writes through.")
            .sample(labels, std::uint64_t{info.writeBackLost() ? 1U : 0U});
        aboutOperations(
            with(controller, {{"object", "ld"}, {"enclosure", ""}, {"slot", ""}, {"logical_drive", number}}),
            info.operations);
    }

    void aboutOperations(const Labels& labels, const std::vector<Operation>& operations) {
        for (const Operation& operation : operations)
            metrics_.family("zeb_operation_progress_ratio", kGauge, "How much of the background work is done, 0 to 1.")
                .sample(with(labels, {{"operation", std::string(operation.type)}}), operation.ratio());
    }

    MetricFamilies metrics_;
};

} // namespace

std::string metricsText(const Collection& collection, const std::vector<Finding>& findings) {
    return Exporter().write(collection, findings);
}

} // namespace zebstat
