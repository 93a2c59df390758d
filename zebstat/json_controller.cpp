// A controller in the JSON document.
#include "facts/text.h"
#include "zebstat/json_parts.h"

namespace zebstat {

namespace {

using namespace facts;

Json imageList(const std::vector<FirmwareImage>& images) {
    Json list = Json::array();
    for (const FirmwareImage& image : images)
        list.push_back({{"name", orNull(image.name)},
                        {"version", orNull(image.version)},
                        {"build_date", orNull(image.buildDate)},
                        {"build_time", orNull(image.buildTime)}});
    return list;
}

Json pciOf(const Controller& controller, const ControllerInfo& info) {
    constexpr int kDigits = 4;
    return {{"address", orNull(controller.pciAddress)},
            {"vendor_id", hexText(info.vendorId, kDigits)},
            {"device_id", hexText(info.deviceId, kDigits)},
            {"subsystem_vendor_id", hexText(info.subsystemVendorId, kDigits)},
            {"subsystem_device_id", hexText(info.subsystemDeviceId, kDigits)}};
}

Json firmwareOf(const ControllerInfo& info) {
    return {{"package", orNull(info.firmwarePackage)},
            {"version", orNull(info.firmwareVersion)},
            {"build_time", orNull(info.firmwareBuildTime)},
            {"bios", orNull(info.biosVersion)},
            {"images", imageList(info.images)},
            {"pending_images", imageList(info.pendingImages)}};
}

Json driverOf(const std::optional<Driver>& driver) {
    const Driver known = driver.value_or(Driver{});
    return {
        {"name", orNull(known.name)}, {"version", orNull(known.version)}, {"release_date", orNull(known.releaseDate)}};
}

Json capabilitiesOf(const Capabilities& capabilities) {
    return {{"raid_levels", capabilities.raidLevels},
            {"snapshot", capabilities.snapshot},
            {"cachecade", capabilities.cachecade},
            {"fastpath", capabilities.fastpath},
            {"max_physical_drives", capabilities.maxPhysicalDrives},
            {"max_logical_drives", capabilities.maxLogicalDrives},
            {"stripe_min_bytes", orNull(capabilities.stripeMinBytes)},
            {"stripe_max_bytes", orNull(capabilities.stripeMaxBytes)}};
}

Json settingsOf(const Controller& controller) {
    const auto& settings = controller.settings;
    const auto value = [&](auto Settings::*member) { return settings ? Json(*settings.*member) : Json(nullptr); };
    return {{"auto_rebuild", settings ? orNull(settings->autoRebuild) : Json(nullptr)},
            {"copyback", value(&Settings::copyback)},
            {"smart_copyback_hdd", value(&Settings::smartCopybackHdd)},
            {"smart_copyback_ssd", value(&Settings::smartCopybackSsd)},
            {"fail_drive_on_smart_error", orNull(controller.failDriveOnSmartError)},
            {"native_command_queuing", value(&Settings::nativeCommandQueuing)},
            {"cache_flush_interval_seconds", value(&Settings::cacheFlushIntervalSeconds)},
            {"rates_percent",
             {{"rebuild", value(&Settings::rebuildRate)},
              {"patrol_read", value(&Settings::patrolReadRate)},
              {"background_initialization", value(&Settings::backgroundInitializationRate)},
              {"consistency_check", value(&Settings::consistencyCheckRate)},
              {"reconstruction", value(&Settings::reconstructionRate)}}}};
}

Json patrolReadOf(const std::optional<PatrolRead>& patrolRead) {
    Json object;
    putWord(object, "mode", patrolRead ? std::optional(patrolRead->mode) : std::nullopt);
    object["interval_seconds"] = patrolRead ? Json(patrolRead->intervalSeconds) : Json(nullptr);
    object["next_start"] = patrolRead ? orNull(patrolRead->nextStart) : Json(nullptr);
    return object;
}

/// Everything that hangs on the controller's own information.
void putFacts(Json& object, const Controller& controller, const ControllerInfo& info) {
    object["product"] = orNull(info.product);
    object["serial"] = orNull(info.serial);
    object["pci"] = pciOf(controller, info);
    object["firmware"] = firmwareOf(info);
    object["driver"] = driverOf(controller.driver);
    object["memory"] = {{"size_bytes", info.memoryBytes},
                        {"correctable_errors", info.memoryCorrectableErrors},
                        {"uncorrectable_errors", info.memoryUncorrectableErrors}};
    object["ports"] = {{"count", info.portCount}, {"sas_addresses", info.portAddresses}};
    object["alarm"] = {{"present", info.alarmPresent},
                       {"enabled", controller.settings ? orNull(controller.settings->alarmEnabled) : Json(nullptr)}};
    object["capabilities"] = capabilitiesOf(info.capabilities);
    object["clock"] = orNull(controller.clock);
    object["settings"] = settingsOf(controller);
    object["patrol_read"] = patrolReadOf(controller.patrolRead);
    object["cache_backup"] = controller.cacheBackup ? cacheBackupOf(*controller.cacheBackup) : Json(nullptr);
    object["enclosures"] = listOrNull(controller.enclosures, enclosureOf);
    object["physical_drives"] = listOrNull(controller.physicalDrives, physicalDriveOf);
    object["raid_groups"] = listOrNull(controller.raidGroups, raidGroupOf);
    object["logical_drives"] = listOrNull(controller.logicalDrives, logicalDriveOf);
}

} // namespace

Json controllerOf(const Controller& controller) {
    constexpr const char* kOtherKeys[] = {
        "product",         "serial",       "pci",           "firmware", "driver",      "memory",       "ports",
        "alarm",           "capabilities", "clock",         "settings", "patrol_read", "cache_backup", "enclosures",
        "physical_drives", "raid_groups",  "logical_drives"};
    Json object{{"number", controller.number}, {"id", controller.id}};
    putError(object, controller.error);
    if (controller.info)
        putFacts(object, controller, *controller.info);
    else
        for (const char* key : kOtherKeys)
            object[key] = nullptr;
    return object;
}

} // namespace zebstat
