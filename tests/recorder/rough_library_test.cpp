// The recorder over a library that cannot be loaded, writes past its data, crashes, hangs or answers nonsense.
#include "tests/recorder/recorded.h"

#include "recorder/recording.h"
#include "recorder/session.h"
#include "storelib/records/physical_drive.h"
#include "tests/support/paths.h"

#include <algorithm>
#include <csignal>

namespace zebtest {
namespace {

class RoughLibrary : public RecorderTest {
  protected:
    RunResult run(const std::string& manner) {
        RunOptions options = tool("built_in", {"-pdinfo -aAll"});
        options.trace = false;
        options.libraryDir = paths::libRoughDir;
        options.env["ZEB_ROUGH"] = manner;
        options.env["ASAN_OPTIONS"] = "handle_segv=0:detect_leaks=1";
        options.timeLimit = std::chrono::milliseconds(manner == "hang" ? 3000 : 20000);
        options.mayTimeOut = manner == "hang";
        return record(options, {"--no-redact"});
    }
    zebrec::Recording read() {
        std::string reason;
        auto recorded = zebrec::readRecordingFile(recording(), reason);
        EXPECT_TRUE(recorded) << reason;
        return recorded.value_or(zebrec::Recording{});
    }
};

// Without memory the C library's own reason can be rubbish.
TEST(LoadError, IsOneLine) {
    EXPECT_EQ(zebrec::LoadedLibrary("/nowhere\n\x01/libstorelib.so").failure(), "/nowhere");
}

TEST_F(RoughLibrary, AWriteBehindTheDataIsNotedAndHarmsNobody) {
    const RunResult result = run("past");
    EXPECT_EQ(result.exitStatus, 0) << result;
    const auto recorded = read();
    const auto noted = std::ranges::find_if(recorded.lines, [](const auto& line) { return line.past != 0; });
    ASSERT_NE(noted, recorded.lines.end());
    EXPECT_EQ(noted->past, 100U);
    EXPECT_EQ(result.err.rfind("zebcli-record: the library wrote 100 bytes behind the data of request " +
                                   std::to_string(noted->number) + ": 01/04 list physical drives: controller 0\n",
                               0),
              0U)
        << result.err;
}

TEST_F(RoughLibrary, ACrashNamesTheRequestAndLeavesTheRecordingUpToIt) {
    const RunResult result = run("crash");
    EXPECT_EQ(result.exitStatus, 128 + SIGSEGV);
    const auto recorded = read();
    ASSERT_FALSE(recorded.lines.empty());
    EXPECT_FALSE(recorded.cut);
    EXPECT_EQ(result.err, "zebcli-record: the command ended inside request " +
                              std::to_string(recorded.lines.back().number + 1) +
                              ": 01/04 list physical drives: controller 0\n");
}

TEST_F(RoughLibrary, AnAnswerThatNeverComesLeavesTheRecordingUpToIt) {
    EXPECT_TRUE(run("hang").timedOut);
    const auto recorded = read();
    EXPECT_FALSE(recorded.lines.empty());
    EXPECT_FALSE(recorded.cut);
}

TEST_F(RoughLibrary, NonsenseIsRecordedAsItCame) {
    EXPECT_EQ(run("nonsense").exitStatus, 0);
    const auto recorded = read();
    const auto list = std::ranges::find_if(recorded.lines, [](const auto& line) {
        const auto asked = zebrec::Request::of(line.header, {}).fields();
        return asked.cmdType == 1 && asked.cmd == 4;
    });
    ASSERT_NE(list, recorded.lines.end());
    ASSERT_TRUE(list->in);
    EXPECT_EQ(list->in->bytes, zebrec::Bytes(sizeof(_MR_PD_LIST), 0xFF));
}

} // namespace
} // namespace zebtest
