#include "commands/zebcli_cmd_ld/creation/existing_group.h"

#include "main/zebcli_cmd_com/model/lookup.h"
#include "storelib/common/StoreLib/configuration.h"
#include "storelib/records/status.h"
#include "storelib/records/views.h"

#include <algorithm>
#include <array>

namespace {

constexpr std::size_t kPair = 2;

using Slots = std::array<std::uint8_t, kMaxSlots>;

bool isOnGroup(const ExistingGroup& group, const _MR_LD_CONFIG& ld) {
    const auto spans = spansOf(ld);
    return std::any_of(spans.begin(), spans.end(),
                       [&](const _MR_SPAN& span) { return group.arrayRefs.contains(span.arrayRef); });
}

/// Whether every array that carries the same group number is among the LD's own, so that the LD is on all of its group.
bool coversItsGroup(const _AFCONT& cont, const ExistingGroup& group) {
    const auto& own = cont.rgNoList.entry[group.arrayRefs[0]];
    for (unsigned ref = 0; ref < kMaxArrays; ++ref) {
        const auto& other = cont.rgNoList.entry[ref];
        if (other.known != 0 && other.cacheCade == own.cacheCade && other.groupNo == own.groupNo &&
            !group.arrayRefs.contains(static_cast<std::uint16_t>(ref)))
            return false;
    }
    return true;
}

/// The arrays of an LD's group and the drives that are left in them; false where the configuration does not hold
/// together.
bool takeArrays(Controller ctrl, const _MR_LD_CONFIG& ld, ExistingGroup& group) {
    group = {};
    for (const _MR_SPAN& span : spansOf(ld)) {
        const _MR_ARRAY* array = arrayByRef(ctrl.cont(), span.arrayRef);
        if (array == nullptr || array->arrayRef >= kMaxArrays || group.arrayRefs.contains(array->arrayRef))
            return false;
        group.arrayRefs.add(array->arrayRef);
        for (const _MR_ARRAY_PD& drive : drivesOf(*array)) {
            unsigned char slotNo = 0;
            if (drive.ref.deviceId != kNoDevice && GetSlotNo(ctrl.contNo, drive.ref.deviceId, &slotNo, ctrl.conts) != 0)
                group.drives.add({slotNo, drive.ref.deviceId, ctrl.pd(slotNo).coercedSize});
        }
    }
    return !group.arrayRefs.empty() && coversItsGroup(ctrl.cont(), group);
}

void takeLds(Controller ctrl, ExistingGroup& group) {
    for (const _MR_LD_LIST_ENTRY& entry : ldEntries(ctrl.cont())) {
        if (entry.targetId >= kMaxLds || !isOnGroup(group, ctrl.ld(entry.targetId).config))
            continue;
        const _MR_LD_INFO& info = ctrl.ld(entry.targetId);
        const _MR_LD_CONFIG& ld = info.config;
        group.lds.add({entry.targetId, SLTransLateRAIDLvl(&ld), ld.spanDepth, ld.state, ld.cacheCade != 0,
                       (info.progress.active & kLdProgRecon) != 0, ld.span[0].startBlock, ld.span[0].numBlocks});
    }
}

/// The slots in an order that does not depend on how they were named: sorted, in pairs the pairs as well.
Slots inOrder(std::span<const std::uint8_t> slots, bool inPairs) {
    Slots sorted{};
    std::copy(slots.begin(), slots.end(), sorted.begin());
    if (!inPairs) {
        std::sort(sorted.begin(), sorted.begin() + static_cast<std::ptrdiff_t>(slots.size()));
        return sorted;
    }
    std::array<std::array<std::uint8_t, kPair>, kMaxSlots / kPair> pairs{};
    for (std::size_t i = 0; i + 1 < slots.size(); i += kPair)
        pairs[i / kPair] = {std::min(slots[i], slots[i + 1]), std::max(slots[i], slots[i + 1])};
    std::sort(pairs.begin(), pairs.begin() + static_cast<std::ptrdiff_t>(slots.size() / kPair));
    for (std::size_t i = 0; i + 1 < slots.size(); i += kPair)
        std::copy(pairs[i / kPair].begin(), pairs[i / kPair].end(), sorted.begin() + static_cast<std::ptrdiff_t>(i));
    return sorted;
}

bool hasExactly(const ExistingGroup& group, std::span<const std::uint8_t> slots, bool inPairs) {
    if (group.drives.size() != slots.size() || slots.size() > kMaxSlots ||
        (inPairs && group.drives.size() != group.arrayRefs.size() * kPair))
        return false;
    Slots own{};
    std::transform(group.drives.begin(), group.drives.end(), own.begin(),
                   [](const SeenDrive& drive) { return drive.slotNo; });
    return inOrder(std::span(own).first(slots.size()), inPairs) == inOrder(slots, inPairs);
}

/// The free segments of one array, cut at its size, ascending.
FreeSegments segmentsOf(const _SL_ARRAY_INFO_T& info, std::uint64_t arraySize) {
    FreeSegments segments;
    for (const _MR_FREE_SEGMENT& segment : freeSegmentsOf(info))
        if (segment.startBlock < arraySize && segment.size != 0)
            segments.add({segment.startBlock, std::min<std::uint64_t>(segment.size, arraySize - segment.startBlock)});
    std::sort(segments.begin(), segments.end(),
              [](const FreeSegment& a, const FreeSegment& b) { return a.start < b.start; });
    return segments;
}

FreeSegments commonPart(const FreeSegments& a, const FreeSegments& b) {
    FreeSegments common;
    for (const FreeSegment& one : a)
        for (const FreeSegment& other : b) {
            const std::uint64_t start = std::max(one.start, other.start);
            const std::uint64_t end = std::min(one.start + one.blocks, other.start + other.blocks);
            if (start < end)
                common.add({start, end - start});
        }
    return common;
}

/// Takes what the array of span k has free; of several spans only what all have free at the same place.
void takeSpan(Controller ctrl, ExistingGroup& group, std::size_t k, const _SL_ARRAY_INFO_T& info) {
    const _MR_ARRAY* array = arrayByRef(ctrl.cont(), group.arrayRefs[k]);
    const FreeSegments segments = segmentsOf(info, array != nullptr ? array->size : 0);
    group.segments = k == 0 ? segments : commonPart(group.segments, segments);
}

} // namespace

const _MR_ARRAY* arrayByRef(const _AFCONT& cont, std::uint16_t arrayRef) {
    const auto arrays = arraysOf(cont);
    const auto found =
        std::find_if(arrays.begin(), arrays.end(), [&](const _MR_ARRAY& array) { return array.arrayRef == arrayRef; });
    return found != arrays.end() ? &*found : nullptr;
}

bool findGroup(Controller ctrl, std::span<const std::uint8_t> slots, bool inPairs, ExistingGroup& group) {
    for (const _MR_LD_LIST_ENTRY& entry : ldEntries(ctrl.cont())) {
        if (entry.targetId >= kMaxLds || !takeArrays(ctrl, ctrl.ld(entry.targetId).config, group) ||
            !hasExactly(group, slots, inPairs))
            continue;
        takeLds(ctrl, group);
        return true;
    }
    return false;
}

std::uint32_t readFreeSegments(Controller ctrl, ExistingGroup& group) {
    for (std::size_t k = 0; k < group.arrayRefs.size(); ++k) {
        _SL_ARRAY_INFO_T info{};
        if (const std::uint32_t status = SLGetArrayInfo(ctrl.contNo, group.arrayRefs[k], &info); status != kSlSuccess)
            return status;
        takeSpan(ctrl, group, k, info);
    }
    return kSlSuccess;
}

void takeFreeSegments(Controller ctrl, ExistingGroup& group) {
    for (std::size_t k = 0; k < group.arrayRefs.size(); ++k)
        takeSpan(ctrl, group, k, ctrl.cont().arrayInfo[group.arrayRefs[k]]);
}

bool isGroupOfLevel(const ExistingGroup& group, ZEB_RAID_LVL level) {
    return std::all_of(group.lds.begin(), group.lds.end(), [&](const GroupLd& ld) {
        return !ld.cacheCade && ld.level == level && (ld.spanDepth == 1 || level == kRaid10);
    });
}

bool isGroupHealthy(const ExistingGroup& group) {
    return std::all_of(group.lds.begin(), group.lds.end(),
                       [](const GroupLd& ld) { return ld.state == kLdOptimal && !ld.reconstructs; });
}
