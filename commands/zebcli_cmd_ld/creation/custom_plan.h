// The checks of custom creation, up to the plan of one controller.
#pragma once

#include "commands/zebcli_cmd_ld/creation/custom_options.h"
#include "commands/zebcli_cmd_ld/creation/plan.h"
#include "main/zebcli_cmd_com/base/trace.h"

/// Checks the request on one controller and lays out its LDs: in new arrays, or in the free space of the group that
/// exactly the named drives form, for which the library is asked. Returns false at the first check that fails, which
/// has been said.
bool planOnController(const CustomRequest& request, Controller ctrl, Speaker handler, CreationPlan& plan);

/// Numbers what was laid out and gives it its settings. Asks the library for the drives.
void setUpPlan(const CustomRequest& request, CreationPlan& plan);
