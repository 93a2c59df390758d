// Queries about the cache backup unit and the enclosures.
#include "simulator/queries.h"
#include "storelib/records/cache_backup.h"

#include <algorithm>

namespace zebsim {

namespace {

constexpr std::uint32_t kLearnActive = 1U << 6;

void addSensors(_SL_ENCL_STATUS_EX_T& record, std::size_t& used, unsigned type, const std::vector<Sensor>& sensors) {
    constexpr int kRpmPerUnit = 10;
    for (const Sensor& sensor : sensors) {
        if (used == kMaxEnclElements)
            return;
        _SL_ENCL_ELEMENT& element = record.element[used++];
        ++record.count[type];
        element.status = sensor.status;
        const int speed = sensor.value / kRpmPerUnit;
        if (type == kElemFan) {
            element.value[0] = static_cast<std::uint8_t>(speed >> 8 & 0x03);
            element.value[1] = static_cast<std::uint8_t>(speed);
        } else {
            element.value[0] = static_cast<std::uint8_t>(sensor.value);
            element.value[1] = static_cast<std::uint8_t>(sensor.value >> 8);
        }
    }
}

/// One slot element for each slot: OK where a drive is, not installed elsewhere.
std::vector<Sensor> slotSensors(const Controller& ctrl, const Enclosure& enclosure) {
    constexpr std::uint32_t kOk = 1;
    constexpr std::uint32_t kNotInstalled = 5;
    std::vector<Sensor> slots(enclosure.slots, Sensor{kNotInstalled, 0});
    for (const Drive& drive : ctrl.drives) {
        if (drive.enclosureId == enclosure.deviceId && drive.slot < slots.size())
            slots[drive.slot].status = kOk;
    }
    return slots;
}

/// The enclosure that the request names, if it can be asked at all; otherwise null and the status that says why.
const Enclosure* namedEnclosure(const Call& call, std::uint32_t& status) {
    const Enclosure* enclosure = findEnclosure(call.ctrl, call.request.ref.enclDeviceId);
    status = kSuccess;
    if (call.ctrl.enclosures.empty() || (enclosure != nullptr && enclosure->type == kEnclBackplane))
        status = kHardwareMissing;
    else if (enclosure == nullptr)
        status = kDeviceNotFound;
    return status == kSuccess ? enclosure : nullptr;
}

} // namespace

std::uint32_t getBackupStatus(Call& call, CacheBackup& unit) {
    _MR_BBU_STATUS record{};
    record.type = unit.type;
    record.voltage = unit.voltage;
    record.current = unit.current;
    record.temperature = unit.temperature;
    record.fwStatus = unit.status | (unit.learn ? kLearnActive : 0U);
    record.remainingCapacityLow = static_cast<std::uint8_t>(unit.remainingCapacity);
    record.remainingCapacityHigh = static_cast<std::uint8_t>(unit.remainingCapacity >> 8);
    record.fullChargeCapacity = unit.fullCapacity;
    reply(call, record);
    return kSuccess;
}

std::uint32_t getBackupCapacity(Call& call, CacheBackup& unit) {
    _MR_BBU_CAPACITY_INFO record{};
    record.relativeCharge = unit.relativeCharge;
    record.absoluteCharge = unit.absoluteCharge;
    record.remainingCapacity = unit.remainingCapacity;
    record.fullChargeCapacity = unit.fullCapacity;
    record.cycleCount = unit.cycleCount;
    reply(call, record);
    return kSuccess;
}

std::uint32_t getBackupDesign(Call& call, CacheBackup& unit) {
    _MR_BBU_DESIGN_INFO record{};
    record.manufactureDate = unit.manufactureDate;
    record.designCapacity = unit.designCapacity;
    record.designVoltage = unit.designVoltage;
    record.serialNo = unit.serialNo;
    putText(record.maker, unit.maker);
    putText(record.deviceName, unit.deviceName);
    putText(record.chemistry, unit.chemistry);
    reply(call, record);
    return kSuccess;
}

std::uint32_t getBackupProperties(Call& call, CacheBackup& unit) {
    _MR_BBU_PROPERTIES record{};
    record.learnPeriod = unit.learnPeriod;
    record.nextLearnTime = unit.nextLearn;
    record.learnDelay = unit.learnDelay;
    record.autoLearnMode = unit.autoLearn;
    reply(call, record);
    return kSuccess;
}

std::uint32_t getEnclList(Call& call) {
    _MR_ENCL_LIST list{};
    for (const Enclosure& enclosure : call.ctrl.enclosures) {
        _MR_ENCL_ENTRY& entry = list.encl[list.count++];
        entry.deviceId = enclosure.deviceId;
        entry.index = enclosure.index;
        entry.slotCount = enclosure.slots;
        entry.type = enclosure.type;
        entry.connectorIndex = enclosure.connector;
    }
    reply(call, list);
    return kSuccess;
}

std::uint32_t getEnclConfig(Call& call) {
    std::uint32_t status = kSuccess;
    const Enclosure* enclosure = namedEnclosure(call, status);
    if (enclosure == nullptr)
        return status;
    _SL_ENCL_CONFIG_T record{};
    record.logicalId = enclosure->logicalId;
    putText(record.vendor, enclosure->vendor, ' ');
    putText(record.product, enclosure->product, ' ');
    putText(record.revision, enclosure->revision, ' ');
    reply(call, record);
    return kSuccess;
}

std::uint32_t getEnclStatus(Call& call) {
    std::uint32_t status = kSuccess;
    const Enclosure* enclosure = namedEnclosure(call, status);
    if (enclosure == nullptr)
        return status;
    _SL_ENCL_STATUS_EX_T record{};
    std::size_t used = 0;
    addSensors(record, used, kElemSlot, slotSensors(call.ctrl, *enclosure));
    addSensors(record, used, kElemPowerSupply, enclosure->powerSupplies);
    addSensors(record, used, kElemFan, enclosure->fans);
    addSensors(record, used, kElemTemperature, enclosure->temperatures);
    addSensors(record, used, kElemAlarm, enclosure->alarms);
    addSensors(record, used, kElemElectronics, enclosure->electronics);
    addSensors(record, used, kElemVoltage, enclosure->voltages);
    reply(call, record);
    return kSuccess;
}

_MR_SAS_CONNECTORS encodeConnectors(const Controller& ctrl) {
    _MR_SAS_CONNECTORS record{};
    for (const Connector& connector : ctrl.connectors) {
        _MR_SAS_CONNECTOR& entry = record.connector[record.count++];
        entry.location = connector.location;
        putText(entry.name, connector.name);
    }
    return record;
}

} // namespace zebsim
