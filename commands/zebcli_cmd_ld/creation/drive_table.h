// The table of drives to choose from.
#pragma once

#include "commands/zebcli_cmd_ld/creation/construction.h"

/// Prints one row per slot of the controller; the unconfigured drives carry a star. With refresh 1 the snapshot is
/// renewed first; when that fails nothing is printed. The plan plays no part.
void SetSelectHDDList(const _SL_CREATE_LD_INFO_T* plan, _AFCONT* conts, unsigned char contNo, int refresh);
