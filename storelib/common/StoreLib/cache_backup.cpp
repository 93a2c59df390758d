#include "storelib/common/StoreLib/cache_backup.h"

#include "storelib/common/StoreLib/request_path.h"

std::uint32_t SLGetCacheBkupStatus(unsigned char contNo, _MR_BBU_STATUS* status) {
    return query(__func__, contNo, {0x05, 0x00}, status);
}

std::uint32_t SLGetCacheBkupCapacityInfo(unsigned char contNo, _MR_BBU_CAPACITY_INFO* info) {
    return query(__func__, contNo, {0x05, 0x01}, info);
}

std::uint32_t SLGetCacheBkupDesignInfo(unsigned char contNo, _MR_BBU_DESIGN_INFO* info) {
    return query(__func__, contNo, {0x05, 0x02}, info);
}

std::uint32_t SLLearnCacheBkup(unsigned char contNo) {
    return command(__func__, contNo, {0x05, 0x03});
}

std::uint32_t SLGetCacheBkupProperties(unsigned char contNo, _MR_BBU_PROPERTIES* properties) {
    return query(__func__, contNo, {0x05, 0x04}, properties);
}
