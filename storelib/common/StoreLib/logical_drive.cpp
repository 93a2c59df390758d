#include "storelib/common/StoreLib/logical_drive.h"

#include "storelib/common/StoreLib/physical_drive.h"
#include "storelib/common/StoreLib/request_path.h"
#include "storelib/records/views.h"

#include <cstdlib>

namespace {

/// A change of an LD: its target id and current sequence number; the first parameter byte where one is due.
std::uint32_t changeLd(Caller caller, unsigned char contNo, Command command, unsigned char ldNo,
                       std::uint8_t parameter = 0) {
    SL_LIB_CMD_PARAM_T request = makeRequest(command, contNo);
    request.ref.ldRef.targetId = ldNo;
    std::uint16_t seqNo = 0;
    if (const std::uint32_t status = SLGetLDSequenceNumber(contNo, ldNo, &seqNo); status != kSlSuccess)
        return failedBeforeSend(caller, status);
    request.ref.ldRef.seqNo = seqNo;
    request.param.bytes[0] = parameter;
    return sendRequest(caller, request, contNo);
}

std::uint32_t pdInfoOfDevice(unsigned char contNo, std::uint16_t deviceId, _MR_PD_INFO& info) {
    unsigned char slotNo = 0;
    if (const std::uint32_t status = SLGetSlotNo(contNo, deviceId, &slotNo); status != kSlSuccess)
        return status;
    return SLGetPDInfo(contNo, slotNo, &info);
}

/// Whether one drive rebuilds, or its copy-back partner copies back. A partner that is not there counts as none.
std::uint32_t isDriveBusy(unsigned char contNo, std::uint16_t deviceId, bool& busy) {
    _MR_PD_INFO info{};
    if (const std::uint32_t status = pdInfoOfDevice(contNo, deviceId, info); status != kSlSuccess)
        return status;
    busy = (info.progress.active & kPdProgRebuild) != 0;
    if (busy || info.copybackPartner == kNoDevice)
        return kSlSuccess;
    unsigned char partnerSlot = 0;
    const std::uint32_t lookup = SLGetSlotNo(contNo, info.copybackPartner, &partnerSlot);
    if (lookup != kSlSuccess)
        return lookup == kSlDeviceNotFound ? kSlSuccess : lookup;
    _MR_PD_INFO partner{};
    const std::uint32_t status = SLGetPDInfo(contNo, partnerSlot, &partner);
    busy = status == kSlSuccess && partner.fwState == kPdCopyback;
    return status;
}

} // namespace

int LDSortFunc(const void* a, const void* b) {
    return static_cast<const _MR_LD_LIST_ENTRY*>(a)->targetId - static_cast<const _MR_LD_LIST_ENTRY*>(b)->targetId;
}

std::uint32_t SLGetLDList(unsigned char contNo, _MR_LD_LIST* list) {
    const std::uint32_t status = queryZeroed(__func__, contNo, {0x01, 0x0D}, list);
    if (status == kSlSuccess)
        std::qsort(list->ld, entriesOf(*list).size(), sizeof list->ld[0], LDSortFunc);
    return status;
}

std::uint32_t SLGetLdNum(unsigned char contNo, unsigned char* count) {
    _MR_LD_LIST list{};
    if (const std::uint32_t status = SLGetLDList(contNo, &list); status != kSlSuccess)
        return failedBeforeSend(__func__, status);
    *count = static_cast<unsigned char>(list.count);
    return kSlSuccess;
}

std::uint32_t SLGetLDInfo(unsigned char contNo, unsigned char ldNo, _MR_LD_INFO* info) {
    return queryLd(__func__, contNo, {0x03, 0x00}, ldNo, info);
}

std::uint32_t SLGetLDProperties(unsigned char contNo, unsigned char ldNo, _MR_LD_PROPERTIES* properties) {
    return queryLd(__func__, contNo, {0x03, 0x01}, ldNo, properties);
}

std::uint32_t SLGetLdProggress(unsigned char contNo, unsigned char ldNo, _MR_LD_PROGRESS* progress) {
    return queryLd(__func__, contNo, {0x03, 0x08}, ldNo, progress);
}

std::uint32_t SLGetPDInLD(unsigned char contNo, unsigned char ldNo, _SL_PD_IN_LD_T* drives) {
    return queryLd(__func__, contNo, {0x03, 0x0B}, ldNo, drives);
}

std::uint32_t SLGetLDAllowedOperation(unsigned char contNo, unsigned char ldNo, _MR_LD_ALLOWED_OPS* allowed) {
    return queryLd(__func__, contNo, {0x03, 0x0E}, ldNo, allowed);
}

std::uint32_t SLGetLDSequenceNumber(unsigned char contNo, unsigned char ldNo, std::uint16_t* seqNo) {
    _MR_LD_INFO info{};
    if (const std::uint32_t status = SLGetLDInfo(contNo, ldNo, &info); status != kSlSuccess)
        return failedBeforeSend(__func__, status);
    *seqNo = info.config.properties.ref.seqNo;
    return kSlSuccess;
}

std::uint32_t SLDeleteLD(unsigned char contNo, unsigned char ldNo) {
    return changeLd(__func__, contNo, {0x03, 0x03}, ldNo);
}

std::uint32_t SLStartCheckConsistency(unsigned char contNo, unsigned char ldNo) {
    return changeLd(__func__, contNo, {0x03, 0x06}, ldNo);
}

std::uint32_t SLCancelCheckConsistency(unsigned char contNo, unsigned char ldNo) {
    return changeLd(__func__, contNo, {0x03, 0x07}, ldNo);
}

std::uint32_t SLStartInitialization(unsigned char contNo, unsigned char ldNo) {
    constexpr std::uint8_t kInitializationKind = 1;
    return changeLd(__func__, contNo, {0x03, 0x09}, ldNo, kInitializationKind);
}

std::uint32_t SLCancelInitialization(unsigned char contNo, unsigned char ldNo) {
    return changeLd(__func__, contNo, {0x03, 0x0A}, ldNo);
}

std::uint32_t SLSetLDProperties(unsigned char contNo, _MR_LD_PROPERTIES* properties) {
    SL_LIB_CMD_PARAM_T request = makeRequest({0x03, 0x02}, contNo);
    request.ref.ldRef.targetId = properties->ref.targetId;
    request.ref.ldRef.seqNo = properties->ref.seqNo;
    attachData(request, properties, sizeof *properties);
    return sendRequest(__func__, request, contNo);
}

std::uint32_t SLSetSnapshotProp(unsigned char contNo, unsigned char ldNo, unsigned char a, unsigned char b) {
    _MR_LD_PROPERTIES properties{};
    if (const std::uint32_t status = SLGetLDProperties(contNo, ldNo, &properties); status != kSlSuccess)
        return failedBeforeSend(__func__, status);
    const unsigned first = a & 1U;
    const unsigned second = b == 0 ? 2U : 0U;
    properties.snapshotFlags = static_cast<std::uint8_t>((properties.snapshotFlags & ~3U) | first | second);
    if (const std::uint32_t status = SLSetLDProperties(contNo, &properties); status != kSlSuccess)
        return failedBeforeSend(__func__, status);
    return kSlSuccess;
}

std::uint32_t SLIsDuringRebuildCopyback(unsigned char contNo, unsigned char ldNo, int* during) {
    _SL_PD_IN_LD_T drives{};
    if (const std::uint32_t status = SLGetPDInLD(contNo, ldNo, &drives); status != kSlSuccess)
        return failedBeforeSend(__func__, status);
    bool busy = false;
    for (const std::uint16_t deviceId : deviceIdsOf(drives)) {
        if (busy)
            break;
        if (deviceId == kNoDevice)
            continue;
        if (const std::uint32_t status = isDriveBusy(contNo, deviceId, busy); status != kSlSuccess)
            return failedBeforeSend(__func__, status);
    }
    *during = busy ? 1 : 0;
    return kSlSuccess;
}
