#include "commands/zebcli_cmd_ld/creation/easy_menus.h"

#include "log/zebcli_log.h"
#include "main/zebcli_cmd_com/base/source.h"
#include "main/zebcli_cmd_com/base/string_shims.h"
#include "main/zebcli_cmd_com/input/prompts.h"

#include <algorithm>

namespace {

constexpr std::size_t kRowSize = 128;

/// One menu: its heading stands above its first row.
class Menu {
  public:
    explicit Menu(const char* heading) : heading_(heading) {}

    void addRow(const char* text) {
        if (rows_++ == 0)
            CliLogging(kPrint, kLdSource, __LINE__, "%s", heading_);
        CliLogging(kPrint, kLdSource, __LINE__, "%3d: %s", static_cast<int>(rows_), text);
    }

    /// The place of the chosen row from 0; nothing when the operator quits.
    std::optional<std::size_t> choose() const {
        unsigned char number = 0;
        if (ComChk(&number, nullptr, nullptr, kAskMenuFirst, static_cast<unsigned char>(rows_)) == 0)
            return std::nullopt;
        return number - 1U;
    }

  private:
    const char* heading_;
    unsigned rows_ = 0;
};

/// The capacity of an LD on those drives.
GbText capacityText(Controller ctrl, ZEB_RAID_LVL level, std::span<const std::uint8_t> slots) {
    BoundedList<std::uint64_t, kMostEasyDrives> sizes;
    for (const std::uint8_t slotNo : slots)
        sizes.add(ctrl.pd(slotNo).coercedSize);
    return gbText(GetLDCapaciity(sizes.list(), level, ctrl.contNo));
}

/// The capacity of the only LD of a variant.
GbText singleCapacityText(Controller ctrl, const EasyVariant& variant) {
    const EasyDivision division = divide(ctrl, variant);
    if (GetMaxPdNumForRaidLvl(variant.level[0], ctrl.conts, ctrl.contNo) == 0)
        return capacityText(ctrl, variant.level[0], division.drives[0].list());
    const auto* const spare = variant.spares != 0
                                  ? std::find(unconfiguredPdList.begin(), unconfiguredPdList.end(), division.spares[0])
                                  : unconfiguredPdList.begin();
    GbText capacity{};
    SetLDCapacityText(capacity.text, variant.level[0], variant.spares != 0,
                      static_cast<unsigned>(spare - unconfiguredPdList.begin()), ctrl.conts, ctrl.contNo);
    return capacity;
}

/// Leaves the variants with the chosen number of LDs. Nothing is asked where all have the same.
bool chooseCount(EasyVariants& variants) {
    const unsigned first = variants[0].lds;
    const auto isOfFirst = [&](const EasyVariant& variant) { return variant.lds == first; };
    if (std::all_of(variants.begin(), variants.end(), isOfFirst))
        return true;
    Menu menu("Number of LDs(Logical Drives)");
    menu.addRow("1");
    menu.addRow("2");
    const auto row = menu.choose();
    if (row)
        variants.keepIf([&](const EasyVariant& variant) { return variant.lds == *row + 1; });
    return row.has_value();
}

/// Leaves the variants with the chosen level of one of their LDs.
bool chooseLevel(Controller ctrl, unsigned ld, const char* heading, EasyVariants& variants) {
    BoundedList<ZEB_RAID_LVL, kRaidLevels> levels;
    for (const EasyVariant& variant : variants)
        if (!levels.contains(variant.level[ld]))
            levels.add(variant.level[ld]);
    Menu menu(heading);
    for (const ZEB_RAID_LVL level : levels)
        menu.addRow(raidLevelText(level, ctrl.contNo));
    const auto row = menu.choose();
    if (row)
        variants.keepIf([&](const EasyVariant& variant) { return variant.level[ld] == levels[*row]; });
    return row.has_value();
}

std::optional<EasyVariant> chooseSingle(Controller ctrl, const EasyVariants& variants) {
    Menu menu("RAID Level of LD 1");
    for (const EasyVariant& variant : variants) {
        char row[kRowSize];
        wsprintf(row, "%-6s PD %2u  Hot Spare %u  %s GB", raidLevelText(variant.level[0], ctrl.contNo),
                 variant.drives[0], variant.spares, singleCapacityText(ctrl, variant).c_str());
        menu.addRow(row);
    }
    const auto row = menu.choose();
    return row ? std::optional(variants[*row]) : std::nullopt;
}

std::optional<EasyVariant> chooseDivision(Controller ctrl, const EasyVariants& variants) {
    Menu menu("Division of PDs(Physical Drives)");
    for (const EasyVariant& variant : variants) {
        const EasyDivision division = divide(ctrl, variant);
        char row[kRowSize];
        wsprintf(row, "PD %2u %s GB / PD %2u %s GB / Hot Spare %u", variant.drives[0],
                 capacityText(ctrl, variant.level[0], division.drives[0].list()).c_str(), variant.drives[1],
                 capacityText(ctrl, variant.level[1], division.drives[1].list()).c_str(), variant.spares);
        menu.addRow(row);
    }
    const auto row = menu.choose();
    return row ? std::optional(variants[*row]) : std::nullopt;
}

} // namespace

std::optional<EasyVariant> chooseVariant(Controller ctrl, EasyVariants& variants) {
    if (!chooseCount(variants))
        return std::nullopt;
    if (variants[0].lds == 1)
        return chooseSingle(ctrl, variants);
    if (!chooseLevel(ctrl, 0, "RAID Level of LD 1", variants) || !chooseLevel(ctrl, 1, "RAID Level of LD 2", variants))
        return std::nullopt;
    return chooseDivision(ctrl, variants);
}
