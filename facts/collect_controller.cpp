// A controller's own facts: identity, firmware, capabilities, settings, patrol read, clock.
#include "facts/collect_parts.h"
#include "facts/text.h"
#include "facts/units.h"
#include "storelib/common/StoreLib/controller.h"
#include "storelib/records/views.h"

#include <algorithm>

namespace facts {

namespace {

std::vector<FirmwareImage> imageList(std::span<const _MR_IMAGE_COMPONENT> images) {
    std::vector<FirmwareImage> list;
    for (const _MR_IMAGE_COMPONENT& image : images)
        list.push_back(
            {fieldText(image.name), fieldText(image.version), fieldText(image.buildDate), fieldText(image.buildTime)});
    return list;
}

/// The first image whose name begins like that, or null.
const FirmwareImage* imageNamed(const std::vector<FirmwareImage>& images, std::string_view beginning) {
    const auto found = std::find_if(images.begin(), images.end(), [&](const FirmwareImage& image) {
        return image.name && image.name->starts_with(beginning);
    });
    return found != images.end() ? &*found : nullptr;
}

std::optional<std::string> buildTimeOf(const FirmwareImage& image) {
    if (image.buildDate && image.buildTime)
        return *image.buildDate + " " + *image.buildTime;
    return image.buildDate ? image.buildDate : image.buildTime;
}

void fillFirmware(ControllerInfo& info, const _MR_CTRL_INFO& record) {
    info.firmwarePackage = fieldText(record.packageVersion);
    info.images = imageList(imagesOf(record));
    info.pendingImages = imageList(pendingImagesOf(record));
    if (const FirmwareImage* application = imageNamed(info.images, "APP")) {
        info.firmwareVersion = application->version;
        info.firmwareBuildTime = buildTimeOf(*application);
    }
    if (const FirmwareImage* bios = imageNamed(info.images, "BIOS"))
        info.biosVersion = bios->version;
}

Capabilities capabilitiesOf(const _MR_CTRL_INFO& record) {
    constexpr WordRow kLevels[] = {
        {1U << 0U, "raid0"}, {1U << 1U, "raid1"}, {1U << 2U, "raid5"}, {1U << 4U, "raid6"}, {1U << 5U, "raid10"}};
    Capabilities capabilities;
    for (const WordRow& level : kLevels)
        if ((record.raidLevels & level.code) != 0)
            capabilities.raidLevels.push_back(level.text);
    capabilities.snapshot = (record.adapterOperations & kAdapterOpSnapshot) != 0;
    capabilities.cachecade = record.cacheCadeCapacity != 0;
    capabilities.fastpath = (record.ldOperations & kLdOpFastPath) != 0;
    capabilities.maxPhysicalDrives = record.maxPds;
    capabilities.maxLogicalDrives = record.maxLds;
    capabilities.stripeMinBytes = bytesOfStripeCode(record.stripeSizeMin);
    capabilities.stripeMaxBytes = bytesOfStripeCode(record.stripeSizeMax);
    return capabilities;
}

ControllerInfo infoOf(const _MR_CTRL_INFO& record) {
    constexpr unsigned kMegabyteShift = 20;
    ControllerInfo info;
    info.product = fieldText(record.productName);
    info.serial = fieldText(record.serialNo);
    info.vendorId = record.vendorId;
    info.deviceId = record.deviceId;
    info.subsystemVendorId = record.subVendorId;
    info.subsystemDeviceId = record.subDeviceId;
    fillFirmware(info, record);
    info.memoryBytes = std::uint64_t{record.memorySize} << kMegabyteShift;
    info.memoryCorrectableErrors = record.memCorrectableErrorCount;
    info.memoryUncorrectableErrors = record.memUncorrectableErrorCount;
    info.portCount = record.devicePortCount;
    for (const std::uint64_t address : devicePortAddressesOf(record))
        if (address != 0)
            info.portAddresses.push_back(hexText(address, 16));
    info.alarmPresent = (record.hwPresent & kHwAlarm) != 0;
    info.capabilities = capabilitiesOf(record);
    return info;
}

/// A byte that is 0 or 1; nothing for any other.
std::optional<bool> flagOf(std::uint8_t byte) {
    if (byte > 1)
        return std::nullopt;
    return byte == 1;
}

Settings settingsOf(const _MR_CTRL_PROP& record) {
    const auto isSet = [&](std::uint32_t bit) { return (record.onOff & bit) != 0; };
    Settings settings;
    settings.alarmEnabled = flagOf(record.alarmEnable);
    if (const auto disabled = flagOf(record.disableAutoRebuild))
        settings.autoRebuild = !*disabled;
    settings.copyback = !isSet(kPropCopybackDisabled);
    settings.smartCopybackHdd = isSet(kPropSmartCopybackHdd);
    settings.smartCopybackSsd = isSet(kPropSmartCopybackSsd);
    settings.nativeCommandQueuing = !isSet(kPropNcqDisabled);
    settings.cacheFlushIntervalSeconds = record.cacheFlushInterval;
    settings.rebuildRate = record.rebuildRate;
    settings.patrolReadRate = record.patrolReadRate;
    settings.backgroundInitializationRate = record.bgiRate;
    settings.consistencyCheckRate = record.ccRate;
    settings.reconstructionRate = record.reconRate;
    return settings;
}

PatrolRead patrolReadOf(const _MR_PR_PROPERTIES& record) {
    constexpr WordRow kModes[] = {{0, "automatic"}, {1, "manual"}, {2, "disabled"}};
    return {wordFor(kModes, record.mode), record.executionFrequency, timeText(record.nextExecution)};
}

std::string addressOf(const _MR_DRV_PCI_INFORMATION& record) {
    return hexText(record.bus, 2) + ":" + hexText(record.device, 2) + "." + hexText(record.function, 1);
}

} // namespace

bool collectInfo(Asker& asker, Controller& controller) {
    _MR_CTRL_INFO record{};
    controller.error = asker.ask(ControllerObject{}, kControllerInfoWrapper, SLGetCtrlInfo, &record);
    if (controller.error)
        return false;
    controller.info = infoOf(record);
    if ((record.hwPresent & kHwCacheBackup) != 0)
        controller.cacheBackup.emplace();
    return true;
}

void collectSettings(Asker& asker, Controller& controller) {
    const ControllerObject here;
    _MR_CTRL_PROP properties{};
    if (!asker.ask(here, "SLGetCtrlProp", SLGetCtrlProp, &properties))
        controller.settings = settingsOf(properties);
    _MR_DRV_PCI_INFORMATION pci{};
    if (!asker.ask(here, "SLGetPciInfo", SLGetPciInfo, &pci))
        controller.pciAddress = addressOf(pci);
    _MR_DRV_DRIVER_VERSION driver{};
    if (!asker.ask(here, "SLGetDrvVer", SLGetDrvVer, &driver))
        controller.driver = {fieldText(driver.driverName), fieldText(driver.driverVersion),
                             fieldText(driver.releaseDate)};
    _MR_PR_PROPERTIES patrolRead{};
    if (!asker.ask(here, "SLGetPatrolReadProp", SLGetPatrolReadProp, &patrolRead))
        controller.patrolRead = patrolReadOf(patrolRead);
    _MR_MFC_DEFAULTS defaults{};
    if (!asker.ask(here, "SLGetMFCDefaults", SLGetMFCDefaults, &defaults))
        controller.failDriveOnSmartError = defaults.failPdOnSmartError != 0;
    unsigned int seconds = 0;
    if (!asker.ask(here, "SLGetTime", SLGetTime, &seconds))
        controller.clock = timeText(seconds);
}

} // namespace facts
