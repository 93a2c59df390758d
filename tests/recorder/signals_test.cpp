// Signals end a command under the recorder as they end it alone, and leave the recording up to them.
#include "tests/recorder/recorded.h"

#include "recorder/recording.h"
#include "tests/support/expected.h"
#include "tests/support/paths.h"

#include <csignal>

namespace fs = std::filesystem;

namespace zebtest {
namespace {

class Signals : public RecorderTest {
  protected:
    void SetUp() override {
        RecorderTest::SetUp();
        useRelease();
    }
    /// Lines of the recording, all of which are whole.
    std::size_t recordedLines() const {
        std::string reason;
        const auto read = zebrec::readRecordingFile(recording(), reason);
        EXPECT_TRUE(read) << reason;
        EXPECT_FALSE(read && read->cut);
        return read ? read->lines.size() : 0;
    }
    /// Starts a command in a group of its own, sends a signal when a condition has come true, and tells the status and
    /// what was shown.
    RunResult signalled(RunOptions options, const std::string& condition, const std::string& signal, const char* whom) {
        options.args.insert(options.args.begin(), options.program);
        options.args.insert(
            options.args.begin(),
            {"-c", "set -m; rm -f typed; mkfifo typed; : >shown; \"$0\" \"$@\" <>typed >shown & until " + condition +
                       "; do sleep 0.02; done; kill -" + signal + " " + whom + "; wait $!; echo ended $?; cat shown"});
        options.program = "/bin/bash"; // others have jobs on a terminal only
        fs::remove(recording());
        return box.run(options);
    }
};

TEST_F(Signals, ATypedKeyAmidARequestEndsTheCommand) {
    fs::create_symlink(tool("built_in", {}).program, box.bin() / "zebcli");
    RunOptions alone = tool("built_in", {});
    alone.program = "/bin/sh"; // the tool itself takes no keys from the terminal, which then makes signals of them
    alone.args = {"-c", "exec </dev/null; zebcli -v; exec zebcli -pdinfo -a0"};
    alone.libraryDir = paths::libRoughDir;
    alone.env["ZEB_ROUGH"] = "hang";
    alone.trace = false;
    alone.input = Input::kTerminal;
    alone.output = Output::kTerminal;
    for (const auto& [key, signal] : {std::pair("\x03", SIGINT), std::pair("\x1c", SIGQUIT)}) {
        SCOPED_TRACE(signal);
        alone.answers = {{"the library hangs", key, true}};
        const RunResult plain = box.run(alone);
        EXPECT_EQ(plain.signal, signal) << plain;
        const RunResult recorded = record(alone);
        const RunResult previewed = box.run(under("zebcli-preview", {}, alone));
        const std::string where = ": the command ended inside request " + std::to_string(recordedLines() + 1) +
                                  ": 01/04 list physical drives: controller 0\n";
        EXPECT_EQ(recorded.err, "zebcli-record" + where);
        EXPECT_EQ(previewed.err, "zebcli-preview" + where + "nothing was changed; no request was held back\n");
        for (const RunResult& result : {recorded, previewed}) {
            EXPECT_EQ(result.exitStatus, 128 + signal);
            EXPECT_EQ(result.terminal, plain.terminal);
            EXPECT_TRUE(sameMode(result.terminalAfter, plain.terminalAfter));
        }
    }
}

TEST_F(Signals, ATypedKeyEndsAllTheReports) {
    fs::create_symlink(tool("built_in", {}).program, box.bin() / "zebcli");
    RunOptions options = tool("built_in", {});
    options.program = "/bin/sh";
    options.args = {"-c", "exec </dev/null; exec " + under("zebcli-record", {}, options).program + " " +
                              recording().string() + " --reports"};
    options.libraryDir = paths::libRoughDir;
    options.env["ZEB_ROUGH"] = "hang";
    options.trace = false;
    options.input = Input::kTerminal;
    options.output = Output::kTerminal;
    options.answers = {{"the library hangs", "\x03", true}};
    EXPECT_EQ(box.run(options).exitStatus, 128 + SIGINT);
}

TEST_F(Signals, AtAQuestionEndTheCommand) {
    const RunOptions alone = tool("built_in", {"-ctrlautorbld -dsbl -a0"});
    const RunOptions between = under("zebcli-record", {recording()}, alone);
    const struct {
        const char* signal;
        int number;
        const char* whom;
    } cases[] = {{"TERM", SIGTERM, "$!"}, {"HUP", SIGHUP, "$!"},     {"INT", SIGINT, "$!"},
                 {"QUIT", SIGQUIT, "$!"}, {"INT", SIGINT, "-- -$!"}, {"TERM", SIGTERM, "-- -$!"}};
    for (const auto& one : cases) {
        SCOPED_TRACE(std::string(one.signal) + " " + one.whom);
        const char* asked = "grep -q 'Y/N' shown";
        const RunResult plain = signalled(alone, asked, one.signal, one.whom);
        EXPECT_EQ(plain.out.rfind("ended " + std::to_string(128 + one.number) + "\n", 0), 0U) << plain;
        const RunResult recorded = signalled(between, asked, one.signal, one.whom);
        EXPECT_EQ(recorded.out, plain.out);
        EXPECT_EQ(recorded.trace, plain.trace);
        EXPECT_EQ(recorded.err.find("zebcli-record"), std::string::npos) << recorded;
        EXPECT_EQ(recordedLines(), parseTrace(plain.trace).size());
    }
}

TEST_F(Signals, TheInterruptKeyAtAQuestionIsNoMoreThanItIsAlone) {
    RunOptions options = tool("built_in", {"-ctrlautorbld -dsbl -a0"});
    options.input = Input::kTerminal;
    options.output = Output::kTerminal;
    options.answers = {{"(Y/N)", "\x03\n"}, {"(Y/N)", "n\n"}};
    const RunResult plain = box.run(options);
    const RunResult recorded = record(options);
    EXPECT_EQ(recorded.terminal, plain.terminal);
    EXPECT_EQ(recorded.trace, plain.trace);
    EXPECT_EQ(recorded.exitStatus, plain.exitStatus);
    EXPECT_TRUE(sameMode(recorded.terminalAfter, plain.terminalAfter));
    EXPECT_EQ(recorded.err, "");
}

TEST_F(Signals, InterruptsEndZebstatBetweenTwoPolls) {
    const RunOptions waiting = facts("background_work", "wait --interval 60");
    // Its poll is over with the library's exit, and so, a little later, is all that the recorder does about it.
    const char* polled = "grep -qs '^00/09' \"$ZEBSIM_TRACE\" && sleep 0.3";
    const RunResult plain = signalled(waiting, polled, "INT", "-- -$!");
    EXPECT_EQ(plain.out, "ended 130\n") << plain;
    const RunResult recorded = signalled(under("zebcli-record", {recording()}, waiting), polled, "INT", "-- -$!");
    EXPECT_EQ(recorded.out, plain.out) << recorded;
    EXPECT_EQ(recorded.trace, plain.trace);
    EXPECT_EQ(recordedLines(), parseTrace(plain.trace).size());
}

TEST_F(Signals, TheInterruptKeyEndsWatchingAndLeavesTheTerminalAsItWas) {
    RunOptions options = facts("background_work", "watch --interval 1");
    options.input = Input::kTerminal;
    options.output = Output::kTerminal;
    options.answers = {{"(q ends)", "", true}, {"(q ends)", "\x03", true}};
    const std::vector<Mask> times{{R"(\d{4}-\d\d-\d\d[T ]\d\d:\d\d:\d\dZ?)", "TIME"}};
    const RunResult plain = box.run(options);
    const RunResult recorded = record(options);
    EXPECT_TRUE(sameText(masked(recorded.terminal, times), masked(plain.terminal, times)));
    EXPECT_EQ(recorded.trace, plain.trace);
    EXPECT_EQ(recorded.exitStatus, plain.exitStatus);
    EXPECT_EQ(plain.signal, 0);
    EXPECT_TRUE(sameMode(recorded.terminalAfter, plain.terminalBefore));
    EXPECT_EQ(recorded.err, "");
    EXPECT_EQ(recordedLines(), parseTrace(plain.trace).size());
}

} // namespace
} // namespace zebtest
