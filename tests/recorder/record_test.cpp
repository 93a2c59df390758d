// Recording and replaying: nothing changes for the command, and the recording alone gives the same run again.
#include "tests/recorder/recorded.h"

#include "recorder/recording.h"
#include "storelib/records/physical_drive.h"
#include "tests/support/expected.h"
#include "tests/support/log_file.h"
#include "tests/support/paths.h"

#include <algorithm>
#include <csignal>
#include <nlohmann/json.hpp>
#include <set>
#include <sys/stat.h>

namespace fs = std::filesystem;

namespace zebtest {
namespace {

const std::vector<std::string> kReports{"ctrlinfo", "ldpdinfo", "pdinfo", "enclinfo", "cbinfo", "ldpdprog"};

ToolRun reportRun(const std::string& report) {
    return {"-" + report + (report == "ldpdprog" ? "" : " -aAll")};
}

/// The requests of a trace without their statuses' order changing: pointers are no part of it, so it is compared whole.
std::string requestsOf(const RunResult& result) {
    return result.trace;
}

class RecordSweep : public RecorderTest, public testing::WithParamInterface<std::string> {
  protected:
    std::string logOfLastRun() {
        const std::string text = LogFile(box.log()).masked();
        fs::remove(box.log());
        return text;
    }
};

TEST_P(RecordSweep, AReplayedReportIsTheRecordedOne) {
    for (const std::string& report : kReports) {
        SCOPED_TRACE(report);
        const RunOptions options = tool(GetParam(), reportRun(report));
        const RunResult plain = box.run(options);
        const std::string plainLog = logOfLastRun();
        const RunResult recorded = record(options, {"--no-redact"});
        EXPECT_TRUE(sameText(recorded.out, plain.out));
        EXPECT_TRUE(sameText(requestsOf(recorded), requestsOf(plain)));
        EXPECT_TRUE(sameText(logOfLastRun(), plainLog));
        EXPECT_EQ(recorded.err, "");
        EXPECT_EQ(recorded.exitStatus, plain.exitStatus);
        const RunResult replayed = replay(options);
        EXPECT_TRUE(sameText(replayed.out, recorded.out));
        EXPECT_TRUE(sameText(requestsOf(replayed), requestsOf(recorded)));
        EXPECT_TRUE(sameText(logOfLastRun(), plainLog));
        EXPECT_EQ(replayed.err, "");
        EXPECT_EQ(replayed.exitStatus, recorded.exitStatus);
    }
}

/// Everything in a scenario's file that names a machine.
void collectOriginals(const nlohmann::json& value, bool inLds, std::set<std::string>& texts,
                      std::set<std::string>& harmless) {
    constexpr std::size_t kTelling = 5; // shorter ones are found everywhere
    for (const auto& [key, item] : value.items()) {
        const bool named = key == "serial" || (key == "name" && inLds) || key == "osDevices";
        if (named && item.is_string() && item.get<std::string>().size() >= kTelling)
            texts.insert(item.get<std::string>());
        if (key == "name" && !inLds && item.is_string())
            harmless.insert(item.get<std::string>()); // of firmware images and connectors
        if (named && item.is_array())
            for (const auto& one : item)
                if (one.is_string())
                    texts.insert(one.get<std::string>());
        if (item.is_structured())
            collectOriginals(item, key == "lds" || (inLds && value.is_array()), texts, harmless);
    }
}

/// Every byte of the file, as it stands and decoded.
std::string everythingIn(const fs::path& file) {
    std::string text = readFile(file);
    std::string reason;
    const auto recording = zebrec::readRecording(text, reason);
    EXPECT_TRUE(recording) << reason;
    const auto add = [&](const auto& bytes) { text.append(bytes.begin(), bytes.end()).append(1, '|'); };
    if (recording)
        for (const zebrec::Line& line : recording->lines) {
            add(line.header);
            for (const auto* out : {&line.out, &line.innerOut})
                if (*out)
                    add(**out);
            for (const auto* in : {&line.in, &line.innerIn})
                if (*in)
                    add((*in)->bytes);
        }
    return text;
}

TEST_P(RecordSweep, RedactionLeavesNothingThatNamesTheMachineAndElseChangesNothing) {
    const fs::path scenario = GetParam() == "built_in" ? fs::path(paths::sourceDir) / "simulator/built_in.json"
                                                       : fs::path(paths::scenarioDir) / (GetParam() + ".json");
    std::set<std::string> originals{"QV00000001", "/dev/sd", std::string("\x00\xC0\xB0\xA0\x50", 5),
                                    std::string("\xC0\xB0\xA0\x50", 4)};
    std::set<std::string> harmless;
    collectOriginals(nlohmann::json::parse(readFile(scenario)), false, originals, harmless);
    for (const std::string& name : harmless)
        originals.erase(name);
    const std::vector<Mask> identifying{{R"((Serial N\w*|[^\n]*Address[^\n:]*|OS Drive Name) *:[^\n]*)", "$1"},
                                        {R"(LD(\d+) \([^\n]*)", "LD$1"}};
    for (const std::string& report : kReports) {
        SCOPED_TRACE(report);
        const RunOptions options = tool(GetParam(), reportRun(report));
        const RunResult recorded = record(options);
        EXPECT_EQ(recorded.err, "");
        const std::string all = everythingIn(recording());
        for (const std::string& original : originals)
            EXPECT_EQ(all.find(original), std::string::npos) << visible(original);
        const RunResult replayed = replay(options);
        EXPECT_TRUE(sameText(masked(replayed.out, identifying), masked(recorded.out, identifying)));
        EXPECT_EQ(replayed.err, "");
    }
}

INSTANTIATE_TEST_SUITE_P(Scenarios, RecordSweep, testing::ValuesIn(scenarioNames()),
                         [](const auto& scenario) { return scenario.param; });

class Record : public RecorderTest {};

TEST_F(Record, ChangingCommandsAreWhatTheyAreAlone) {
    for (const ToolRun& run : kChangingRuns) {
        SCOPED_TRACE(run.args);
        const RunOptions options = tool("built_in", run);
        const RunResult plain = box.run(options);
        const RunResult recorded = record(options, {"--no-redact"});
        EXPECT_TRUE(sameText(recorded.out, plain.out));
        EXPECT_TRUE(sameText(requestsOf(recorded), requestsOf(plain)));
        const RunResult replayed = replay(options);
        EXPECT_TRUE(sameText(replayed.out, plain.out));
        EXPECT_TRUE(sameText(requestsOf(replayed), requestsOf(plain)));
        EXPECT_EQ(replayed.err, "");
        record(options);
        EXPECT_EQ(replay(options).exitStatus, plain.exitStatus);
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

TEST_F(Record, AFullFileEndsTheRecordingAndNotTheCommand) {
    RunOptions options = tool("built_in", reportRun("pdinfo"));
    options.trace = false;
    options.program = "/bin/sh";
    options.args = {"-c", "ulimit -f 40; exec " + std::string(paths::zebcli) + " -pdinfo -aAll"}; // 20 KB
    const RunResult plain = box.run(options);
    const RunResult result = record(options);
    EXPECT_TRUE(sameText(result.out, plain.out));
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_EQ(result.err, "zebcli-record: the recording " + recording().string() + " ends early: File too large\n");
    EXPECT_LE(fs::file_size(recording()), 20480U);
    std::string reason;
    const auto read = zebrec::readRecordingFile(recording(), reason);
    ASSERT_TRUE(read) << reason;
    EXPECT_GT(read->lines.size(), 3U);
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
    RunOptions large = tool("built_in", reportRun("pdinfo"));
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
    const auto statusOf = [&](const std::string& script) {
        fs::remove(recording());
        RunOptions options = tool("built_in", {""});
        options.program = "/bin/sh";
        options.args = {"-c", script};
        return record(options).exitStatus;
    };
    EXPECT_EQ(statusOf("exit 42"), 42);
    EXPECT_EQ(statusOf("kill -TERM $$"), 128 + SIGTERM);
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

class RoughLibrary : public RecorderTest {
  protected:
    RunResult run(const std::string& manner) {
        RunOptions options = tool("built_in", reportRun("pdinfo"));
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
        return line.header[zebrec::kTypeAt] == 1 && line.header[zebrec::kCommandAt] == 4;
    });
    ASSERT_NE(list, recorded.lines.end());
    ASSERT_TRUE(list->in);
    EXPECT_EQ(list->in->bytes, zebrec::Bytes(sizeof(_MR_PD_LIST), 0xFF));
}

} // namespace
} // namespace zebtest
