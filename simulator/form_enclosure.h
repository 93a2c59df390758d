// The scenario form of enclosures, SAS connectors and the cache backup unit.
#pragma once

#include "simulator/scenario_io.h"
#include "storelib/records/enclosure.h"

namespace zebsim {

inline constexpr Words kSensorStatus = {
    {"unsupported", 0},   {"ok", 1},           {"critical", 2}, {"nonCritical", 3},
    {"unrecoverable", 4}, {"notInstalled", 5}, {"unknown", 6},  {"notAvailable", 7}};

template <class Io>
void describeSensors(Io& io, const char* key, std::vector<Sensor>& sensors, const char* valueKey) {
    io.objects(key, sensors, kMaxEnclElements, [&](auto& element, Sensor& sensor, std::size_t) {
        element.word("status", sensor.status, 1, kSensorStatus);
        element.number(valueKey, sensor.value, 0, -32768, 32767);
    });
}

template <class Io>
void describeEnclosure(Io& io, Enclosure& enclosure, std::size_t index) {
    constexpr std::uint16_t kFirstDeviceId = 252;
    constexpr std::uint8_t kUsualSlots = 16;
    constexpr std::uint64_t kPlaceholder = 0x50A0B0C0E0000000;
    const auto number = static_cast<std::uint8_t>(index);
    io.number("deviceId", enclosure.deviceId, static_cast<std::uint16_t>(kFirstDeviceId + index), 0, kNoDevice - 1);
    io.number("index", enclosure.index, static_cast<std::uint8_t>(number + 1));
    io.number("slots", enclosure.slots, kUsualSlots);
    io.word("type", enclosure.type, kEnclSes,
            {{"unknown", kEnclUnknown}, {"SAFTE", kEnclSafte}, {"SES", kEnclSes}, {"backplane", kEnclBackplane}});
    io.number("connector", enclosure.connector, number);
    io.address("logicalId", enclosure.logicalId, kPlaceholder + enclosure.deviceId);
    io.text("vendor", enclosure.vendor, "QUORVEL", 8);
    io.text("product", enclosure.product, "Pellucor Bay 16", 16);
    io.text("revision", enclosure.revision, "0007", 4);
    describeSensors(io, "powerSupplies", enclosure.powerSupplies, "value");
    describeSensors(io, "fans", enclosure.fans, "rpm");
    describeSensors(io, "temperatures", enclosure.temperatures, "celsius");
    describeSensors(io, "alarms", enclosure.alarms, "value");
    describeSensors(io, "electronics", enclosure.electronics, "value");
    describeSensors(io, "voltages", enclosure.voltages, "hundredths");
}

template <class Io>
void describeConnector(Io& io, Connector& connector) {
    io.word("location", connector.location, 2, {{"unknown", 0}, {"internal", 2}, {"external", 3}});
    io.text("name", connector.name, "Port 0 - 3", 16);
}

template <class Io>
void describeLearning(Io& io, CacheBackup& unit) {
    io.number("learnPeriod", unit.learnPeriod, 2419200);
    io.number("nextLearn", unit.nextLearn, 759801605);
    io.number("learnDelay", unit.learnDelay, 0);
    io.word("autoLearn", unit.autoLearn, 0, {{"automatic", 0}, {"disabled", 1}, {"warning", 2}});
    io.task("learn", unit.learn);
}

template <class Io>
void describeCacheBackup(Io& io, CacheBackup& unit) {
    io.word("type", unit.type, 5,
            {{"none", 0}, {"IBBU", 1}, {"BBU", 2}, {"ZCR", 3}, {"iTBBU3", 4}, {"iBBU08", 5}, {"superCap", 6}});
    io.number("voltage", unit.voltage, 4062);
    io.number("current", unit.current, 0);
    io.number("temperature", unit.temperature, 26);
    io.number("status", unit.status, 0);
    io.number("designCapacity", unit.designCapacity, 1350);
    io.number("designVoltage", unit.designVoltage, 3700);
    io.number("fullCapacity", unit.fullCapacity, unit.designCapacity);
    io.number("remainingCapacity", unit.remainingCapacity, unit.fullCapacity);
    io.number("relativeCharge", unit.relativeCharge, 100);
    io.number("absoluteCharge", unit.absoluteCharge, unit.relativeCharge);
    io.number("cycleCount", unit.cycleCount, 3);
    io.number("manufactureDate", unit.manufactureDate, 15432);
    io.number("serialNo", unit.serialNo, 4711);
    io.text("maker", unit.maker, "QUORVEL", 12);
    io.text("deviceName", unit.deviceName, "PLCR-08", 8);
    io.text("chemistry", unit.chemistry, "LION", 8);
    describeLearning(io, unit);
}

} // namespace zebsim
