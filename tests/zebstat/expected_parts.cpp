#include "tests/zebstat/expected_parts.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>
#include <set>

namespace zebtest {

namespace {

std::uint64_t blocksIn(const Json& form, std::uint64_t fallback) {
    if (form.contains("sizeGB"))
        return static_cast<std::uint64_t>(std::llround(form["sizeGB"].get<double>() * 2097152));
    return number(form, "blocks", fallback);
}

} // namespace

ExpectedParts::ExpectedParts(const Json& controller) : c_(controller) {
    readDrives();
    readArrays(list(c_, "arrays"));
    readLds();
    makeGroups();
}

void ExpectedParts::readDrives() {
    const auto enclosures = list(c_, "enclosures");
    const std::uint64_t first = enclosures.empty() ? kNoEnclosure : number(enclosures.front(), "deviceId", 252);
    std::uint64_t slot = 0;
    for (const Json& form : list(c_, "drives")) {
        slot = number(form, "slot", slot);
        std::uint64_t deviceId = number(form, "deviceId", 8 + slot);
        for (std::uint64_t i = 0; i < number(form, "repeat", 1); ++i, ++slot, ++deviceId)
            drives_.push_back({static_cast<std::uint16_t>(deviceId), static_cast<std::uint8_t>(slot),
                               static_cast<std::uint16_t>(number(form, "enclosure", first)), blocksIn(form, 584843264),
                               i, form});
    }
}

int ExpectedParts::deviceOf(const Json& node) const {
    if (node.is_null())
        return -1;
    if (node.is_object())
        return static_cast<int>(node["deviceId"].get<unsigned>());
    const auto drive = std::ranges::find(drives_, node.get<std::uint8_t>(), &Drive::slot);
    return drive->deviceId;
}

const ExpectedParts::Drive* ExpectedParts::driveOf(int deviceId) const {
    const auto drive = std::ranges::find(drives_, deviceId, &Drive::deviceId);
    return drive != drives_.end() ? &*drive : nullptr;
}

void ExpectedParts::readArrays(const std::vector<Json>& arrays) {
    for (std::size_t i = 0; i < arrays.size(); ++i) {
        Array array{static_cast<std::uint16_t>(number(arrays[i], "ref", i)), {}, 0};
        std::uint64_t smallest = 0;
        for (const Json& node : list(arrays[i], "drives")) {
            array.drives.push_back(deviceOf(node));
            const Drive* drive = driveOf(array.drives.back());
            if (drive != nullptr && (smallest == 0 || drive->blocks < smallest))
                smallest = drive->blocks;
        }
        array.blocks = blocksIn(arrays[i], smallest);
        arrays_.push_back(array);
    }
}

const ExpectedParts::Array& ExpectedParts::arrayOf(std::uint16_t ref) const {
    return *std::ranges::find(arrays_, ref, &Array::ref);
}

void ExpectedParts::readLds() {
    const auto forms = list(c_, "lds");
    for (std::size_t i = 0; i < forms.size(); ++i) {
        Ld ld{static_cast<std::uint8_t>(number(forms[i], "id", i)),
              static_cast<unsigned>(number(forms[i], "level", 0)),
              {},
              forms[i]};
        for (const Json& form : list(forms[i], "spans")) {
            Span span{static_cast<std::uint16_t>(number(form, "array", 0)), number(form, "startBlock", 0), 0};
            span.blocks = blocksIn(form, arrayOf(span.array).blocks - span.start);
            ld.spans.push_back(span);
        }
        lds_.push_back(std::move(ld));
    }
    std::ranges::sort(lds_, {}, &Ld::number);
}

/// Arrays that LDs span together are one group; CacheCade groups are counted apart.
void ExpectedParts::makeGroups() {
    std::set<std::uint16_t> done;
    unsigned plain = 0;
    unsigned cached = 0;
    for (const Array& array : arrays_) {
        if (done.contains(array.ref))
            continue;
        std::set<std::uint16_t> refs{array.ref};
        for (std::size_t before = 0; before != refs.size();) {
            before = refs.size();
            for (const Ld& ld : lds_)
                if (std::ranges::any_of(ld.spans, [&](const Span& span) { return refs.contains(span.array); }))
                    for (const Span& span : ld.spans)
                        refs.insert(span.array);
        }
        Group group;
        for (const Array& member : arrays_)
            if (refs.contains(member.ref))
                group.arrays.push_back(member.ref);
        for (const Ld& ld : lds_)
            if (refs.contains(ld.spans.front().array))
                group.lds.push_back(&ld);
        const bool cacheCade = !group.lds.empty() && flag(group.lds.front()->form, "cacheCade", false);
        group.name = cacheCade ? "scRG" + std::to_string(cached++) : "RG" + std::to_string(plain++);
        done.insert(refs.begin(), refs.end());
        groups_.push_back(std::move(group));
    }
}

const ExpectedParts::Group* ExpectedParts::groupOf(int deviceId) const {
    for (const Group& group : groups_)
        for (const std::uint16_t ref : group.arrays)
            if (std::ranges::count(arrayOf(ref).drives, deviceId) != 0)
                return &group;
    return nullptr;
}

std::uint64_t ExpectedParts::stateOf(const Drive& drive) const {
    const std::pair<const char*, unsigned> words[] = {{"good", 0},       {"bad", 1},        {"spare", 2},
                                                      {"offline", 0x10}, {"failed", 0x11},  {"rebuild", 0x14},
                                                      {"online", 0x18},  {"copyback", 0x20}};
    if (drive.form.contains("state")) {
        const auto* known = std::ranges::find_if(words, [&](const auto& w) { return drive.form["state"] == w.first; });
        return known != std::end(words) ? known->second : numberIn(drive.form["state"]);
    }
    const auto under = [&](const char* key) { return drive.form.contains(key) && !drive.form[key].is_null(); };
    if (under("copyback"))
        return 0x20;
    if (groupOf(drive.deviceId) != nullptr)
        return under("rebuild") ? 0x14 : 0x18;
    for (const Json& spare : list(c_, "spares"))
        if (deviceOf(spare["drive"]) == drive.deviceId)
            return 2;
    return 0;
}

std::uint64_t ExpectedParts::stateOf(const Ld& ld) const {
    enum { kOffline, kPartly, kDegraded, kOptimal };
    if (ld.form.contains("state"))
        return code(ld.form, "state", 0, {"offline", "partiallyDegraded", "degraded", "optimal"});
    std::uint64_t worst = kOptimal;
    const auto take = [&](std::uint64_t state) {
        constexpr std::array kBadness{3, 1, 2, 0};
        if (kBadness.at(state) > kBadness.at(worst))
            worst = state;
    };
    for (const Span& span : ld.spans) {
        std::vector<bool> good;
        for (const int id : arrayOf(span.array).drives) {
            const Drive* drive = driveOf(id);
            good.push_back(drive != nullptr && (stateOf(*drive) == 0x18 || stateOf(*drive) == 0x20));
        }
        const auto lost = std::ranges::count(good, false);
        if (ld.level == 1 || ld.level == 10) {
            for (std::size_t i = 0; i + 1 < good.size(); i += 2)
                take(good[i] && good[i + 1] ? kOptimal : good[i] || good[i + 1] ? kDegraded : kOffline);
        } else if (lost != 0) {
            const bool survives = (ld.level == 5 && lost == 1) || (ld.level == 6 && lost <= 2);
            take(!survives ? kOffline : ld.level == 6 && lost == 1 ? kPartly : kDegraded);
        }
    }
    return worst;
}

void ExpectedParts::put(Json& out) const {
    for (const char* key : {"enclosures", "physical_drives", "raid_groups", "logical_drives"})
        out[key] = Json::array();
    const auto enclosures = list(c_, "enclosures");
    std::size_t room = 256; // of the drive list, which holds the enclosures too
    for (std::size_t i = 0; i < enclosures.size(); ++i) {
        out["enclosures"].push_back(enclosure(enclosures[i], i));
        room -= out["enclosures"].back()["type"] == "ses" ? 1U : 0U;
    }
    std::vector<const Drive*> drives;
    for (const Drive& drive : drives_)
        if (drives.size() < room)
            drives.push_back(&drive);
    std::ranges::sort(drives, {}, [](const Drive* d) {
        const bool outside = d->enclosure == kNoEnclosure || d->enclosure == 0xFF;
        return std::tuple(outside, d->enclosure, d->slot, d->deviceId);
    });
    for (const Drive* d : drives)
        out["physical_drives"].push_back(drive(*d));
    for (const Group& g : groups_)
        out["raid_groups"].push_back(group(g));
    for (const Ld& l : lds_)
        out["logical_drives"].push_back(ld(l));
}

} // namespace zebtest
