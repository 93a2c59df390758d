// The two pass-through requests: controller commands (DCMD) and SCSI commands to a drive.
#pragma once

#include "simulator/call.h"

namespace zebsim {

/// Carries out the SCSI command of the header in `call.input`; the answer is the drive's data.
std::uint32_t scsiPassThrough(Call& call);

/// Carries out a controller command. `call.input` is its payload, the answer what it reads.
std::uint32_t dcmdPassThrough(Call& call, const _SL_DCMD_INPUT_T& dcmd);

/// Snapshot controller commands: the mailbox's first byte is the LD's target id.
std::uint32_t enableSnapshot(Call& call, const _SL_DCMD_INPUT_T& dcmd);
std::uint32_t disableSnapshot(Call& call, const _SL_DCMD_INPUT_T& dcmd);
std::uint32_t changeSnapshot(Call& call, const _SL_DCMD_INPUT_T& dcmd);
std::uint32_t getSnapshotInfo(Call& call, const _SL_DCMD_INPUT_T& dcmd);
std::uint32_t getRepositorySpace(Call& call, const _SL_DCMD_INPUT_T& dcmd);

} // namespace zebsim
