// What a command says it has done, held against what has become of the hardware.
#pragma once

#include <string>

#include "simulator/model.h"
#include "tests/storm/steps.h"

namespace zebstorm {

/// Where the command's words and its deeds differ, or an empty text: hardware that changed although nothing was said to
/// be changed; LDs that came or went without being named, or were named and did not. Not judged where somebody else
/// changed the hardware during the step, or the run was killed.
std::string brokenClaim(const zebsim::Model& before, const zebsim::Model& after, const Step& step,
                        const std::string& printed);

} // namespace zebstorm
