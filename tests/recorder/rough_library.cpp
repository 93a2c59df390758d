// A library that misbehaves at the request for the PD list, in the way that ZEB_ROUGH says.
#include "storelib/records/request.h"

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <unistd.h>

extern "C" __attribute__((visibility("default"))) unsigned ProcessLibCommand(_SL_LIB_CMD_PARAM_T* request);

unsigned ProcessLibCommand(_SL_LIB_CMD_PARAM_T* request) {
    const char* how = std::getenv("ZEB_ROUGH");
    const std::string_view manner = how != nullptr ? how : "";
    const auto code = std::uint32_t{request->cmdType} << 8U | request->cmd;
    constexpr std::uint32_t kInitialise = 0x0000;
    constexpr std::uint32_t kPdList = 0x0104;
    if (code == kInitialise)
        static_cast<_SL_CTRL_LIST_T*>(request->data)->count = 1;
    if (code != kPdList)
        return 0;
    if (manner == "crash")
        std::raise(SIGSEGV);
    if (manner == "hang") {
        constexpr std::string_view kAnnouncement = "the library hangs\n";
        (void)!::write(STDOUT_FILENO, kAnnouncement.data(), kAnnouncement.size());
        for (;;)
            ::pause();
    }
    if (manner == "nonsense")
        std::memset(request->data, 0xFF, request->dataSize);
    if (manner == "past")
        std::memset(static_cast<char*>(request->data) + request->dataSize, 0xEE, 100);
    return 0;
}
