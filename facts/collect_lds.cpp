// The logical drives, and what the operating system makes of them.
#include "facts/collect_parts.h"
#include "facts/raid_level_words.h"
#include "facts/text.h"
#include "facts/units.h"
#include "storelib/common/StoreLib/controller.h"
#include "storelib/common/StoreLib/logical_drive.h"
#include "storelib/records/views.h"

#include <algorithm>
#include <memory>
#include <set>

namespace facts {

namespace {

std::vector<Operation> operationsOf(const _MR_LD_PROGRESS& progress) {
    const struct {
        std::uint32_t bit;
        std::string_view type;
        const _MR_PROGRESS& amount;
    } works[] = {{kLdProgCheck, "consistency_check", progress.cc},
                 {kLdProgBgi, "background_initialization", progress.bgi},
                 {kLdProgInit, "initialization", progress.init},
                 {kLdProgRecon, "reconstruction", progress.recon}};
    std::vector<Operation> operations;
    for (const auto& work : works)
        if ((progress.active & work.bit) != 0)
            operations.push_back({work.type, work.amount.progress, work.amount.elapsed});
    return operations;
}

Word writePolicyOf(std::uint8_t policy) {
    constexpr std::uint8_t kBits = 0x13;
    constexpr WordRow kPolicies[] = {{0x00, "write_through"}, {0x01, "write_back"}, {0x11, "always_write_back"}};
    return wordFor(kPolicies, policy & kBits);
}

void fillPolicies(LogicalDriveInfo& info, const _MR_LD_PROPERTIES& properties) {
    constexpr WordRow kAccess[] = {{0, "read_write"}, {2, "read_only"}, {3, "blocked"}};
    constexpr WordRow kDiskCache[] = {{0, "unchanged"}, {1, "enabled"}, {2, "disabled"}};
    constexpr std::uint8_t kReadBits = 0x0C;
    constexpr WordRow kReadPolicies[] = {{0x00, "no_read_ahead"}, {0x04, "always_read_ahead"}};
    constexpr std::uint8_t kIoBits = 0x60;
    constexpr WordRow kIoPolicies[] = {{0x00, "direct"}, {0x60, "cached"}};
    info.access = wordFor(kAccess, properties.accessPolicy);
    info.diskCache = wordFor(kDiskCache, properties.diskCachePolicy);
    info.readPolicy = wordFor(kReadPolicies, properties.defaultCachePolicy & kReadBits);
    info.ioPolicy = wordFor(kIoPolicies, properties.defaultCachePolicy & kIoBits);
    info.defaultWritePolicy = writePolicyOf(properties.defaultCachePolicy);
    info.currentWritePolicy = writePolicyOf(properties.currentCachePolicy);
}

/// The group with that array.
std::optional<std::string> groupOf(const Controller& controller, std::uint16_t arrayRef) {
    if (!controller.raidGroups)
        return std::nullopt;
    for (const RaidGroup& group : *controller.raidGroups)
        if (std::ranges::count(group.arrays, arrayRef) != 0)
            return group.name;
    return std::nullopt;
}

LogicalDriveInfo infoOf(const _MR_LD_INFO& record, const Controller& controller) {
    constexpr WordRow kInitialization[] = {{0, "none"}, {1, "quick"}, {2, "full"}};
    const _MR_LD_CONFIG& config = record.config;
    LogicalDriveInfo info;
    info.name = fieldText(config.properties.name);
    if (const auto spans = spansOf(config); !spans.empty())
        info.raidGroup = groupOf(controller, spans.front().arrayRef);
    info.level = raidLevelWord(config);
    info.sizeBytes = bytesOfBlocks(record.size);
    info.state = wordFor(logicalDriveStates(), config.state);
    info.stripeBytes = bytesOfStripeCode(config.stripeSize);
    info.spanDepth = config.spanDepth;
    info.drivesPerSpan = config.numDrives;
    fillPolicies(info, config.properties);
    info.cachecade = config.cacheCade != 0;
    info.snapshotSource = config.snapshotSource != 0;
    info.snapshotRepository = (record.snapshotUse & kLdIsRepository) != 0;
    info.initialization = wordFor(kInitialization, config.initState);
    info.consistent = config.isConsistent != 0;
    info.operations = operationsOf(record.progress);
    return info;
}

/// The name that the last entry of the mapping gives the LD; whether a system is installed is asked by the first one,
/// as the tool does.
void askSystem(Asker& asker, LogicalDrive& ld, const _SL_LD_OS_MAP_T& map) {
    const _SL_LD_OS_MAP_ENTRY* first = nullptr;
    for (const _SL_LD_OS_MAP_ENTRY& entry : entriesOf(map)) {
        if (entry.targetId != ld.number)
            continue;
        if (first == nullptr)
            first = &entry;
        ld.info->osDevice = fieldText(entry.osDeviceName);
    }
    if (first == nullptr)
        return;
    _SL_PARTITION_INFO_T partition{};
    if (!asker.ask(LogicalDriveObject{ld.number}, "SLGetMappedPartition", SLGetMappedPartition, ld.number,
                   first->partitionArg, &partition))
        ld.info->osInstalled = partition.osInstalled != 0;
}

} // namespace

void collectLogicalDrives(Asker& asker, Controller& controller, Scope scope) {
    _MR_LD_LIST list{};
    if (asker.ask(ControllerObject{}, "SLGetLDList", SLGetLDList, &list))
        return;
    std::vector<LogicalDrive>& lds = controller.logicalDrives.emplace();
    std::set<std::uint8_t> numbers;
    for (const _MR_LD_LIST_ENTRY& entry : entriesOf(list))
        numbers.insert(entry.targetId);
    for (const std::uint8_t number : numbers) {
        LogicalDrive& ld = lds.emplace_back();
        ld.number = number;
        _MR_LD_INFO record{};
        ld.error = asker.ask(LogicalDriveObject{number}, "SLGetLDInfo", SLGetLDInfo, number, &record);
        if (!ld.error)
            ld.info = infoOf(record, controller);
    }
    if (lds.empty() || scope != Scope::Everything)
        return;
    const auto map = std::make_unique<_SL_LD_OS_MAP_T>();
    if (asker.ask(ControllerObject{}, "SLGetLDOSMap", SLGetLDOSMap, map.get()))
        return;
    for (LogicalDrive& ld : lds)
        if (ld.info)
            askSystem(asker, ld, *map);
}

} // namespace facts
