// RAID levels in words.
#pragma once

#include "facts/word.h"
#include "main/zebcli_cmd_com/model/raid_level.h"

#include <optional>

namespace facts {

/// "raid5"; of a level that is not known its primary RAID level stands as the code.
Word raidLevelWord(const _MR_LD_CONFIG& ld);

/// The level behind a word; nothing where there is none.
std::optional<ZEB_RAID_LVL> raidLevelOf(const std::optional<Word>& word);

} // namespace facts
