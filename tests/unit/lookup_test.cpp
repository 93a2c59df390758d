// Questions about the snapshot, also about one that lies about its sizes.
#include <gtest/gtest.h>

#include "main/zebcli_cmd_com/model/lookup.h"
#include "main/zebcli_cmd_com/model/raid_group_numbers.h"
#include "main/zebcli_cmd_com/model/raid_groups.h"
#include "main/zebcli_cmd_com/text/raid_group_words.h"
#include "tests/support/scripted_library.h"
#include "tests/support/snapshot_model.h"

namespace zebtest {
namespace {

using Slots = std::vector<int>;

Slots slotsOf(unsigned char ldNo, const _AFCONT* conts) {
    const PdsInLd pds = pdsInLd({kCont, conts}, ldNo);
    return {pds.list().begin(), pds.list().end()};
}

/// An LD 3 over arrays 7 and 2, drives in other slots than their order.
void fill(SnapshotModel& model) {
    model.device(9, 100, 0x0D);
    model.device(4, 20);
    model.device(2, 21);
    model.device(8, 22);
    model.device(0, 23);
    model.array(2, {20, kNoDevice, 21});
    model.array(7, {22, 23});
    model.ld(3, 1, {7, 2});
}

TEST(UnitLookup, DevicesAndSlots) {
    SnapshotModel model;
    model.device(5, 30);
    model.device(6, 30);
    model.device(7, 30, 0x0D);
    model.device(6, 31);
    const _AFCONT* conts = model.conts();
    unsigned char slot = 0;
    EXPECT_EQ(1, GetSlotNo(kCont, 30, &slot, conts));
    EXPECT_EQ(6, slot) << "the last disk counts";
    EXPECT_EQ(0, GetSlotNo(kCont, 32, &slot, conts));
    EXPECT_EQ(0, GetSlotNo(0, 30, &slot, conts)) << "of another controller";
    unsigned short deviceId = 0;
    EXPECT_EQ(1, GetDeviceId(kCont, conts, 6, &deviceId));
    EXPECT_EQ(30, deviceId) << "the first disk counts";
    EXPECT_EQ(0, GetDeviceId(kCont, conts, 7, &deviceId));
    std::array<unsigned char, kMaxSlots> map;
    map.fill(9);
    GetDeviceFoundList(kCont, conts, map);
    for (unsigned i = 0; i < kMaxSlots; ++i) {
        EXPECT_EQ(i == 5 || i == 6, map[i]) << i;
        EXPECT_EQ(map[i], IsExistPD(kCont, static_cast<unsigned char>(i), conts)) << i;
    }
}

TEST(UnitLookup, DrivesOfAnLdInSpanOrder) {
    SnapshotModel model;
    fill(model);
    EXPECT_EQ((Slots{8, 0, 4, 2}), slotsOf(3, model.conts()));
    EXPECT_EQ(Slots{}, slotsOf(4, model.conts()));
    for (const unsigned ldNo : {64U, 255U})
        EXPECT_EQ(Slots{}, slotsOf(static_cast<unsigned char>(ldNo), model.conts()));
    model.array(7, {21}); // a second array with that reference
    EXPECT_EQ((Slots{8, 0, 2, 4, 2}), slotsOf(3, model.conts()));
    EXPECT_EQ(1, IsExistLD(kCont, 3, model.conts()));
    EXPECT_EQ(0, IsExistLD(kCont, 2, model.conts()));
}

constexpr std::array<std::uint16_t, 4> kNone4{kNoDevice, kNoDevice, kNoDevice, kNoDevice};

TEST(UnitLookup, BackgroundWorkOfTheLdComesBeforeThatOfItsDrives) {
    const struct {
        const char* name;
        std::uint32_t active;
        std::uint16_t states[4]; // of slots 8, 0, 4, 2
        std::array<std::uint16_t, 4> partners;
        int wanted;
    } cases[] = {
        {"nothing", 0, {24, 24, 24, 24}, kNone4, 0},
        {"initialisation before all else", 0xFFFFFFFF, {20, 24, 24, 24}, {20, 20, 20, 20}, 1},
        {"consistency check", 0x0B, {20, 24, 24, 24}, {20, 20, 20, 20}, 2},
        {"other bits are no work", 0x0A, {24, 24, 24, 24}, kNone4, 0},
        {"a rebuild", 0, {24, 24, 24, 20}, kNone4, 3},
        {"a copy-back on an earlier drive", 0, {24, 32, 20, 24}, {23, kNoDevice, kNoDevice, kNoDevice}, 4},
        {"a rebuild on an earlier drive", 0, {20, 32, 24, 24}, {kNoDevice, kNoDevice, 23, kNoDevice}, 3},
        {"a partner in another state", 0, {24, 31, 24, 24}, {23, 23, 23, 23}, 0},
        {"a partner that is not there", 0, {32, 24, 24, 24}, {100, 999, kNoDevice, kNoDevice}, 0},
        {"a drive's own copy-back state does not count", 0, {32, 24, 24, 24}, {kNoDevice, 23, 23, 23}, 0},
    };
    for (const auto& c : cases) {
        SnapshotModel model;
        fill(model);
        const _AFCONT* conts = model.conts();
        constexpr unsigned char kSlots[] = {8, 0, 4, 2};
        for (unsigned i = 0; i < 4; ++i) {
            model.pd(kSlots[i]).fwState = c.states[i];
            model.pd(kSlots[i]).copybackPartner = c.partners[i];
        }
        model.cont().ldInfo[3].progress.active = c.active;
        EXPECT_EQ(c.wanted, CheckLDActive(kCont, 3, conts)) << c.name;
    }
}

TEST(UnitLookup, LyingSizesStayInsideTheirTables) {
    for (const std::uint32_t count : {257U, 65535U, 0xFFFFFFFFU}) {
        SnapshotModel model;
        fill(model);
        model.conts();
        model.cont().pdList->count = count;
        model.cont().ldList->count = count;
        std::array<unsigned char, kMaxSlots> map;
        GetDeviceFoundList(kCont, model.conts(), map);
        EXPECT_EQ(1, map[4]);
        EXPECT_EQ(0, IsExistLD(kCont, 77, model.conts()));
    }
    // Configurations of random bytes, some shorter than their own head, with any counts: nothing is read past the
    // block.
    for (std::uint32_t seed = 8; seed < 300; ++seed) {
        SnapshotModel model;
        fill(model);
        const _AFCONT* conts = model.conts();
        Bytes block = randomBytes(seed, seed % 3 == 0 ? seed / 8 : 32 + seed * 7);
        if (seed % 2 == 0 && block.size() > 34)
            block[5] = block[9] = block[13] = 0; // counts that are not hopeless
        model.useConfig(block);
        auto& ld = model.cont().ldInfo[3].config;
        ld.spanDepth = 255;
        MakeTransformRGNo(arraysOf(model.cont()), ldConfigsOf(model.cont()), model.cont().rgNoList);
        EXPECT_GE(kMaxSlots, slotsOf(3, conts).size());
        for (unsigned slot = 0; slot < 16; ++slot)
            for (const auto build : {mkRaidGroupStr, mkLDAssignStr})
                EXPECT_FALSE(
                    textOf([&](auto out) { build(kCont, conts, static_cast<unsigned char>(slot), out); }).empty());
        _RG_SEL_LIST_T groups;
        MakeRaidLvlList(kCont, conts, groups);
        EXPECT_GE(128U, groups.count);
    }
}

} // namespace
} // namespace zebtest
