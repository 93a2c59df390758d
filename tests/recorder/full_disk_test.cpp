// A disk that is full ends the recording and not the command.
#include "tests/recorder/recorded.h"

#include "recorder/recording.h"
#include "tests/support/expected.h"

namespace fs = std::filesystem;

namespace zebtest {
namespace {

class FullDisk : public RecorderTest {
  protected:
    void SetUp() override {
        RecorderTest::SetUp();
        useRelease();
    }
    RunOptions command() const {
        RunOptions options = tool("built_in", {"-pdhsp -ghs -pd[252:14] -a0", "y\ny\ny\n"});
        options.trace = false;
        return options;
    }
    /// The same with no file of it, its log included, longer than this.
    RunOptions limited(std::uint64_t bytes) const {
        RunOptions options = command();
        options.args.insert(options.args.begin(), {"--fsize=" + std::to_string(bytes), options.program});
        options.program = "/usr/bin/prlimit";
        return options;
    }
    /// The recorder with its recording on a disk of that many kilobytes.
    RunOptions onSmallDisk(int size, const std::string& before) const {
        RunOptions options = under("zebcli-record", {"small/recording"}, command());
        const std::string mount = "mkdir -p small; mount -t tmpfs -o size=" + std::to_string(size) + "k none small; ";
        options.args.insert(options.args.begin(), {"-c", mount + before + "exec \"$0\" \"$@\"", options.program});
        options.program = "/bin/sh";
        return options;
    }
    std::string onDisk(const std::string& script) { // which is there for programs of the sandbox alone
        RunOptions options;
        options.program = "/bin/sh";
        options.args = {"-c", script};
        return box.run(options).out;
    }
    static std::size_t linesOf(const std::string& text) {
        std::string reason;
        const auto read = zebrec::readRecording(text, reason);
        EXPECT_TRUE(read) << reason;
        return read ? read->lines.size() : 0;
    }
};

TEST_F(FullDisk, EndsTheRecordingAtAnyLineAndNotTheCommand) {
    const struct {
        std::uint64_t limit;
        bool holdsLines;
    } cases[] = {{zebrec::kHeadSize, false}, {zebrec::kHeadSize + 50, false}, {8000, true}};
    for (const auto& one : cases) {
        SCOPED_TRACE(one.limit);
        const RunResult plain = box.run(limited(one.limit));
        fs::remove(box.log());
        const RunResult recorded = record(limited(one.limit));
        fs::remove(box.log());
        EXPECT_TRUE(sameText(recorded.out, plain.out));
        EXPECT_EQ(plain.exitStatus, 0) << plain;
        EXPECT_EQ(recorded.exitStatus, plain.exitStatus);
        EXPECT_EQ(recorded.err,
                  plain.err + "zebcli-record: the recording " + recording().string() + " ends early: File too large\n");
        EXPECT_EQ(fs::file_size(recording()), one.limit);
        EXPECT_EQ(linesOf(readFile(recording())) != 0, one.holdsLines);
    }
}

TEST_F(FullDisk, OfAFewPagesHoldsWhatWentIn) {
    const RunResult plain = box.run(command());
    const RunResult recorded = box.run(onSmallDisk(8, ""));
    EXPECT_EQ(recorded.out, plain.out);
    EXPECT_EQ(recorded.exitStatus, plain.exitStatus);
    EXPECT_EQ(recorded.err, "zebcli-record: the recording small/recording ends early: No space left on device\n");
    EXPECT_GT(linesOf(onDisk("cat small/recording")), 3U);
}

TEST_F(FullDisk, ThatTakesNoHeadLeavesNoFileAndStartsNothing) {
    const RunResult result = box.run(onSmallDisk(4, "head -c 4096 /dev/zero >small/filler; "));
    EXPECT_EQ(result.exitStatus, 3);
    EXPECT_EQ(result.err, "zebcli-record: small/recording cannot be written: No space left on device\n");
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(onDisk("ls small"), "filler\n");
}

TEST_F(FullDisk, ALimitBelowTheSharedPageIsOneLine) {
    RunOptions options = under("zebcli-record", {recording()}, command());
    options.fileSizeLimit = 1000;
    const RunResult result = box.run(options);
    EXPECT_EQ(result.exitStatus, 3) << result;
    EXPECT_EQ(result.err, "zebcli-record: no shared memory: File too large\n");
    EXPECT_FALSE(fs::exists(recording()));
}

} // namespace
} // namespace zebtest
