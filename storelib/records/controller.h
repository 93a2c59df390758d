// Controller records: identity, properties, PCI and driver data, patrol read, manufacturing defaults, OS mapping.
#pragma once

#include "storelib/records/wire_record.h"

namespace wire {

#pragma pack(push, 1)

/// Properties that an administrator may change. Rates are percentages.
struct _MR_CTRL_PROP {
    std::uint16_t seqNo;
    std::uint8_t reserved2[6];
    std::uint8_t rebuildRate;
    std::uint8_t patrolReadRate;
    std::uint8_t bgiRate;
    std::uint8_t ccRate;
    std::uint8_t reconRate;
    std::uint8_t cacheFlushInterval; ///< seconds
    std::uint8_t reserved14[4];
    std::uint8_t alarmEnable;
    std::uint8_t disableAutoRebuild;
    std::uint8_t reserved20[12];
    std::uint32_t onOff; ///< see kProp... below
    std::uint8_t reserved36[28];
};
ZEB_WIRE_RECORD(_MR_CTRL_PROP, 64, given, ZEB_FIELD(seqNo, 0), ZEB_FIELD(rebuildRate, 8), ZEB_FIELD(patrolReadRate, 9),
                ZEB_FIELD(bgiRate, 10), ZEB_FIELD(ccRate, 11), ZEB_FIELD(reconRate, 12),
                ZEB_FIELD(cacheFlushInterval, 13, published), ZEB_FIELD(alarmEnable, 18, published),
                ZEB_FIELD(disableAutoRebuild, 19), ZEB_FIELD(onOff, 32));

inline constexpr std::uint32_t kPropCopybackDisabled = 1U << 0;
inline constexpr std::uint32_t kPropSmartCopybackHdd = 1U << 1;
inline constexpr std::uint32_t kPropNcqDisabled = 1U << 4;
inline constexpr std::uint32_t kPropSmartCopybackSsd = 1U << 5;

/// One firmware image on the controller ("APP", "BIOS", ...).
struct _MR_IMAGE_COMPONENT {
    char name[8];
    char version[32];
    char buildDate[16];
    char buildTime[16];
};
ZEB_WIRE_RECORD(_MR_IMAGE_COMPONENT, 72, published, ZEB_FIELD(name, 0), ZEB_FIELD(version, 8), ZEB_FIELD(buildDate, 40),
                ZEB_FIELD(buildTime, 56));

struct _MR_CTRL_INFO {
    std::uint16_t vendorId;
    std::uint16_t deviceId;
    std::uint16_t subVendorId;
    std::uint16_t subDeviceId;
    std::uint8_t reserved8[24];
    std::uint8_t hostInterfaceType;
    std::uint8_t reserved33[6];
    std::uint8_t hostPortCount;
    std::uint64_t hostPortAddr[8];
    std::uint8_t deviceInterfaceType;
    std::uint8_t reserved105[6];
    std::uint8_t devicePortCount;
    std::uint64_t devicePortAddr[8];
    std::uint8_t reserved176[4];
    std::uint32_t imageComponentCount;
    _MR_IMAGE_COMPONENT imageComponent[8];
    std::uint32_t pendingImageComponentCount;
    _MR_IMAGE_COMPONENT pendingImageComponent[8];
    std::uint8_t maxArms;
    std::uint8_t maxSpans;
    std::uint8_t maxArrays;
    std::uint8_t maxLds;
    char productName[80];
    char serialNo[32];
    std::uint32_t hwPresent; ///< bit 0 cache backup unit, bit 1 alarm
    std::uint32_t currentFwTime;
    std::uint8_t reserved1464[8];
    std::uint16_t ldPresentCount;
    std::uint16_t ldDegradedCount;
    std::uint16_t ldOfflineCount;
    std::uint16_t pdPresentCount;
    std::uint16_t pdDiskPresentCount;
    std::uint16_t pdDiskPredFailureCount;
    std::uint16_t pdDiskFailedCount;
    std::uint8_t reserved1486[2];
    std::uint16_t memorySize; ///< MB
    std::uint8_t reserved1490[2];
    std::uint16_t memCorrectableErrorCount;
    std::uint16_t memUncorrectableErrorCount;
    std::uint8_t reserved1496[4];
    std::uint32_t raidLevels; ///< the first byte holds the levels that can be built
    std::uint32_t adapterOperations;
    std::uint32_t ldOperations;
    std::uint8_t stripeSizeMin; ///< stripe size code
    std::uint8_t stripeSizeMax;
    std::uint8_t reserved1514[2];
    std::uint32_t pdOperations;
    std::uint8_t reserved1520[16];
    _MR_CTRL_PROP properties;
    char packageVersion[96];
    std::uint8_t reserved1696[192];
    std::uint16_t pdsForRaidLevel[16]; ///< low 4 bits minimum, upper 12 bits maximum
    std::uint16_t maxPds;
    std::uint8_t reserved1922[14];
    std::uint16_t cacheCadeCapacity;
    std::uint8_t reserved1938[110];
};
ZEB_WIRE_RECORD(_MR_CTRL_INFO, 2048, published, ZEB_FIELD(vendorId, 0), ZEB_FIELD(deviceId, 2),
                ZEB_FIELD(subVendorId, 4), ZEB_FIELD(subDeviceId, 6), ZEB_FIELD(hostInterfaceType, 32),
                ZEB_FIELD(hostPortCount, 39), ZEB_FIELD(hostPortAddr, 40), ZEB_FIELD(deviceInterfaceType, 104),
                ZEB_FIELD(devicePortCount, 111), ZEB_FIELD(devicePortAddr, 112), ZEB_FIELD(imageComponentCount, 180),
                ZEB_FIELD(imageComponent, 184), ZEB_FIELD(pendingImageComponentCount, 760),
                ZEB_FIELD(pendingImageComponent, 764), ZEB_FIELD(maxArms, 1340), ZEB_FIELD(maxSpans, 1341),
                ZEB_FIELD(maxArrays, 1342), ZEB_FIELD(maxLds, 1343), ZEB_FIELD(productName, 1344),
                ZEB_FIELD(serialNo, 1424), ZEB_FIELD(hwPresent, 1456), ZEB_FIELD(currentFwTime, 1460),
                ZEB_FIELD(ldPresentCount, 1472), ZEB_FIELD(ldDegradedCount, 1474), ZEB_FIELD(ldOfflineCount, 1476),
                ZEB_FIELD(pdPresentCount, 1478), ZEB_FIELD(pdDiskPresentCount, 1480),
                ZEB_FIELD(pdDiskPredFailureCount, 1482), ZEB_FIELD(pdDiskFailedCount, 1484),
                ZEB_FIELD(memorySize, 1488), ZEB_FIELD(memCorrectableErrorCount, 1492),
                ZEB_FIELD(memUncorrectableErrorCount, 1494), ZEB_FIELD(raidLevels, 1500),
                ZEB_FIELD(adapterOperations, 1504), ZEB_FIELD(ldOperations, 1508), ZEB_FIELD(stripeSizeMin, 1512),
                ZEB_FIELD(stripeSizeMax, 1513), ZEB_FIELD(pdOperations, 1516), ZEB_FIELD(properties, 1536),
                ZEB_FIELD(packageVersion, 1600), ZEB_FIELD(pdsForRaidLevel, 1888), ZEB_FIELD(maxPds, 1920, given),
                ZEB_FIELD(cacheCadeCapacity, 1936, given));

inline constexpr std::uint32_t kHwCacheBackup = 1U << 0;
inline constexpr std::uint32_t kHwAlarm = 1U << 1;
inline constexpr std::uint32_t kAdapterOpSnapshot = 1U << 30; ///< bit 6 of byte 1507
inline constexpr std::uint32_t kLdOpReadPolicy = 1U << 0;
inline constexpr std::uint32_t kLdOpWritePolicy = 1U << 1;
inline constexpr std::uint32_t kLdOpIoPolicy = 1U << 2;
inline constexpr std::uint32_t kLdOpAccessPolicy = 1U << 3;
inline constexpr std::uint32_t kLdOpDiskCachePolicy = 1U << 4;
inline constexpr std::uint32_t kLdOpFastPath = 1U << 10; ///< bit 2 of byte 1509

struct _MR_DRV_PCI_INFORMATION {
    std::uint32_t bus;
    std::uint8_t device;
    std::uint8_t function;
    std::uint8_t reserved[106];
};
ZEB_WIRE_RECORD(_MR_DRV_PCI_INFORMATION, 112, published, ZEB_FIELD(bus, 0), ZEB_FIELD(device, 4),
                ZEB_FIELD(function, 5));

struct _MR_DRV_DRIVER_VERSION {
    char signature[12];
    char osName[16];
    char osVersion[12];
    char driverName[20];
    char driverVersion[32];
    char releaseDate[20];
};
ZEB_WIRE_RECORD(_MR_DRV_DRIVER_VERSION, 112, published, ZEB_FIELD(signature, 0), ZEB_FIELD(osName, 12),
                ZEB_FIELD(osVersion, 28), ZEB_FIELD(driverName, 40), ZEB_FIELD(driverVersion, 60),
                ZEB_FIELD(releaseDate, 92));

struct _MR_PR_PROPERTIES {
    std::uint8_t mode; ///< 0 automatic, 1 manual, 2 disabled
    std::uint8_t maxPds;
    std::uint8_t reserved2;
    std::uint8_t excludedLdCount;
    std::uint16_t excludedLd[64];
    std::uint8_t currentPdMap[32];
    std::uint8_t lastPdMap[32];
    std::uint32_t nextExecution; ///< seconds since 2000-01-01
    std::uint32_t executionFrequency; ///< seconds
    std::uint32_t clearFrequency; ///< seconds
};
ZEB_WIRE_RECORD(_MR_PR_PROPERTIES, 208, published, ZEB_FIELD(mode, 0), ZEB_FIELD(maxPds, 1),
                ZEB_FIELD(excludedLdCount, 3), ZEB_FIELD(excludedLd, 4), ZEB_FIELD(currentPdMap, 132),
                ZEB_FIELD(lastPdMap, 164), ZEB_FIELD(nextExecution, 196), ZEB_FIELD(executionFrequency, 200),
                ZEB_FIELD(clearFrequency, 204));

struct _MR_MFC_DEFAULTS {
    std::uint8_t reserved0[52];
    std::uint8_t failPdOnSmartError;
    std::uint8_t reserved53[19];
};
ZEB_WIRE_RECORD(_MR_MFC_DEFAULTS, 72, given, ZEB_FIELD(failPdOnSmartError, 52));

struct _SL_LD_OS_MAP_ENTRY {
    std::uint32_t targetId;
    std::uint32_t partitionArg; ///< the value that the partition request needs
    char osDeviceName[28];
};
ZEB_WIRE_RECORD(_SL_LD_OS_MAP_ENTRY, 36, chosen, ZEB_FIELD(targetId, 0), ZEB_FIELD(partitionArg, 4),
                ZEB_FIELD(osDeviceName, 8));

struct _SL_LD_OS_MAP_T {
    std::uint32_t count;
    _SL_LD_OS_MAP_ENTRY entry[256];
};
ZEB_WIRE_RECORD(_SL_LD_OS_MAP_T, 9220, given, ZEB_FIELD(count, 0), ZEB_FIELD(entry, 4));

struct _SL_PARTITION_INFO_T {
    std::uint64_t reserved0;
    std::uint64_t osInstalled; ///< non-zero: an operating system is installed
    std::uint8_t reserved16[104];
};
ZEB_WIRE_RECORD(_SL_PARTITION_INFO_T, 120, given, ZEB_FIELD(osInstalled, 8));

/// What the library hands back for a partition request; only its head is kept.
inline constexpr std::uint32_t kPartitionReplySize = 14344;

struct _MR_FOREIGN_CFG_GUIDS {
    std::uint32_t count;
    std::uint8_t guid[8][24];
};
ZEB_WIRE_RECORD(_MR_FOREIGN_CFG_GUIDS, 196, published, ZEB_FIELD(count, 0), ZEB_FIELD(guid, 4));

#pragma pack(pop)

} // namespace wire
