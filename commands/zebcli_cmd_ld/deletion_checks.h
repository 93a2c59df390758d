// What forbids the deletion of an LD.
#pragma once

#include "main/zebcli_cmd_com/base/source.h"
#include "main/zebcli_cmd_com/base/trace.h"
#include "main/zebcli_cmd_com/model/snapshot.h"

/// Who speaks in the records of a deletion.
inline constexpr Speaker kDeletion{kLdSource, "CliCmdExecCfgLDDel"};

/// Whether the LD may be deleted: it is no part of a snapshot, nothing works on it, it holds no operating system, and
/// none of its devices is in use. The first reason against it is said. By the snapshot, but the library is asked for
/// the operating system and the devices.
bool mayDeleteLd(Controller ctrl, unsigned char ldNo);
