// A controller and everything behind it.
#pragma once

#include "facts/cache_backup.h"
#include "facts/enclosure.h"
#include "facts/logical_drive.h"
#include "facts/physical_drive.h"
#include "facts/raid_group.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace facts {

struct FirmwareImage {
    std::optional<std::string> name;
    std::optional<std::string> version;
    std::optional<std::string> buildDate;
    std::optional<std::string> buildTime;
};

struct Capabilities {
    std::vector<std::string_view> raidLevels;
    bool snapshot = false;
    bool cachecade = false;
    bool fastpath = false;
    unsigned maxPhysicalDrives = 0;
    unsigned maxLogicalDrives = 0;
    std::optional<std::uint32_t> stripeMinBytes;
    std::optional<std::uint32_t> stripeMaxBytes;
};

/// What the controller's own information tells.
struct ControllerInfo {
    std::optional<std::string> product;
    std::optional<std::string> serial;
    std::uint16_t vendorId = 0;
    std::uint16_t deviceId = 0;
    std::uint16_t subsystemVendorId = 0;
    std::uint16_t subsystemDeviceId = 0;
    std::optional<std::string> firmwarePackage;
    std::optional<std::string> firmwareVersion;
    std::optional<std::string> firmwareBuildTime;
    std::optional<std::string> biosVersion;
    std::vector<FirmwareImage> images;
    std::vector<FirmwareImage> pendingImages; ///< flashed, run after the next start
    std::uint64_t memoryBytes = 0;
    unsigned memoryCorrectableErrors = 0;
    unsigned memoryUncorrectableErrors = 0;
    unsigned portCount = 0;
    std::vector<std::string> portAddresses; ///< 16 hexadecimal digits each
    bool alarmPresent = false;
    Capabilities capabilities;
};

struct Driver {
    std::optional<std::string> name;
    std::optional<std::string> version;
    std::optional<std::string> releaseDate;
};

/// Rates are percentages.
struct Settings {
    std::optional<bool> alarmEnabled;
    std::optional<bool> autoRebuild;
    bool copyback = false;
    bool smartCopybackHdd = false;
    bool smartCopybackSsd = false;
    bool nativeCommandQueuing = false;
    unsigned cacheFlushIntervalSeconds = 0;
    unsigned rebuildRate = 0;
    unsigned patrolReadRate = 0;
    unsigned backgroundInitializationRate = 0;
    unsigned consistencyCheckRate = 0;
    unsigned reconstructionRate = 0;
};

struct PatrolRead {
    Word mode;
    std::uint32_t intervalSeconds = 0;
    std::optional<std::string> nextStart;
};

/// How many drives stand by.
struct HotSpares {
    unsigned global = 0;
    unsigned dedicated = 0;
};

/// What is missing could not be read, but for the cache backup unit, which need not be fitted.
struct Controller {
    std::uint8_t number = 0;
    std::uint32_t id = 0;
    std::optional<Failure> error; ///< its own information could not be read, and nothing more was asked
    std::optional<ControllerInfo> info;
    std::optional<std::string> pciAddress;
    std::optional<Driver> driver;
    std::optional<std::string> clock;
    std::optional<Settings> settings;
    std::optional<bool> failDriveOnSmartError;
    std::optional<PatrolRead> patrolRead;
    std::optional<CacheBackup> cacheBackup;
    std::optional<std::vector<Enclosure>> enclosures;
    std::optional<std::vector<PhysicalDrive>> physicalDrives;
    std::optional<std::vector<RaidGroup>> raidGroups;
    std::optional<HotSpares> hotSpares;
    std::optional<std::vector<LogicalDrive>> logicalDrives;

    /// What is listed under that device id, or number; null when nothing is.
    const PhysicalDrive* driveOf(std::uint16_t deviceId) const;
    const LogicalDrive* ldOf(std::uint8_t ldNo) const;
};

} // namespace facts
