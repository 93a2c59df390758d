#include "storelib/common/StoreLib/physical_drive.h"

#include "log/zebcli_log.h"
#include "storelib/records/views.h"

#include <algorithm>
#include <cstdlib>

namespace {

constexpr Command kGetPdInfo{0x02, 0x00};

/// Reads the PD list and hands each disk to the test until one passes. Returns 12 when none does; what was looked for
/// is traced then.
template <class Test>
std::uint32_t findDisk(Caller caller, unsigned char contNo, const char* key, unsigned wanted, Test test) {
    const auto list = allocateRecord<_MR_PD_LIST>();
    if (!list)
        return kSlMemoryAllocFailed;
    if (const std::uint32_t status = SLGetPDList(contNo, list.get()); status != kSlSuccess)
        return failedBeforeSend(caller, status);
    const auto disks = entriesOf(*list);
    const bool found = std::any_of(disks.begin(), disks.end(), [&](const _MR_PD_ADDRESS& address) {
        return address.scsiDevType == kScsiDisk && test(address);
    });
    if (found)
        return kSlSuccess;
    Utillogging(kStoreLibSource, caller.line, kTraceError, "func=%s: contNo=%u, %s=%u", caller.func, contNo, key,
                wanted);
    return kSlDeviceNotFound;
}

/// A request about the PD in a slot whose answer is one record.
template <class Record>
std::uint32_t queryPd(Caller caller, unsigned char contNo, Command command, unsigned char slotNo, Record* record) {
    SL_LIB_CMD_PARAM_T request = makeRequest(command, contNo);
    if (const std::uint32_t status = setPdReference(caller, request, contNo, slotNo); status != kSlSuccess)
        return status;
    attachData(request, record, sizeof *record);
    return sendRequest(caller, request, contNo);
}

/// A locate request: the drive's device id without a sequence number, and a mode.
std::uint32_t locatePd(Caller caller, unsigned char contNo, Command command, unsigned char slotNo, unsigned char mode) {
    SL_LIB_CMD_PARAM_T request = makeRequest(command, contNo);
    if (const std::uint32_t status = setPdReference(caller, request, contNo, slotNo); status != kSlSuccess)
        return status;
    request.param.bytes[0] = mode;
    return sendRequest(caller, request, contNo);
}

} // namespace

std::uint32_t setPdReference(Caller caller, SL_LIB_CMD_PARAM_T& request, unsigned char contNo, unsigned char slotNo) {
    std::uint16_t deviceId = 0;
    if (const std::uint32_t status = SLGetDeviceId(contNo, slotNo, &deviceId); status != kSlSuccess)
        return failedBeforeSend(caller, status);
    request.ref.pdRef.deviceId = deviceId;
    return kSlSuccess;
}

std::uint32_t setPdReferenceWithSequence(Caller caller, SL_LIB_CMD_PARAM_T& request, unsigned char contNo,
                                         unsigned char slotNo) {
    if (const std::uint32_t status = setPdReference(caller, request, contNo, slotNo); status != kSlSuccess)
        return status;
    std::uint16_t seqNo = 0;
    if (const std::uint32_t status = SLGetPDSequenceNumber(contNo, request.ref.pdRef.deviceId, &seqNo);
        status != kSlSuccess)
        return failedBeforeSend(caller, status);
    request.ref.pdRef.seqNo = seqNo;
    return kSlSuccess;
}

std::uint32_t changePd(Caller caller, unsigned char contNo, Command command, unsigned char slotNo, Trace trace) {
    SL_LIB_CMD_PARAM_T request = makeRequest(command, contNo);
    if (const std::uint32_t status = setPdReferenceWithSequence(caller, request, contNo, slotNo); status != kSlSuccess)
        return status;
    return sendRequest(caller, request, contNo, trace);
}

int PDSortFunc(const void* a, const void* b) {
    return static_cast<const _MR_PD_ADDRESS*>(a)->slotNo - static_cast<const _MR_PD_ADDRESS*>(b)->slotNo;
}

std::uint32_t SLGetPDList(unsigned char contNo, _MR_PD_LIST* list) {
    const std::uint32_t status = query(__func__, contNo, {0x01, 0x04}, list);
    if (status == kSlSuccess) {
        const auto all = entriesOf(*list);
        // Every lookup reads the list afresh, and it mostly comes in order.
        const auto before = [](const _MR_PD_ADDRESS& a, const _MR_PD_ADDRESS& b) { return a.slotNo < b.slotNo; };
        if (!std::is_sorted(all.begin(), all.end(), before))
            std::qsort(all.data(), all.size(), sizeof(_MR_PD_ADDRESS), PDSortFunc);
    }
    return status;
}

std::uint32_t SLGetDeviceId(unsigned char contNo, unsigned char slotNo, std::uint16_t* deviceId) {
    return findDisk(__func__, contNo, "slotNo", slotNo, [&](const _MR_PD_ADDRESS& address) {
        if (address.slotNo != slotNo)
            return false;
        *deviceId = address.deviceId;
        return true;
    });
}

std::uint32_t SLGetSlotNo(unsigned char contNo, std::uint16_t deviceId, unsigned char* slotNo) {
    return findDisk(__func__, contNo, "deviceId", deviceId, [&](const _MR_PD_ADDRESS& address) {
        if (address.deviceId != deviceId)
            return false;
        *slotNo = address.slotNo;
        return true;
    });
}

std::uint32_t SLGetPDInfo(unsigned char contNo, unsigned char slotNo, _MR_PD_INFO* info) {
    *info = _MR_PD_INFO{};
    return queryPd(__func__, contNo, kGetPdInfo, slotNo, info);
}

std::uint32_t SLGetPDInfoByDevice(unsigned char contNo, std::uint16_t deviceId, _MR_PD_INFO* info) {
    *info = _MR_PD_INFO{};
    SL_LIB_CMD_PARAM_T request = makeRequest(kGetPdInfo, contNo);
    request.ref.pdRef.deviceId = deviceId;
    attachData(request, info, sizeof *info);
    return sendRequest(__func__, request, contNo);
}

std::uint32_t SLGetPdProggress(unsigned char contNo, unsigned char slotNo, _MR_PD_PROGRESS* progress) {
    return queryPd(__func__, contNo, {0x02, 0x07}, slotNo, progress);
}

std::uint32_t SLGetPDAllowedOperation(unsigned char contNo, unsigned char slotNo, _MR_PD_ALLOWED_OPS* allowed) {
    return queryPd(__func__, contNo, {0x02, 0x14}, slotNo, allowed);
}

std::uint32_t SLGetPDSequenceNumber(unsigned char contNo, std::uint16_t deviceId, std::uint16_t* seqNo) {
    unsigned char slotNo = 0;
    if (const std::uint32_t status = SLGetSlotNo(contNo, deviceId, &slotNo); status != kSlSuccess)
        return failedBeforeSend(__func__, status);
    _MR_PD_INFO info{};
    if (const std::uint32_t status = SLGetPDInfo(contNo, slotNo, &info); status != kSlSuccess)
        return failedBeforeSend(__func__, status);
    *seqNo = info.ref.seqNo;
    return kSlSuccess;
}

std::uint32_t SLMakeDriveOnline(unsigned char contNo, unsigned char slotNo) {
    return changePd(__func__, contNo, {0x02, 0x01}, slotNo);
}

std::uint32_t SLMakeDriveOffline(unsigned char contNo, unsigned char slotNo) {
    return changePd(__func__, contNo, {0x02, 0x02}, slotNo);
}

std::uint32_t SLStartRebuild(unsigned char contNo, unsigned char slotNo) {
    return changePd(__func__, contNo, {0x02, 0x05}, slotNo);
}

std::uint32_t SLCancelRebuild(unsigned char contNo, unsigned char slotNo) {
    return changePd(__func__, contNo, {0x02, 0x06}, slotNo);
}

std::uint32_t SLStartLocatePD(unsigned char contNo, unsigned char slotNo, unsigned char mode) {
    return locatePd(__func__, contNo, {0x02, 0x08}, slotNo, mode);
}

std::uint32_t SLStopLocatePD(unsigned char contNo, unsigned char slotNo) {
    return locatePd(__func__, contNo, {0x02, 0x09}, slotNo, 0);
}

std::uint32_t SLMakeDriveUnconfGood(unsigned char contNo, unsigned char slotNo) {
    Utillogging(kStoreLibSource, __LINE__, kTracePlain, "func=%s: contNo=%u, pdNo=%u", __func__, contNo, slotNo);
    return changePd(__func__, contNo, {0x02, 0x13}, slotNo, Trace::Always);
}
