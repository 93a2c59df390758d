// Commands and what is said to them, mostly right, sometimes wrong.
#pragma once

#include "tests/storm/steps.h"

namespace zebstorm {

/// Gives the step a command of the tool with arguments and answers that fit the hardware more often than not.
void chooseCommand(Random& random, const zebsim::Model& model, Step& step);

} // namespace zebstorm
