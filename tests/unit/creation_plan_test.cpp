// The arithmetic of plans: stripes, places and numbers of new LDs.
#include "commands/zebcli_cmd_ld/creation/numbers.h"
#include "commands/zebcli_cmd_ld/creation/plan.h"

#include <gtest/gtest.h>

#include "tests/support/snapshot_model.h"

namespace zebtest {
namespace {

PlannedArray groupOf(ZEB_RAID_LVL level, std::uint16_t drives, std::uint8_t stripeSize = 7) {
    PlannedArray group{};
    group.level = level;
    group.pdCount = drives;
    group.stripeSize = stripeSize;
    return group;
}
FreeSegments segments(const std::vector<FreeSegment>& list) {
    FreeSegments all;
    for (const FreeSegment& segment : list)
        all.add(segment);
    return all;
}
LdSizes sizes(const std::vector<std::uint32_t>& list) {
    LdSizes all;
    for (const std::uint32_t size : list)
        all.add(size);
    return all;
}

TEST(CreationPlan, StripeSizeIsTheDefaultOrTheNearestEndOfTheRange) {
    const struct {
        std::uint8_t smallest, largest, wanted;
    } cases[] = {{4, 11, 7},  {7, 7, 7},   {8, 11, 8},  {4, 6, 6}, {0, 3, 7},
                 {12, 20, 7}, {0, 255, 7}, {11, 4, 11}, {0, 0, 7}};
    for (const auto& c : cases) {
        _MR_CTRL_INFO info{};
        info.stripeSizeMin = c.smallest;
        info.stripeSizeMax = c.largest;
        EXPECT_EQ(c.wanted, plannedStripeSize(info)) << int{c.smallest} << " to " << int{c.largest};
    }
}

TEST(CreationPlan, SizesAreRoundedUpToWholeStripes) {
    const struct {
        ZEB_RAID_LVL level;
        std::uint16_t drives;
        std::uint8_t stripeSize;
        std::uint32_t sizeMb;
        std::uint64_t blocks, capacity;
    } cases[] = {{kRaid5, 3, 7, 1, 1024, 2048},
                 {kRaid5, 4, 7, 1, 768, 2304},
                 {kRaid5, 5, 7, 1, 512, 2048},
                 {kRaid6, 5, 7, 1, 768, 2304},
                 {kRaid0, 3, 7, 1, 768, 2304},
                 {kRaid1, 2, 11, 1, 2048, 2048},
                 {kRaid10, 6, 7, 1, 768, 2304},
                 {kRaid5, 4, 11, 1, 2048, 6144},
                 {kRaid5, 4, 7, 51200, 34952576, 104857728},
                 {kRaid0, 1, 4, 999999999, 2047999997952, 2047999997952}};
    for (const auto& c : cases) {
        PlannedArray group = groupOf(c.level, c.drives, c.stripeSize);
        FreeSegments free = segments({{0, 4000000000000}});
        ASSERT_TRUE(placeLds(group, sizes({c.sizeMb}), free));
        EXPECT_EQ(c.blocks, group.ld[0].blocksPerPd) << c.level << " of " << c.drives;
        EXPECT_EQ(c.capacity, group.ld[0].size) << c.level << " of " << c.drives;
        EXPECT_EQ(4000000000000 - c.blocks, free[0].blocks);
    }
}

TEST(CreationPlan, EachLdGoesIntoTheFirstSegmentWithRoom) {
    PlannedArray group = groupOf(kRaid1, 2);
    FreeSegments free = segments({{0, 4096}, {10240, 8192}, {40960, 8192}});
    ASSERT_TRUE(placeLds(group, sizes({3, 1, 4}), free));
    EXPECT_EQ(10240U, group.ld[0].startBlock);
    EXPECT_EQ(0U, group.ld[1].startBlock);
    EXPECT_EQ(40960U, group.ld[2].startBlock);
    EXPECT_EQ(4096U, capacityOf(group, segments({free[0], free[1]})));
    EXPECT_FALSE(placeLds(group, sizes({3}), free));
    PlannedArray whole = groupOf(kRaid1, 2);
    free = segments({{0, 4096}, {10240, 8200}, {40960, 8200}});
    ASSERT_TRUE(placeLds(whole, {}, free));
    EXPECT_EQ(10240U, whole.ld[0].startBlock) << "the first of equal ones";
    EXPECT_EQ(8192U, whole.ld[0].blocksPerPd);
    free = segments({{0, 127}});
    EXPECT_FALSE(placeLds(whole, {}, free));
    free = segments({});
    EXPECT_FALSE(placeLds(whole, {}, free));
}

TEST(CreationPlan, SegmentsCountFromTheirFirstStripeAndAboveTheFloor) {
    // Two drives of RAID1: 8 MB are 16384 blocks.
    const PlannedArray group = groupOf(kRaid1, 2);
    const FreeSegments counting = countingSegments(
        group, segments({{0, 16384}, {100000, 18432 + 96}, {200064, 16384 + 2047}, {300032, 96}, {400000, 64}}));
    ASSERT_EQ(1U, counting.size()) << "only what is above 8 MB behind its first whole stripe";
    EXPECT_EQ((FreeSegment{100096, 18432}), counting[0]);
}

TEST(CreationPlan, NumbersAreTheLowestFreeOnesInARowForASpannedGroup) {
    SnapshotModel model;
    model.array(0, {1});
    model.array(2, {2});
    model.array(5, {3});
    model.ld(0, 0, {0});
    model.ld(2, 0, {2});
    const _AFCONT& cont = model.conts()[kCont];
    _SL_CREATE_LD_INFO_T plan{};
    plan.arrayCount = 2;
    plan.array[0] = groupOf(kRaid10, 4);
    plan.array[1] = groupOf(kRaid5, 3);
    plan.array[0].ldCount = 2;
    plan.array[1].ldCount = 1;
    numberLds(plan, cont);
    numberArrays(plan, cont);
    EXPECT_EQ(1, plan.array[0].ld[0].ldNo);
    EXPECT_EQ(3, plan.array[0].ld[1].ldNo);
    EXPECT_EQ(4, plan.array[1].ld[0].ldNo);
    EXPECT_EQ(3, plan.array[0].arrayRef[0]);
    EXPECT_EQ(4, plan.array[0].arrayRef[1]);
    EXPECT_EQ(1, plan.array[1].arrayRef[0]);
    EXPECT_TRUE(areLdNumbersFree(plan, cont) && areArrayNumbersFree(plan, cont));
    plan.array[1].arrayRef[0] = 5;
    EXPECT_FALSE(areArrayNumbersFree(plan, cont));
    plan.array[1].ld[0].ldNo = 2;
    EXPECT_FALSE(areLdNumbersFree(plan, cont));
}

TEST(CreationPlan, WithoutARunTheLowestFreeArraysAreTaken) {
    SnapshotModel model;
    for (std::uint16_t ref = 0; ref < kMaxArrays; ref = static_cast<std::uint16_t>(ref + 2))
        model.array(ref, {ref});
    _SL_CREATE_LD_INFO_T plan{};
    plan.arrayCount = 1;
    plan.array[0] = groupOf(kRaid10, 6);
    numberArrays(plan, model.conts()[kCont]);
    EXPECT_EQ(1, plan.array[0].arrayRef[0]);
    EXPECT_EQ(3, plan.array[0].arrayRef[1]);
    EXPECT_EQ(5, plan.array[0].arrayRef[2]);
}

} // namespace
} // namespace zebtest
