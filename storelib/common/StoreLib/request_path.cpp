#include "storelib/common/StoreLib/request_path.h"

#include "storelib/common/StoreLib/physical_drive.h"

SL_LIB_CMD_PARAM_T makeRequest(Command command, unsigned char contNo) {
    SL_LIB_CMD_PARAM_T request{};
    request.cmdType = command.type;
    request.cmd = command.cmd;
    if (contNo < kMaxListedControllers)
        request.ctrlId = ctrlList.ctrl[contNo];
    return request;
}

void attachData(SL_LIB_CMD_PARAM_T& request, void* data, std::uint32_t size) {
    request.dataSize = size;
    request.data = data;
}

std::uint32_t sendRequest(Caller caller, SL_LIB_CMD_PARAM_T& request, unsigned char contNo, Trace trace) {
    const std::uint32_t status = ProcessLibCommandCall(&request, contNo);
    if (status != kSlSuccess || trace == Trace::Always)
        SLLogging(kStoreLibSource, caller.line, caller.func, status, &request);
    return status;
}

std::uint32_t failedBeforeSend(Caller caller, std::uint32_t status) {
    SLLogging(kStoreLibSource, caller.line, caller.func, status, nullptr);
    return status;
}

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

std::uint32_t command(Caller caller, unsigned char contNo, Command command) {
    SL_LIB_CMD_PARAM_T request = makeRequest(command, contNo);
    return sendRequest(caller, request, contNo);
}
