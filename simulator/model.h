// The hardware behind the simulated library: controllers with their drives, arrays, LDs, spares, enclosures and
// background work.
//
// Queries encode it into wire records, operations change it by the firmware's rules, scenario files describe it.
#pragma once

#include "storelib/records/configuration.h"
#include "storelib/records/controller.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zebsim {

/// The whole, in percent: of progress and of the rates.
inline constexpr std::uint8_t kWholePercent = 100;

/// Background work that is under way.
struct Progress {
    double percent = 0;
    double elapsed = 0; ///< seconds
};
using Task = std::optional<Progress>;

/// Codes of the drives' interfaces and media, as the PD information carries them.
enum Interface : std::uint8_t { kUnknownInterface = 0, kParallelScsi = 1, kSas = 2, kSata = 3, kFibreChannel = 4 };
enum Media : std::uint8_t { kHdd = 0, kSsd = 1 };

/// The code of a link or device speed of 6 Gb/s.
inline constexpr std::uint8_t kSpeed6G = 3;

// The initial values of the structures are the defaults of the scenario form; where a default follows from other parts
// of the hardware, it stands in the form (form_*.h), and the value here means nothing.

/// A physical drive. Whether it is in an array or a spare is told by those, not by the drive.
struct Drive {
    std::uint16_t deviceId = 0;
    std::uint8_t slot = 0;
    std::uint16_t enclosureId = kNoDevice; ///< device id; kNoDevice = in no enclosure
    std::uint16_t seq = 0; ///< moves on with each change; a request with another number is stale
    std::uint16_t state = kPdUnconfiguredGood;
    std::string vendor;
    std::string product;
    std::string revision = "0104";
    std::uint8_t media = kHdd;
    std::uint8_t interface = kSas;
    std::uint64_t rawBlocks = 0;
    std::uint64_t blocks = 584843264; ///< coerced size
    std::uint32_t mediaErrors = 0;
    std::uint32_t otherErrors = 0;
    std::uint32_t predictiveFailures = 0;
    std::vector<std::uint64_t> sasAddresses;
    std::uint8_t pathCount = 0; ///< as reported; may differ from the number of addresses
    std::optional<std::uint8_t> temperature = 28; ///< degrees Celsius; none: no temperature page
    std::uint8_t powerState = 0;
    std::uint8_t deviceSpeed = kSpeed6G;
    std::uint8_t linkSpeed = kSpeed6G;
    bool boot = false; ///< sector 0 holds an active partition entry
    bool foreign = false; ///< carries a configuration of another controller
    bool locate = false; ///< its LED blinks
    std::uint16_t copybackPartner = kNoDevice;
    Task rebuild;
    Task patrolRead;
    Task clear;
    Task copyback; ///< this drive is written to; the partner is its source
};

/// Drives that are used together. An array lives as long as an LD has a span on it.
struct Array {
    std::uint16_t ref = 0;
    std::uint64_t blocks = 0; ///< usable on each drive
    std::vector<std::uint16_t> drives; ///< device ids by position; kNoDevice = empty position
};

/// A stretch of one array.
struct Span {
    std::uint16_t array = 0; ///< the array's reference
    std::uint64_t startBlock = 0;
    std::uint64_t blocks = 0; ///< on each drive
};

struct LogicalDrive {
    std::uint8_t id = 0; ///< target id
    std::uint16_t seq = 0; ///< as a drive's
    std::string name; ///< up to 16 bytes
    std::uint8_t level = 0; ///< 0, 1, 5, 6, 10
    std::vector<Span> spans;
    std::uint8_t stripe = 7; ///< stripe size code
    std::uint8_t state = kLdOptimal; ///< follows from the drives, see derivedLdState()
    std::uint8_t cachePolicy = 0; ///< the default one
    std::uint8_t currentCachePolicy = 0; ///< the one in force
    std::uint8_t accessPolicy = 0;
    std::uint8_t diskCachePolicy = 2; ///< disabled
    std::uint8_t initState = 0;
    std::uint8_t snapshotFlags = 0;
    bool noBackgroundInit = false;
    bool consistent = true;
    bool snapshotSource = false;
    bool repository = false; ///< of snapshots
    bool cacheCade = false;
    bool osInstalled = false;
    std::vector<std::string> osDevices; ///< paths that the operating system has for it
    Task check;
    Task backgroundInit;
    Task init;
    Task reconstruction;
};

/// A hot spare: a drive in no array that takes the place of a lost one.
struct Spare {
    std::uint16_t deviceId = 0;
    std::vector<std::uint16_t> arrays; ///< references of those it is dedicated to; none: a global spare
    bool revertible = true;
    bool enclosureAffinity = false;
};

/// What drives of another controller bring along. Its drives are in no own array and marked foreign.
struct ForeignConfig {
    std::string guid = "ZEBSIM FOREIGN CONFIG"; ///< up to 24 bytes
    std::vector<Array> arrays;
    std::vector<LogicalDrive> lds;
};

/// An element of an enclosure (SES-2).
struct Sensor {
    std::uint32_t status = 1; ///< element status code; 1 = OK
    std::int32_t value = 0; ///< Celsius, rpm, or hundredths of a volt
};

struct Enclosure {
    std::uint16_t deviceId = 0;
    std::uint8_t index = 0;
    std::uint8_t slots = 16;
    std::uint8_t type = 2; ///< SES
    std::uint8_t connector = 0; ///< index of the SAS connector
    std::uint64_t logicalId = 0;
    std::string vendor = "QUORVEL";
    std::string product = "Pellucor Bay 16";
    std::string revision = "0007";
    std::vector<Sensor> powerSupplies;
    std::vector<Sensor> fans;
    std::vector<Sensor> temperatures;
    std::vector<Sensor> alarms;
    std::vector<Sensor> electronics;
    std::vector<Sensor> voltages;
};

/// A SAS connector of the controller.
struct Connector {
    std::uint8_t location = 2; ///< internal
    std::string name = "Port 0 - 3";
};

/// The cache backup unit: a battery or a capacitor that keeps the cache when power is lost.
struct CacheBackup {
    std::uint8_t type = 5; ///< iBBU08
    std::uint16_t voltage = 4062; ///< mV
    std::int16_t current = 0; ///< mA
    std::uint16_t temperature = 26; ///< degrees Celsius
    std::uint32_t status = 0; ///< firmware status bits, the learn cycle's excepted
    std::uint16_t remainingCapacity = 0;
    std::uint16_t fullCapacity = 0;
    std::uint16_t relativeCharge = 100; ///< percent
    std::uint16_t absoluteCharge = 100; ///< percent
    std::uint16_t cycleCount = 3;
    std::uint32_t manufactureDate = 15432;
    std::uint16_t designCapacity = 1350;
    std::uint16_t designVoltage = 3700; ///< mV
    std::uint16_t serialNo = 4711;
    std::string maker = "QUORVEL";
    std::string deviceName = "PLCR-08";
    std::string chemistry = "LION";
    std::uint32_t learnPeriod = 2419200; ///< seconds
    std::uint32_t nextLearn = 759801605; ///< seconds since 2000-01-01
    std::uint8_t learnDelay = 0; ///< hours
    std::uint8_t autoLearn = 0; ///< 0 automatic, 1 disabled, 2 warning only
    Task learn;
};

/// What the unnamed bytes of the properties hold in a controller that nobody has changed.
constexpr std::array<std::uint8_t, 64> usualOtherProperties() {
    std::array<std::uint8_t, 64> bytes{};
    bytes[2] = 0x2C; // predictive failure poll interval, 300 s
    bytes[3] = 0x01;
    bytes[4] = 16; // interrupt throttle count and time
    bytes[6] = 50;
    bytes[14] = 4; // drives that spin up at once, and the delay between them
    bytes[15] = 12;
    bytes[21] = 15; // ECC bucket size and leak rate
    bytes[22] = 0xA0;
    bytes[23] = 0x05;
    return bytes;
}

/// The controller's properties. Rates are percentages.
struct Properties {
    std::uint16_t seq = 7; ///< of the controller
    std::uint8_t rebuildRate = 30;
    std::uint8_t patrolReadRate = 30;
    std::uint8_t bgiRate = 30;
    std::uint8_t ccRate = 30;
    std::uint8_t reconRate = 30;
    std::uint8_t cacheFlushInterval = 4; ///< seconds
    std::uint8_t alarmEnable = 0;
    std::uint8_t disableAutoRebuild = 0;
    std::uint32_t onOff = kPropSmartCopybackHdd;
    std::array<std::uint8_t, 64> otherBytes = usualOtherProperties(); ///< the record's bytes that no field above names
};

inline constexpr std::uint32_t kUsualTime = 757382400; ///< 2024-01-01 00:00:00 in seconds since 2000-01-01

struct PatrolRead {
    std::uint8_t mode = 0; ///< 0 automatic, 1 manual, 2 disabled
    std::uint8_t maxPds = 255;
    std::vector<std::uint16_t> excludedLds; ///< target ids
    std::uint32_t nextExecution = kUsualTime + 97200; ///< seconds since 2000-01-01
    std::uint32_t frequency = 604800; ///< seconds
    std::uint32_t clearFrequency = 0; ///< seconds
    bool running = false;
};

/// The manufacturing defaults as they lie in their record.
constexpr std::array<std::uint8_t, 72> usualMfcDefaults() {
    std::array<std::uint8_t, 72> bytes{};
    bytes[0] = 0x15; // bytes that the tool must carry over
    bytes[71] = 0xA7;
    return bytes;
}

/// A firmware image on the controller.
struct ImageComponent {
    std::string name = "APP";
    std::string version = "5.10.2-0044";
    std::string buildDate = "Jan 11 2023";
    std::string buildTime = "10:24:36";
};

/// The kernel driver that the controller is reached through.
struct Driver {
    std::string signature = "$ZEBSIM$";
    std::string osName = "Linux";
    std::string osVersion = "6.1.0";
    std::string name = "zebsim";
    std::string version = "1.4.0-12";
    std::string releaseDate = "Nov 02 2022";
};

/// How many drives a RAID level takes; a maximum of 0 sets no limit.
struct PdLimit {
    std::uint16_t minimum = 0;
    std::uint16_t maximum = 0;
};
inline constexpr unsigned kPdLimits = 6; ///< rows: RAID0, RAID1, RAID5, RAID1E, RAID6, RAID10

/// A controller with everything behind it.
struct Controller {
    std::uint32_t id = 0; ///< as the controller list names it
    std::uint16_t vendorId = 0x1000;
    std::uint16_t pciDeviceId = 0x0108;
    std::uint16_t subVendorId = 0x5156;
    std::uint16_t subDeviceId = 0x0800;
    std::uint32_t pciBus = 4;
    std::uint8_t pciDevice = 0;
    std::uint8_t pciFunction = 0;
    std::string product = "Quorvel RAID Pellucor 8e";
    std::string serial = "QV00000001";
    std::string packageVersion;
    std::vector<ImageComponent> images;
    std::vector<ImageComponent> pendingImages; ///< flashed, run after the next start
    Driver driver;
    std::uint8_t devicePorts = 8;
    std::vector<std::uint64_t> portAddresses;
    std::uint16_t memory = 512; ///< MB
    std::uint16_t memoryCorrectableErrors = 0;
    std::uint16_t memoryUncorrectableErrors = 0;
    bool alarm = false;
    bool snapshot = false;
    bool fastPath = false;
    std::uint8_t raidLevels = 0x37; ///< RAID0, 1, 5, 6, 10
    std::uint32_t adapterOperations = 0;
    std::uint32_t ldOperations = 0x1F; ///< all policies
    std::uint32_t pdOperations = 0;
    std::uint8_t stripeMin = 4; ///< stripe size codes
    std::uint8_t stripeMax = 11;
    std::array<PdLimit, kPdLimits> pdLimits{{{1, 32}, {2, 2}, {3, 32}, {2, 32}, {3, 32}, {4, 32}}};
    std::uint16_t maxPds = 32;
    std::uint16_t cacheCadeCapacity = 0;
    std::uint8_t maxLds = 64;
    std::uint8_t maxSpares = 16;
    bool pinnedCache = false; ///< holds cached data of a lost LD: the configuration cannot be changed
    std::uint32_t time = kUsualTime; ///< seconds since 2000-01-01
    double timeRest = 0; ///< the fraction of a second that has passed beyond it
    Properties properties;
    PatrolRead patrolRead;
    std::array<std::uint8_t, 72> mfcDefaults = usualMfcDefaults();
    std::vector<Enclosure> enclosures;
    std::vector<Connector> connectors;
    std::optional<CacheBackup> cacheBackup;
    std::vector<Drive> drives;
    std::vector<Array> arrays;
    std::vector<LogicalDrive> lds;
    std::vector<Spare> spares;
    std::vector<ForeignConfig> foreign;
};

/// All that a scenario or a state file describes.
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
