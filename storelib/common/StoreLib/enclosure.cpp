#include "storelib/common/StoreLib/enclosure.h"

#include "storelib/common/StoreLib/passthrough.h"
#include "storelib/common/StoreLib/request_path.h"
#include "storelib/records/views.h"

#include <algorithm>

std::uint32_t SLGetEnclList(unsigned char contNo, _MR_ENCL_LIST* list) {
    return query(__func__, contNo, {0x01, 0x05}, list);
}

std::uint32_t SLGetEnclConfig(unsigned char contNo, std::uint16_t deviceId, _SL_ENCL_CONFIG_T* config) {
    return queryEnclosure(__func__, contNo, {0x08, 0x00}, deviceId, config);
}

std::uint32_t SLGetEnclStatus(unsigned char contNo, std::uint16_t deviceId, _SL_ENCL_STATUS_EX_T* status) {
    return queryEnclosure(__func__, contNo, {0x08, 0x05}, deviceId, status);
}

std::uint32_t SLGetSASConnector(unsigned char contNo, _MR_SAS_CONNECTORS* connectors) {
    return sendDcmd(__func__, contNo, {0x07030000, kDcmdFromController}, connectors, sizeof *connectors);
}

std::uint32_t SLGetSlotNum(unsigned char contNo, std::uint16_t* slots) {
    *slots = 0;
    _MR_ENCL_LIST list{};
    if (const std::uint32_t status = SLGetEnclList(contNo, &list); status != kSlSuccess)
        return failedBeforeSend(__func__, status);
    const auto enclosures = entriesOf(list);
    if (enclosures.size() == 1) {
        *slots = enclosures.front().slotCount;
        return kSlSuccess;
    }
    const auto first = std::find_if(enclosures.begin(), enclosures.end(),
                                    [](const _MR_ENCL_ENTRY& entry) { return entry.type != kEnclBackplane; });
    if (first != enclosures.end())
        *slots = static_cast<std::uint16_t>(first->slotCount + 1);
    return kSlSuccess;
}
