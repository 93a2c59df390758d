// Defaults and capacity of planned LDs.
#include "commands/zebcli_cmd_ld/creation/construction.h"

#include "commands/zebcli_cmd_ld/ld_targets.h"
#include "commands/zebcli_cmd_ld/setting_tables.h"
#include "main/zebcli_cmd_com/base/string_shims.h"
#include "main/zebcli_cmd_com/base/trace.h"
#include "storelib/common/StoreLib/physical_drive.h"
#include "storelib/records/status.h"

#include <algorithm>

namespace {

constexpr std::uint8_t kDefaultStripeSize = 7;

/// The coerced size that the library tells of a drive; false, and a trace, when it does not.
bool askPdSize(const char* func, unsigned char contNo, unsigned char slotNo, std::uint64_t& size) {
    _MR_PD_INFO info{};
    if (!succeeded(SLGetPDInfo(contNo, slotNo, &info), {kLdSource, func}, "SLGetPDInfo error", onPd(contNo, slotNo)))
        return false;
    size = info.coercedSize;
    return true;
}

void setDefaults(PlannedArray& array, std::uint8_t cachePolicy, std::uint8_t initType) {
    array.accessPolicy = kReadWrite;
    array.diskCachePolicy = kDiskCacheDisabled;
    array.defaultCachePolicy = cachePolicy;
    array.stripeSize = kDefaultStripeSize;
    for (PlannedLd& ld : ldsOf(array)) {
        std::ranges::fill(ld.name, '\0'); // all of it goes to the controller
        wsprintf(ld.name, "LD_%u", ld.ldNo);
        ld.initType = initType;
    }
}

} // namespace

int CreateLDDefaultSet(_SL_CREATE_LD_INFO_T& plan, const _AFCONT* conts, unsigned char contNo, std::uint8_t initType) {
    const std::uint8_t cachePolicy = IsCacheBkupPresent(conts, contNo) != 0 ? kWriteBack : kWriteThrough;
    for (PlannedArray& array : groupsOf(plan)) {
        setDefaults(array, cachePolicy, initType);
        SmallestSize smallest;
        for (const std::uint8_t slotNo : slotsOf(array))
            if (std::uint64_t size = 0; askPdSize(__func__, contNo, slotNo, size))
                smallest.add(size);
        if (!knownLevel(__func__, array.level, contNo, __LINE__))
            return 0;
        const std::uint64_t capacity = CalcLDCapa(array.level, array.pdCount, smallest.value(), contNo);
        for (PlannedLd& ld : ldsOf(array))
            ld.size = capacity / array.ldCount;
    }
    return 0;
}

int ConfirmDiffPDSize(const _SL_CREATE_LD_INFO_T& plan, unsigned char contNo) {
    for (const PlannedArray& array : groupsOf(plan)) {
        bool any = false;
        std::uint64_t first = 0;
        for (const std::uint8_t slotNo : slotsOf(array)) {
            std::uint64_t size = 0;
            if (!askPdSize(__func__, contNo, slotNo, size))
                continue;
            if (any && size != first)
                return 1;
            if (!any)
                first = size;
            any = true;
        }
    }
    return 0;
}

std::uint64_t smallestSize(Controller ctrl, const PlannedArray& group) {
    SmallestSize smallest;
    for (const std::uint8_t slotNo : slotsOf(group))
        smallest.add(ctrl.pd(slotNo).coercedSize);
    return smallest.value();
}

std::uint64_t CalcRAIDCapa(const PlannedArray& array, const _AFCONT* conts, unsigned char contNo) {
    return CalcLDCapa(array.level, array.pdCount, smallestSize({contNo, conts}, array), contNo);
}

void SetLDCapacityText(char (&text)[32], ZEB_RAID_LVL level, bool keepSpare, unsigned spareIndex, const _AFCONT* conts,
                       unsigned char contNo) {
    const unsigned available = std::min(unconfiguredPds, kMaxSlots);
    const unsigned wanted =
        std::min(available - (keepSpare && available > 0 ? 1 : 0), GetMaxPdNumForRaidLvl(level, conts, contNo));
    SmallestSize smallest;
    unsigned counted = 0;
    for (unsigned i = 0; i < available && counted < wanted; ++i) {
        if (keepSpare && i == spareIndex)
            continue;
        smallest.add(conts[contNo].pdInfo[unconfiguredPdList[i]].coercedSize);
        ++counted;
    }
    wsprintf(text, "%s",
             gbText(CalcLDCapa(level, static_cast<unsigned short>(wanted), smallest.value(), contNo)).c_str());
}

void ShowLDCapacity(char (*texts)[kCapacityTextSize], const _SL_CREATE_LD_INFO_T& plan, const _AFCONT* conts,
                    unsigned char contNo) {
    for (const PlannedArray& array : groupsOf(plan))
        wsprintf(*texts++, "%s", gbText(CalcRAIDCapa(array, conts, contNo)).c_str());
}

std::uint64_t GetLDSize(const _MR_LD_CONFIG* ld, unsigned char contNo) {
    for (const _MR_SPAN& span : spansOf(*ld))
        if (span.numBlocks != 0)
            return CalcLDCapa(SLTransLateRAIDLvl(ld), driveCountOf(*ld), span.numBlocks, contNo);
    return 0;
}
