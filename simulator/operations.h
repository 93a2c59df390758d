// The operations: each changes the model by the firmware's rules, or answers the status that refuses it.
#pragma once

#include "simulator/call.h"

namespace zebsim {

std::uint32_t setCtrlProperties(Call& call);
std::uint32_t setPatrolReadProperties(Call& call);
std::uint32_t startPatrolRead(Call& call);
std::uint32_t stopPatrolRead(Call& call);
std::uint32_t startLearnCycle(Call& call);
std::uint32_t setMfcDefaults(Call& call, const _SL_DCMD_INPUT_T& dcmd);

std::uint32_t makeDriveOnline(Call& call);
std::uint32_t makeDriveOffline(Call& call);
std::uint32_t makeDriveUnconfiguredGood(Call& call);
std::uint32_t startRebuild(Call& call);
std::uint32_t cancelRebuild(Call& call);
std::uint32_t startLocate(Call& call);
std::uint32_t stopLocate(Call& call);
std::uint32_t makeGlobalSpare(Call& call);
std::uint32_t makeDedicatedSpare(Call& call);
std::uint32_t removeSpare(Call& call);

std::uint32_t setLdProperties(Call& call);
std::uint32_t deleteLd(Call& call);
std::uint32_t startCheck(Call& call);
std::uint32_t cancelCheck(Call& call);
std::uint32_t startInit(Call& call);
std::uint32_t cancelInit(Call& call);

std::uint32_t addConfiguration(Call& call, const _SL_DCMD_INPUT_T& dcmd);
std::uint32_t importForeign(Call& call);
std::uint32_t clearForeign(Call& call);

} // namespace zebsim
