// The scenario form of controllers.
#pragma once

#include "simulator/form_configuration.h"
#include "simulator/form_enclosure.h"
#include "storelib/records/controller.h"

namespace zebsim {

inline constexpr std::uint32_t kUsualTime = 757382400; // 2024-01-01 00:00:00
inline constexpr std::uint8_t kUsualSeq = 7;

/// What the unnamed bytes of the properties hold in a controller that nobody has changed.
inline std::array<std::uint8_t, 64> usualOtherProperties() {
    std::array<std::uint8_t, 64> bytes{};
    bytes[2] = 0x2C; // predictive failure poll interval, 300 s
    bytes[3] = 0x01;
    bytes[4] = 16; // interrupt throttle count and time
    bytes[6] = 50;
    bytes[14] = 4; // drives that spin up at once, and the delay between them
    bytes[15] = 12;
    bytes[21] = 15; // ECC bucket size and leak rate
    bytes[22] = 0xA0;
    bytes[23] = 0x05;
    return bytes;
}

template <class Io>
void describeProperties(Io& io, Properties& properties) {
    constexpr std::uint8_t kAll = 100;
    io.number("seq", properties.seq, kUsualSeq);
    io.number("rebuildRate", properties.rebuildRate, 30, 0, kAll);
    io.number("patrolReadRate", properties.patrolReadRate, 30, 0, kAll);
    io.number("bgiRate", properties.bgiRate, 30, 0, kAll);
    io.number("ccRate", properties.ccRate, 30, 0, kAll);
    io.number("reconRate", properties.reconRate, 30, 0, kAll);
    io.number("cacheFlushInterval", properties.cacheFlushInterval, 4);
    io.number("alarmEnable", properties.alarmEnable, 0);
    io.number("disableAutoRebuild", properties.disableAutoRebuild, 0);
    io.number("onOff", properties.onOff, kPropSmartCopybackHdd);
    const auto usual = usualOtherProperties();
    io.bytes("otherBytes", properties.otherBytes.data(), usual.data(), usual.size());
}

template <class Io>
void describePatrolRead(Io& io, PatrolRead& patrol) {
    io.word("mode", patrol.mode, 0, {{"automatic", 0}, {"manual", 1}, {"disabled", 2}});
    io.number("maxPds", patrol.maxPds, 255);
    io.numbers("excludedLds", patrol.excludedLds, {}, 64);
    io.number("nextExecution", patrol.nextExecution, kUsualTime + 97200);
    io.number("frequency", patrol.frequency, 604800);
    io.number("clearFrequency", patrol.clearFrequency, 0);
    io.flag("running", patrol.running, false);
}

template <class Io>
void describeMfcDefaults(Io& io, std::array<std::uint8_t, 72>& defaults) {
    constexpr std::size_t kFailPdOnSmartError = offsetof(_MR_MFC_DEFAULTS, failPdOnSmartError);
    std::array<std::uint8_t, 72> usual{};
    usual[0] = 0x15; // bytes that the tool must carry over
    usual[71] = 0xA7;
    std::uint8_t fail = defaults[kFailPdOnSmartError];
    io.number("failPdOnSmartError", fail, 0);
    defaults[kFailPdOnSmartError] = 0;
    io.bytes("otherBytes", defaults.data(), usual.data(), usual.size());
    defaults[kFailPdOnSmartError] = fail;
}

template <class Io>
void describeImage(Io& io, ImageComponent& image) {
    io.text("name", image.name, "APP", 8);
    io.text("version", image.version, "5.10.2-0044", 32);
    io.text("buildDate", image.buildDate, "Jan 11 2023", 16);
    io.text("buildTime", image.buildTime, "10:24:36", 16);
}

template <class Io>
void describeDriver(Io& io, Driver& driver) {
    io.text("signature", driver.signature, "$ZEBSIM$", 12);
    io.text("osName", driver.osName, "Linux", 16);
    io.text("osVersion", driver.osVersion, "6.1.0", 12);
    io.text("name", driver.name, "zebsim", 20);
    io.text("version", driver.version, "1.4.0-12", 32);
    io.text("releaseDate", driver.releaseDate, "Nov 02 2022", 20);
}

template <class Io>
void describePdLimits(Io& io, std::array<PdLimit, kPdLimits>& limits) {
    constexpr const char* kKeys[kPdLimits] = {"RAID0", "RAID1", "RAID5", "RAID1E", "RAID6", "RAID10"};
    constexpr PdLimit kUsual[kPdLimits] = {{1, 32}, {2, 2}, {3, 32}, {2, 32}, {3, 32}, {4, 32}};
    for (std::size_t i = 0; i < kPdLimits; ++i) {
        std::vector<std::uint16_t> limit{limits[i].minimum, limits[i].maximum};
        io.numbers(kKeys[i], limit, {kUsual[i].minimum, kUsual[i].maximum}, 2);
        if constexpr (Io::kReading) {
            if (limit.size() != 2 || limit[0] > 15 || limit[1] > 4095)
                throw ScenarioError(io.at(kKeys[i]), "give [minimum, maximum], at most 15 and 4095");
        }
        limits[i] = {limit[0], limit[1]};
    }
}

template <class Io>
void describePciIdentity(Io& io, Controller& ctrl) {
    io.number("vendorId", ctrl.vendorId, 0x1000);
    io.number("pciDeviceId", ctrl.pciDeviceId, 0x0108);
    io.number("subVendorId", ctrl.subVendorId, 0x5156);
    io.number("subDeviceId", ctrl.subDeviceId, 0x0800);
    io.number("pciBus", ctrl.pciBus, 4);
    io.number("pciDevice", ctrl.pciDevice, 0);
    io.number("pciFunction", ctrl.pciFunction, 0);
}

template <class Io>
void describeCapabilities(Io& io, Controller& ctrl) {
    constexpr std::uint8_t kLevels = 0x37; // RAID0, 1, 5, 6, 10
    constexpr std::uint32_t kAllPolicies = 0x1F;
    io.number("raidLevels", ctrl.raidLevels, kLevels);
    io.flag("snapshot", ctrl.snapshot, false);
    io.flag("fastPath", ctrl.fastPath, false);
    io.number("adapterOperations", ctrl.adapterOperations, 0);
    io.number("ldOperations", ctrl.ldOperations, kAllPolicies);
    io.number("pdOperations", ctrl.pdOperations, 0);
    io.number("stripeMin", ctrl.stripeMin, 4);
    io.number("stripeMax", ctrl.stripeMax, 11);
    io.object("pdLimits", ctrl.pdLimits, [](auto& element, auto& limits) { describePdLimits(element, limits); });
    io.number("maxPds", ctrl.maxPds, 32);
    io.number("maxLds", ctrl.maxLds, 64);
    io.number("maxSpares", ctrl.maxSpares, 16);
    io.number("cacheCadeCapacity", ctrl.cacheCadeCapacity, 0);
    io.flag("pinnedCache", ctrl.pinnedCache, false);
}

template <class Io>
void describeIdentity(Io& io, Controller& ctrl) {
    constexpr std::uint32_t kHighestId = 0xFFFFFF;
    io.number("id", ctrl.id, 0, 0, kHighestId);
    io.text("product", ctrl.product, "Quorvel RAID Pellucor 8e", 80);
    io.text("serial", ctrl.serial, "QV00000001", 32);
    io.text("packageVersion", ctrl.packageVersion, "", 96);
    io.objects("images", ctrl.images, 255,
               [](auto& element, ImageComponent& image, std::size_t) { describeImage(element, image); });
    io.object("driver", ctrl.driver, [](auto& element, Driver& driver) { describeDriver(element, driver); });
    io.number("devicePorts", ctrl.devicePorts, 8);
    io.numbers("portAddresses", ctrl.portAddresses, {}, 8);
    io.number("memory", ctrl.memory, 512);
    io.number("memoryCorrectableErrors", ctrl.memoryCorrectableErrors, 0);
    io.number("memoryUncorrectableErrors", ctrl.memoryUncorrectableErrors, 0);
    io.flag("alarm", ctrl.alarm, false);
}

template <class Io>
void describeController(Io& io, Controller& ctrl) {
    describeIdentity(io, ctrl);
    describePciIdentity(io, ctrl);
    describeCapabilities(io, ctrl);
    io.number("time", ctrl.time, kUsualTime);
    io.real("timeRest", ctrl.timeRest, 0, 0, 1);
    io.object("properties", ctrl.properties, [](auto& e, Properties& p) { describeProperties(e, p); });
    io.object("patrolRead", ctrl.patrolRead, [](auto& e, PatrolRead& p) { describePatrolRead(e, p); });
    io.object("mfcDefaults", ctrl.mfcDefaults, [](auto& e, auto& defaults) { describeMfcDefaults(e, defaults); });
    io.objects("enclosures", ctrl.enclosures, 32,
               [](auto& e, Enclosure& enclosure, std::size_t i) { describeEnclosure(e, enclosure, i); });
    io.objects("connectors", ctrl.connectors, 8,
               [](auto& e, Connector& connector, std::size_t) { describeConnector(e, connector); });
    io.optionalObject("cacheBackup", ctrl.cacheBackup,
                      [](auto& e, CacheBackup& unit) { describeCacheBackup(e, unit); });
    describeDrives(io, ctrl);
    if constexpr (Io::kReading)
        checkDrives(ctrl, io.place());
    describeConfiguration(io, ctrl);
}

} // namespace zebsim
