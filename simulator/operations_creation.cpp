// The addition to the configuration: arrays and LDs that one controller command makes, whole or not at all.
#include "simulator/consequences.h"
#include "simulator/operations.h"

#include <algorithm>
#include <set>

namespace zebsim {

namespace {

constexpr unsigned kMostArrays = 128;
constexpr unsigned kMostLds = 64;

/// The block as it came in.
struct Addition {
    std::vector<_MR_ARRAY> arrays;
    std::vector<_MR_LD_CONFIG> lds;
};

/// The addition together with what is there already.
struct Plan {
    Controller& ctrl;
    std::vector<const _MR_ARRAY*> newArrays; ///< those of the block that are not there yet
    const Addition& added;
};

template <class Record>
std::vector<Record> takeRecords(std::span<const std::uint8_t>& bytes, std::size_t count) {
    std::vector<Record> records(count);
    std::memcpy(records.data(), bytes.data(), count * sizeof(Record));
    bytes = bytes.subspan(count * sizeof(Record));
    return records;
}

std::uint8_t levelOf(const _MR_LD_CONFIG& ld) {
    return ld.primaryRaidLevel == 1 && ld.spanDepth > 1 ? std::uint8_t{10} : ld.primaryRaidLevel;
}

std::span<const _MR_SPAN> spansOf(const _MR_LD_CONFIG& ld) {
    return {ld.span, ld.spanDepth};
}
std::span<const _MR_ARRAY_PD> drivesOf(const _MR_ARRAY& array) {
    return {array.pd, array.numDrives};
}

/// Takes the block apart. False when its head and its bytes do not belong together.
bool unpack(std::span<const std::uint8_t> bytes, Addition& added) {
    _MR_CONFIG_DATA head;
    std::memcpy(&head, bytes.data(), sizeof head);
    const std::size_t size = sizeof head + head.arrayCount * sizeof(_MR_ARRAY) + head.ldCount * sizeof(_MR_LD_CONFIG);
    if (head.size != bytes.size() || size != bytes.size() || head.spareCount != 0 ||
        head.arraySize != sizeof(_MR_ARRAY) || head.ldSize != sizeof(_MR_LD_CONFIG) ||
        head.spareSize != sizeof(_MR_SPARE) || head.arrayCount == 0 || head.ldCount == 0)
        return false;
    bytes = bytes.subspan(sizeof head);
    added.arrays = takeRecords<_MR_ARRAY>(bytes, head.arrayCount);
    added.lds = takeRecords<_MR_LD_CONFIG>(bytes, head.ldCount);
    return true;
}

const _MR_ARRAY* addedArray(const Addition& added, std::uint16_t ref) {
    const auto found =
        std::ranges::find(added.arrays, ref, [](const _MR_ARRAY& a) { return std::uint16_t{a.arrayRef}; });
    return found == added.arrays.end() ? nullptr : &*found;
}

/// The number of drives of an array of the block or of the controller; 0 when neither has it.
std::size_t widthOf(const Plan& plan, std::uint16_t ref) {
    if (const _MR_ARRAY* added = addedArray(plan.added, ref); added != nullptr)
        return added->numDrives;
    const Array* array = findArray(plan.ctrl, ref);
    return array == nullptr ? 0 : array->drives.size();
}

std::uint64_t blocksOf(const Plan& plan, std::uint16_t ref) {
    if (const Array* array = findArray(plan.ctrl, ref); array != nullptr)
        return array->blocks;
    return addedArray(plan.added, ref)->size;
}

bool isUsed(const Addition& added, const _MR_ARRAY& array) {
    return std::ranges::any_of(added.lds, [&](const _MR_LD_CONFIG& ld) {
        return std::ranges::any_of(spansOf(ld), [&](const _MR_SPAN& s) { return s.arrayRef == array.arrayRef; });
    });
}

/// Counts that contradict each other: 0x03.
std::uint32_t checkCounts(const Plan& plan) {
    const Addition& added = plan.added;
    for (const _MR_LD_CONFIG& ld : added.lds) {
        if (ld.spanDepth == 0 || ld.spanDepth > kMaxSpans)
            return kInvalidParameter;
    }
    for (const _MR_ARRAY& array : added.arrays) {
        if (array.numDrives == 0 || array.numDrives > kMaxArrayDrives || !isUsed(added, array))
            return kInvalidParameter;
    }
    for (const _MR_LD_CONFIG& ld : added.lds) {
        for (const _MR_SPAN& span : spansOf(ld)) {
            const std::size_t width = widthOf(plan, span.arrayRef);
            if (width != 0 && width != ld.numDrives)
                return kInvalidParameter;
        }
    }
    return kSuccess;
}

/// Spans on arrays that are nowhere: 0x09.
std::uint32_t checkReferences(const Plan& plan) {
    for (const _MR_LD_CONFIG& ld : plan.added.lds) {
        for (const _MR_SPAN& span : spansOf(ld)) {
            if (widthOf(plan, span.arrayRef) == 0)
                return kInvalidArray;
        }
    }
    return kSuccess;
}

/// True when the array there has exactly the drives of the block's one, position by position.
bool isSameArray(const Array& there, const _MR_ARRAY& added) {
    return std::ranges::equal(there.drives, drivesOf(added), {}, {},
                              [](const _MR_ARRAY_PD& pd) { return std::uint16_t{pd.ref.deviceId}; });
}

/// Array references, LD ids and drives that are taken already, or twice: 0x0B.
std::uint32_t checkNames(const Plan& plan) {
    std::set<unsigned> refs;
    std::set<unsigned> ids;
    std::set<unsigned> drives;
    for (const _MR_ARRAY& array : plan.added.arrays) {
        const Array* there = findArray(plan.ctrl, array.arrayRef);
        if (array.arrayRef >= kMostArrays || !refs.insert(array.arrayRef).second ||
            (there != nullptr && !isSameArray(*there, array)))
            return kConflict;
        for (const _MR_ARRAY_PD& pd : drivesOf(array)) {
            if (!drives.insert(pd.ref.deviceId).second)
                return kConflict;
        }
    }
    for (const _MR_LD_CONFIG& ld : plan.added.lds) {
        const std::uint8_t id = ld.properties.ref.targetId;
        if (id >= kMostLds || findLd(plan.ctrl, id) != nullptr || !ids.insert(id).second)
            return kConflict;
    }
    return kSuccess;
}

bool overlap(const Span& a, const Span& b) {
    return a.array == b.array && a.startBlock < b.startBlock + b.blocks && b.startBlock < a.startBlock + a.blocks;
}

/// Spans that leave their array or lie on others: 0x0B.
std::uint32_t checkPlaces(const Plan& plan) {
    std::vector<Span> placed;
    for (const LogicalDrive& ld : plan.ctrl.lds)
        placed.insert(placed.end(), ld.spans.begin(), ld.spans.end());
    for (const _MR_LD_CONFIG& ld : plan.added.lds) {
        for (const _MR_SPAN& record : spansOf(ld)) {
            const Span span{record.arrayRef, record.startBlock, record.numBlocks};
            const std::uint64_t blocks = blocksOf(plan, span.array);
            if (span.blocks == 0 || span.startBlock >= blocks || span.blocks > blocks - span.startBlock ||
                std::ranges::any_of(placed, [&](const Span& other) { return overlap(span, other); }))
                return kConflict;
            placed.push_back(span);
        }
    }
    return kSuccess;
}

/// Drives that are not there, or have changed since they were read: 0x0C, 0x04.
std::uint32_t checkDrivesKnown(const Plan& plan) {
    for (const _MR_ARRAY& array : plan.added.arrays) {
        for (const _MR_ARRAY_PD& pd : drivesOf(array)) {
            const Drive* drive = findDrive(plan.ctrl, pd.ref.deviceId);
            if (drive == nullptr)
                return kDeviceNotFound;
            if (drive->seq != pd.ref.seqNo)
                return kInvalidSequence;
        }
    }
    return kSuccess;
}

/// New members that are busy or not free: 0x25, 0x32.
std::uint32_t checkDrivesFree(const Plan& plan) {
    for (const _MR_ARRAY* array : plan.newArrays) {
        for (const _MR_ARRAY_PD& pd : drivesOf(*array)) {
            const Drive& drive = *findDrive(plan.ctrl, pd.ref.deviceId);
            if (drive.clear)
                return kClearInProgress;
            if (drive.state != kPdUnconfiguredGood || drive.foreign)
                return kWrongState;
        }
    }
    return kSuccess;
}

/// New members that do not go together: 0x26, 0x0D.
std::uint32_t checkDrivesFit(const Plan& plan) {
    for (const _MR_ARRAY* array : plan.newArrays) {
        const Drive& first = *findDrive(plan.ctrl, array->pd[0].ref.deviceId);
        for (const _MR_ARRAY_PD& pd : drivesOf(*array)) {
            const Drive& drive = *findDrive(plan.ctrl, pd.ref.deviceId);
            if (drive.interface != first.interface)
                return kMixedInterface;
            if (drive.blocks < array->size)
                return kDriveTooSmall;
        }
    }
    return kSuccess;
}

/// Whether the controller builds the level of so many drives in so many spans.
bool isBuildable(const Controller& ctrl, const _MR_LD_CONFIG& ld) {
    struct Rule {
        std::uint8_t level;
        std::uint8_t capability; ///< bit of the controller's RAID levels
        std::size_t limit; ///< row of its drive limits
        unsigned leastDrives; ///< of a span
        unsigned mostDrives;
    };
    static constexpr Rule kRules[] = {{0, 1U << 0, 0, 1, kMaxArrayDrives},
                                      {1, 1U << 1, 1, 2, 2},
                                      {5, 1U << 2, 2, 3, kMaxArrayDrives},
                                      {6, 1U << 4, 4, 3, kMaxArrayDrives},
                                      {10, 1U << 5, 5, 2, 2}};
    const auto* rule = std::ranges::find(kRules, levelOf(ld), &Rule::level);
    if (rule == std::end(kRules) || (ctrl.raidLevels & rule->capability) == 0)
        return false;
    const unsigned most = ctrl.pdLimits[rule->limit].maximum;
    return (ld.spanDepth == 1 || rule->level == 10) && ld.numDrives >= rule->leastDrives &&
           ld.numDrives <= rule->mostDrives && (most == 0 || unsigned{ld.numDrives} * ld.spanDepth <= most);
}

/// Levels that cannot be built: 0x1E. More LDs than the controller takes: 0x1A.
std::uint32_t checkLevels(const Plan& plan) {
    const Controller& ctrl = plan.ctrl;
    if (!std::ranges::all_of(plan.added.lds, [&](const _MR_LD_CONFIG& ld) { return isBuildable(ctrl, ld); }))
        return kWrongLevel;
    return ctrl.lds.size() + plan.added.lds.size() > ctrl.maxLds ? kTooManyLds : kSuccess;
}

std::uint32_t checkPinnedCache(const Plan& plan) {
    return plan.ctrl.pinnedCache ? kCachePinned : kSuccess;
}

void addArray(Controller& ctrl, const _MR_ARRAY& record) {
    Array array{record.arrayRef, record.size, {}};
    for (const _MR_ARRAY_PD& pd : drivesOf(record))
        array.drives.push_back(pd.ref.deviceId);
    const auto place = std::ranges::find_if(ctrl.arrays, [&](const Array& other) { return other.ref > array.ref; });
    const Array& added = *ctrl.arrays.insert(place, array);
    for (const std::uint16_t id : added.drives)
        changeDriveState(ctrl, *findDrive(ctrl, id), kPdOnline);
}

void addLd(Controller& ctrl, const _MR_LD_CONFIG& record) {
    LogicalDrive ld;
    const _MR_LD_PROPERTIES& properties = record.properties;
    ld.id = properties.ref.targetId;
    ld.seq = 1;
    ld.name.assign(properties.name, strnlen(properties.name, sizeof properties.name));
    ld.level = levelOf(record);
    for (const _MR_SPAN& span : spansOf(record))
        ld.spans.push_back({span.arrayRef, span.startBlock, span.numBlocks});
    ld.stripe = record.stripeSize;
    ld.cachePolicy = properties.defaultCachePolicy;
    ld.currentCachePolicy = effectiveCachePolicy(ctrl, ld.cachePolicy);
    ld.accessPolicy = properties.accessPolicy;
    ld.diskCachePolicy = properties.diskCachePolicy;
    ld.noBackgroundInit = properties.noBgi != 0;
    ld.snapshotFlags = properties.snapshotFlags;
    ld.initState = record.initState;
    ld.cacheCade = record.cacheCade != 0;
    const bool parity = ld.level == 5 || ld.level == 6;
    ld.consistent = !parity;
    if (parity && !ld.noBackgroundInit)
        ld.backgroundInit = Progress{};
    ld.state = derivedLdState(ctrl, ld, ctrl.arrays);
    const auto place = std::ranges::find_if(ctrl.lds, [&](const LogicalDrive& other) { return other.id > ld.id; });
    ctrl.lds.insert(place, std::move(ld));
}

} // namespace

std::uint32_t addConfiguration(Call& call, const _SL_DCMD_INPUT_T&) {
    Addition added;
    if (!unpack(call.input, added))
        return kInvalidParameter;
    Plan plan{call.ctrl, {}, added};
    for (const _MR_ARRAY& array : added.arrays) {
        if (findArray(call.ctrl, array.arrayRef) == nullptr)
            plan.newArrays.push_back(&array);
    }
    constexpr std::uint32_t (*kChecks[])(const Plan&) = {checkCounts,    checkReferences,  checkNames,
                                                         checkPlaces,    checkDrivesKnown, checkDrivesFree,
                                                         checkDrivesFit, checkLevels,      checkPinnedCache};
    for (const auto check : kChecks) {
        if (const std::uint32_t status = check(plan); status != kSuccess)
            return status;
    }
    for (const _MR_ARRAY* array : plan.newArrays)
        addArray(call.ctrl, *array);
    for (const _MR_LD_CONFIG& ld : added.lds)
        addLd(call.ctrl, ld);
    return changed(call);
}

} // namespace zebsim
