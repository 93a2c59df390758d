#include "main/zebcli_cmd_com/model/live_questions.h"

#include "main/zebcli_cmd_com/base/source.h"
#include "main/zebcli_cmd_com/base/trace.h"
#include "storelib/common/StoreLib/controller.h"

#include <cstring>
#include <string_view>

int IsOSInstallLD(unsigned char contNo, unsigned char ldNo, const _AFCONT* /*conts*/) {
    _SL_PARTITION_INFO_T partition{};
    return succeeded(SLGetLDPartition(contNo, ldNo, &partition), {kComSource, __func__}, "SLGetLDPartition error",
                     onLd(contNo, ldNo)) &&
                   partition.osInstalled != 0
               ? 1
               : 0;
}

int IsSoftwareRAID() {
    static constexpr std::string_view kWithItsEnd{kSoftwareRaidProduct, sizeof kSoftwareRaidProduct};
    _MR_CTRL_INFO info{};
    if (!succeeded(SLGetCtrlInfo(0, &info), {kComSource, __func__}, "SLGetCtrlInfo error", onController(0)))
        return 0;
    // As many characters are compared as the product name has, so that a shorter beginning of the name, and no name at
    // all, count as equal.
    const std::string_view product(info.productName, strnlen(info.productName, sizeof info.productName));
    const std::string_view compared = product.substr(0, kWithItsEnd.size());
    return kWithItsEnd.starts_with(compared) ? 1 : 0;
}
