#include "storelib/common/StoreLib/hot_spare.h"

#include "log/zebcli_log.h"
#include "storelib/common/StoreLib/configuration.h"
#include "storelib/common/StoreLib/logical_drive.h"
#include "storelib/common/StoreLib/physical_drive.h"
#include "storelib/common/StoreLib/request_path.h"
#include "storelib/records/views.h"

#include <algorithm>

namespace {

/// The arrays of the LD that lives on the given array. An LD that does not is not believed: its spare would guard
/// foreign arrays.
std::uint32_t spareBlock(Caller caller, unsigned char contNo, std::uint16_t arrayId, _SL_DEDICATED_SPARE_T& block) {
    const auto array = allocateRecord<_SL_ARRAY_INFO_T>();
    if (!array)
        return kSlMemoryAllocFailed;
    if (const std::uint32_t status = SLGetArrayInfo(contNo, arrayId, array.get()); status != kSlSuccess)
        return failedBeforeSend(caller, status);
    const auto lds = ldsOf(*array);
    if (lds.empty())
        return failedBeforeSend(caller, kSlDeviceNotFound);
    _MR_LD_INFO ld{};
    if (const std::uint32_t status = SLGetLDInfo(contNo, lds.front(), &ld); status != kSlSuccess)
        return failedBeforeSend(caller, status);
    const auto spans = spansOf(ld.config);
    if (std::none_of(spans.begin(), spans.end(), [&](const _MR_SPAN& span) { return span.arrayRef == arrayId; }))
        return failedBeforeSend(caller, kSlDeviceNotFound);
    block.arrayCount = static_cast<std::uint8_t>(spans.size());
    for (std::size_t k = 0; k < spans.size(); ++k)
        block.arrayRef[k] = spans[k].arrayRef;
    return kSlSuccess;
}

} // namespace

std::uint32_t SLMakeGlobalHotspare(unsigned char contNo, unsigned char slotNo) {
    return changePd(__func__, contNo, {0x02, 0x0A}, slotNo);
}

std::uint32_t SLMakeDedicatedHotspare(unsigned char contNo, unsigned char slotNo, std::uint16_t arrayId) {
    _SL_DEDICATED_SPARE_T block{};
    if (const std::uint32_t status = spareBlock(__func__, contNo, arrayId, block); status != kSlSuccess)
        return status;
    SL_LIB_CMD_PARAM_T request = makeRequest({0x02, 0x0B}, contNo);
    if (const std::uint32_t status = setPdReferenceWithSequence(__func__, request, contNo, slotNo);
        status != kSlSuccess)
        return status;
    attachData(request, &block, sizeof block);
    // The blank before the comma is deliberate: the trace has always had it, and scripts look for it.
    Utillogging_dmp(kStoreLibSource, __LINE__, kTracePlain, &block, sizeof block,
                    "func=%s: contNo=%u ,slotNo=%u, arrayRef=%u", __func__, contNo, slotNo, arrayId);
    return sendRequest(__func__, request, contNo, Trace::Always);
}

std::uint32_t SLRemoveHotspare(unsigned char contNo, unsigned char slotNo) {
    return changePd(__func__, contNo, {0x02, 0x0D}, slotNo);
}
