// The hardware behind the simulated library: controllers with their drives, arrays, LDs, spares, enclosures and
// background work.
//
// Queries encode it into wire records, operations change it by the firmware's rules, scenario files describe it.
#pragma once

#include "storelib/records/configuration.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zebsim {

/// Background work that is under way.
struct Progress {
    double percent = 0;
    double elapsed = 0; ///< seconds
};
using Task = std::optional<Progress>;

enum Interface : std::uint8_t { kUnknownInterface = 0, kParallelScsi = 1, kSas = 2, kSata = 3, kFibreChannel = 4 };
enum Media : std::uint8_t { kHdd = 0, kSsd = 1 };

struct Drive {
    std::uint16_t deviceId = 0;
    std::uint8_t slot = 0;
    std::uint16_t enclosureId = kNoDevice;
    std::uint16_t seq = 0;
    std::uint16_t state = kPdUnconfiguredGood;
    std::string vendor;
    std::string product;
    std::string revision;
    std::uint8_t media = kHdd;
    std::uint8_t interface = kSas;
    std::uint64_t rawBlocks = 0;
    std::uint64_t blocks = 0; ///< coerced size
    std::uint32_t mediaErrors = 0;
    std::uint32_t otherErrors = 0;
    std::uint32_t predictiveFailures = 0;
    std::vector<std::uint64_t> sasAddresses;
    std::uint8_t pathCount = 0; ///< as reported; may differ from the number of addresses
    std::optional<std::uint8_t> temperature; ///< degrees Celsius; none: no temperature page
    std::uint8_t powerState = 0;
    std::uint8_t deviceSpeed = 0;
    std::uint8_t linkSpeed = 0;
    bool boot = false; ///< sector 0 holds an active partition entry
    bool foreign = false; ///< carries a configuration of another controller
    bool locate = false; ///< its LED blinks
    std::uint16_t copybackPartner = kNoDevice;
    Task rebuild;
    Task patrolRead;
    Task clear;
    Task copyback; ///< this drive is written to; the partner is its source
};

struct Array {
    std::uint16_t ref = 0;
    std::uint64_t blocks = 0; ///< usable on each drive
    std::vector<std::uint16_t> drives; ///< device ids by position; kNoDevice = empty position
};

struct Span {
    std::uint16_t array = 0;
    std::uint64_t startBlock = 0;
    std::uint64_t blocks = 0; ///< on each drive
};

struct LogicalDrive {
    std::uint8_t id = 0;
    std::uint16_t seq = 0;
    std::string name;
    std::uint8_t level = 0; ///< 0, 1, 5, 6, 10
    std::vector<Span> spans;
    std::uint8_t stripe = 7;
    std::uint8_t state = kLdOptimal;
    std::uint8_t cachePolicy = 0;
    std::uint8_t currentCachePolicy = 0;
    std::uint8_t accessPolicy = 0;
    std::uint8_t diskCachePolicy = 0;
    std::uint8_t initState = 0;
    std::uint8_t snapshotFlags = 0;
    bool noBackgroundInit = false;
    bool consistent = true;
    bool snapshotSource = false;
    bool repository = false;
    bool cacheCade = false;
    bool osInstalled = false;
    std::vector<std::string> osDevices;
    Task check;
    Task backgroundInit;
    Task init;
    Task reconstruction;
};

struct Spare {
    std::uint16_t deviceId = 0;
    std::vector<std::uint16_t> arrays; ///< none: a global spare
    bool revertible = true;
    bool enclosureAffinity = false;
};

struct ForeignConfig {
    std::string guid; ///< up to 24 bytes
    std::vector<Array> arrays;
    std::vector<LogicalDrive> lds;
};

struct Sensor {
    std::uint32_t status = 1;
    std::int32_t value = 0; ///< Celsius, rpm, or hundredths of a volt
};

struct Enclosure {
    std::uint16_t deviceId = 0;
    std::uint8_t index = 0;
    std::uint8_t slots = 0;
    std::uint8_t type = 2;
    std::uint8_t connector = 0; ///< index of the SAS connector
    std::uint64_t logicalId = 0;
    std::string vendor;
    std::string product;
    std::string revision;
    std::vector<Sensor> powerSupplies;
    std::vector<Sensor> fans;
    std::vector<Sensor> temperatures;
    std::vector<Sensor> alarms;
    std::vector<Sensor> electronics;
    std::vector<Sensor> voltages;
};

struct Connector {
    std::uint8_t location = 0;
    std::string name;
};

struct CacheBackup {
    std::uint8_t type = 2;
    std::uint16_t voltage = 0; ///< mV
    std::int16_t current = 0; ///< mA
    std::uint16_t temperature = 0; ///< degrees Celsius
    std::uint32_t status = 0; ///< firmware status bits, the learn cycle's excepted
    std::uint16_t remainingCapacity = 0;
    std::uint16_t fullCapacity = 0;
    std::uint16_t relativeCharge = 100; ///< percent
    std::uint16_t absoluteCharge = 100; ///< percent
    std::uint16_t cycleCount = 0;
    std::uint32_t manufactureDate = 0;
    std::uint16_t designCapacity = 0;
    std::uint16_t designVoltage = 0;
    std::uint16_t serialNo = 0;
    std::string maker;
    std::string deviceName;
    std::string chemistry;
    std::uint32_t learnPeriod = 0; ///< seconds
    std::uint32_t nextLearn = 0; ///< seconds since 2000-01-01
    std::uint8_t learnDelay = 0; ///< hours
    std::uint8_t autoLearn = 0;
    Task learn;
};

struct Properties {
    std::uint16_t seq = 0;
    std::uint8_t rebuildRate = 30;
    std::uint8_t patrolReadRate = 30;
    std::uint8_t bgiRate = 30;
    std::uint8_t ccRate = 30;
    std::uint8_t reconRate = 30;
    std::uint8_t cacheFlushInterval = 4;
    std::uint8_t alarmEnable = 0;
    std::uint8_t disableAutoRebuild = 0;
    std::uint32_t onOff = 0;
    std::array<std::uint8_t, 64> otherBytes{}; ///< the record's bytes that no field above names
};

struct PatrolRead {
    std::uint8_t mode = 0;
    std::uint8_t maxPds = 255;
    std::vector<std::uint16_t> excludedLds;
    std::uint32_t nextExecution = 0;
    std::uint32_t frequency = 604800;
    std::uint32_t clearFrequency = 0;
    bool running = false;
};

struct ImageComponent {
    std::string name;
    std::string version;
    std::string buildDate;
    std::string buildTime;
};

struct Driver {
    std::string signature;
    std::string osName;
    std::string osVersion;
    std::string name;
    std::string version;
    std::string releaseDate;
};

struct PdLimit {
    std::uint16_t minimum = 0;
    std::uint16_t maximum = 0;
};
inline constexpr unsigned kPdLimits = 6; ///< RAID0, RAID1, RAID5, RAID1E, RAID6, RAID10

struct Controller {
    std::uint32_t id = 0;
    std::uint16_t vendorId = 0;
    std::uint16_t pciDeviceId = 0;
    std::uint16_t subVendorId = 0;
    std::uint16_t subDeviceId = 0;
    std::uint32_t pciBus = 0;
    std::uint8_t pciDevice = 0;
    std::uint8_t pciFunction = 0;
    std::string product;
    std::string serial;
    std::string packageVersion;
    std::vector<ImageComponent> images;
    Driver driver;
    std::uint8_t devicePorts = 0;
    std::vector<std::uint64_t> portAddresses;
    std::uint16_t memory = 0; ///< MB
    std::uint16_t memoryCorrectableErrors = 0;
    std::uint16_t memoryUncorrectableErrors = 0;
    bool alarm = false;
    bool snapshot = false;
    bool fastPath = false;
    std::uint8_t raidLevels = 0;
    std::uint32_t adapterOperations = 0;
    std::uint32_t ldOperations = 0;
    std::uint32_t pdOperations = 0;
    std::uint8_t stripeMin = 0;
    std::uint8_t stripeMax = 0;
    std::array<PdLimit, kPdLimits> pdLimits{};
    std::uint16_t maxPds = 0;
    std::uint16_t cacheCadeCapacity = 0;
    std::uint8_t maxLds = 64;
    std::uint8_t maxSpares = 16;
    bool pinnedCache = false; ///< holds cached data of a lost LD: the configuration cannot be changed
    std::uint32_t time = 0; ///< seconds since 2000-01-01
    double timeRest = 0; ///< the fraction of a second that has passed beyond it
    Properties properties;
    PatrolRead patrolRead;
    std::array<std::uint8_t, 72> mfcDefaults{};
    std::vector<Enclosure> enclosures;
    std::vector<Connector> connectors;
    std::optional<CacheBackup> cacheBackup;
    std::vector<Drive> drives;
    std::vector<Array> arrays;
    std::vector<LogicalDrive> lds;
    std::vector<Spare> spares;
    std::vector<ForeignConfig> foreign;
};

struct Model {
    std::string description;
    std::vector<Controller> controllers;
    bool strictDelete = false; ///< an LD whose drives rebuild, or that is checked, cannot be deleted
    std::optional<double> savedAt; ///< real clock of the moment that a state file describes, s since 1970
    std::string faults; ///< the scenario's faults as JSON text
};

/// Lookups; null when there is no such object.
Controller* findController(Model& model, std::uint32_t id);
Drive* findDrive(Controller& ctrl, std::uint16_t deviceId);
const Drive* findDrive(const Controller& ctrl, std::uint16_t deviceId);
Array* findArray(Controller& ctrl, std::uint16_t ref);
const Array* findArray(const Controller& ctrl, std::uint16_t ref);
LogicalDrive* findLd(Controller& ctrl, std::uint8_t id);
const Spare* findSpare(const Controller& ctrl, std::uint16_t deviceId);
const Enclosure* findEnclosure(const Controller& ctrl, std::uint16_t deviceId);

/// The array that has the drive in a position, or null.
Array* arrayOfDrive(Controller& ctrl, std::uint16_t deviceId);
const Array* arrayOfDrive(const Controller& ctrl, std::uint16_t deviceId);

/// True when the LD has a span on the array.
bool usesArray(const LogicalDrive& ld, std::uint16_t ref);

/// The LDs with a span on the array, by their place on it.
std::vector<const LogicalDrive*> ldsOfArray(const Controller& ctrl, std::uint16_t ref);

/// The arrays that belong to one RAID group with the given one: those that LDs span together.
std::vector<const Array*> raidGroupOf(const Controller& ctrl, const Array& array);

/// Unused stretches of the array, ascending.
std::vector<Span> freeSegments(const Controller& ctrl, const Array& array);

/// Usable blocks that `blocks` on each of `drives` drives of one span give at a level.
std::uint64_t usableBlocks(std::uint8_t level, std::size_t drives, std::uint64_t blocks);

/// Usable blocks of an LD.
std::uint64_t ldBlocks(const Controller& ctrl, const LogicalDrive& ld);

/// Blocks of the smallest drive in the array; 0 when every position is empty.
std::uint64_t smallestDrive(const Controller& ctrl, const Array& array);

/// The LD state that follows from its drives: `arrays` are those that its spans name.
std::uint8_t derivedLdState(const Controller& ctrl, const LogicalDrive& ld, const std::vector<Array>& arrays);

/// The cache policy in force for a default one: write back falls to write through while no unit backs the cache.
std::uint8_t effectiveCachePolicy(const Controller& ctrl, std::uint8_t defaultPolicy);

/// True for a level that survives the loss of a drive.
inline bool isRedundant(std::uint8_t level) {
    return level != 0;
}

} // namespace zebsim
