// The numbers of LDs and arrays on a controller: which are taken, and how many there can be.
#pragma once

#include "main/zebcli_cmd_com/model/snapshot.h"
#include "storelib/common/StoreLib/configuration_write.h"

#include <bitset>

using LdMarks = std::bitset<kMaxLds>;
using ArrayMarks = std::bitset<kMaxArrays>;

/// The target ids and the array references in use.
LdMarks takenLds(const _AFCONT& cont);
ArrayMarks takenArrays(const _AFCONT& cont);

/// How many LDs, and arrays, the controller can have.
unsigned ldLimit(const _MR_CTRL_INFO& info);
unsigned arrayLimit(const _MR_CTRL_INFO& info);

/// Gives the LDs of the plan the lowest free target ids, ascending. There must be enough of them.
void numberLds(_SL_CREATE_LD_INFO_T& plan, const _AFCONT& cont);

/// Gives the arrays of the plan the lowest free references, those of a RAID10 the lowest run of as many as it has
/// spans: the spans of a group are read from records in a row. Without such a run they are the lowest free ones.
/// There must be enough of them.
void numberArrays(_SL_CREATE_LD_INFO_T& plan, const _AFCONT& cont);

/// Whether the target ids, and the array references, of the plan are free.
bool areLdNumbersFree(const _SL_CREATE_LD_INFO_T& plan, const _AFCONT& cont);
bool areArrayNumbersFree(const _SL_CREATE_LD_INFO_T& plan, const _AFCONT& cont);
