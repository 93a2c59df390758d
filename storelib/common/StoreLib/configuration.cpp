#include "storelib/common/StoreLib/configuration.h"

#include "storelib/common/StoreLib/request_path.h"
#include "storelib/records/views.h"

#include <cstdlib>
#include <cstring>

namespace {

constexpr std::uint32_t kNoReference = 0;
constexpr Command kReadConfig{0x04, 0x00};
constexpr Command kReadForeignConfig{0x04, 0x05};

std::uint32_t readConfig(Caller caller, unsigned char contNo, Command command, std::uint32_t reference,
                         _MR_CONFIG_DATA* config, std::uint32_t size) {
    SL_LIB_CMD_PARAM_T request = makeRequest(command, contNo);
    request.ref.all = reference;
    attachData(request, config, size);
    const std::uint32_t status = sendRequest(caller, request, contNo);
    if (status == kSlSuccess) {
        if (const auto lds = ldsOf(config, size); !lds.empty())
            std::qsort(lds.data(), lds.size(), sizeof(_MR_LD_CONFIG), LDSortFuncForConfig);
    }
    return status;
}

/// The first word of a configuration is its full size, whatever the size of the block that it is read into.
std::uint32_t readConfigSize(Caller caller, unsigned char contNo, Command command, std::uint32_t reference,
                             unsigned int* size) {
    *size = 0;
    const auto config = allocateRecord<_MR_CONFIG_DATA>(kSmallestConfigSize - sizeof(_MR_CONFIG_DATA));
    if (!config)
        return kSlMemoryAllocFailed;
    SL_LIB_CMD_PARAM_T request = makeRequest(command, contNo);
    request.ref.all = reference;
    attachData(request, config.get(), kSmallestConfigSize);
    const std::uint32_t status = sendRequest(caller, request, contNo);
    if (status == kSlSuccess)
        *size = config->size;
    return status;
}

} // namespace

int LDSortFuncForConfig(const void* a, const void* b) {
    return static_cast<const _MR_LD_CONFIG*>(a)->properties.ref.targetId -
           static_cast<const _MR_LD_CONFIG*>(b)->properties.ref.targetId;
}

std::uint32_t SLGetConfigSize(unsigned char contNo, unsigned int* size) {
    return readConfigSize(__func__, contNo, kReadConfig, kNoReference, size);
}

std::uint32_t SLReadConfig(unsigned char contNo, _MR_CONFIG_DATA* config, std::uint32_t size) {
    std::memset(static_cast<void*>(config), 0, size);
    return readConfig(__func__, contNo, kReadConfig, kNoReference, config, size);
}

std::uint32_t SLGetArrayInfo(unsigned char contNo, std::uint16_t arrayId, _SL_ARRAY_INFO_T* info) {
    SL_LIB_CMD_PARAM_T request = makeRequest({0x04, 0x08}, contNo);
    request.ref.arrayId = arrayId;
    attachData(request, info, sizeof *info);
    return sendRequest(__func__, request, contNo);
}

std::uint32_t SLScanForForeignConfig(unsigned char contNo, _MR_FOREIGN_CFG_GUIDS* guids) {
    return query(__func__, contNo, {0x04, 0x03}, guids);
}

std::uint32_t SLGetForeignConfigSize(unsigned char contNo, unsigned int* size) {
    return readConfigSize(__func__, contNo, kReadForeignConfig, kAllForeignConfigs, size);
}

std::uint32_t SLReadConfigAfterImport(unsigned char contNo, _MR_CONFIG_DATA* config, std::uint32_t size) {
    return readConfig(__func__, contNo, kReadForeignConfig, kAllForeignConfigs, config, size);
}

std::uint32_t SLImportForeignConfig(unsigned char contNo) {
    SL_LIB_CMD_PARAM_T request = makeRequest({0x04, 0x06}, contNo);
    request.ref.all = kAllForeignConfigs;
    return sendRequest(__func__, request, contNo);
}

std::uint32_t SLClearForeignConfig(unsigned char contNo) {
    SL_LIB_CMD_PARAM_T request = makeRequest({0x04, 0x07}, contNo);
    request.ref.all = kAllForeignConfigs;
    return sendRequest(__func__, request, contNo);
}
