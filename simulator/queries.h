// The queries: each encodes a part of the model into the library's record and adds that to the answer.
//
// They change nothing. What a request names has been found before (see call.h); statuses given here come on top of
// that.
#pragma once

#include "simulator/call.h"
#include "storelib/records/controller.h"
#include "storelib/records/enclosure.h"
#include "storelib/records/logical_drive.h"

namespace zebsim {

// The controller.
std::uint32_t getCtrlInfo(Call& call);
std::uint32_t getCtrlProperties(Call& call);
std::uint32_t getPciInfo(Call& call);
std::uint32_t getDriverVersion(Call& call);
std::uint32_t getPatrolReadProperties(Call& call);

/// Which devices the operating system has for the LDs, and for each LD the value that getPartition() wants to see.
std::uint32_t getOsMapping(Call& call);
/// Whether an operating system is installed on an LD. 0x8023 when the value is not the one of the mapping.
std::uint32_t getPartition(Call& call);

// Drives.

/// Enclosures first, then the drives: nobody may rely on an order, nor take the one for the other.
std::uint32_t getPdList(Call& call);
std::uint32_t getPdInfo(Call& call, Drive& drive);
std::uint32_t getPdProgress(Call& call, Drive& drive);
std::uint32_t getPdAllowedOps(Call& call, Drive& drive);

// Logical drives.
std::uint32_t getLdList(Call& call);
std::uint32_t getLdInfo(Call& call, LogicalDrive& ld);
std::uint32_t getLdProperties(Call& call, LogicalDrive& ld);
std::uint32_t getLdProgress(Call& call, LogicalDrive& ld);
/// The device ids of the LD's drives, span by span; empty positions are left out.
std::uint32_t getPdInLd(Call& call, LogicalDrive& ld);
std::uint32_t getLdAllowedOps(Call& call, LogicalDrive& ld);

// The configuration.

/// The whole of it. Its head tells the true size also where the caller has room for less.
std::uint32_t readConfig(Call& call);
std::uint32_t scanForeign(Call& call);
/// All foreign configurations as one.
std::uint32_t readForeignConfig(Call& call);
/// One array with its LDs, drives and free space. 0x09 there is no such array.
std::uint32_t getArrayInfo(Call& call);

// The cache backup unit.
std::uint32_t getBackupStatus(Call& call, CacheBackup& unit);
std::uint32_t getBackupCapacity(Call& call, CacheBackup& unit);
std::uint32_t getBackupDesign(Call& call, CacheBackup& unit);
std::uint32_t getBackupProperties(Call& call, CacheBackup& unit);

// Enclosures. 0x22 there is none, or it is a backplane that cannot be asked; 0x0C there is no such enclosure.
std::uint32_t getEnclList(Call& call);
std::uint32_t getEnclConfig(Call& call);
/// The sensors, in the order of the element types; one slot element for each slot.
std::uint32_t getEnclStatus(Call& call);
_MR_SAS_CONNECTORS encodeConnectors(const Controller& ctrl);

// Parts of records that several queries or operations need.
_MR_CTRL_PROP encodeProperties(const Properties& properties);
/// `arrays` are those that the LD's spans name: the controller's, or a foreign configuration's.
_MR_LD_CONFIG encodeLdConfig(const LogicalDrive& ld, const std::vector<Array>& arrays);
/// The operations that the drive admits: a rebuild for a lost member of a redundant LD.
std::uint32_t allowedPdOps(const Controller& ctrl, const Drive& drive);

/// A task's progress as the wire carries it: 65535 is all of it, rounded up so that the shown percentage is the task's.
_MR_PROGRESS encodeProgress(const Task& task);

} // namespace zebsim
