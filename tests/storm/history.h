// Runs a history step by step on one state file and one command log, and looks at everything after each step.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "simulator/model.h"
#include "tests/storm/steps.h"
#include "tests/support/sandbox.h"

namespace zebstorm {

/// The program that is run, and the simulated library for it.
struct Program {
    std::string path; ///< empty: the zebcli of this build
    std::optional<std::filesystem::path> libraryDir;
};

/// What went wrong, by the name of the check, and what was seen.
struct Finding {
    std::string check;
    std::string seen;
};

/// A place to run histories in; each begins with an empty log and its own hardware.
class Stage {
  public:
    explicit Stage(Program program);

    /// Begins a history on this hardware.
    void begin(const zebsim::Model& hardware);
    /// Carries out a step and looks at what it left. Nothing when all is well.
    std::optional<Finding> play(const Step& step);
    /// The hardware as the last step left it.
    const zebsim::Model& hardware() const { return hardware_; }
    /// What the last command printed.
    const std::string& printed() const { return printed_; }

  private:
    std::optional<Finding> playCommand(const Step& step);
    std::optional<Finding> lookAtAll();
    std::optional<Finding> readState();
    std::optional<Finding> compareDocument();
    std::optional<Finding> run(const zebtest::RunOptions& options, zebtest::RunResult& result);
    std::filesystem::path stateFile() const { return box_.root() / "state.json"; }

    Program program_;
    zebtest::Sandbox box_;
    zebsim::Model hardware_;
    std::string printed_;
    std::string compared_; ///< the hardware, as text, that the last document was of
};

} // namespace zebstorm
