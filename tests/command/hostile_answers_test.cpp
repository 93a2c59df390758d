// Answers that lie or carry hostile texts: every report survives them, and keeps its layout.
#include <algorithm>
#include <filesystem>
#include <set>

#include <gmock/gmock.h>

#include "tests/support/expected.h"
#include "tests/support/log_file.h"
#include "tests/support/operation_case.h"

namespace zebtest {
namespace {

constexpr const char* kReports[] = {"-ctrlinfo -aAll", "-ldpdinfo -aAll", "-pdinfo -aAll",
                                    "-enclinfo -aAll", "-cbinfo -aAll",   "-ldpdprog"};

struct Lie {
    const char* name;
    const char* request; ///< the keys that pick it
    const char* change; ///< what becomes of the answer
    std::set<std::string> unchanged{}; ///< the reports that must be as they are without the lie

    std::string fault() const { return std::string("[{") + request + "," + change + "}]"; }
};

constexpr char kPdList[] = R"("type":1,"cmd":4)";
constexpr char kLdList[] = R"("type":1,"cmd":13)";
constexpr char kConfig[] = R"("type":4,"cmd":0)";
constexpr char kArray[] = R"("type":4,"cmd":8)";
constexpr char kPd[] = R"("type":2,"cmd":0)";
constexpr char kLd[] = R"("type":3,"cmd":0)";
constexpr char kInfo[] = R"("type":1,"cmd":0)";
constexpr char kEnclosures[] = R"("type":1,"cmd":5)";
constexpr char kElements[] = R"("type":8,"cmd":5)";
constexpr char kConnectors[] = R"("type":6,"cmd":3,"opcode":"0x07030000")";

const Lie kLies[] = {
    {"65535 drives", kPdList, R"("patch":[{"offset":4,"hex":"ffff0000"}])"},
    {"no drive", kPdList, R"("patch":[{"offset":4,"hex":"00000000"}])", {"-ctrlinfo -aAll", "-cbinfo -aAll"}},
    {"PD list of ones", kPdList, R"("fill":255)"},
    {"4 billion LDs", kLdList, R"("patch":[{"offset":0,"hex":"ffffffff"}])"},
    {"LD 255", kLdList, R"("patch":[{"offset":8,"hex":"ff"}])"},
    {"configuration of 0 bytes", kConfig, R"("patch":[{"offset":0,"hex":"00000000"}])"},
    {"configuration of 8 bytes", kConfig, R"("patch":[{"offset":0,"hex":"08000000"}])"},
    {"configuration of 31 bytes", kConfig, R"("patch":[{"offset":0,"hex":"1f000000"}])"},
    {"configuration of 33 bytes", kConfig, R"("patch":[{"offset":0,"hex":"21000000"}])"},
    {"configuration of 4 GB", kConfig, R"("patch":[{"offset":0,"hex":"ffffffff"}])"},
    {"65535 arrays, LDs and spares", kConfig, R"("patch":[{"offset":4,"hex":"ffff2001ffff0001ffff2800"}])"},
    {"255 drives in an array", kConfig, R"("patch":[{"offset":40,"hex":"ff"}])"},
    {"array 65535", kConfig, R"("patch":[{"offset":42,"hex":"ffff"}])"},
    {"array 128", kConfig, R"("patch":[{"offset":42,"hex":"8000"}])"},
    {"configuration of ones", kConfig, R"("nth":2,"fill":255)"},
    {"group of 255 LDs, drives and free segments", kArray, R"("patch":[{"offset":2,"hex":"ffffff"}])"},
    {"group of LD 255", kArray, R"("patch":[{"offset":16,"hex":"ffff"}])"},
    {"group of ones", kArray, R"("fill":255)"},
    {"255 paths", kPd, R"("patch":[{"offset":192,"hex":"ff"}])", {"-ldpdprog", "-ldpdinfo -aAll"}},
    {"PD of ones", kPd, R"("fill":255)"},
    {"copyback partner unknown", kPd, R"("patch":[{"offset":364,"hex":"1234"}])", {"-ldpdprog", "-ldpdinfo -aAll"}},
    {"255 spans", kLd, R"("patch":[{"offset":37,"hex":"ff"}])"},
    {"spans on arrays 128 and 65535", kLd, R"("patch":[{"offset":80,"hex":"8000"},{"offset":104,"hex":"ffff"}])"},
    {"LD of ones", kLd, R"("fill":255)"},
    {"LD of another number", kLd, R"("patch":[{"offset":0,"hex":"ff"}])"},
    {"4 billion image components", kInfo, R"("patch":[{"offset":180,"hex":"ffffffff"}])", {"-ctrlinfo -aAll"}},
    {"controller of ones", kInfo, R"("fill":255)"},
    {"4 billion enclosures", kEnclosures, R"("patch":[{"offset":0,"hex":"ffffffff"}])", {"-enclinfo -aAll"}},
    {"no enclosure", kEnclosures, R"("patch":[{"offset":0,"hex":"00000000"}])", {"-enclinfo -aAll"}},
    {"connector 255", kEnclosures, R"("patch":[{"offset":19,"hex":"ff"}])"},
    {"4 billion connectors", kConnectors, R"("patch":[{"offset":0,"hex":"ffffffff"}])", {"-enclinfo -aAll"}},
    {"4 billion connectors and the enclosure on the 9th",
     R"("type":6,"cmd":3,"opcode":"0x07030000","patch":[{"offset":0,"hex":"ffffffff"}]},{"type":1,"cmd":5)",
     R"("patch":[{"offset":19,"hex":"08"}])"},
    {"65535 elements of each type", kElements, R"("patch":[{"offset":0,"hex":"ffffffffffffffffffffffffffffffff"}])"},
    {"elements of ones", kElements, R"("fill":255)"},
    // Records that lead to themselves or to each other.
    {"every slot with the same drive", kPdList, R"("patch":[{"offset":32,"hex":"0800"},{"offset":56,"hex":"0800"}])"},
    {"every drive in the same slot", kPdList, R"("patch":[{"offset":37,"hex":"00"},{"offset":61,"hex":"00"}])"},
    {"the same LD twice", kLdList, R"("patch":[{"offset":24,"hex":"00"}])"},
    {"two arrays of the same number", kConfig, R"("patch":[{"offset":330,"hex":"0000"}])"},
    {"an array of one drive twice", kConfig, R"("patch":[{"offset":72,"hex":"0800"}])"},
    {"eight spans on one array", kLd, R"("patch":[{"offset":37,"hex":"08"},{"offset":104,"hex":"0000"}])"},
    {"groups that hold each other's LDs", kArray,
     R"("nth":1,"patch":[{"offset":2,"hex":"03"},{"offset":16,"hex":"010001"}])"},
    {"a copyback partner of itself", kPd, R"("patch":[{"offset":184,"hex":"2000"},{"offset":364,"hex":"0800"}])"},
    {"everything of ones", R"("from":2)", R"("fill":255)"},
    {"everything of nothing", R"("from":2)", R"("fill":0)"},
    {"everything cut", R"("from":2)", R"("truncate":7)"},
    {"everything at random", R"("from":2)", R"("random":20)"},
};

/// Two controllers with something of everything.
constexpr char kScenario[] = R"({"controllers":[
    {"enclosures":[{"slots":8,"temperatures":[{},{"celsius":40}],"fans":[{"rpm":1000}],"powerSupplies":[{}],
        "voltages":[{"hundredths":500}]}],"connectors":[{"location":"external","name":"Port 0 - 3"}],"cacheBackup":{},
        "images":[{"name":"APP","version":"1.2"},{"name":"BIOS","version":"3"}],
        "drives":[{"repeat":5},{}],"arrays":[{"drives":[0,1]},{"drives":[2,3]}],"lds":[
            {"name":"A","level":10,"spans":[{"array":0,"blocks":4194304},{"array":1,"blocks":4194304}],
                "snapshotSource":true},
            {"id":1,"name":"B","level":10,"spans":[{"array":0,"startBlock":4194304},{"array":1,"startBlock":4194304}],
                "repository":true}],"spares":[{"drive":4,"arrays":[0,1]},{"drive":5}]},
    {"id":1,"drives":[{}],"arrays":[{"drives":[0]}],"lds":[{"level":0,"spans":[{}]}]}]})";

class HostileAnswers : public OperationTest, public testing::WithParamInterface<Lie> {};

TEST_P(HostileAnswers, EveryReportSurvives) {
    const Lie& lie = GetParam();
    for (const char* report : kReports) {
        SCOPED_TRACE(report);
        auto options = optionsFor(kScenario, report);
        const auto honest = lie.unchanged.contains(report) ? box.run(options) : RunResult{};
        options.env["ZEBSIM_FAULTS"] = lie.fault();
        const auto result = box.run(options);
        EXPECT_EQ(0, result.signal) << result;
        EXPECT_TRUE(result.exitStatus == 0 || result.exitStatus == 255) << result;
        EXPECT_EQ("", result.err);
        if (lie.unchanged.contains(report)) {
            EXPECT_EQ(0, result.exitStatus);
            EXPECT_TRUE(sameText(result.out, honest.out));
        }
        const auto requests = parseTrace(result.trace);
        EXPECT_TRUE(!requests.empty() && requests.back().brief() == "00/09 ref=00000000") << "library not closed";
    }
}

INSTANTIATE_TEST_SUITE_P(Lies, HostileAnswers, testing::ValuesIn(kLies), [](const auto& lie) {
    return masked(lie.param.name, {{"[^A-Za-z0-9]+", "_"}});
});

using HostileSizes = OperationTest;

TEST_F(HostileSizes, SnapshotOf4GigabytesIsReadUpToOneMegabyte) {
    auto options = optionsFor(kScenario, "-ldpdprog");
    options.env["ZEBSIM_FAULTS"] =
        R"([{"type":6,"cmd":3,"opcode":"0x030F0800","nth":1,"patch":[{"offset":0,"hex":"ffffffff"}]}])";
    const auto result = box.run(options);
    std::vector<std::string> sizes; // the first four bytes of a controller command's record
    for (const auto& request : parseTrace(result.trace))
        if (request.type == 6 && request.cmd == 3 && request.out.at(6) == 0x0F)
            sizes.push_back(toHex({reinterpret_cast<const char*>(request.out.data()), 4}));
    EXPECT_THAT(sizes, testing::ElementsAre("04000000", "00001000", "04000000", testing::_));
    EXPECT_THAT(LogFile(box.log()).messages(),
                testing::Contains("!ERR func=UpdateDriveInfo: size 4294967295 is not believed, contNo=0, ldNo=0"));
    EXPECT_EQ(box.run(optionsFor(kScenario, "-ldpdprog")).out, result.out);
}

TEST_F(HostileSizes, ConfigurationOf4GigabytesIsNotRead) {
    auto options = optionsFor(kScenario, "-ldpdprog");
    options.env["ZEBSIM_FAULTS"] = R"([{"type":4,"cmd":0,"nth":1,"patch":[{"offset":0,"hex":"ffffffff"}]}])";
    EXPECT_EQ(255, box.run(options).exitStatus);
    EXPECT_THAT(LogFile(box.log()).messages(),
                testing::Contains("!ERR func=UpdateDriveInfo: size 4294967295 is not believed, contNo=0"));
}

/// The lines of a report with the values taken off, where a line has one.
std::string layoutOf(const std::string& report) {
    return masked(report, {{"(\n|^)([^:\r\n]*): [^\r\n]*", "$1$2:"},
                           {"(>|  )LD(\\d+) \\([^\n]*(, [0-9.]+GB, [A-Z]+\\)\r\n)", "$1LD$2 (NAME$3"}});
}

class HostileTexts : public OperationTest {
  protected:
    /// One controller all of whose texts are filled by the pattern, repeated to the full width of each field.
    static std::string scenario(const std::string& pattern) {
        const auto text = [&pattern](const char* key, std::size_t width) {
            std::string value;
            for (std::size_t unit = pattern.starts_with('\\') ? 6 : 1; value.size() < width * unit;)
                value += pattern;
            return '"' + std::string(key) + "\":\"" + value + '"';
        };
        return R"({"controllers":[{"cacheBackup":{},)" + text("product", 80) + ',' + text("serial", 32) + ',' +
               text("packageVersion", 96) + R"(,"images":[{"name":"APP","version":"","buildDate":"","buildTime":""},
               {"name":"APP0","version":"x",)" +
               text("buildDate", 16) + ',' + text("buildTime", 16) + R"(},{"name":"BIOS",)" + text("version", 32) +
               R"(}],"driver":{)" + text("version", 32) + R"(},"enclosures":[{)" + text("revision", 4) +
               R"(,"temperatures":[{}]}],"connectors":[{)" + text("name", 16) + R"(}],"drives":[{"repeat":2,)" +
               text("vendor", 8) + ',' + text("product", 16) + ',' + text("revision", 4) +
               R"(}],"arrays":[{"drives":[0,1]}],"lds":[{)" + text("name", 16) + R"(,"level":1,"spans":[{}]}]}]})";
    }
};

TEST_F(HostileTexts, NeverChangeTheLayout) {
    const std::string patterns[] = {"%", "%n", "%s%n", "%%", R"(\u000a)", R"(\u000d)", R"(\u001b)", R"(\u00ff)"};
    for (const char* report : kReports) {
        const auto plain = box.run(optionsFor(scenario("A"), report));
        EXPECT_EQ(0, plain.exitStatus);
        for (const auto& pattern : patterns) {
            SCOPED_TRACE(report + std::string(" with ") + pattern);
            const auto result = box.run(optionsFor(scenario(pattern), report));
            EXPECT_EQ(0, result.exitStatus) << result;
            EXPECT_TRUE(sameText(layoutOf(result.out), layoutOf(plain.out)));
        }
    }
}

TEST_F(HostileTexts, EndAtTheFieldsWidth) {
    for (const std::string report : {"ctrlinfo", "ldpdinfo", "pdinfo", "enclinfo"})
        EXPECT_TRUE(matchesKept("full_width/" + report + ".txt", box.run(optionsFor(scenario("A"), report)).out));
}

} // namespace
} // namespace zebtest
