// The LDs that a new CacheCade LD serves: those with cached IO.
#pragma once

#include "commands/zebcli_cmd_ld/creation/plan.h"
#include "main/zebcli_cmd_com/base/trace.h"

/// Asks whether the LDs of the plan's controller that can be associated shall be, naming the controller where it is one
/// of several, and takes them into the plan. Nothing is asked where there are none or the IO policy cannot be set.
void askAssociation(CreationPlan& plan, bool nameController);

/// Gives cached IO to the LDs of the plan. Returns false at the first failure; what came of it has been said.
bool associate(const CreationPlan& plan, Speaker handler);
