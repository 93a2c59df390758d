#include "tests/storm/history.h"

#include <algorithm>
#include <csignal>
#include <gtest/gtest-spi.h>
#include <set>
#include <sstream>

#include "simulator/background.h"
#include "simulator/faults.h"
#include "simulator/scenario.h"
#include "tests/storm/claims.h"
#include "tests/storm/hardware.h"
#include "tests/support/log_file.h"
#include "tests/zebstat/zebstat_run.h"

namespace zebstorm {
namespace {

using namespace zebsim;
using zebtest::LogFile;
using zebtest::RunOptions;
using zebtest::RunResult;

std::string shown(const RunResult& result) {
    std::ostringstream text;
    text << result;
    return text.str();
}

/// Lets an event happen to the hardware, as a fault would let it happen in the middle of a run.
void happen(Model& hardware, const std::string& event) {
    Faults faults;
    faults.add("[{\"also\": " + event + "}]");
    const _SL_LIB_CMD_PARAM_T request{};
    zebsim::Stage stage{request, hardware};
    faults.strike(request, std::nullopt).due(Phase::kAfter, stage);
}

bool killsTheRun(const Step& step) {
    return step.faults.find("\"kill\"") != std::string::npos;
}

} // namespace

Stage::Stage(Program program) : program_(std::move(program)) {}

void Stage::begin(const Model& hardware) {
    std::filesystem::remove(box_.log());
    std::filesystem::remove(stateFile());
    hardware_ = hardware;
    compared_.clear();
    zebtest::writeFile(stateFile(), writeScenario(hardware_));
}

std::optional<Finding> Stage::play(const Step& step) {
    if (step.kind == Step::Kind::command)
        return playCommand(step);
    if (step.kind == Step::Kind::time)
        advance(hardware_, step.seconds);
    else
        happen(hardware_, step.event);
    zebtest::writeFile(stateFile(), writeScenario(hardware_));
    return lookAtAll();
}

std::optional<Finding> Stage::lookAtAll() {
    auto finding = readState();
    return finding ? finding : compareDocument();
}

std::optional<Finding> Stage::readState() {
    const std::string text = zebtest::readFile(stateFile());
    try {
        hardware_ = readScenario(text);
    } catch (const ScenarioError& error) {
        return Finding{"state file", error.what()};
    }
    const std::string fault = inconsistency(hardware_);
    return fault.empty() ? std::nullopt : std::optional<Finding>({"hardware", fault});
}

/// The document of zebstat, key by key, against what the hardware's own file says. Asked for anew only when the
/// hardware has changed.
std::optional<Finding> Stage::compareDocument() {
    Model model = hardware_;
    model.savedAt.reset();
    const std::string text = writeScenario(model);
    if (text == compared_)
        return std::nullopt;
    compared_ = text;
    RunOptions options = zebtest::quickRun("json");
    options.env["ZEBSIM_STATE"] = stateFile();
    options.env["ZEBSIM_SPEED"] = "0";
    RunResult result;
    if (auto finding = run(options, result))
        return finding;
    const auto document = zebtest::Json::parse(result.out, nullptr, false);
    if (document.is_discarded())
        return Finding{"document", shown(result)};
    const std::string wrong = zebtest::differences(document, zebtest::expectedDocument(zebtest::Json::parse(text)));
    return wrong.empty() ? std::nullopt : std::optional<Finding>({"document", wrong});
}

/// Runs a program. A finding when the sandbox itself found something: a run over its time, a sanitizer's report.
std::optional<Finding> Stage::run(const RunOptions& options, RunResult& result) {
    testing::TestPartResultArray failures;
    {
        const testing::ScopedFakeTestPartResultReporter reporter(
            testing::ScopedFakeTestPartResultReporter::INTERCEPT_ONLY_CURRENT_THREAD, &failures);
        result = box_.run(options);
    }
    if (failures.size() > 0)
        return Finding{result.timedOut ? "hang" : "run", failures.GetTestPartResult(0).message()};
    return std::nullopt;
}

std::optional<Finding> Stage::playCommand(const Step& step) {
    RunOptions options;
    options.program = program_.path;
    options.libraryDir = program_.libraryDir;
    options.args = step.args;
    options.input = zebtest::Input::kPipe;
    options.inputText = step.input + lastAnswers();
    options.env = {{"ZEBSIM_STATE", stateFile()}, {"ZEBSIM_SPEED", "0"}, {"ZEBSIM_FAULTS", step.faults}};
    const Model before = hardware_;
    RunResult result;
    if (auto finding = run(options, result))
        return finding;
    printed_ = result.out;
    if (result.signal != 0 && !(result.signal == SIGKILL && killsTheRun(step)))
        return Finding{"signal", shown(result)};
    const bool ended = result.exitStatus == 0 || result.exitStatus == 255;
    if (result.signal == 0 && !ended)
        return Finding{"exit status", shown(result)};
    if (std::filesystem::exists(box_.log()))
        if (const auto exact = LogFile(box_.log()).everyLineExact(); !exact)
            return Finding{"log", exact.message()};
    if (std::optional<Finding> finding = lookAtAll())
        return finding;
    const std::string lie = brokenClaim(before, hardware_, step, result.out);
    return lie.empty() ? std::nullopt : std::optional<Finding>({"claim", lie + "\n" + shown(result)});
}

} // namespace zebstorm
