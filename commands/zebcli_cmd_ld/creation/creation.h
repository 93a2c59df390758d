// Carrying a plan out: the last look, the request, what was made, and the lines that tell of it.
#pragma once

#include "commands/zebcli_cmd_ld/creation/plan.h"
#include "main/zebcli_cmd_com/base/trace.h"

#include <span>

/// Reads the snapshot anew and compares all that the plans rest on. Returns false after it has been said that nothing
/// is done: somebody changed something, or the snapshot could not be read.
bool lookAgainAtPlans(std::span<CreationPlan> plans, _AFCONT* conts, int contCount);

/// Makes the LDs of the plan and reads them back. Returns true when they are there as planned; what came of it has been
/// said either way.
bool create(CreationPlan& plan, Speaker handler, _AFCONT* conts, int contCount);
