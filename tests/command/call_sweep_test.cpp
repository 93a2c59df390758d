// Fails every allocation and every system call of a kind, one after the other: no run may end by a signal or hang.
#include "tests/support/log_file.h"
#include "tests/support/paths.h"
#include "tests/support/sandbox.h"

#include <filesystem>
#include <map>
#include <string>

#include <gtest/gtest.h>

namespace zebtest {
namespace {

struct SweptRun {
    const char* name;
    std::vector<std::string> args;
    const char* input = "";
};

const SweptRun kRuns[] = {
    {"ctrlinfo", {"-ctrlinfo", "-aAll"}},
    {"ldpdinfo", {"-ldpdinfo", "-aAll"}},
    {"pdinfo", {"-pdinfo", "-a1"}},
    {"enclinfo", {"-enclinfo", "-a0"}},
    {"ctrlautorbld", {"-ctrlautorbld", "-dsbl", "-aAll"}, "y\ny\n"},
    {"ctrlpr", {"-ctrlpr", "-enblman", "-start", "-aAll"}, "y\ny\n"},
    {"lddel", {"-lddel"}, "0\n2,3\ny\ny\n"},
    {"lde", {"-lde"}, "0\n1\ny\n"},
    {"ldc", {"-ldc", "-r0[252:14]", "-wb", "-sz100", "-sz200", "-a0"}, "y\ny\n"},
    {"ldc_in_free_space", {"-ldc", "-r5[:0,:1,:2,:3]", "-a0"}, "y\n"},
    {"dhs", {"-pdhsp", "-dhs", "-pd[252:14]", "-a0"}, "0\n"},
    {"ldcc", {"-ldcc", "-start", "-L0", "-a0"}},
    {"log", {"-log"}},
    {"tstevt", {"-tstevt", "-err"}},
    {"refused", {"-nonsense"}},
};

[[maybe_unused]] constexpr const char* kCalls[] = {"malloc", "open",   "pwrite",   "pread", "flock",
                                                   "fstat",  "fchmod", "terminal", "fork"};

class CallSweep : public SandboxTest, public testing::WithParamInterface<SweptRun> {};

/// A preloaded allocator does not go together with the sanitizers' own, so the release build is what is swept.
TEST_P(CallSweep, NoFailureEndsTheRunBySignal) {
    if (*paths::releaseZebcli == '\0')
        GTEST_SKIP() << "no release build was named (ZEB_RELEASE_BUILD)";
    const SweptRun& run = GetParam();
    const std::filesystem::path mark = box.root() / "failed";
    writeFile(box.zeb() / "zeb_config.csv", "1,2,60009,0,11,6,7,8,9,text\n");
    std::map<std::string, int> swept;
    for (const char* call : kCalls) {
        for (int at = 1; at < 2000; ++at) {
            SCOPED_TRACE(std::string(call) + " " + std::to_string(at));
            RunOptions options;
            options.program = paths::releaseZebcli;
            options.libraryDir = paths::releaseLibraryDir;
            options.args = run.args;
            options.input = Input::kPipe;
            options.inputText = run.input;
            options.env = {{"LD_PRELOAD", paths::failingCalls},
                           {"ZEB_FAIL_CALL", call},
                           {"ZEB_FAIL_AT", std::to_string(at)},
                           {"ZEB_FAIL_MARK", mark.string()}};
            const RunResult result = box.run(options);
            ASSERT_EQ(result.signal, 0) << result;
            ASSERT_TRUE(result.exitStatus == 0 || result.exitStatus == 255) << result;
            if (!std::filesystem::remove(mark))
                break;
            ++swept[call];
        }
        EXPECT_TRUE(LogFile(box.log()).everyLineExact()) << call;
    }
    for (const char* call : {"malloc", "open", "pwrite", "pread", "flock", "fstat", "fchmod", "terminal"})
        EXPECT_GT(swept[call], 0) << call << " was never made to fail";
}

INSTANTIATE_TEST_SUITE_P(Commands, CallSweep, testing::ValuesIn(kRuns),
                         [](const auto& test) { return std::string(test.param.name); });

} // namespace
} // namespace zebtest
