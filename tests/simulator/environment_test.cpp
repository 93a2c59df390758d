// What a run is told by its environment and files, and what it does when that cannot be used.
#include <gmock/gmock.h>
#include <sys/stat.h>

#include "tests/simulator/simulated.h"
#include "tests/support/sandbox.h"

namespace zebtest {
namespace {

namespace fs = std::filesystem;

using Environment = SimulatorTest;

TEST_F(Environment, WhatCannotBeUsedIsRefusedWithItsPlaceAndItsMend) {
    mkfifo((folder / "pipe").c_str(), 0600);
    writeFile(folder / "torn.json", "{\"controllers\": [\n  {\"id\": 1,, \"slot\": 2}]}\n");
    const struct {
        std::map<std::string, std::string> environment;
        std::string complaint;
    } cases[] = {
        {{{"ZEBSIM_LATENCY_US", "1ms"}}, "ZEBSIM_LATENCY_US: give a whole number of microseconds, at most 3600000000"},
        {{{"ZEBSIM_LATENCY_US", "-1"}}, "ZEBSIM_LATENCY_US: give a whole number of microseconds, at most 3600000000"},
        {{{"ZEBSIM_SPEED", "fast"}}, "ZEBSIM_SPEED: give a number from 0 to 1000000000"},
        {{{"ZEBSIM_SCENARIO", folder / "pipe"}}, (folder / "pipe").string() + ": name a regular file"},
        {{{"ZEBSIM_STATE", folder / "pipe"}}, (folder / "pipe").string() + ": name a regular file"},
        {{{"ZEBSIM_SCENARIO", folder / "torn.json"}},
         (folder / "torn.json").string() + ": line 2, column 12: correct the JSON here"},
        {{{"ZEBSIM_FAULTS", R"([{"type":2,"cmd":0,"fields":{"fwStat":2}}])"}},
         "ZEBSIM_FAULTS: faults[0].fields.fwStat: name one of "},
        {{{"ZEBSIM_FAULTS", R"([{"type":2,"fields":{"fwState":2}}])"}},
         "ZEBSIM_FAULTS: faults[0].fields: pick one kind"},
        {{{"ZEBSIM_FAULTS", R"([{"type":2,"cmd":0,"fields":{"fwState":65536}}])"}},
         "ZEBSIM_FAULTS: faults[0].fields.fwState: give a whole number from 0 to 65535"},
        {{{"ZEBSIM_FAULTS", R"([{"type":8,"cmd":5,"fields":{"count":[1,2,3]}}])"}},
         "ZEBSIM_FAULTS: faults[0].fields.count: give as many numbers as share the 16 bytes"},
        {{{"ZEBSIM_FAULTS", R"([{"type":8,"cmd":5,"fields":{"count":[1,2,3,4,5,6,7,65536]}}])"}},
         "ZEBSIM_FAULTS: faults[0].fields.count[7]: give a whole number from 0 to 65535"},
        {{{"ZEBSIM_FAULTS", R"([{"status":1,"fill":1}])"}}, "ZEBSIM_FAULTS: faults[0].status: give one of status, "},
        {{{"ZEBSIM_FAULTS", R"([{"nth":1}])"}}, "ZEBSIM_FAULTS: faults[0].status: give one of status, "},
        {{{"ZEBSIM_FAULTS", R"([{"also":{"ld":1,"state":"failed"}}])"}},
         "ZEBSIM_FAULTS: faults[0].also[0]: give \"gone\": true, or for a drive a \"state\""},
    };
    for (const auto& [environment, complaint] : cases) {
        const SimulatedRun run(environment);
        EXPECT_EQ(0x8002U, run.status);
        EXPECT_THAT(run.complaint, testing::StartsWith("zebsim: " + complaint));
    }
}

TEST_F(Environment, ATraceWithoutReaderHoldsNobodyUp) {
    mkfifo((folder / "pipe").c_str(), 0600);
    EXPECT_EQ(0U, SimulatedRun({{"ZEBSIM_TRACE", folder / "pipe"}}).status);
}

TEST_F(Environment, AStateFileBehindALinkIsReplacedThere) {
    fs::create_directory(folder / "there");
    fs::create_symlink("there/file.json", folder / "state.json");
    const std::string scenario = R"({"controllers": [{"drives": [{"state": "bad"}]}]})";
    {
        SimulatedRun run(onState(scenario));
        ASSERT_EQ(0U, run.status) << run.complaint;
        EXPECT_EQ(0U, run.send({0x02, 0x13}, reference(8, 10)));
    }
    EXPECT_TRUE(fs::is_symlink(folder / "state.json"));
    EXPECT_THAT(readFile(folder / "there/file.json"), testing::HasSubstr("\"seq\":11"));
    EXPECT_FALSE(fs::exists(folder / "state.json.lock"));
}

} // namespace
} // namespace zebtest
