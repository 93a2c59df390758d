// Metrics: their form, judged by the field's own tools, and their values, held against the document.
#include "tests/zebstat/zebstat_run.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <set>

namespace fs = std::filesystem;

namespace zebtest {
namespace {

class Metrics : public SandboxTest {};

/// Samples by name and labels, as they stand in the text. Fails the test for two of one name and labels, and for a
/// family that is not whole.
std::map<std::string, std::string> samplesOf(const std::string& text) {
    std::map<std::string, std::string> samples;
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
        EXPECT_TRUE(samples.emplace(line.substr(0, space), line.substr(space + 1)).second) << line;
    }
    return samples;
}

TEST_F(Metrics, PassTheCheckOfPromtool) {
    if (!fs::exists("/usr/bin/promtool"))
        GTEST_SKIP() << "promtool is not installed";
    for (const std::string& scenario : scenarioNames()) {
        if (!isServed(scenario))
            continue;
        SCOPED_TRACE(scenario);
        RunOptions check;
        check.program = "/usr/bin/promtool";
        check.argv0 = "promtool";
        check.args = {"check", "metrics"};
        check.input = Input::kPipe;
        check.inputText = box.run(zebstatRun("metrics", scenario)).out;
        const RunResult result = box.run(check);
        EXPECT_EQ(result.exitStatus, 0) << result;
        EXPECT_EQ(result.out + result.err, "");
    }
}

std::string labelText(const std::string& text) {
    std::string out;
    for (const char c : text)
        out += c == '\\' ? "\\\\" : c == '"' ? "\\\"" : c == '\n' ? "\\n" : std::string(1, c);
    return out;
}

TEST_F(Metrics, EqualTheDocument) {
    for (const std::string& scenario : scenarioNames()) {
        if (!isServed(scenario))
            continue;
        SCOPED_TRACE(scenario);
        const Json document = Json::parse(box.run(zebstatRun("json", scenario)).out);
        auto samples = samplesOf(box.run(zebstatRun("metrics", scenario)).out);
        const auto expect = [&](const std::string& name, const Json& value) {
            const auto found = samples.find(name);
            if (value.is_null())
                EXPECT_EQ(found, samples.end()) << name;
            else if (found == samples.end())
                ADD_FAILURE() << name << " is missing";
            else
                EXPECT_EQ(std::stod(found->second), value.get<double>()) << name;
        };
        expect("zeb_complete", document["complete"].get<bool>() ? 1 : 0);
        expect("zeb_request_errors", document["errors"].size());
        for (const char* severity : {"critical", "warning"})
            expect(
                "zeb_findings{severity=\"" + std::string(severity) + "\"}",
                std::ranges::count_if(document["findings"], [&](const Json& f) { return f["severity"] == severity; }));
        for (const Json& c : document["controllers"]) {
            const std::string label = "controller=\"" + c["number"].dump() + "\"";
            expect("zeb_controller_readable{" + label + "}", 1);
            expect("zeb_controller_memory_errors_total{" + label + ",type=\"correctable\"}",
                   c["memory"]["correctable_errors"]);
            if (!c["cache_backup"].is_null())
                expect("zeb_cache_backup_remaining_joules{" + label + "}",
                       c["cache_backup"]["remaining_capacity_joules"]);
            std::set<std::string> places;
            for (const Json& drive : c["physical_drives"]) {
                const std::string enclosure = drive["enclosure_id"].is_null() ? "" : drive["enclosure_id"].dump();
                const std::string place =
                    label + ",enclosure=\"" + enclosure + "\",slot=\"" + drive["slot"].dump() + "\"";
                if (!places.insert(place).second)
                    continue;
                const std::string state = drive["state"].is_null() ? "unknown" : drive["state"].get<std::string>();
                expect("zeb_physical_drive_state{" + place + ",state=\"" + state + "\"}", 1);
                expect("zeb_physical_drive_size_bytes{" + place + "}", drive["usable_bytes"]);
                expect("zeb_physical_drive_temperature_celsius{" + place + "}", drive["temperature_celsius"]);
                expect("zeb_physical_drive_media_errors_total{" + place + "}", drive["media_errors"]);
            }
            for (const Json& ld : c["logical_drives"]) {
                const std::string number = label + ",logical_drive=\"" + ld["number"].dump() + "\"";
                expect("zeb_logical_drive_size_bytes{" + number + "}", ld["size_bytes"]);
                const std::string name = ld["name"].is_null() ? "" : labelText(ld["name"]);
                const std::string group = ld["raid_group"].is_null() ? "" : ld["raid_group"].get<std::string>();
                const std::string device = ld["os_device"].is_null() ? "" : labelText(ld["os_device"]);
                expect("zeb_logical_drive_info{" + number + ",name=\"" + name + "\",level=\"" +
                           ld["level"].get<std::string>() + "\",raid_group=\"" + group + "\",os_device=\"" + device +
                           "\"}",
                       1);
            }
            for (const Json& group : c["raid_groups"])
                expect("zeb_raid_group_free_bytes{" + label + ",raid_group=\"" + group["name"].get<std::string>() +
                           "\"}",
                       group["free_bytes"]);
        }
        // Of a set of states exactly one holds.
        std::map<std::string, int> held;
        for (const auto& [name, value] : samples)
            if (name.find("_state{") != std::string::npos || name.starts_with("zeb_enclosure_sensor_status{"))
                held[name.substr(0, name.rfind(','))] += std::stoi(value);
        for (const auto& [name, count] : held)
            EXPECT_EQ(count, 1) << name;
    }
}

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
    scrape.args = {
        "-c",
        std::string(exporter) +
            " --collector.disable-defaults --collector.textfile --collector.textfile.directory=" + folder.string() +
            " --web.listen-address=127.0.0.1:39917 >/dev/null 2>&1 & for i in $(seq 50); do sleep 0.1; "
            "curl -sf http://127.0.0.1:39917/metrics && break; done; kill $!"};
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
