#include "commands/zebcli_cmd_ld/creation/construction.h"

#include "commands/zebcli_cmd_ld/ld_targets.h"
#include "log/site_file.h"
#include "main/zebcli_cmd_com/base/string_shims.h"
#include "main/zebcli_cmd_com/base/trace.h"
#include "main/zebcli_cmd_com/model/lookup.h"

#include <algorithm>
#include <cstdio>
#include <string_view>

_configPat_T configPat{};
std::array<unsigned char, kMaxSlots> unconfiguredPdList{};
unsigned unconfiguredPds = 0;

namespace {

constexpr std::size_t kPatternLineSize = 512;
constexpr unsigned kPdLimitShift = 4;

/// What a controller says about a level: its bit in the capability byte, its entry in the PD limits. The entry between
/// those of RAID5 and RAID6 belongs to a level that is not offered.
struct LevelSupport {
    std::uint8_t capability;
    std::uint8_t limitEntry;
};
constexpr std::array<LevelSupport, kRaidLevels> kLevelSupport{{{0x01, 0}, {0x02, 1}, {0x04, 2}, {0x10, 4}, {0x20, 5}}};

using LevelOrder = std::array<ZEB_RAID_LVL, kRaidLevels>;
constexpr LevelOrder raidlvlPriority{kRaid5, kRaid6, kRaid10, kRaid1, kRaid0};
constexpr LevelOrder snapshotRaidlvlPriority{kRaid0, kRaid5, kRaid6, kRaid10, kRaid1};

using LevelMarks = std::array<bool, kRaidLevels>;

/// The levels of the row for that many drives, none beyond the table.
std::span<const ZEB_RAID_LVL> patternLevels(unsigned drives) {
    if (drives == 0 || drives > kPatternRows)
        return {};
    const _configPat_T::Row& row = configPat.row[drives - 1];
    return {row.level, std::min<std::size_t>(row.count, kPatternLevels)};
}

bool rowHas(unsigned drives, ZEB_RAID_LVL level) {
    const auto levels = patternLevels(drives);
    return std::find(levels.begin(), levels.end(), level) != levels.end();
}

void markRow(unsigned drives, LevelMarks& marks, Controller ctrl) {
    for (const ZEB_RAID_LVL level : patternLevels(drives))
        if (IsSupportRaidLvl(level, ctrl.conts, ctrl.contNo) != 0)
            marks[level] = true;
}

void listMarked(const LevelMarks& marks, _raidConstructInfoT& out) {
    out.count = 0;
    for (std::uint32_t level = 0; level < kRaidLevels; ++level)
        if (marks[level])
            out.level[out.count++] = static_cast<ZEB_RAID_LVL>(level);
}

void sortByPriority(const LevelOrder& order, _raidConstructInfoT& list) {
    const auto rank = [&](ZEB_RAID_LVL level) { return std::find(order.begin(), order.end(), level); };
    std::sort(list.level, list.level + std::min<std::size_t>(list.count, std::size(list.level)),
              [&](ZEB_RAID_LVL a, ZEB_RAID_LVL b) { return rank(a) < rank(b); });
}

/// Whether any unconfigured drive differs from the first in what is asked of it.
template <class Property>
int isMixed(Controller ctrl, Property property) {
    const auto drives = std::span(unconfiguredPdList).first(std::min(unconfiguredPds, kMaxSlots));
    return std::any_of(
               drives.begin(), drives.end(),
               [&](unsigned char slotNo) { return property(ctrl.pd(slotNo)) != property(ctrl.pd(drives.front())); })
               ? 1
               : 0;
}

void addPatternLevels(char* line, _configPat_T::Row& row) {
    struct Name {
        std::string_view text;
        ZEB_RAID_LVL level;
    };
    static constexpr Name kNames[] = {
        {"RAID0", kRaid0}, {"RAID1", kRaid1}, {"RAID10", kRaid10}, {"RAID5", kRaid5}, {"RAID6", kRaid6},
    };
    char* context = nullptr;
    const char* token = strtok_s(line, ",\n", &context);
    for (unsigned place = 0; place < kPatternLevels && token != nullptr; ++place) {
        const auto* name =
            std::find_if(std::begin(kNames), std::end(kNames), [&](const Name& n) { return n.text == token; });
        if (name != std::end(kNames))
            row.level[row.count++] = name->level;
        token = strtok_s(nullptr, ",\n", &context);
    }
}

} // namespace

bool knownLevel(const char* func, ZEB_RAID_LVL level, unsigned char contNo, int line) {
    if (level < kRaidLevels)
        return true;
    traceFailure({kLdSource, func, line}, "raidlvl invalid", onLevel(contNo, level));
    return false;
}

void ReadConfigPatFile(_configPat_T* table) {
    const SiteFile file = openSiteFile(kPatternPath);
    if (!file) {
        traceFailure({kLdSource, __func__}, "ConfigPatFile open error");
        return;
    }
    readConfigPatterns(file.get(), table);
}

void readConfigPatterns(std::FILE* file, _configPat_T* table) {
    *table = _configPat_T{};
    char line[kPatternLineSize];
    for (unsigned k = 0; k < kPatternRows && std::fgets(line, sizeof line, file) != nullptr; ++k)
        addPatternLevels(line, table->row[k]);
}

int IsSupportRaidLvl(ZEB_RAID_LVL level, const _AFCONT* conts, unsigned char contNo) {
    if (!knownLevel(__func__, level, contNo, __LINE__))
        return 0;
    return (conts[contNo].ctrlInfo.raidLevels & kLevelSupport[level].capability) != 0 ? 1 : 0;
}

unsigned GetMaxPdNumForRaidLvl(ZEB_RAID_LVL level, const _AFCONT* conts, unsigned char contNo) {
    if (!knownLevel(__func__, level, contNo, __LINE__))
        return 0;
    return static_cast<unsigned>(conts[contNo].ctrlInfo.pdsForRaidLevel[kLevelSupport[level].limitEntry]) >>
           kPdLimitShift;
}

int isRaidConstructOk(unsigned drives, ZEB_RAID_LVL level, const _AFCONT* conts, unsigned char contNo) {
    return rowHas(drives, level) && IsSupportRaidLvl(level, conts, contNo) != 0 ? 1 : 0;
}

void getRaidConstructInfo(unsigned mode, unsigned drives, _raidConstructInfoT& out, const _AFCONT* conts,
                          unsigned char contNo) {
    if (drives == 0) {
        out.count = 0;
        return;
    }
    LevelMarks marks{};
    const unsigned beyondMode = drives + 1 > mode ? drives + 1 - mode : 0;
    const unsigned last = std::min(mode == 1 ? drives : beyondMode, kPatternRows);
    const unsigned first = mode == 1 ? std::max(drives - 1, 1U) : 1;
    for (unsigned n = first; n <= last; ++n)
        markRow(n, marks, {contNo, conts});
    listMarked(marks, out);
    RaidLvlSort(out);
}

void getOtherRaidConstructInfo(ZEB_RAID_LVL firstLevel, unsigned drives, _raidConstructInfoT& out, const _AFCONT* conts,
                               unsigned char contNo, bool snapshot) {
    constexpr unsigned kMostSpares = 2;
    LevelMarks marks{};
    for (unsigned k = 1; k < drives; ++k)
        if (isRaidConstructOk(drives - k, firstLevel, conts, contNo) != 0)
            for (unsigned spares = 0; spares <= kMostSpares && spares < k; ++spares)
                markRow(k - spares, marks, {contNo, conts});
    listMarked(marks, out);
    if (snapshot)
        RaidLvlSortForSnapshot(out);
    else
        RaidLvlSort(out);
}

unsigned getRaidConstructMinNumDrives(ZEB_RAID_LVL level, const _AFCONT* conts, unsigned char contNo) {
    if (IsSupportRaidLvl(level, conts, contNo) == 0)
        return 0;
    for (unsigned drives = 1; drives <= kPatternRows; ++drives)
        if (rowHas(drives, level))
            return drives;
    return 0;
}

void RaidLvlSort(_raidConstructInfoT& list) {
    sortByPriority(raidlvlPriority, list);
}

void RaidLvlSortForSnapshot(_raidConstructInfoT& list) {
    sortByPriority(snapshotRaidlvlPriority, list);
}

int IsMixedInterfacePD(const _AFCONT* conts, unsigned char contNo) {
    return isMixed({contNo, conts}, interfaceOf);
}

int IsMixedMediaTypePD(const _AFCONT* conts, unsigned char contNo) {
    return isMixed({contNo, conts}, mediaOf);
}
