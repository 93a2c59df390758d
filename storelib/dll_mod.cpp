#include "storelib/dll_mod.h"

#include "log/zebcli_log.h"
#include "storelib/records/views.h"
#include "storelib/status_text.h"

#include <cerrno>
#include <dlfcn.h>
#include <iterator>

bool libMRPresent = false;
bool libIRPresent = false;
bool libIR2Present = false;
ProcessLibCommandFn pfnProcessLibCommandMR = nullptr;
ProcessLibCommandFn pfnProcessLibCommandIR = nullptr;
ProcessLibCommandFn pfnProcessLibCommandIR2 = nullptr;
_SL_CTRL_LIST_T gCtrlListMR{};
_SL_CTRL_LIST_T gCtrlListIR{};
_SL_CTRL_LIST_T gCtrlListIR2{};
_SL_CTRL_LIST_T ctrlList{};
MemAllocFailedFn pfnMemAllocFailed = nullptr;

namespace {

constexpr char kSource[] = "dll_mod";
constexpr char kLibraryName[] = "libstorelib.so";
constexpr char kEntryName[] = "ProcessLibCommand";

// dlopen handles of the three slots; the last two are never loaded.
void* dllInstanceMR = nullptr;
[[maybe_unused]] void* dllInstanceIR = nullptr;
[[maybe_unused]] void* dllInstanceIR2 = nullptr;

constexpr std::uint8_t kTypeLibrary = 0x00;
constexpr std::uint8_t kCmdInitialize = 0x00;
constexpr std::uint8_t kCmdExit = 0x09;

enum LibraryKind : std::uint8_t { kKindMR = 0, kKindIR = 1, kKindIR2 = 2 };

std::uint32_t controllerKey(std::uint32_t entry) {
    return entry & 0x00FFFFFFU;
}

/// Loads the MR slot. Returns 0x8002 when the library lacks its entry point, which leaves the slot present on purpose:
/// the handle is open and is closed at exit.
std::uint32_t loadMR() {
    dllInstanceMR = dlopen(kLibraryName, RTLD_LAZY);
    if (dllInstanceMR == nullptr) {
        const char* reason = dlerror();
        Utillogging(kSource, __LINE__, kTraceError, "dlerror = %s", reason != nullptr ? reason : "");
        return kSlSuccess;
    }
    libMRPresent = true;
    pfnProcessLibCommandMR = reinterpret_cast<ProcessLibCommandFn>(dlsym(dllInstanceMR, kEntryName));
    if (pfnProcessLibCommandMR == nullptr) {
        const int reason = errno;
        Utillogging(kSource, __LINE__, kTraceError, "%s - error code - 0x%08X",
                    "Unable to get Entry Point address-ProcessLibCommand().", static_cast<unsigned>(reason));
        return kSlInitFailed;
    }
    return kSlSuccess;
}

std::uint32_t callLibrary(const char* func, int line, ProcessLibCommandFn entry, _SL_LIB_CMD_PARAM_T& request) {
    const std::uint32_t status = entry(&request);
    if (status != kSlSuccess)
        SLLogging(kSource, line, func, status, &request);
    return status;
}

} // namespace

std::uint32_t SLInitLib(MemAllocFailedFn callback) {
    pfnMemAllocFailed = callback;
    gCtrlListMR = gCtrlListIR = gCtrlListIR2 = _SL_CTRL_LIST_T{};
    if (const std::uint32_t status = loadMR(); status != kSlSuccess)
        return status;
    if (!libMRPresent && !libIRPresent && !libIR2Present) {
        Utillogging(kSource, __LINE__, kTraceError, "No library could be loaded. Exiting");
        return kSlInitFailed;
    }
    const std::uint32_t status = InitializeLibrary(&gCtrlListMR, pfnProcessLibCommandMR);
    if (status != kSlSuccess) {
        Utillogging(kSource, __LINE__, kTraceError, "InitLib failed for MegaRAID SAS Controller!! rval 0x%X", status);
        Utillogging(kSource, __LINE__, kTraceError, "InitLib failed for All library.");
        return status;
    }
    mergeControllerLists();
    return kSlSuccess;
}

std::uint32_t SLExitLib() {
    unloadDLL(kAllSlots);
    return kSlSuccess;
}

void unloadDLL(int which) {
    if (!libMRPresent || (which != kSlotMR && which != kAllSlots))
        return;
    if (pfnProcessLibCommandMR != nullptr) {
        const std::uint32_t status = UnInitializeLibrary(pfnProcessLibCommandMR);
        if (status != kSlSuccess)
            Utillogging(kSource, __LINE__, kTraceError, "ExitLib failed for MegaRAID SAS Controller!! rval 0x%X\n",
                        status);
    }
    if (dllInstanceMR != nullptr)
        dlclose(dllInstanceMR);
    dllInstanceMR = nullptr;
    pfnProcessLibCommandMR = nullptr;
    libMRPresent = false;
}

std::uint32_t InitializeLibrary(_SL_CTRL_LIST_T* list, ProcessLibCommandFn entry) {
    *list = _SL_CTRL_LIST_T{};
    _SL_LIB_CMD_PARAM_T request{};
    request.cmdType = kTypeLibrary;
    request.cmd = kCmdInitialize;
    request.dataSize = sizeof *list;
    request.data = list;
    return callLibrary(__func__, __LINE__, entry, request);
}

std::uint32_t UnInitializeLibrary(ProcessLibCommandFn entry) {
    _SL_LIB_CMD_PARAM_T request{};
    request.cmdType = kTypeLibrary;
    request.cmd = kCmdExit;
    return callLibrary(__func__, __LINE__, entry, request);
}

void mergeControllerLists() {
    ctrlList = _SL_CTRL_LIST_T{};
    ctrlList.count = static_cast<std::uint16_t>(gCtrlListMR.count + gCtrlListIR.count + gCtrlListIR2.count);
    ctrlList.flags = static_cast<std::uint8_t>(gCtrlListMR.flags | gCtrlListIR.flags | gCtrlListIR2.flags);
    // The IR list is counted but not copied; harmless, as its slot is never loaded.
    unsigned filled = 0;
    for (const _SL_CTRL_LIST_T* list : {&gCtrlListMR, &gCtrlListIR2})
        for (const std::uint32_t entry : controllersOf(*list))
            if (filled < std::size(ctrlList.ctrl))
                ctrlList.ctrl[filled++] = entry;

    const std::size_t count = controllersOf(ctrlList).size();
    for (std::size_t i = 0; i + 1 < count; ++i)
        for (std::size_t j = count - 1; j > i; --j)
            if (controllerKey(ctrlList.ctrl[j - 1]) > controllerKey(ctrlList.ctrl[j])) {
                const std::uint32_t larger = ctrlList.ctrl[j - 1];
                ctrlList.ctrl[j - 1] = ctrlList.ctrl[j];
                ctrlList.ctrl[j] = larger;
            }
}

std::uint32_t SLGetCtrlList(_SL_CTRL_LIST_T* list) {
    *list = ctrlList;
    return kSlSuccess;
}

std::uint32_t ProcessLibCommandCall(_SL_LIB_CMD_PARAM_T* request, unsigned char contNo) {
    if (contNo >= kMaxListedControllers)
        return kSlInvalidInput;
    ProcessLibCommandFn entry = nullptr;
    switch (ctrlList.ctrl[contNo] >> 24U) {
    case kKindMR:
        entry = libMRPresent ? pfnProcessLibCommandMR : nullptr;
        break;
    case kKindIR:
        entry = libIRPresent ? pfnProcessLibCommandIR : nullptr;
        break;
    case kKindIR2:
        entry = libIR2Present ? pfnProcessLibCommandIR2 : nullptr;
        break;
    default:
        break;
    }
    return entry != nullptr ? entry(request) : kSlInvalidInput;
}

int SLLogging(const char* label, int line, const char* func, std::uint32_t status, const _SL_LIB_CMD_PARAM_T* request) {
    if (request != nullptr)
        Utillogging_dmp(label, line, kTracePlain, request, sizeof *request, "func=%s: CmdParam >", func);
    return Utillogging(label, line, status != kSlSuccess ? kTraceError : kTracePlain, "func=%s: %s (rval = 0x%08X)",
                       func, SLStrError(status), status);
}

int SLLoggingPassThru(const char* label, int line, const char* func, std::uint32_t status,
                      const _SL_DCMD_INPUT_T* input) {
    if (input != nullptr)
        Utillogging_dmp(label, line, kTracePlain, input, sizeof *input, "func=%s: DcmdInput >", func);
    return Utillogging(label, line, status != kSlSuccess ? kTraceError : kTracePlain, "func=%s: %s (rval = 0x%08X)",
                       func, SLStrError(status), status);
}
