// Questions to the operator on a terminal and on a pipe: which answers count, and what becomes of the terminal's mode.
#include "tests/support/operation_test.h"
#include "tests/support/paths.h"

#include <gmock/gmock.h>

#include "tests/support/expected.h"

namespace zebtest {
namespace {

using std::chrono::milliseconds;

constexpr char kOne[] = R"({"controllers": [{"id": 3, "maxPds": 4, "drives": [{"repeat": 3}],
    "arrays": [{"drives": [0, 1]}], "lds": [{"level": 1, "spans": [{}]}]}]})";
constexpr char kQuestion[] = "Warning - In case of disabling Automatic Rebuild, the rebuild after error doesn't "
                             "automatically start.\nProceed with the setting?(Y/N)?\n";
constexpr char kChanged[] = "Information - Controller[0] Settings have been changed.\n";
constexpr char kAsked[] = "Proceed with the setting?(Y/N)?\n";

bool echoes(const termios& mode) {
    return (mode.c_lflag & ECHO) != 0;
}
bool takesSignals(const termios& mode) {
    return (mode.c_lflag & ISIG) != 0;
}
/// As before the run, but with the signal keys off: the mode of the last input is the one that stays.
bool isModeOfLastInput(const RunResult& result) {
    termios wanted = result.terminalBefore;
    wanted.c_lflag &= ~static_cast<tcflag_t>(ISIG);
    return echoes(result.terminalBefore) && takesSignals(result.terminalBefore) &&
           sameMode(wanted, result.terminalAfter);
}

class Questions : public OperationTest {
  protected:
    RunOptions onTerminal(const std::string& args) {
        auto options = optionsFor(kOne, args);
        options.input = Input::kTerminal;
        options.output = Output::kTerminal;
        return options;
    }
    RunOptions onPipe(const std::string& text) {
        auto options = optionsFor(kOne, "-ctrlautorbld -dsbl");
        options.input = Input::kPipe;
        options.inputText = text;
        return options;
    }
    bool changedSomething(const RunResult& result) { return result.trace.find("01/02 ") != std::string::npos; }
};

TEST_F(Questions, OneLetterAnswersOnATerminal) {
    const struct {
        std::vector<std::string> typed;
        bool yes;
    } cases[] = {
        {{"y"}, true},
        {{"Y"}, true},
        {{"n"}, false},
        {{"N"}, false},
        {{"yes", "", "no", " y", "y ", "j", "\x03", "Y"}, true},
        {{"1", "NO", "n"}, false},
    };
    for (const auto& c : cases) {
        auto options = onTerminal("-ctrlautorbld -dsbl");
        std::string shown;
        for (const auto& line : c.typed) {
            options.answers.push_back({kAsked, line + "\n"});
            shown += kQuestion + (line == "\x03" ? "^C" : line) + "\n";
        }
        const auto result = box.run(options);
        EXPECT_TRUE(sameText(result.out, shown + (c.yes ? kChanged : ""))) << testing::PrintToString(c.typed);
        EXPECT_EQ(c.yes, changedSomething(result));
        if (!c.yes)
            EXPECT_EQ("", requestsAfterSnapshot(kOne, result.trace));
        for (const auto& mode : result.terminalAtAnswer) {
            EXPECT_TRUE(echoes(mode));
            EXPECT_FALSE(takesSignals(mode));
        }
        EXPECT_TRUE(isModeOfLastInput(result));
    }
}

TEST_F(Questions, AnAnswerCountsBehindAnEndOfInputThatWasTyped) {
    auto options = onTerminal("-ctrlautorbld -dsbl");
    options.answers = {{kAsked, "\x04"}, {kAsked, "\x04"}, {kAsked, "y\n"}};
    const auto result = box.run(options);
    EXPECT_TRUE(sameText(result.out, repeated(kQuestion, 3) + "y\n" + kChanged));
    EXPECT_TRUE(changedSomething(result));
}

TEST_F(Questions, EchoIsOffAgainAfterTheInput) {
    auto options = onTerminal("-ctrlautorbld -dsbl");
    options.env["ZEBSIM_LATENCY_US"] = "30000"; // time to look at the mode
    options.answers = {{kAsked, "y\n"}, {kChanged, "", true}};
    const auto result = box.run(options);
    ASSERT_EQ(2U, result.terminalAtAnswer.size()) << result;
    EXPECT_TRUE(echoes(result.terminalAtAnswer[0]));
    EXPECT_FALSE(echoes(result.terminalAtAnswer[1]) || takesSignals(result.terminalAtAnswer[1]));
    EXPECT_TRUE(isModeOfLastInput(result));
}

/// A shell on the terminal runs zebcli (and something besides) in a library that takes its time.
RunOptions shellOnTerminal(const std::string& script) {
    RunOptions options;
    options.program = "/bin/sh";
    options.args = {"-c", script};
    options.input = Input::kTerminal;
    options.env["ZEBSIM_LATENCY_US"] = "20000";
    return options;
}

TEST_F(Questions, ASignalThatEndsTheRunPutsTheTerminalBack) {
    for (const std::string signal : {"TERM", "INT", "HUP", "QUIT"}) {
        const auto result = box.run(shellOnTerminal(std::string("exec 3<&0; ") + paths::zebcli +
                                                    " -ldpdinfo -aAll <&3 & sleep 0.3; stty -a; kill -" + signal +
                                                    " $!; wait $!; echo ended $?"));
        EXPECT_NE(result.out.npos, result.out.find(" -echo ")) << result;
        EXPECT_NE(result.out.npos, result.out.find(signal == "INT" || signal == "QUIT" ? "ended 0" : "ended 1"))
            << result;
        EXPECT_TRUE(sameMode(result.terminalBefore, result.terminalAfter)) << signal;
    }
}

TEST_F(Questions, WhoTookTheTerminalOverKeepsItsMode) {
    const auto result = box.run(shellOnTerminal(std::string("exec 3<&0; ") + paths::zebcli +
                                                " -v <&3 & sleep 0.3; stty -icanon; wait $!; echo ended $?"));
    EXPECT_NE(result.out.npos, result.out.find("ended 0")) << result;
    EXPECT_EQ(tcflag_t{0}, result.terminalAfter.c_lflag & (ICANON | ECHO | ISIG));
}

TEST_F(Questions, AJobInTheBackgroundIsNotStopped) {
    auto options = shellOnTerminal(std::string("set -m; ") + paths::zebcli + " -v > report & wait; cat report");
    const auto result = box.run(options);
    EXPECT_EQ(box.run({"-v"}).out, result.out);
    EXPECT_TRUE(sameMode(result.terminalBefore, result.terminalAfter));
}

TEST_F(Questions, AnAnswerIsWaitedForAndTakenInPieces) {
    // Standard input is a pipe that another program left without waiting; the answer comes late and in two writes.
    RunOptions options;
    options.program = "/usr/bin/perl";
    options.args = {
        "-e",
        R"(use Fcntl; pipe(R, W); unless (fork) { close R; for ("y", "\n") { select(undef, undef, undef, 0.3); syswrite W, $_ } exit }
        close W; fcntl(R, F_SETFL, fcntl(R, F_GETFL, 0) | O_NONBLOCK); open(STDIN, "<&R");
        exec $ARGV[0], "-ctrlautorbld", "-dsbl", "-a0")",
        paths::zebcli};
    EXPECT_EQ(std::string(kQuestion) + kChanged, box.run(options).out);
}

TEST_F(Questions, NobodyIsAskedWhoCannotSeeTheQuestion) {
    auto options = onPipe(repeated("maybe\n", 20000));
    for (const Output output : {Output::kBrokenPipe, Output::kFull}) {
        options.output = output;
        const auto result = box.run(options);
        EXPECT_EQ(0, result.exitStatus) << result;
        EXPECT_FALSE(changedSomething(result));
    }
    options.inputText = "y\n";
    EXPECT_TRUE(changedSomething(box.run(options))) << "an answer that was given counts";
    options.inputText = std::string(4U << 20U, 'y');
    EXPECT_FALSE(changedSomething(box.run(options))) << "a line without an end";
}

TEST_F(Questions, LongLinesAreNoAnswer) {
    // The line of 65536 characters ends in a "y" behind what is read at once.
    for (const std::size_t length : {65534, 65535, 65536, 70000, 131072}) {
        auto result = box.run(onPipe(std::string(length, 'y') + "\ny\n"));
        EXPECT_TRUE(sameText(result.out, repeated(kQuestion, 2) + kChanged)) << length;
        for (const char first : {'y', '\0'}) {
            result = box.run(onPipe(first + std::string(length - 1, 'y') + "\nn\n"));
            EXPECT_TRUE(sameText(result.out, repeated(kQuestion, 2))) << length;
            EXPECT_FALSE(changedSomething(result));
        }
    }
}

TEST_F(Questions, EndOfInputIsNoAnswerAndSpinsNoProcessor) {
    for (const char* input : {"", "maybe\n", "y"}) {
        auto options = onPipe(input);
        options.timeLimit = milliseconds(1500);
        options.mayTimeOut = true;
        const auto result = box.run(options);
        EXPECT_TRUE(result.timedOut) << "ended although nobody answered\n" << result;
        EXPECT_FALSE(changedSomething(result));
        std::size_t questions = 0;
        for (std::size_t at = 0; (at = result.out.find(kQuestion, at)) != std::string::npos; ++at)
            ++questions;
        EXPECT_THAT(questions, testing::AllOf(testing::Ge(3U), testing::Le(16U)));
        EXPECT_EQ(repeated(kQuestion, static_cast<unsigned>(questions)), result.out);
    }
}

} // namespace
} // namespace zebtest
