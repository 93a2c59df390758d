// What a controller is and how it is set, as tables.
#include "facts/text.h"
#include "zebstat/page_parts.h"
#include "zebstat/page_table.h"
#include "zebstat/page_words.h"

namespace zebstat {

namespace {

using namespace facts;

/// "4f21:0108"
std::string idPair(std::uint16_t vendor, std::uint16_t device) {
    constexpr int kDigits = 4;
    return hexText(vendor, kDigits) + ":" + hexText(device, kDigits);
}

std::string secondsText(const std::optional<std::uint32_t>& seconds) {
    return seconds ? spanText(*seconds) : kUntoldText;
}

FactTable identityOf(const Controller& controller, const ControllerInfo& info) {
    const Driver driver = controller.driver.value_or(Driver{});
    return {
        "Controller",
        {{"Product", plainText(info.product)},
         {"Serial number", plainText(info.serial)},
         {"Id", std::to_string(controller.id)},
         {"PCI address", plainText(controller.pciAddress)},
         {"PCI id", idPair(info.vendorId, info.deviceId)},
         {"PCI subsystem", idPair(info.subsystemVendorId, info.subsystemDeviceId)},
         {"Firmware package", plainText(info.firmwarePackage)},
         {"Firmware", joined({plainText(info.firmwareVersion), plainText(info.firmwareBuildTime)}, ", ")},
         {"BIOS", plainText(info.biosVersion)},
         {"Driver", joined({plainText(driver.name), plainText(driver.version), plainText(driver.releaseDate)}, ", ")},
         {"Memory", sizeText(info.memoryBytes)},
         {"Correctable memory errors", std::to_string(info.memoryCorrectableErrors)},
         {"Uncorrectable memory errors", std::to_string(info.memoryUncorrectableErrors)},
         {"Ports", std::to_string(info.portCount)},
         {"SAS addresses of the ports", joined(info.portAddresses, " ")},
         {"Clock", plainText(controller.clock)}}};
}

FactTable settingsTable(const Controller& controller) {
    const auto& settings = controller.settings;
    const auto flag = [&](bool Settings::*member) { return settings ? plainText(*settings.*member) : kUntoldText; };
    const auto rate = [&](unsigned Settings::*member) {
        return settings ? std::to_string(*settings.*member) + kNoBreak + "%" : kUntoldText;
    };
    const auto& patrol = controller.patrolRead;
    const bool hasAlarm = controller.info && controller.info->alarmPresent;
    const std::string alarm = settings ? plainText(settings->alarmEnabled) : kUntoldText;
    return {"Settings",
            {{"Automatic rebuild", settings ? plainText(settings->autoRebuild) : kUntoldText},
             {"Copyback", flag(&Settings::copyback)},
             {"Copyback at a predicted failure, HDD", flag(&Settings::smartCopybackHdd)},
             {"Copyback at a predicted failure, SSD", flag(&Settings::smartCopybackSsd)},
             {"A predicted failure fails the drive", plainText(controller.failDriveOnSmartError)},
             {"Native command queuing", flag(&Settings::nativeCommandQueuing)},
             {"Cache flush interval", settings ? spanText(settings->cacheFlushIntervalSeconds) : kUntoldText},
             {"Rate of rebuilds", rate(&Settings::rebuildRate)},
             {"Rate of patrol read", rate(&Settings::patrolReadRate)},
             {"Rate of background initialization", rate(&Settings::backgroundInitializationRate)},
             {"Rate of consistency checks", rate(&Settings::consistencyCheckRate)},
             {"Rate of reconstructions", rate(&Settings::reconstructionRate)},
             {"Patrol read", patrol ? wordText(patrol->mode) : kUntoldText},
             {"Patrol read interval", patrol ? spanText(patrol->intervalSeconds) : kUntoldText},
             {"Next patrol read", patrol ? plainText(patrol->nextStart) : kUntoldText},
             {"Alarm enabled", hasAlarm ? alarm : "no alarm is fitted"}}};
}

FactTable capabilitiesTable(const Capabilities& capabilities) {
    const auto bytes = [](const std::optional<std::uint32_t>& size) {
        return size ? sizeText(std::uint64_t{*size}) : kUntoldText;
    };
    Cells levels;
    for (const std::string_view level : capabilities.raidLevels)
        levels.push_back(upperText(Word{level, {}}));
    return {"Capabilities",
            {{"RAID levels", joined(levels, ", ")},
             {"Snapshot", plainText(capabilities.snapshot)},
             {"CacheCade", plainText(capabilities.cachecade)},
             {"FastPath", plainText(capabilities.fastpath)},
             {"Physical drives at most", std::to_string(capabilities.maxPhysicalDrives)},
             {"Logical drives at most", std::to_string(capabilities.maxLogicalDrives)},
             {"Stripe size", bytes(capabilities.stripeMinBytes) + " to " + bytes(capabilities.stripeMaxBytes)}}};
}

void addImages(Table& table, const std::vector<FirmwareImage>& images, const char* when) {
    for (const FirmwareImage& image : images)
        table.rows.push_back({plainText(image.name), plainText(image.version),
                              joined({plainText(image.buildDate), plainText(image.buildTime)}, " "), when});
}

} // namespace

void writeBackupTable(ControllerPart& part, const CacheBackup& unit) {
    writeFacts(part.out,
               {"Cache backup unit",
                {{"Full capacity by design", numberText(unit.fullCapacityJoules, "J")},
                 {"Remaining capacity", numberText(unit.remainingCapacityJoules, "J")},
                 {"Current", unit.currentAmperes ? numberText(*unit.currentAmperes, 3) + kNoBreak + "A" : kUntoldText},
                 {"Automatic learn cycle", wordText(unit.autoLearn)},
                 {"Learn period", secondsText(unit.learnPeriodSeconds)},
                 {"Next learn cycle", plainText(unit.nextLearn)}}});
}

void writeControllerTables(ControllerPart& part) {
    const ControllerInfo& info = *part.controller.info;
    {
        const auto box = part.out.element("div", {{"class", "facttables"}});
        writeFacts(part.out, identityOf(part.controller, info));
        writeFacts(part.out, settingsTable(part.controller));
        writeFacts(part.out, capabilitiesTable(info.capabilities));
    }
    Table images{"Firmware images", {"Image", "Version", "Built", "Runs"}, {}};
    addImages(images, info.images, "now");
    addImages(images, info.pendingImages, "after the next start");
    if (!images.rows.empty())
        writeTable(part.out, images);
}

} // namespace zebstat
