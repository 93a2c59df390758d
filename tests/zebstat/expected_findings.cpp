// The findings that follow from a document's facts, by the rules as they are told to users.
#include "tests/zebstat/expected_parts.h"

#include <algorithm>
#include <set>

namespace zebtest {

namespace {

bool isOneOf(const Json& word, std::initializer_list<const char*> words) {
    return std::ranges::any_of(
        words, [&](const char* w) { return word == w; });
}

bool hasOneOf(const Json& list, std::initializer_list<const char*> words) {
    return list.is_array() && std::ranges::any_of(
                                  list, [&](const Json& item) { return isOneOf(item, words); });
}

class Judge {
  public:
    explicit Judge(const Json& controller) : n_(controller["number"]) {
        const Json self{{"type", "controller"}};
        critical(controller["memory"]["uncorrectable_errors"] > 0, "memory_uncorrectable_errors", self);
        warning(controller["memory"]["correctable_errors"] > 0, "memory_correctable_errors", self);
        if (const Json& unit = controller["cache_backup"]; !unit.is_null()) {
            critical(hasOneOf(unit["status"], {"pack_missing", "replace", "learn_failed"}), "cache_backup_failed",
                     {{"type", "cache_backup"}});
            warning(hasOneOf(unit["status"], {"voltage_low", "temperature_high", "capacity_low", "learn_timed_out",
                                              "communication_error"}),
                    "cache_backup_weak", {{"type", "cache_backup"}});
        }
        for (const Json& enclosure : controller["enclosures"])
            for (const Json& sensor : enclosure["sensors"]) {
                const Json object{{"type", "sensor"},
                                  {"enclosure_id", enclosure["device_id"]},
                                  {"sensor", sensor["type"]},
                                  {"index", sensor["index"]}};
                critical(isOneOf(sensor["status"], {"critical", "unrecoverable"}), "sensor_critical", object);
                warning(sensor["status"] == "noncritical", "sensor_noncritical", object);
            }
        for (const Json& drive : controller["physical_drives"])
            judgeDrive(drive);
        for (const Json& group : controller["raid_groups"])
            warning(std::ranges::count(group["physical_drives"], Json()) != 0, "physical_drive_missing",
                    {{"type", "raid_group"}, {"name", group["name"]}});
        for (const Json& ld : controller["logical_drives"])
            judgeLd(ld);
    }

    std::vector<Json> findings;

  private:
    void add(const char* severity, const char* code, const Json& object) {
        findings.push_back({{"severity", severity}, {"code", code}, {"controller", n_}, {"object", object}});
    }
    void critical(bool holds, const char* code, const Json& object) {
        if (holds)
            add("critical", code, object);
    }
    void warning(bool holds, const char* code, const Json& object) {
        if (holds)
            add("warning", code, object);
    }

    void judgeDrive(const Json& drive) {
        if (drive.contains("error"))
            return;
        const Json object{{"type", "physical_drive"},
                          {"device_id", drive["device_id"]},
                          {"enclosure_id", drive["enclosure_id"]},
                          {"slot", drive["slot"]}};
        critical(drive["state"] == "failed", "physical_drive_failed", object);
        critical(drive["state"] == "offline" && drive["role"] == "member", "physical_drive_offline", object);
        warning(drive["predictive_failures"] > 0, "physical_drive_predicted_failure", object);
        warning(drive["state"] == "unconfigured_bad", "physical_drive_unconfigured_bad", object);
        warning(drive["foreign"], "physical_drive_foreign", object);
        warning(drive["media_errors"] > 0, "physical_drive_media_errors", object);
        const int celsius = drive["temperature_celsius"].is_null() ? 0 : drive["temperature_celsius"].get<int>();
        critical(celsius > 65, "physical_drive_hot", object);
        warning(celsius > 55 && celsius <= 65, "physical_drive_hot", object);
    }

    void judgeLd(const Json& ld) {
        const Json object{{"type", "logical_drive"}, {"number", ld["number"]}};
        critical(ld["state"] == "offline", "logical_drive_offline", object);
        critical(ld["state"] == "degraded", "logical_drive_degraded", object);
        warning(ld["state"] == "partially_degraded", "logical_drive_partially_degraded", object);
        warning(isOneOf(ld["write_policy"]["default"], {"write_back", "always_write_back"}) &&
                    ld["write_policy"]["current"] == "write_through",
                "logical_drive_write_through", object);
    }

    Json n_;
};

} // namespace

Json expectedFindings(const Json& document) {
    Json findings = Json::array();
    for (const Json& controller : document["controllers"])
        for (const Json& finding : Judge(controller).findings)
            findings.push_back(finding);
    std::set<Json> unreadable;
    for (const Json& error : document["errors"])
        unreadable.insert(Json{{"severity", "warning"},
                               {"code", error["object"]["type"] == "enclosure" ? "enclosure_unreadable" : "unreadable"},
                               {"controller", error["controller"]},
                               {"object", error["object"]}});
    for (const Json& finding : unreadable)
        findings.push_back(finding);
    return findings;
}

} // namespace zebtest
