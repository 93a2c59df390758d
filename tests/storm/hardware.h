// Random hardware for a history to begin with, and what must hold of any hardware at any time.
#pragma once

#include <string>

#include "simulator/model.h"
#include "tests/storm/random.h"

namespace zebstorm {

/// One to three controllers with drives, arrays, LDs and spares, some of them ailing. What it makes is consistent.
zebsim::Model randomHardware(Random& random);

/// What is wrong with the hardware, or an empty text: a drive in two places or in a state that its place does not have,
/// spans outside their arrays or on others, an LD whose state is not what its drives make it.
std::string inconsistency(const zebsim::Model& model);

} // namespace zebstorm
