// Every report of every scenario, compared whole with a kept file; and reports that are larger than their buffer.
#include <algorithm>
#include <filesystem>
#include <sstream>

#include "storelib/records/configuration.h"
#include "storelib/records/enclosure.h"
#include "tests/support/answers.h"
#include "tests/support/expected.h"
#include "tests/support/operation_test.h"
#include "tests/support/paths.h"

namespace fs = std::filesystem;

namespace zebtest {
namespace {

constexpr char kBuiltIn[] = "built_in";

std::vector<std::string> scenarios() {
    std::vector<std::string> names{kBuiltIn};
    for (const auto& entry : fs::directory_iterator(paths::scenarioDir))
        names.push_back(entry.path().stem());
    std::ranges::sort(names);
    return names;
}

class Reports : public SandboxTest, public testing::WithParamInterface<std::string> {};

TEST_P(Reports, AreAsKept) {
    for (const std::string command : {"ctrlinfo", "ldpdinfo", "pdinfo", "enclinfo", "cbinfo", "ldpdprog"}) {
        RunOptions options;
        options.args = words("-" + command + (command == "ldpdprog" ? "" : " -aAll"));
        if (GetParam() != kBuiltIn)
            options.env["ZEBSIM_SCENARIO"] = fs::path(paths::scenarioDir) / (GetParam() + ".json");
        const auto result = box.run(options);
        EXPECT_TRUE(matchesKept(GetParam() + "/" + command + ".txt", result.out));
        EXPECT_EQ("", result.err);
        const bool started = result.out.find("Quits the application.") == std::string::npos;
        EXPECT_EQ(started ? 0 : 255, result.exitStatus);
    }
}

INSTANTIATE_TEST_SUITE_P(Scenarios, Reports, testing::ValuesIn(scenarios()),
                         [](const auto& scenario) { return scenario.param; });

class LargeReports : public OperationTest {};

TEST_F(LargeReports, EnclosureWith254Elements) {
    const auto sensorsOf = [](const char* kind, unsigned count, const std::string& keys) {
        return '"' + std::string(kind) + "\":[" + repeated(keys + ",", count - 1) + keys + "]";
    };
    const auto options = optionsFor(
        R"({"controllers":[{"connectors":[{}],"enclosures":[{"slots":1,)" + sensorsOf("powerSupplies", 51, "{}") + ',' +
            sensorsOf("fans", 52, R"({"rpm":10230})") + ',' + sensorsOf("temperatures", 75, R"({"celsius":100})") +
            ',' + sensorsOf("voltages", 75, R"({"hundredths":-1})") + "}]}]}",
        "-enclinfo");
    const auto result = box.run(options);
    const auto& report = result.out;
    std::string sensors = "Sensor              Status                          Value\r\n";
    const auto add = [&sensors](int count, const std::string& name, std::size_t width, const std::string& value) {
        for (int i = 0; i < count; ++i)
            sensors += name + std::to_string(i) + std::string(width, ' ') + "OK            " + std::string(18, ' ') +
                       value + "\r\n";
    };
    add(75, "Temperature", 8, "100 (C)");
    add(52, "Fan", 16, "10230 (RPM)");
    add(51, "Power Supply", 7, "-");
    add(75, "Voltage", 12, "-0.01 (V)");
    EXPECT_GT(sensors.size(), 10000U);
    const auto start = report.find("Sensor  ");
    ASSERT_NE(std::string::npos, start) << result;
    EXPECT_TRUE(sameText(report.substr(start), sensors + "\n"));
    EXPECT_NE(std::string::npos, report.find("Number of Temperature Sensors : 75\r\n"
                                             "Number of Fans                : 52\r\n"
                                             "Number of Power Supplies      : 51\r\n"
                                             "Number of Voltage Sensors     : 75\r\n"));
}

TEST_F(LargeReports, OnlyTenBitsOfAFansBytesAreItsSpeed) {
    auto options = optionsFor(
        R"({"controllers":[{"connectors":[{}],"enclosures":[{"slots":1,"fans":[{"rpm":1000}]}]}]})", "-enclinfo");
    options.env["ZEBSIM_FAULTS"] =
        R"([{"type":8,"cmd":5,)" + patch({{ZEB_AT(_SL_ENCL_STATUS_EX_T, element[1].value), 0x10FD}}) + "}]";
    EXPECT_NE(std::string::npos,
              box.run(options).out.find("\nFan0                OK                              2720 (RPM)\r\n"));
}

TEST_F(LargeReports, GroupOf64Lds) {
    std::string lds;
    std::string lines;
    std::string numbers;
    for (int i = 0; i < 64; ++i) {
        const std::string number = std::to_string(i);
        lds += (i == 0 ? "" : ",") + (R"({"id":)" + number + R"(,"name":"SIXTEEN LETTERS!","level":1,"spans":[)") +
               R"({"startBlock":)" + std::to_string(i * 2097152) + R"(,"blocks":2097152}],"cachePolicy":"0x60"})";
        lines += ">LD" + number + " (SIXTEEN LETTERS!, 1.000GB, OPTIMAL)\r\n";
        numbers += (i == 0 ? "LD" : ", ") + number;
    }
    const std::string scenario =
        R"({"controllers":[{"drives":[{"repeat":2},{"repeat":2}],"arrays":[{"drives":[0,1]},{"drives":[2,3]}],"lds":[)" +
        lds + "]}]}";
    const auto report = box.run(optionsFor(scenario, "-ldpdinfo")).out;
    EXPECT_NE(std::string::npos, report.find("     # of LD             : 64\r\n")) << report;
    EXPECT_NE(std::string::npos, report.find("GB\n" + lines + "### General Information\t###\r\n"));
    for (const char* drive : {"\n>>PD0 (", "\n>>PD1 ("})
        EXPECT_NE(std::string::npos, report.find(drive + numbers + ")\r\nStatus                   : ONLINE\r\n"));
    EXPECT_NE(std::string::npos, box.run(optionsFor(scenario, "-pdinfo")).out.find("\r\n\r\nPD0(" + numbers + ")\r\n"));
    EXPECT_NE(std::string::npos, box.run(optionsFor(scenario, "-ldpdprog -a0")).out.find("\nLD63    OPTIMAL"));
}

/// Of an LD report what tells its groups apart: "RG0 LD0 LD3 Read Only PD0 PD1".
std::string groupsIn(const std::string& report) {
    std::istringstream lines(report);
    std::string groups;
    for (std::string line; std::getline(lines, line);)
        if (line.starts_with("RG No.") || line.starts_with("Access Policy"))
            groups += ' ' + masked(line, {{"^[^:]*: ", ""}, {"\r", ""}});
        else if (line.starts_with(">"))
            groups += ' ' + masked(line, {{"^>+([A-Z]+[0-9]+).*", "$1"}, {"\r", ""}});
    return groups;
}

TEST_F(LargeReports, EachGroupOnceWhateverTheNumbersOfItsLds) {
    const auto controller = [](const std::string& arrays, const std::string& lds) {
        return R"({"controllers":[{"drives":[{"repeat":8}],"arrays":[)" + arrays + R"(],"lds":[)" + lds + "]}]}";
    };
    const auto ld = [](const char* number, const char* array, const char* access, const char* start = "0") {
        return R"({"level":1,"id":)" + std::string(number) + R"(,"accessPolicy":")" + access +
               R"(","spans":[{"blocks":1000000,"array":)" + array + R"(,"startBlock":)" + start + "}]}";
    };
    const std::string arrays = R"({"drives":[0,1]},{"drives":[2,3]})";
    const std::string apart = controller(arrays, ld("0", "0", "rw") + ',' + ld("3", "0", "ro", "1000000"));
    const std::string between =
        controller(arrays, ld("0", "0", "rw") + ',' + ld("1", "1", "ro") + ',' + ld("2", "0", "blocked", "1000000"));
    const std::string gap =
        controller(R"({"drives":[0,1]},{"ref":2,"drives":[2,3]})", ld("0", "0", "rw") + ',' + ld("1", "2", "ro"));
    const std::string spans = controller(arrays + R"(,{"drives":[4,5]})",
                                         R"({"level":10,"spans":[{"array":0},{"array":2}]},)" + ld("1", "1", "ro"));
    const struct {
        const std::string& scenario;
        const char* args;
        const char* groups;
        std::string faults{};
    } cases[] = {
        {apart, "", " LD0 LD3 RG0 Read Only PD0 PD1"}, // there is no LD1: the group's last
        {apart, " -L3", " LD0 LD3 RG0 Read Only PD0 PD1"},
        {between, "", " LD0 LD2 RG0 Read Only PD0 PD1 LD1 RG1 Read Only PD2 PD3"}, // the settings of LD1 for both
        {between, " -L2,1", " LD1 RG1 Read Only PD2 PD3 LD0 LD2 RG0 Blocked PD0 PD1"},
        {gap, "", " LD0 RG0 Read Write PD0 PD1 LD1 RG1 Read Only PD2 PD3"},
        {spans, "", " LD0 RG0 Read Write PD0 PD1 PD4 PD5 LD1 RG1 Read Only PD2 PD3"},
        // Numbers that no LD has, in the record of the group.
        {apart, "", " LD0 LD3 RG0 Read Only PD0 PD1",
         R"([{"type":4,"cmd":8,)" +
             patch({{ZEB_AT(_SL_ARRAY_INFO_T, ldCount), 4},
                    {ZEB_AT(_SL_ARRAY_INFO_T, ldTargetId[1]), 64},
                    {ZEB_AT(_SL_ARRAY_INFO_T, ldTargetId[2]), 3},
                    {ZEB_AT(_SL_ARRAY_INFO_T, ldTargetId[3]), 254}}) +
             "}]"},
    };
    for (const auto& c : cases) {
        auto options = optionsFor(c.scenario, std::string("-ldpdinfo") + c.args);
        options.env["ZEBSIM_FAULTS"] = c.faults;
        const auto result = box.run(options);
        EXPECT_EQ(c.groups, groupsIn(result.out)) << result;
    }
}

TEST_F(LargeReports, DriveWithoutAnEnclosureStandsInASlot) {
    for (const auto& [device, wanted] : {std::pair("254", "### Enclosure Properties Information ###\r\n"
                                                          "Enclosure ID             : 254\r\n"),
                                         {"255", "### Slot Information ###\r\n"},
                                         {"65535", "### Slot Information ###\r\n"}}) {
        auto options = optionsFor(R"({"controllers":[{"drives":[{}]}]})", "-pdinfo");
        options.env["ZEBSIM_FAULTS"] = R"([{"type":2,"cmd":0,"fields":{"enclDeviceId":)" + std::string(device) + "}}]";
        const auto report = box.run(options).out;
        EXPECT_TRUE(report.ends_with(std::string("\r\n\r\n") + wanted + "Slot Number              : 0\r\n\n"))
            << report;
    }
}

/// The lines that tell of the group, and its drives; the settings of an LD are left out.
std::string groupFacts(const std::string& report) {
    std::string facts;
    for (const char* label : {"RG No.", "RAID Level", "# of PD"}) {
        const auto at = report.find(label);
        facts += at == std::string::npos ? "-" : report.substr(at, report.find('\n', at) + 1 - at);
    }
    return facts + report.substr(std::min(report.find("### PD Information"), report.size()));
}

TEST_F(LargeReports, AnyLdOfAGroupTellsTheGroupsFacts) {
    const auto scenario = [](const char* first, const char* second) {
        const std::string spans = R"(,"level":10,"spans":[{"array":0,"blocks":2097152},{"array":1,"blocks":2097152}]})";
        return R"({"controllers":[{"drives":[{"repeat":6}],"arrays":[{"drives":[0,1]},{"drives":[2,3]},
            {"drives":[4,5]}],"lds":[{"id":)" +
               std::string(first) + spans + R"(,{"id":)" + second +
               R"(,"level":10,"spans":[{"array":0,"startBlock":2097152},{"array":1,"startBlock":2097152}]},
               {"id":20,"level":1,"spans":[{"array":2}]}]}]})";
    };
    // Behind the second LD stands none, one of another group, or the end of the numbers.
    for (const auto& [first, second] : {std::pair("0", "1"), {"18", "19"}, {"62", "63"}}) {
        const auto report = [&, text = scenario(first, second)](const char* ld) {
            return groupFacts(box.run(optionsFor(text, std::string("-ldpdinfo -L") + ld)).out);
        };
        const std::string facts = report(first);
        EXPECT_TRUE(facts.starts_with("RG No.                   : RG0\nRAID Level               : RAID10\r\n"
                                      "# of PD                  : 4\r\n### PD Information ###\r\n>>PD0 (LD"))
            << facts;
        EXPECT_TRUE(sameText(report(second), facts)) << second;
    }
}

} // namespace
} // namespace zebtest
