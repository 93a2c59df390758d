// The ways in which easy creation can use the unconfigured drives of a controller.
#pragma once

#include "commands/zebcli_cmd_ld/creation/plan.h"

/// The most drives, LDs and spares of an easy configuration.
inline constexpr unsigned kMostEasyDrives = 16;
inline constexpr unsigned kMostEasyLds = 2;
inline constexpr unsigned kMostEasySpares = 2;

/// One or two LDs of one group each, and spares.
struct EasyVariant {
    unsigned lds = 0;
    std::array<ZEB_RAID_LVL, kMostEasyLds> level{};
    std::array<unsigned, kMostEasyLds> drives{};
    unsigned spares = 0;
};

/// Room for every pair of levels with every division of the drives and every number of spares.
inline constexpr std::size_t kMostEasyPairs = std::size_t{kRaidLevels} * kRaidLevels;
inline constexpr std::size_t kMostEasyVariants =
    std::size_t{2} * kRaidLevels + kMostEasyPairs * kMostEasyDrives * (kMostEasySpares + 1);
using EasyVariants = BoundedList<EasyVariant, kMostEasyVariants>;

/// The drives of a variant by slot number. Spares are the largest drives, of equal ones those with the highest slots;
/// the others go in slot order to the first LD, then to the second.
struct EasyDivision {
    std::array<BoundedList<std::uint8_t, kMostEasyDrives>, kMostEasyLds> drives;
    BoundedList<std::uint8_t, kMostEasySpares> spares;
};
EasyDivision divide(Controller ctrl, const EasyVariant& variant);

/// The variants of one LD, then those of two, that can be built of the unconfigured drives, in the order in which they
/// are offered.
void findVariants(Controller ctrl, EasyVariants& variants);
