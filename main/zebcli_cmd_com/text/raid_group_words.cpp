#include "main/zebcli_cmd_com/text/raid_group_words.h"

#include "main/zebcli_cmd_com/base/string_shims.h"
#include "main/zebcli_cmd_com/model/lookup.h"
#include "main/zebcli_cmd_com/model/raid_groups.h"
#include "main/zebcli_cmd_com/text/vocabulary.h"

#include <algorithm>
#include <array>

namespace {

constexpr unsigned kRgNameSize = 16;

const _MR_SPARE* spareOf(const _AFCONT& cont, std::uint16_t deviceId) {
    const auto spares = sparesOf(cont);
    const auto found = std::find_if(spares.begin(), spares.end(),
                                    [&](const _MR_SPARE& spare) { return spare.ref.deviceId == deviceId; });
    return found != spares.end() ? &*found : nullptr;
}

/// The groups that a spare serves, each once, in the spare's order.
void mkServedGroupsStr(Controller ctrl, const _MR_SPARE& spare, std::span<char> out) {
    std::array<std::array<bool, kMaxArrays>, 2> named{}; // CacheCade groups are counted apart
    for (const std::uint16_t arrayRef : arrayRefsOf(spare)) {
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
    bool first = true;
    for (const std::uint8_t ldNo : ldsOf(group)) {
        char number[8];
        wsprintf(number, first ? "LD%u" : ", %u", ldNo);
        if (first)
            strcpy_s(out.data(), out.size(), number);
        else
            strcat_s(out.data(), out.size(), number);
        first = false;
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
