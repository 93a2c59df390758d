// Requests about enclosures. Statuses as in storelib/records/status.h; 0 is success.
#pragma once

#include "storelib/records/enclosure.h"

#include <cstdint>

std::uint32_t SLGetEnclList(unsigned char contNo, _MR_ENCL_LIST* list);
std::uint32_t SLGetEnclConfig(unsigned char contNo, std::uint16_t deviceId, _SL_ENCL_CONFIG_T* config);
std::uint32_t SLGetEnclStatus(unsigned char contNo, std::uint16_t deviceId, _SL_ENCL_STATUS_EX_T* status);
std::uint32_t SLGetSASConnector(unsigned char contNo, _MR_SAS_CONNECTORS* connectors);

/// The number of drive slots: that of the only enclosure, or, with none or several listed, one more than that of the
/// first that is no backplane. The difference is deliberate: every report counts its slots by it. 0 when there is none.
std::uint32_t SLGetSlotNum(unsigned char contNo, std::uint16_t* slots);
