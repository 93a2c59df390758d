// Metrics: their form, judged by the field's own tools, and their values, held against the document.
#include "tests/support/request_trace.h"
#include "tests/zebstat/zebstat_run.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <set>

namespace fs = std::filesystem;

namespace zebtest {
namespace {

/// Samples by name and labels. Fails the test for two of one name and labels, and for a family that is not whole.
std::map<std::string, double> samplesOf(const std::string& text) {
    std::map<std::string, double> samples;
    std::set<std::string> closed;
    std::string family;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with("# HELP ")) {
            family = line.substr(7, line.find(' ', 7) - 7);
            EXPECT_TRUE(closed.insert(family).second) << family << " comes twice";
        }
        if (line.starts_with("#"))
            continue;
        const std::size_t space = line.rfind(' ');
        EXPECT_EQ(line.substr(0, line.find_first_of("{ ")), family);
        EXPECT_TRUE(samples.emplace(line.substr(0, space), std::stod(line.substr(space + 1))).second) << line;
    }
    return samples;
}

using Labels = std::vector<std::pair<const char*, Json>>;

/// The samples that the facts of a document ask for, all of them. The one of a run in which no request fails tells the
/// hot spares, which are counted as long as either the drives or the configuration can be read.
class ExpectedSamples {
  public:
    ExpectedSamples(const Json& document, const Json& whole) {
        put("zeb_info",
            {{"version", document["program"]["version"]}, {"library_version", document["program"]["library_version"]}},
            1);
        put("zeb_complete", {}, document["complete"]);
        put("zeb_request_errors", {}, document["errors"].size());
        for (const char* severity : {"critical", "warning"})
            put("zeb_findings", {{"severity", severity}},
                std::ranges::count_if(document["findings"], [&](const Json& f) { return f["severity"] == severity; }));
        for (std::size_t i = 0; i < document["controllers"].size(); ++i) {
            putController(document["controllers"][i]);
            if (!document["controllers"][i].contains("error"))
                putHotSpares(document["controllers"][i], whole["controllers"][i]["physical_drives"]);
        }
    }

    std::map<std::string, double> samples;

  private:
    /// Null is no sample, and as a label it is empty.
    void put(const std::string& family, const Labels& labels, const Json& value) {
        std::string name = family;
        for (const auto& [label, text] : labels) {
            name += (name == family ? "{" : ",") + std::string(label) + "=\"";
            for (const char c : text.is_null() ? "" : text.is_string() ? text.get<std::string>() : text.dump())
                name += c == '\\' ? "\\\\" : c == '"' ? "\\\"" : c == '\n' ? "\\n" : std::string(1, c);
            name += '"';
        }
        if (!value.is_null())
            samples[labels.empty() ? name : name + "}"] = value.is_boolean() ? value.get<bool>() : value.get<double>();
    }
    void putStates(const std::string& family, Labels labels, const char* label, const Json& current,
                   std::initializer_list<const char*> words) {
        labels.emplace_back(label, nullptr);
        for (const char* word : words) {
            labels.back().second = word;
            put(family, labels, (current.is_null() ? "unknown" : current) == word);
        }
    }
    static Labels with(Labels labels, const Labels& more) {
        labels.insert(labels.end(), more.begin(), more.end());
        return labels;
    }

    void putController(const Json& c) {
        const Labels here{{"controller", c["number"]}};
        put("zeb_controller_readable", here, !c.contains("error"));
        if (c.contains("error"))
            return;
        put("zeb_controller_info",
            with(here, {{"product", c["product"]},
                        {"serial", c["serial"]},
                        {"firmware_package", c["firmware"]["package"]},
                        {"firmware", c["firmware"]["version"]},
                        {"driver", c["driver"]["version"]}}),
            1);
        for (const char* type : {"correctable", "uncorrectable"})
            put("zeb_controller_memory_errors_total", with(here, {{"type", type}}),
                c["memory"][type + std::string("_errors")]);
        if (!c["cache_backup"].is_null())
            putCacheBackup(here, c["cache_backup"]);
        for (const Json& enclosure : c["enclosures"])
            for (const Json& sensor : enclosure["sensors"])
                putSensor(with(here, {{"enclosure", enclosure["device_id"]},
                                      {"sensor", sensor["type"]},
                                      {"index", sensor["index"]}}),
                          sensor);
        std::set<std::pair<Json, Json>> places;
        for (const Json& drive : c["physical_drives"])
            if (places.emplace(drive["enclosure_id"], drive["slot"]).second)
                putDrive(here, {{"enclosure", drive["enclosure_id"]}, {"slot", drive["slot"]}}, drive);
        for (const Json& ld : c["logical_drives"])
            putLd(here, ld);
        for (const Json& group : c["raid_groups"])
            put("zeb_raid_group_free_bytes", with(here, {{"raid_group", group["name"]}}), group["free_bytes"]);
    }

    void putHotSpares(const Json& c, const Json& drives) {
        const auto isUntold = [](const Json& drive) { return drive.contains("error"); };
        if (c["raid_groups"].is_null() &&
            (c["physical_drives"].is_null() || std::ranges::any_of(c["physical_drives"], isUntold)))
            return;
        for (const std::string type : {"global", "dedicated"})
            put("zeb_hot_spares", {{"controller", c["number"]}, {"type", type}},
                std::ranges::count_if(drives, [&](const Json& drive) { return drive["role"] == type + "_spare"; }));
    }

    void putCacheBackup(const Labels& here, const Json& unit) {
        put("zeb_cache_backup_capacity_joules", here, unit["full_capacity_joules"]);
        put("zeb_cache_backup_remaining_joules", here, unit["remaining_capacity_joules"]);
        put("zeb_cache_backup_temperature_celsius", here, unit["temperature_celsius"]);
        for (const char* word : {"pack_missing", "voltage_low", "temperature_high", "charging", "discharging",
                                 "learn_requested", "learning", "learn_failed", "learn_timed_out",
                                 "communication_error", "replace", "capacity_low", "unknown"})
            put("zeb_cache_backup_status", with(here, {{"status", word}}),
                unit["status"].is_null() ? Json() : Json(std::ranges::count(unit["status"], word)));
    }

    void putSensor(const Labels& labels, const Json& sensor) {
        putStates("zeb_enclosure_sensor_status", labels, "status", sensor["status"],
                  {"unsupported", "ok", "critical", "noncritical", "unrecoverable", "not_installed", "unknown",
                   "not_available"});
        put("zeb_enclosure_temperature_celsius", labels, sensor.value("celsius", Json()));
        put("zeb_enclosure_fan_rpm", labels, sensor.value("rpm", Json()));
        put("zeb_enclosure_voltage_volts", labels, sensor.value("volts", Json()));
    }

    void putDrive(const Labels& controller, const Labels& place, const Json& drive) {
        const Labels labels = with(controller, place);
        putStates("zeb_physical_drive_state", labels, "state", drive["state"],
                  {"unconfigured_good", "unconfigured_bad", "hot_spare", "offline", "failed", "rebuild", "online",
                   "copyback", "unknown"});
        if (drive.contains("error"))
            return;
        put("zeb_physical_drive_info",
            with(labels, {{"device_id", drive["device_id"]},
                          {"vendor", drive["vendor"]},
                          {"product", drive["product"]},
                          {"revision", drive["revision"]},
                          {"media", drive["media"]},
                          {"interface", drive["interface"]}}),
            1);
        put("zeb_physical_drive_size_bytes", labels, drive["usable_bytes"]);
        put("zeb_physical_drive_temperature_celsius", labels, drive["temperature_celsius"]);
        put("zeb_physical_drive_media_errors_total", labels, drive["media_errors"]);
        put("zeb_physical_drive_other_errors_total", labels, drive["other_errors"]);
        put("zeb_physical_drive_predictive_failures_total", labels, drive["predictive_failures"]);
        putOperations(with(with(controller, {{"object", "pd"}}), with(place, {{"logical_drive", nullptr}})),
                      drive["operations"]);
    }

    void putLd(const Labels& controller, const Json& ld) {
        const Labels labels = with(controller, {{"logical_drive", ld["number"]}});
        putStates("zeb_logical_drive_state", labels, "state", ld["state"],
                  {"optimal", "degraded", "partially_degraded", "offline", "unknown"});
        if (ld.contains("error"))
            return;
        put("zeb_logical_drive_info",
            with(labels, {{"name", ld["name"]},
                          {"level", ld["level"]},
                          {"raid_group", ld["raid_group"]},
                          {"os_device", ld["os_device"]}}),
            1);
        put("zeb_logical_drive_size_bytes", labels, ld["size_bytes"]);
        const Json& policy = ld["write_policy"];
        put("zeb_logical_drive_write_back_lost", labels,
            (policy["default"] == "write_back" || policy["default"] == "always_write_back") &&
                policy["current"] == "write_through");
        putOperations(
            with(controller,
                 {{"object", "ld"}, {"enclosure", nullptr}, {"slot", nullptr}, {"logical_drive", ld["number"]}}),
            ld["operations"]);
    }

    void putOperations(const Labels& labels, const Json& operations) {
        for (const Json& operation : operations)
            put("zeb_operation_progress_ratio", with(labels, {{"operation", operation["type"]}}), operation["percent"]);
    }
};

/// Takes out what no document tells, and brings what the document tells as a whole percentage to the same.
void alignWithDocument(std::map<std::string, double>& samples, std::size_t requests) {
    EXPECT_GE(samples["zeb_collection_duration_seconds"], 0);
    EXPECT_EQ(samples["zeb_requests"], requests);
    samples.erase("zeb_collection_duration_seconds");
    samples.erase("zeb_requests");
    for (auto& [name, value] : samples)
        if (name.starts_with("zeb_operation_progress_ratio{"))
            value = std::floor(value * 100 + 1e-9);
}

struct MetricsCase {
    std::string scenario;
    std::string faults = "[]";
};

class EveryMetric : public SandboxTest, public testing::WithParamInterface<MetricsCase> {};

TEST_P(EveryMetric, EqualsTheDocument) {
    RunOptions json = quickRun("json", GetParam().scenario);
    json.env["ZEBSIM_FAULTS"] = GetParam().faults;
    json.trace = true;
    const RunResult document = box.run(json);
    RunOptions metrics = zebstatRun("metrics", GetParam().scenario);
    metrics.env["ZEBSIM_FAULTS"] = GetParam().faults;
    const std::string text = box.run(metrics).out;
    auto samples = samplesOf(text);
    alignWithDocument(samples, parseTrace(document.trace).size() - 2); // without initialisation and exit
    const std::string whole =
        GetParam().faults == "[]" ? document.out : box.run(quickRun("json", GetParam().scenario)).out;
    EXPECT_THAT(samples, testing::ContainerEq(ExpectedSamples(Json::parse(document.out), Json::parse(whole)).samples));

    if (!fs::exists("/usr/bin/promtool"))
        GTEST_SKIP() << "promtool is not installed";
    RunOptions check;
    check.program = "/usr/bin/promtool";
    check.argv0 = "promtool";
    check.args = {"check", "metrics"};
    check.input = Input::kPipe;
    check.inputText = text;
    const RunResult judged = box.run(check);
    EXPECT_EQ(judged.exitStatus, 0) << judged;
    EXPECT_EQ(judged.out + judged.err, "");
}

std::vector<MetricsCase> metricsCases() {
    std::vector<MetricsCase> cases;
    for (const std::string& scenario : servedScenarios())
        cases.push_back({scenario});
    for (const char* request :
         {R"("type":0,"cmd":4)", R"("type":1,"cmd":0,"ctrl":2)", R"("type":1,"cmd":4,"ctrl":2)",
          R"("type":2,"cmd":0,"ctrl":2,"ref":9)", R"("type":2,"cmd":0,"ctrl":2,"ref":20)",
          R"("type":2,"cmd":0,"ctrl":2,"ref":21)", R"("type":3,"cmd":0,"ctrl":2,"ref":1)", R"("type":4,"cmd":0)",
          R"("type":4,"cmd":0,"status":"0x32"},{"type":1,"cmd":4,"ctrl":2)",
          R"("type":4,"cmd":0,"status":"0x32"},{"type":2,"cmd":0,"ctrl":2,"ref":9)", R"("type":5,"cmd":0)",
          R"("type":5,"cmd":2)", R"("type":8,"cmd":5)", R"("type":6,"cmd":0)"})
        cases.push_back({"built_in", "[{" + std::string(request) + R"(,"status":"0x32"}])"});
    return cases;
}

INSTANTIATE_TEST_SUITE_P(Scenarios, EveryMetric, testing::ValuesIn(metricsCases()),
                         [](const auto& test) { return test.param.scenario + "_" + std::to_string(test.index); });

class Metrics : public SandboxTest {};

TEST_F(Metrics, AreScrapedByANodeExporter) {
    const char* const exporter = "/usr/bin/prometheus-node-exporter";
    if (!fs::exists(exporter) || !fs::exists("/usr/bin/curl"))
        GTEST_SKIP() << "prometheus-node-exporter or curl is not installed";
    const fs::path folder = box.work() / "textfile";
    fs::create_directory(folder);
    EXPECT_EQ(box.run(zebstatRun("metrics --output textfile/zeb.prom", "texts_hostile")).exitStatus, 0);
    const auto wanted = samplesOf(readFile(folder / "zeb.prom"));
    RunOptions scrape;
    scrape.program = "/bin/sh";
    scrape.argv0 = "sh";
    // On a port that is free; its record says which.
    scrape.args = {"-c", std::string(exporter) +
                             " --collector.disable-defaults --collector.textfile --collector.textfile.directory=" +
                             folder.string() + R"( --web.listen-address=127.0.0.1:0 >/dev/null 2>exporter & program=$!
            for i in $(seq 50); do
                sleep 0.1
                address=$(sed -n 's/.*"Listening on" address=//p' exporter)
                [ -n "$address" ] && curl -sf "http://$address/metrics" && break
            done
            kill $program)"};
    const std::string served = box.run(scrape).out;
    EXPECT_THAT(served, testing::HasSubstr("node_textfile_scrape_error 0"));
    EXPECT_THAT(served, testing::HasSubstr("node_textfile_mtime_seconds{"));
    std::size_t found = 0;
    std::istringstream lines(served);
    for (std::string line; std::getline(lines, line);)
        found += line.starts_with("zeb_") ? 1U : 0U;
    EXPECT_EQ(found, wanted.size());
}

} // namespace
} // namespace zebtest
