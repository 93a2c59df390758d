#include "tests/storm/hardware.h"

#include <algorithm>
#include <map>
#include <set>
#include <tuple>

#include "simulator/scenario.h"

namespace zebstorm {
namespace {

using namespace zebsim;

constexpr std::uint64_t kSizes[] = {584843264, 584843264, 584843264,  974608384,
                                    389545984, 389545984, 1951170560, 2097152};

Drive randomDrive(Random& random, std::uint8_t slot, std::uint16_t deviceId) {
    Drive drive;
    drive.slot = slot;
    drive.deviceId = deviceId;
    drive.seq = static_cast<std::uint16_t>(random.percent(5) ? 0xFFFF : deviceId + 2);
    drive.media = random.percent(25) ? kSsd : kHdd;
    drive.interface = random.percent(25) ? kSata : kSas;
    drive.vendor = "QUORVEL";
    drive.product = drive.media == kSsd ? "Pellucor SSD 200" : "Pellucor SAS 300";
    drive.blocks = random.oneOf(kSizes);
    drive.rawBlocks = drive.blocks + 1094236;
    if (random.percent(10))
        drive.temperature.reset();
    drive.mediaErrors = random.percent(8) ? 3 : 0;
    drive.predictiveFailures = random.percent(5) ? 1 : 0;
    drive.boot = random.percent(10);
    const std::size_t fate = random.below(100);
    if (fate < 8)
        drive.state = kPdUnconfiguredBad;
    else if (fate < 11)
        drive.state = kPdFailed;
    else if (fate < 15)
        drive.foreign = true;
    else if (fate < 17)
        drive.clear = Progress{static_cast<double>(random.below(100)), 60};
    return drive;
}

/// Drives in the slots of the enclosures, or in slots of their own. Two enclosures have the same slots.
void addDrives(Random& random, Controller& ctrl) {
    const std::size_t enclosures = random.below(100) < 25 ? 0 : random.percent(15) ? 2 : 1;
    std::uint16_t deviceId = 8;
    for (std::size_t i = 0; i < std::max<std::size_t>(enclosures, 1); ++i) {
        std::uint16_t enclosureId = kNoDevice;
        std::uint8_t slots = static_cast<std::uint8_t>(random.between(4, 24));
        if (enclosures != 0) {
            Enclosure enclosure;
            enclosure.deviceId = enclosureId = static_cast<std::uint16_t>(252 + i);
            enclosure.index = static_cast<std::uint8_t>(i + 1);
            enclosure.slots = slots;
            enclosure.type = random.percent(10) ? 3 : 2;
            enclosure.temperatures.resize(random.below(3));
            ctrl.enclosures.push_back(enclosure);
        }
        const unsigned filled = random.percent(10) ? 0 : static_cast<unsigned>(random.between(40, 100));
        for (std::uint8_t slot = 0; slot < slots; ++slot) {
            if (!random.percent(filled))
                continue;
            ctrl.drives.push_back(randomDrive(random, slot, deviceId++));
            ctrl.drives.back().enclosureId = enclosureId;
        }
    }
    // Mostly the drives of a controller are alike, so that something can be built of them.
    if (!ctrl.drives.empty() && random.percent(70)) {
        const Drive first = ctrl.drives.front();
        for (Drive& drive : ctrl.drives) {
            drive.media = first.media;
            drive.interface = first.interface;
            drive.blocks = random.percent(80) ? first.blocks : drive.blocks;
            drive.rawBlocks = drive.blocks + 1094236;
        }
    }
}

std::vector<Drive*> freeDrives(Controller& ctrl, const Drive& like) {
    std::vector<Drive*> free;
    for (Drive& drive : ctrl.drives)
        if (drive.state == kPdUnconfiguredGood && !drive.foreign && !drive.clear && drive.media == like.media &&
            drive.interface == like.interface && arrayOfDrive(ctrl, drive.deviceId) == nullptr)
            free.push_back(&drive);
    return free;
}

void ailMember(Random& random, Drive& drive) {
    const std::size_t fate = random.below(100);
    drive.state = kPdOnline;
    if (fate < 4)
        drive.state = kPdOffline;
    else if (fate < 7)
        drive.state = kPdFailed;
    else if (fate < 10) {
        drive.state = kPdRebuild;
        drive.rebuild = Progress{static_cast<double>(random.below(100)), 300};
    }
}

void cutLds(Random& random, Controller& ctrl, std::uint8_t level, const std::vector<std::uint16_t>& refs,
            std::uint64_t blocks) {
    std::uint64_t start = random.percent(20) ? 128 * random.between(1, 50) : 0;
    for (std::size_t left = random.between(1, 3); left > 0 && start < blocks && ctrl.lds.size() < ctrl.maxLds; --left) {
        std::uint64_t size = left == 1 && random.percent(60) ? blocks - start : (blocks - start) / random.between(2, 4);
        if (size == 0)
            return;
        LogicalDrive ld;
        for (ld.id = static_cast<std::uint8_t>(random.percent(70) ? 0 : random.below(60));
             findLd(ctrl, ld.id) != nullptr;)
            ld.id = static_cast<std::uint8_t>((ld.id + 1) % 64);
        ld.seq = static_cast<std::uint16_t>(ld.id + 32);
        ld.name = random.percent(80) ? "LD_" + std::to_string(ld.id) : random.percent(50) ? "" : "%s%n\n\x1b[2J";
        ld.level = level;
        for (const std::uint16_t ref : refs)
            ld.spans.push_back({ref, start, size});
        ld.stripe = static_cast<std::uint8_t>(random.between(ctrl.stripeMin, ctrl.stripeMax));
        ld.cachePolicy = random.percent(50) ? 1 : 0x65;
        ld.currentCachePolicy = effectiveCachePolicy(ctrl, ld.cachePolicy);
        ld.accessPolicy = random.percent(10) ? 2 : 0;
        ld.cacheCade = level == 0 && random.percent(20);
        ld.snapshotSource = random.percent(4);
        ld.repository = random.percent(4);
        ld.osInstalled = random.percent(10);
        if (ld.osInstalled || random.percent(50))
            ld.osDevices.push_back("/dev/sd" + std::string(1, static_cast<char>('a' + ctrl.lds.size() % 26)));
        ld.state = derivedLdState(ctrl, ld, ctrl.arrays);
        if (ld.state == kLdOptimal && random.percent(10))
            (random.percent(50) ? ld.check : ld.init) = Progress{static_cast<double>(random.below(100)), 10};
        ctrl.lds.push_back(ld);
        start += size + (random.percent(25) ? 128 * random.between(1, 50) : 0);
    }
}

/// One RAID group of free drives that go together; nothing when there are too few.
void addGroup(Random& random, Controller& ctrl) {
    struct GroupShape {
        std::uint8_t level;
        std::size_t least;
        std::size_t most;
        std::size_t spans;
    };
    static constexpr GroupShape kGroupShapes[] = {{0, 1, 4, 1}, {1, 2, 2, 1},  {5, 3, 6, 1}, {5, 3, 6, 1},
                                                  {6, 3, 6, 1}, {10, 2, 2, 2}, {10, 2, 2, 3}};
    const GroupShape& shape = random.oneOf(kGroupShapes);
    auto drives = freeDrives(ctrl, random.oneOf(ctrl.drives));
    const std::size_t width = random.between(shape.least, shape.most);
    if (drives.size() < width * shape.spans || ctrl.arrays.size() + shape.spans > 16)
        return;
    random.shuffle(drives);
    std::vector<std::uint16_t> refs;
    std::uint64_t blocks = UINT64_MAX;
    for (std::size_t span = 0; span < shape.spans; ++span) {
        Array array;
        for (array.ref = random.percent(20) ? 3 : 0; findArray(ctrl, array.ref) != nullptr;)
            ++array.ref;
        for (std::size_t i = 0; i < width; ++i)
            array.drives.push_back(drives[span * width + i]->deviceId);
        array.blocks = smallestDrive(ctrl, array);
        blocks = std::min(blocks, array.blocks);
        for (std::size_t i = 0; i < width; ++i)
            ailMember(random, *drives[span * width + i]);
        if (random.percent(4))
            array.drives[0] = kNoDevice;
        refs.push_back(array.ref);
        ctrl.arrays.push_back(array);
    }
    for (Drive& drive : ctrl.drives) // a drive that an empty position has lost
        if (arrayOfDrive(ctrl, drive.deviceId) == nullptr && drive.state >= kPdOffline && drive.state != kPdFailed) {
            drive.state = kPdUnconfiguredGood;
            drive.rebuild.reset();
        }
    cutLds(random, ctrl, shape.level, refs, blocks);
    while (ldsOfArray(ctrl, ctrl.arrays.back().ref).empty()) { // no room for another LD
        for (const std::uint16_t id : ctrl.arrays.back().drives)
            if (Drive* drive = findDrive(ctrl, id); drive != nullptr) {
                drive->state = kPdUnconfiguredGood;
                drive->rebuild.reset();
            }
        ctrl.arrays.pop_back();
        if (ctrl.arrays.empty())
            return;
    }
}

void addSpares(Random& random, Controller& ctrl) {
    for (Drive& drive : ctrl.drives) {
        if (drive.state != kPdUnconfiguredGood || drive.foreign || drive.clear ||
            ctrl.spares.size() >= ctrl.maxSpares || arrayOfDrive(ctrl, drive.deviceId) != nullptr ||
            !random.percent(12))
            continue;
        Spare spare{drive.deviceId, {}, true, false};
        for (const LogicalDrive& ld : ctrl.lds)
            for (const Span& span : ld.spans)
                if (isRedundant(ld.level) && random.percent(15) &&
                    std::ranges::find(spare.arrays, span.array) == spare.arrays.end() && spare.arrays.size() < 16)
                    spare.arrays.push_back(span.array);
        drive.state = kPdHotSpare;
        ctrl.spares.push_back(spare);
    }
}

Controller randomController(Random& random) {
    Controller ctrl;
    constexpr std::uint8_t kLevels[] = {0x37, 0x37, 0x37, 0x23, 0x07, 0x01};
    constexpr std::pair<std::uint8_t, std::uint8_t> kStripes[] = {{4, 11}, {4, 11}, {5, 9}, {8, 8}, {8, 11}};
    ctrl.product = random.percent(3) ? "" : "Quorvel RAID Pellucor 8e";
    ctrl.raidLevels = random.oneOf(kLevels);
    std::tie(ctrl.stripeMin, ctrl.stripeMax) = random.oneOf(kStripes);
    ctrl.maxLds = random.percent(80) ? 64 : static_cast<std::uint8_t>(random.between(1, 8));
    ctrl.maxSpares = random.percent(80) ? 16 : static_cast<std::uint8_t>(random.below(3));
    ctrl.ldOperations = random.percent(80) ? 0x1F : static_cast<std::uint32_t>(random.below(32));
    ctrl.cacheCadeCapacity = random.percent(60) ? 512 : 0;
    ctrl.alarm = random.percent(30);
    ctrl.pinnedCache = random.percent(4);
    ctrl.properties.disableAutoRebuild = random.percent(40) ? 1 : 0;
    ctrl.properties.onOff = static_cast<std::uint32_t>(random.below(64));
    ctrl.patrolRead.mode = static_cast<std::uint8_t>(random.below(3));
    if (random.percent(60)) {
        CacheBackup unit;
        unit.remainingCapacity = unit.fullCapacity = unit.designCapacity;
        unit.status = random.percent(15) ? 1U << random.below(12) : 0;
        ctrl.cacheBackup = unit;
    }
    addDrives(random, ctrl);
    for (std::size_t groups = ctrl.drives.empty() ? 0 : random.below(4); groups > 0; --groups)
        addGroup(random, ctrl);
    addSpares(random, ctrl);
    return ctrl;
}

std::string drivesInPlaces(const Controller& ctrl) {
    std::map<std::uint16_t, unsigned> places;
    for (const Array& array : ctrl.arrays)
        for (const std::uint16_t id : array.drives)
            if (id != kNoDevice)
                ++places[id];
    for (const Spare& spare : ctrl.spares)
        ++places[spare.deviceId];
    for (const auto& [id, count] : places)
        if (count != 1 || findDrive(ctrl, id) == nullptr)
            return "drive " + std::to_string(id) + " is in " + std::to_string(count) + " places, or is none";
    for (const Drive& drive : ctrl.drives) {
        static const std::set<std::uint16_t> kMember{kPdOffline, kPdFailed, kPdRebuild, kPdOnline, kPdCopyback};
        static const std::set<std::uint16_t> kSpare{kPdHotSpare, kPdCopyback};
        static const std::set<std::uint16_t> kLone{kPdUnconfiguredGood, kPdUnconfiguredBad, kPdOffline, kPdFailed,
                                                   kPdCopyback};
        const bool member = arrayOfDrive(ctrl, drive.deviceId) != nullptr;
        const bool spare = findSpare(ctrl, drive.deviceId) != nullptr;
        if (!(member ? kMember : spare ? kSpare : kLone).contains(drive.state))
            return "drive " + std::to_string(drive.deviceId) + " has state " + std::to_string(drive.state) +
                   (member  ? " in an array"
                    : spare ? " as a spare"
                            : " by itself");
        if (drive.rebuild.has_value() != (drive.state == kPdRebuild))
            return "drive " + std::to_string(drive.deviceId) + " rebuilds, or does not, against its state";
    }
    return "";
}

std::string ldsOnArrays(const Controller& ctrl) {
    for (const LogicalDrive& ld : ctrl.lds) {
        const std::string name = "LD " + std::to_string(ld.id);
        if (ld.state != derivedLdState(ctrl, ld, ctrl.arrays))
            return name + " has state " + std::to_string(ld.state) + ", its drives say otherwise";
        if (ld.state == kLdOffline && (ld.check || ld.init || ld.backgroundInit || ld.reconstruction))
            return name + " is offline and works";
    }
    for (const Array& array : ctrl.arrays)
        if (ldsOfArray(ctrl, array.ref).empty())
            return "array " + std::to_string(array.ref) + " serves no LD";
    for (const Spare& spare : ctrl.spares)
        for (const std::uint16_t ref : spare.arrays)
            if (findArray(ctrl, ref) == nullptr)
                return "a spare is dedicated to array " + std::to_string(ref) + ", which is not there";
    return "";
}

} // namespace

zebsim::Model randomHardware(Random& random) {
    Model model;
    model.strictDelete = random.percent(40);
    const std::size_t count = random.percent(60) ? 1 : random.between(2, 3);
    for (std::size_t i = 0; i < count; ++i) {
        model.controllers.push_back(randomController(random));
        model.controllers.back().id = static_cast<std::uint32_t>(count * 3 - i * 2); // not in the order of the list
    }
    return model;
}

std::string inconsistency(const zebsim::Model& model) {
    try { // the form's own checks: spans, drives in arrays, references
        readScenario(writeScenario(model));
    } catch (const ScenarioError& error) {
        return error.what();
    }
    for (const Controller& ctrl : model.controllers) {
        std::string fault = drivesInPlaces(ctrl);
        if (fault.empty())
            fault = ldsOnArrays(ctrl);
        if (!fault.empty())
            return "controller " + std::to_string(ctrl.id) + ": " + fault;
    }
    return "";
}

} // namespace zebstorm
