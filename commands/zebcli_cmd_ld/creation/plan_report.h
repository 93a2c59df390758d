// What the operator is shown of a plan before any question.
#pragma once

#include "commands/zebcli_cmd_ld/creation/plan.h"

/// Prints and logs the plan of one controller: its groups with their LDs, drives and settings, then the spares.
void showPlan(const CreationPlan& plan);

/// Warns of drives of the plan's new groups that have a boot sector, for which it asks the library, or errors.
void warnOfDrives(const CreationPlan& plan);
