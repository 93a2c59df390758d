// Requests about a controller as a whole. Statuses as in storelib/records/status.h; 0 is success.
#pragma once

#include "storelib/records/controller.h"
#include "storelib/records/request.h"

#include <cstddef>
#include <cstdint>
#include <type_traits>

/// The version of the library itself.
std::uint32_t SLGetLibraryVersion(_SL_LIB_VER_T* version);

std::uint32_t SLGetCtrlInfo(unsigned char contNo, _MR_CTRL_INFO* info);
std::uint32_t SLGetCtrlProp(unsigned char contNo, _MR_CTRL_PROP* properties);
std::uint32_t SLGetPciInfo(unsigned char contNo, _MR_DRV_PCI_INFORMATION* info);
std::uint32_t SLGetDrvVer(unsigned char contNo, _MR_DRV_DRIVER_VERSION* version);
std::uint32_t SLGetPatrolReadProp(unsigned char contNo, _MR_PR_PROPERTIES* properties);

/// The sequence number of the controller's properties.
std::uint32_t SLGetCtrlSequenceNumber(unsigned char contNo, std::uint16_t* seqNo);

/// The controller's clock, seconds since 2000-01-01.
std::uint32_t SLGetTime(unsigned char contNo, unsigned int* seconds);

/// The defaults that manufacturing left.
std::uint32_t SLGetMFCDefaults(unsigned char contNo, _MR_MFC_DEFAULTS* defaults);
std::uint32_t SLSetMFCDefaults(unsigned char contNo, _MR_MFC_DEFAULTS* defaults);

inline constexpr std::size_t kOsDriveNameSize = 16;

/// The operating system's name of an LD, "NULL" when it has none or the request failed.
std::uint32_t SLGetOSDriveName(unsigned char contNo, int ldNo, char (&name)[kOsDriveNameSize]);

/// The operating system's names of all LDs. An LD may have several entries, or none.
std::uint32_t SLGetLDOSMap(unsigned char contNo, _SL_LD_OS_MAP_T* map);

/// The partition record of an LD that has an entry in the mapping, whose partition argument the request carries. It is
/// left as it was on failure.
std::uint32_t SLGetMappedPartition(unsigned char contNo, int ldNo, std::uint32_t partitionArg,
                                   _SL_PARTITION_INFO_T* partition);

/// The names of all devices of the operating system that an LD is mapped to, in the order of the mapping. A name
/// without a NUL may be cut.
struct OsDriveNames {
    unsigned count;
    using Name = decltype(_SL_LD_OS_MAP_ENTRY::osDeviceName);
    using Entries = decltype(_SL_LD_OS_MAP_T::entry);
    Name name[std::extent_v<Entries>];
};

/// Fills the names; there are none when the request failed.
std::uint32_t SLGetOSDriveNames(unsigned char contNo, unsigned char ldNo, OsDriveNames* names);

/// The partition record of an LD. It is left as it was when the operating system does not know the LD; the status is 0
/// then.
std::uint32_t SLGetLDPartition(unsigned char contNo, int ldNo, _SL_PARTITION_INFO_T* partition);

/// What an administrator may change of the controller's properties. Of the flags only bit 0 counts.
struct SL_CTRL_SETTING_INFO {
    std::uint8_t taskRate; ///< percent, for all five background tasks
    std::uint8_t copybackDisabled;
    std::uint8_t smartCopybackHdd;
    std::uint8_t smartCopybackSsd;
};

/// Reads the properties, writes the settings into them and sends them back with the sequence number that was read.
std::uint32_t SLSetCtrlProp(unsigned char contNo, const SL_CTRL_SETTING_INFO* settings);

/// The same for automatic rebuild: 1 disables it, 0 enables it.
std::uint32_t SLSetCtrlRbldMode(unsigned char contNo, unsigned char disableAutoRebuild);

/// Sends patrol read properties with the controller's current sequence number. The first record is taken and ignored.
std::uint32_t SLSetPatrolReadProp(unsigned char contNo, const _MR_PR_PROPERTIES* oldProperties,
                                  const _MR_PR_PROPERTIES* newProperties);
std::uint32_t SLStartPatrolReadOpe(unsigned char contNo);
std::uint32_t SLStopPatrolReadOpe(unsigned char contNo);

/// Whether a drive fails on a SMART error: reads the manufacturing defaults, changes that byte and writes them back.
std::uint32_t SLSetFailPDOnSmartTer(unsigned char contNo, unsigned char value);

/// The product name of controllers whose RAID is made by the host's software.
inline constexpr char kSoftwareRaidProduct[] = "LSI Embedded MegaRAID";

/// 0 when the controller cannot copy back, as software RAID and the two entry models cannot, else 1. Sends nothing.
int SLIsCopybackSupported(const _MR_CTRL_INFO* info);
