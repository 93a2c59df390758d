#include "commands/zebcli_cmd_ld/creation/easy_variants.h"

#include "commands/zebcli_cmd_ld/creation/rules.h"

#include <algorithm>

namespace {

std::span<const ZEB_RAID_LVL> levelsOf(const _raidConstructInfoT& list) {
    return {list.level, std::min<std::size_t>(list.count, std::size(list.level))};
}

std::span<const std::uint8_t> unconfiguredDrives() {
    return std::span(unconfiguredPdList).first(std::min(unconfiguredPds, kMostEasyDrives));
}

/// Whether each LD has at least one stripe on each of its drives.
bool holdsAStripe(Controller ctrl, const EasyVariant& variant) {
    const EasyDivision division = divide(ctrl, variant);
    const std::uint64_t stripe = stripeBlocks(plannedStripeSize(ctrl.cont().ctrlInfo));
    return std::all_of(division.drives.begin(), division.drives.end(), [&](const auto& slots) {
        return std::all_of(slots.begin(), slots.end(),
                           [&](std::uint8_t slotNo) { return ctrl.pd(slotNo).coercedSize >= stripe; });
    });
}

bool canBuildAll(Controller ctrl, const EasyVariant& variant) {
    NewObjects objects{variant.lds, 0};
    for (unsigned i = 0; i < variant.lds; ++i) {
        if (!canBuild(ctrl, variant.level[i], false, variant.drives[i]))
            return false;
        objects.arrays += spanCountOf(variant.level[i], variant.drives[i]);
    }
    return hasRoom(ctrl, objects) && holdsAStripe(ctrl, variant);
}

void addIfPossible(Controller ctrl, const EasyVariant& variant, EasyVariants& variants) {
    if (canBuildAll(ctrl, variant))
        variants.add(variant);
}

/// All drives in one LD, or all but one spare where the level has a use for it.
void findSingles(Controller ctrl, unsigned drives, EasyVariants& variants) {
    _raidConstructInfoT levels{};
    getRaidConstructInfo(1, drives, levels, ctrl.conts, ctrl.contNo);
    for (const ZEB_RAID_LVL level : levelsOf(levels))
        for (unsigned spares = 0; spares <= 1 && spares < drives; ++spares) {
            const unsigned most = GetMaxPdNumForRaidLvl(level, ctrl.conts, ctrl.contNo);
            const unsigned used = most != 0 ? std::min(drives - spares, most) : drives - spares;
            if (spares == 0 || level != kRaid0)
                addIfPossible(ctrl, {.lds = 1, .level = {level}, .drives = {used}, .spares = spares}, variants);
        }
}

/// The drives divided between two LDs of these levels and the spares, of which one LD must have a use.
void findDivisions(Controller ctrl, unsigned drives, ZEB_RAID_LVL first, ZEB_RAID_LVL second, EasyVariants& variants) {
    const unsigned mostSpares = first != kRaid0 || second != kRaid0 ? kMostEasySpares : 0;
    for (unsigned behindFirst = 1; behindFirst < drives; ++behindFirst)
        for (unsigned spares = 0; spares <= mostSpares && spares < behindFirst; ++spares)
            addIfPossible(ctrl,
                          {.lds = 2,
                           .level = {first, second},
                           .drives = {drives - behindFirst, behindFirst - spares},
                           .spares = spares},
                          variants);
}

void findPairs(Controller ctrl, unsigned drives, EasyVariants& variants) {
    _raidConstructInfoT firsts{};
    getRaidConstructInfo(2, drives, firsts, ctrl.conts, ctrl.contNo);
    for (const ZEB_RAID_LVL first : levelsOf(firsts)) {
        _raidConstructInfoT seconds{};
        getOtherRaidConstructInfo(first, drives, seconds, ctrl.conts, ctrl.contNo, false);
        for (const ZEB_RAID_LVL second : levelsOf(seconds))
            findDivisions(ctrl, drives, first, second, variants);
    }
}

} // namespace

EasyDivision divide(Controller ctrl, const EasyVariant& variant) {
    BoundedList<std::uint8_t, kMostEasyDrives> bySize;
    for (const std::uint8_t slotNo : unconfiguredDrives())
        bySize.add(slotNo);
    std::sort(bySize.begin(), bySize.end(), [&](std::uint8_t a, std::uint8_t b) {
        const std::uint64_t sizeA = ctrl.pd(a).coercedSize;
        const std::uint64_t sizeB = ctrl.pd(b).coercedSize;
        return sizeA != sizeB ? sizeA > sizeB : a > b;
    });
    EasyDivision division;
    for (const std::uint8_t slotNo : bySize.list().first(std::min<std::size_t>(variant.spares, bySize.size())))
        division.spares.add(slotNo);
    std::sort(division.spares.begin(), division.spares.end());
    std::size_t ld = 0;
    for (const std::uint8_t slotNo : unconfiguredDrives()) {
        if (division.spares.contains(slotNo))
            continue;
        while (ld < kMostEasyLds && division.drives[ld].size() == variant.drives[ld])
            ++ld;
        if (ld < kMostEasyLds)
            division.drives[ld].add(slotNo);
    }
    return division;
}

void findVariants(Controller ctrl, EasyVariants& variants) {
    const auto drives = static_cast<unsigned>(unconfiguredDrives().size());
    variants.clear();
    findSingles(ctrl, drives, variants);
    findPairs(ctrl, drives, variants);
}
