// The cache backup unit and the enclosures with their sensors.
#include "facts/collect_parts.h"
#include "facts/text.h"
#include "storelib/common/StoreLib/cache_backup.h"
#include "storelib/common/StoreLib/enclosure.h"
#include "storelib/records/views.h"

#include <algorithm>

namespace facts {

namespace {

void fillStatus(CacheBackup& unit, const _MR_BBU_STATUS& record) {
    constexpr WordRow kTypes[] = {{0, "none"},   {1, "ibbu"},   {2, "bbu"},     {3, "zcr_legacy"},
                                  {4, "itbbu3"}, {5, "ibbu08"}, {6, "supercap"}};
    constexpr double kMilli = 1000;
    unit.type = wordFor(kTypes, record.type);
    unit.remainingCapacityJoules = record.remainingCapacityLow + 256U * record.remainingCapacityHigh;
    unit.temperatureCelsius = record.temperature;
    unit.voltageVolts = record.voltage / kMilli;
    unit.currentAmperes = record.current / kMilli;
    std::vector<std::string_view> words;
    std::uint32_t rest = record.fwStatus;
    for (const WordRow& row : cacheBackupStatuses()) {
        const std::uint32_t bit = 1U << row.code;
        if ((rest & bit) != 0)
            words.push_back(row.text);
        rest &= ~bit;
    }
    if (rest != 0) {
        words.push_back(kUnknownWord);
        unit.statusCode = record.fwStatus;
    }
    unit.status = std::move(words);
}

void fillLearning(CacheBackup& unit, const _MR_BBU_PROPERTIES& record) {
    constexpr WordRow kModes[] = {{0, "automatic"}, {1, "disabled"}, {2, "warning"}};
    unit.autoLearn = wordFor(kModes, record.autoLearnMode);
    unit.learnPeriodSeconds = record.learnPeriod;
    unit.nextLearn = timeText(record.nextLearnTime);
}

void keepFirst(std::optional<Failure>& first, std::optional<Failure> failure) {
    if (!first)
        first = std::move(failure);
}

struct SensorType {
    EnclElementType element;
    std::string_view word;
};

/// In the order in which the library lists them.
constexpr SensorType kSensorTypes[] = {
    {kElemPowerSupply, kSensorPowerSupply}, {kElemFan, kSensorFan},
    {kElemTemperature, kSensorTemperature}, {kElemAlarm, kSensorAlarm},
    {kElemElectronics, kSensorElectronics}, {kElemVoltage, kSensorVoltage},
};

bool reads(const Word& status) {
    return status == "ok" || status == "critical" || status == "noncritical" || status == "unrecoverable";
}

Sensor sensorOf(const SensorType& type, unsigned index, const _SL_ENCL_ELEMENT& element) {
    Sensor sensor{type.word, index, wordFor(sensorStatuses(), element.status), {}, {}, {}};
    if (!reads(sensor.status))
        return sensor;
    const auto& value = element.value;
    if (type.element == kElemTemperature)
        sensor.celsius = value[0];
    else if (type.element == kElemFan)
        sensor.rpm = ((value[0] & 0x03) * 256 + value[1]) * 10;
    else if (type.element == kElemVoltage)
        sensor.volts = static_cast<std::int16_t>(value[0] | value[1] << 8) / 100.0;
    return sensor;
}

std::vector<Sensor> sensorsOf(const _SL_ENCL_STATUS_EX_T& status) {
    std::vector<Sensor> sensors;
    for (const SensorType& type : kSensorTypes) {
        unsigned index = 0;
        for (const _SL_ENCL_ELEMENT& element : elementsOf(status, type.element))
            sensors.push_back(sensorOf(type, index++, element));
    }
    return sensors;
}

Enclosure listedEnclosure(const _MR_ENCL_ENTRY& entry) {
    constexpr WordRow kTypes[] = {{kEnclSafte, "safte"}, {kEnclSes, "ses"}, {kEnclBackplane, "backplane"}};
    Enclosure enclosure;
    enclosure.deviceId = entry.deviceId;
    enclosure.index = entry.index;
    enclosure.type = wordFor(kTypes, entry.type);
    enclosure.slots = entry.slotCount;
    return enclosure;
}

void askEnclosure(Asker& asker, Enclosure& enclosure) {
    const EnclosureObject here{enclosure.deviceId};
    _SL_ENCL_CONFIG_T config{};
    const auto failure = asker.ask(here, "SLGetEnclConfig", SLGetEnclConfig, enclosure.deviceId, &config);
    keepFirst(enclosure.error, failure);
    if (!failure) {
        enclosure.vendor = fieldText(config.vendor);
        enclosure.product = fieldText(config.product);
        enclosure.revision = fieldText(config.revision);
        if (config.logicalId != 0)
            enclosure.logicalId = hexText(config.logicalId, 16);
    }
    _SL_ENCL_STATUS_EX_T status{};
    const auto statusFailure = asker.ask(here, "SLGetEnclStatus", SLGetEnclStatus, enclosure.deviceId, &status);
    keepFirst(enclosure.error, statusFailure);
    if (!statusFailure)
        enclosure.sensors = sensorsOf(status);
}

void setConnector(Enclosure& enclosure, std::uint8_t index, std::span<const _MR_SAS_CONNECTOR> connectors) {
    constexpr WordRow kLocations[] = {{2, "internal"}, {3, "external"}};
    if (index >= connectors.size())
        return;
    enclosure.location = wordFor(kLocations, connectors[index].location);
    enclosure.connector = fieldText(connectors[index].name);
}

} // namespace

void collectCacheBackup(Asker& asker, Controller& controller) {
    if (!controller.cacheBackup)
        return;
    CacheBackup& unit = *controller.cacheBackup;
    const CacheBackupObject here;
    _MR_BBU_STATUS status{};
    const auto statusFailure = asker.ask(here, "SLGetCacheBkupStatus", SLGetCacheBkupStatus, &status);
    keepFirst(unit.error, statusFailure);
    if (!statusFailure)
        fillStatus(unit, status);
    _MR_BBU_DESIGN_INFO design{};
    const auto designFailure = asker.ask(here, "SLGetCacheBkupDesignInfo", SLGetCacheBkupDesignInfo, &design);
    keepFirst(unit.error, designFailure);
    if (!designFailure) {
        unit.serial = std::to_string(design.serialNo);
        unit.fullCapacityJoules = design.designCapacity;
    }
    _MR_BBU_PROPERTIES properties{};
    const auto learnFailure = asker.ask(here, "SLGetCacheBkupProperties", SLGetCacheBkupProperties, &properties);
    keepFirst(unit.error, learnFailure);
    if (!learnFailure)
        fillLearning(unit, properties);
}

void collectEnclosures(Asker& asker, Controller& controller) {
    _MR_ENCL_LIST list{};
    if (asker.ask(ControllerObject{}, "SLGetEnclList", SLGetEnclList, &list))
        return;
    std::vector<Enclosure>& enclosures = controller.enclosures.emplace();
    std::vector<std::uint8_t> connectorIndexes;
    for (const _MR_ENCL_ENTRY& entry : entriesOf(list)) {
        const auto isListed = [&](const Enclosure& enclosure) { return enclosure.deviceId == entry.deviceId; };
        if (std::any_of(enclosures.begin(), enclosures.end(), isListed))
            continue;
        enclosures.push_back(listedEnclosure(entry));
        connectorIndexes.push_back(entry.connectorIndex);
    }

    constexpr WordRow kInside[] = {{0, "internal"}};
    const auto isBackplane = [](const Enclosure& enclosure) { return enclosure.type == "backplane"; };
    _MR_SAS_CONNECTORS connectors{};
    if (!std::all_of(enclosures.begin(), enclosures.end(), isBackplane) &&
        asker.ask(ControllerObject{}, "SLGetSASConnector", SLGetSASConnector, &connectors))
        connectors = {};
    for (std::size_t i = 0; i < enclosures.size(); ++i) {
        if (isBackplane(enclosures[i])) {
            enclosures[i].location = wordFor(kInside, 0);
            enclosures[i].sensors.emplace();
            continue;
        }
        askEnclosure(asker, enclosures[i]);
        setConnector(enclosures[i], connectorIndexes[i], entriesOf(connectors));
    }
}

} // namespace facts
