// The scenario form of controllers.
#pragma once

#include "simulator/form_configuration.h"
#include "simulator/form_enclosure.h"
#include "storelib/records/controller.h"

namespace zebsim {

/// The properties. Bytes of the record that have no key of their own are kept as one row of hexadecimal digits.
template <class Io>
void describeProperties(Io& io, Properties& properties) {
    const Properties usual;
    io.number("seq", properties.seq, usual.seq);
    io.number("rebuildRate", properties.rebuildRate, usual.rebuildRate, 0, kWholePercent);
    io.number("patrolReadRate", properties.patrolReadRate, usual.patrolReadRate, 0, kWholePercent);
    io.number("bgiRate", properties.bgiRate, usual.bgiRate, 0, kWholePercent);
    io.number("ccRate", properties.ccRate, usual.ccRate, 0, kWholePercent);
    io.number("reconRate", properties.reconRate, usual.reconRate, 0, kWholePercent);
    io.number("cacheFlushInterval", properties.cacheFlushInterval, usual.cacheFlushInterval);
    io.number("alarmEnable", properties.alarmEnable, usual.alarmEnable);
    io.number("disableAutoRebuild", properties.disableAutoRebuild, usual.disableAutoRebuild);
    io.number("onOff", properties.onOff, usual.onOff);
    io.bytes("otherBytes", properties.otherBytes.data(), usual.otherBytes.data(), usual.otherBytes.size());
}

/// Times are seconds since 2000-01-01, frequencies seconds.
template <class Io>
void describePatrolRead(Io& io, PatrolRead& patrol) {
    const PatrolRead usual;
    io.word("mode", patrol.mode, usual.mode, {{"automatic", 0}, {"manual", 1}, {"disabled", 2}});
    io.number("maxPds", patrol.maxPds, usual.maxPds);
    io.numbers("excludedLds", patrol.excludedLds, usual.excludedLds, 64);
    io.number("nextExecution", patrol.nextExecution, usual.nextExecution);
    io.number("frequency", patrol.frequency, usual.frequency);
    io.number("clearFrequency", patrol.clearFrequency, usual.clearFrequency);
    io.flag("running", patrol.running, usual.running);
}

/// The manufacturing defaults: one byte has a key, the others are hexadecimal digits.
template <class Io>
void describeMfcDefaults(Io& io, std::array<std::uint8_t, 72>& defaults) {
    constexpr std::size_t kFailPdOnSmartError = offsetof(_MR_MFC_DEFAULTS, failPdOnSmartError);
    const auto usual = usualMfcDefaults();
    std::uint8_t fail = defaults[kFailPdOnSmartError];
    io.number("failPdOnSmartError", fail, usual[kFailPdOnSmartError]);
    defaults[kFailPdOnSmartError] = 0;
    io.bytes("otherBytes", defaults.data(), usual.data(), usual.size());
    defaults[kFailPdOnSmartError] = fail;
}

/// A firmware image.
template <class Io>
void describeImage(Io& io, ImageComponent& image) {
    const ImageComponent usual;
    io.text("name", image.name, usual.name, 8);
    io.text("version", image.version, usual.version, 32);
    io.text("buildDate", image.buildDate, usual.buildDate, 16);
    io.text("buildTime", image.buildTime, usual.buildTime, 16);
}

/// The kernel driver as the library reports it.
template <class Io>
void describeDriver(Io& io, Driver& driver) {
    const Driver usual;
    io.text("signature", driver.signature, usual.signature, 12);
    io.text("osName", driver.osName, usual.osName, 16);
    io.text("osVersion", driver.osVersion, usual.osVersion, 12);
    io.text("name", driver.name, usual.name, 20);
    io.text("version", driver.version, usual.version, 32);
    io.text("releaseDate", driver.releaseDate, usual.releaseDate, 20);
}

/// How many drives each level takes, as [minimum, maximum]. The record has 4 and 12 bits for them.
template <class Io>
void describePdLimits(Io& io, std::array<PdLimit, kPdLimits>& limits) {
    constexpr const char* kKeys[kPdLimits] = {"RAID0", "RAID1", "RAID5", "RAID1E", "RAID6", "RAID10"};
    const auto usual = Controller{}.pdLimits;
    for (std::size_t i = 0; i < kPdLimits; ++i) {
        std::vector<std::uint16_t> limit{limits[i].minimum, limits[i].maximum};
        io.numbers(kKeys[i], limit, {usual[i].minimum, usual[i].maximum}, 2);
        if constexpr (Io::kReading) {
            if (limit.size() != 2 || limit[0] > 15 || limit[1] > 4095)
                throw ScenarioError(io.at(kKeys[i]), "give [minimum, maximum], at most 15 and 4095");
        }
        limits[i] = {limit[0], limit[1]};
    }
}

/// The ids of the card and where it is plugged in.
template <class Io>
void describePciIdentity(Io& io, Controller& ctrl) {
    const Controller usual;
    io.number("vendorId", ctrl.vendorId, usual.vendorId);
    io.number("pciDeviceId", ctrl.pciDeviceId, usual.pciDeviceId);
    io.number("subVendorId", ctrl.subVendorId, usual.subVendorId);
    io.number("subDeviceId", ctrl.subDeviceId, usual.subDeviceId);
    io.number("pciBus", ctrl.pciBus, usual.pciBus);
    io.number("pciDevice", ctrl.pciDevice, usual.pciDevice);
    io.number("pciFunction", ctrl.pciFunction, usual.pciFunction);
}

/// What the controller can do, and how much of it.
template <class Io>
void describeCapabilities(Io& io, Controller& ctrl) {
    const Controller usual;
    io.number("raidLevels", ctrl.raidLevels, usual.raidLevels);
    io.flag("snapshot", ctrl.snapshot, usual.snapshot);
    io.flag("fastPath", ctrl.fastPath, usual.fastPath);
    io.number("adapterOperations", ctrl.adapterOperations, usual.adapterOperations);
    io.number("ldOperations", ctrl.ldOperations, usual.ldOperations);
    io.number("pdOperations", ctrl.pdOperations, usual.pdOperations);
    io.number("stripeMin", ctrl.stripeMin, usual.stripeMin);
    io.number("stripeMax", ctrl.stripeMax, usual.stripeMax);
    io.object("pdLimits", ctrl.pdLimits, [](auto& element, auto& limits) { describePdLimits(element, limits); });
    io.number("maxPds", ctrl.maxPds, usual.maxPds);
    io.number("maxLds", ctrl.maxLds, usual.maxLds);
    io.number("maxSpares", ctrl.maxSpares, usual.maxSpares);
    io.number("cacheCadeCapacity", ctrl.cacheCadeCapacity, usual.cacheCadeCapacity);
    io.flag("pinnedCache", ctrl.pinnedCache, usual.pinnedCache);
}

/// Names, versions, ports and memory.
template <class Io>
void describeIdentity(Io& io, Controller& ctrl) {
    constexpr std::uint32_t kHighestId = 0xFFFFFF;
    const Controller usual;
    io.number("id", ctrl.id, usual.id, 0, kHighestId);
    io.text("product", ctrl.product, usual.product, 80);
    io.text("serial", ctrl.serial, usual.serial, 32);
    io.text("packageVersion", ctrl.packageVersion, usual.packageVersion, 96);
    io.objects("images", ctrl.images, 255,
               [](auto& element, ImageComponent& image, std::size_t) { describeImage(element, image); });
    io.objects("pendingImages", ctrl.pendingImages, 255,
               [](auto& element, ImageComponent& image, std::size_t) { describeImage(element, image); });
    io.object("driver", ctrl.driver, [](auto& element, Driver& driver) { describeDriver(element, driver); });
    io.number("devicePorts", ctrl.devicePorts, usual.devicePorts);
    io.numbers("portAddresses", ctrl.portAddresses, usual.portAddresses, 8);
    io.number("memory", ctrl.memory, usual.memory);
    io.number("memoryCorrectableErrors", ctrl.memoryCorrectableErrors, usual.memoryCorrectableErrors);
    io.number("memoryUncorrectableErrors", ctrl.memoryUncorrectableErrors, usual.memoryUncorrectableErrors);
    io.flag("alarm", ctrl.alarm, usual.alarm);
}

/// A whole controller. Enclosures and the cache backup unit come before the drives, drives before arrays, arrays before
/// LDs: what comes later takes defaults from what came before. Contradictions between the parts are found afterwards,
/// by checkController().
template <class Io>
void describeController(Io& io, Controller& ctrl) {
    describeIdentity(io, ctrl);
    describePciIdentity(io, ctrl);
    describeCapabilities(io, ctrl);
    const Controller usual;
    io.number("time", ctrl.time, usual.time);
    io.real("timeRest", ctrl.timeRest, usual.timeRest, 0, 1);
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
