#include "main/zebcli_cmd_com/model/lookup.h"

#include <algorithm>

namespace {

constexpr unsigned kMediaMask = 0x0F;

/// The information of the drive that the given one copies back with, null when there is none.
const _MR_PD_INFO* copybackPartner(Controller ctrl, unsigned char slotNo) {
    const std::uint16_t deviceId = ctrl.pd(slotNo).copybackPartner;
    unsigned char partnerSlot = 0;
    if (deviceId == kNoDevice || GetSlotNo(ctrl.contNo, deviceId, &partnerSlot, ctrl.conts) == 0)
        return nullptr;
    return &ctrl.cont().pdInfo[partnerSlot];
}

} // namespace

int GetSlotNo(unsigned char contNo, unsigned short deviceId, unsigned char* slotNo, const _AFCONT* conts) {
    const auto addresses = pdAddresses(conts[contNo]);
    const auto last = std::find_if(addresses.rbegin(), addresses.rend(), [&](const _MR_PD_ADDRESS& address) {
        return address.scsiDevType == kScsiDisk && address.deviceId == deviceId;
    });
    if (last == addresses.rend())
        return 0;
    *slotNo = last->slotNo;
    return 1;
}

int GetDeviceId(unsigned char contNo, const _AFCONT* conts, unsigned char slotNo, unsigned short* deviceId) {
    for (const _MR_PD_ADDRESS& address : pdAddresses(conts[contNo])) {
        if (address.scsiDevType != kScsiDisk || address.slotNo != slotNo)
            continue;
        *deviceId = address.deviceId;
        return 1;
    }
    return 0;
}

int IsExistPD(unsigned char contNo, unsigned char slotNo, const _AFCONT* conts) {
    unsigned short deviceId = 0;
    return GetDeviceId(contNo, conts, slotNo, &deviceId);
}

int IsExistLD(unsigned char contNo, unsigned char ldNo, const _AFCONT* conts) {
    const auto entries = ldEntries(conts[contNo]);
    return std::any_of(entries.begin(), entries.end(),
                       [&](const _MR_LD_LIST_ENTRY& entry) { return entry.targetId == ldNo; })
               ? 1
               : 0;
}

void GetDeviceFoundList(unsigned char contNo, const _AFCONT* conts, std::array<unsigned char, kMaxSlots>& map) {
    map.fill(0);
    for (const _MR_PD_ADDRESS& address : pdAddresses(conts[contNo]))
        if (address.scsiDevType == kScsiDisk)
            map[address.slotNo] = 1;
}

void GetPDInLD(unsigned char contNo, unsigned char ldNo, std::array<unsigned char, kMaxSlots>& slots, unsigned* count,
               const _AFCONT* conts) {
    *count = 0;
    if (ldNo >= kMaxLds)
        return;
    const _MR_LD_CONFIG& ld = conts[contNo].ldInfo[ldNo].config;
    for (const _MR_SPAN& span : spansOf(ld))
        for (const _MR_ARRAY& array : arraysOf(conts[contNo])) {
            if (array.arrayRef != span.arrayRef)
                continue;
            for (const _MR_ARRAY_PD& drive : drivesOf(array))
                if (drive.ref.deviceId != kNoDevice && *count < slots.size() &&
                    GetSlotNo(contNo, drive.ref.deviceId, &slots[*count], conts) != 0)
                    ++*count;
        }
}

PdsInLd pdsInLd(Controller ctrl, unsigned char ldNo) {
    PdsInLd pds{};
    GetPDInLD(ctrl.contNo, ldNo, pds.slots, &pds.count, ctrl.conts);
    return pds;
}

int CheckLDActive(unsigned char contNo, unsigned char ldNo, const _AFCONT* conts) {
    if (ldNo >= kMaxLds)
        return kLdIdle;
    const std::uint32_t active = conts[contNo].ldInfo[ldNo].progress.active;
    if ((active & kLdProgInit) != 0)
        return kLdInitializing;
    if ((active & kLdProgCheck) != 0)
        return kLdChecking;
    const PdsInLd pds = pdsInLd({contNo, conts}, ldNo);
    for (const unsigned char slotNo : pds.list()) {
        if (conts[contNo].pdInfo[slotNo].fwState == kPdRebuild)
            return kLdRebuilding;
        if (HddIsDuringCopyBack(contNo, slotNo, conts) != 0)
            return kLdCopyingBack;
    }
    return kLdIdle;
}

int HddIsDuringCopyBack(unsigned char contNo, unsigned char slotNo, const _AFCONT* conts) {
    const _MR_PD_INFO* partner = copybackPartner({contNo, conts}, slotNo);
    return partner != nullptr && partner->fwState == kPdCopyback ? 1 : 0;
}

unsigned interfaceOf(const _MR_PD_INFO& pd) {
    return static_cast<unsigned>(pd.ddfType) >> kDdfInterfaceShift;
}

unsigned mediaOf(const _MR_PD_INFO& pd) {
    return pd.mediaType & kMediaMask;
}

int IsCacheBkupPresent(const _AFCONT* conts, unsigned char contNo) {
    return (conts[contNo].ctrlInfo.hwPresent & kHwCacheBackup) != 0 ? 1 : 0;
}

unsigned IsEnablePF(unsigned char contNo, const _AFCONT* conts) {
    const _MR_CTRL_INFO& info = conts[contNo].ctrlInfo;
    unsigned mask = 0;
    if ((info.adapterOperations & kAdapterOpSnapshot) != 0)
        mask |= kOptionSnapshot;
    if (info.cacheCadeCapacity != 0)
        mask |= kOptionCacheCade;
    if ((info.ldOperations & kLdOpFastPath) != 0)
        mask |= kOptionFastPath;
    return mask;
}

unsigned GePdSizeList(std::span<std::uint64_t> sizes, const _AFCONT* conts, unsigned char contNo,
                      const _PD_CANDIDATES_T& candidates) {
    const auto count = static_cast<unsigned>(
        std::min({static_cast<std::size_t>(candidates.count), std::size(candidates.slotNo), sizes.size()}));
    for (unsigned i = 0; i < count; ++i)
        sizes[i] = conts[contNo].pdInfo[candidates.slotNo[i]].coercedSize;
    return count;
}
