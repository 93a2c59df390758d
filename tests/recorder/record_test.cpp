// Recording and replaying: nothing changes for the command, and the recording alone gives the same run again.
#include "tests/recorder/originals.h"
#include "tests/recorder/recorded.h"

#include "recorder/recording.h"
#include "tests/support/expected.h"
#include "tests/support/log_file.h"
#include "tests/support/paths.h"

#include <algorithm>
#include <csignal>
#include <sys/stat.h>

namespace fs = std::filesystem;

namespace zebtest {
namespace {

class RecordSweep : public RecorderTest, public testing::WithParamInterface<std::string> {
  protected:
    void SetUp() override {
        RecorderTest::SetUp();
        useRelease();
    }
    std::string logOfLastRun() {
        const std::string text = LogFile(box.log()).masked();
        fs::remove(box.log());
        return text;
    }
};

TEST_P(RecordSweep, AReplayedReportIsTheRecordedOne) {
    const RunOptions options = everyReport(GetParam());
    const RunResult plain = box.run(options);
    const std::string plainLog = logOfLastRun();
    const RunResult recorded = record(options, {"--no-redact"});
    EXPECT_TRUE(sameText(recorded.out, plain.out));
    EXPECT_TRUE(sameText(recorded.trace, plain.trace));
    EXPECT_TRUE(sameText(logOfLastRun(), plainLog));
    EXPECT_EQ(recorded.err, plain.err);
    EXPECT_EQ(recorded.exitStatus, plain.exitStatus);
    const RunResult replayed = replay(options);
    EXPECT_TRUE(sameText(replayed.out, recorded.out));
    EXPECT_TRUE(sameText(replayed.trace, recorded.trace));
    EXPECT_TRUE(sameText(logOfLastRun(), plainLog));
    EXPECT_EQ(replayed.err, recorded.err);
    EXPECT_EQ(replayed.exitStatus, recorded.exitStatus);
}

TEST_P(RecordSweep, RedactionLeavesNothingThatNamesTheMachineAndElseChangesNothing) {
    const Originals originals = originalsOf(readFile(scenarioFile(GetParam())));
    const std::vector<Mask> identifying{
        {R"((Serial N\w*|[^\n]*Address[^\n:]*|OS Drive Name) *:[^\n]*)", "$1"},
        {R"(LD(\d+) [('][^\n]*)", "LD$1"},
        {R"---("(serial|serial_number|os_device|name|logical_id|[a-z_]*address|device|path)": "[^"]*")---", "$1"},
        {R"---("(0x)?[0-9A-Fa-f]{16}"|"[A-Z2-7]{16}"|"/dev/[a-z]+")---", "ADDRESS"},
        {R"---("serial_number": \d+)---", "$1"}};
    const RunOptions options = everyReport(GetParam());
    const RunResult recorded = record(options);
    EXPECT_EQ(originals.in(everythingIn(recording())), "");
    const RunResult replayed = replay(options);
    EXPECT_EQ(originals.in(replayed.out), "");
    EXPECT_TRUE(sameText(masked(replayed.out, identifying), masked(recorded.out, identifying)));
    EXPECT_EQ(replayed.err, recorded.err);
}

INSTANTIATE_TEST_SUITE_P(Scenarios, RecordSweep, testing::ValuesIn(scenarioNames()),
                         [](const auto& scenario) { return scenario.param; });

class Record : public RecorderTest {};

TEST_F(Record, FactsForProgramsAreWhatTheyAreAlone) {
    const std::vector<Mask> times{{R"(\d{4}-\d\d-\d\d[T ]\d\d:\d\d:\d\d(Z| UTC)?)", "TIME"},
                                  {R"((duration=|duration_seconds |time_seconds )[0-9.e+-]+)", "$1"}};
    for (const std::string scenario : {"built_in", "background_work", "drive_failed"})
        for (const char* args : {"check", "metrics", "html", "wait --max 0"}) {
            SCOPED_TRACE(args + (" on " + scenario));
            const RunOptions options = facts(scenario, args);
            const RunResult plain = box.run(options);
            EXPECT_FALSE(plain.trace.empty());
            const RunResult recorded = record(options, {"--no-redact"});
            for (const RunResult& result : {recorded, replay(options)}) {
                EXPECT_TRUE(sameText(masked(result.out, times), masked(plain.out, times)));
                EXPECT_TRUE(sameText(result.trace, plain.trace));
                EXPECT_EQ(result.err, plain.err);
                EXPECT_EQ(result.exitStatus, plain.exitStatus);
            }
        }
}

TEST_F(Record, TheFileIsNewAndPrivateAndNoLink) {
    const RunOptions options = tool("built_in", {"-v"});
    EXPECT_EQ(record(options).exitStatus, 0);
    struct stat status {};
    ASSERT_EQ(::stat(recording().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0600U);
    EXPECT_NE(readFile(recording()).find("\"library\":\"1.0 4.02-00\""), std::string::npos);

    const auto refused = [&](const char* why) {
        const RunResult result = box.run(under("zebcli-record", {recording()}, options));
        EXPECT_EQ(result.exitStatus, 3);
        EXPECT_EQ(result.err, "zebcli-record: " + recording().string() + " cannot be made: " + why + "\n");
        EXPECT_EQ(result.out, "");
    };
    const std::string before = readFile(recording());
    refused("File exists");
    EXPECT_EQ(readFile(recording()), before);
    fs::remove(recording());
    fs::create_symlink(box.root() / "elsewhere", recording());
    refused("File exists");
    EXPECT_FALSE(fs::exists(box.root() / "elsewhere"));
}

TEST_F(Record, EveryReportOfALargeServerStaysSmall) {
    fs::create_symlink(paths::zebcli, box.bin() / "zebcli");
    RunOptions options = tool("built_in", {""});
    options.trace = false;
    options.program = fs::path(paths::recorderDir) / "sbin/zebcli-record";
    options.args = {recording(), "--reports"};
    const RunResult result = box.run(options);
    EXPECT_EQ(result.exitStatus, 0) << result;
    for (const char* part : {"Product Version", "### General Information ###", "SAS Address 0", "RG No."})
        EXPECT_NE(result.out.find(part), std::string::npos) << part;

    std::string controllers;
    for (int ctrl = 0; ctrl < 4; ++ctrl)
        controllers += std::string(ctrl == 0 ? "" : ",") + R"({"id":)" + std::to_string(ctrl + 1) +
                       R"(,"enclosures":[{"slots":240}],"drives":[{"repeat":240}]})";
    RunOptions large = tool("built_in", {"-pdinfo -aAll"});
    large.env["ZEBSIM_SCENARIO"] = box.root() / "large.json";
    writeFile(box.root() / "large.json", "{\"controllers\":[" + controllers + "]}");
    large.trace = false;
    large.timeLimit = std::chrono::minutes(2);
    EXPECT_EQ(record(large).exitStatus, 0);
    std::string reason;
    const auto read = zebrec::readRecordingFile(recording(), reason);
    ASSERT_TRUE(read) << reason;
    EXPECT_GT(read->lines.size(), 4U * 240);
    EXPECT_LT(fs::file_size(recording()), 5'000'000U);
}

TEST_F(Record, EndsWithTheStatusOfTheCommand) {
    useRelease();
    const auto statusOf = [&](const std::string& script) {
        fs::remove(recording());
        RunOptions options = tool("built_in", {""});
        options.program = "/bin/sh";
        options.args = {"-c", script};
        return record(options).exitStatus;
    };
    EXPECT_EQ(statusOf("exit 42"), 42);
    EXPECT_EQ(statusOf("kill -TERM $$"), 128 + SIGTERM);
    // What the command sends to its whole group comes to it but once.
    EXPECT_EQ(statusOf("n=0; trap 'n=$((n+1))' USR1; for i in 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19 20; do "
                       "kill -USR1 0; sleep 0.01; done; exit $n"),
              20);

    // A caller that does not want to know how its children end.
    RunOptions options = tool("built_in", {""});
    options.program = "/bin/sh";
    options.args = {"-c", "exit 42"};
    fs::remove(recording());
    options = under("zebcli-record", {recording()}, options);
    options.args.insert(options.args.begin(), {"-c", "trap '' CHLD; exec \"$0\" \"$@\"", options.program});
    options.program = "/bin/sh";
    const RunResult result = box.run(options);
    EXPECT_EQ(result.exitStatus, 42) << result;
}

TEST_F(Record, NothingIsRunWithoutTheLibraryThatStandsBetween) {
    for (const std::string program : {"zebcli-record", "zebcli-preview"}) {
        const fs::path copy = box.root() / "sbin" / program; // and nothing else of the package
        fs::create_directories(copy.parent_path());
        fs::copy_file(fs::path(paths::recorderDir) / "sbin" / program, copy);
        RunOptions options = under(program, {}, tool("built_in", {"-v"}));
        options.program = copy;
        if (program == "zebcli-record")
            options.args.insert(options.args.begin(), recording());
        const RunResult result = box.run(options);
        EXPECT_EQ(result.exitStatus, 3);
        EXPECT_EQ(result.err, program + ": " + (box.root() / "lib/zebcli/recorder/libstorelib.so").string() +
                                  " is not there; install the package zebcli-recorder anew\n");
        EXPECT_EQ(result.trace, "");
        EXPECT_FALSE(fs::exists(recording()));
    }
}

TEST_F(Record, WhatCannotBeStartedIsOneLineAndLeavesNothing) {
    struct Case {
        std::vector<std::string> args;
        std::string message;
    };
    const std::string mend = "; name the controller maker's library with --library PATH\n";
    const std::string own = fs::path(paths::recorderDir) / "lib/zebcli/recorder/libstorelib.so";
    const std::string noEntry = fs::path(paths::libNoEntryDir) / "libstorelib.so";
    const Case cases[] = {
        {{"--", "/no/such"}, "/no/such cannot be started: No such file or directory\n"},
        {{"--library", "/etc/passwd", "--", "true"}, "/etc/passwd cannot be loaded (/etc/passwd: "},
        {{"--library", "/no/lib", "--", "true"}, "/no/lib cannot be loaded (/no/lib: "},
        {{"--library", noEntry, "--", "true"},
         noEntry + " cannot be loaded (it has no entry point ProcessLibCommand)" + mend},
        {{"--library", own, "--", "true"}, own + " is the recorder's own library" + mend},
        {{"--colour", "--", "true"}, "unknown option --colour\n"},
        {{}, "usage: "},
    };
    for (const Case& one : cases) {
        RunOptions options;
        options.program = fs::path(paths::recorderDir) / "sbin/zebcli-record";
        options.args = one.args;
        options.args.insert(options.args.begin(), recording());
        const RunResult result = box.run(options);
        EXPECT_EQ(result.exitStatus, 3) << result;
        EXPECT_EQ(result.err.rfind("zebcli-record: " + one.message, 0), 0U) << result.err;
        EXPECT_EQ(std::ranges::count(result.err, '\n'), 1) << result.err;
        EXPECT_FALSE(fs::exists(recording()));
    }
}

} // namespace
} // namespace zebtest
