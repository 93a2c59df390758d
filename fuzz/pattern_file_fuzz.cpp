// The reader of the pattern file over arbitrary bytes, then every rule that its table decides.
//
// Input: what the controller supports, a number of drives, then the file.
#include "commands/zebcli_cmd_ld/creation/construction.h"
#include "fuzz/support.h"

#include <algorithm>

namespace {

void requireCandidates(const _raidConstructInfoT& out, const _AFCONT* conts, const char* statement) {
    fuzz::require(out.count <= kRaidLevels, statement);
    const std::span levels(out.level, out.count);
    for (auto level = levels.begin(); level != levels.end(); ++level)
        fuzz::require(*level < kRaidLevels && IsSupportRaidLvl(*level, conts, 0) == 1 &&
                          std::find(levels.begin(), level, *level) == level,
                      statement);
}

void requireTable(const _configPat_T& table) {
    for (const _configPat_T::Row& row : table.row) {
        fuzz::require(row.count <= kPatternLevels, "a row has at most four levels");
        fuzz::require(
            std::all_of(row.level, row.level + row.count, [](ZEB_RAID_LVL level) { return level < kRaidLevels; }),
            "a row holds known levels");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static _AFCONT conts[1];
    fuzz::Input input(data, size);
    conts[0].ctrlInfo.raidLevels = input.byte();
    const unsigned drives = 2 * input.byte(); // beyond the table too
    const fuzz::File file = fuzz::openBytes(input.rest());
    readConfigPatterns(file.get(), &configPat);
    requireTable(configPat);

    for (const unsigned mode : {0U, 1U, 2U, drives, drives + 2}) {
        _raidConstructInfoT out{};
        getRaidConstructInfo(mode, drives, out, conts, 0);
        requireCandidates(out, conts, "a new configuration is offered each supported level once");
    }
    for (std::uint32_t number = 0; number <= kRaidUnknown; ++number) {
        const auto level = static_cast<ZEB_RAID_LVL>(number);
        _raidConstructInfoT out{};
        getOtherRaidConstructInfo(level, drives, out, conts, 0, (drives & 2U) != 0);
        requireCandidates(out, conts, "a second LD is offered each supported level once");
        const unsigned fewest = getRaidConstructMinNumDrives(level, conts, 0);
        fuzz::require(fewest == 0 || isRaidConstructOk(fewest, level, conts, 0) == 1,
                      "the smallest number of drives is one that can be built from");
    }
    return 0;
}
