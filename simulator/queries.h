// The queries: each encodes a part of the model into the library's record.
#pragma once

#include "simulator/call.h"
#include "storelib/records/controller.h"
#include "storelib/records/enclosure.h"
#include "storelib/records/logical_drive.h"

namespace zebsim {

std::uint32_t getCtrlInfo(Call& call);
std::uint32_t getCtrlProperties(Call& call);
std::uint32_t getPciInfo(Call& call);
std::uint32_t getDriverVersion(Call& call);
std::uint32_t getPatrolReadProperties(Call& call);
std::uint32_t getOsMapping(Call& call);
std::uint32_t getPartition(Call& call);

std::uint32_t getPdList(Call& call);
std::uint32_t getPdInfo(Call& call);
std::uint32_t getPdProgress(Call& call);
std::uint32_t getPdAllowedOps(Call& call);

std::uint32_t getLdList(Call& call);
std::uint32_t getLdInfo(Call& call);
std::uint32_t getLdProperties(Call& call);
std::uint32_t getLdProgress(Call& call);
std::uint32_t getPdInLd(Call& call);
std::uint32_t getLdAllowedOps(Call& call);

std::uint32_t readConfig(Call& call);
std::uint32_t scanForeign(Call& call);
std::uint32_t readForeignConfig(Call& call);
std::uint32_t getArrayInfo(Call& call);

std::uint32_t getBackupStatus(Call& call);
std::uint32_t getBackupCapacity(Call& call);
std::uint32_t getBackupDesign(Call& call);
std::uint32_t getBackupProperties(Call& call);

std::uint32_t getEnclList(Call& call);
std::uint32_t getEnclConfig(Call& call);
std::uint32_t getEnclStatus(Call& call);
_MR_SAS_CONNECTORS encodeConnectors(const Controller& ctrl);

_MR_CTRL_PROP encodeProperties(const Properties& properties);
_MR_LD_CONFIG encodeLdConfig(const LogicalDrive& ld, const std::vector<Array>& arrays);
std::uint32_t allowedPdOps(const Controller& ctrl, const Drive& drive);

/// A task's progress as the wire carries it: 65535 is all of it, rounded up so that the shown percentage is the task's.
_MR_PROGRESS encodeProgress(const Task& task);

} // namespace zebsim
