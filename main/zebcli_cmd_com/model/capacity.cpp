#include "main/zebcli_cmd_com/model/capacity.h"

#include "main/zebcli_cmd_com/base/source.h"
#include "main/zebcli_cmd_com/base/string_shims.h"
#include "main/zebcli_cmd_com/base/trace.h"

#include <algorithm>
#include <charconv>
#include <iterator>

namespace {
constexpr unsigned kBlocksToMibShift = 11;
constexpr std::uint64_t kMibPerGb = 1024;
} // namespace

/// Single precision holds a whole number of MiB, so that the thousandths are exact; they are rounded as the C library's
/// formatter does, half to even.
GbText gbText(std::uint64_t blocks) {
    const auto mib = static_cast<std::uint64_t>(static_cast<float>(blocks >> kBlocksToMibShift));
    const std::uint64_t scaled = mib * 1000;
    const std::uint64_t whole = scaled / kMibPerGb;
    const std::uint64_t over = scaled % kMibPerGb;
    const bool up = over > kMibPerGb / 2 || (over == kMibPerGb / 2 && whole % 2 != 0);
    const std::uint64_t thousandths = whole + (up ? 1 : 0);
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

std::uint64_t GetLDCapaciity(std::span<const std::uint64_t> sizes, ZEB_RAID_LVL level, unsigned char contNo) {
    SmallestSize smallest;
    for (const std::uint64_t size : sizes)
        smallest.add(size);
    return CalcLDCapa(level, static_cast<unsigned short>(sizes.size()), smallest.value(), contNo);
}

void SetLDCapaciityText(char (&out)[kCapacityTextSize], std::span<const std::uint64_t> sizes, ZEB_RAID_LVL level,
                        unsigned char contNo) {
    wsprintf(out, "%s", gbText(GetLDCapaciity(sizes, level, contNo)).c_str());
}
