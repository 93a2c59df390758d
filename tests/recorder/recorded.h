// Runs the tool under the programs of the recorder.
#pragma once

#include "recorder/request.h"
#include "tests/support/request_trace.h"
#include "tests/support/sandbox.h"

#include <filesystem>
#include <string>
#include <vector>

namespace zebtest {

/// One line of the tool's arguments with what is typed at its questions.
struct ToolRun {
    std::string args; ///< separated by blanks
    std::string input = {};
};

/// Commands that change something, each with the answers that let it.
extern const std::vector<ToolRun> kChangingRuns;

/// A request of the simulator's trace as the recorder sees it.
zebrec::Request requestOf(const TracedRequest& traced);

class RecorderTest : public SandboxTest {
  protected:
    /// The tool alone on a scenario ("built_in" or the name of a file), its request trace collected.
    RunOptions tool(const std::string& scenario, const ToolRun& run) const;
    /// The same behind a program of the recorder.
    RunOptions under(const std::string& program, std::vector<std::string> before, RunOptions options) const;

    /// The facts for programs and eyes on a scenario; the hardware's time stands still.
    RunOptions facts(const std::string& scenario, const std::string& args) const;
    /// Every report of the tool and the facts for programs in one shell; the hardware's time stands still.
    RunOptions everyReport(const std::string& scenario) const;
    /// From here on the programs of the release build run, where there is one: what they do is the same, and a matrix
    /// of many runs is dear with the sanitizers.
    void useRelease();

    std::filesystem::path recording() const { return box.root() / "recording"; }
    /// Records a run into recording(), an earlier one is removed.
    RunResult record(const RunOptions& options, std::vector<std::string> further = {});
    RunResult replay(RunOptions options);

  private:
    const char* programOf(const char* debug, const char* release) const { return released_ ? release : debug; }

    bool released_ = false;
};

std::vector<std::string> scenarioNames();

} // namespace zebtest
