// Waiting for background work and watching it, against the simulator's clock.
#include "tests/support/child.h"
#include "tests/zebstat/zebstat_run.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <thread>

namespace fs = std::filesystem;

namespace zebtest {
namespace {

Json one(Json item) {
    return Json::array({std::move(item)});
}

/// A controller with a mirror of drives that take 1078 s for all work at the usual rates, 1.8 s at the speed below.
Json mirror(const Json& drives, const Json& ld = Json::object()) {
    Json theLd{{"level", 1}, {"name", "DATA"}, {"spans", one(Json::object())}};
    theLd.update(ld);
    return {{"controllers", one({{"drives", drives}, {"arrays", one({{"drives", {0, 1}}})}, {"lds", one(theLd)}})}};
}

class Work : public SandboxTest {
  protected:
    static constexpr const char* kSpeed = "600";

    RunOptions runOn(const Json& scenario, const std::string& line) {
        fs::remove(state());
        RunOptions options = zebstatRunOn(box, scenario, line);
        options.env["ZEBSIM_STATE"] = state();
        options.env["ZEBSIM_SPEED"] = kSpeed;
        return options;
    }
    fs::path state() const { return box.root() / "state.json"; }

    /// Puts another state in the place of the present one, between two sessions of the library.
    void replaceState(Json scenario) const {
        const Fd lock(::open((state().string() + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644));
        ASSERT_EQ(flock(lock.get(), LOCK_EX), 0);
        scenario["savedAt"] = static_cast<double>(std::time(nullptr));
        writeFile(state(), scenario.dump());
    }
    Json documentNow() {
        RunOptions options = zebstatRun("json");
        options.env["ZEBSIM_STATE"] = state();
        options.env["ZEBSIM_SPEED"] = "0";
        return Json::parse(box.run(options).out);
    }
};

bool isAtWork(const Json& document) {
    for (const char* kind : {"physical_drives", "logical_drives"})
        for (const Json& object : document["controllers"][0][kind])
            if (!object["operations"].empty())
                return true;
    return false;
}

TEST_F(Work, WaitReturnsSoonAfterTheEndAndNeverEarly) {
    const Json half = 50;
    const struct {
        const char* kind;
        Json scenario;
    } cases[] = {{"rebuild", mirror(Json::array({Json::object(), Json{{"rebuild", half}}}))},
                 {"patrol_read", mirror(Json::array({Json::object(), Json{{"patrolRead", half}}}))},
                 {"clear", mirror(Json::array({Json{{"repeat", 2}}, Json{{"clear", half}}}))},
                 {"copyback", mirror(Json::array({Json::object(), Json{{"copybackPartner", 10}},
                                                  Json{{"copyback", half}, {"copybackPartner", 9}}}))},
                 {"consistency_check", mirror(one({{"repeat", 2}}), {{"check", half}})},
                 {"background_initialization", mirror(one({{"repeat", 2}}), {{"backgroundInit", half}})},
                 {"initialization", mirror(one({{"repeat", 2}}), {{"init", half}})},
                 {"reconstruction", mirror(one({{"repeat", 2}}), {{"reconstruction", half}})}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.kind);
        const RunResult result = box.run(runOn(c.scenario, "wait --interval 0.3 --for " + std::string(c.kind)));
        EXPECT_EQ(result.exitStatus, 0) << result;
        EXPECT_EQ(result.out, "");
        EXPECT_FALSE(isAtWork(documentNow()));
        EXPECT_GT(result.wallTime, std::chrono::milliseconds(850)); // half of 1078 s at 600 times the speed
        EXPECT_LT(result.wallTime, std::chrono::milliseconds(900 + 300 + 2000)); // with room for a busy machine
    }
}

TEST_F(Work, WaitLooksAtWhatItIsToldToOnly) {
    const Json rebuilding = mirror(Json::array({Json::object(), Json{{"rebuild", 1}}}));
    const struct {
        const char* line;
        int status;
    } cases[] = {{"wait --for patrol_read,clear", 0},
                 {"wait --for rebuild --max 0", 5},
                 {"wait --for-logical-drive 0 --max 0", 5},
                 {"wait --for-logical-drive 0:0 --for rebuild --max 0.2 --interval 0.1", 5},
                 {"wait --for-logical-drive 0 --for initialization", 0}};
    for (const auto& c : cases) {
        const RunResult result = box.run(runOn(rebuilding, c.line));
        EXPECT_EQ(result.exitStatus, c.status) << c.line << result;
        EXPECT_EQ(result.err, c.status == 0 ? "" : "zebstat: time is up; still under way: PD1 rebuild\n");
    }
    // A copyback concerns the LDs of the drive that it comes from.
    const Json copying = mirror(
        Json::array({Json::object(), Json{{"copybackPartner", 10}}, Json{{"copyback", 1}, {"copybackPartner", 9}}}));
    EXPECT_EQ(box.run(runOn(copying, "wait --for-logical-drive 0 --max 0")).err,
              "zebstat: time is up; still under way: PD2 copyback\n");
}

TEST_F(Work, WhatCouldNotBeReadCountsAsWork) {
    RunOptions options = runOn(mirror(one({{"repeat", 2}})), "wait --max 0.5 --interval 0.1");
    options.env["ZEBSIM_FAULTS"] = R"([{"type": 3, "cmd": 0, "status": "0x32"}])";
    const RunResult result = box.run(options);
    EXPECT_EQ(result.exitStatus, 5) << result;
    EXPECT_GT(result.wallTime, std::chrono::milliseconds(500));
}

TEST_F(Work, WhatEndedBadlyIsSaid) {
    const Json twoLost = {
        {"controllers",
         one({{"drives", Json::array({Json{{"rebuild", 80}}, Json{{"state", "failed"}}, Json{{"repeat", 3}}})},
              {"arrays", one({{"drives", {0, 1, 2, 3, 4}}})},
              {"lds", one({{"level", 6}, {"spans", one(Json::object())}})}})}};
    RunResult result = box.run(runOn(twoLost, "wait --for-logical-drive 0 --interval 0.2"));
    EXPECT_EQ(result.exitStatus, 2) << result;
    EXPECT_EQ(result.err, "zebstat: controller 0: LD0 is partially degraded\n");
    result = box.run(runOn(twoLost, "wait --interval 0.2")); // the drive that was rebuilt is well
    EXPECT_EQ(result.exitStatus, 0) << result;

    const Json before = mirror(Json::array({Json::object(), Json{{"rebuild", 1}}}));
    const std::pair<Json, const char*> ends[] = {
        {mirror(Json::array({Json::object(), Json{{"state", "failed"}}})), "controller 0: PD1 has failed"},
        {{{"controllers", one({{"drives", one(Json::object())}})}}, "the drive with the device id 9 is gone"}};
    for (const auto& [after, words] : ends) {
        const RunOptions options = runOn(before, "wait --interval 0.3");
        std::thread change([&, next = after] {
            std::this_thread::sleep_for(std::chrono::milliseconds(700));
            replaceState(next);
        });
        result = box.run(options);
        change.join();
        EXPECT_EQ(result.exitStatus, 2) << result;
        EXPECT_THAT(result.err, testing::HasSubstr(words));
    }
}

TEST_F(Work, AnLdThatIsDeletedAtWorkIsSaidToBeGone) {
    const char* const kAfterItsReading = R"([{"type": 3, "cmd": 0, "nth": 1, "also": {"ld": 0, "gone": true}}])";
    // The one poll that saw LD0 at work could not read LD1; both are gone before the next.
    const char* const kInAPollInPart = R"([{"type": 3, "cmd": 0, "nth": 2, "status": "0x32",
                                            "also": [{"ld": 0, "gone": true}, {"ld": 1, "gone": true}]}])";
    const struct {
        const char* work;
        const char* line;
        const char* faults;
    } cases[] = {{"init", "", kAfterItsReading},
                 {"init", " --for initialization", kAfterItsReading},
                 {"backgroundInit", " --for-logical-drive 0", kAfterItsReading},
                 {"check", " --for-logical-drive 0:0 --for consistency_check", kAfterItsReading},
                 {"check", "", kInAPollInPart}};
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.work) + c.line);
        Json scenario = mirror(one({{"repeat", 2}}), {{c.work, 50}, {"spans", one({{"blocks", 1000000}})}});
        scenario["controllers"][0]["lds"].push_back(
            {{"level", 1}, {"spans", one({{"startBlock", 1000000}, {"blocks", 1000000}})}});
        RunOptions options = runOn(scenario, "wait --interval 0.1 --max 5" + std::string(c.line));
        options.env["ZEBSIM_SPEED"] = "0"; // no work ends by itself
        options.env["ZEBSIM_FAULTS"] = c.faults;
        const RunResult result = box.run(options);
        EXPECT_EQ(result.exitStatus, 2) << result;
        EXPECT_EQ(result.err, "zebstat: controller 0: LD0 is gone\n");
        EXPECT_EQ(result.out, "");
    }
}

TEST_F(Work, WatchPrintsPlainLinesWhereNothingCanBeDrawn) {
    RunResult result = box.run(zebstatRun("watch --once"));
    EXPECT_THAT(result.out,
                testing::MatchesRegex("[-0-9]+T[:0-9]+Z controller 1: PD1 rebuild 37 %, about 36 min left\n"));
    result = box.run(
        runOn(mirror(Json::array({Json::object(), Json{{"rebuild", 60}}})), "watch --until-done --interval 0.2"));
    EXPECT_EQ(result.exitStatus, 0) << result;
    EXPECT_TRUE(result.out.ends_with(" no background work is under way\n")) << result;
    EXPECT_GE(std::ranges::count(result.out, '\n'), 3);
    EXPECT_EQ(result.out.find('\033'), std::string::npos);
}

TEST_F(Work, WatchDrawsBarsUntilAKeyEndsIt) {
    const Json hostile = mirror(one({{"repeat", 2}}), {{"check", 25}, {"name", "\x1b[2Jx"}});
    for (const char* key : {"q", "\x03",
                            "\x04"
                            "q"}) {
        RunOptions options = runOn(hostile, "watch --interval 0.1");
        options.env["ZEBSIM_SPEED"] = "0";
        options.input = Input::kTerminal;
        options.output = Output::kTerminal;
        options.answers = {{"consistency check", "", true}, {"consistency check", key, true}};
        const RunResult result = box.run(options);
        EXPECT_EQ(result.exitStatus, 0) << result;
        EXPECT_TRUE(sameMode(result.terminalBefore, result.terminalAfter));
        EXPECT_THAT(result.terminal, testing::HasSubstr("0  LD0 ' [2Jx'"));
        EXPECT_THAT(result.terminal, testing::HasSubstr("[###.........]  25 %")) << "a quarter of the bar";
        EXPECT_THAT(result.terminal, testing::HasSubstr("\033[2A")) << "drawn again in its place";
        EXPECT_EQ(result.terminal.find("\033[2J"), std::string::npos) << "a name must not clear the screen";
    }
}

TEST_F(Work, WatchFitsTheWidthOfTheTerminal) {
    const auto at = [](int percent) { return Json{{"percent", percent}, {"elapsed", 600}}; };
    const Json scenario = mirror(Json::array({Json{{"patrolRead", at(25)}}, Json::object()}),
                                 {{"name", "SIXTEEN_LETTERS_"}, {"check", at(99)}});
    const struct {
        unsigned short columns;
        std::ptrdiff_t bar; ///< characters between its brackets; 0: no room for one
    } cases[] = {{13, 0}, {40, 0}, {65, 0}, {80, 12}, {100, 28}, {200, 57}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.columns);
        RunOptions options = runOn(scenario, "watch --once");
        options.env["ZEBSIM_SPEED"] = "0";
        options.input = Input::kTerminal;
        options.output = Output::kTerminal;
        options.terminalColumns = c.columns;
        const RunResult result = box.run(options);
        std::vector<std::string> lines;
        std::istringstream stream(result.terminal);
        for (std::string line; std::getline(stream, line) && line.ends_with("\033[K");)
            lines.push_back(line.substr(0, line.size() - 3));
        ASSERT_EQ(lines.size(), 3U) << result;
        for (const std::string& line : lines)
            EXPECT_LT(line.size(), c.columns) << line;
        EXPECT_TRUE(lines[1].starts_with("0  LD0 'SIX")) << lines[1];
        EXPECT_TRUE(lines[2].starts_with("0  PD0 ")) << lines[2];
        if (c.columns < 40)
            continue;
        EXPECT_TRUE(lines[1].ends_with(" 99 %  under a minute left")) << lines[1];
        EXPECT_TRUE(lines[2].ends_with(" 25 %  about 30 min left")) << lines[2];
        EXPECT_EQ(std::ranges::count(lines[2], '#'), c.bar / 4) << lines[2];
        EXPECT_EQ(std::ranges::count(lines[2], '.'), c.bar - c.bar / 4) << lines[2];
    }
}

TEST_F(Work, ATimeOutWhileWatchingLeavesTheTerminalAsItWas) {
    RunOptions options = runOn(mirror(one({{"repeat", 2}})), "--timeout 0.3 watch");
    options.env["ZEBSIM_LATENCY_US"] = "30000000";
    options.input = Input::kTerminal;
    options.output = Output::kTerminal;
    const RunResult result = box.run(options);
    EXPECT_EQ(result.exitStatus, 3) << result;
    EXPECT_THAT(result.err, testing::HasSubstr("the library did not answer within 0.3 s"));
    EXPECT_TRUE(sameMode(result.terminalBefore, result.terminalAfter));
}

} // namespace
} // namespace zebtest
