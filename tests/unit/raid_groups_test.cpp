// RAID groups: their numbers, and the texts that name them, the LDs on them and the spares for them.
#include <gtest/gtest.h>

#include "main/zebcli_cmd_com/model/raid_groups.h"
#include "main/zebcli_cmd_com/text/raid_group_words.h"
#include "tests/support/snapshot_model.h"

namespace zebtest {
namespace {

/// Arrays in another order than their references; LD 1 spans two of them, LDs 2 and 5 share one, one is CacheCade, one
/// has no LD.
struct UnitRaidGroups : testing::Test {
    UnitRaidGroups() {
        for (std::uint8_t slot = 0; slot < 16; ++slot)
            model.device(slot, static_cast<std::uint16_t>(slot + 50));
        model.array(9, {50, 51});
        model.array(4, {52});
        model.array(0, {53, 54});
        model.array(127, {55, kNoDevice});
        model.array(3, {56, 57});
        model.array(5, {58});
        model.ld(1, 1, {9, 0});
        model.ld(2, 5, {127});
        model.ld(5, 6, {127});
        model.ld(6, 0, {4}, true);
        model.ld(7, 0, {5});
        model.spare(60, 1, {0, 127, 9});
        model.spare(61, 1, {4, 77, 127});
        model.spare(62, 0, {9}); // a global one
        model.spare(63, 1, {});
        model.spare(65, 1, {0, 4, 9}); // of equal numbers, one a CacheCade group
    }
    std::string group(unsigned slot) {
        return textOf([&](auto out) { mkRaidGroupStr(kCont, model.conts(), static_cast<unsigned char>(slot), out); });
    }
    std::string assign(unsigned slot) {
        return textOf([&](auto out) { mkLDAssignStr(kCont, model.conts(), static_cast<unsigned char>(slot), out); });
    }
    SnapshotModel model;
};

TEST_F(UnitRaidGroups, AreNumberedInConfigurationOrder) {
    const std::pair<unsigned, const char*> arrays[] = {{9, "RG0"}, {4, "scRG0"}, {0, "RG0"}, {127, "RG1"}, {3, "RG2"},
                                                       {5, "RG3"}, {1, "-"},     {128, "-"}, {65535, "-"}};
    for (const auto& [ref, wanted] : arrays)
        EXPECT_EQ(wanted, textOf([&, r = ref](auto out) {
                      mkRaidGroupArrayStr(kCont, model.conts(), static_cast<std::uint16_t>(r), out);
                  }))
            << ref;
}

TEST_F(UnitRaidGroups, OfADriveAreItsOwnOrThoseThatItServes) {
    const std::pair<unsigned, const char*> slots[] = {{0, "RG0"}, {2, "scRG0"}, {3, "RG0"},       {5, "RG1"},
                                                      {6, "RG2"}, {8, "RG3"},   {9, "-"},         {12, "-"},
                                                      {13, "-"},  {99, "-"},    {10, "RG0, RG1"}, {15, "RG0, scRG0"}};
    for (const auto& [slot, wanted] : slots)
        EXPECT_EQ(wanted, group(slot)) << "slot " << slot;
}

TEST_F(UnitRaidGroups, AssignmentNamesLdsOrSpare) {
    model.pd(10).ddfType = 0x08;
    model.pd(12).ddfType = 0x04;
    model.pd(13).ddfType = 0x0C;
    const std::pair<unsigned, const char*> slots[] = {{0, "LD1"}, {4, "LD1"},  {5, "LD2, 5"}, {2, "LD6"},  {6, "-"},
                                                      {9, "-"},   {10, "DHS"}, {12, "GHS"},   {13, "GHS"}, {99, "-"}};
    for (const auto& [slot, wanted] : slots)
        EXPECT_EQ(wanted, assign(slot)) << "slot " << slot;
    _SL_ARRAY_INFO_T& group = model.cont().arrayInfo[127];
    group.ldCount = 255; // beyond its table
    const std::string all = assign(5);
    EXPECT_EQ(63, std::count(all.begin(), all.end(), ','));
    EXPECT_EQ("LD2, ", textOf([&](auto out) { mkLDAssignStr(kCont, model.conts(), 5, out); }, 6)) << "a short buffer";
}

TEST_F(UnitRaidGroups, ThatASpareCanServe) {
    model.array(8, {59});
    model.ld(8, 1, {8});
    model.array(6, {60});
    model.ld(9, 5, {6}, true);
    model.array(7, {61});
    model.ld(10, 3, {7}); // a level that is not known
    _RG_SEL_LIST_T list;
    MakeRaidLvlList(kCont, model.conts(), list);
    std::vector<std::array<unsigned, 3>> got;
    for (unsigned i = 0; i < list.count; ++i)
        got.push_back({list.entry[i].groupNo, list.entry[i].level, list.entry[i].arrayRef});
    const std::vector<std::array<unsigned, 3>> wanted{{0, kRaid10, 9}, {1, kRaid5, 127}, {4, kRaid1, 8}};
    EXPECT_EQ(wanted, got);
    EXPECT_EQ(kRaid10, GetRaidLvlFromPD(kCont, 3, model.conts()));
    EXPECT_EQ(kRaid0, GetRaidLvlFromPD(kCont, 12, model.conts()));
    model.array(11, {50}); // a drive in two arrays is of the last
    model.ld(11, 6, {11});
    EXPECT_EQ(kRaid6, GetRaidLvlFromPD(kCont, 0, model.conts()));
}

} // namespace
} // namespace zebtest
