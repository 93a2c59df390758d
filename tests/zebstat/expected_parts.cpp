#include "tests/zebstat/expected_parts.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <numeric>
#include <set>

namespace zebtest {

std::uint64_t numberIn(const Json& node) {
    return node.is_string() ? std::stoull(node.get<std::string>(), nullptr, 0) : node.get<std::uint64_t>();
}

std::uint64_t number(const Json& object, const char* key, std::uint64_t fallback) {
    return object.contains(key) ? numberIn(object[key]) : fallback;
}

std::int64_t integer(const Json& object, const char* key, std::int64_t fallback) {
    return object.value(key, fallback);
}

bool flag(const Json& object, const char* key, bool fallback) {
    return object.value(key, fallback);
}

Json object(const Json& parent, const char* key) {
    return parent.value(key, Json::object());
}

std::vector<Json> list(const Json& parent, const char* key) {
    return parent.value(key, std::vector<Json>());
}

Json text(const Json& object, const char* key, const std::string& fallback, std::size_t width) {
    // In the form each character is one byte.
    const std::string form = object.value(key, fallback);
    std::string field;
    for (std::size_t i = 0; i < form.size(); ++i) {
        const auto byte = static_cast<unsigned char>(form[i]);
        field += byte < 0x80 ? form[i] : static_cast<char>((byte & 0x03U) << 6U | (form[++i] & 0x3FU));
    }
    field = field.substr(0, std::min(width, field.find('\0')));
    const auto first = field.find_first_not_of(' ');
    if (first == std::string::npos)
        return nullptr;
    field = field.substr(first, field.find_last_not_of(' ') + 1 - first);
    return Json::parse(Json(field).dump(-1, ' ', false, Json::error_handler_t::replace));
}

std::uint64_t code(const Json& object, const char* key, std::uint64_t fallback, const std::vector<std::string>& form) {
    if (!object.contains(key))
        return fallback;
    const auto place = object[key].is_string() ? std::ranges::find(form, object[key].get<std::string>()) : form.end();
    return place != form.end() ? static_cast<std::uint64_t>(place - form.begin()) : numberIn(object[key]);
}

void word(Json& out, const std::string& key, std::uint64_t code, const std::vector<std::string>& words) {
    if (code < words.size() && !words[code].empty()) {
        out[key] = words[code];
    } else {
        out[key] = "unknown";
        out[key + "_code"] = code;
    }
}

std::string hex(std::uint64_t number, int width) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%0*llx", width, static_cast<unsigned long long>(number));
    return text.data();
}

Json time(std::uint64_t seconds) {
    constexpr std::time_t kEpoch = 946684800; // 2000-01-01
    if (seconds == 0 || seconds == 0xFFFFFFFF)
        return nullptr;
    const std::time_t when = kEpoch + static_cast<std::time_t>(seconds);
    std::tm parts{};
    gmtime_r(&when, &parts);
    std::array<char, 32> text{};
    std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S", &parts);
    return text.data();
}

Json stripeBytes(std::uint64_t code) {
    return code >= 4 && code <= 11 ? Json(512U << code) : Json();
}

Json bytes(std::uint64_t blocks) {
    return blocks < std::uint64_t{1} << 54U ? Json(blocks * 512) : Json();
}

namespace {

constexpr std::uint16_t kNoEnclosure = 0xFFFF;

std::uint64_t blocksIn(const Json& form, std::uint64_t fallback) {
    if (form.contains("sizeGB"))
        return static_cast<std::uint64_t>(std::llround(form["sizeGB"].get<double>() * 2097152));
    return number(form, "blocks", fallback);
}

std::uint64_t usable(unsigned level, std::uint64_t drives, std::uint64_t blocks) {
    if (level == 1 || level == 10)
        return drives / 2 * blocks;
    const std::uint64_t parity = level == 5 ? 1 : level == 6 ? 2 : 0;
    return drives > parity ? (drives - parity) * blocks : 0;
}

/// The work under that key, if any.
void addOperation(Json& list, const Json& form, const char* key, const char* type, const char* place = nullptr) {
    const auto given = [&](const char* k) { return form.contains(k) && !form[k].is_null(); };
    if (!given(key))
        return;
    const Json& task = place != nullptr && given(place) ? form[place] : form[key];
    const double percent = task.is_object() ? task.value("percent", 0.0) : task.get<double>();
    const auto elapsed = static_cast<std::uint64_t>(task.is_object() ? task.value("elapsed", 0.0) : 0.0);
    const auto parts = static_cast<std::uint64_t>(std::clamp(std::ceil(percent / 100 * 65535), 0.0, 65535.0));
    const std::uint64_t shown = std::min<std::uint64_t>(elapsed, 65535);
    list.push_back(
        {{"type", type},
         {"percent", parts * 100 / 65535},
         {"elapsed_seconds", shown},
         {"remaining_seconds", parts == 0 || shown == 65535 ? Json() : Json(shown * (65535 - parts) / parts)}});
}

Json sensor(const char* type, std::size_t index, const Json& form, const char* unit, const char* key) {
    const std::vector<std::string> words{"unsupported",   "ok",      "critical",     "noncritical", "unrecoverable",
                                         "not_installed", "unknown", "not_available"};
    Json out{{"type", type}, {"index", index}};
    const std::uint64_t status = code(
        form, "status", 1,
        {"unsupported", "ok", "critical", "nonCritical", "unrecoverable", "notInstalled", "unknown", "notAvailable"});
    word(out, "status", status, words);
    if (key == nullptr)
        return out;
    const std::int64_t value = integer(form, unit, 0);
    out[key] = nullptr;
    if (status < 1 || status > 4)
        return out;
    if (std::string(key) == "celsius")
        out[key] = value & 0xFF;
    else if (std::string(key) == "rpm")
        out[key] = value / 10 % 1024 * 10;
    else
        out[key] = static_cast<double>(value) / 100;
    return out;
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

Json ExpectedParts::enclosure(const Json& form, std::size_t index) const {
    const std::uint64_t deviceId = number(form, "deviceId", 252 + index);
    Json out{{"device_id", deviceId},
             {"index", number(form, "index", index + 1)},
             {"slots", number(form, "slots", 16)},
             {"vendor", nullptr},
             {"product", nullptr},
             {"revision", nullptr},
             {"logical_id", nullptr},
             {"location", "internal"},
             {"connector", nullptr},
             {"sensors", Json::array()}};
    word(out, "type", code(form, "type", 2, {"unknown", "SAFTE", "SES", "backplane"}),
         {"", "safte", "ses", "backplane"});
    if (out["type"] == "backplane")
        return out;
    out["vendor"] = text(form, "vendor", "QUORVEL", 8);
    out["product"] = text(form, "product", "Pellucor Bay 16", 16);
    out["revision"] = text(form, "revision", "0007", 4);
    if (const std::uint64_t id = number(form, "logicalId", 0x50A0B0C0E0000000 + deviceId); id != 0)
        out["logical_id"] = hex(id, 16);
    out["location"] = nullptr;
    const auto connectors = list(c_, "connectors");
    if (const std::uint64_t at = number(form, "connector", index); at < connectors.size()) {
        const std::vector<std::string> places{"unknown", "-", "internal", "external"};
        word(out, "location", code(connectors[at], "location", 2, places), {"", "", "internal", "external"});
        out["connector"] = text(connectors[at], "name", "Port 0 - 3", 16);
    }
    std::size_t room = 254 - number(form, "slots", 16); // the slots are elements too
    const auto add = [&](const char* key, const char* type, const char* unit = "", const char* shown = nullptr) {
        const auto forms = list(form, key);
        for (std::size_t i = 0; i < forms.size() && room > 0; ++i, --room)
            out["sensors"].push_back(sensor(type, i, forms[i], unit, shown));
    };
    add("powerSupplies", "power_supply");
    add("fans", "fan", "rpm", "rpm");
    add("temperatures", "temperature", "celsius", "celsius");
    add("alarms", "alarm");
    add("electronics", "electronics");
    add("voltages", "voltage", "hundredths", "volts");
    return out;
}

Json ExpectedParts::drive(const Drive& drive) const {
    const Json& form = drive.form;
    const std::uint64_t media = code(form, "media", 0, {"HDD", "SSD"});
    const std::uint64_t interface = code(form, "interface", 2, {"unknown", "SCSI", "SAS", "SATA", "FC"});
    const std::uint64_t power =
        form.value("power", Json()) == "transition" ? 255 : code(form, "power", 0, {"on", "off"});
    const auto speed = [](std::uint64_t value) {
        return value >= 1 && value <= 3 ? Json(0.75 * (1U << value)) : Json();
    };
    const std::vector<std::string> speeds{"-", "1.5G", "3G", "6G"};
    const std::uint64_t own = code(form, "deviceSpeed", 3, speeds);
    const Group* group = groupOf(drive.deviceId);
    Json out{
        {"device_id", drive.deviceId},
        {"enclosure_id", drive.enclosure == kNoEnclosure || drive.enclosure == 0xFF ? Json() : Json(drive.enclosure)},
        {"slot", drive.slot},
        {"vendor", text(form, "vendor", interface == 3 ? "ATA" : "QUORVEL", 8)},
        {"product", text(form, "product", media == 1 ? "Pellucor SSD 200" : "Pellucor SAS 300", 16)},
        {"revision", text(form, "revision", "0104", 4)},
        {"usable_bytes", bytes(drive.blocks)},
        {"raw_bytes", bytes(number(form, "rawBlocks", drive.blocks + 1094236))},
        {"media_errors", number(form, "mediaErrors", 0)},
        {"other_errors", number(form, "otherErrors", 0)},
        {"predictive_failures", number(form, "predictiveFailures", 0)},
        {"temperature_celsius", nullptr},
        {"device_speed_gbps", speed(own)},
        {"link_speed_gbps", speed(code(form, "linkSpeed", own, speeds))},
        {"sas_addresses", Json::array()},
        {"role", group != nullptr ? "member" : "none"},
        {"foreign", flag(form, "foreign", false)},
        {"raid_group", group != nullptr ? Json(group->name) : Json()},
        {"logical_drives", Json::array()},
        {"operations", Json::array()}};
    std::vector<std::string> states(33);
    for (const auto& [at, name] : {std::pair(0, "unconfigured_good"),
                                   {1, "unconfigured_bad"},
                                   {2, "hot_spare"},
                                   {0x10, "offline"},
                                   {0x11, "failed"},
                                   {0x14, "rebuild"},
                                   {0x18, "online"},
                                   {0x20, "copyback"}})
        states.at(static_cast<std::size_t>(at)) = name;
    word(out, "state", stateOf(drive), states);
    word(out, "media", media & 0x0F, {"hdd", "ssd"});
    word(out, "interface", interface, {"", "scsi", "sas", "sata", "fc"});
    if (power == 255)
        out["power"] = "transition";
    else
        word(out, "power", power, {"on", "off"});
    if (power == 0 && !form.value("temperature", Json(28)).is_null() && number(form, "temperature", 28) != 255)
        out["temperature_celsius"] = number(form, "temperature", 28);
    if (group != nullptr)
        for (const Ld* ld : group->lds)
            out["logical_drives"].push_back(ld->number);
    for (const Json& spare : list(c_, "spares"))
        if (deviceOf(spare["drive"]) == drive.deviceId)
            out["role"] = list(spare, "arrays").empty() ? "global_spare" : "dedicated_spare";
    for (const Json& foreign : list(c_, "foreign"))
        for (const Json& array : list(foreign, "arrays"))
            for (const Json& node : list(array, "drives"))
                out["foreign"] = out["foreign"].get<bool>() || deviceOf(node) == drive.deviceId;

    std::vector<std::uint64_t> addresses;
    if (form.contains("sasAddresses"))
        for (const Json& address : list(form, "sasAddresses"))
            addresses.push_back(numberIn(address) + 16 * drive.repeated);
    else
        addresses.push_back(0x50A0B0C000000000 | (number(c_, "id", 0) & 0xFF) << 24U |
                            std::uint64_t{static_cast<std::uint16_t>(drive.deviceId - drive.repeated)} << 4U);
    if (!form.contains("sasAddresses"))
        addresses[0] += 16 * drive.repeated;
    const std::uint64_t paths = std::min<std::uint64_t>(number(form, "pathCount", addresses.size()), 4);
    addresses.resize(paths);
    for (const std::uint64_t address : addresses)
        out["sas_addresses"].push_back(hex(address, 16));
    addOperation(out["operations"], form, "rebuild", "rebuild");
    addOperation(out["operations"], form, "patrolRead", "patrol_read");
    addOperation(out["operations"], form, "clear", "clear");
    addOperation(out["operations"], form, "copyback", "copyback", "rebuild");
    return out;
}

Json ExpectedParts::group(const Group& group) const {
    const auto level = [](const Ld* ld) { return "raid" + std::to_string(ld->level); };
    const Ld* first = group.lds.empty() ? nullptr : group.lds.front();
    Json out{{"name", group.name},
             {"cachecade", group.name.starts_with("sc")},
             {"level", first != nullptr ? Json(level(first)) : Json()},
             {"arrays", group.arrays},
             {"physical_drives", Json::array()},
             {"free_segments", Json::array()},
             {"logical_drives", Json::array()},
             {"spares", Json::array()}};
    for (const Ld* ld : group.lds)
        out["logical_drives"].push_back(ld->number);
    std::uint64_t total = 0;
    for (const std::uint16_t ref : group.arrays) {
        const Array& array = arrayOf(ref);
        for (const int id : array.drives)
            out["physical_drives"].push_back(id < 0 ? Json() : Json(id));
        total += usable(first != nullptr ? first->level : 0, array.drives.size(), array.blocks);
    }
    out["usable_bytes"] = bytes(total);

    const Array& array = arrayOf(group.arrays.front());
    std::vector<Span> used;
    for (const Ld* ld : group.lds)
        std::ranges::copy_if(ld->spans, std::back_inserter(used), [&](const Span& s) { return s.array == array.ref; });
    std::ranges::sort(used, {}, &Span::start);
    used.push_back({0, array.blocks, 0});
    std::uint64_t at = 0;
    std::uint64_t sum = 0;
    for (const Span& span : used) {
        if (span.start > at) {
            std::uint64_t blocks = 0;
            for (const std::uint16_t ref : group.arrays)
                blocks += first != nullptr ? usable(first->level, arrayOf(ref).drives.size(), span.start - at) : 0;
            out["free_segments"].push_back(
                {{"bytes", first != nullptr ? bytes(blocks) : Json()}, {"bytes_per_drive", bytes(span.start - at)}});
            sum += blocks;
        }
        at = std::max(at, span.start + span.blocks);
    }
    out["free_bytes"] = first != nullptr || out["free_segments"].empty() ? bytes(sum) : Json();
    for (const Json& spare : list(c_, "spares"))
        if (std::ranges::any_of(list(spare, "arrays"), [&](const Json& ref) {
                return std::ranges::count(group.arrays, ref.get<std::uint16_t>()) != 0;
            }))
            out["spares"].push_back(deviceOf(spare["drive"]));
    return out;
}

Json ExpectedParts::ld(const Ld& ld) const {
    const Json& form = ld.form;
    const bool unit = c_.contains("cacheBackup") && !c_["cacheBackup"].is_null();
    const std::uint64_t policy = number(form, "cachePolicy", unit ? 1 : 0);
    const bool backed = unit && (number(c_["cacheBackup"], "status", 0) & 0x401U) == 0;
    const std::uint64_t effective = backed || (policy & 0x10U) != 0 ? policy : policy & ~std::uint64_t{1};
    const auto devices = list(form, "osDevices");
    const Json device = devices.empty() ? Json() : text({{"x", devices.back()}}, "x", "", 28);
    std::uint64_t blocks = 0;
    for (const Span& span : ld.spans)
        blocks += usable(ld.level, arrayOf(span.array).drives.size(), span.blocks);
    const Group* group = nullptr;
    for (const Group& candidate : groups_)
        if (std::ranges::count(candidate.arrays, ld.spans.front().array) != 0)
            group = &candidate;
    Json out{{"number", ld.number},
             {"name", text(form, "name", "", 16)},
             {"raid_group", group->name},
             {"level", "raid" + std::to_string(ld.level)},
             {"size_bytes", bytes(blocks)},
             {"stripe_bytes", stripeBytes(number(form, "stripe", 7))},
             {"span_depth", ld.spans.size()},
             {"drives_per_span", arrayOf(ld.spans.front().array).drives.size()},
             {"write_policy", Json::object()},
             {"os_device", device},
             {"os_installed", devices.empty() ? Json() : Json(flag(form, "osInstalled", false))},
             {"cachecade", flag(form, "cacheCade", false)},
             {"snapshot",
              {{"source", flag(form, "snapshotSource", false)}, {"repository", flag(form, "repository", false)}}},
             {"consistent", flag(form, "consistent", true)},
             {"operations", Json::array()}};
    word(out, "state", stateOf(ld), {"offline", "partially_degraded", "degraded", "optimal"});
    std::uint64_t access = code(form, "accessPolicy", 0, {"rw", "-", "ro", "blocked"});
    word(out, "access", access, {"read_write", "", "read_only", "blocked"});
    word(out, "disk_cache", code(form, "diskCachePolicy", 2, {"unchanged", "enabled", "disabled"}),
         {"unchanged", "enabled", "disabled"});
    word(out, "read_policy", policy & 0x0CU, {"no_read_ahead", "", "", "", "always_read_ahead"});
    std::vector<std::string> io(0x61);
    io[0] = "direct";
    io[0x60] = "cached";
    word(out, "io_policy", policy & 0x60U, io);
    std::vector<std::string> write(0x12);
    write[0] = "write_through";
    write[1] = "write_back";
    write[0x11] = "always_write_back";
    word(out["write_policy"], "default", policy & 0x13U, write);
    word(out["write_policy"], "current", number(form, "currentCachePolicy", effective) & 0x13U, write);
    word(out, "initialization", code(form, "initState", 0, {"none", "quick", "full"}), {"none", "quick", "full"});
    addOperation(out["operations"], form, "check", "consistency_check");
    addOperation(out["operations"], form, "backgroundInit", "background_initialization");
    addOperation(out["operations"], form, "init", "initialization");
    addOperation(out["operations"], form, "reconstruction", "reconstruction");
    return out;
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
