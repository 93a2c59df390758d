// What creation does when somebody else is faster, when a request fails, and when success is none.
#include "tests/support/creation_case.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <filesystem>

#include "tests/support/expected.h"
#include "tests/support/paths.h"

namespace zebtest {
namespace {

// Five drives on each of two controllers; the second has a group with free space, and one for a CacheCade LD.
constexpr char kTwo[] = R"({"controllers": [
  {"id": 3, "maxPds": 5, "drives": [{"repeat": 5}]},
  {"id": 9, "maxPds": 8, "cacheCadeCapacity": 512,
    "drives": [{"repeat": 6}, {"slot": 6, "repeat": 2, "media": "SSD"}],
    "arrays": [{"drives": [0, 1]}, {"drives": [2]}],
    "lds": [{"level": 1, "spans": [{"blocks": 204800}]}, {"spans": [{"array": 1}]}]}]})";

const std::string kNothingDone = " The configuration has been changed.\nNothing has been done. Please execute the "
                                 "command again.\n";

/// A fault that strikes once the drive of that device id was read for the n-th time.
std::string after(unsigned deviceId, unsigned nth, const std::string& event, unsigned ctrl) {
    return R"([{"type": 2, "cmd": 0, "ctrl": )" + number(ctrl) + R"(, "ref": )" + number(deviceId) + R"(, "nth": )" +
           number(nth) + R"(, "also": )" + event + "}]";
}

class CreationChanges : public OperationTest {
  protected:
    RunResult run(const std::string& args, const std::string& answers, const std::string& faults,
                  const std::string& scenario = kTwo) {
        auto options = optionsFor(scenario, args);
        options.input = Input::kPipe;
        options.inputText = answers;
        options.env["ZEBSIM_STATE"] = state();
        if (!faults.empty())
            options.env["ZEBSIM_FAULTS"] = faults;
        std::filesystem::remove(state());
        return box.run(options);
    }
    std::filesystem::path state() const { return box.root() / "state.json"; }
    /// How many LDs that creation has named are in the state.
    unsigned ldsInState() const {
        const std::string text = std::filesystem::exists(state()) ? readFile(state()) : "";
        unsigned count = 0;
        for (std::size_t at = text.find("\"LD_"); at != std::string::npos; at = text.find("\"LD_", at + 1))
            ++count;
        return count;
    }
    static bool changes(const RunResult& result) {
        for (const TracedRequest& request : parseTrace(result.trace))
            if ((request.header.cmdType == 0x02 && request.header.cmd != 0x00) ||
                (request.header.cmdType == 0x03 && request.header.cmd != 0x00))
                return true;
        return !blockOf(result).empty();
    }
};

TEST_F(CreationChanges, NothingIsDoneWhenSomebodyElseWasFaster) {
    const struct {
        const char* why;
        std::string args, answers, fault;
        char controller;
    } cases[] = {
        {"a drive fails", "-ldc -r5[:0,:1,:2] -a0", "y\n", after(8, 3, R"({"drive": 0, "state": "failed"})", 3), '0'},
        {"a drive is pulled", "-ldc -r5[:0,:1,:2] -a0", "y\n", after(8, 3, R"({"drive": 1, "gone": true})", 3), '0'},
        {"a drive becomes a spare", "-ldc -r5[:0,:1,:2] -a0", "y\n",
         after(8, 3, R"({"drive": 2, "state": "spare"})", 3), '0'},
        {"a planned spare is taken", "-lde", "0\n1\n2\ny\n", after(8, 3, R"({"drive": 4, "state": "spare"})", 3), '0'},
        {"one controller of two", "-ldc -r0[:4] -aAll", "y\n", after(12, 2, R"({"drive": 4, "state": "bad"})", 9), '1'},
        {"a member fails", "-ldc -r1[:0,:1] -a1", "y\n", after(8, 2, R"({"drive": 1, "state": "failed"})", 9), '1'},
        {"the LD of the group goes", "-ldc -r1[:0,:1] -a1", "y\n", after(8, 2, R"({"ld": 0, "gone": true})", 9), '1'},
        {"an LD to associate goes", "-ldc -cachecade[:6,:7] -a1", "y\ny\n",
         after(14, 2, R"({"ld": 1, "gone": true})", 9), '1'}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.why);
        const auto result = run(c.args, c.answers, c.fault);
        EXPECT_TRUE(result.out.ends_with(std::string("Error - Controller[") + c.controller + "]" + kNothingDone))
            << result;
        EXPECT_FALSE(changes(result));
        EXPECT_TRUE(run(c.args, c.answers, "")
                        .out.ends_with(c.args == "-lde"                                ? "(Physical Drive) 4.\n"
                                       : c.args.find("cachecade") != std::string::npos ? "(Logical Drive) 0,1.\n"
                                                                                       : "has been created.\n"));
    }
}

TEST_F(CreationChanges, NoAtAnyQuestionSendsNothing) {
    constexpr char kUnlike[] = R"({"controllers": [{"maxPds": 6, "cacheCadeCapacity": 1, "drives": [{"repeat": 2},
      {"blocks": 100000000}, {"media": "SSD"}, {"slot": 4, "media": "SSD", "blocks": 100000000}],
      "arrays": [{"drives": [0]}], "lds": [{"spans": [{}]}]}]})";
    const struct {
        std::string args, answers, last;
    } cases[] = {
        {"-ldc -r1[:1,:2] -wb", "n\n",
         "Warning - Changing to \"Always Write Back\" !\nWhen power failure occurs, cached data may be lost.\n"
         "Please hook up this RAID system to UPS.\nProceed with the setting?(Y/N)?\n"},
        {"-ldc -r1[:1,:2] -wb", "y\nn\n",
         "Warning - Some PDs(Physical Drives) have different capacity.\nCreate the LD[s](Logical Drive[s])?(Y/N)?\n"},
        {"-ldc -r1[:1,:2]", "y\nn\n", "capacity.\nCreate the LD[s](Logical Drive[s])?(Y/N)?\nIs it executed?(Y/N)?\n"},
        {"-ldc -cachecade[:3,:4]", "n\n",
         "Warning - Some PD[s] (Physical Drive[s]) have different capacity.\n"
         "Create the CacheCade LD (Logical Drive)?(Y/N?)\n"},
        {"-ldc -cachecade[:3,:4]", "y\ny\nn\n",
         "Information - CacheCade LD[s](Logical Drive[s]) doesn't need Initialization.\n"
         "Use the following LD[s] as Associated CacheCade LD?(Y/N)?\n\nLD:LD0Is it executed?(Y/N)?\n"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.args + " answered " + c.answers);
        const auto result = run(c.args, c.answers, "", kUnlike);
        EXPECT_TRUE(result.out.ends_with(c.last)) << result;
        EXPECT_FALSE(changes(result));
    }
    EXPECT_TRUE(run("-ldc -cachecade[:3,:4]", "y\nn\ny\n", "", kUnlike)
                    .out.ends_with("LD(Logical Drive) 1 has been created.\n"))
        << "no association is no reason not to create";
}

TEST_F(CreationChanges, StatusOfTheRequestIsSaidAndNothingIsThere) {
    const std::pair<std::uint32_t, const char*> statuses[] = {
        {0x02, "DCMD opcode is invalid (0x2)"},
        {0x04, "invalid sequence number (0x4)"},
        {0x0B, "some of the CFG resources conflict with each other or the current config (0xB)"},
        {0x0D, "drive is too small for requrested operation (0xD)"},
        {0x1A, "maximum LDs are already configured (0x1A)"},
        {0x54, "Controller has LD cache pinned (0x54)"},
        {0x67, "config sequence number mismatch (0x67)"}};
    for (const auto& [status, text] : statuses) {
        const auto result =
            run("-ldc -r0[:4] -aAll", "y\n", R"([{"opcode": "0x04020000", "status": )" + std::to_string(status) + "}]");
        EXPECT_TRUE(
            result.out.ends_with("Is it executed?(Y/N)?\nError - Controller[0] Failed to create LD(Logical Drive).\n" +
                                 std::string(text) + "\nPlease confirm PD(Physical Drive) state.\n"))
            << result;
        EXPECT_EQ(1, std::ranges::count(loggedMessages(),
                                        "!ERR func=CliCmdExecCfgLDCustomMakeAdd: SLCreateLD error, contNo=0"));
        std::filesystem::remove(box.log());
    }
    const auto drive =
        run("-ldc -r0[:4] -a0", "y\n", R"([{"type": 2, "cmd": 0, "ctrl": 3, "ref": 12, "nth": 5, "status": "0x0C"}])");
    EXPECT_TRUE(
        drive.out.ends_with("invalid device ID / select-timeout (0xC)\nPlease confirm PD(Physical Drive) state.\n"))
        << drive;
    EXPECT_EQ("", blockOf(drive));
    const auto stale =
        run("-ldc -r0[:4] -a0", "y\n", R"([{"type": 2, "cmd": 0, "ctrl": 3, "ref": 12, "nth": 5, "bumpSeq": true}])");
    EXPECT_TRUE(stale.out.ends_with("invalid sequence number (0x4)\nPlease confirm PD(Physical Drive) state.\n"))
        << stale;
}

TEST_F(CreationChanges, SecondControllerKeepsNothingWhenItFails) {
    const auto result = run("-ldc -r0[:4] -aAll", "y\n", R"([{"opcode": "0x04020000", "nth": 2, "status": "0x0B"}])");
    EXPECT_NE(std::string::npos, result.out.find("Information - Controller[0] LD(Logical Drive) 0 has been created.\n"
                                                 "Error - Controller[1] Failed to create LD(Logical Drive).\n"))
        << result;
}

TEST_F(CreationChanges, WhatReadsBackOtherwiseIsSaid) {
    const std::string differs = "Error - Controller[0] The created LD(Logical Drive) differs from the plan.\n"
                                "Please confirm LD(Logical Drive) state.\n";
    const std::string newLd = R"([{"type": 3, "cmd": 0, "ctrl": 3, "nth": 1, )";
    const struct {
        const char* why;
        std::string faults;
    } cases[] = {{"nothing was made", R"([{"opcode": "0x04020000", "status": 0}])"},
                 {"another level", newLd + R"("patch": [{"offset": 32, "hex": "05"}]}])"},
                 {"a CacheCade LD", newLd + R"("patch": [{"offset": 47, "hex": "01"}]}])"},
                 {"another size", newLd + R"("patch": [{"offset": 72, "hex": "0000100000000000"}]}])"},
                 {"an array of other drives", newLd + R"("patch": [{"offset": 80, "hex": "0500"}]}])"},
                 {"no LD in the list",
                  R"([{"type": 1, "cmd": 13, "ctrl": 3, "nth": 3, "patch": [{"offset": 0, "hex": "00"}]}])"},
                 {"the read fails", R"([{"type": 1, "cmd": 5, "nth": 3, "status": "0x22"}])"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.why);
        const auto result = run("-ldc -r1[:3,:4] -aAll", "y\n", c.faults);
        EXPECT_TRUE(result.out.ends_with("Is it executed?(Y/N)?\n" + differs)) << result;
    }
    const auto cache =
        run("-ldc -cachecade[:6] -a1", "y\ny\n",
            R"([{"type": 3, "cmd": 0, "ctrl": 9, "ref": 2, "nth": 1, "patch": [{"offset": 47, "hex": "00"}]}])");
    EXPECT_TRUE(cache.out.ends_with("Error - Controller[1] The created LD(Logical Drive) differs from the plan.\n"
                                    "Please confirm LD(Logical Drive) state.\n"))
        << "a mark that was ignored ends before the association\n"
        << cache;
    const auto easy = run("-lde", "0\n1\n2\ny\n", cases[0].faults);
    EXPECT_TRUE(easy.out.ends_with(differs)) << easy;
}

TEST_F(CreationChanges, AssociationChangesTheIoPolicyOfEachLd) {
    const auto result = run("-ldc -cachecade[:6,:7] -a1", "y\ny\n", "");
    EXPECT_TRUE(result.out.ends_with(
        "LD:LD0,1Is it executed?(Y/N)?\nInformation - Controller[1] LD(Logical Drive) 2 has been created.\n"
        "Information - Controller[1] LD(Logical Drive) Settings have been changed on LD(Logical Drive) 0,1.\n"))
        << result;
    std::string writes;
    for (const TracedRequest& request : parseTrace(result.trace))
        if (request.header.cmdType == 0x03 && request.header.cmd == 0x02)
            writes += number(request.out.at(0)) + "=" + number(request.out.at(20)) + " ";
    EXPECT_EQ("0=96 1=96 ", writes);
    const std::string failed = "Error - Controller[1] Failed to change LD(Logical Drive) 1 Settings.\n";
    for (const char* fault : {R"([{"type": 3, "cmd": 2, "nth": 2, "status": "0x32"}])",
                              R"([{"type": 3, "cmd": 0, "ref": 1, "nth": 4, "status": "0x32"}])"})
        EXPECT_TRUE(
            run("-ldc -cachecade[:6,:7] -a1", "y\ny\n", fault)
                .out.ends_with("LD(Logical Drive) Settings have been changed on LD(Logical Drive) 0.\n" + failed));
}

TEST_F(CreationChanges, FreeSpaceHasItsConditions) {
    const auto on = [](const std::string& keys) {
        return R"({"controllers": [{"id": 3, "maxPds": 6, "cacheCadeCapacity": 1, "drives": [{"repeat": 4}], )" + keys +
               "}]}";
    };
    const std::string raid5 =
        R"("arrays": [{"drives": [0, 1, 2]}], "lds": [{"level": 5, "spans": [{"blocks": 204800}])";
    const struct {
        std::string scenario, args, faults;
        std::string says;
    } cases[] = {
        {on(raid5 + "}]"), "-ldc -r0[:0,:1,:2]", "", "RG0 is not RAID0."},
        {on(R"("arrays": [{"drives": [0, 1, 2]}], "lds": [{"spans": [{"blocks": 204800}], "cacheCade": true}])"),
         "-ldc -r0[:0,:1,:2]", "", "scRG0 is not RAID0."},
        {on(raid5 + R"(, "state": "degraded"}])"), "-ldc -r5[:0,:1,:2]", "",
         "Please confirm LD(Logical Drive) state of RG0."},
        {on(raid5 + R"(, "reconstruction": 5}])"), "-ldc -r5[:0,:1,:2]", "",
         "Please confirm LD(Logical Drive) state of RG0."},
        {on(R"("maxLds": 1, )" + raid5 + "}]"), "-ldc -r5[:0,:1,:2]", "",
         "The number of LDs(Logical Drives) is over 1."},
        {on(raid5 + "}]"), "-ldc -r5[:0,:1,:2]", R"([{"type": 4, "cmd": 8, "nth": 2, "status": "0x0C"}])",
         "Failed to read the free space of RG0."},
        {on(raid5 + "}]"), "-ldc -r5[:2,:1,:0] -sz600000", "",
         "The specified size is over the free space(557.555 GB)."},
        {on(raid5 + "}]"), "-ldc -r5[:0,:1]", "", "PD(Physical Drive) 0 cannot be used: the state is ONLINE."},
        {on(raid5 + "}]"), "-ldc -cachecade[:0,:1,:2]", "",
         "PD(Physical Drive) 0 cannot be used: the state is ONLINE."},
        {on(R"("arrays": [{"drives": [0, 1]}, {"drives": [2, 3]}], "lds": [{"level": 10, "spans": [{"array": 0}, {"array": 1}]}])"),
         "-ldc -r10 -array0[:0,:2] -array1[:1,:3]", "", "PD(Physical Drive) 0 cannot be used: the state is ONLINE."},
        {on(R"("arrays": [{"drives": [0, 1]}, {"drives": [2, 3]}], "lds": [{"level": 10, "spans": [{"array": 0}, {"array": 1}]}])"),
         "-ldc -r10 -array0[:3,:2] -array1[:1,:0]", "", "The specified size is over the free space(0.000 GB)."}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.args + " " + c.faults);
        EXPECT_EQ("Error - Controller[0] " + c.says + "\n", run(c.args, "", c.faults, c.scenario).out);
    }
}

TEST_F(CreationChanges, SecondLdInBothSpansOfARaid10) {
    constexpr char kBare[] = R"({"controllers": [{"id": 3, "enclosures": [{"deviceId": 40, "index": 2, "slots": 16}],
      "drives": [{"repeat": 8}, {"slot": 8, "repeat": 2, "blocks": 389545984}]}]})";
    auto first = run("-ldc -r10 -array0[:1,:0] -array1[:2,:9] -sz100", "y\ny\n", "", kBare);
    EXPECT_TRUE(first.out.ends_with("LD(Logical Drive) 0 has been created.\n")) << first;
    auto options = optionsFor(kBare, "-ldc -r10 -array0[:9,:2] -array1[:0,:1] -sz100");
    options.input = Input::kPipe;
    options.inputText = "y\n";
    options.env["ZEBSIM_STATE"] = state();
    const auto second = box.run(options);
    EXPECT_TRUE(second.out.ends_with("LD(Logical Drive) 1 has been created.\n")) << second;
    EXPECT_NE(std::string::npos, second.out.find("  PD No.         : 40:1,40:0 + 40:2,40:9\n"));
    EXPECT_EQ(keptBlock("free_space_raid10"), blockOf(second));
}

TEST_F(CreationChanges, FailureAtAnyRequestLeavesAllOrNothing) {
    const std::string clean = run("-ldc -r1[:3,:4] -sz1 -sz2 -a0", "y\n", "").trace;
    EXPECT_EQ(2U, ldsInState());
    const std::size_t requests = parseTrace(clean).size();
    bool nothing = false;
    bool all = false;
    for (std::size_t at = requests / 2; at <= requests; ++at) {
        SCOPED_TRACE(at);
        const auto result = run("-ldc -r1[:3,:4] -sz1 -sz2 -a0", "y\ny\n",
                                R"([{"from": )" + std::to_string(at) + R"(, "status": "0x32"}])");
        const unsigned lds = ldsInState();
        EXPECT_TRUE(lds == 0 || lds == 2) << lds;
        EXPECT_EQ(lds == 2, result.out.find("has been created") != std::string::npos ||
                                result.out.find("differs from the plan") != std::string::npos)
            << result;
        nothing |= lds == 0;
        all |= lds == 2;
    }
    EXPECT_TRUE(nothing && all);
}

/// What kills at a byte of the log does not go together with the sanitizers, so the release build is what is killed.
TEST_F(CreationChanges, ARunKilledWhileItLogsLeavesAllOrNothing) {
    if (*paths::releaseZebcli == '\0')
        GTEST_SKIP() << "no release build was named (ZEB_RELEASE_BUILD)";
    constexpr std::size_t kStride = 977; // bytes; meets every record, which fills a line and a marker, over the run
    auto options = optionsFor(kTwo, "-ldc -r1[:3,:4] -sz1 -sz2 -a0");
    options.program = paths::releaseZebcli;
    options.libraryDir = paths::releaseLibraryDir;
    options.input = Input::kPipe;
    options.inputText = "y\n";
    options.env["ZEBSIM_STATE"] = state();
    options.env["LD_PRELOAD"] = paths::failingCalls;
    options.env["ZEB_FAIL_CALL"] = "killed";
    options.env["ZEB_FAIL_MARK"] = box.root() / "killed";
    std::array<unsigned, 3> met{};
    for (std::size_t at = 1;; at += kStride) {
        std::filesystem::remove(state());
        std::filesystem::remove(box.log());
        options.env["ZEB_FAIL_AT"] = std::to_string(at);
        const auto result = box.run(options);
        if (result.signal == 0)
            break;
        ASSERT_EQ(SIGKILL, result.signal);
        ASSERT_TRUE(ldsInState() == 0 || ldsInState() == 2) << at;
        ++met[ldsInState()];
    }
    EXPECT_TRUE(met[0] > 0 && met[2] > 0) << met[0] << " and " << met[2];
}

} // namespace
} // namespace zebtest
