#include "main/zebcli_cmd_com/model/capacity.h"

#include "main/zebcli_cmd_com/base/source.h"
#include "main/zebcli_cmd_com/base/string_shims.h"
#include "main/zebcli_cmd_com/base/trace.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>

namespace {
constexpr unsigned kBlocksToMibShift = 11;
constexpr double kMibPerGb = 1024.0;
} // namespace

double blocksToGb(std::uint64_t blocks) {
    return static_cast<float>(blocks >> kBlocksToMibShift) / kMibPerGb;
}

/// Rounds as the C library's formatter does, half to even: the thousandths are exact, 24 bits of the single-precision
/// figure times 1000.
GbText gbText(std::uint64_t blocks) {
    const auto thousandths = static_cast<std::uint64_t>(std::nearbyint(blocksToGb(blocks) * 1000.0));
    GbText out{};
    char* at = std::to_chars(std::begin(out.text), std::end(out.text), thousandths / 1000).ptr;
    const auto rest = static_cast<unsigned>(thousandths % 1000);
    *at++ = '.';
    *at++ = static_cast<char>('0' + rest / 100);
    *at++ = static_cast<char>('0' + rest / 10 % 10);
    *at = static_cast<char>('0' + rest % 10);
    return out;
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
    wsprintf(out, "%s", gbText(CalcLDCapa(level, static_cast<unsigned short>(sizes.size()), smallest, contNo)).c_str());
}
