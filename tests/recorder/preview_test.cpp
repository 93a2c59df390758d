// A preview changes nothing and lists what the same command changes when it is run.
#include "tests/recorder/recorded.h"

#include "tests/support/paths.h"

#include <cstring>
#include <sstream>

namespace zebtest {
namespace {

class Preview : public RecorderTest {
  protected:
    void SetUp() override {
        RecorderTest::SetUp();
        if (IsSkipped())
            return;
        begin("built_in");
    }
    /// One run makes the state that all begin with.
    void begin(const std::string& scenario) {
        std::filesystem::remove(state());
        box.run(onState({"-v"}, scenario));
        before_ = readFile(state());
        ASSERT_FALSE(before_.empty());
    }
    std::filesystem::path state() const { return box.root() / "state.json"; }
    RunOptions onState(const ToolRun& run, const std::string& scenario = "built_in") const {
        RunOptions options = tool(scenario, run);
        options.env["ZEBSIM_STATE"] = state();
        options.env["ZEBSIM_SPEED"] = "0";
        return options;
    }

    void check(const ToolRun& run);

    std::string before_;
};

/// The changing requests of a trace, as a preview lists them but for the controller.
std::vector<std::string> changesOf(const std::string& trace) {
    std::vector<std::string> changes;
    for (const TracedRequest& traced : parseTrace(trace)) {
        const auto request = requestOf(traced);
        if (request.effect() != zebrec::Effect::kChanges)
            continue;
        changes.push_back("held back: " + describe(request, 9));
    }
    return changes;
}

std::vector<std::string> heldBack(std::string err) {
    std::vector<std::string> lines;
    std::istringstream text(err);
    for (std::string line; std::getline(text, line);) {
        const std::size_t number = line.find(": controller ");
        if (line.rfind("held back: ", 0) != 0)
            continue;
        if (number != std::string::npos)
            line[number + std::strlen(": controller ")] = '9';
        lines.push_back(line);
    }
    return lines;
}

/// The requests up to the first that changes something.
std::vector<std::string> askedBeforeChange(const std::string& trace) {
    std::vector<std::string> asked;
    for (const TracedRequest& traced : parseTrace(trace)) {
        if (requestOf(traced).effect() == zebrec::Effect::kChanges)
            break;
        asked.push_back(traced.brief());
    }
    return asked;
}

void Preview::check(const ToolRun& run) {
    SCOPED_TRACE(run.args);
    const std::string before = readFile(state());
    const RunResult previewed = box.run(under("zebcli-preview", {}, onState(run)));
    EXPECT_EQ(readFile(state()), before);
    const RunResult real = box.run(onState(run));
    const auto held = heldBack(previewed.err);
    const auto changed = changesOf(real.trace);
    ASSERT_FALSE(changed.empty()) << real;
    ASSERT_FALSE(held.empty()) << previewed;
    EXPECT_EQ(held.front(), changed.front());
    EXPECT_NE(previewed.err.find("nothing was changed; "), std::string::npos);
    if (previewed.err.find("true up to here") == std::string::npos)
        EXPECT_EQ(held, changed);
    const auto asked = askedBeforeChange(real.trace);
    auto askedInPreview = askedBeforeChange(previewed.trace);
    ASSERT_GE(askedInPreview.size(), asked.size());
    askedInPreview.resize(asked.size());
    EXPECT_EQ(askedInPreview, asked);
}

TEST_F(Preview, OfEveryChangingCommandLeavesTheStateAndListsWhatWouldChange) {
    for (const ToolRun& run : kChangingRuns) {
        check(run);
        writeFile(state(), before_);
    }
}

TEST_F(Preview, SaysTheListInWords) {
    const RunResult result = box.run(under("zebcli-preview", {}, onState({"-pdoffline -pd[252:3] -a0"})));
    EXPECT_EQ(result.err,
              "held back: 02/02 set physical drive offline: controller 0, device id 11, sequence number 13\n"
              "nothing was changed; 1 request was held back\n");
    const RunResult reading = box.run(under("zebcli-preview", {}, onState({"-pdinfo -a0"})));
    EXPECT_EQ(reading.err, "nothing was changed; no request was held back\n");
}

TEST_F(Preview, OfLogicalDrivesAndRebuildsHoldsTheFirstChangeBack) {
    const struct {
        std::string scenario;
        ToolRun run;
        std::string first; ///< of the list
        unsigned count; ///< of the list; a command that misses its change may end at once
    } cases[] = {
        {"built_in",
         {"-ldc -r0[252:14] -wb -sz100 -sz200 -a0", "y\ny\n"},
         "06/03 04020000 add to configuration: controller 0",
         1},
        {"built_in", {"-lde", "0\n1\ny\n"}, "06/03 04020000 add to configuration: controller 0", 1},
        {"built_in",
         {"-lddel", "0\n2,3\ny\ny\n"},
         "03/03 delete logical drive: controller 0, target id 2, sequence number 34",
         2},
        {"ld_degraded",
         {"-pdrbld -start -pd[252:3] -a0"},
         "02/05 start rebuild: controller 0, device id 11, sequence number 13",
         1},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(one.run.args);
        begin(one.scenario);
        const RunResult previewed = box.run(under("zebcli-preview", {}, onState(one.run, one.scenario)));
        EXPECT_EQ(readFile(state()), before_);
        EXPECT_EQ(previewed.err.rfind("held back: " + one.first + "\n", 0), 0U) << previewed;
        EXPECT_EQ(heldBack(previewed.err).size(), one.count) << previewed;
        EXPECT_NE(previewed.err.find("nothing was changed; " + std::to_string(one.count) + " request"),
                  std::string::npos);
        EXPECT_EQ(previewed.exitStatus, box.run(onState(one.run, one.scenario)).exitStatus);
        EXPECT_NE(readFile(state()), before_) << "the same for real";
    }
}

TEST_F(Preview, HandsNothingOnWhenItsProgramCannotBeReached) {
    // As without /proc: the recorder cannot know that this is a preview.
    RunOptions options = onState({"-pdoffline -pd[252:3] -a0"});
    options.env["ZEBREC_PAGE"] = "/proc/self/fd/999";
    options.env["ZEBREC_LIBRARY"] = std::string(paths::libraryDir) + "/libstorelib.so";
    options.libraryDir = std::string(paths::recorderDir) + "/lib/zebcli/recorder";
    const RunResult result = box.run(options);
    EXPECT_EQ(result.out, "Error - Failed to initialize.\n");
    EXPECT_EQ(result.err, "zebrec: the program that started the recorder cannot be reached (is /proc there?); "
                          "no request is handed on\n");
    EXPECT_EQ(readFile(state()), before_);
}

} // namespace
} // namespace zebtest
