// Makes a history that went wrong shorter.
#pragma once

#include "tests/storm/history.h"

namespace zebstorm {

/// A history that went wrong: what it began with, its steps up to the last, and what was found then.
struct Failure {
    zebsim::Model hardware;
    std::vector<Step> steps;
    Finding finding;
};

/// The history without what the same check does not need in order to fail: steps first, then faults, answers and
/// arguments. The result fails when it is played again.
Failure shortened(Stage& stage, const Failure& failure);

} // namespace zebstorm
