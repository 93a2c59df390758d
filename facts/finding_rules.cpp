#include "facts/finding_rules.h"

#include "facts/spoken.h"
#include "facts/text.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace facts {

namespace {

std::string upperCase(std::string_view word) {
    std::string text(word);
    std::ranges::transform(text, text.begin(), [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return text;
}

/// "power supply 1 of enclosure 252"
std::string nameOf(const SensorObject& sensor) {
    std::string type(sensor.sensor);
    std::ranges::replace(type, '_', ' ');
    if (type == kSensorTemperature || type == kSensorVoltage)
        type += " sensor";
    return type + " " + std::to_string(sensor.index) + " of enclosure " + std::to_string(sensor.enclosureId);
}

/// "PD7", with its enclosure where another drive of the controller has the same slot number.
std::string nameOf(const PhysicalDriveObject& drive, bool slotIsShared) {
    std::string name = "PD" + std::to_string(drive.slot);
    if (!slotIsShared)
        return name;
    return name + (drive.enclosureId ? " of enclosure " + std::to_string(*drive.enclosureId) : " outside an enclosure");
}

/// "LD3 'DATA' (RAID5)"
std::string nameOf(const LogicalDrive& ld) {
    std::string name = "LD" + std::to_string(ld.number);
    if (ld.info && ld.info->name)
        name += " '" + *ld.info->name + "'";
    if (ld.info && !ld.info->level.code)
        name += " (" + upperCase(ld.info->level.text) + ")";
    return name;
}

/// Judges one controller.
class Judge {
  public:
    Judge(const Controller& controller, const Thresholds& thresholds, std::vector<Finding>& findings)
        : controller_(controller), thresholds_(thresholds), findings_(findings) {}

    void judgeAll() {
        if (controller_.info)
            judgeMemory(*controller_.info);
        if (controller_.cacheBackup)
            judgeCacheBackup(*controller_.cacheBackup);
        if (controller_.enclosures)
            for (const Enclosure& enclosure : *controller_.enclosures)
                judgeSensors(enclosure);
        if (controller_.physicalDrives)
            for (const PhysicalDrive& drive : *controller_.physicalDrives)
                if (drive.info)
                    judgeDrive(drive, *drive.info);
        if (controller_.raidGroups)
            for (const RaidGroup& group : *controller_.raidGroups)
                judgeGroup(group);
        if (controller_.logicalDrives)
            for (const LogicalDrive& ld : *controller_.logicalDrives)
                if (ld.info)
                    judgeLd(ld, *ld.info);
    }

  private:
    void add(Severity severity, std::string_view code, Object object, const std::string& sentence) {
        findings_.push_back({severity,
                             code,
                             {controller_.number, std::move(object)},
                             "controller " + std::to_string(controller_.number) + ": " + sentence});
    }
    void warn(std::string_view code, Object object, const std::string& sentence) {
        add(Severity::Warning, code, std::move(object), sentence);
    }
    void alarm(std::string_view code, Object object, const std::string& sentence) {
        add(Severity::Critical, code, std::move(object), sentence);
    }

    void judgeMemory(const ControllerInfo& info) {
        if (info.memoryUncorrectableErrors != 0)
            alarm("memory_uncorrectable_errors", ControllerObject{},
                  "its memory had " + counted(info.memoryUncorrectableErrors, "uncorrectable error"));
        if (info.memoryCorrectableErrors != 0)
            warn("memory_correctable_errors", ControllerObject{},
                 "its memory had " + counted(info.memoryCorrectableErrors, "correctable error"));
    }

    void judgeCacheBackup(const CacheBackup& unit) {
        constexpr std::array<std::string_view, 3> kFailed{"pack_missing", "replace", "learn_failed"};
        constexpr std::array<std::string_view, 5> kWeak{"voltage_low", "temperature_high", "learn_timed_out",
                                                        "communication_error", "capacity_low"};
        if (!unit.status)
            return;
        const auto present = [&](std::span<const std::string_view> words) {
            std::string list;
            for (const std::string_view word : words)
                if (std::ranges::count(*unit.status, word) != 0)
                    list += (list.empty() ? "" : ", ") + std::string(word);
            std::ranges::replace(list, '_', ' ');
            return list;
        };
        if (const std::string words = present(kFailed); !words.empty())
            alarm("cache_backup_failed", CacheBackupObject{}, "its cache backup unit has failed: " + words);
        if (const std::string words = present(kWeak); !words.empty())
            warn("cache_backup_weak", CacheBackupObject{}, "its cache backup unit is weak: " + words);
    }

    void judgeSensors(const Enclosure& enclosure) {
        if (!enclosure.sensors)
            return;
        for (const Sensor& sensor : *enclosure.sensors) {
            const SensorObject object{enclosure.deviceId, sensor.type, sensor.index};
            const std::string sentence = nameOf(object) + " is " + std::string(sensor.status.text);
            if (sensor.status == "critical" || sensor.status == "unrecoverable")
                alarm("sensor_critical", object, sentence);
            else if (sensor.status == "noncritical")
                warn("sensor_noncritical", object, sentence);
        }
    }

    std::string nameOfDrive(const PhysicalDrive& drive) const {
        const auto alike =
            std::ranges::count(*controller_.physicalDrives, drive.slot, [](const PhysicalDrive& d) { return d.slot; });
        return nameOf({drive.deviceId, drive.enclosureId, drive.slot}, alike > 1);
    }

    void judgeDrive(const PhysicalDrive& drive, const PhysicalDriveInfo& info) {
        const std::string name = nameOfDrive(drive);
        const Object object = drive.object();
        const std::string member = info.raidGroup ? " of " + *info.raidGroup : "";
        if (info.state == "failed")
            alarm("physical_drive_failed", object, name + member + " has failed");
        if (info.state == "offline" && info.role == kRoleMember)
            alarm("physical_drive_offline", object, name + member + " is offline");
        if (info.predictiveFailures != 0)
            warn("physical_drive_predicted_failure", object,
                 name + member + " predicts its failure (" + counted(info.predictiveFailures, "time") + ")");
        if (info.state == "unconfigured_bad")
            warn("physical_drive_unconfigured_bad", object, name + " is unconfigured bad");
        if (info.foreign)
            warn("physical_drive_foreign", object, name + " carries a foreign configuration");
        if (info.mediaErrors != 0)
            warn("physical_drive_media_errors", object,
                 name + member + " had " + counted(info.mediaErrors, "media error"));
        judgeTemperature(object, name, info);
    }

    void judgeTemperature(const Object& object, const std::string& name, const PhysicalDriveInfo& info) {
        const int celsius = static_cast<int>(info.temperatureCelsius.value_or(0));
        if (!info.temperatureCelsius || celsius <= thresholds_.warnTemperature)
            return;
        const bool critical = celsius > thresholds_.criticalTemperature;
        const int limit = critical ? thresholds_.criticalTemperature : thresholds_.warnTemperature;
        add(critical ? Severity::Critical : Severity::Warning, "physical_drive_hot", object,
            name + " is " + std::to_string(celsius) + " C hot, above " + std::to_string(limit) + " C");
    }

    void judgeGroup(const RaidGroup& group) {
        const auto missing = std::ranges::count(group.physicalDrives, std::optional<std::uint16_t>{});
        if (missing != 0)
            warn("physical_drive_missing", RaidGroupObject{group.name},
                 counted(static_cast<std::uint64_t>(missing), "drive") + " of " + group.name +
                     (missing == 1 ? " is" : " are") + " missing");
        const bool redundant = group.level && !group.level->code && !(*group.level == "raid0") && !group.cachecade;
        if (thresholds_.noSpare && redundant && !hasSpare(group))
            add(*thresholds_.noSpare, "no_spare", RaidGroupObject{group.name}, "no hot spare fits " + group.name);
    }

    /// The member with the least room; null when no member tells its size.
    const PhysicalDriveInfo* smallestOf(const RaidGroup& group) const {
        const PhysicalDriveInfo* smallest = nullptr;
        for (const auto& deviceId : group.physicalDrives) {
            const PhysicalDrive* drive = deviceId ? controller_.driveOf(*deviceId) : nullptr;
            if (drive == nullptr || !drive->info || !drive->info->usableBytes)
                continue;
            if (smallest == nullptr || drive->info->usableBytes < smallest->usableBytes)
                smallest = &*drive->info;
        }
        return smallest;
    }

    bool hasSpare(const RaidGroup& group) const {
        const PhysicalDriveInfo* smallest = smallestOf(group);
        if (smallest == nullptr || !controller_.physicalDrives)
            return false;
        return std::ranges::any_of(*controller_.physicalDrives, [&](const PhysicalDrive& drive) {
            if (!drive.info)
                return false;
            const PhysicalDriveInfo& spare = *drive.info;
            const bool serves = spare.role == kRoleGlobalSpare ||
                                (spare.role == kRoleDedicatedSpare && std::ranges::count(group.spares, drive.deviceId));
            return serves && spare.interface.text == smallest->interface.text &&
                   spare.media.text == smallest->media.text && spare.usableBytes >= smallest->usableBytes;
        });
    }

    /// "; PD7 rebuilds, 37 %, about 2 h left", for each drive of the LD that does.
    std::string rebuildsOf(const LogicalDrive& ld) const {
        std::string text;
        if (!controller_.physicalDrives)
            return text;
        for (const PhysicalDrive& drive : *controller_.physicalDrives) {
            if (!drive.info || !drive.info->logicalDrives ||
                std::ranges::count(*drive.info->logicalDrives, ld.number) == 0)
                continue;
            for (const Operation& work : drive.info->operations) {
                if (work.type != "rebuild")
                    continue;
                text += "; " + nameOfDrive(drive) + " rebuilds, " + std::to_string(work.percent()) + " %";
                if (const auto left = work.remainingSeconds())
                    text += ", " + spokenDuration(*left) + " left";
            }
        }
        return text;
    }

    void judgeLd(const LogicalDrive& ld, const LogicalDriveInfo& info) {
        const LogicalDriveObject object{ld.number};
        const std::string name = nameOf(ld);
        if (info.state == "offline")
            alarm("logical_drive_offline", object, name + " is offline");
        else if (info.state == "degraded")
            alarm("logical_drive_degraded", object, name + " is degraded" + rebuildsOf(ld));
        else if (info.state == "partially_degraded")
            warn("logical_drive_partially_degraded", object, name + " is partially degraded" + rebuildsOf(ld));
        if (info.writeBackLost())
            warn("logical_drive_write_through", object, name + " writes through, though it is set to write back");
    }

    const Controller& controller_;
    const Thresholds& thresholds_;
    std::vector<Finding>& findings_;
};

/// The object of a request that failed, for a sentence; empty for the controller itself.
std::string nameOf(const Object& object) {
    if (const auto* drive = std::get_if<PhysicalDriveObject>(&object))
        return nameOf(*drive, drive->enclosureId.has_value());
    if (const auto* ld = std::get_if<LogicalDriveObject>(&object))
        return "LD" + std::to_string(ld->number);
    if (const auto* group = std::get_if<RaidGroupObject>(&object))
        return group->name;
    if (const auto* enclosure = std::get_if<EnclosureObject>(&object))
        return "enclosure " + std::to_string(enclosure->deviceId);
    if (std::holds_alternative<CacheBackupObject>(object))
        return "the cache backup unit";
    return {};
}

/// "controller 0: enclosure 252 could not be read: SLGetEnclStatus answered "..." (0x09)"
std::string sentenceOf(const RequestError& error, std::size_t requests) {
    std::string text = "the library did not tell its version";
    if (error.about.controller) {
        const std::string object = error.about.object ? nameOf(*error.about.object) : "";
        text = "controller " + std::to_string(*error.about.controller) + ": ";
        text += object.empty() ? "not all of it could be read" : object + " could not be read";
    }
    text += ": " + std::string(error.wrapper) + " answered \"" + error.failure.text + "\" (0x" +
            hexText(error.failure.status, 2) + ")";
    if (requests > 1)
        text += ", and " + counted(requests - 1, "more request") + " failed";
    return text;
}

Finding findingOf(const RequestError& error, std::size_t requests) {
    const bool isController = error.about.object && std::holds_alternative<ControllerObject>(*error.about.object);
    const bool isEnclosure = error.about.object && std::holds_alternative<EnclosureObject>(*error.about.object);
    if (isController && error.wrapper == kControllerInfoWrapper)
        return {Severity::Critical, "controller_unreadable", error.about, sentenceOf(error, requests)};
    return {Severity::Warning, isEnclosure ? "enclosure_unreadable" : "unreadable", error.about,
            sentenceOf(error, requests)};
}

} // namespace

void judgeController(const Controller& controller, const Thresholds& thresholds, std::vector<Finding>& findings) {
    Judge(controller, thresholds, findings).judgeAll();
}

void judgeErrors(const std::vector<RequestError>& errors, std::vector<Finding>& findings) {
    for (auto error = errors.begin(); error != errors.end(); ++error) {
        const auto isSame = [&](const RequestError& other) { return other.about == error->about; };
        if (std::none_of(errors.begin(), error, isSame))
            findings.push_back(
                findingOf(*error, static_cast<std::size_t>(std::count_if(errors.begin(), errors.end(), isSame))));
    }
}

} // namespace facts
