#include "tests/zebstat/expected_document.h"

#include "tests/support/paths.h"
#include "tests/support/sandbox.h"
#include "tests/zebstat/expected_parts.h"

#include <algorithm>

namespace zebtest {

namespace {

Json image(const Json& item) {
    return {{"name", text(item, "name", "APP", 8)},
            {"version", text(item, "version", "5.10.2-0044", 32)},
            {"build_date", text(item, "buildDate", "Jan 11 2023", 16)},
            {"build_time", text(item, "buildTime", "10:24:36", 16)}};
}

Json joined(const Json& a, const Json& b) {
    if (a.is_null() || b.is_null())
        return a.is_null() ? b : a;
    return a.get<std::string>() + " " + b.get<std::string>();
}

Json imageList(const Json& c, const char* key) {
    Json images = Json::array();
    for (const Json& item : list(c, key))
        if (images.size() < 8)
            images.push_back(image(item));
    return images;
}

Json firmware(const Json& c) {
    const Json images = imageList(c, "images");
    const auto first = [&](const char* beginning) -> Json {
        for (const Json& item : images)
            if (item["name"].is_string() && item["name"].get<std::string>().starts_with(beginning))
                return item;
        return Json::object();
    };
    const Json app = first("APP");
    return {{"package", text(c, "packageVersion", "", 96)},
            {"version", app.value("version", Json())},
            {"build_time", joined(app.value("build_date", Json()), app.value("build_time", Json()))},
            {"bios", first("BIOS").value("version", Json())},
            {"images", images},
            {"pending_images", imageList(c, "pendingImages")}};
}

Json capabilities(const Json& c) {
    const std::uint64_t bits = number(c, "raidLevels", 0x37);
    Json levels = Json::array();
    for (const auto& [bit, level] : {std::pair(0, "raid0"), {1, "raid1"}, {2, "raid5"}, {4, "raid6"}, {5, "raid10"}})
        if ((bits >> bit & 1U) != 0)
            levels.push_back(level);
    const std::uint64_t adapter = number(c, "adapterOperations", 0);
    const std::uint64_t ld = number(c, "ldOperations", 0x1F);
    return {{"raid_levels", levels},
            {"snapshot", flag(c, "snapshot", false) || (adapter >> 30 & 1U) != 0},
            {"cachecade", number(c, "cacheCadeCapacity", 0) != 0},
            {"fastpath", flag(c, "fastPath", false) || (ld >> 10 & 1U) != 0},
            {"max_physical_drives", number(c, "maxPds", 32)},
            {"max_logical_drives", number(c, "maxLds", 64)},
            {"stripe_min_bytes", stripeBytes(number(c, "stripeMin", 4))},
            {"stripe_max_bytes", stripeBytes(number(c, "stripeMax", 11))}};
}

Json oneOrZero(std::uint64_t value, bool inverse) {
    return value > 1 ? Json() : Json((value == 1) != inverse);
}

Json settings(const Json& c) {
    const Json p = object(c, "properties");
    const std::uint64_t word = number(p, "onOff", 0x02);
    const auto bit = [&](int n) { return (word >> n & 1U) != 0; };
    return {{"auto_rebuild", oneOrZero(number(p, "disableAutoRebuild", 0), true)},
            {"copyback", !bit(0)},
            {"smart_copyback_hdd", bit(1)},
            {"smart_copyback_ssd", bit(5)},
            {"fail_drive_on_smart_error", number(object(c, "mfcDefaults"), "failPdOnSmartError", 0) != 0},
            {"native_command_queuing", !bit(4)},
            {"cache_flush_interval_seconds", number(p, "cacheFlushInterval", 4)},
            {"rates_percent",
             {{"rebuild", number(p, "rebuildRate", 30)},
              {"patrol_read", number(p, "patrolReadRate", 30)},
              {"background_initialization", number(p, "bgiRate", 30)},
              {"consistency_check", number(p, "ccRate", 30)},
              {"reconstruction", number(p, "reconRate", 30)}}}};
}

Json patrolRead(const Json& c) {
    const Json p = object(c, "patrolRead");
    Json out{{"interval_seconds", number(p, "frequency", 604800)},
             {"next_start", time(number(p, "nextExecution", 757382400 + 97200))}};
    word(out, "mode", code(p, "mode", 0, {"automatic", "manual", "disabled"}), {"automatic", "manual", "disabled"});
    return out;
}

Json cacheBackup(const Json& c) {
    if (!c.contains("cacheBackup") || c["cacheBackup"].is_null())
        return nullptr;
    const Json& u = c["cacheBackup"];
    const char* const flags[] = {"pack_missing",    "voltage_low",         "temperature_high", "charging",
                                 "discharging",     "learn_requested",     "learning",         "learn_failed",
                                 "learn_timed_out", "communication_error", "replace",          "capacity_low"};
    std::uint64_t bits = number(u, "status", 0) | (u.contains("learn") && !u["learn"].is_null() ? 1U << 6 : 0U);
    const std::uint64_t design = number(u, "designCapacity", 1350);
    Json out{{"serial", std::to_string(number(u, "serialNo", 4711))},
             {"full_capacity_joules", design},
             {"remaining_capacity_joules", number(u, "remainingCapacity", number(u, "fullCapacity", design))},
             {"temperature_celsius", number(u, "temperature", 26)},
             {"voltage_volts", static_cast<double>(number(u, "voltage", 4062)) / 1000},
             {"current_amperes", static_cast<double>(integer(u, "current", 0)) / 1000},
             {"status", Json::array()},
             {"learn_period_seconds", number(u, "learnPeriod", 2419200)},
             {"next_learn", time(number(u, "nextLearn", 759801605))}};
    for (unsigned i = 0; i < std::size(flags); ++i)
        if ((bits >> i & 1U) != 0)
            out["status"].push_back(flags[i]);
    if (bits >> std::size(flags) != 0) {
        out["status"].push_back("unknown");
        out["status_code"] = bits;
    }
    word(out, "type", code(u, "type", 5, {"none", "IBBU", "BBU", "ZCR", "iTBBU3", "iBBU08", "superCap"}),
         {"none", "ibbu", "bbu", "zcr_legacy", "itbbu3", "ibbu08", "supercap"});
    word(out, "auto_learn", code(u, "autoLearn", 0, {"automatic", "disabled", "warning"}),
         {"automatic", "disabled", "warning"});
    return out;
}

Json ownFacts(const Json& c) {
    Json ports = Json::array();
    for (const Json& address : list(c, "portAddresses"))
        if (numberIn(address) != 0)
            ports.push_back(hex(numberIn(address), 16));
    const Json driver = object(c, "driver");
    return {{"id", number(c, "id", 0)},
            {"product", text(c, "product", "Quorvel RAID Pellucor 8e", 80)},
            {"serial", text(c, "serial", "QV00000001", 32)},
            {"pci",
             {{"address", hex(number(c, "pciBus", 4), 2) + ":" + hex(number(c, "pciDevice", 0), 2) + "." +
                              hex(number(c, "pciFunction", 0), 1)},
              {"vendor_id", hex(number(c, "vendorId", 0x1000), 4)},
              {"device_id", hex(number(c, "pciDeviceId", 0x0108), 4)},
              {"subsystem_vendor_id", hex(number(c, "subVendorId", 0x5156), 4)},
              {"subsystem_device_id", hex(number(c, "subDeviceId", 0x0800), 4)}}},
            {"firmware", firmware(c)},
            {"driver",
             {{"name", text(driver, "name", "zebsim", 20)},
              {"version", text(driver, "version", "1.4.0-12", 32)},
              {"release_date", text(driver, "releaseDate", "Nov 02 2022", 20)}}},
            {"memory",
             {{"size_bytes", number(c, "memory", 512) << 20U},
              {"correctable_errors", number(c, "memoryCorrectableErrors", 0)},
              {"uncorrectable_errors", number(c, "memoryUncorrectableErrors", 0)}}},
            {"ports", {{"count", number(c, "devicePorts", 8)}, {"sas_addresses", ports}}},
            {"alarm",
             {{"present", flag(c, "alarm", false)},
              {"enabled", oneOrZero(number(object(c, "properties"), "alarmEnable", 0), false)}}},
            {"capabilities", capabilities(c)},
            {"clock", time(number(c, "time", 757382400))},
            {"settings", settings(c)},
            {"patrol_read", patrolRead(c)},
            {"cache_backup", cacheBackup(c)}};
}

Json requestError(std::size_t controller, const char* wrapper, Json object, unsigned status, const char* text) {
    return {{"controller", controller},
            {"wrapper", wrapper},
            {"object", std::move(object)},
            {"status", status},
            {"text", text}};
}

/// What fails without a fault's help, and by the faults that the kept scenarios have.
Json errorsOf(const Json& scenario, const Json& controller, const Json& c) {
    Json errors = Json::array();
    const std::size_t n = controller["number"];
    bool asksConnectors = false;
    bool silent = false;
    for (const Json& fault : list(scenario, "faults"))
        silent = silent || (numberIn(fault["type"]) == 8 && fault.contains("status"));
    for (const Json& enclosure : controller["enclosures"]) {
        if (enclosure["type"] == "backplane")
            continue;
        if (!asksConnectors && list(c, "connectors").empty())
            errors.push_back(requestError(n, "SLGetSASConnector", {{"type", "controller"}}, 0x22,
                                          "required HW is missing (i.e. Alarm or BBU)"));
        asksConnectors = true;
        if (silent)
            errors.push_back(requestError(n, "SLGetEnclStatus",
                                          {{"type", "enclosure"}, {"device_id", enclosure["device_id"]}}, 0x09,
                                          "given array index is invalid"));
    }
    return errors;
}

void silence(Json& document) {
    for (const Json& error : document["errors"])
        if (error["wrapper"] == "SLGetEnclStatus")
            for (Json& enclosure : document["controllers"][error["controller"].get<std::size_t>()]["enclosures"]) {
                enclosure["sensors"] = nullptr;
                enclosure["error"] = {{"status", error["status"]}, {"text", error["text"]}};
            }
}

/// The scenario whose counts lie: behind the true entries of each list stand zeros up to its room, and what the room
/// of the configuration holds behind its one array is an LD's record, not a further array.
void tellTheLies(Json& document) {
    Json& c = document["controllers"][0];
    Json ghost = c["physical_drives"][0];
    for (auto& [key, value] : ghost.items())
        value = nullptr;
    ghost.update({{"device_id", 0}, {"enclosure_id", 0}, {"slot", 0}});
    ghost["error"] = {{"status", 0x0C}, {"text", "invalid device ID / select-timeout"}};
    for (Json& drive : c["physical_drives"])
        drive["logical_drives"] = Json::array();
    c["physical_drives"].insert(c["physical_drives"].begin(), ghost);
    c["enclosures"][0]["sensors"] = Json::array();
    c["raid_groups"][0].update({{"level", nullptr}, {"logical_drives", Json::array()}, {"free_bytes", nullptr}});
    c["raid_groups"][0]["free_segments"] = Json(127, Json{{"bytes", nullptr}, {"bytes_per_drive", 0}});
    document["errors"].push_back(requestError(
        0, "SLGetPDInfoByDevice", {{"type", "physical_drive"}, {"device_id", 0}, {"enclosure_id", 0}, {"slot", 0}},
        0x0C, "invalid device ID / select-timeout"));
    document["errors"].push_back(requestError(0, "SLGetMappedPartition", {{"type", "logical_drive"}, {"number", 0}},
                                              0x8023, "Failed to get partition"));
}

Json expectedOf(const std::string& name, const Json& scenario) {
    Json document{{"controllers", Json::array()}, {"errors", Json::array()}};
    std::vector<Json> controllers = list(scenario, "controllers");
    std::ranges::sort(controllers, {}, [](const Json& c) { return number(c, "id", 0); });
    for (const Json& c : controllers) {
        Json out = ownFacts(c);
        out["number"] = document["controllers"].size();
        ExpectedParts(c).put(out);
        for (const Json& error : errorsOf(scenario, out, c))
            document["errors"].push_back(error);
        document["controllers"].push_back(std::move(out));
    }
    silence(document);
    if (name == "counts_lying")
        tellTheLies(document);
    if (name == "odd_cases") // its third LD tells an array that is none
        document["controllers"][0]["logical_drives"][2]["raid_group"] = nullptr;
    document["findings"] = expectedFindings(document);
    return document;
}

} // namespace

std::string scenarioPath(const std::string& name) {
    return name == "built_in" ? "" : std::string(paths::scenarioDir) + "/" + name + ".json";
}

Json scenarioNamed(const std::string& name) {
    const std::string file =
        name == "built_in" ? std::string(paths::scenarioDir) + "/../built_in.json" : scenarioPath(name);
    return Json::parse(readFile(file));
}

Json expectedDocument(const std::string& name) {
    return expectedOf(name, scenarioNamed(name));
}

Json expectedDocument(const Json& scenario) {
    return expectedOf("", scenario);
}

std::string differences(Json document, Json expected) {
    std::string text;
    for (Json& finding : document["findings"])
        finding.erase("text");
    std::sort(document["findings"].begin(), document["findings"].end());
    std::sort(expected["findings"].begin(), expected["findings"].end());
    for (const char* key : {"controllers", "errors", "findings"})
        for (const Json& change : Json::diff(document[key], expected[key])) {
            const Json::json_pointer at(change["path"].get<std::string>());
            text += key + change["path"].get<std::string>() + ": " +
                    (document[key].contains(at) ? document[key][at].dump() : "nothing") + ", wanted " +
                    change.value("value", Json("nothing")).dump() + "\n";
        }
    return text;
}

} // namespace zebtest
