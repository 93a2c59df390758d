// Every request failing and lying, every allocation and system call of a kind failing, one after the other: no run may
// end by a signal or hang, and what it prints must be whole. The release build is swept where one was named.
#include "tests/support/request_trace.h"
#include "tests/zebstat/zebstat_run.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <set>

namespace fs = std::filesystem;

namespace zebtest {
namespace {

class ZebstatSweep : public SandboxTest {
  protected:
    /// Runs a program of the system, which must end with success.
    void expectAccepted(const std::string& program, std::vector<std::string> args) {
        RunOptions options;
        options.program = program;
        options.args = std::move(args);
        options.argv0 = program;
        options.timeLimit = std::chrono::minutes(2);
        const RunResult result = box.run(options);
        EXPECT_EQ(result.exitStatus, 0) << result.out.substr(0, 4000) << result.err.substr(0, 4000);
    }

    /// All documents so far, judged by tools that others wrote.
    void expectValid(const std::string& documents) {
        if (!fs::exists("/usr/bin/jq") || !fs::exists("/usr/lib/python3/dist-packages/jsonschema"))
            GTEST_SKIP() << "jq and python3-jsonschema are not installed";
        const fs::path file = box.root() / "documents";
        writeFile(file, documents);
        expectAccepted("/usr/bin/python3", {std::string(paths::zebstatExpectedDir) + "/../validate.py",
                                            paths::zebstatSchema, file.string()});
        expectAccepted("/usr/bin/jq", {"empty", file.string()});
    }
};

/// No sample stands twice, and the last line is a whole one.
void expectWholeMetrics(const std::string& text) {
    std::set<std::string> samples;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        if (!line.starts_with('#'))
            EXPECT_TRUE(samples.insert(line.substr(0, line.rfind(' '))).second) << line;
    EXPECT_TRUE(text.ends_with('\n'));
}

TEST_F(ZebstatSweep, EveryDocumentIsValid) {
    std::string documents;
    for (const std::string& scenario : servedScenarios())
        for (const char* line : {"json", "json --redact"})
            documents += box.run(quickRun(line, scenario)).out;

    RunOptions clean = quickRun("json");
    clean.trace = true;
    const auto requests = parseTrace(box.run(clean).trace);
    EXPECT_GT(requests.size(), 80U);
    for (std::size_t n = 2; n < requests.size(); ++n) { // all but initialisation and exit
        SCOPED_TRACE("request " + std::to_string(n) + ": " + requests[n - 1].brief());
        const std::string nth = R"([{"nth": )" + std::to_string(n) + ", ";
        RunOptions options = quickRun("json");
        options.env["ZEBSIM_FAULTS"] = nth + R"("status": "0x04"}])";
        const RunResult failed = box.run(options);
        const Json document = Json::parse(failed.out);
        EXPECT_EQ(failed.exitStatus, 2) << failed; // as in the clean run
        EXPECT_EQ(document["complete"], false);
        ASSERT_EQ(document["errors"].size(), 1U) << document["errors"];
        EXPECT_EQ(document["errors"][0]["status"], 4);
        EXPECT_EQ(document["controllers"].size(), 2U);
        documents += failed.out;
        for (const std::string& lie :
             {R"("random": )" + std::to_string(n), std::string(R"("truncate": 7)"), std::string(R"("fill": 255)")}) {
            options.env["ZEBSIM_FAULTS"] = nth + lie + "}]";
            options.args = {"json"};
            const RunResult lied = box.run(options);
            ASSERT_TRUE(lied.exitStatus == 1 || lied.exitStatus == 2 || lied.exitStatus == 4) << lied;
            documents += lied.out;
            options.args = {"metrics"};
            expectWholeMetrics(box.run(options).out);
            options.args = {"check", "--no-spare-is", "warning"};
            const RunResult checked = box.run(options);
            EXPECT_THAT(checked.out, testing::MatchesRegex("ZEB [A-Z]+ - [^|\n]* \\| [^|\n]*\n"));
        }
    }
    expectValid(documents);
    EXPECT_EQ(box.run(quickRun("schema")).out, readFile(paths::zebstatSchema));
}

struct SweptRun {
    const char* name;
    const char* line;
    std::vector<const char*> calls; ///< those that it makes
};

const SweptRun kRuns[] = {
    {"json", "json --redact", {"malloc", "write", "thread"}},
    {"check", "check --no-spare-is warning", {"malloc", "write", "thread"}},
    {"metrics", "metrics --output ./zeb.prom", {"malloc", "open", "fstat", "write", "fchmod", "fsync", "rename"}},
    {"wait", "wait --max 0 --for-logical-drive 1:0", {"malloc", "thread"}},
    {"watch", "watch --once", {"malloc", "write", "terminal"}},
    {"wrong", "wait --for nothing", {"malloc", "write"}},
};

class ZebstatCallSweep : public ZebstatSweep, public testing::WithParamInterface<SweptRun> {
  protected:
    RunOptions failing(const char* call, int at) {
        const SweptRun& run = GetParam();
        RunOptions options = quickRun(run.line);
        options.env["LD_PRELOAD"] = paths::failingCalls;
        options.env["ZEB_FAIL_CALL"] = call;
        options.env["ZEB_FAIL_AT"] = std::to_string(at);
        options.env["ZEB_FAIL_MARK"] = mark();
        if (std::string(call) == "terminal") {
            options.input = Input::kTerminal;
            options.output = Output::kTerminal;
        }
        return options;
    }
    fs::path mark() const { return box.root() / "failed"; }

    /// What holds whatever failed: an ending of the program's own, and output that is whole or not there.
    void expectOrderly(const RunResult& result) {
        ASSERT_EQ(result.signal, 0) << result;
        ASSERT_TRUE(result.exitStatus >= 0 && result.exitStatus <= 5) << result;
        const std::string name = GetParam().name;
        if (name == "check")
            EXPECT_TRUE(result.out.empty() || std::ranges::count(result.out, '\n') == 1) << result;
        else if (result.exitStatus == 3)
            EXPECT_EQ(result.out, "") << result;
        else if (name == "json")
            EXPECT_TRUE(Json::accept(result.out)) << result;
        if (name == "metrics") {
            const std::string file = readFile(box.work() / "zeb.prom");
            EXPECT_EQ(file == "old", result.exitStatus == 3) << result;
            if (file != "old")
                expectWholeMetrics(file);
            EXPECT_EQ(std::distance(fs::directory_iterator(box.work()), {}), 1) << "something was left beside the file";
        }
    }
};

/// Each of the first calls, then ever fewer of the thousands of allocations.
int nextCall(int at) {
    return at + 1 + at / 60;
}

/// A preloaded allocator does not go together with the sanitizers' own.
TEST_P(ZebstatCallSweep, NoFailureEndsTheRunBySignal) {
    if (*paths::releaseZebstat == '\0')
        GTEST_SKIP() << "no release build was named (ZEB_RELEASE_BUILD)";
    for (const char* call : GetParam().calls) {
        int swept = 0;
        for (int at = 1; at < 20000; at = nextCall(at), ++swept) {
            SCOPED_TRACE(std::string(call) + " " + std::to_string(at));
            writeFile(box.work() / "zeb.prom", "old");
            expectOrderly(box.run(failing(call, at)));
            if (HasFatalFailure() || !fs::remove(mark()))
                break;
        }
        EXPECT_GT(swept, 0) << call << " was never made to fail";
    }
}

INSTANTIATE_TEST_SUITE_P(Commands, ZebstatCallSweep, testing::ValuesIn(kRuns),
                         [](const auto& test) { return std::string(test.param.name); });

} // namespace
} // namespace zebtest
