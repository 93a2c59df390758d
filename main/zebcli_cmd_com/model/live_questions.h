// Questions that the snapshot does not answer: each asks the library.
#pragma once

#include "main/zebcli_cmd_com/model/snapshot.h"

/// 1 when an operating system is installed on the LD, else 0, also on failure.
int IsOSInstallLD(unsigned char contNo, unsigned char ldNo, const _AFCONT* conts);

/// 1 when controller 0 is a software RAID controller, else 0, also on failure.
int IsSoftwareRAID();
