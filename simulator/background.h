// Background work and the clock.
#pragma once

#include "simulator/model.h"

namespace zebsim {

/// Lets `seconds` of controller time pass (at most a year at once), with everything that comes to its end in them.
/// True when background work moved.
bool advance(Model& model, double seconds);

/// Starts a patrol read of every online hard disk whose LDs are not excluded. False when there is none.
bool beginPatrolRead(Controller& ctrl);

} // namespace zebsim
