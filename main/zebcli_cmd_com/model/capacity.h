// Capacity arithmetic. Sizes are blocks of 512 bytes unless a name says otherwise; a GB is 1024 x 1024 x 1024 bytes.
#pragma once

#include "main/zebcli_cmd_com/model/raid_level.h"

#include <algorithm>
#include <cstdint>
#include <span>

/// The size of the buffer that SetLDCapaciityText fills.
inline constexpr unsigned kCapacityTextSize = 160;

/// A size in GB as every report shows it, with three decimals. The step through a single-precision MiB figure is part
/// of the rule: it shows in the third decimal of large capacities.
struct GbText {
    char text[32];
    const char* c_str() const { return text; }
};
GbText gbText(std::uint64_t blocks);

/// The usable capacity of an LD of that many drives, each of the given size, in the unit of the size. 0 and a trace
/// record for a level that is not known.
std::uint64_t CalcLDCapa(ZEB_RAID_LVL level, unsigned short drives, std::uint64_t size, unsigned char contNo);

/// The smallest of the sizes that were added, 0 before the first.
class SmallestSize {
  public:
    void add(std::uint64_t size) {
        smallest_ = any_ ? std::min(smallest_, size) : size;
        any_ = true;
    }
    std::uint64_t value() const { return smallest_; }

  private:
    bool any_ = false;
    std::uint64_t smallest_ = 0;
};

/// The usable capacity of an LD on drives of the given sizes, in their unit; the smallest counts.
std::uint64_t GetLDCapaciity(std::span<const std::uint64_t> sizes, ZEB_RAID_LVL level, unsigned char contNo);

/// The usable capacity in GB, as text with three decimals, of an LD on drives of the given sizes; the smallest counts.
/// SetLDCapacityText, with one "i", is the creation commands': it takes the sizes of the unconfigured drives itself.
void SetLDCapaciityText(char (&out)[kCapacityTextSize], std::span<const std::uint64_t> sizes, ZEB_RAID_LVL level,
                        unsigned char contNo);
