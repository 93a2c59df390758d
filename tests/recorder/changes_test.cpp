// Commands that change something do the same with the recorder in between, and their recording gives the same run
// again.
#include "tests/recorder/originals.h"
#include "tests/recorder/recorded.h"

#include "tests/support/expected.h"

#include <algorithm>

namespace fs = std::filesystem;

namespace zebtest {
namespace {

class Changes : public RecorderTest {
  protected:
    void SetUp() override {
        RecorderTest::SetUp();
        useRelease();
    }
    fs::path state() const { return box.root() / "state.json"; }

    /// A run on the scenario as its file gives it; what is left of it stands in the state.
    RunOptions onState(const std::string& scenario, const ToolRun& run) const {
        RunOptions options = tool(scenario, run);
        options.env["ZEBSIM_STATE"] = state();
        options.env["ZEBSIM_SPEED"] = "0";
        return options;
    }
    /// The hardware after the last run; the next one finds it as it was before.
    std::string takeHardware() const {
        const std::string text = masked(readFile(state()), {{R"("savedAt": *[0-9.e+]+)", "SAVED"}});
        fs::remove(state());
        return text;
    }
    /// Compares a command alone, recorded and replayed. Returns whether it changes something there.
    bool check(const std::string& scenario, const ToolRun& run);
    /// The same, and that a redacted recording names nothing.
    void checkRedacted(const std::string& scenario, const ToolRun& run);
};

bool Changes::check(const std::string& scenario, const ToolRun& run) {
    SCOPED_TRACE(run.args + " on " + scenario);
    const RunOptions options = onState(scenario, run);
    const RunResult plain = box.run(options);
    const std::string changed = takeHardware();
    const RunResult recorded = record(options, {"--no-redact"});
    EXPECT_TRUE(sameText(takeHardware(), changed));
    const RunResult replayed = replay(options);
    EXPECT_EQ(takeHardware(), "") << "there is none in a replay";
    for (const RunResult& result : {recorded, replayed}) {
        EXPECT_TRUE(sameText(result.out, plain.out));
        EXPECT_TRUE(sameText(result.trace, plain.trace));
        EXPECT_EQ(result.err, plain.err);
        EXPECT_EQ(result.exitStatus, plain.exitStatus);
    }
    return std::ranges::any_of(parseTrace(plain.trace), [](const TracedRequest& traced) {
        return requestOf(traced).effect() == zebrec::Effect::kChanges;
    });
}

void Changes::checkRedacted(const std::string& scenario, const ToolRun& run) {
    SCOPED_TRACE(run.args + " on " + scenario);
    EXPECT_TRUE(check(scenario, run));
    const RunOptions options = tool(scenario, run);
    const RunResult recorded = record(options);
    const std::string all = everythingIn(recording());
    EXPECT_EQ(originalsOf(readFile(scenarioFile(scenario))).in(all), "");
    EXPECT_EQ(all.find("MADEHERE"), std::string::npos); // a name that the command itself gives
    EXPECT_EQ(replay(options).exitStatus, recorded.exitStatus);
}

TEST_F(Changes, AreWhatTheyAreAloneAndRedactedNameNothing) {
    for (const ToolRun& run : kChangingRuns)
        checkRedacted("built_in", run);
    const std::pair<const char*, ToolRun> elsewhere[] = {
        {"ld_degraded", {"-pdrbld -start -pd[252:3] -a0"}},
        {"drive_failed", {"-pdmakegood -pd[252:1] -a0"}}, // the library refuses
        {"background_work", {"-ldinit -stop -LALL -aAll"}},
        {"controllers_four", {"-cblearn -aAll"}},
        {"drives_unconfigured", {"-ldc -r1[252:0,252:1] -a0", "y\ny\n"}},
        {"cachecade", {"-lddel", "0\n0\ny\ny\n"}},
        {"spans_two", {"-ldsetprop -wb -name MADEHERE -L0 -a0", "y\n"}},
    };
    for (const auto& [scenario, run] : elsewhere)
        checkRedacted(scenario, run);
}

class ChangesIn : public Changes, public testing::WithParamInterface<std::string> {};

TEST_P(ChangesIn, TheScenarioAreWhatTheyAreAlone) {
    const ToolRun runs[] = {
        {"-ctrlautorbld -dsbl -aAll", "y\ny\ny\ny\n"},
        {"-ldcc -start -LALL -aAll"},
        {"-ldsetprop -wb -name MADEHERE -L0 -a0", "y\n"},
        {"-pdoffline -pd[252:1] -a0"},
        {"-lddel", "0\n0\ny\ny\n"},
    };
    bool changed = false; // not every one finds there what it could change
    for (const ToolRun& run : runs)
        changed = check(GetParam(), run) || changed;
    EXPECT_EQ(changed, GetParam() != "controllers_none" && GetParam() != "controllers_five");
}

INSTANTIATE_TEST_SUITE_P(Scenarios, ChangesIn, testing::ValuesIn(scenarioNames()),
                         [](const auto& scenario) { return scenario.param; });

} // namespace
} // namespace zebtest
