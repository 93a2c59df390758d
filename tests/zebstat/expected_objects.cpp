// What the document says of each enclosure, drive, group and LD.
#include "tests/zebstat/expected_parts.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>
#include <set>

namespace zebtest {

namespace {

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

} // namespace zebtest
