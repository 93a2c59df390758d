#include "commands/zebcli_cmd_ld/creation/numbers.h"

#include <algorithm>
#include <optional>
#include <span>

namespace {

/// A limit that the controller does not name is none.
unsigned limit(unsigned most, std::uint8_t ofController) {
    return ofController != 0 ? std::min<unsigned>(most, ofController) : most;
}

/// The start of the lowest run of free references, where there is one.
std::optional<std::size_t> lowestRun(const ArrayMarks& taken, std::size_t length) {
    std::size_t free = 0;
    for (std::size_t ref = 0; ref < taken.size(); ++ref) {
        free = taken[ref] ? 0 : free + 1;
        if (free == length)
            return ref + 1 - length;
    }
    return std::nullopt;
}

/// Takes the lowest free number that is not below the given one.
template <std::size_t N>
std::size_t takeLowest(std::bitset<N>& taken, std::size_t from) {
    while (from < N - 1 && taken[from])
        ++from;
    taken.set(from);
    return from;
}

} // namespace

LdMarks takenLds(const _AFCONT& cont) {
    LdMarks taken;
    for (const _MR_LD_LIST_ENTRY& entry : ldEntries(cont))
        if (entry.targetId < taken.size())
            taken.set(entry.targetId);
    for (const _MR_LD_CONFIG& ld : ldConfigsOf(cont))
        if (ld.properties.ref.targetId < taken.size())
            taken.set(ld.properties.ref.targetId);
    return taken;
}

ArrayMarks takenArrays(const _AFCONT& cont) {
    ArrayMarks taken;
    for (const _MR_ARRAY& array : arraysOf(cont))
        if (array.arrayRef < taken.size())
            taken.set(array.arrayRef);
    return taken;
}

unsigned ldLimit(const _MR_CTRL_INFO& info) {
    return limit(kMaxLds, info.maxLds);
}

unsigned arrayLimit(const _MR_CTRL_INFO& info) {
    return limit(kMaxArrays, info.maxArrays);
}

void numberLds(_SL_CREATE_LD_INFO_T& plan, const _AFCONT& cont) {
    LdMarks taken = takenLds(cont);
    for (PlannedArray& group : groupsOf(plan))
        for (PlannedLd& ld : ldsOf(group))
            ld.ldNo = static_cast<std::uint8_t>(takeLowest(taken, 0));
}

void numberArrays(_SL_CREATE_LD_INFO_T& plan, const _AFCONT& cont) {
    ArrayMarks taken = takenArrays(cont);
    for (PlannedArray& group : groupsOf(plan)) {
        const std::size_t run = lowestRun(taken, spanCountOf(group)).value_or(0);
        for (std::uint16_t& ref : std::span(group.arrayRef).first(spanCountOf(group)))
            ref = static_cast<std::uint16_t>(takeLowest(taken, run));
    }
}

bool areLdNumbersFree(const _SL_CREATE_LD_INFO_T& plan, const _AFCONT& cont) {
    const LdMarks taken = takenLds(cont);
    const auto groups = groupsOf(plan);
    return std::none_of(groups.begin(), groups.end(), [&](const PlannedArray& group) {
        const auto lds = ldsOf(group);
        return std::any_of(lds.begin(), lds.end(), [&](const PlannedLd& ld) { return taken[ld.ldNo]; });
    });
}

bool areArrayNumbersFree(const _SL_CREATE_LD_INFO_T& plan, const _AFCONT& cont) {
    const ArrayMarks taken = takenArrays(cont);
    const auto groups = groupsOf(plan);
    return std::none_of(groups.begin(), groups.end(), [&](const PlannedArray& group) {
        const auto refs = std::span(group.arrayRef).first(spanCountOf(group));
        return std::any_of(refs.begin(), refs.end(), [&](std::uint16_t ref) { return taken[ref]; });
    });
}
