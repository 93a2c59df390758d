#include "main/zebcli_cmd_com/model/capacity.h"

#include "main/zebcli_cmd_com/base/source.h"
#include "main/zebcli_cmd_com/base/string_shims.h"
#include "main/zebcli_cmd_com/base/trace.h"

#include <algorithm>

namespace {
constexpr unsigned kBlocksToMibShift = 11;
constexpr double kMibPerGb = 1024.0;
} // namespace

double blocksToGb(std::uint64_t blocks) {
    return static_cast<float>(blocks >> kBlocksToMibShift) / kMibPerGb;
}

std::uint64_t CalcLDCapa(ZEB_RAID_LVL level, unsigned short drives, std::uint64_t size, unsigned char contNo) {
    const auto lessParity = [&](unsigned short parity) {
        return static_cast<std::uint64_t>(drives > parity ? drives - parity : 0) * size;
    };
    switch (level) {
    case kRaid0:
        return drives * size;
    case kRaid1:
        return size;
    case kRaid5:
        return lessParity(1);
    case kRaid6:
        return lessParity(2);
    case kRaid10:
        return static_cast<std::uint64_t>(drives / 2) * size;
    default:
        traceFailure({kComSource, __func__}, "raidlvl invalid", onLevel(contNo, level));
        return 0;
    }
}

void SetLDCapaciityText(char (&out)[kCapacityTextSize], std::span<const std::uint64_t> sizes, ZEB_RAID_LVL level,
                        unsigned char contNo) {
    const std::uint64_t smallest = sizes.empty() ? 0 : *std::min_element(sizes.begin(), sizes.end());
    wsprintf(out, "%0.3f", blocksToGb(CalcLDCapa(level, static_cast<unsigned short>(sizes.size()), smallest, contNo)));
}
