// Fails allocations and system calls of a kind, one after the other, in each program of the recorder and in the command
// below it: none ends by a signal or hangs, each does its work or says why not and ends with the status for that.
#include "tests/recorder/recorded.h"

#include "recorder/recording.h"
#include "tests/support/expected.h"
#include "tests/support/paths.h"

#include <algorithm>

namespace fs = std::filesystem;

namespace zebtest {
namespace {

struct Swept {
    const char* name; ///< of the test
    const char* program; ///< of the recorder
    bool inCommand; ///< not in it but in the command that it runs
    std::vector<const char*> calls; ///< those that are made there
};

const Swept kSwept[] = {
    {"record",
     "zebcli-record",
     false,
     {"malloc", "open", "pipe", "fork", "read", "memory", "pwrite", "random", "readlink"}},
    {"recorded", "zebcli-record", true, {"malloc", "open", "memory", "write"}},
    {"preview", "zebcli-preview", false, {"malloc", "open", "pipe", "fork", "read", "memory", "write", "readlink"}},
    {"previewed", "zebcli-preview", true, {"malloc", "open", "memory"}},
    {"replay", "zebcli-replay", false, {"malloc", "open", "read", "readlink"}},
    {"replayed", "zebcli-replay", true, {"malloc", "open", "read"}},
    {"probe",
     "zebcli-probe",
     false,
     {"malloc", "open", "pipe", "fork", "read", "memory", "pwrite", "random", "readlink"}},
};

/// Each of the first calls, then ever fewer of the many allocations.
int nextCall(int at) {
    return at + 1 + at / 40;
}

class RecorderCallSweep : public RecorderTest, public testing::WithParamInterface<Swept> {
  protected:
    void SetUp() override {
        RecorderTest::SetUp();
        if (IsSkipped())
            return;
        if (*paths::releaseRecorderDir == '\0')
            GTEST_SKIP() << "no release build was named (ZEB_RELEASE_BUILD)"; // a preloaded allocator goes ill with the
                                                                              // sanitizers
        useRelease();
        writeFile(box.root() / "scenario.json", R"({"controllers": [{"drives": [{}]}]})");
        record(command());
        sample_ = readFile(recording());
        plain_ = box.run(sweptRun());
        state_ = readFile(state());
    }
    fs::path mark() const { return box.root() / "failed"; }
    fs::path state() const { return box.root() / "state.json"; }

    RunOptions command() const {
        RunOptions options = tool("built_in", {"-pdlocate -start -pd[:0] -a0"});
        options.env["ZEBSIM_SCENARIO"] = box.root() / "scenario.json";
        options.env["ZEBSIM_STATE"] = state();
        options.env["ZEBSIM_SPEED"] = "0";
        return options;
    }
    /// The run in which calls are made to fail, and what it finds before it.
    RunOptions sweptRun() {
        const std::string program = GetParam().program;
        fs::remove(recording());
        fs::remove(box.log());
        if (program == "zebcli-replay")
            writeFile(recording(), sample_);
        if (program == "zebcli-preview")
            return under(program, {}, command());
        if (program != "zebcli-probe")
            return under(program, {recording()}, command());
        RunOptions options = under(program, {}, command());
        options.args = {"--record", recording()};
        return options;
    }
    RunResult failing(const char* call, int at) {
        RunOptions options = sweptRun();
        options.env["LD_PRELOAD"] = paths::failingCalls;
        options.env["ZEB_FAIL_IN"] = GetParam().inCommand ? "zebcli" : GetParam().program;
        options.env["ZEB_FAIL_CALL"] = call;
        options.env["ZEB_FAIL_AT"] = std::to_string(at);
        options.env["ZEB_FAIL_MARK"] = mark();
        return box.run(options);
    }
    void expectOrderly(const RunResult& result) const;
    void expectReadable(const RunResult& result) const;

    std::string sample_; ///< a recording of the command
    RunResult plain_; ///< the run in which nothing fails
    std::string state_;
};

/// A recording has every request of the run, or it is said that it ends early. A failure may cost a line of the trace.
void RecorderCallSweep::expectReadable(const RunResult& result) const {
    std::string reason;
    const auto read = zebrec::readRecordingFile(recording(), reason);
    ASSERT_TRUE(read) << reason << result;
    const std::size_t sent = parseTrace(result.trace).size();
    const bool early = result.err.find(" ends early: ") != std::string::npos;
    EXPECT_TRUE(early ? read->lines.size() <= sent : read->lines.size() >= sent && !read->cut) << result;
}

void RecorderCallSweep::expectOrderly(const RunResult& result) const {
    constexpr int kNotDone = 3;
    const Swept& swept = GetParam();
    const std::string program = swept.program;
    const bool asks = program == "zebcli-probe"; // by itself, and may be at it when it fails
    ASSERT_EQ(result.signal, 0) << result;
    if (program == "zebcli-preview")
        EXPECT_EQ(readFile(state()), state_);
    if (swept.inCommand) {
        ASSERT_TRUE(result.exitStatus == plain_.exitStatus || result.exitStatus == 255) << result;
    } else if (result.exitStatus == kNotDone) {
        EXPECT_EQ(result.out, "") << result;
        EXPECT_NE(result.err.find(program + ": "), std::string::npos) << result;
        EXPECT_TRUE(asks || (result.trace.empty() && std::ranges::count(result.err, '\n') == 1)) << result;
    } else {
        EXPECT_EQ(result.exitStatus, plain_.exitStatus) << result;
        EXPECT_EQ(result.out, plain_.out);
        EXPECT_TRUE(asks || result.trace == plain_.trace);
    }
    if (result.exitStatus == kNotDone && !asks)
        EXPECT_EQ(fs::exists(recording()), program == "zebcli-replay");
    else if (fs::exists(recording()))
        expectReadable(result);
    else
        EXPECT_TRUE(program == "zebcli-preview" || result.exitStatus == kNotDone);
}

TEST_P(RecorderCallSweep, NoFailureEndsARunBySignal) {
    for (const char* call : GetParam().calls) {
        int swept = 0;
        for (int at = 1; at < 200000; at = nextCall(at), ++swept) {
            SCOPED_TRACE(std::string(call) + " " + std::to_string(at));
            expectOrderly(failing(call, at));
            if (!fs::remove(mark()))
                break;
        }
        EXPECT_GT(swept, 0) << call << " was never made to fail";
    }
}

INSTANTIATE_TEST_SUITE_P(Programs, RecorderCallSweep, testing::ValuesIn(kSwept),
                         [](const auto& test) { return std::string(test.param.name); });

} // namespace
} // namespace zebtest
