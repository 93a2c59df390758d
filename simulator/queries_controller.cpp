#include "simulator/queries.h"

#include <algorithm>
#include <cmath>

namespace zebsim {

namespace {

constexpr std::uint32_t kFirstPartitionArg = 0x40; // unlike any target id

template <std::size_t N>
void encodeImages(_MR_IMAGE_COMPONENT (&table)[N], const std::vector<ImageComponent>& images) {
    for (std::size_t i = 0; i < std::min(N, images.size()); ++i) {
        putText(table[i].name, images[i].name);
        putText(table[i].version, images[i].version);
        putText(table[i].buildDate, images[i].buildDate);
        putText(table[i].buildTime, images[i].buildTime);
    }
}

template <class Items, class Test>
std::uint16_t countOf(const Items& items, Test test) {
    return static_cast<std::uint16_t>(std::count_if(items.begin(), items.end(), test));
}

void encodeCounts(_MR_CTRL_INFO& info, const Controller& ctrl) {
    const auto ldIn = [&](std::uint8_t state) {
        return countOf(ctrl.lds, [=](const LogicalDrive& ld) { return ld.state == state; });
    };
    info.ldPresentCount = static_cast<std::uint16_t>(ctrl.lds.size());
    info.ldDegradedCount = static_cast<std::uint16_t>(ldIn(kLdDegraded) + ldIn(kLdPartiallyDegraded));
    info.ldOfflineCount = ldIn(kLdOffline);
    info.pdDiskPresentCount = static_cast<std::uint16_t>(ctrl.drives.size());
    info.pdPresentCount = static_cast<std::uint16_t>(ctrl.drives.size() + ctrl.enclosures.size());
    info.pdDiskPredFailureCount = countOf(ctrl.drives, [](const Drive& d) { return d.predictiveFailures != 0; });
    info.pdDiskFailedCount = countOf(ctrl.drives, [](const Drive& d) { return d.state == kPdFailed; });
}

void encodeCapabilities(_MR_CTRL_INFO& info, const Controller& ctrl) {
    info.maxArms = kMaxArrayDrives;
    info.maxSpans = kMaxSpans;
    info.maxArrays = 128;
    info.maxLds = ctrl.maxLds;
    info.hwPresent = (ctrl.cacheBackup ? kHwCacheBackup : 0U) | (ctrl.alarm ? kHwAlarm : 0U);
    info.raidLevels = ctrl.raidLevels;
    info.adapterOperations = ctrl.adapterOperations | (ctrl.snapshot ? kAdapterOpSnapshot : 0U);
    info.ldOperations = ctrl.ldOperations | (ctrl.fastPath ? kLdOpFastPath : 0U);
    info.pdOperations = ctrl.pdOperations;
    info.stripeSizeMin = ctrl.stripeMin;
    info.stripeSizeMax = ctrl.stripeMax;
    for (unsigned i = 0; i < kPdLimits; ++i)
        info.pdsForRaidLevel[i] = static_cast<std::uint16_t>(ctrl.pdLimits[i].minimum | ctrl.pdLimits[i].maximum << 4);
    info.maxPds = ctrl.maxPds;
    info.cacheCadeCapacity = ctrl.cacheCadeCapacity;
}

} // namespace

_MR_PROGRESS encodeProgress(const Task& task) {
    constexpr double kWhole = 65535;
    if (!task)
        return {};
    const double parts = std::ceil(task->percent / 100 * kWhole);
    return {static_cast<std::uint16_t>(std::clamp(parts, 0.0, kWhole)),
            static_cast<std::uint16_t>(std::clamp(task->elapsed, 0.0, kWhole))};
}

_MR_CTRL_PROP encodeProperties(const Properties& properties) {
    _MR_CTRL_PROP record{};
    static_assert(sizeof record == sizeof properties.otherBytes);
    std::memcpy(&record, properties.otherBytes.data(), sizeof record);
    record.seqNo = properties.seq;
    record.rebuildRate = properties.rebuildRate;
    record.patrolReadRate = properties.patrolReadRate;
    record.bgiRate = properties.bgiRate;
    record.ccRate = properties.ccRate;
    record.reconRate = properties.reconRate;
    record.cacheFlushInterval = properties.cacheFlushInterval;
    record.alarmEnable = properties.alarmEnable;
    record.disableAutoRebuild = properties.disableAutoRebuild;
    record.onOff = properties.onOff;
    return record;
}

std::uint32_t getCtrlInfo(Call& call) {
    const Controller& ctrl = call.ctrl;
    _MR_CTRL_INFO info{};
    info.vendorId = ctrl.vendorId;
    info.deviceId = ctrl.pciDeviceId;
    info.subVendorId = ctrl.subVendorId;
    info.subDeviceId = ctrl.subDeviceId;
    info.devicePortCount = ctrl.devicePorts;
    for (std::size_t i = 0; i < ctrl.portAddresses.size(); ++i)
        info.devicePortAddr[i] = ctrl.portAddresses[i];
    info.imageComponentCount = static_cast<std::uint32_t>(ctrl.images.size());
    encodeImages(info.imageComponent, ctrl.images);
    info.pendingImageComponentCount = static_cast<std::uint32_t>(ctrl.pendingImages.size());
    encodeImages(info.pendingImageComponent, ctrl.pendingImages);
    putText(info.productName, ctrl.product);
    putText(info.serialNo, ctrl.serial);
    putText(info.packageVersion, ctrl.packageVersion);
    info.currentFwTime = ctrl.time;
    info.memorySize = ctrl.memory;
    info.memCorrectableErrorCount = ctrl.memoryCorrectableErrors;
    info.memUncorrectableErrorCount = ctrl.memoryUncorrectableErrors;
    info.properties = encodeProperties(ctrl.properties);
    encodeCounts(info, ctrl);
    encodeCapabilities(info, ctrl);
    reply(call, info);
    return kSuccess;
}

std::uint32_t getCtrlProperties(Call& call) {
    reply(call, encodeProperties(call.ctrl.properties));
    return kSuccess;
}

std::uint32_t getPciInfo(Call& call) {
    _MR_DRV_PCI_INFORMATION info{};
    info.bus = call.ctrl.pciBus;
    info.device = call.ctrl.pciDevice;
    info.function = call.ctrl.pciFunction;
    reply(call, info);
    return kSuccess;
}

std::uint32_t getDriverVersion(Call& call) {
    const Driver& driver = call.ctrl.driver;
    _MR_DRV_DRIVER_VERSION record{};
    putText(record.signature, driver.signature);
    putText(record.osName, driver.osName);
    putText(record.osVersion, driver.osVersion);
    putText(record.driverName, driver.name);
    putText(record.driverVersion, driver.version);
    putText(record.releaseDate, driver.releaseDate);
    reply(call, record);
    return kSuccess;
}

std::uint32_t getPatrolReadProperties(Call& call) {
    const PatrolRead& patrol = call.ctrl.patrolRead;
    _MR_PR_PROPERTIES record{};
    record.mode = patrol.mode;
    record.maxPds = patrol.maxPds;
    record.excludedLdCount = static_cast<std::uint8_t>(patrol.excludedLds.size());
    std::memset(record.excludedLd, 0xFF, sizeof record.excludedLd);
    for (std::size_t i = 0; i < patrol.excludedLds.size(); ++i)
        record.excludedLd[i] = patrol.excludedLds[i];
    for (const Drive& drive : call.ctrl.drives) {
        if (drive.patrolRead)
            record.currentPdMap[drive.slot / 8] |= static_cast<std::uint8_t>(1U << drive.slot % 8);
    }
    record.nextExecution = patrol.nextExecution;
    record.executionFrequency = patrol.frequency;
    record.clearFrequency = patrol.clearFrequency;
    reply(call, record);
    return kSuccess;
}

std::uint32_t getOsMapping(Call& call) {
    _SL_LD_OS_MAP_T map{};
    for (std::size_t i = 0; i < call.ctrl.lds.size(); ++i) {
        for (const std::string& device : call.ctrl.lds[i].osDevices) {
            _SL_LD_OS_MAP_ENTRY& entry = map.entry[map.count];
            entry.targetId = call.ctrl.lds[i].id;
            entry.partitionArg = kFirstPartitionArg + static_cast<std::uint32_t>(i);
            putText(entry.osDeviceName, device);
            ++map.count;
        }
    }
    reply(call, map);
    return kSuccess;
}

std::uint32_t getPartition(Call& call) {
    const std::uint8_t argument = call.request.param.bytes[0];
    const std::uint8_t target = call.request.param.bytes[1];
    const LogicalDrive* ld = findLd(call.ctrl, target);
    if (ld == nullptr || ld->osDevices.empty() || argument != kFirstPartitionArg + (ld - call.ctrl.lds.data()))
        return kPartitionFailure;
    _SL_PARTITION_INFO_T info{};
    info.osInstalled = ld->osInstalled ? 1 : 0;
    reply(call, info);
    call.answer.resize(kPartitionReplySize);
    return kSuccess;
}

} // namespace zebsim
