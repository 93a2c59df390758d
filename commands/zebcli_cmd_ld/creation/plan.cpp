#include "commands/zebcli_cmd_ld/creation/plan.h"

#include "commands/zebcli_cmd_ld/creation/numbers.h"
#include "commands/zebcli_cmd_ld/setting_tables.h"
#include "main/zebcli_cmd_com/model/capacity.h"
#include "main/zebcli_cmd_com/model/lookup.h"
#include "main/zebcli_cmd_com/text/raid_group_words.h"

#include <algorithm>

namespace {

constexpr std::uint8_t kPreferredStripeSize = 7;
constexpr std::uint8_t kSmallestStripeSize = 4;
constexpr std::uint8_t kLargestStripeSize = 11;
constexpr std::uint64_t kBlocksPerMb = 2048;
constexpr unsigned kBlocksToMbShift = 11;
constexpr std::uint64_t kFloorMbPerDrive = 4;

/// The usable capacity of that many blocks on each drive of the group. Its level is known, so no controller is named.
std::uint64_t usable(const PlannedArray& group, std::uint64_t blocksPerPd) {
    return CalcLDCapa(group.level, group.pdCount, blocksPerPd, 0);
}

/// The blocks on each drive that an LD of that size needs, in whole stripes.
std::uint64_t neededBlocks(const PlannedArray& group, std::uint32_t sizeMb) {
    const std::uint64_t row = std::max<std::uint64_t>(usable(group, stripeBlocks(group.stripeSize)), 1);
    const std::uint64_t rows = (sizeMb * kBlocksPerMb + row - 1) / row;
    return rows * stripeBlocks(group.stripeSize);
}

std::uint64_t wholeStripes(const PlannedArray& group, std::uint64_t blocks) {
    return blocks - blocks % stripeBlocks(group.stripeSize);
}

/// Takes the blocks for a further LD from the start of the segment.
void takeLd(PlannedArray& group, FreeSegment& segment, std::uint64_t blocks) {
    PlannedLd& ld = group.ld[group.ldCount++];
    ld.startBlock = segment.start;
    ld.blocksPerPd = blocks;
    ld.size = usable(group, blocks);
    segment.start += blocks;
    segment.blocks -= blocks;
}

bool isGroupUnchanged(CreationPlan& plan) {
    const PlannedArray& group = plan.info.array[0];
    ExistingGroup now;
    if (!findGroup(plan.ctrl, slotsOf(group), group.level == kRaid10, now))
        return false;
    takeFreeSegments(plan.ctrl, now);
    plan.arrays.clear();
    for (const std::uint16_t arrayRef : now.arrayRefs)
        if (const _MR_ARRAY* array = arrayByRef(plan.ctrl.cont(), arrayRef); array != nullptr)
            plan.arrays.add(*array);
    return now == plan.existing;
}

bool areDrivesUnchanged(const CreationPlan& plan) {
    const auto unchanged = [&](const SeenDrive& drive) { return isUnchanged(plan.ctrl, drive); };
    return std::all_of(plan.drives.begin(), plan.drives.end(), unchanged) &&
           std::all_of(plan.spares.begin(), plan.spares.end(), unchanged) &&
           areArrayNumbersFree(plan.info, plan.ctrl.cont());
}

} // namespace

void startPlan(CreationPlan& plan, Controller ctrl) {
    plan = CreationPlan{};
    plan.ctrl = ctrl;
}

PlannedArray& addGroup(CreationPlan& plan, ZEB_RAID_LVL level, std::span<const std::uint8_t> slots) {
    PlannedArray& group = plan.info.array[plan.info.arrayCount++];
    group.level = level;
    group.stripeSize = plannedStripeSize(plan.ctrl.cont().ctrlInfo);
    for (const std::uint8_t slotNo : slots) {
        group.slotNo[group.pdCount++] = slotNo;
        plan.drives.add(seenDrive(plan.ctrl, slotNo));
    }
    return group;
}

std::uint8_t plannedStripeSize(const _MR_CTRL_INFO& info) {
    std::uint8_t nearest = kPreferredStripeSize;
    if (nearest < info.stripeSizeMin)
        nearest = info.stripeSizeMin;
    else if (nearest > info.stripeSizeMax)
        nearest = info.stripeSizeMax;
    return nearest >= kSmallestStripeSize && nearest <= kLargestStripeSize ? nearest : kPreferredStripeSize;
}

bool placeLds(PlannedArray& group, const LdSizes& sizes, FreeSegments& segments) {
    if (sizes.empty()) {
        const auto smaller = [](const FreeSegment& a, const FreeSegment& b) { return a.blocks < b.blocks; };
        auto* const largest = std::max_element(segments.begin(), segments.end(), smaller);
        if (largest == segments.end() || wholeStripes(group, largest->blocks) == 0)
            return false;
        takeLd(group, *largest, wholeStripes(group, largest->blocks));
        return true;
    }
    for (const std::uint32_t sizeMb : sizes) {
        const std::uint64_t needed = neededBlocks(group, sizeMb);
        auto* const segment = std::find_if(segments.begin(), segments.end(),
                                           [&](const FreeSegment& free) { return free.blocks >= needed; });
        if (segment == segments.end())
            return false;
        takeLd(group, *segment, needed);
    }
    return true;
}

std::uint64_t capacityOf(const PlannedArray& group, const FreeSegments& segments) {
    std::uint64_t capacity = 0;
    for (const FreeSegment& segment : segments)
        capacity += usable(group, segment.blocks);
    return capacity;
}

FreeSegments countingSegments(const PlannedArray& group, const FreeSegments& segments) {
    const std::uint64_t stripe = stripeBlocks(group.stripeSize);
    FreeSegments counting;
    for (const FreeSegment& segment : segments) {
        const std::uint64_t skipped = (stripe - segment.start % stripe) % stripe;
        if (skipped >= segment.blocks)
            continue;
        const FreeSegment rest{segment.start + skipped, segment.blocks - skipped};
        if ((usable(group, rest.blocks) >> kBlocksToMbShift) > kFloorMbPerDrive * group.pdCount)
            counting.add(rest);
    }
    return counting;
}

GroupName groupName(const CreationPlan& plan) {
    GroupName name{};
    mkRaidGroupArrayStr(plan.ctrl.contNo, plan.ctrl.conts, plan.existing.arrayRefs[0], name.text);
    return name;
}

void completePlan(CreationPlan& plan, std::uint8_t initType) {
    numberLds(plan.info, plan.ctrl.cont());
    if (plan.inFreeSpace)
        std::copy(plan.existing.arrayRefs.begin(), plan.existing.arrayRefs.end(), plan.info.array[0].arrayRef);
    else
        numberArrays(plan.info, plan.ctrl.cont());
    CreateLDDefaultSet(plan.info, plan.ctrl.conts, plan.ctrl.contNo, initType);
    for (PlannedArray& group : groupsOf(plan.info)) {
        group.stripeSize = plannedStripeSize(plan.ctrl.cont().ctrlInfo);
        for (PlannedLd& ld : ldsOf(group)) // not the equal shares of the default set
            ld.size = usable(group, ld.blocksPerPd);
    }
}

bool isAssociable(Controller ctrl, std::uint8_t ldNo) {
    const _MR_LD_CONFIG& ld = ctrl.ld(ldNo).config;
    return IsExistLD(ctrl.contNo, ldNo, ctrl.conts) != 0 && ld.cacheCade == 0 &&
           (ld.properties.defaultCachePolicy & kIoPolicyMask) != kCachedIo;
}

bool stillHolds(CreationPlan& plan) {
    plan.ldsBefore.clear();
    for (const _MR_LD_LIST_ENTRY& entry : ldEntries(plan.ctrl.cont()))
        plan.ldsBefore.add(entry.targetId);
    return (plan.inFreeSpace ? isGroupUnchanged(plan) : areDrivesUnchanged(plan)) &&
           areLdNumbersFree(plan.info, plan.ctrl.cont()) &&
           std::all_of(plan.associated.begin(), plan.associated.end(),
                       [&](std::uint8_t ldNo) { return isAssociable(plan.ctrl, ldNo); });
}
