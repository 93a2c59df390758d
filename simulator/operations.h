// The operations: each changes the model by the firmware's rules, or answers the status that refuses it.
//
// What a request names has been found before, and its sequence number checked where there is one (see call.h). The
// statuses given here come on top of that; where several apply, the first one named is answered. An operation that is
// refused has changed nothing.
#pragma once

#include "simulator/call.h"

namespace zebsim {

// The controller.

/// Takes over the written properties. 0x04 stale, 0x03 a rate above 100, 0x22 an alarm where there is none. Automatic
/// rebuild that is switched on starts the hot spares that were waited for.
std::uint32_t setCtrlProperties(Call& call);

/// Takes over mode, limits and times of patrol read. 0x04 stale, 0x03 an unknown mode or too many excluded LDs. A
/// patrol read that runs goes on.
std::uint32_t setPatrolReadProperties(Call& call);

/// 0x27 disabled, 0x55 it runs, 0x58 no drive to read.
std::uint32_t startPatrolRead(Call& call);
/// 0x32 nothing runs.
std::uint32_t stopPatrolRead(Call& call);

/// 0x55 it runs, 0x32 the pack is missing or worn out.
std::uint32_t startLearnCycle(Call& call, CacheBackup& unit);

/// Keeps the bytes as they are written.
std::uint32_t setMfcDefaults(Call& call, const _SL_DCMD_INPUT_T& dcmd);

// Drives.

/// Brings a lost member back. 0x32 it is not one.
std::uint32_t makeDriveOnline(Call& call, Drive& drive);
/// Takes a working member out; a fitting hot spare starts to rebuild. 0x32 it is not one.
std::uint32_t makeDriveOffline(Call& call, Drive& drive);
/// Makes a drive that is in no array usable again. 0x32 it is in an array, or neither bad nor lost.
std::uint32_t makeDriveUnconfiguredGood(Call& call, Drive& drive);

/// Rebuilds a lost member in its place. 0x55 it rebuilds, 0x32 it is not lost; of an LD on its array: 0x1E not
/// redundant, 0x18 being initialised, 0x1D being reconstructed, 0x1B offline.
std::uint32_t startRebuild(Call& call, Drive& drive);
/// The drive is offline again. 0x32 it does not rebuild.
std::uint32_t cancelRebuild(Call& call, Drive& drive);

/// The drive's LED. It is named without its sequence number.
std::uint32_t startLocate(Call& call, Drive& drive);
std::uint32_t stopLocate(Call& call, Drive& drive);

/// 0x32 not unconfigured good, or foreign; 0x1F too many spares.
std::uint32_t makeGlobalSpare(Call& call, Drive& drive);
/// As a global one; 0x03 no array or more than 16; of an array: 0x09 unknown, 0x1E an LD on it is not redundant, 0x0D
/// the drive is too small, 0x26 its interface or media differ.
std::uint32_t makeDedicatedSpare(Call& call, Drive& drive);
/// The drive is unconfigured good again. 0x32 it is no spare.
std::uint32_t removeSpare(Call& call, Drive& drive);

// Logical drives.

/// Takes over the first 32 bytes of the configuration. 0x03 another LD, or a policy that does not exist.
std::uint32_t setLdProperties(Call& call, LogicalDrive& ld);

/// 0x18 being initialised, 0x1D being reconstructed, 0x54 pinned cache; with `strictDelete` 0x1C a drive rebuilds, 0x32
/// being checked.
std::uint32_t deleteLd(Call& call, LogicalDrive& ld);

/// 0x1E not redundant, 0x55 it runs, 0x18 and 0x1D as above, 0x1C a drive rebuilds, 0x1B not optimal.
std::uint32_t startCheck(Call& call, LogicalDrive& ld);
/// 0x32 none runs.
std::uint32_t cancelCheck(Call& call, LogicalDrive& ld);

/// A quick one is done at once, a full one (parameter byte 1) takes its time. 0x55 it runs, or a check does; 0x1D
/// and 0x1C as above; 0x1B offline.
std::uint32_t startInit(Call& call, LogicalDrive& ld);
/// 0x32 none runs.
std::uint32_t cancelInit(Call& call, LogicalDrive& ld);

// The configuration.

/// Adds the arrays and LDs of a configuration record, all of them or none. The README lists the statuses.
std::uint32_t addConfiguration(Call& call, const _SL_DCMD_INPUT_T& dcmd);

/// Takes over all foreign configurations; references and ids that are taken get the lowest free ones. 0x23 there is
/// none, or one alone was asked for; 0x1A too many LDs or arrays; 0x3B an LD would be offline.
std::uint32_t importForeign(Call& call);
/// Forgets all foreign configurations. 0x23 one alone was asked for.
std::uint32_t clearForeign(Call& call);

} // namespace zebsim
