#include "storelib/common/StoreLib/request_path.h"

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

std::uint32_t command(Caller caller, unsigned char contNo, Command command) {
    SL_LIB_CMD_PARAM_T request = makeRequest(command, contNo);
    return sendRequest(caller, request, contNo);
}
