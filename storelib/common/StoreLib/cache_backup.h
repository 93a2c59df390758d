// Requests about the cache backup unit. Statuses as in storelib/records/status.h; 0 is success.
#pragma once

#include "storelib/records/cache_backup.h"

#include <cstdint>

std::uint32_t SLGetCacheBkupStatus(unsigned char contNo, _MR_BBU_STATUS* status);
std::uint32_t SLGetCacheBkupCapacityInfo(unsigned char contNo, _MR_BBU_CAPACITY_INFO* info);
std::uint32_t SLGetCacheBkupDesignInfo(unsigned char contNo, _MR_BBU_DESIGN_INFO* info);
std::uint32_t SLGetCacheBkupProperties(unsigned char contNo, _MR_BBU_PROPERTIES* properties);

/// Starts a learn cycle.
std::uint32_t SLLearnCacheBkup(unsigned char contNo);
