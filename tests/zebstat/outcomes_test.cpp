// Exit statuses and messages: what each command ends with, wrong input, and output that cannot be written.
#include "tests/zebstat/zebstat_run.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace zebtest {
namespace {

class Outcomes : public SandboxTest {};

/// One line on standard error, nothing on standard output, status 3.
void expectUntold(const RunResult& result, const std::string& words) {
    EXPECT_EQ(result.exitStatus, 3) << result;
    EXPECT_EQ(result.out, "");
    EXPECT_TRUE(result.err.starts_with("zebstat: ")) << result.err;
    EXPECT_EQ(std::ranges::count(result.err, '\n'), 1) << result.err;
    EXPECT_THAT(result.err, testing::HasSubstr(words));
}

TEST_F(Outcomes, WrongInputIsNamedWithItsMend) {
    const std::pair<const char*, const char*> cases[] = {
        {"", "a command is missing; give json"},
        {"jsn", "'jsn' is no command; give json"},
        {"json --bad", "--bad; see zebstat --help"},
        {"json extra", "extra; see zebstat --help"},
        {"json check", "check; see zebstat --help"},
        {"-a 4 json", "-a: '4' is no list of controllers; give numbers from 0 to 3"},
        {"-a 0,0 json", "-a: '0,0' is no list"},
        {"-a 0, json", "-a: '0,' is no list"},
        {"-a one json", "-a: 'one' is no list"},
        {"-a 0 -a 1 json", "-a:"},
        {"-a 2 json", "controller 2 does not exist; the highest number is 1"},
        {"--timeout 0 json", "--timeout: '0' is no time; give seconds from 0.1"},
        {"--timeout 1e3 json", "--timeout: '1e3' is no time"},
        {"--timeout nan json", "--timeout: 'nan' is no time"},
        {"wait --max -1", "--max: '-1' is no time"},
        {"wait --interval 90000", "--interval: '90000' is no time"},
        {"wait --for rebuilding", "--for: 'rebuilding' is no background work; give rebuild"},
        {"wait --for rebuild,", "--for: '' is no background work"},
        {"wait --for-logical-drive LD0", "--for-logical-drive: 'LD0' names no LD; give its number"},
        {"wait --for-logical-drive 4:0", "--for-logical-drive: '4:0' names no LD"},
        {"wait --for-logical-drive 255", "--for-logical-drive: '255' names no LD"},
        {"wait --for-logical-drive 9", "LD9 does not exist on any chosen controller"},
        {"wait --for-logical-drive 1:4", "LD4 does not exist on controller 1"},
        {"-a 0 wait --for-logical-drive 1:0", "LD0 does not exist on controller 1"},
        {"watch --once --until-done", "--until-done; see zebstat --help"},
        {"watch --interval 0", "--interval: '0' is no time"},
        {"metrics --output", "--output:"},
        {"metrics --output /nowhere/file", "/nowhere/file cannot be written: No such file or directory"},
        {"metrics --output /dev/null", "/dev/null is no regular file"},
        {"metrics --output /", "'/' names no file"},
        {"html --output /nowhere/page.html", "/nowhere/page.html cannot be written: No such file or directory"},
        {"html --pretty", "--pretty; see zebstat --help"},
        {"schema --pretty", "--pretty; see zebstat --help"}};
    for (const auto& [line, words] : cases) {
        SCOPED_TRACE(line);
        expectUntold(box.run(zebstatRun(line)), words);
    }
}

TEST_F(Outcomes, WrongInputOfCheckStandsInItsLineToo) {
    const std::pair<const char*, const char*> cases[] = {
        {"check --warn-temperature 70",
         "--warn-temperature 70: lies above --critical-temperature 65; give a lower one"},
        {"check --critical-temperature 40", "--warn-temperature 55: lies above --critical-temperature 40"},
        {"check --warn-temperature 5.5", "'5.5' is no temperature; give whole degrees"},
        {"check --critical-temperature 255", "'255' is no temperature"},
        {"check --no-spare-is bad", "'bad' is unknown; give warning or critical"}};
    for (const auto& [line, words] : cases) {
        const RunResult result = box.run(zebstatRun(line));
        EXPECT_EQ(result.exitStatus, 3) << result;
        EXPECT_TRUE(result.out.starts_with("ZEB UNKNOWN - ")) << result.out;
        EXPECT_THAT(result.err, testing::HasSubstr(words));
    }
}

TEST_F(Outcomes, WithoutLibraryControllerOrRightNothingIsTold) {
    RunOptions noLibrary = zebstatRun("json");
    noLibrary.libraryDir = box.noLibrary();
    expectUntold(box.run(noLibrary), "libstorelib.so cannot be used: Initialization failed (0x8002)");
    RunOptions noRight = zebstatRun("metrics");
    noRight.uid = 65534;
    expectUntold(box.run(noRight), "run it as root");
    noRight.args = {"check"};
    EXPECT_EQ(box.run(noRight).out, "ZEB UNKNOWN - only root can ask the controllers; run it as root\n");
    expectUntold(box.run(zebstatRun("json", "controllers_none")), "no RAID controller is found");
    expectUntold(box.run(zebstatRun("wait", "controllers_five")), "at most 4 are served");
    for (const char* line : {"schema", "--help", "json --help", "--version"}) {
        RunOptions anybody = zebstatRun(line);
        anybody.uid = 65534;
        anybody.libraryDir = box.noLibrary();
        const RunResult result = box.run(anybody);
        EXPECT_EQ(result.exitStatus, 0) << result;
        EXPECT_NE(result.out, "");
    }
}

TEST_F(Outcomes, LostOutputIsNoticed) {
    for (const char* line : {"json", "metrics", "check", "html", "watch --once", "schema", "--help", "--version"})
        for (const Output output : {Output::kFull, Output::kBrokenPipe, Output::kClosed}) {
            SCOPED_TRACE(line);
            RunOptions options = zebstatRun(line);
            options.output = output;
            const RunResult result = box.run(options);
            EXPECT_EQ(result.exitStatus, 3) << result;
            EXPECT_TRUE(result.err.starts_with("zebstat: standard output cannot be written: ")) << result.err;
        }
}

TEST_F(Outcomes, ALibraryThatDoesNotAnswerEndsTheRun) {
    for (const char* line :
         {"--timeout 0.3 json", "--timeout 0.3 check", "--timeout 0.3 wait", "--timeout 0.3 watch"}) {
        RunOptions options = zebstatRun(line);
        options.env["ZEBSIM_LATENCY_US"] = "30000000";
        const RunResult result = box.run(options);
        EXPECT_EQ(result.exitStatus, 3) << result;
        const std::string words = "the library did not answer within 0.3 s";
        EXPECT_THAT(std::string(line).ends_with("check") ? result.out : result.err, testing::HasSubstr(words));
        EXPECT_LT(result.wallTime, std::chrono::seconds(5));
    }
}

TEST_F(Outcomes, StatusesTellTheWorst) {
    const struct {
        const char* line;
        const char* scenario;
        const char* faults;
        int status;
    } cases[] = {{"json", "controllers_one", "[]", 1},
                 {"json", "built_in", "[]", 2},
                 {"json", "drive_foreign", R"([{"type":1,"cmd":11,"status":"0x32"}])", 4},
                 {"json", "built_in", R"([{"type":1,"cmd":11,"status":"0x32"}])", 2},
                 {"check", "drive_foreign", R"([{"type":1,"cmd":11,"status":"0x32"}])", 1},
                 {"check", "built_in", "[]", 2},
                 {"-a 1 check", "built_in", "[]", 2},
                 {"-a 0 watch --once", "built_in", "[]", 2},
                 {"html", "built_in", "[]", 2},
                 {"html", "drive_foreign", R"([{"type":1,"cmd":11,"status":"0x32"}])", 4},
                 {"metrics", "built_in", "[]", 2}};
    for (const auto& c : cases) {
        RunOptions options = zebstatRun(c.line, c.scenario);
        options.env["ZEBSIM_FAULTS"] = c.faults;
        const RunResult result = box.run(options);
        if (std::string(c.scenario) == "controllers_one") // a sound one, or nearly: what its document says
            EXPECT_EQ(result.exitStatus, Json::parse(result.out)["health"] == "ok" ? 0 : 1) << result;
        else
            EXPECT_EQ(result.exitStatus, c.status) << c.line << c.scenario << result;
    }
}

/// A controller with one optimal mirror, and whatever else is given.
Json sound(const Json& more = Json::object()) {
    Json controller{{"images", Json::array({Json{{"name", "APP"}}})},
                    {"drives", Json::array({Json{{"repeat", 2}}})},
                    {"arrays", Json::array({Json{{"drives", {0, 1}}}})},
                    {"lds", Json::array({Json{{"level", 1}, {"spans", Json::array({Json::object()})}}})}};
    controller.update(more);
    return {{"controllers", Json::array({controller})}};
}

TEST_F(Outcomes, CheckSaysOneLine) {
    const std::string perf = R"( \| critical=0 warning=0 temperature=28;55;65 duration=[0-9]+\.[0-9]{3}s
$)";
    const RunResult ok = box.run(zebstatRunOn(box, sound(), "check"));
    EXPECT_EQ(ok.exitStatus, 0) << ok;
    EXPECT_THAT(ok.out,
                testing::MatchesRegex("ZEB OK - 1 controller, 2 physical drives, 1 logical drive \\| critical=0 "
                                      "warning=0 temperature=28;55;65 duration=[0-9]+\\.[0-9]+s\n"));
    const struct {
        Json more;
        const char* line;
        int status;
        const char* words;
    } cases[] = {
        {{},
         "check --no-spare-is warning",
         1,
         "ZEB WARNING - controller 0: no hot spare fits RG0 | critical=0 warning=1 "},
        {{}, "check --no-spare-is critical", 2, "ZEB CRITICAL - controller 0: no hot spare fits RG0 | critical=1 "},
        {{{"drives", Json::array({Json{{"repeat", 3}}})}, {"spares", Json::array({Json{{"drive", 2}}})}},
         "check --no-spare-is warning",
         0,
         "ZEB OK - "},
        {{{"drives", Json::array({Json{{"repeat", 2}}, Json{{"media", "SSD"}}})},
          {"spares", Json::array({Json{{"drive", 2}}})}},
         "check --no-spare-is warning",
         1,
         "no hot spare fits RG0"},
        {{{"drives", Json::array({Json{{"repeat", 2}}, Json{{"blocks", 584843263}}})},
          {"spares", Json::array({Json{{"drive", 2}}})}},
         "check --no-spare-is warning",
         1,
         "no hot spare fits RG0"},
        {{{"drives", Json::array({Json{{"temperature", 55}}, Json::object()})}}, "check", 0, "temperature=55;55;65 "},
        {{{"drives", Json::array({Json{{"temperature", 56}}, Json::object()})}},
         "check",
         1,
         "ZEB WARNING - controller 0: PD0 is 56 C hot, above 55 C | "},
        {{{"drives", Json::array({Json{{"temperature", 65}}, Json::object()})}},
         "check",
         1,
         "ZEB WARNING - controller 0: PD0 is 65 C hot, above 55 C | "},
        {{{"drives", Json::array({Json{{"temperature", 66}}, Json::object()})}},
         "check",
         2,
         "ZEB CRITICAL - controller 0: PD0 is 66 C hot, above 65 C | critical=1 warning=0 temperature=66;55;65 "},
        {{{"drives", Json::array({Json{{"temperature", 41}}, Json::object()})}},
         "check --warn-temperature 40 --critical-temperature 40",
         2,
         "temperature=41;40;40 "},
        {{{"drives", Json::array({Json{{"state", "failed"}, {"mediaErrors", 1}}, Json::object()})}},
         "check",
         2,
         "PD0 of RG0 had 1 media error | critical=2 warning=1 "},
        // A group for caching needs no spare.
        {{{"drives", Json::array({Json{{"repeat", 3}}, Json{{"repeat", 2}, {"media", "SSD"}}})},
          {"spares", Json::array({Json{{"drive", 2}}})},
          {"arrays", Json::array({Json{{"drives", {0, 1}}}, Json{{"drives", {3, 4}}}})},
          {"lds",
           Json::array({Json{{"level", 1}, {"spans", Json::array({Json::object()})}},
                        Json{{"level", 1}, {"cacheCade", true}, {"spans", Json::array({Json{{"array", 1}}})}}})}},
         "check --no-spare-is warning",
         0,
         "ZEB OK - "},
        {{{"drives", Json::array({Json{{"repeat", 2}, {"temperature", nullptr}}})}}, "check", 0, "warning=0 duration="},
        {{{"drives", Json::array({Json{{"state", "failed"}, {"mediaErrors", 1}, {"predictiveFailures", 2}},
                                  Json{{"mediaErrors", 2}}})}},
         "check",
         2,
         "ZEB CRITICAL - controller 0: LD0 (RAID1) is degraded; controller 0: PD0 of RG0 has failed; controller 0: PD0 "
         "of "
         "RG0 predicts its failure (2 times); and 2 more | critical=2 warning=3 "},
        {{{"lds", Json::array({Json{{"level", 1},
                                    {"name", "a|b\n\x1b[2Jc"},
                                    {"state", "offline"},
                                    {"spans", Json::array({Json::object()})}}})}},
         "check",
         2,
         "ZEB CRITICAL - controller 0: LD0 'a b  [2Jc' (RAID1) is offline | "},
        // Offline counts for members only, whether or not an LD uses their array; failed counts for any drive.
        {{{"drives", Json::array({Json{{"repeat", 2}}, Json{{"state", "offline"}}})}},
         "check",
         0,
         "ZEB OK - 1 controller, 3 physical drives, 1 logical drive | critical=0 warning=0 "},
        {{{"drives", Json::array({Json{{"repeat", 2}}, Json{{"state", "failed"}}})}},
         "check",
         2,
         "ZEB CRITICAL - controller 0: PD2 has failed | critical=1 warning=0 "},
        {{{"drives", Json::array({Json{{"repeat", 2}}, Json{{"state", "offline"}}})},
          {"spares", Json::array({Json{{"drive", 2}}})}},
         "check",
         0,
         "ZEB OK - 1 controller, 3 physical drives, 1 logical drive | critical=0 warning=0 "},
        {{{"drives", Json::array({Json{{"repeat", 2}}, Json{{"state", "offline"}}, Json::object()})},
          {"arrays", Json::array({Json{{"drives", {0, 1}}}, Json{{"drives", {2, 3}}}})}},
         "check",
         2,
         "ZEB CRITICAL - controller 0: PD2 of RG1 is offline | critical=1 warning=0 "}};
    for (const auto& c : cases) {
        const RunResult result = box.run(zebstatRunOn(box, sound(c.more.is_null() ? Json::object() : c.more), c.line));
        EXPECT_EQ(result.exitStatus, c.status) << result;
        EXPECT_THAT(result.out, testing::HasSubstr(c.words));
        EXPECT_EQ(std::ranges::count(result.out, '\n'), 1);
        EXPECT_EQ(std::ranges::count(result.out, '|'), 1);
    }
}

TEST_F(Outcomes, RedactionReplacesAndKeepsTheRest) {
    for (const std::string scenario : {"built_in", "maximum_fill"}) {
        Json whole = Json::parse(box.run(zebstatRun("json", scenario)).out);
        const std::string text = box.run(zebstatRun("json --redact", scenario)).out;
        Json redacted = Json::parse(text);
        EXPECT_EQ(redacted["host"]["name"], "host-1");
        std::map<std::string, std::string> words;
        for (const Json& change : Json::diff(whole, redacted)) {
            const Json::json_pointer at(change["path"].get<std::string>());
            const std::string key = at.back();
            if (key == "time")
                continue;
            ASSERT_EQ(change["op"], "replace");
            const std::string was = whole[at];
            const std::string is = redacted[at];
            EXPECT_TRUE(key == "serial" || key == "name" || key == "logical_id" || key == "text" ||
                        change["path"].get<std::string>().find("/sas_addresses/") != std::string::npos)
                << change;
            if (key == "text")
                continue;
            EXPECT_EQ(words.emplace(was, is).first->second, is) << was;
            if (was.size() > 4) // short ones may be part of other words
                EXPECT_EQ(text.find("\"" + was + "\""), std::string::npos) << was;
        }
        EXPECT_GT(words.size(), 10U);
        for (const Json& controller : redacted["controllers"])
            EXPECT_TRUE(controller["serial"].get<std::string>().starts_with("serial-")) << controller["serial"];
        for (const Json& finding : redacted["findings"])
            EXPECT_EQ(finding["text"].get<std::string>().find("'BOOT'"), std::string::npos);
    }
}

TEST_F(Outcomes, TheFileOfMetricsIsReplacedWholeOrNotAtAll) {
    const fs::path folder = box.work() / "textfile";
    fs::create_directory(folder);
    const auto run = [&](const std::string& file, const char* faults = "[]") {
        RunOptions options = zebstatRun("metrics --output " + file);
        options.env["ZEBSIM_FAULTS"] = faults;
        return box.run(options);
    };
    writeFile(folder / "zeb.prom", "old");
    EXPECT_EQ(run("textfile/zeb.prom").exitStatus, 2);
    const std::string text = readFile(folder / "zeb.prom");
    EXPECT_TRUE(text.starts_with("# HELP zeb_info ")) << text.substr(0, 80);
    EXPECT_EQ(fs::status(folder / "zeb.prom").permissions(), fs::perms(0644));
    EXPECT_EQ(run("textfile/zeb.prom", R"([{"type":0,"cmd":0,"status":"0x8017"}])").exitStatus, 3);
    EXPECT_EQ(readFile(folder / "zeb.prom"), text);

    RunOptions small = zebstatRun("metrics --output textfile/zeb.prom");
    small.fileSizeLimit = 1000;
    expectUntold(box.run(small), "textfile/zeb.prom cannot be written: File too large");
    EXPECT_EQ(readFile(folder / "zeb.prom"), text);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder), {}), 1);

    // A link in a folder of our own is one of ours; in one that others may write it may lead anywhere.
    fs::create_directory(box.work() / "own");
    fs::create_directory_symlink(folder, box.work() / "own/link");
    EXPECT_EQ(run("own/link/zeb.prom").exitStatus, 2);
    fs::create_directory(box.work() / "shared");
    fs::permissions(box.work() / "shared", fs::perms(01777));
    fs::create_directory_symlink(folder, box.work() / "shared/link");
    expectUntold(run("shared/link/zeb.prom"), "Too many levels of symbolic links");
    writeFile(box.work() / "victim", "kept");
    fs::create_symlink(box.work() / "victim", box.work() / "shared/zeb.prom");
    EXPECT_EQ(run("shared/zeb.prom").exitStatus, 2);
    EXPECT_EQ(readFile(box.work() / "victim"), "kept");
    EXPECT_FALSE(fs::is_symlink(box.work() / "shared/zeb.prom"));
}

} // namespace
} // namespace zebtest
