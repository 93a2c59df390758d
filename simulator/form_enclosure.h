// The scenario form of enclosures, SAS connectors and the cache backup unit.
#pragma once

#include "simulator/scenario_io.h"
#include "storelib/records/enclosure.h"

namespace zebsim {

/// Words for the element status codes (SES-2).
inline constexpr Words kSensorStatus = {
    {"unsupported", 0},   {"ok", 1},           {"critical", 2}, {"nonCritical", 3},
    {"unrecoverable", 4}, {"notInstalled", 5}, {"unknown", 6},  {"notAvailable", 7}};

/// A list of elements of one type; `valueKey` is what its readings are called.
template <class Io>
void describeSensors(Io& io, const char* key, std::vector<Sensor>& sensors, const char* valueKey) {
    io.objects(key, sensors, kMaxEnclElements, [&](auto& element, Sensor& sensor, std::size_t) {
        const Sensor usual;
        element.word("status", sensor.status, usual.status, kSensorStatus);
        element.number(valueKey, sensor.value, usual.value, -32768, 32767);
    });
}

/// An enclosure, the one at `index` of the list. Device ids count up from 252, indexes from 1.
template <class Io>
void describeEnclosure(Io& io, Enclosure& enclosure, std::size_t index) {
    constexpr std::uint16_t kFirstDeviceId = 252;
    constexpr std::uint64_t kPlaceholder = 0x50A0B0C0E0000000;
    const auto number = static_cast<std::uint8_t>(index);
    const Enclosure usual;
    io.number("deviceId", enclosure.deviceId, static_cast<std::uint16_t>(kFirstDeviceId + index), 0, kNoDevice - 1);
    io.number("index", enclosure.index, static_cast<std::uint8_t>(number + 1));
    io.number("slots", enclosure.slots, usual.slots);
    io.word("type", enclosure.type, usual.type,
            {{"unknown", kEnclUnknown}, {"SAFTE", kEnclSafte}, {"SES", kEnclSes}, {"backplane", kEnclBackplane}});
    io.number("connector", enclosure.connector, number);
    io.address("logicalId", enclosure.logicalId, kPlaceholder + enclosure.deviceId);
    io.text("vendor", enclosure.vendor, usual.vendor, 8);
    io.text("product", enclosure.product, usual.product, 16);
    io.text("revision", enclosure.revision, usual.revision, 4);
    describeSensors(io, "powerSupplies", enclosure.powerSupplies, "value");
    describeSensors(io, "fans", enclosure.fans, "rpm");
    describeSensors(io, "temperatures", enclosure.temperatures, "celsius");
    describeSensors(io, "alarms", enclosure.alarms, "value");
    describeSensors(io, "electronics", enclosure.electronics, "value");
    describeSensors(io, "voltages", enclosure.voltages, "hundredths");
}

/// A SAS connector.
template <class Io>
void describeConnector(Io& io, Connector& connector) {
    const Connector usual;
    io.word("location", connector.location, usual.location, {{"unknown", 0}, {"internal", 2}, {"external", 3}});
    io.text("name", connector.name, usual.name, 16);
}

/// When the unit learns; times are seconds, the delay hours.
template <class Io>
void describeLearning(Io& io, CacheBackup& unit) {
    const CacheBackup usual;
    io.number("learnPeriod", unit.learnPeriod, usual.learnPeriod);
    io.number("nextLearn", unit.nextLearn, usual.nextLearn);
    io.number("learnDelay", unit.learnDelay, usual.learnDelay);
    io.word("autoLearn", unit.autoLearn, usual.autoLearn, {{"automatic", 0}, {"disabled", 1}, {"warning", 2}});
    io.task("learn", unit.learn);
}

/// A cache backup unit. It is full unless it says otherwise: capacities and charges follow from one another.
template <class Io>
void describeCacheBackup(Io& io, CacheBackup& unit) {
    const CacheBackup usual;
    io.word("type", unit.type, usual.type,
            {{"none", 0}, {"IBBU", 1}, {"BBU", 2}, {"ZCR", 3}, {"iTBBU3", 4}, {"iBBU08", 5}, {"superCap", 6}});
    io.number("voltage", unit.voltage, usual.voltage);
    io.number("current", unit.current, usual.current);
    io.number("temperature", unit.temperature, usual.temperature);
    io.number("status", unit.status, usual.status);
    io.number("designCapacity", unit.designCapacity, usual.designCapacity);
    io.number("designVoltage", unit.designVoltage, usual.designVoltage);
    io.number("fullCapacity", unit.fullCapacity, unit.designCapacity);
    io.number("remainingCapacity", unit.remainingCapacity, unit.fullCapacity);
    io.number("relativeCharge", unit.relativeCharge, usual.relativeCharge);
    io.number("absoluteCharge", unit.absoluteCharge, unit.relativeCharge);
    io.number("cycleCount", unit.cycleCount, usual.cycleCount);
    io.number("manufactureDate", unit.manufactureDate, usual.manufactureDate);
    io.number("serialNo", unit.serialNo, usual.serialNo);
    io.text("maker", unit.maker, usual.maker, 12);
    io.text("deviceName", unit.deviceName, usual.deviceName, 8);
    io.text("chemistry", unit.chemistry, usual.chemistry, 8);
    describeLearning(io, unit);
}

} // namespace zebsim
