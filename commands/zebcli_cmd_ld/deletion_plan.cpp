#include "commands/zebcli_cmd_ld/deletion_plan.h"

#include "commands/zebcli_cmd_ld/creation/construction.h"
#include "commands/zebcli_cmd_ld/ld_targets.h"
#include "log/zebcli_log.h"
#include "main/zebcli_cmd_com/base/source.h"
#include "main/zebcli_cmd_com/base/string_shims.h"
#include "main/zebcli_cmd_com/model/capacity.h"
#include "main/zebcli_cmd_com/model/lookup.h"
#include "main/zebcli_cmd_com/text/number_list.h"
#include "main/zebcli_cmd_com/text/raid_group_words.h"
#include "main/zebcli_cmd_com/text/text_field.h"
#include "main/zebcli_cmd_com/text/vocabulary.h"

#include <algorithm>
#include <string_view>

namespace {

using Group = ZEB_TRANS_RG_NO_LIST_T::Entry;

/// The group that holds the array, null where the array is not known.
const Group* groupOf(const _AFCONT& cont, std::uint16_t arrayRef) {
    const Group* group = arrayRef < kMaxArrays ? &cont.rgNoList.entry[arrayRef] : nullptr;
    return group != nullptr && group->known != 0 ? group : nullptr;
}

const Group* groupOf(const _AFCONT& cont, const ShownLd& ld) {
    return groupOf(cont, ld.span[0].arrayRef);
}

bool areSame(const Group* a, const Group* b) {
    return a != nullptr && b != nullptr && a->cacheCade == b->cacheCade && a->groupNo == b->groupNo;
}

/// What becomes free when the chosen LDs go: the groups on which no LD remains, and the spares that serve only those.
class Release {
  public:
    Release(Controller ctrl, const ShownLds& chosen) : ctrl_(ctrl), chosen_(chosen) {}

    /// Says it behind the last LD of a group that becomes free.
    void sayBehind(const ShownLd& ld) {
        const Group* group = groupOf(ctrl_.cont(), ld);
        if (!becomesFree(group) || !isLastOf(group, ld))
            return;
        char text[kRoom];
        mkRaidGroupArrayStr(ctrl_.contNo, ctrl_.conts, ld.span[0].arrayRef, text);
        addSpares(group, text);
        CliLogging(kPrintAndLog, kLdSource, __LINE__, "  Released     : %s", text);
    }

  private:
    /// A group's name and every slot as a spare.
    static constexpr std::size_t kRoom = 16 + kMaxSlots * sizeof " and DHS PD255";

    bool isChosen(unsigned ldNo) const {
        const auto lds = chosen_.list();
        return std::any_of(lds.begin(), lds.end(), [&](const ShownLd& ld) { return ld.ldNo == ldNo; });
    }

    bool isOn(const _MR_LD_CONFIG& ld, const Group* group) const {
        const auto spans = spansOf(ld);
        return std::any_of(spans.begin(), spans.end(),
                           [&](const _MR_SPAN& span) { return areSame(groupOf(ctrl_.cont(), span.arrayRef), group); });
    }

    bool becomesFree(const Group* group) const {
        const auto lds = ldConfigsOf(ctrl_.cont());
        return group != nullptr && std::all_of(lds.begin(), lds.end(), [&](const _MR_LD_CONFIG& ld) {
                   return !isOn(ld, group) || isChosen(ld.properties.ref.targetId);
               });
    }

    bool isLastOf(const Group* group, const ShownLd& ld) const {
        const auto lds = chosen_.list();
        const auto last = std::find_if(lds.rbegin(), lds.rend(), [&](const ShownLd& other) {
            return areSame(groupOf(ctrl_.cont(), other), group);
        });
        return last != lds.rend() && last->ldNo == ld.ldNo;
    }

    /// Whether the spare serves the group and no group that stays.
    bool isFreedWith(const _MR_SPARE& spare, const Group* group) const {
        const auto arrays = arrayRefsOf(spare);
        const auto serves = [&](std::uint16_t arrayRef) { return areSame(groupOf(ctrl_.cont(), arrayRef), group); };
        return (spare.type & kSpareDedicated) != 0 && std::any_of(arrays.begin(), arrays.end(), serves) &&
               std::all_of(arrays.begin(), arrays.end(), [&](std::uint16_t arrayRef) {
                   const Group* served = groupOf(ctrl_.cont(), arrayRef);
                   return served == nullptr || becomesFree(served);
               });
    }

    /// Names the spares that were not named with an earlier group, by slot.
    void addSpares(const Group* group, char (&text)[kRoom]) {
        std::array<bool, kMaxSlots> freed{};
        for (const _MR_SPARE& spare : sparesOf(ctrl_.cont())) {
            unsigned char slotNo = 0;
            if (isFreedWith(spare, group) && GetSlotNo(ctrl_.contNo, spare.ref.deviceId, &slotNo, ctrl_.conts) != 0)
                freed[slotNo] = true;
        }
        for (unsigned slotNo = 0; slotNo < kMaxSlots; ++slotNo) {
            if (!freed[slotNo] || named_[slotNo])
                continue;
            named_[slotNo] = true;
            char item[24];
            wsprintf(item, " and DHS PD%u", slotNo);
            lstrcat(text, item);
        }
    }

    Controller ctrl_;
    const ShownLds& chosen_;
    std::array<bool, kMaxSlots> named_{};
};

void mkStateStr(Controller ctrl, const ShownLd& ld, std::span<char> out) {
    mkLDStateStr(ctrl.contNo, ctrl.conts, &ctrl.ld(ld.ldNo).config, out);
}

} // namespace

ShownLd showLd(Controller ctrl, unsigned char ldNo) {
    const _MR_LD_CONFIG& config = ctrl.ld(ldNo).config;
    ShownLd shown{};
    shown.ldNo = ldNo;
    strcpy_s(shown.name, sizeof shown.name, fieldText(config.properties.name).c_str());
    shown.level = SLTransLateRAIDLvl(&config);
    shown.cacheCade = config.cacheCade != 0;
    shown.capacity = GetLDSize(&config, ctrl.contNo);
    const auto spans = spansOf(config);
    std::transform(spans.begin(), spans.end(), shown.span, [](const _MR_SPAN& span) {
        return ShownLd::Span{span.arrayRef, span.startBlock};
    });
    char device[kOsDriveNameSize];
    SLGetOSDriveName(ctrl.contNo, ldNo, device);
    strcpy_s(shown.osDevice, sizeof shown.osDevice,
             std::string_view(device) == "NULL" ? "-" : fieldText(device).c_str());
    return shown;
}

ShownLds showLds(Controller ctrl) {
    ShownLds lds;
    for (const _MR_LD_LIST_ENTRY& entry : ldEntries(ctrl.cont()))
        if (entry.targetId < kMaxLds)
            lds.ld[lds.count++] = showLd(ctrl, entry.targetId);
    return lds;
}

void printLdTable(Controller ctrl, const ShownLds& lds) {
    CliLogging(kPrint, kLdSource, __LINE__,
               "### Logical Drive(LD) ###\n"
               "LD No. Name             RG No. RAID Level Capacity[GB] State                       OS Device\n"
               "------ ---------------- ------ ---------- ------------ --------------------------- ---------------");
    for (const ShownLd& ld : lds.list()) {
        char number[8];
        wsprintf(number, "LD%d", ld.ldNo);
        char group[kTextSize];
        mkRaidGroupArrayStr(ctrl.contNo, ctrl.conts, ld.span[0].arrayRef, group);
        char state[kTextSize];
        mkStateStr(ctrl, ld, state);
        CliLogging(kPrint, kLdSource, __LINE__, "%-6s %-16s %-6s %-10s %-12s %-27s %-15s", number, ld.name, group,
                   shownLevel(ld.level, ld.cacheCade, ctrl.contNo), gbText(ld.capacity).c_str(), state, ld.osDevice);
    }
}

void sayDeletionPlan(Controller ctrl, const ShownLds& chosen) {
    const auto say = [](const char* label, const char* value) {
        CliLogging(kPrintAndLog, kLdSource, __LINE__, "  %-12s : %s", label, value);
    };
    CliLogging(kPrintAndLog, kLdSource, __LINE__,
               "Controller[%d] The following LD[s](Logical Drive[s]) will be deleted.", ctrl.contNo);
    Release release(ctrl, chosen);
    for (const ShownLd& ld : chosen.list()) {
        char state[kTextSize];
        mkStateStr(ctrl, ld, state);
        CliLogging(kPrintAndLog, kLdSource, __LINE__, ">LD%u (%s, %sGB, %s)", ld.ldNo, ld.name,
                   gbText(ld.capacity).c_str(), state);
        NumberList drives;
        const PdsInLd pds = pdsInLd(ctrl, ld.ldNo);
        for (const unsigned char slotNo : pds.list())
            drives.add(slotNo);
        say("RAID Level", shownLevel(ld.level, ld.cacheCade, ctrl.contNo));
        say("OS Device", ld.osDevice);
        say("PD No.", drives.c_str());
        release.sayBehind(ld);
    }
}
