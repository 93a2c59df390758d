// The two pass-through senders, controller commands (DCMD) and SCSI commands to a drive, and the checks built on the
// latter. Statuses as in storelib/records/status.h; 0 is success.
#pragma once

#include "storelib/common/StoreLib/request_path.h"
#include "storelib/records/request.h"

#include <array>
#include <cstddef>
#include <cstdint>

/// What picks a controller command.
struct Dcmd {
    std::uint32_t opcode;
    std::uint8_t direction;
    std::uint8_t firstMailboxByte = 0;
};

/// Sends a controller command whose input record is filled.
std::uint32_t SendDCMDPassThru(unsigned char contNo, _SL_DCMD_INPUT_T* input);

/// Fills the input record for a wrapper and sends it. A failure is traced under the wrapper's name as well.
std::uint32_t sendDcmd(Caller caller, unsigned char contNo, Dcmd dcmd, void* data, std::uint32_t size);

inline constexpr std::size_t kLogPageSize = 32;
using LogPage = std::array<std::uint8_t, kLogPageSize>;

/// The first 32 bytes of a log page of the drive in that slot, cumulative values (SPC-3, LOG SENSE).
std::uint32_t SCSISENSEPassthru(unsigned char contNo, unsigned char slotNo, unsigned char page, LogPage& out);

/// 1 when the drive lists the temperature log page (SPC-3, page 0x0D), else 0.
std::uint32_t SLIsTempPageSupported(unsigned char contNo, unsigned char slotNo, int* supported);

/// The drive's temperature, degrees Celsius.
std::uint32_t SLGetPDTemperature(unsigned char contNo, unsigned char slotNo, unsigned char* temperature);

/// The same pair for the drive with that device id: one request each. kSlScsiStatus when the drive refuses the page.
std::uint32_t SLIsTempPageSupportedByDevice(unsigned char contNo, std::uint16_t deviceId, int* supported);
std::uint32_t SLGetPDTemperatureByDevice(unsigned char contNo, std::uint16_t deviceId, unsigned char* temperature);

/// 1 when sector 0 of the drive holds an active partition entry (MBR), else 0.
std::uint32_t SLCheckBootDisk(unsigned char contNo, unsigned char slotNo, int* bootDisk);

/// 1 when a boot sector of that many bytes holds an active partition entry, else 0.
int SLCheckForBoot(const std::uint8_t* sector, std::size_t size);
