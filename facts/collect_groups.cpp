// The configuration: RAID groups with their arrays, drives, LDs and spares, and the free space on them.
#include "facts/collect_parts.h"
#include "facts/raid_level_words.h"
#include "facts/units.h"
#include "main/zebcli_cmd_com/model/capacity.h"
#include "main/zebcli_cmd_com/model/raid_group_numbers.h"
#include "storelib/common/StoreLib/configuration.h"
#include "storelib/records/views.h"

#include <algorithm>
#include <map>
#include <memory>
#include <utility>

namespace facts {

namespace {

/// A configuration in a block of its own.
struct Configuration {
    std::unique_ptr<unsigned char[]> block;
    std::uint32_t size = 0;

    explicit Configuration(std::uint32_t bytes) : block(std::make_unique<unsigned char[]>(bytes)), size(bytes) {}
    _MR_CONFIG_DATA* data() const { return reinterpret_cast<_MR_CONFIG_DATA*>(block.get()); }
    std::span<const _MR_ARRAY> arrays() const { return arraysOf(data(), size); }
    std::span<const _MR_LD_CONFIG> lds() const { return ldsOf(data(), size); }
    std::span<const _MR_SPARE> spares() const { return sparesOf(data(), size); }
};

/// Reads it with the smallest size, and once more when it says that it is longer.
std::optional<Configuration> readConfiguration(Asker& asker) {
    const auto read = [&](std::uint32_t size) -> std::optional<Configuration> {
        Configuration configuration(size);
        if (asker.ask(ControllerObject{}, "SLReadConfig", SLReadConfig, configuration.data(), size))
            return std::nullopt;
        return configuration;
    };
    auto configuration = read(kSmallestConfigSize);
    if (configuration && configuration->data()->size > kSmallestConfigSize)
        configuration = read(std::min(configuration->data()->size, kLargestConfigSize));
    return configuration;
}

/// What belongs to one group, found through the numbers of the groups.
class Grouping {
  public:
    explicit Grouping(const Configuration& configuration) : configuration_(configuration), numbers_{} {
        MakeTransformRGNo(configuration.arrays(), configuration.lds(), numbers_);
    }

    /// The groups in the order of the configuration's arrays, as far as the configuration tells of them.
    std::vector<RaidGroup> groups() const {
        std::vector<RaidGroup> groups;
        std::map<std::pair<std::uint8_t, std::uint8_t>, std::size_t> places; // by CacheCade and number
        for (const _MR_ARRAY& array : configuration_.arrays()) {
            const Number* number = numberOf(array.arrayRef);
            if (number == nullptr)
                continue;
            const auto [place, isNew] = places.try_emplace({number->cacheCade, number->groupNo}, groups.size());
            if (isNew)
                groups.push_back(makeGroup(*number));
            addArray(groups[place->second], array);
        }
        return groups;
    }

  private:
    using Number = ZEB_TRANS_RG_NO_LIST_T::Entry;

    /// The number of the array's group; null for an array that has none.
    const Number* numberOf(std::uint16_t arrayRef) const {
        const bool known = arrayRef < std::size(numbers_.entry) && numbers_.entry[arrayRef].known != 0;
        return known ? &numbers_.entry[arrayRef] : nullptr;
    }

    bool isIn(const Number& group, std::uint16_t arrayRef) const {
        const Number* number = numberOf(arrayRef);
        return number != nullptr && number->cacheCade == group.cacheCade && number->groupNo == group.groupNo;
    }

    RaidGroup makeGroup(const Number& number) const {
        RaidGroup group;
        group.cachecade = number.cacheCade != 0;
        group.name = (group.cachecade ? "scRG" : "RG") + std::to_string(number.groupNo);
        for (const _MR_LD_CONFIG& ld : configuration_.lds()) {
            const std::uint8_t ldNo = ld.properties.ref.targetId;
            const auto spans = spansOf(ld);
            const bool onGroup = std::any_of(spans.begin(), spans.end(),
                                             [&](const _MR_SPAN& span) { return isIn(number, span.arrayRef); });
            if (!onGroup || std::ranges::count(group.logicalDrives, ldNo) != 0)
                continue;
            if (group.logicalDrives.empty() || ldNo < std::ranges::min(group.logicalDrives))
                group.level = raidLevelWord(ld);
            group.logicalDrives.push_back(ldNo);
        }
        std::ranges::sort(group.logicalDrives);
        for (const _MR_SPARE& spare : configuration_.spares()) {
            const std::uint16_t deviceId = spare.ref.deviceId;
            const auto served = arrayRefsOf(spare);
            if ((spare.type & kSpareDedicated) != 0 && std::ranges::count(group.spares, deviceId) == 0 &&
                std::any_of(served.begin(), served.end(), [&](std::uint16_t ref) { return isIn(number, ref); }))
                group.spares.push_back(deviceId);
        }
        return group;
    }

    static void addArray(RaidGroup& group, const _MR_ARRAY& array) {
        const std::uint16_t arrayRef = array.arrayRef;
        if (std::ranges::count(group.arrays, arrayRef) != 0)
            return;
        group.arrays.push_back(arrayRef);
        for (const _MR_ARRAY_PD& drive : drivesOf(array)) {
            const std::uint16_t deviceId = drive.ref.deviceId;
            group.physicalDrives.push_back(deviceId == kNoDevice ? std::nullopt : std::optional(deviceId));
        }
    }

    const Configuration& configuration_;
    ZEB_TRANS_RG_NO_LIST_T numbers_;
};

/// What so many blocks on each drive of the group's arrays give at its level; nothing when that is more than can be.
std::optional<std::uint64_t> usableBytes(const RaidGroup& group, std::span<const std::size_t> widths,
                                         std::uint64_t blocks, std::uint8_t contNo) {
    const auto level = raidLevelOf(group.level);
    if (!level || !bytesOfBlocks(blocks))
        return std::nullopt;
    // Each array is a span of its own; a mirror of more than two drives holds the data of half of them.
    const ZEB_RAID_LVL inSpan = *level == kRaid1 ? kRaid10 : *level;
    std::uint64_t total = 0;
    for (const std::size_t width : widths) {
        total += CalcLDCapa(inSpan, static_cast<unsigned short>(width), blocks, contNo);
        if (!bytesOfBlocks(total))
            return std::nullopt;
    }
    return bytesOfBlocks(total);
}

/// The sum of the segments; nothing as soon as one is not known.
std::optional<std::uint64_t> sumOf(const std::vector<FreeSegment>& segments) {
    constexpr std::uint64_t kTooMuch = std::uint64_t{1} << 63U;
    std::uint64_t sum = 0;
    for (const FreeSegment& segment : segments) {
        if (!segment.bytes || *segment.bytes >= kTooMuch - sum)
            return std::nullopt;
        sum += *segment.bytes;
    }
    return sum;
}

void askSpace(Asker& asker, RaidGroup& group, std::span<const std::size_t> widths) {
    const auto record = std::make_unique<_SL_ARRAY_INFO_T>();
    if (asker.ask(RaidGroupObject{group.name}, "SLGetArrayInfo", SLGetArrayInfo, group.arrays.front(), record.get()))
        return;
    group.usableBytes = bytesOfBlocks(record->totalSize);
    std::vector<FreeSegment>& segments = group.freeSegments.emplace();
    for (const _MR_FREE_SEGMENT& segment : freeSegmentsOf(*record)) {
        const std::uint64_t blocks = segment.size;
        segments.push_back({usableBytes(group, widths, blocks, asker.contNo()), bytesOfBlocks(blocks)});
    }
    group.freeBytes = sumOf(segments);
}

/// The drives of each array of the group, empty places included.
std::vector<std::size_t> widthsOf(const RaidGroup& group, const Configuration& configuration) {
    std::vector<std::size_t> widths;
    for (const std::uint16_t ref : group.arrays) {
        const auto arrays = configuration.arrays();
        const auto array =
            std::find_if(arrays.begin(), arrays.end(), [&](const _MR_ARRAY& a) { return a.arrayRef == ref; });
        widths.push_back(array != arrays.end() ? drivesOf(*array).size() : 0);
    }
    return widths;
}

/// Tells each drive of its group.
void joinDrives(Controller& controller) {
    for (PhysicalDrive& drive : *controller.physicalDrives) {
        if (!drive.info)
            continue;
        drive.info->logicalDrives.emplace();
        for (const RaidGroup& group : *controller.raidGroups) {
            if (std::ranges::count(group.physicalDrives, std::optional(drive.deviceId)) == 0)
                continue;
            drive.info->raidGroup = group.name;
            drive.info->logicalDrives = group.logicalDrives;
            if (drive.info->role == kRoleNone)
                drive.info->role = kRoleMember;
            break;
        }
    }
}

/// Counts the spares by what each drive says of itself. For a drive that could not be read the configuration speaks;
/// nothing when that could not be read either.
std::optional<HotSpares> hotSparesOf(const Controller& controller, const std::optional<Configuration>& configuration) {
    std::map<std::uint16_t, std::string_view> roles; // by device id, as the configuration lists them
    if (configuration)
        for (const _MR_SPARE& spare : configuration->spares())
            roles.try_emplace(spare.ref.deviceId,
                              (spare.type & kSpareDedicated) != 0 ? kRoleDedicatedSpare : kRoleGlobalSpare);
    if (!configuration && !controller.physicalDrives)
        return std::nullopt;
    if (controller.physicalDrives) {
        const auto listed = std::exchange(roles, {});
        for (const PhysicalDrive& drive : *controller.physicalDrives) {
            if (!drive.info && !configuration)
                return std::nullopt;
            const auto row = listed.find(drive.deviceId);
            roles[drive.deviceId] = drive.info ? drive.info->role : row != listed.end() ? row->second : kRoleNone;
        }
    }
    const auto count = [&](std::string_view role) {
        return static_cast<unsigned>(std::ranges::count(roles, role, [](const auto& drive) { return drive.second; }));
    };
    return HotSpares{count(kRoleGlobalSpare), count(kRoleDedicatedSpare)};
}

} // namespace

void collectRaidGroups(Asker& asker, Controller& controller, Scope scope) {
    const auto configuration = readConfiguration(asker);
    controller.hotSpares = hotSparesOf(controller, configuration);
    if (!configuration)
        return;
    controller.raidGroups = Grouping(*configuration).groups();
    if (scope == Scope::Everything)
        for (RaidGroup& group : *controller.raidGroups)
            askSpace(asker, group, widthsOf(group, *configuration));
    if (controller.physicalDrives)
        joinDrives(controller);
}

} // namespace facts
