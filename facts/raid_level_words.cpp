#include "facts/raid_level_words.h"

#include <algorithm>
#include <iterator>

namespace facts {

namespace {
constexpr WordRow kLevels[] = {
    {kRaid0, "raid0"}, {kRaid1, "raid1"}, {kRaid5, "raid5"}, {kRaid6, "raid6"}, {kRaid10, "raid10"}};
} // namespace

Word raidLevelWord(const _MR_LD_CONFIG& ld) {
    const ZEB_RAID_LVL level = SLTransLateRAIDLvl(&ld);
    if (level == kRaidUnknown)
        return {kUnknownWord, ld.primaryRaidLevel};
    return wordFor(kLevels, level);
}

std::optional<ZEB_RAID_LVL> raidLevelOf(const std::optional<Word>& word) {
    const auto* row = std::find_if(std::begin(kLevels), std::end(kLevels),
                                   [&](const WordRow& level) { return word && *word == level.text; });
    if (row == std::end(kLevels))
        return std::nullopt;
    return static_cast<ZEB_RAID_LVL>(row->code);
}

} // namespace facts
