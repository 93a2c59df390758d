#include "simulator/model.h"

#include <algorithm>

namespace zebsim {

namespace {

template <class Items, class Key, class Member>
auto* findBy(Items& items, Key key, Member member) {
    const auto it = std::find_if(items.begin(), items.end(), [&](const auto& item) { return item.*member == key; });
    return it == items.end() ? nullptr : &*it;
}

template <class Arrays>
auto* arrayHolding(Arrays& arrays, std::uint16_t deviceId) {
    const auto it = std::find_if(arrays.begin(), arrays.end(), [&](const Array& array) {
        return std::find(array.drives.begin(), array.drives.end(), deviceId) != array.drives.end();
    });
    return it == arrays.end() ? nullptr : &*it;
}

bool holdsData(const Controller& ctrl, std::uint16_t deviceId) {
    const Drive* drive = findDrive(ctrl, deviceId);
    return drive != nullptr && (drive->state == kPdOnline || drive->state == kPdCopyback);
}

std::uint8_t mirrorState(const std::vector<bool>& good) {
    std::uint8_t state = kLdOptimal;
    for (std::size_t i = 0; i < good.size(); i += 2) {
        const bool second = i + 1 < good.size() && good[i + 1];
        if (!good[i] && !second)
            return kLdOffline;
        if (!good[i] || !second)
            state = kLdDegraded;
    }
    return state;
}

std::uint8_t spanState(std::uint8_t level, const std::vector<bool>& good) {
    if (level == 1 || level == 10)
        return mirrorState(good);
    const auto lost = std::count(good.begin(), good.end(), false);
    if (lost == 0)
        return kLdOptimal;
    if (level == 5 && lost == 1)
        return kLdDegraded;
    if (level == 6 && lost == 1)
        return kLdPartiallyDegraded;
    return level == 6 && lost == 2 ? kLdDegraded : kLdOffline;
}

/// Orders the states by how bad they are; their codes do not.
int severity(std::uint8_t state) {
    switch (state) {
    case kLdOptimal:
        return 0;
    case kLdPartiallyDegraded:
        return 1;
    case kLdDegraded:
        return 2;
    default:
        return 3;
    }
}

} // namespace

Controller* findController(Model& model, std::uint32_t id) {
    return findBy(model.controllers, id, &Controller::id);
}
Drive* findDrive(Controller& ctrl, std::uint16_t deviceId) {
    return findBy(ctrl.drives, deviceId, &Drive::deviceId);
}
const Drive* findDrive(const Controller& ctrl, std::uint16_t deviceId) {
    return findBy(ctrl.drives, deviceId, &Drive::deviceId);
}
Array* findArray(Controller& ctrl, std::uint16_t ref) {
    return findBy(ctrl.arrays, ref, &Array::ref);
}
const Array* findArray(const Controller& ctrl, std::uint16_t ref) {
    return findBy(ctrl.arrays, ref, &Array::ref);
}
LogicalDrive* findLd(Controller& ctrl, std::uint8_t id) {
    return findBy(ctrl.lds, id, &LogicalDrive::id);
}
const Spare* findSpare(const Controller& ctrl, std::uint16_t deviceId) {
    return findBy(ctrl.spares, deviceId, &Spare::deviceId);
}
const Enclosure* findEnclosure(const Controller& ctrl, std::uint16_t deviceId) {
    return findBy(ctrl.enclosures, deviceId, &Enclosure::deviceId);
}

Array* arrayOfDrive(Controller& ctrl, std::uint16_t deviceId) {
    return arrayHolding(ctrl.arrays, deviceId);
}
const Array* arrayOfDrive(const Controller& ctrl, std::uint16_t deviceId) {
    return arrayHolding(ctrl.arrays, deviceId);
}

bool usesArray(const LogicalDrive& ld, std::uint16_t ref) {
    return std::any_of(ld.spans.begin(), ld.spans.end(), [&](const Span& span) { return span.array == ref; });
}

std::vector<const LogicalDrive*> ldsOfArray(const Controller& ctrl, std::uint16_t ref) {
    std::vector<std::pair<std::uint64_t, const LogicalDrive*>> placed;
    for (const LogicalDrive& ld : ctrl.lds) {
        const auto span = std::find_if(ld.spans.begin(), ld.spans.end(), [&](const Span& s) { return s.array == ref; });
        if (span != ld.spans.end())
            placed.emplace_back(span->startBlock, &ld);
    }
    std::sort(placed.begin(), placed.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    std::vector<const LogicalDrive*> result;
    for (const auto& [start, ld] : placed)
        result.push_back(ld);
    return result;
}

std::vector<const Array*> raidGroupOf(const Controller& ctrl, const Array& array) {
    std::vector<const Array*> group{&array};
    for (std::size_t i = 0; i < group.size(); ++i) {
        for (const LogicalDrive* ld : ldsOfArray(ctrl, group[i]->ref)) {
            for (const Span& span : ld->spans) {
                const Array* other = findArray(ctrl, span.array);
                if (other != nullptr && std::find(group.begin(), group.end(), other) == group.end())
                    group.push_back(other);
            }
        }
    }
    return group;
}

std::vector<Span> freeSegments(const Controller& ctrl, const Array& array) {
    std::vector<Span> used;
    for (const LogicalDrive& ld : ctrl.lds)
        std::copy_if(ld.spans.begin(), ld.spans.end(), std::back_inserter(used),
                     [&](const Span& span) { return span.array == array.ref; });
    std::sort(used.begin(), used.end(), [](const Span& a, const Span& b) { return a.startBlock < b.startBlock; });

    std::vector<Span> free;
    std::uint64_t next = 0;
    for (const Span& span : used) {
        if (span.startBlock > next)
            free.push_back({array.ref, next, span.startBlock - next});
        next = std::max(next, span.startBlock + span.blocks);
    }
    if (array.blocks > next)
        free.push_back({array.ref, next, array.blocks - next});
    return free;
}

std::uint64_t usableBlocks(std::uint8_t level, std::size_t drives, std::uint64_t blocks) {
    const std::uint64_t n = drives;
    switch (level) {
    case 1:
    case 10:
        return n / 2 * blocks;
    case 5:
        return n > 1 ? (n - 1) * blocks : 0;
    case 6:
        return n > 2 ? (n - 2) * blocks : 0;
    default:
        return n * blocks;
    }
}

std::uint64_t ldBlocks(const Controller& ctrl, const LogicalDrive& ld) {
    std::uint64_t total = 0;
    for (const Span& span : ld.spans) {
        const Array* array = findArray(ctrl, span.array);
        total += usableBlocks(ld.level, array == nullptr ? 0 : array->drives.size(), span.blocks);
    }
    return total;
}

std::uint64_t smallestDrive(const Controller& ctrl, const Array& array) {
    std::uint64_t smallest = 0;
    for (const std::uint16_t id : array.drives) {
        const Drive* drive = findDrive(ctrl, id);
        if (drive != nullptr && (smallest == 0 || drive->blocks < smallest))
            smallest = drive->blocks;
    }
    return smallest;
}

std::uint8_t derivedLdState(const Controller& ctrl, const LogicalDrive& ld, const std::vector<Array>& arrays) {
    std::uint8_t worst = kLdOptimal;
    for (const Span& span : ld.spans) {
        const Array* array = findBy(arrays, span.array, &Array::ref);
        std::vector<bool> good;
        if (array != nullptr)
            std::transform(array->drives.begin(), array->drives.end(), std::back_inserter(good),
                           [&](std::uint16_t id) { return holdsData(ctrl, id); });
        const std::uint8_t state = array == nullptr ? std::uint8_t{kLdOffline} : spanState(ld.level, good);
        if (severity(state) > severity(worst))
            worst = state;
    }
    return worst;
}

std::uint8_t effectiveCachePolicy(const Controller& ctrl, std::uint8_t defaultPolicy) {
    constexpr std::uint8_t kWriteBack = 0x01;
    constexpr std::uint8_t kEvenWithoutBackup = 0x10;
    constexpr std::uint32_t kPackMissingOrReplace = 1U << 0 | 1U << 10;
    const bool backed = ctrl.cacheBackup && (ctrl.cacheBackup->status & kPackMissingOrReplace) == 0;
    if (backed || (defaultPolicy & kEvenWithoutBackup) != 0)
        return defaultPolicy;
    return static_cast<std::uint8_t>(defaultPolicy & ~kWriteBack);
}

} // namespace zebsim
