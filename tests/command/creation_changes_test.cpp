// Creation that ends anywhere leaves all of what it was asked for or nothing. The rest is in transcripts/.
#include "tests/support/operation_test.h"

#include <array>
#include <csignal>
#include <filesystem>

#include "tests/support/paths.h"

namespace zebtest {
namespace {

class CreationChanges : public OperationTest {
  protected:
    RunOptions twoLds(const std::string& answers) {
        auto options =
            optionsFor(R"({"controllers": [{"maxPds": 5, "drives": [{"repeat": 5}]}]})", "-ldc -r1[:3,:4] -sz1 -sz2");
        options.input = Input::kPipe;
        options.inputText = answers;
        options.env["ZEBSIM_STATE"] = state();
        return options;
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
};

TEST_F(CreationChanges, FailureAtAnyRequestLeavesAllOrNothing) {
    auto options = twoLds("y\ny\n");
    const std::size_t requests = parseTrace(box.run(options).trace).size();
    EXPECT_EQ(2U, ldsInState());
    std::array<unsigned, 3> met{};
    for (std::size_t at = requests / 2; at <= requests; ++at) {
        SCOPED_TRACE(at);
        std::filesystem::remove(state());
        options.env["ZEBSIM_FAULTS"] = R"([{"from": )" + std::to_string(at) + R"(, "status": "0x32"}])";
        const auto result = box.run(options);
        ASSERT_TRUE(ldsInState() == 0 || ldsInState() == 2) << ldsInState();
        EXPECT_EQ(ldsInState() == 2, result.out.find("has been created") != std::string::npos ||
                                         result.out.find("differs from the plan") != std::string::npos)
            << result;
        ++met[ldsInState()];
    }
    EXPECT_TRUE(met[0] > 0 && met[2] > 0) << met[0] << " and " << met[2];
}

/// What kills at a byte of the log does not go together with the sanitizers, so the release build is what is killed.
TEST_F(CreationChanges, ARunKilledWhileItLogsLeavesAllOrNothing) {
    if (*paths::releaseZebcli == '\0')
        GTEST_SKIP() << "no release build was named (ZEB_RELEASE_BUILD)";
    constexpr std::size_t kStride = 977; // bytes; meets every record, which fills a line and a marker, over the run
    auto options = twoLds("y\n");
    options.program = paths::releaseZebcli;
    options.libraryDir = paths::releaseLibraryDir;
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
