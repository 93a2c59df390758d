// What must hold between the parts of a controller.
#include "simulator/scenario.h"

#include <algorithm>
#include <map>
#include <set>

namespace zebsim {

namespace {

std::string item(const std::string& place, const char* list, std::size_t index) {
    return place + "." + list + "[" + std::to_string(index) + "]";
}

std::string n(std::uint64_t value) {
    return std::to_string(value);
}

using DriveUse = std::map<std::uint16_t, std::string>;

void checkArrays(const Controller& ctrl, const std::vector<Array>& arrays, const std::string& place, DriveUse& used) {
    std::set<std::uint16_t> refs;
    for (std::size_t i = 0; i < arrays.size(); ++i) {
        const Array& array = arrays[i];
        const std::string here = item(place, "arrays", i);
        if (!refs.insert(array.ref).second)
            throw ScenarioError(here + ".ref", "array " + n(array.ref) + " is there already; give another \"ref\"");
        if (array.drives.empty())
            throw ScenarioError(here + ".drives", "list the drives of the array by slot");
        if (array.blocks == 0)
            throw ScenarioError(here, "give \"blocks\"; no drive of the array tells its size");
        for (std::size_t k = 0; k < array.drives.size(); ++k) {
            const std::uint16_t id = array.drives[k];
            if (id == kNoDevice)
                continue;
            if (!used.emplace(id, here).second)
                throw ScenarioError(item(here, "drives", k), "the drive is in " + used[id] + " too; keep it in one");
            if (findDrive(ctrl, id)->blocks < array.blocks)
                throw ScenarioError(item(here, "drives", k), "the drive is smaller than the array; lower \"blocks\"");
        }
    }
}

void checkLevel(const LogicalDrive& ld, std::size_t drives, const std::string& place) {
    struct Rule {
        std::uint8_t level;
        std::size_t leastDrives;
        std::size_t leastSpans;
        std::size_t mostSpans;
        bool even;
    };
    static constexpr Rule kRules[] = {
        {0, 1, 1, 8, false}, {1, 2, 1, 1, true}, {5, 3, 1, 8, false}, {6, 3, 1, 8, false}, {10, 2, 2, 8, true}};
    const auto* rule =
        std::find_if(std::begin(kRules), std::end(kRules), [&](const Rule& r) { return r.level == ld.level; });
    if (rule == std::end(kRules))
        throw ScenarioError(place + ".level", "give 0, 1, 5, 6 or 10");
    if (ld.spans.size() < rule->leastSpans || ld.spans.size() > rule->mostSpans)
        throw ScenarioError(place + ".spans", ld.level == 1 ? "give one span, or use level 10"
                                                            : "give " + n(rule->leastSpans) + " to 8 spans");
    if (drives < rule->leastDrives || (rule->even && drives % 2 != 0))
        throw ScenarioError(place, "level " + n(ld.level) + " needs " +
                                       (rule->even ? "an even number of" : "at least ") +
                                       (rule->even ? "" : n(rule->leastDrives)) + " drives in each array of its spans");
}

void checkLds(const std::vector<LogicalDrive>& lds, const std::vector<Array>& arrays, const std::string& place) {
    std::set<std::uint8_t> ids;
    std::map<std::uint16_t, std::vector<Span>> placed;
    for (std::size_t i = 0; i < lds.size(); ++i) {
        const LogicalDrive& ld = lds[i];
        const std::string here = item(place, "lds", i);
        if (!ids.insert(ld.id).second)
            throw ScenarioError(here + ".id", "LD " + n(ld.id) + " is there already; give another \"id\"");
        std::size_t width = 0;
        for (std::size_t k = 0; k < ld.spans.size(); ++k) {
            const Span& span = ld.spans[k];
            const std::string there = item(here, "spans", k);
            const auto array =
                std::find_if(arrays.begin(), arrays.end(), [&](const Array& a) { return a.ref == span.array; });
            if (array == arrays.end())
                throw ScenarioError(there + ".array", "array " + n(span.array) + " is missing; add it to \"arrays\"");
            if (span.blocks == 0 || span.startBlock >= array->blocks || span.blocks > array->blocks - span.startBlock)
                throw ScenarioError(there, "keep it within the array's " + n(array->blocks) + " blocks");
            if (k > 0 && array->drives.size() != width)
                throw ScenarioError(there + ".array", "use arrays with the same number of drives in all spans");
            width = array->drives.size();
            for (const Span& other : placed[span.array]) {
                if (span.startBlock < other.startBlock + other.blocks &&
                    other.startBlock < span.startBlock + span.blocks)
                    throw ScenarioError(there, "it overlaps another LD; move \"startBlock\" or lower \"blocks\"");
            }
            placed[span.array].push_back(span);
        }
        checkLevel(ld, width, here);
    }
}

void checkSpares(const Controller& ctrl, const std::string& place) {
    std::set<std::uint16_t> seen;
    for (std::size_t i = 0; i < ctrl.spares.size(); ++i) {
        const Spare& spare = ctrl.spares[i];
        const std::string here = item(place, "spares", i);
        if (findDrive(ctrl, spare.deviceId) == nullptr)
            throw ScenarioError(here + ".drive", "name the slot of the spare drive");
        if (!seen.insert(spare.deviceId).second)
            throw ScenarioError(here + ".drive", "the drive is a spare already; list it once");
        if (arrayOfDrive(ctrl, spare.deviceId) != nullptr)
            throw ScenarioError(here + ".drive", "the drive is in an array; a spare must be in none");
        for (std::size_t k = 0; k < spare.arrays.size(); ++k) {
            if (findArray(ctrl, spare.arrays[k]) == nullptr)
                throw ScenarioError(item(here, "arrays", k), "the array is missing; name one of \"arrays\"");
        }
    }
}

} // namespace

void checkDrives(const Controller& ctrl, const std::string& place) {
    std::set<std::uint32_t> ids;
    std::set<std::pair<std::uint16_t, std::uint8_t>> slots;
    for (const Enclosure& enclosure : ctrl.enclosures)
        ids.insert(enclosure.deviceId);
    if (ids.size() != ctrl.enclosures.size())
        throw ScenarioError(place + ".enclosures", "give each enclosure a device id of its own");
    for (std::size_t i = 0; i < ctrl.drives.size(); ++i) {
        const Drive& drive = ctrl.drives[i];
        if (!ids.insert(drive.deviceId).second)
            throw ScenarioError(item(place, "drives", i),
                                "device id " + n(drive.deviceId) + " is taken; give the drive another \"deviceId\"");
        if (!slots.insert({drive.enclosureId, drive.slot}).second)
            throw ScenarioError(item(place, "drives", i),
                                "slot " + n(drive.slot) + " is taken; give the drive another \"slot\"");
    }
    if (ctrl.drives.size() > 256)
        throw ScenarioError(place + ".drives", "list at most 256 of them");
}

void checkController(const Controller& ctrl, const std::string& place) {
    DriveUse used;
    checkArrays(ctrl, ctrl.arrays, place, used);
    checkLds(ctrl.lds, ctrl.arrays, place);
    checkSpares(ctrl, place);
    for (std::size_t i = 0; i < ctrl.foreign.size(); ++i) {
        const std::string here = item(place, "foreign", i);
        checkArrays(ctrl, ctrl.foreign[i].arrays, here, used);
        checkLds(ctrl.foreign[i].lds, ctrl.foreign[i].arrays, here);
    }
}

} // namespace zebsim
