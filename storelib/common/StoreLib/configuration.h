// Requests about the configuration: its arrays, LDs and spares, the RAID group records, foreign configurations.
// Statuses as in storelib/records/status.h; 0 is success.
#pragma once

#include "storelib/records/configuration.h"
#include "storelib/records/controller.h"

#include <cstdint>

/// The most that the three counts of a configuration can describe. A size above it is a lie.
inline constexpr std::uint32_t kLargestConfigSize =
    sizeof(_MR_CONFIG_DATA) + 0xFFFFU * (sizeof(_MR_ARRAY) + sizeof(_MR_LD_CONFIG) + sizeof(_MR_SPARE));

/// The size in bytes of the whole configuration; 0 on failure.
std::uint32_t SLGetConfigSize(unsigned char contNo, unsigned int* size);

/// The configuration, its LDs sorted ascending by target id. The block is cleared first.
std::uint32_t SLReadConfig(unsigned char contNo, _MR_CONFIG_DATA* config, std::uint32_t size);

/// The order of a configuration's LDs, for qsort.
int LDSortFuncForConfig(const void* a, const void* b);

/// The RAID group record of one array.
std::uint32_t SLGetArrayInfo(unsigned char contNo, std::uint16_t arrayId, _SL_ARRAY_INFO_T* info);

std::uint32_t SLScanForForeignConfig(unsigned char contNo, _MR_FOREIGN_CFG_GUIDS* guids);

/// Size and contents that the configuration would have after all foreign configurations were imported.
std::uint32_t SLGetForeignConfigSize(unsigned char contNo, unsigned int* size);
std::uint32_t SLReadConfigAfterImport(unsigned char contNo, _MR_CONFIG_DATA* config, std::uint32_t size);
std::uint32_t SLImportForeignConfig(unsigned char contNo);
std::uint32_t SLClearForeignConfig(unsigned char contNo);
