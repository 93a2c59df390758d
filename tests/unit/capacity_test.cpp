// Capacities: the arithmetic of the levels and the text in GB.
#include <cstdio>
#include <string>

#include <gtest/gtest.h>

#include "commands/zebcli_cmd_ld/creation/construction.h"
#include "main/zebcli_cmd_com/model/capacity.h"
#include "tests/support/temp_log.h"

namespace zebtest {
namespace {

TEST(UnitCapacity, OfEachLevel) {
    constexpr std::uint64_t kLarge = 0x4000000000; // more than 32 bits of blocks
    const struct {
        ZEB_RAID_LVL level;
        unsigned short drives;
        std::uint64_t size, wanted;
    } cases[] = {{kRaid0, 3, 100, 300},
                 {kRaid1, 2, 100, 100},
                 {kRaid5, 3, 100, 200},
                 {kRaid6, 3, 100, 100},
                 {kRaid10, 4, 100, 200},
                 {kRaid10, 5, 100, 200},
                 {kRaid10, 1, 100, 0},
                 {kRaid5, 0, 100, 0},
                 {kRaid6, 1, 100, 0},
                 {kRaid0, 255, kLarge, 255 * kLarge},
                 {kRaid5, 32, kLarge, 31 * kLarge}};
    const TempLog log;
    for (const auto& c : cases)
        EXPECT_EQ(c.wanted, CalcLDCapa(c.level, c.drives, c.size, 1))
            << "level " << c.level << ", " << c.drives << " drives";
    EXPECT_EQ("", log.take());
    EXPECT_EQ(0U, CalcLDCapa(kRaidUnknown, 3, 100, 2));
    EXPECT_EQ(0U, CalcLDCapa(static_cast<ZEB_RAID_LVL>(0xFFFFFFFF), 3, 100, 0));
    EXPECT_EQ("!ERR func=CalcLDCapa: raidlvl invalid, contNo=2, raidlvl=5\n"
              "!ERR func=CalcLDCapa: raidlvl invalid, contNo=0, raidlvl=4294967295\n",
              log.take());
}

TEST(UnitCapacity, TextGoesThroughSinglePrecision) {
    constexpr std::uint64_t kMib = 2048;
    const struct {
        std::vector<std::uint64_t> sizes;
        ZEB_RAID_LVL level;
        const char* wanted;
    } cases[] = {{{2047}, kRaid0, "0.000"},
                 {{kMib}, kRaid0, "0.001"},
                 {{kMib + 2047}, kRaid0, "0.001"}, // the shift comes after the level
                 {{kMib / 2, kMib / 2}, kRaid0, "0.001"},
                 {{300 * kMib, 200 * kMib, 999 * kMib}, kRaid5, "0.391"},
                 {{1953523055, 1953525168}, kRaid1, "931.512"},
                 {{16777217 * kMib}, kRaid0, "16384.000"}, // exact it would be 16384.001
                 {{16777219 * kMib}, kRaid0, "16384.004"}, // exact it would be 16384.003
                 {{}, kRaid0, "0.000"},
                 {{~0ULL}, kRaid1, "8796093022208.000"}};
    for (const auto& c : cases) {
        char text[kCapacityTextSize];
        SetLDCapaciityText(text, c.sizes, c.level, 0);
        EXPECT_STREQ(c.wanted, text);
    }
}

std::string formatted(std::uint64_t blocks) {
    char text[32];
    std::snprintf(text, sizeof text, "%0.3f", static_cast<float>(blocks >> 11U) / 1024.0);
    return text;
}

TEST(UnitCapacity, GigabytesReadAsTheFormatterWritesThem) {
    std::uint64_t blocks = 1;
    for (int i = 0; i < 20000; ++i) {
        blocks = blocks * 6364136223846793005ULL + 1442695040888963407ULL;
        const std::uint64_t size = blocks >> (i % 53U);
        ASSERT_EQ(formatted(size), gbText(size).c_str()) << size;
    }
    for (std::uint64_t mib = 0; mib < 4096; ++mib) // every half of a thousandth is among them
        ASSERT_EQ(formatted(mib * 2048), gbText(mib * 2048).c_str()) << mib;
}

} // namespace
} // namespace zebtest
