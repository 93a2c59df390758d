// Answers that lie or carry hostile texts: every report survives them, and keeps its layout.
#include <algorithm>
#include <filesystem>
#include <set>

#include <gmock/gmock.h>

#include "storelib/records/configuration.h"
#include "storelib/records/controller.h"
#include "storelib/records/enclosure.h"
#include "tests/support/answers.h"
#include "tests/support/expected.h"
#include "tests/support/log_file.h"
#include "tests/support/operation_test.h"

namespace zebtest {
namespace {

constexpr const char* kReports[] = {"-ctrlinfo -aAll", "-ldpdinfo -aAll", "-pdinfo -aAll",
                                    "-enclinfo -aAll", "-cbinfo -aAll",   "-ldpdprog"};

struct Lie {
    const char* name;
    std::string request; ///< the keys that pick it
    std::string change; ///< what becomes of the answer
    std::set<std::string> unchanged{}; ///< the reports that must be as they are without the lie

    std::string fault() const { return "[{" + request + "," + change + "}]"; }
};

const std::string kPdList = R"("type":1,"cmd":4)";
const std::string kLdList = R"("type":1,"cmd":13)";
const std::string kConfig = R"("type":4,"cmd":0)";
const std::string kArray = R"("type":4,"cmd":8)";
const std::string kPdAnswer = R"("type":2,"cmd":0)";
const std::string kLdAnswer = R"("type":3,"cmd":0)";
const std::string kInfo = R"("type":1,"cmd":0)";
const std::string kEnclosures = R"("type":1,"cmd":5)";
const std::string kElements = R"("type":8,"cmd":5)";
const std::string kConnectors = R"("type":6,"cmd":3,"opcode":"0x07030000")";

constexpr std::uint64_t kOnes = ~std::uint64_t{0};

/// A field of the n-th array of a configuration.
constexpr Place inArray(std::size_t n, Place field) {
    return field.behind(sizeof(_MR_CONFIG_DATA) + n * sizeof(_MR_ARRAY));
}

const Lie kListLies[] = {
    {"65535 drives", kPdList, patch({{ZEB_AT(_MR_PD_LIST, count), 0xFFFF}})},
    {"no drive", kPdList, patch({{ZEB_AT(_MR_PD_LIST, count), 0}}), {"-ctrlinfo -aAll", "-cbinfo -aAll"}},
    {"PD list of ones", kPdList, R"("fill":255)"},
    {"4 billion LDs", kLdList, patch({{ZEB_AT(_MR_LD_LIST, count), kOnes}})},
    {"LD 255", kLdList, patch({{ZEB_AT(_MR_LD_LIST, ld[0].targetId), 255}})},
};

/// Of the configuration and of RAID groups.
const Lie kGroupLies[] = {
    {"configuration of 0 bytes", kConfig, patch({{ZEB_AT(_MR_CONFIG_DATA, size), 0}})},
    {"configuration of 8 bytes", kConfig, patch({{ZEB_AT(_MR_CONFIG_DATA, size), 8}})},
    {"configuration of 31 bytes", kConfig, patch({{ZEB_AT(_MR_CONFIG_DATA, size), 31}})},
    {"configuration of 33 bytes", kConfig, patch({{ZEB_AT(_MR_CONFIG_DATA, size), 33}})},
    {"configuration of 4 GB", kConfig, patch({{ZEB_AT(_MR_CONFIG_DATA, size), kOnes}})},
    {"65535 arrays, LDs and spares", kConfig,
     patch({{ZEB_AT(_MR_CONFIG_DATA, arrayCount), kOnes},
            {ZEB_AT(_MR_CONFIG_DATA, ldCount), kOnes},
            {ZEB_AT(_MR_CONFIG_DATA, spareCount), kOnes}})},
    {"255 drives in an array", kConfig, patch({{inArray(0, ZEB_AT(_MR_ARRAY, numDrives)), 255}})},
    {"array 65535", kConfig, patch({{inArray(0, ZEB_AT(_MR_ARRAY, arrayRef)), kOnes}})},
    {"array 128", kConfig, patch({{inArray(0, ZEB_AT(_MR_ARRAY, arrayRef)), 128}})},
    {"configuration of ones", kConfig, R"("nth":2,"fill":255)"},
    {"group of 255 LDs, drives and free segments", kArray,
     patch({{ZEB_AT(_SL_ARRAY_INFO_T, ldCount), 255},
            {ZEB_AT(_SL_ARRAY_INFO_T, pdCount), 255},
            {ZEB_AT(_SL_ARRAY_INFO_T, freeCount), 255}})},
    {"group of LD 255", kArray, patch({{ZEB_AT(_SL_ARRAY_INFO_T, ldTargetId), 255}})},
    {"group of ones", kArray, R"("fill":255)"},
};

/// Of drives and LDs.
const Lie kDriveLies[] = {
    {"255 paths", kPdAnswer, patch({{ZEB_AT(_MR_PD_INFO, pathCount), 255}}), {"-ldpdprog", "-ldpdinfo -aAll"}},
    {"PD of ones", kPdAnswer, R"("fill":255)"},
    {"copyback partner unknown",
     kPdAnswer,
     patch({{ZEB_AT(_MR_PD_INFO, copybackPartner), 0x3412}}),
     {"-ldpdprog", "-ldpdinfo -aAll"}},
    {"255 spans", kLdAnswer, patch({{ZEB_AT(_MR_LD_INFO, config.spanDepth), 255}})},
    {"spans on arrays 128 and 65535", kLdAnswer,
     patch(
         {{ZEB_AT(_MR_LD_INFO, config.span[0].arrayRef), 128}, {ZEB_AT(_MR_LD_INFO, config.span[1].arrayRef), kOnes}})},
    {"LD of ones", kLdAnswer, R"("fill":255)"},
    {"LD of another number", kLdAnswer, patch({{ZEB_AT(_MR_LD_INFO, config.properties.ref.targetId), 255}})},
};

/// Of the controller and its enclosures.
const Lie kControllerLies[] = {
    {"4 billion image components",
     kInfo,
     patch({{ZEB_AT(_MR_CTRL_INFO, imageComponentCount), kOnes}}),
     {"-ctrlinfo -aAll"}},
    {"controller of ones", kInfo, R"("fill":255)"},
    {"4 billion enclosures", kEnclosures, patch({{ZEB_AT(_MR_ENCL_LIST, count), kOnes}}), {"-enclinfo -aAll"}},
    {"no enclosure", kEnclosures, patch({{ZEB_AT(_MR_ENCL_LIST, count), 0}}), {"-enclinfo -aAll"}},
    {"connector 255", kEnclosures, patch({{ZEB_AT(_MR_ENCL_LIST, encl[0].connectorIndex), 255}})},
    {"4 billion connectors", kConnectors, patch({{ZEB_AT(_MR_SAS_CONNECTORS, count), kOnes}}), {"-enclinfo -aAll"}},
    {"4 billion connectors and the enclosure on the 9th",
     kConnectors + ("," + patch({{ZEB_AT(_MR_SAS_CONNECTORS, count), kOnes}})) + "},{" + kEnclosures,
     patch({{ZEB_AT(_MR_ENCL_LIST, encl[0].connectorIndex), 8}})},
    {"65535 elements of each type", kElements, patch({{ZEB_AT(_SL_ENCL_STATUS_EX_T, count), 255}})},
    {"elements of ones", kElements, R"("fill":255)"},
};

/// Records that lead to themselves or to each other.
const Lie kLoops[] = {
    {"every slot with the same drive", kPdList,
     patch({{ZEB_AT(_MR_PD_LIST, addr[1].deviceId), 8}, {ZEB_AT(_MR_PD_LIST, addr[2].deviceId), 8}})},
    {"every drive in the same slot", kPdList,
     patch({{ZEB_AT(_MR_PD_LIST, addr[1].slotNo), 0}, {ZEB_AT(_MR_PD_LIST, addr[2].slotNo), 0}})},
    {"the same LD twice", kLdList, patch({{ZEB_AT(_MR_LD_LIST, ld[1].targetId), 0}})},
    {"two arrays of the same number", kConfig, patch({{inArray(1, ZEB_AT(_MR_ARRAY, arrayRef)), 0}})},
    {"an array of one drive twice", kConfig, patch({{inArray(0, ZEB_AT(_MR_ARRAY, pd[1].ref.deviceId)), 8}})},
    {"eight spans on one array", kLdAnswer,
     patch({{ZEB_AT(_MR_LD_INFO, config.spanDepth), 8}, {ZEB_AT(_MR_LD_INFO, config.span[1].arrayRef), 0}})},
    {"groups that hold each other's LDs", kArray,
     R"("nth":1,)" + patch({{ZEB_AT(_SL_ARRAY_INFO_T, ldCount), 3},
                            {ZEB_AT(_SL_ARRAY_INFO_T, ldTargetId[0]), 1},
                            {ZEB_AT(_SL_ARRAY_INFO_T, ldTargetId[1]), 0},
                            {ZEB_AT(_SL_ARRAY_INFO_T, ldTargetId[2]), 1}})},
    {"a copyback partner of itself", kPdAnswer,
     patch({{ZEB_AT(_MR_PD_INFO, fwState), kPdCopyback}, {ZEB_AT(_MR_PD_INFO, copybackPartner), 8}})},
};

/// Whatever is asked behind the start.
const Lie kEverything[] = {
    {"everything of ones", R"("from":2)", R"("fill":255)"},
    {"everything of nothing", R"("from":2)", R"("fill":0)"},
    {"everything cut", R"("from":2)", R"("truncate":7)"},
    {"everything at random", R"("from":2)", R"("random":20)"},
};

/// Two controllers with something of everything.
constexpr char kProgressScenario[] = R"({"controllers":[
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
        auto options = optionsFor(kProgressScenario, report);
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

std::string nameOf(const testing::TestParamInfo<Lie>& lie) {
    return masked(lie.param.name, {{"[^A-Za-z0-9]+", "_"}});
}
INSTANTIATE_TEST_SUITE_P(Lists, HostileAnswers, testing::ValuesIn(kListLies), nameOf);
INSTANTIATE_TEST_SUITE_P(Groups, HostileAnswers, testing::ValuesIn(kGroupLies), nameOf);
INSTANTIATE_TEST_SUITE_P(Drives, HostileAnswers, testing::ValuesIn(kDriveLies), nameOf);
INSTANTIATE_TEST_SUITE_P(Controllers, HostileAnswers, testing::ValuesIn(kControllerLies), nameOf);
INSTANTIATE_TEST_SUITE_P(Loops, HostileAnswers, testing::ValuesIn(kLoops), nameOf);
INSTANTIATE_TEST_SUITE_P(Everything, HostileAnswers, testing::ValuesIn(kEverything), nameOf);

using HostileSizes = OperationTest;

TEST_F(HostileSizes, SnapshotOf4GigabytesIsReadUpToOneMegabyte) {
    auto options = optionsFor(kProgressScenario, "-ldpdprog");
    options.env["ZEBSIM_FAULTS"] =
        R"([{"type":6,"cmd":3,"opcode":"0x030F0800","nth":1,"patch":[{"offset":0,"hex":"ffffffff"}]}])"; // the size
    const auto result = box.run(options);
    std::vector<std::uint32_t> sizes;
    for (const auto& request : parseTrace(result.trace))
        if (const auto dcmd = request.dcmd(); dcmd && (dcmd->opcode & 0xFF0000U) == 0x0F0000U)
            sizes.push_back(dcmd->dataSize);
    EXPECT_THAT(sizes, testing::ElementsAre(4, 0x100000, 4, testing::_));
    EXPECT_THAT(LogFile(box.log()).messages(),
                testing::Contains("!ERR func=UpdateDriveInfo: size 4294967295 is not believed, contNo=0, ldNo=0"));
    EXPECT_EQ(box.run(optionsFor(kProgressScenario, "-ldpdprog")).out, result.out);
}

TEST_F(HostileSizes, ConfigurationOf4GigabytesIsNotRead) {
    auto options = optionsFor(kProgressScenario, "-ldpdprog");
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
