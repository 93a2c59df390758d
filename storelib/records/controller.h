// Controller records: identity, properties, PCI and driver data, patrol read, manufacturing defaults, OS mapping.
#pragma once

#include "storelib/records/wire_record.h"

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
ZEB_WIRE_RECORD(_MR_CTRL_PROP, 64);
ZEB_WIRE_FIELD(_MR_CTRL_PROP, rebuildRate, 8);
ZEB_WIRE_FIELD(_MR_CTRL_PROP, patrolReadRate, 9);
ZEB_WIRE_FIELD(_MR_CTRL_PROP, bgiRate, 10);
ZEB_WIRE_FIELD(_MR_CTRL_PROP, ccRate, 11);
ZEB_WIRE_FIELD(_MR_CTRL_PROP, reconRate, 12);
ZEB_WIRE_FIELD(_MR_CTRL_PROP, cacheFlushInterval, 13);
ZEB_WIRE_FIELD(_MR_CTRL_PROP, alarmEnable, 18);
ZEB_WIRE_FIELD(_MR_CTRL_PROP, disableAutoRebuild, 19);
ZEB_WIRE_FIELD(_MR_CTRL_PROP, onOff, 32);

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
ZEB_WIRE_RECORD(_MR_IMAGE_COMPONENT, 72);
ZEB_WIRE_FIELD(_MR_IMAGE_COMPONENT, version, 8);
ZEB_WIRE_FIELD(_MR_IMAGE_COMPONENT, buildDate, 40);
ZEB_WIRE_FIELD(_MR_IMAGE_COMPONENT, buildTime, 56);

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
ZEB_WIRE_RECORD(_MR_CTRL_INFO, 2048);
ZEB_WIRE_FIELD(_MR_CTRL_INFO, deviceId, 2);
ZEB_WIRE_FIELD(_MR_CTRL_INFO, subVendorId, 4);
ZEB_WIRE_FIELD(_MR_CTRL_INFO, subDeviceId, 6);
ZEB_WIRE_FIELD(_MR_CTRL_INFO, hostPortCount, 39);
ZEB_WIRE_FIELD(_MR_CTRL_INFO, devicePortCount, 111);
ZEB_WIRE_FIELD(_MR_CTRL_INFO, devicePortAddr, 112);
ZEB_WIRE_FIELD(_MR_CTRL_INFO, imageComponentCount, 180);
ZEB_WIRE_FIELD(_MR_CTRL_INFO, imageComponent, 184);
ZEB_WIRE_FIELD(_MR_CTRL_INFO, pendingImageComponentCount, 760);
ZEB_WIRE_FIELD(_MR_CTRL_INFO, maxArms, 1340);
ZEB_WIRE_FIELD(_MR_CTRL_INFO, maxSpans, 1341);
ZEB_WIRE_FIELD(_MR_CTRL_INFO, maxArrays, 1342);
ZEB_WIRE_FIELD(_MR_CTRL_INFO, maxLds, 1343);
ZEB_WIRE_FIELD(_MR_CTRL_INFO, productName, 1344);
ZEB_WIRE_FIELD(_MR_CTRL_INFO, serialNo, 1424);
ZEB_WIRE_FIELD(_MR_CTRL_INFO, hwPresent, 1456);
ZEB_WIRE_FIELD(_MR_CTRL_INFO, currentFwTime, 1460);
ZEB_WIRE_FIELD(_MR_CTRL_INFO, ldPresentCount, 1472);
ZEB_WIRE_FIELD(_MR_CTRL_INFO, ldDegradedCount, 1474);
ZEB_WIRE_FIELD(_MR_CTRL_INFO, ldOfflineCount, 1476);
ZEB_WIRE_FIELD(_MR_CTRL_INFO, pdPresentCount, 1478);
ZEB_WIRE_FIELD(_MR_CTRL_INFO, pdDiskPresentCount, 1480);
ZEB_WIRE_FIELD(_MR_CTRL_INFO, pdDiskPredFailureCount, 1482);
ZEB_WIRE_FIELD(_MR_CTRL_INFO, pdDiskFailedCount, 1484);
ZEB_WIRE_FIELD(_MR_CTRL_INFO, memorySize, 1488);
ZEB_WIRE_FIELD(_MR_CTRL_INFO, memCorrectableErrorCount, 1492);
ZEB_WIRE_FIELD(_MR_CTRL_INFO, memUncorrectableErrorCount, 1494);
ZEB_WIRE_FIELD(_MR_CTRL_INFO, raidLevels, 1500);
ZEB_WIRE_FIELD(_MR_CTRL_INFO, adapterOperations, 1504);
ZEB_WIRE_FIELD(_MR_CTRL_INFO, ldOperations, 1508);
ZEB_WIRE_FIELD(_MR_CTRL_INFO, stripeSizeMin, 1512);
ZEB_WIRE_FIELD(_MR_CTRL_INFO, stripeSizeMax, 1513);
ZEB_WIRE_FIELD(_MR_CTRL_INFO, pdOperations, 1516);
ZEB_WIRE_FIELD(_MR_CTRL_INFO, properties, 1536);
ZEB_WIRE_FIELD(_MR_CTRL_INFO, packageVersion, 1600);
ZEB_WIRE_FIELD(_MR_CTRL_INFO, pdsForRaidLevel, 1888);
ZEB_WIRE_FIELD(_MR_CTRL_INFO, maxPds, 1920);
ZEB_WIRE_FIELD(_MR_CTRL_INFO, cacheCadeCapacity, 1936);

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
ZEB_WIRE_RECORD(_MR_DRV_PCI_INFORMATION, 112);
ZEB_WIRE_FIELD(_MR_DRV_PCI_INFORMATION, device, 4);
ZEB_WIRE_FIELD(_MR_DRV_PCI_INFORMATION, function, 5);

struct _MR_DRV_DRIVER_VERSION {
    char signature[12];
    char osName[16];
    char osVersion[12];
    char driverName[20];
    char driverVersion[32];
    char releaseDate[20];
};
ZEB_WIRE_RECORD(_MR_DRV_DRIVER_VERSION, 112);
ZEB_WIRE_FIELD(_MR_DRV_DRIVER_VERSION, osName, 12);
ZEB_WIRE_FIELD(_MR_DRV_DRIVER_VERSION, osVersion, 28);
ZEB_WIRE_FIELD(_MR_DRV_DRIVER_VERSION, driverName, 40);
ZEB_WIRE_FIELD(_MR_DRV_DRIVER_VERSION, driverVersion, 60);
ZEB_WIRE_FIELD(_MR_DRV_DRIVER_VERSION, releaseDate, 92);

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
ZEB_WIRE_RECORD(_MR_PR_PROPERTIES, 208);
ZEB_WIRE_FIELD(_MR_PR_PROPERTIES, maxPds, 1);
ZEB_WIRE_FIELD(_MR_PR_PROPERTIES, excludedLdCount, 3);
ZEB_WIRE_FIELD(_MR_PR_PROPERTIES, excludedLd, 4);
ZEB_WIRE_FIELD(_MR_PR_PROPERTIES, currentPdMap, 132);
ZEB_WIRE_FIELD(_MR_PR_PROPERTIES, nextExecution, 196);
ZEB_WIRE_FIELD(_MR_PR_PROPERTIES, executionFrequency, 200);
ZEB_WIRE_FIELD(_MR_PR_PROPERTIES, clearFrequency, 204);

struct _MR_MFC_DEFAULTS {
    std::uint8_t reserved0[52];
    std::uint8_t failPdOnSmartError;
    std::uint8_t reserved53[19];
};
ZEB_WIRE_RECORD(_MR_MFC_DEFAULTS, 72);
ZEB_WIRE_FIELD(_MR_MFC_DEFAULTS, failPdOnSmartError, 52);

struct _SL_LD_OS_MAP_ENTRY {
    std::uint32_t targetId;
    std::uint32_t partitionArg; ///< the value that the partition request needs
    char osDeviceName[28];
};
ZEB_WIRE_RECORD(_SL_LD_OS_MAP_ENTRY, 36);
ZEB_WIRE_FIELD(_SL_LD_OS_MAP_ENTRY, partitionArg, 4);
ZEB_WIRE_FIELD(_SL_LD_OS_MAP_ENTRY, osDeviceName, 8);

struct _SL_LD_OS_MAP_T {
    std::uint32_t count;
    _SL_LD_OS_MAP_ENTRY entry[256];
};
ZEB_WIRE_RECORD(_SL_LD_OS_MAP_T, 9220);
ZEB_WIRE_FIELD(_SL_LD_OS_MAP_T, entry, 4);

struct _SL_PARTITION_INFO_T {
    std::uint64_t reserved0;
    std::uint64_t osInstalled; ///< non-zero: an operating system is installed
    std::uint8_t reserved16[104];
};
ZEB_WIRE_RECORD(_SL_PARTITION_INFO_T, 120);
ZEB_WIRE_FIELD(_SL_PARTITION_INFO_T, osInstalled, 8);

/// What the library hands back for a partition request; only its head is kept.
inline constexpr std::uint32_t kPartitionReplySize = 14344;

struct _MR_FOREIGN_CFG_GUIDS {
    std::uint32_t count;
    std::uint8_t guid[8][24];
};
ZEB_WIRE_RECORD(_MR_FOREIGN_CFG_GUIDS, 196);
ZEB_WIRE_FIELD(_MR_FOREIGN_CFG_GUIDS, guid, 4);

#pragma pack(pop)
