// The command log as runs leave it, and output that does not reach its place.
#include <csignal>
#include <filesystem>
#include <set>
#include <sys/stat.h>
#include <thread>

#include <gmock/gmock.h>

#include "tests/support/expected.h"
#include "tests/support/log_file.h"
#include "tests/support/operation_test.h"
#include "tests/support/paths.h"

namespace fs = std::filesystem;

namespace zebtest {
namespace {

using testing::HasSubstr;

constexpr std::size_t kLineBudget = 10000;
constexpr char kRefusal[] = "Error - Invalid input at or near token x.";

class CommandLog : public OperationTest {
  protected:
    const LogFile log{box.log()};

    /// A run that leaves two records: its command line and a refusal.
    void shortRun() {
        const auto result = box.run({"x"});
        EXPECT_EQ(std::string(kRefusal) + "\n", result.out);
        EXPECT_EQ(255, result.exitStatus);
    }
};

std::string oldLines(std::size_t count) {
    return repeated(logLine("[2020/01/01 00:00:00.000] pid=00001 old"), static_cast<unsigned>(count));
}

/// What a run says at its end about records that it could not write.
std::string lost(unsigned records, const std::string& reason) {
    return "zebcli: records of the command log that could not be written: " + number(records) + " (" + reason + ")\n";
}

TEST_F(CommandLog, ARunAtAQuestionKeepsNobodyWaiting) {
    RunOptions asked;
    asked.args = words("-ctrlautorbld -dsbl -a0");
    asked.input = Input::kTerminal;
    asked.timeLimit = std::chrono::seconds(4);
    asked.mayTimeOut = true;
    std::thread first([&] { EXPECT_TRUE(box.run(asked).timedOut); });
    for (int i = 0; i < 200 && log.bytes().find(" ComChk ") == std::string::npos; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_THAT(log.bytes(), HasSubstr(" ComChk "));
    EXPECT_LT(box.run({"x"}).wallTime, std::chrono::milliseconds(1500));
    EXPECT_THAT(log.bytes(), HasSubstr(kRefusal));
    first.join();
}

TEST_F(CommandLog, RecordsHaveTheirForm) {
    shortRun();
    EXPECT_TRUE(log.everyLineExact());
    EXPECT_TRUE(sameText(log.masked(), "[TIME] pid=PID zebcli x\n"
                                       "[TIME] pid=PID zebcli_main(LINE) " +
                                           std::string(kRefusal) + "\n"));
    const std::string line = log.bytes().substr(0, kLogLineBytes);
    EXPECT_THAT(line, testing::MatchesRegex("\\[[0-9]{4}(/[0-9]{2}){2} [0-9]{2}(:[0-9]{2}){2}\\.[0-9]{3}\\] "
                                            "pid=[0-9]{5,} zebcli x +\n"));
    EXPECT_EQ(logMarker(), log.bytes().substr(2 * kLogLineBytes));
    EXPECT_EQ(0744, static_cast<int>(fs::status(box.log()).permissions()));
}

TEST_F(CommandLog, LongAndControlCharactersFitTheLine) {
    const std::string argument = "a\tb\nc" + std::string(190, 'x');
    box.run({argument, "second"});
    EXPECT_TRUE(log.everyLineExact());
    ASSERT_EQ(3 * kLogLineBytes, log.bytes().size());
    const std::string line = log.bytes().substr(0, kLogLineBytes);
    EXPECT_THAT(line, HasSubstr(" zebcli a b cxxx"));
    EXPECT_TRUE(line.ends_with("xxx\n")) << "cut at 199 characters";
}

struct Continuation {
    const char* name;
    std::string before;
    std::vector<std::size_t> records; ///< the 1-based lines on which the two new records stand
    std::size_t marker;
    std::size_t lines;
};

TEST_F(CommandLog, EachRunGoesOnWhereTheMarkerStands) {
    const Continuation cases[] = {
        {"empty", "", {1, 2}, 3, 3},
        {"behind the newest line", oldLines(4) + logMarker(), {5, 6}, 7, 7},
        {"between newest and oldest line", oldLines(4) + logMarker() + oldLines(5), {5, 6}, 7, 10},
        {"before the last line", oldLines(kLineBudget - 3) + logMarker() + oldLines(2), {9998, 9999}, 10000, 10000},
        {"round the end", oldLines(kLineBudget - 2) + logMarker() + oldLines(1), {9999, 10000}, 1, 10000},
        {"on the last line", oldLines(kLineBudget - 1) + logMarker(), {10000, 1}, 2, 10000},
        {"without a marker", oldLines(7), {1, 2}, 3, 7},
        {"the marker behind the budget", oldLines(kLineBudget) + logMarker(), {1, 2}, 3, 10001},
        {"two markers", oldLines(2) + logMarker() + oldLines(5) + logMarker(), {3, 4}, 5, 9}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        log.write(c.before);
        shortRun();
        EXPECT_TRUE(log.everyLineExact());
        const std::string after = log.bytes();
        EXPECT_EQ(c.lines * kLogLineBytes, after.size());
        const auto line = [&after](std::size_t number) {
            return after.substr((number - 1) * kLogLineBytes, kLogLineBytes);
        };
        EXPECT_THAT(line(c.records[0]), HasSubstr(" zebcli x "));
        EXPECT_THAT(line(c.records[1]), HasSubstr(kRefusal));
        EXPECT_EQ(c.marker, log.markers().front());
        const std::set<std::size_t> touched{c.records[0], c.records[1], c.marker};
        for (std::size_t number = 1; number * kLogLineBytes <= c.before.size(); ++number) {
            if (touched.contains(number))
                continue;
            ASSERT_EQ(c.before.substr((number - 1) * kLogLineBytes, kLogLineBytes), line(number)) << number;
        }
    }
}

/// The lines of a log, each once, without what differs from run to run.
std::set<std::string> distinctLines(const std::string& bytes) {
    const std::string text = masked(bytes, {{R"(\[[^\]]{23}\] pid=\d+)", "TIME"}, {" *\n", "\n"}});
    std::set<std::string> lines;
    for (std::size_t start = 0; start < text.size(); start = text.find('\n', start) + 1)
        lines.insert(text.substr(start, text.find('\n', start) - start));
    return lines;
}

TEST_F(CommandLog, FiftyRunsAtOnceMixNoLines) {
    // Each of nine drives leaves four records, one of them with a dump; the command itself leaves four more.
    RunOptions options;
    options.args = words("-pdlocate -start -pd[:0,:1,:2,:3,:4,:5,:6,:7,:8] -a0");
    options.env["ZEBSIM_FAULTS"] = R"([{"type":2,"cmd":8,"from":1,"status":4}])";
    options.timeLimit = std::chrono::seconds(60);
    box.run(options);
    EXPECT_EQ(40U, log.records().size());
    std::set<std::string> known = distinctLines(log.bytes());
    known.insert("TIME old");
    log.write(oldLines(10) + logMarker());
    std::vector<std::thread> runs;
    for (int i = 0; i < 50; ++i)
        runs.emplace_back([&] { EXPECT_EQ(0, box.run(options).exitStatus); });
    for (auto& run : runs)
        run.join();
    EXPECT_TRUE(log.everyLineExact());
    EXPECT_TRUE(log.bytes().starts_with(oldLines(10)));
    // A run goes on where it once began, so runs overwrite each other's records; the last one written stays.
    const std::set<std::string> left = distinctLines(log.bytes());
    EXPECT_THAT(left, testing::IsSubsetOf(known)) << "a line that no run writes";
    EXPECT_THAT(left, testing::Contains(HasSubstr("Physical Drive) 8 location LED.")));
    shortRun();
    EXPECT_TRUE(log.everyLineExact());
    EXPECT_THAT(log.bytes(), HasSubstr(kRefusal));
}

TEST_F(CommandLog, ARunWaitsForTheLockButNotForEver) {
    const std::string before = oldLines(1) + logMarker();
    log.write(before);
    {
        const Fd lock = log.holdLock();
        const auto result = box.run({"x"});
        EXPECT_EQ(std::string(kRefusal) + "\n", result.out);
        EXPECT_EQ(255, result.exitStatus);
        EXPECT_GT(result.wallTime, std::chrono::seconds(9));
        EXPECT_EQ(lost(2, "flock: Resource temporarily unavailable"), result.err);
        EXPECT_EQ(before, log.bytes());
    }
    shortRun();
    EXPECT_THAT(log.bytes(), HasSubstr(kRefusal));
}

/// A preloaded pwrite does not go together with the sanitizers, so the release build is what is killed.
TEST_F(CommandLog, ARunKilledAtAnyByteLosesOnlyItsRecordUnderWay) {
    if (*paths::releaseZebcli == '\0')
        GTEST_SKIP() << "no release build was named (ZEB_RELEASE_BUILD)";
    constexpr std::size_t kRecordBytes = 2 * kLogLineBytes; // the line and the marker
    const std::string newest = logLine("[2020/01/01 00:00:00.000] pid=00001 newest");
    const std::string oldest = logLine("[2020/01/01 00:00:00.000] pid=00001 oldest");
    const struct {
        const char* name;
        std::size_t records; ///< during how many the run is killed
        std::string before;
        std::string behind; ///< out of reach of four records
    } cases[] = {{"at the end of the file", 2, oldLines(2) + newest, ""},
                 {"between newest and oldest line", 2, oldLines(2) + newest, oldLines(5) + oldest},
                 {"on the last line", 1, oldest + oldLines(kLineBudget - 3) + newest, ""}};
    RunOptions killed;
    killed.args = {"y"};
    killed.program = paths::releaseZebcli;
    killed.libraryDir = paths::releaseLibraryDir;
    RunOptions next = killed;
    next.args = {"x"};
    killed.env = {{"LD_PRELOAD", paths::failingCalls}, {"ZEB_FAIL_CALL", "killed"}, {"ZEB_FAIL_MARK", "killed"}};
    for (const auto& c : cases) {
        for (std::size_t at = 1; at <= c.records * kRecordBytes; ++at) {
            SCOPED_TRACE(c.name + std::string(", killed behind byte ") + std::to_string(at));
            log.write(c.before + logMarker() + c.behind);
            killed.env["ZEB_FAIL_AT"] = std::to_string(at);
            ASSERT_EQ(SIGKILL, box.run(killed).signal);
            EXPECT_EQ(255, box.run(next).exitStatus);
            ASSERT_TRUE(log.everyLineExact());
            const std::string after = log.bytes();
            const auto holds = [&after](const std::string& text) { return after.find(text) != std::string::npos; };
            ASSERT_TRUE(holds(newest));
            ASSERT_TRUE(c.behind.empty() || holds(oldest));
            ASSERT_TRUE(holds(" zebcli x ") && holds(kRefusal));
            ASSERT_TRUE(at < kRecordBytes || holds(" zebcli y "));
        }
    }
}

TEST_F(CommandLog, WithoutItsFolderItLiesInTheWorkingDirectory) {
    fs::remove(box.logFolder());
    shortRun();
    EXPECT_THAT(LogFile(box.work() / "zebcli.log").messages(), testing::ElementsAre("zebcli x", kRefusal));
    EXPECT_FALSE(fs::exists(box.logFolder()));
    fs::remove(box.work() / "zebcli.log");
    writeFile(box.opt() / "secret", "secret");
    fs::create_symlink("/opt/secret", box.work() / "zebcli.log");
    shortRun();
    EXPECT_EQ("secret", readFile(box.opt() / "secret")) << "a link in a folder that may be anybody's";
    fs::remove(box.work() / "zebcli.log");
    writeFile(box.logFolder(), "no folder");
    shortRun();
    EXPECT_TRUE(fs::exists(box.work() / "zebcli.log"));
    EXPECT_EQ("no folder", readFile(box.logFolder()));
}

TEST_F(CommandLog, ALogThatCannotBeWrittenStopsNothing) {
    fs::create_directory(box.log());
    shortRun();
    fs::remove(box.log());
    fs::create_symlink("zebcli.log", box.log());
    shortRun();
    fs::remove(box.log());
    fs::create_symlink("/opt/device", box.log());
    ASSERT_EQ(0, mkfifo((box.opt() / "device").c_str(), 0600));
    shortRun();
    EXPECT_EQ(fs::perms(0600), fs::status(box.opt() / "device").permissions()) << "nothing but a file is a log";
    fs::remove(box.log());
    RunOptions options;
    options.uid = 65534;
    EXPECT_EQ("Fatal error - It is not root user.\n", box.run(options).out);
    EXPECT_TRUE(fs::is_empty(box.logFolder()));
    EXPECT_FALSE(fs::exists(box.work() / "zebcli.log"));
}

TEST_F(CommandLog, AFullDiskStopsNothing) {
    // Seven records of a line each, with the marker behind the last.
    const std::pair<std::uint64_t, unsigned> cases[] = {{0, 7},   {1, 7},   {100, 7},  {200, 7},
                                                        {399, 7}, {400, 6}, {1000, 3}, {5000, 0}};
    for (const auto& [limit, lostCount] : cases) {
        SCOPED_TRACE(limit);
        fs::remove(box.log());
        RunOptions options;
        options.args = {"-cbinfo", "-aAll"};
        options.fileSizeLimit = limit;
        const auto result = box.run(options);
        EXPECT_EQ(0, result.exitStatus) << result;
        EXPECT_THAT(result.out, HasSubstr("Cache Backup Type        : iBBU08"));
        EXPECT_LE(fs::file_size(box.log()), limit);
        EXPECT_EQ(lostCount == 0 ? "" : lost(lostCount, "pwrite: File too large"), result.err);
        EXPECT_EQ(0, box.run({"-v"}).exitStatus);
        EXPECT_FALSE(log.markers().empty());
    }
}

TEST_F(CommandLog, OutputThatDoesNotWaitLosesNothing) {
    // A pipe that holds less than the report, whose end another program left without waiting.
    RunOptions options;
    options.program = "/usr/bin/perl";
    options.args = {"-e", R"(use Fcntl; pipe(R, W); if (fork == 0) { close W; sleep 1; print while <R>; exit }
        close R; fcntl(W, F_SETFL, fcntl(W, F_GETFL, 0) | O_NONBLOCK); open(STDOUT, ">&W"); close W;
        exec $ARGV[0], "-pdinfo", "-aAll" if fork == 0; close STDOUT; wait; wait)",
                    paths::zebcli};
    options.env["ZEBSIM_SCENARIO"] = fs::path(paths::scenarioDir) / "maximum_fill.json";
    const auto result = box.run(options);
    EXPECT_TRUE(sameText(result.out, readFile(fs::path(paths::expectedDir) / "maximum_fill/pdinfo.txt")));
}

TEST_F(CommandLog, LostOutputIsRecordedAndChangesNoStatus) {
    for (const Output output : {Output::kFull, Output::kBrokenPipe, Output::kClosed}) {
        for (const auto& [args, status] :
             {std::pair{"-v", 0}, {"-ctrlinfo -aAll", 0}, {"-ldpdprog", 0}, {"-pdinfo -aAll", 0}, {"-nonsense", 255}}) {
            SCOPED_TRACE(args + std::string(" on output ") + std::to_string(static_cast<int>(output)));
            fs::remove(box.log());
            RunOptions options;
            options.args = words(args);
            options.output = output;
            options.input = output == Output::kClosed ? Input::kClosed : Input::kNull; // the log must not become either
            const auto result = box.run(options);
            EXPECT_EQ(0, result.signal) << result;
            EXPECT_EQ(status, result.exitStatus) << result;
            EXPECT_TRUE(log.everyLineExact());
            const auto messages = log.messages();
            ASSERT_FALSE(messages.empty());
            EXPECT_TRUE(messages.back().starts_with("!ERR ")) << messages.back();
        }
    }
}

} // namespace
} // namespace zebtest
