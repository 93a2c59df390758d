// The words of the reports.
#include <gtest/gtest.h>

#include "main/zebcli_cmd_com/base/string_shims.h"
#include "main/zebcli_cmd_com/model/raid_level.h"
#include "main/zebcli_cmd_com/text/text_field.h"
#include "main/zebcli_cmd_com/text/vocabulary.h"
#include "tests/support/snapshot_model.h"
#include "tests/support/temp_log.h"

namespace zebtest {
namespace {

TEST(UnitVocabulary, WordsForCodes) {
    const std::pair<unsigned short, const char*> states[] = {{0x18, "ONLINE"},   {0x40, "UNKNOWN"},
                                                             {0x03, "UNKNOWN"},  {0x20, "COPYBACK"},
                                                             {0x118, "UNKNOWN"}, {0xFFFF, "UNKNOWN"}};
    for (const auto& [state, wanted] : states)
        EXPECT_EQ(wanted, textOf([s = state](auto out) { mkPDStateStr(s, out); })) << state;
    const std::pair<std::uint8_t, const char*> media[] = {{0, "HDD"},          {1, "SSD"},    {2, "Not defined"},
                                                          {15, "Not defined"}, {0xF0, "HDD"}, {0x31, "SSD"}};
    for (const auto& [type, wanted] : media) {
        _MR_PD_INFO pd{};
        pd.mediaType = type;
        EXPECT_EQ(wanted, textOf([&](auto out) { mkMediaTypeStr(&pd, out); })) << int{type};
    }
    EXPECT_EQ("0x500605B000000001", textOf([](auto out) { FormatSASAddress(0x500605B000000001, out); }));
}

TEST(UnitVocabulary, RaidLevels) {
    const std::pair<std::pair<std::uint8_t, std::uint8_t>, const char*> cases[] = {
        {{0, 2}, "RAID0"}, {{1, 1}, "RAID1"}, {{1, 2}, "RAID10"}, {{5, 1}, "RAID5"}, {{6, 2}, "RAID6"}, {{17, 1}, ""}};
    for (const auto& [levelAndSpans, wanted] : cases) {
        _MR_LD_CONFIG ld{};
        std::tie(ld.primaryRaidLevel, ld.spanDepth) = levelAndSpans;
        EXPECT_STREQ(wanted, raidLevelText(SLTransLateRAIDLvl(&ld), 3)) << int{levelAndSpans.first};
    }
    const TempLog log;
    EXPECT_EQ(nullptr, RaidlvlToStr(static_cast<ZEB_RAID_LVL>(77), 3));
    EXPECT_EQ("!ERR func=RaidlvlToStr: raidlvl_Invalid contNo=3 raidlvl=77\n", log.take());
}

constexpr std::array<std::uint16_t, 3> kNone3{kNoDevice, kNoDevice, kNoDevice};

TEST(UnitVocabulary, LdStateNamesTheFirstDriveAtWork) {
    const struct {
        std::uint8_t state;
        std::uint16_t pdStates[3];
        std::array<std::uint16_t, 3> partners;
        const char* wanted;
    } cases[] = {
        {3, {24, 24, 24}, kNone3, "OPTIMAL"},
        {2, {24, 20, 24}, kNone3, "DEGRADED(REBUILD)"},
        {1, {24, 17, 24}, kNone3, "PARTIALLY DEGRADED"},
        {4, {24, 24, 20}, kNone3, "UNKNOWN(REBUILD)"},
        {3, {24, 24, 32}, {12, kNoDevice, kNoDevice}, "OPTIMAL(COPYBACK)"},
        {2, {20, 24, 32}, {12, kNoDevice, kNoDevice}, "DEGRADED(COPYBACK)"}, // the same drive does both
        {2, {24, 20, 32}, {12, kNoDevice, kNoDevice}, "DEGRADED(COPYBACK)"},
        {2, {20, 24, 32}, {kNoDevice, 12, kNoDevice}, "DEGRADED(REBUILD)"},
        {3, {24, 24, 24}, {12, 99, kNoDevice}, "OPTIMAL"},
    };
    for (const auto& c : cases) {
        SnapshotModel model;
        for (std::uint8_t i = 0; i < 3; ++i) {
            model.device(i, static_cast<std::uint16_t>(10 + i));
            model.pd(i).fwState = c.pdStates[i];
            model.pd(i).copybackPartner = c.partners[i];
        }
        model.array(0, {10, 11, 12});
        model.ld(7, 5, {0});
        model.cont().ldInfo[7].config.state = c.state;
        const auto* ld = &model.cont().ldInfo[7].config;
        EXPECT_EQ(c.wanted, textOf([&](auto out) { mkLDStateStr(kCont, model.conts(), ld, out); }));
        EXPECT_EQ(std::string(c.wanted).substr(0, 7),
                  textOf([&](auto out) { mkLDStateStr(kCont, model.conts(), ld, out); }, 8))
            << "a short buffer";
    }
}

TEST(UnitVocabulary, ProgressNamesOneWork) {
    const struct {
        std::uint32_t active;
        const char *ld, *pd;
    } cases[] = {{0x0, "-", "-"},
                 {0x1, "Consistency Check 50%", "Rebuild 99%"},
                 {0x2, "Background Init 0%", "0% PatrolRead"},
                 {0x3, "Consistency Check 50%", "0% PatrolRead"},
                 {0x4, "Initialization 100%", "-"},
                 {0x8, "Reconstruction 99%", "Copyback 99%"},
                 {0xFFFFFFFF, "Initialization 100%", "0% PatrolRead"},
                 {0xFFFFFFF0, "-", "-"}};
    for (const auto& c : cases) {
        const _MR_LD_PROGRESS ld{c.active, {32768, 9}, {655, 9}, {65535, 9}, {65534, 9}, {}};
        EXPECT_EQ(c.ld, textOf([&](auto out) { mkLDProgressStr(&ld, out); })) << std::hex << c.active;
        const _MR_PD_PROGRESS pd{c.active, {65534, 9}, {655, 9}, {65535, 9}, {}};
        EXPECT_EQ(c.pd, textOf([&](auto out) { mkPDProgressStr(&pd, out); })) << std::hex << c.active;
    }
}

TEST(UnitVocabulary, ErrorsAreThoseOfTheLdsOwnDrives) {
    SnapshotModel model;
    for (std::uint8_t i = 0; i < 3; ++i)
        model.device(i, static_cast<std::uint16_t>(10 + i));
    model.array(0, {10, 11});
    model.ld(7, 5, {0});
    const auto text = [&] { return textOf([&](auto out) { mkLDErrInfoStr(kCont, model.conts(), 7, out); }); };
    model.pd(2).mediaErrorCount = model.pd(2).predFailCount = 1; // not of the LD
    model.pd(0).otherErrorCount = 1;
    EXPECT_EQ("-", text());
    model.pd(1).predFailCount = 0x80000000;
    EXPECT_EQ("PredFail", text());
    model.pd(0).mediaErrorCount = 1;
    EXPECT_EQ("MediaErr,PredFail", text());
    model.pd(1).predFailCount = 0;
    EXPECT_EQ("MediaErr", text());
}

TEST(UnitVocabulary, TextFieldsAndShimsStayInsideTheirWidth) {
    const char full[4] = {'a', 'b', 'c', 'd'};
    EXPECT_STREQ("abcd", fieldText(full).c_str());
    const char odd[8] = {'\x1B', 'x', '\r', '\n', '\x7F', '\xE9', '\0', 'y'};
    EXPECT_STREQ(" x   \xE9", fieldText(odd).c_str());

    char out[6] = "12345";
    EXPECT_EQ(5, sprintf_s(out, sizeof out, "%s", "longer than that"));
    EXPECT_STREQ("longe", out);
    strcpy_s(out, 3, "xyz");
    EXPECT_STREQ("xy", out);
    strcat_s(out, 4, "zzz");
    EXPECT_STREQ("xyz", out);
    lstrcat(out, "abcdef");
    EXPECT_STREQ("xyzab", out);
    EXPECT_EQ(5, wsprintf(out, "%d", 1234567));
    EXPECT_STREQ("12345", out);
    char unended[3] = {'a', 'b', 'c'};
    strcat_s(unended, sizeof unended, "d"); // nothing to append to, and no reading on
    EXPECT_EQ(0, sprintf_s(out, 0, "%d", 1));
}

} // namespace
} // namespace zebtest
