// The steps of a history: commands with right and wrong arguments and answers, time that passes, drives that fail.
#pragma once

#include <string>
#include <vector>

#include "simulator/model.h"
#include "tests/storm/random.h"

namespace zebstorm {

struct Step {
    enum class Kind {
        command, ///< a run of the tool
        time, ///< time passes between two runs
        event, ///< something happens to the hardware between two runs
    };
    Kind kind = Kind::command;
    std::vector<std::string> args;
    std::string input; ///< what is typed, from a pipe
    std::string faults; ///< of the library, a JSON list; empty: none
    double seconds = 0;
    std::string event; ///< as under "also" in a fault

    /// The step as one would type it in a shell; a comment where it is no command.
    std::string asCommand() const;
};

/// The next step of a history that has come to this hardware.
Step randomStep(Random& random, const zebsim::Model& model);

/// Answers that bring any question to an end: "n" for yes or no, numbers for choices that do not take the end of the
/// input for an answer. They stand behind the answers of a step.
std::string lastAnswers();

} // namespace zebstorm
