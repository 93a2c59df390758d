// Libraries that a start-up must survive. With HOSTILE_NO_ENTRY the entry point has another name. Otherwise initialise
// answers the status of ZEB_HOSTILE_STATUS and, when that is 0, lists as many controllers as ZEB_HOSTILE_COUNT says.
// Every other request fills its data with the byte of ZEB_HOSTILE_FILL and succeeds.
#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "storelib/records/request.h"

#ifdef HOSTILE_NO_ENTRY
#define ENTRY_POINT AnotherCommand
#else
#define ENTRY_POINT ProcessLibCommand
#endif

namespace {

unsigned long setting(const char* name) {
    const char* text = std::getenv(name);
    return text == nullptr ? 0 : std::strtoul(text, nullptr, 0);
}

std::uint32_t initialise(const _SL_LIB_CMD_PARAM_T& request) {
    auto* list = static_cast<_SL_CTRL_LIST_T*>(request.data);
    list->count = static_cast<std::uint16_t>(setting("ZEB_HOSTILE_COUNT"));
    for (std::uint32_t i = 0; i < std::min<std::uint32_t>(list->count, 16); ++i) {
        list->ctrl[i] = i;
    }
    return static_cast<std::uint32_t>(setting("ZEB_HOSTILE_STATUS"));
}

void fill(void* data, std::uint32_t size) {
    if (data != nullptr) {
        std::memset(data, static_cast<int>(setting("ZEB_HOSTILE_FILL") & 0xFF), size);
    }
}

} // namespace

extern "C" __attribute__((visibility("default"))) std::uint32_t ENTRY_POINT(_SL_LIB_CMD_PARAM_T* request);

std::uint32_t ENTRY_POINT(_SL_LIB_CMD_PARAM_T* request) {
    if (request->cmdType == 0 && request->cmd == 0) {
        return initialise(*request);
    }
    if (request->cmdType == 6 && request->cmd == 3) {
        _SL_DCMD_INPUT_T input;
        std::memcpy(&input, request->data, sizeof input);
        fill(input.data, input.dataSize);
    } else {
        fill(request->data, request->dataSize);
    }
    return 0;
}
