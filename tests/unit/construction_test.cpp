// Construction rules: the levels that can be built, the settings offered, the capacity of what is planned.
#include <cstring>

#include <gtest/gtest.h>

#include "commands/zebcli_cmd_ld/creation/construction.h"
#include "commands/zebcli_cmd_ld/setting_tables.h"
#include "main/zebcli_cmd_com/model/lookup.h"
#include "tests/support/private_opt.h"
#include "tests/support/sandbox.h"
#include "tests/support/scripted_library.h"
#include "tests/support/snapshot_model.h"
#include "tests/support/temp_log.h"

namespace zebtest {
namespace {

using Levels = std::vector<ZEB_RAID_LVL>;

Levels levelsOf(const _configPat_T::Row& row) {
    return {row.level, row.level + row.count};
}
Levels levelsOf(const _raidConstructInfoT& list) {
    return {list.level, list.level + list.count};
}

/// A controller that can build everything, from 1 drive RAID0, from 2 RAID1, from 3 RAID5, from 4 RAID10 and RAID6.
struct UnitConstruction : testing::Test {
    UnitConstruction() {
        model.cont().ctrlInfo.raidLevels = 0xFF;
        configPat = {};
        configPat.row[0] = {1, {kRaid0}};
        configPat.row[1] = {1, {kRaid1}};
        configPat.row[2] = {1, {kRaid5}};
        configPat.row[3] = {2, {kRaid10, kRaid6}};
        unconfiguredPds = 0;
    }
    void unconfigured(const std::vector<unsigned char>& slots) {
        std::copy(slots.begin(), slots.end(), unconfiguredPdList.begin());
        unconfiguredPds = static_cast<unsigned>(slots.size());
    }
    SnapshotModel model;
    TempLog log;
};

struct UnitPatternFile : SandboxTest {
    TempLog log;
};

TEST_F(UnitPatternFile, EachLineIsANumberOfDrives) {
    std::string rows = "RAID0\nRAID1,RAID10,RAID5,RAID6,RAID0\n\nraid0,RAID1 , "
                       "RAID5,RAID6\nRAID10x,RAID0\nJBOD,RAID0,RAID1,RAID5,RAID6\n,,RAID5\n" +
                       std::string(511, 'x') + "RAID0\nRAID6\r\nRAID5";
    for (int i = 0; i < 300; ++i)
        rows += i == 0 ? "\n" : "RAID1\n";
    const Levels wanted[] = {{kRaid0}, {kRaid1, kRaid10, kRaid5, kRaid6},
                             {},       {kRaid6},
                             {kRaid0}, {kRaid0, kRaid1, kRaid5},
                             {kRaid5}, {},
                             {kRaid0}, {},
                             {kRaid5}, {kRaid1}};
    auto table = std::make_unique<_configPat_T>();
    std::memset(static_cast<void*>(table.get()), 0x5A, sizeof *table);
    const _configPat_T old = *table;
    std::filesystem::remove(box.patternFile());
    withOpt(box.opt(), [&] { ReadConfigPatFile(table.get()); });
    EXPECT_EQ(0, std::memcmp(&old, table.get(), sizeof old)) << "a missing file leaves the table as it was";
    EXPECT_EQ("!ERR func=ReadConfigPatFile: ConfigPatFile open error\n", log.take());
    writeFile(box.patternFile(), rows);
    withOpt(box.opt(), [&] { ReadConfigPatFile(table.get()); });
    for (std::size_t i = 0; i < std::size(wanted); ++i)
        EXPECT_EQ(wanted[i], levelsOf(table->row[i])) << i;
    EXPECT_EQ(Levels{kRaid1}, levelsOf(table->row[255]));
    EXPECT_EQ(0, table->row[2].count) << "the table is cleared first";
}

TEST_F(UnitConstruction, SupportAndLimitsOfALevel) {
    _MR_CTRL_INFO& info = model.cont().ctrlInfo;
    for (std::uint16_t i = 0; i < 16; ++i)
        info.pdsForRaidLevel[i] = static_cast<std::uint16_t>((4000U + i) << 4U | 0xFU);
    const unsigned limits[] = {4000, 4001, 4002, 4004, 4005};
    const std::uint32_t bits[] = {0x01, 0x02, 0x04, 0x10, 0x20};
    for (unsigned level = 0; level < kRaidLevels; ++level) {
        const auto lvl = static_cast<ZEB_RAID_LVL>(level);
        EXPECT_EQ(limits[level], GetMaxPdNumForRaidLvl(lvl, model.conts(), kCont)) << level;
        info.raidLevels = bits[level];
        EXPECT_EQ(1, IsSupportRaidLvl(lvl, model.conts(), kCont)) << level;
        info.raidLevels = ~bits[level];
        EXPECT_EQ(0, IsSupportRaidLvl(lvl, model.conts(), kCont)) << level;
    }
    EXPECT_EQ("", log.take());
    EXPECT_EQ(0, IsSupportRaidLvl(kRaidUnknown, model.conts(), kCont));
    EXPECT_EQ(0U, GetMaxPdNumForRaidLvl(static_cast<ZEB_RAID_LVL>(99), model.conts(), kCont));
    const std::string trace = log.take();
    EXPECT_TRUE(trace.starts_with("!ERR func=IsSupportRaidLvl: ")) << trace;
    EXPECT_TRUE(trace.ends_with(", contNo=1, raidlvl=99\n")) << trace;
}

TEST_F(UnitConstruction, CandidateLevels) {
    const struct {
        unsigned mode, drives;
        Levels wanted;
    } cases[] = {{1, 1, {kRaid0}},
                 {1, 2, {kRaid1, kRaid0}},
                 {1, 3, {kRaid5, kRaid1}},
                 {1, 4, {kRaid5, kRaid6, kRaid10}},
                 {1, 5, {kRaid6, kRaid10}},
                 {1, 6, {}},
                 {2, 4, {kRaid5, kRaid1, kRaid0}},
                 {2, 1, {}},
                 {4, 4, {kRaid0}},
                 {255, 4, {}},
                 {0, 3, {kRaid5, kRaid6, kRaid10, kRaid1, kRaid0}},
                 {0, 256, {kRaid5, kRaid6, kRaid10, kRaid1, kRaid0}},
                 {1, 0xFFFFFFFF, {}}};
    for (const auto& c : cases) {
        _raidConstructInfoT out{};
        getRaidConstructInfo(c.mode, c.drives, out, model.conts(), kCont);
        EXPECT_EQ(c.wanted, levelsOf(out)) << "mode " << c.mode << ", " << c.drives << " drives";
    }
    const struct {
        ZEB_RAID_LVL first;
        unsigned drives;
        Levels wanted, forSnapshot;
    } others[] = {{kRaid0, 1, {}, {}},
                  {kRaid0, 2, {kRaid0}, {kRaid0}},
                  {kRaid0, 5, {kRaid5, kRaid6, kRaid10, kRaid1}, {kRaid5, kRaid6, kRaid10, kRaid1}},
                  {kRaid1, 5, {kRaid5, kRaid1, kRaid0}, {kRaid0, kRaid5, kRaid1}},
                  {kRaid5, 4, {kRaid0}, {kRaid0}},
                  {kRaid5, 3, {}, {}}};
    for (const auto& c : others)
        for (const bool snapshot : {false, true}) {
            _raidConstructInfoT out{};
            getOtherRaidConstructInfo(c.first, c.drives, out, model.conts(), kCont, snapshot);
            EXPECT_EQ(snapshot ? c.forSnapshot : c.wanted, levelsOf(out)) << c.first << ", " << c.drives << " drives";
        }
    configPat.row[255] = {255, {kRaid0, kRaid0, kRaid0, kRaid0}}; // a count beyond its row
    for (const unsigned drives : {0U, 1U, 256U, 257U, 0xFFFFFFFFU})
        EXPECT_EQ(drives == 1 || drives == 256, isRaidConstructOk(drives, kRaid0, model.conts(), kCont)) << drives;
    model.cont().ctrlInfo.raidLevels = 0xFB; // no RAID5
    EXPECT_EQ(4U, getRaidConstructMinNumDrives(kRaid6, model.conts(), kCont));
    EXPECT_EQ(0U, getRaidConstructMinNumDrives(kRaid5, model.conts(), kCont));
    EXPECT_EQ(0, isRaidConstructOk(3, kRaid5, model.conts(), kCont));
    configPat.row[1] = {};
    EXPECT_EQ(0U, getRaidConstructMinNumDrives(kRaid1, model.conts(), kCont));
}

TEST_F(UnitConstruction, SettingsThatTheControllerOffers) {
    const auto rows = [](std::span<const SettingItem> table) {
        std::string text;
        for (const SettingItem& item : table)
            text += item.label + ("=" + std::to_string(item.value) + " ");
        return text;
    };
    const struct {
        std::uint8_t smallest, largest;
        const char* wanted;
    } cases[] = {{5, 9, "16K=5 32K=6 64K=7 128K=8 256K=9 "},
                 {7, 6, ""},
                 {11, 255, "1M=11 "},
                 {2, 3, "8K=2 16K=3 "},
                 {0, 255, "8K=0 16K=1 32K=2 64K=3 128K=4 256K=5 512K=6 1M=7 "}};
    for (const auto& c : cases) {
        model.cont().ctrlInfo.stripeSizeMin = c.smallest;
        model.cont().ctrlInfo.stripeSizeMax = c.largest;
        SetSupportStripeSize(kCont, model.conts());
        EXPECT_EQ(c.wanted, rows(supportedStripeSizes())) << int{c.smallest} << " to " << int{c.largest};
    }
    for (const bool backup : {false, true, false}) {
        model.cont().ctrlInfo.hwPresent = backup ? 1 : 0xFE;
        SetSupportWritePolicy(kCont, model.conts());
        EXPECT_EQ(std::string("Write Through=0 Always Write Back=17 ") + (backup ? "Write Back=1 " : ""),
                  rows(supportedWritePolicies()));
    }
}

TEST_F(UnitConstruction, NothingIsOfferedForNoDrives) {
    for (const unsigned mode : {0U, 1U, 2U}) {
        _raidConstructInfoT out{};
        out.count = 3;
        getRaidConstructInfo(mode, 0, out, model.conts(), kCont);
        EXPECT_EQ(0, out.count) << "mode " << mode;
    }
    auto list =
        std::make_unique<_raidConstructInfoT>(_raidConstructInfoT{255, {kRaid0, kRaid1, kRaid5, kRaid6, kRaid10}});
    RaidLvlSort(*list); // no further than the array
    EXPECT_EQ(kRaid5, list->level[0]);
    EXPECT_EQ(kRaid0, list->level[4]);
}

TEST_F(UnitConstruction, SizesOfCandidatesInTheirOrder) {
    model.pd(7).coercedSize = 300;
    model.pd(255).coercedSize = 100;
    _PD_CANDIDATES_T candidates{3, {7, 255, 7}};
    std::array<std::uint64_t, 4> sizes{1, 1, 1, 1};
    EXPECT_EQ(3U, GePdSizeList(sizes, model.conts(), kCont, candidates));
    EXPECT_EQ((std::array<std::uint64_t, 4>{300, 100, 300, 1}), sizes);
    EXPECT_EQ(200U, GetLDCapaciity(std::span(sizes).first(3), kRaid5, kCont)) << "the smallest counts";
    EXPECT_EQ(0U, GetLDCapaciity({}, kRaid0, kCont));
    candidates.count = 0xFFFF;
    EXPECT_EQ(2U, GePdSizeList(std::span(sizes).first(2), model.conts(), kCont, candidates))
        << "no further than the room";
}

TEST_F(UnitConstruction, MixedDrivesDifferFromTheFirst) {
    unconfigured({3, 1, 200});
    for (const unsigned char slot : {std::uint8_t{3}, std::uint8_t{1}, std::uint8_t{200}})
        model.pd(slot).ddfType = 0x2000;
    model.pd(1).ddfType = 0x2FFF; // only the upper four bits are the interface
    model.pd(200).mediaType = 0xF0; // only the lower four the media
    model.pd(9).ddfType = 0x1000; // not listed
    EXPECT_EQ(0, IsMixedInterfacePD(model.conts(), kCont) + IsMixedMediaTypePD(model.conts(), kCont));
    model.pd(200).ddfType = 0x1000;
    EXPECT_EQ(1, IsMixedInterfacePD(model.conts(), kCont));
    model.pd(1).mediaType = 1;
    EXPECT_EQ(1, IsMixedMediaTypePD(model.conts(), kCont));
    unconfigured({});
    EXPECT_EQ(0, IsMixedInterfacePD(model.conts(), kCont) + IsMixedMediaTypePD(model.conts(), kCont));
}

TEST_F(UnitConstruction, CapacityOfWhatIsPlanned) {
    constexpr std::uint64_t kGb = 2097152;
    const std::uint64_t sizes[] = {4, 2, 8, 6, 1};
    for (unsigned char slot = 0; slot < 5; ++slot)
        model.pd(slot).coercedSize = sizes[slot] * kGb;
    model.cont().ctrlInfo.pdsForRaidLevel[2] = 3 << 4; // RAID5
    model.cont().ctrlInfo.pdsForRaidLevel[0] = 32 << 4;
    unconfigured({2, 0, 3, 1, 4});
    const struct {
        ZEB_RAID_LVL level;
        bool keepSpare;
        unsigned spare;
        const char* wanted;
    } cases[] = {{kRaid0, false, 0, "5.000"}, {kRaid0, true, 4, "8.000"}, {kRaid0, true, 0, "4.000"},
                 {kRaid5, false, 0, "8.000"}, {kRaid5, true, 1, "4.000"}, {kRaid0, true, 99, "8.000"},
                 {kRaid1, false, 0, "0.000"}};
    for (const auto& c : cases) {
        char text[32];
        SetLDCapacityText(text, c.level, c.keepSpare, c.spare, model.conts(), kCont);
        EXPECT_STREQ(c.wanted, text) << c.level << ", spare " << c.spare;
    }
    auto plan = std::make_unique<_SL_CREATE_LD_INFO_T>();
    plan->arrayCount = 2;
    plan->array[0] = {kRaid6, 4, {0, 2, 3, 1}, 0, 0, 0, 0, 1, {}, 0, {}};
    plan->array[1] = {kRaid10, 5, {4, 3, 2, 0, 1}, 0, 0, 0, 0, 1, {}, 0, {}};
    char texts[2][kCapacityTextSize];
    ShowLDCapacity(texts, *plan, model.conts(), kCont);
    EXPECT_STREQ("4.000", texts[0]);
    EXPECT_STREQ("2.000", texts[1]);

    _MR_LD_CONFIG ld{};
    ld.primaryRaidLevel = 1;
    ld.numDrives = 2;
    ld.spanDepth = 3;
    EXPECT_EQ(0U, GetLDSize(&ld, kCont));
    ld.span[1].numBlocks = 100;
    ld.span[2].numBlocks = 7;
    EXPECT_EQ(300U, GetLDSize(&ld, kCont)) << "RAID10 of six drives, by the first span that is not empty";
}

TEST_F(UnitConstruction, DefaultsAndSizesAskTheLibraryForEachDrive) {
    ScriptedLibrary script;
    const auto answer = [&](std::uint8_t slot, std::uint64_t size, std::uint32_t status) {
        _MR_PD_LIST list{};
        list.count = 1;
        list.addr[0].slotNo = slot;
        _MR_PD_INFO info{};
        info.coercedSize = size;
        script.expect({.type = 1, .cmd = 4, .contNo = kCont, .size = 6152, .answer = bytesOf(list)});
        script.expect({.type = 2, .cmd = 0, .contNo = kCont, .size = 512, .answer = bytesOf(info), .status = status});
    };
    auto plan = std::make_unique<_SL_CREATE_LD_INFO_T>();
    plan->arrayCount = 1;
    plan->array[0] = {
        kRaid5, 3, {7, 8, 9}, 9, 9, 9, 9, 3, {{200, {}, 0, 0, 0, 0}, {1, {}, 0, 0, 0, 0}, {2, {}, 0, 0, 0, 0}}, 0, {}};
    for (const bool backup : {false, true}) {
        std::ranges::fill(plan->array[0].ld[0].name, 'x');
        answer(7, 1000, 0);
        answer(8, 901, 0);
        answer(9, 5, 0x22); // a drive whose size cannot be read is passed over
        model.cont().ctrlInfo.hwPresent = backup;
        EXPECT_EQ(0, CreateLDDefaultSet(*plan, model.conts(), kCont, 6));
        const PlannedArray& array = plan->array[0];
        EXPECT_EQ(backup ? 0x01 : 0x00, array.defaultCachePolicy);
        EXPECT_EQ(0, array.accessPolicy);
        EXPECT_EQ(2, array.diskCachePolicy);
        EXPECT_EQ(7, array.stripeSize);
        EXPECT_EQ("LD_200" + std::string(10, '\0'), std::string(array.ld[0].name, sizeof array.ld[0].name));
        EXPECT_EQ(6, array.ld[2].initType);
        EXPECT_EQ(600U, array.ld[2].size); // 2 x 901 / 3
        script.finish();
    }
    log.take();
    plan->array[0].pdCount = 0;
    plan->array[0].level = static_cast<ZEB_RAID_LVL>(5);
    EXPECT_EQ(0, CreateLDDefaultSet(*plan, model.conts(), kCont, 6));
    EXPECT_EQ("!ERR func=CreateLDDefaultSet: raidlvl invalid, contNo=1, raidlvl=5\n", log.take());
    plan->array[0].pdCount = 3;
    answer(7, 1000, 0x22);
    answer(8, 901, 0);
    answer(9, 901, 0);
    EXPECT_EQ(0, ConfirmDiffPDSize(*plan, kCont));
    const std::string trace = log.take();
    EXPECT_TRUE(trace.ends_with("\n!ERR func=ConfirmDiffPDSize: SLGetPDInfo error, contNo=1, pdNo=7\n")) << trace;
    answer(7, 901, 0);
    answer(8, 902, 0);
    EXPECT_EQ(1, ConfirmDiffPDSize(*plan, kCont)) << "the first that differs decides";
}

} // namespace
} // namespace zebtest
