#include "main/zebcli_cmd_com/model/raid_groups.h"

#include "main/zebcli_cmd_com/base/string_shims.h"
#include "main/zebcli_cmd_com/model/lookup.h"
#include "main/zebcli_cmd_com/model/snapshot.h"

#include <algorithm>
#include <array>

namespace {

constexpr char kNone[] = "-";
constexpr unsigned kRgNameSize = 16;

static_assert(sizeof(ZEB_TRANS_RG_NO_LIST_T::entry) / sizeof(ZEB_TRANS_RG_NO_LIST_T::Entry) == kMaxArrays);

std::span<const _MR_SPAN> spansOf(const _MR_LD_CONFIG& ld) {
    return {ld.span, std::min<std::size_t>(ld.spanDepth, kMaxSpans)};
}

const _MR_SPARE* spareOf(const _AFCONT& cont, std::uint16_t deviceId) {
    const auto spares = sparesOf(cont);
    const auto found = std::find_if(spares.begin(), spares.end(),
                                    [&](const _MR_SPARE& spare) { return spare.ref.deviceId == deviceId; });
    return found != spares.end() ? &*found : nullptr;
}

/// The groups that a spare serves, each once, in the spare's order.
void mkServedGroupsStr(Controller ctrl, const _MR_SPARE& spare, std::span<char> out) {
    std::array<std::array<bool, kMaxArrays>, 2> named{}; // CacheCade groups are counted apart
    for (unsigned i = 0; i < std::min<std::size_t>(spare.arrayCount, std::size(spare.arrayRef)); ++i) {
        const std::uint16_t arrayRef = spare.arrayRef[i];
        if (arrayRef >= kMaxArrays || ctrl.cont().rgNoList.entry[arrayRef].known == 0)
            continue;
        const auto& group = ctrl.cont().rgNoList.entry[arrayRef];
        bool& alreadyNamed = named[group.cacheCade != 0 ? 1 : 0][group.groupNo % kMaxArrays];
        if (alreadyNamed)
            continue;
        alreadyNamed = true;
        char name[kRgNameSize];
        mkRaidGroupArrayStr(ctrl.contNo, ctrl.conts, arrayRef, name);
        strcat_s(out.data(), out.size(), out.front() == '\0' ? "" : ", ");
        strcat_s(out.data(), out.size(), name);
    }
}

} // namespace

void MakeTransformRGNo(const _AFCONT& cont, ZEB_TRANS_RG_NO_LIST_T& list) {
    list = ZEB_TRANS_RG_NO_LIST_T{};
    std::uint8_t nextGroup = 0;
    std::uint8_t nextCacheCadeGroup = 0;
    for (const _MR_ARRAY& array : arraysOf(cont)) {
        const std::uint16_t arrayRef = array.arrayRef;
        if (arrayRef >= kMaxArrays || list.entry[arrayRef].known != 0)
            continue;
        const _MR_LD_CONFIG* ld = ldOnArray(cont, arrayRef);
        const bool cacheCade = ld != nullptr && ld->cacheCade != 0;
        std::uint8_t& next = cacheCade ? nextCacheCadeGroup : nextGroup;
        const ZEB_TRANS_RG_NO_LIST_T::Entry entry{1, static_cast<std::uint8_t>(cacheCade), next++};
        list.entry[arrayRef] = entry;
        if (ld == nullptr)
            continue;
        for (const _MR_SPAN& span : spansOf(*ld))
            if (span.arrayRef < kMaxArrays && list.entry[span.arrayRef].known == 0)
                list.entry[span.arrayRef] = entry;
    }
}

std::span<const _MR_ARRAY_PD> drivesOf(const _MR_ARRAY& array) {
    return {array.pd, std::min<std::size_t>(array.numDrives, kMaxArrayDrives)};
}

const _MR_ARRAY* arrayOfPd(Controller ctrl, unsigned char slotNo) {
    unsigned short deviceId = 0;
    if (GetDeviceId(ctrl.contNo, ctrl.conts, slotNo, &deviceId) == 0)
        return nullptr;
    const _MR_ARRAY* holder = nullptr;
    for (const _MR_ARRAY& array : arraysOf(ctrl.cont())) {
        const auto drives = drivesOf(array);
        if (std::any_of(drives.begin(), drives.end(),
                        [&](const _MR_ARRAY_PD& drive) { return drive.ref.deviceId == deviceId; }))
            holder = &array;
    }
    return holder;
}

const _MR_LD_CONFIG* ldOnArray(const _AFCONT& cont, std::uint16_t arrayRef) {
    const auto lds = ldConfigsOf(cont);
    const auto found = std::find_if(lds.begin(), lds.end(), [&](const _MR_LD_CONFIG& ld) {
        const auto spans = spansOf(ld);
        return std::any_of(spans.begin(), spans.end(), [&](const _MR_SPAN& span) { return span.arrayRef == arrayRef; });
    });
    return found != lds.end() ? &*found : nullptr;
}

ZEB_RAID_LVL GetRaidLvlFromPD(unsigned char contNo, unsigned char slotNo, const _AFCONT* conts) {
    const _MR_ARRAY* array = arrayOfPd({contNo, conts}, slotNo);
    const _MR_LD_CONFIG* ld = array != nullptr ? ldOnArray(conts[contNo], array->arrayRef) : nullptr;
    return ld != nullptr ? SLTransLateRAIDLvl(ld) : kRaid0;
}

void MakeRaidLvlList(unsigned char contNo, const _AFCONT* conts, _RG_SEL_LIST_T& list) {
    list.count = 0;
    const _AFCONT& cont = conts[contNo];
    std::array<bool, kMaxArrays> listed{};
    for (const _MR_ARRAY& array : arraysOf(cont)) {
        const _MR_LD_CONFIG* ld = ldOnArray(cont, array.arrayRef);
        if (array.arrayRef >= kMaxArrays || ld == nullptr || ld->cacheCade != 0)
            continue;
        const ZEB_TRANS_RG_NO_LIST_T::Entry& group = cont.rgNoList.entry[array.arrayRef];
        const ZEB_RAID_LVL level = SLTransLateRAIDLvl(ld);
        if (level == kRaid0 || level == kRaidUnknown || group.groupNo >= kMaxArrays || listed[group.groupNo])
            continue;
        listed[group.groupNo] = true;
        list.entry[list.count++] = {group.groupNo, level, ld->span[0].arrayRef};
    }
    std::sort(list.entry, list.entry + list.count, [](const auto& a, const auto& b) { return a.groupNo < b.groupNo; });
}

void mkRaidGroupArrayStr(unsigned char contNo, const _AFCONT* conts, std::uint16_t arrayRef, std::span<char> out) {
    strcpy_s(out.data(), out.size(), kNone);
    if (arrayRef >= kMaxArrays)
        return;
    const ZEB_TRANS_RG_NO_LIST_T::Entry& group = conts[contNo].rgNoList.entry[arrayRef];
    if (group.known != 0)
        sprintf_s(out.data(), out.size(), "%sRG%u", group.cacheCade != 0 ? "sc" : "", group.groupNo);
}

void mkRaidGroupStr(unsigned char contNo, const _AFCONT* conts, unsigned char slotNo, std::span<char> out) {
    out.front() = '\0';
    if (const _MR_ARRAY* array = arrayOfPd({contNo, conts}, slotNo); array != nullptr) {
        mkRaidGroupArrayStr(contNo, conts, array->arrayRef, out);
        return;
    }
    unsigned short deviceId = 0;
    const _MR_SPARE* spare =
        GetDeviceId(contNo, conts, slotNo, &deviceId) != 0 ? spareOf(conts[contNo], deviceId) : nullptr;
    if (spare != nullptr && (spare->type & kSpareDedicated) != 0)
        mkServedGroupsStr({contNo, conts}, *spare, out);
    if (out.front() == '\0')
        strcpy_s(out.data(), out.size(), kNone);
}

void mkLDStrListUsedHDD(unsigned char contNo, const _AFCONT* conts, unsigned char slotNo, std::span<char> out) {
    strcpy_s(out.data(), out.size(), kNone);
    const _MR_ARRAY* array = arrayOfPd({contNo, conts}, slotNo);
    if (array == nullptr || array->arrayRef >= kMaxArrays)
        return;
    const _SL_ARRAY_INFO_T& group = conts[contNo].arrayInfo[array->arrayRef];
    for (unsigned i = 0; i < std::min<unsigned>(group.ldCount, kMaxLds); ++i) {
        char number[8];
        wsprintf(number, i == 0 ? "LD%u" : ", %u", group.ldTargetId[i]);
        if (i == 0)
            strcpy_s(out.data(), out.size(), number);
        else
            strcat_s(out.data(), out.size(), number);
    }
}

void mkLDAssignStr(unsigned char contNo, const _AFCONT* conts, unsigned char slotNo, std::span<char> out) {
    const std::uint16_t ddfType = conts[contNo].pdInfo[slotNo].ddfType;
    if ((ddfType & kDdfGlobalSpare) != 0)
        strcpy_s(out.data(), out.size(), "GHS");
    else if ((ddfType & kDdfSpare) != 0)
        strcpy_s(out.data(), out.size(), "DHS");
    else
        mkLDStrListUsedHDD(contNo, conts, slotNo, out);
}
