// Easy creation: the drives it takes, the menus, plans, requests, and the spares.
#include "tests/support/creation_case.h"

#include <algorithm>
#include <filesystem>

namespace zebtest {
namespace {

constexpr Wire kWire{0};
constexpr char kFive[] = R"({"controllers": [{"cacheBackup": {}, "enclosures": [{"slots": 6}],
  "drives": [{"repeat": 5}]}]})";
constexpr char kQuestion[] = "Please input number or Q :";

Line menu(const std::string& text) {
    return {true, false, text + kQuestion};
}
Lines table(const std::vector<std::string>& rows) {
    Lines lines = said("### Physical Drive(PD) ###\n"
                       "PD No. LD No.            RG No. RAID Level State              Type Capacity[GB]\n"
                       "------ ----------------- ------ ---------- ------------------ ---- ------------");
    for (const auto& row : rows)
        lines.push_back(said(row));
    return lines;
}
std::string usableRow(unsigned slot, const std::string& capacity = "278.875     ", const std::string& media = "HDD ") {
    const std::string name = "PD" + number(slot);
    return name + std::string(7 - name.size(), ' ') + "* -               -      -          Unconfig GOOD      " +
           media + " " + capacity;
}
std::string emptyRow(unsigned slot) {
    const std::string name = "PD" + number(slot);
    return name + std::string(7 - name.size(), ' ') +
           "-                 -      -          -                  -    -           ";
}
Lines fiveDrives() {
    return table({usableRow(0), usableRow(1), usableRow(2), usableRow(3), usableRow(4), emptyRow(5)});
}
const std::string kCounts = "Number of LDs(Logical Drives)\n  1: 1\n  2: 2\n";
const std::string kSingles = "RAID Level of LD 1\n"
                             "  1: RAID5  PD  5  Hot Spare 0  1115.500 GB\n"
                             "  2: RAID5  PD  4  Hot Spare 1  836.625 GB\n"
                             "  3: RAID6  PD  5  Hot Spare 0  836.625 GB\n"
                             "  4: RAID6  PD  4  Hot Spare 1  557.750 GB\n"
                             "  5: RAID10 PD  4  Hot Spare 1  557.750 GB\n"
                             "  6: RAID0  PD  5  Hot Spare 0  1394.375 GB\n";
const std::string kFirstLevels = "RAID Level of LD 1\n  1: RAID5\n  2: RAID6\n  3: RAID10\n  4: RAID1\n  5: RAID0\n";
GroupLines raid5OnFour() {
    return {.lds = {"LD0 (LD_0, 836.625GB, RAID5)"}, .pds = "252:0,252:1,252:2,252:3", .write = "Write Back"};
}
std::string asked(unsigned slots) {
    return kWire.request("01/00", 0, " size=2048") + (slots != 0 ? kWire.request("01/05", 0, " size=4616") : "");
}
/// What the library is asked for the drives of a plan before its last question.
std::string planned(const std::vector<unsigned>& slots) {
    std::string defaults;
    std::string boot;
    for (const unsigned slot : slots) {
        defaults += kWire.pdInfo(slot);
        boot += bootSector(kWire, slot);
    }
    return defaults + boot + defaults;
}
std::string pdInfos(const std::vector<unsigned>& slots) {
    std::string text;
    for (const unsigned slot : slots)
        text += kWire.pdInfo(slot);
    return text;
}
const SnapshotShape kBefore{.wire = kWire, .slots = {0, 1, 2, 3, 4}};

using CreationEasy = OperationTest;

TEST_F(CreationEasy, OneLdWithASpare) {
    SnapshotShape after = kBefore;
    after.lds = {0};
    after.arrays = {0};
    check(kFive,
          {.args = "-lde",
           .lines = fiveDrives() + menu(kCounts) + menu(kSingles) + plan(0, {raid5OnFour()}, {"PD4 (GHS, 278.875GB)"}) +
                    asksToExecute() + added("SLCreateLD", 0) + created(0, "0") +
                    said("Information - Controller[0] Settings have been changed PD(Physical Drive) 4."),
           .requests = asked(6) + planned({0, 1, 2, 3}) + snapshotRequests({kBefore}, true) + pdInfos({0, 1, 2, 3}) +
                       creationRequest(kWire, keptBlock("raid5_four")) + snapshotRequests({after}, true) +
                       kWire.pdChange("02/0a", 4),
           .input = "1\n2\ny\n"});
}

TEST_F(CreationEasy, TwoLdsWithOneRequest) {
    SnapshotShape after = kBefore;
    after.lds = {0, 1};
    after.arrays = {0, 1};
    check(
        kFive,
        {.args = "-lde",
         .lines = fiveDrives() + menu(kCounts) + menu(kFirstLevels) +
                  menu("RAID Level of LD 2\n  1: RAID1\n  2: RAID0\n") +
                  menu("Division of PDs(Physical Drives)\n"
                       "  1: PD  3 557.750 GB / PD  2 278.875 GB / Hot Spare 0\n") +
                  plan(0, {{.lds = {"LD0 (LD_0, 557.750GB, RAID5)"}, .pds = "252:0,252:1,252:2", .write = "Write Back"},
                           {.lds = {"LD1 (LD_1, 278.875GB, RAID1)"}, .pds = "252:3,252:4", .write = "Write Back"}}) +
                  asksToExecute() + added("SLCreateLD", 0) + created(0, "0,1"),
         .requests = asked(6) + planned({0, 1, 2, 3, 4}) + snapshotRequests({kBefore}, true) +
                     pdInfos({0, 1, 2, 3, 4}) + creationRequest(kWire, keptBlock("pair")) +
                     snapshotRequests({after}, true),
         .input = "2\n1\n1\n1\ny\n"});
}

TEST_F(CreationEasy, EveryMenuTakesItsRowsOnly) {
    const auto again = [](const std::string& typed) {
        return Line{true, false, "\"" + typed + "\" is invalid.\n" + kQuestion};
    };
    const Lines twice = fiveDrives() + menu(kCounts);
    for (const char* end : {"Q\n", "q\n", ""}) {
        check(kFive, {.args = "-lde", .lines = twice, .requests = asked(6), .input = end});
        check(
            kFive,
            {.args = "-lde", .lines = twice + menu(kSingles), .requests = asked(6), .input = std::string("1\n") + end});
        check(kFive, {.args = "-lde",
                      .lines = twice + menu(kFirstLevels),
                      .requests = asked(6),
                      .input = std::string("2\n") + end});
    }
    check(kFive, {.args = "-lde",
                  .lines = twice + again("0") + again("3") + again("1x") + again("01") + again("") + again("Quit") +
                           menu(kSingles) + again("7") + again("99"),
                  .requests = asked(6),
                  .input = "0\n3\n1x\n01\n\nQuit\n1\n7\n99\nq"});
    check(kFive, {.args = "-lde -a0", .lines = badToken("-lde")});
    check(kFive, {.args = "-LDE x y", .lines = badToken("-LDE")});
}

TEST_F(CreationEasy, NoEndsWithoutAChange) {
    constexpr char kUnlike[] = R"({"controllers": [{"maxPds": 2, "drives": [{}, {"blocks": 389545984}]}]})";
    const Lines rows = table({usableRow(0), usableRow(1, "185.750     ")});
    const Line singles = menu("RAID Level of LD 1\n  1: RAID1  PD  2  Hot Spare 0  185.750 GB\n"
                              "  2: RAID0  PD  2  Hot Spare 0  371.500 GB\n");
    const Line counts = menu(kCounts);
    const Lines shown = plan(0, {{.lds = {"LD0 (LD_0, 185.750GB, RAID1)"}, .pds = "0,1"}});
    const Line unlike = said("Warning - Some PDs(Physical Drives) have different capacity.\n"
                             "Create the LD[s](Logical Drive[s])?(Y/N)?");
    check(kUnlike, {.args = "-lde",
                    .lines = rows + counts + singles + shown + unlike,
                    .requests = asked(1) + planned({0, 1}),
                    .input = "1\n1\nn\n"});
    check(kUnlike, {.args = "-lde",
                    .lines = rows + counts + singles + shown + unlike + asksToExecute(),
                    .requests = asked(1) + planned({0, 1}),
                    .input = "1\n1\ny\nN\n"});
}

const std::string kOneChoice = "RAID Level of LD 1\n  1: RAID0  PD  1  Hot Spare 0  278.875 GB\n";

TEST_F(CreationEasy, DrivesThatAreNotUsedAreNamed) {
    const auto row = [](unsigned slot, const std::string& rest) {
        const std::string name = "PD" + number(slot);
        return name + std::string(7 - name.size(), ' ') + rest;
    };
    const auto unused = [](unsigned slot, const std::string& reason) {
        return said("Information - PD(Physical Drive) " + number(slot) + " is not used: " + reason + ".");
    };
    const std::string good = "-                 -      -          Unconfig GOOD      HDD  278.875     ";
    const Lines list = table({usableRow(0), row(1, good), row(2, good),
                              row(3, "-                 -      -          Unconfig BAD       HDD  278.875     "),
                              row(4, "-                 -      -          Unconfig GOOD      HDD  0.000       ")}) +
                       unused(1, "a foreign configuration exists") + unused(2, "an operation is in progress") +
                       unused(4, "the capacity is zero");
    constexpr char kOdd[] = R"({"controllers": [{"maxPds": 5, "drives":
        [{}, {"foreign": true}, {"clear": 5}, {"state": "bad"}, {"blocks": 0}]}]})";
    check(kOdd, {.args = "-lde", .lines = list + menu(kOneChoice), .requests = asked(1), .input = "Q\n"});
    constexpr char kShared[] =
        R"({"controllers": [{"enclosures": [{"deviceId": 252, "slots": 2}, {"deviceId": 253, "slots": 2}],
        "drives": [{"slot": 0}, {"slot": 1, "enclosure": 252}, {"slot": 1, "enclosure": 253, "deviceId": 77}]}]})";
    check(kShared, {.args = "-lde",
                    .lines = table({usableRow(0), row(1, good), emptyRow(2)}) +
                             unused(1, "the slot number is not unique") + menu(kOneChoice),
                    .requests = asked(1),
                    .input = "Q\n"});
}

/// The enclosure of the second controller names no slot; the controller's own limit says how many rows there are.
TEST_F(CreationEasy, TheTableShowsEverySlotAndWhatItsDriveBelongsTo) {
    auto options = optionsFor(R"({"controllers": [{"drives": [{}]}, {"id": 1, "maxPds": 8, "enclosures": [{"slots": 0}],
        "drives": [{"repeat": 4}, {"media": "SSD"}, {"slot": 6}, {"state": "bad"}],
        "arrays": [{"drives": [0, 1]}, {"drives": [4]}],
        "lds": [{"level": 1, "spans": [{"array": 0}]}, {"id": 1, "cacheCade": true, "spans": [{"array": 1}]}],
        "spares": [{"drive": 2, "arrays": [0]}, {"drive": 3}]}]})",
                              "-lde");
    options.input = Input::kPipe;
    options.inputText = "1\n";
    const auto result = box.run(options);
    EXPECT_NE(std::string::npos,
              result.out.find("------------\n"
                              "PD0    LD0               RG0    RAID1      ONLINE             HDD  278.875     \n"
                              "PD1    LD0               RG0    RAID1      ONLINE             HDD  278.875     \n"
                              "PD2    DHS               RG0    -          HOT SPARE          HDD  278.875     \n"
                              "PD3    GHS               -      -          HOT SPARE          HDD  278.875     \n"
                              "PD4    LD1               scRG0  RAID0      ONLINE             SSD  278.875     \n" +
                              emptyRow(5) + "\n" + usableRow(6) +
                              "\nPD7    -                 -      -          Unconfig BAD       HDD  278.875     \n" +
                              menu(kOneChoice).text))
        << result;
}

TEST_F(CreationEasy, WhatCannotBeBuiltIsSaid) {
    const auto none = [](const std::string& drives) {
        return error("Error - Controller[0] No RAID level can be created with " + drives + " PDs(Physical Drives).");
    };
    const auto one = [](const std::string& keys) { return R"({"controllers": [{"maxPds": 1, )" + keys + "}]}"; };
    const Lines single = table({usableRow(0)});
    check(one(R"("drives": [{"state": "bad"}])"),
          {.args = "-lde",
           .lines = table({"PD0    -                 -      -          Unconfig BAD       HDD  278.875     "}) +
                    error("Error - Controller[0] There is no unconfigured PD(Physical Drive)."),
           .requests = asked(1)});
    check(R"({"controllers": [{"maxPds": 2, "drives": [{}, {"interface": "SATA", "blocks": 584843264}]}]})",
          {.args = "-lde",
           .lines = table({usableRow(0), usableRow(1)}) +
                    error("Error - Cannot create LD(Logical Drive) with the different Interface Type(SAS/SATA)."),
           .requests = asked(1)});
    check(R"({"controllers": [{"maxPds": 2, "drives": [{}, {"media": "SSD", "blocks": 584843264}]}]})",
          {.args = "-lde",
           .lines = table({usableRow(0), usableRow(1, "278.875     ", "SSD ")}) +
                    error("Error - Cannot create LD(Logical Drive) with the different Media Type(HDD/SSD)."),
           .requests = asked(1)});
    check(one(R"("raidLevels": "0x36", "drives": [{}])"),
          {.args = "-lde", .lines = single + none("1"), .requests = asked(1)});
    check(one(R"("maxLds": 1, "drives": [{}, {"slot": 9}], "arrays": [{"drives": [9]}], "lds": [{"spans": [{}]}])"),
          {.args = "-lde", .lines = single + none("1"), .requests = asked(1)});
    check(one(R"("drives": [{"blocks": 100}])"),
          {.args = "-lde", .lines = table({usableRow(0, "0.000       ")}) + none("1"), .requests = asked(1)});
    check(R"({"controllers": [{"product": "", "maxPds": 1, "drives": [{}]}]})",
          {.args = "-lde",
           .lines = error("Error - This command is not supported at the current configuration."),
           .requests = asked(0)});
    writeFile(box.patternFile(), "\n\nRAID0\n");
    check(one(R"("drives": [{}])"), {.args = "-lde", .lines = single + none("1"), .requests = asked(1)});
    writeFile(box.patternFile(), "");
    check(one(R"("drives": [{}])"), {.args = "-lde",
                                     .lines = single + error("Error - Failed to read the configuration pattern file."),
                                     .requests = asked(1)});
}

TEST_F(CreationEasy, PatternsDoNotOfferWhatALevelCannot) {
    writeFile(box.patternFile(), "RAID5\nRAID10,RAID5\nRAID1,RAID6\nRAID1,RAID10\nRAID10,RAID0\n");
    check(kFive, {.args = "-lde",
                  .lines = fiveDrives() + menu("RAID Level of LD 1\n  1: RAID10 PD  4  Hot Spare 1  557.750 GB\n"
                                               "  2: RAID0  PD  5  Hot Spare 0  1394.375 GB\n"),
                  .requests = asked(1),
                  .input = "Q\n"});
}

TEST_F(CreationEasy, MoreThanSixteenDrivesAreCut) {
    auto options = optionsFor(R"({"controllers": [{"maxPds": 20, "drives": [{"repeat": 17}]}]})", "-lde");
    options.input = Input::kPipe;
    options.inputText = "1\n1\ny\n";
    const auto result = box.run(options);
    EXPECT_NE(std::string::npos, result.out.find("PD16   * - ")) << result;
    EXPECT_NE(std::string::npos,
              result.out.find("Information - The number of unconfigured PDs(physical drives) is over 16.\n"
                              "Create LD(Logical Drive) with 16 PDs(physical drives).\n\n"
                              "Number of LDs(Logical Drives)\n"));
    EXPECT_NE(std::string::npos, result.out.find("  1: RAID5  PD 16  Hot Spare 0  4183.125 GB\n"));
    EXPECT_NE(std::string::npos, result.out.find("  PD No.         : 0,1,2,3,4,5,6,7,8,9,10,11,12,13,14,15\n"));
}

TEST_F(CreationEasy, SpareIsTheLargestDriveAndTheHighestOfEqualOnes) {
    auto options = optionsFor(R"({"controllers": [{"maxPds": 4, "drives":
        [{"blocks": 584843264}, {"blocks": 974608384}, {"blocks": 974608384}, {"blocks": 584843264}]}]})",
                              "-lde");
    options.input = Input::kPipe;
    options.inputText = "1\n2\nn\n";
    const auto result = box.run(options);
    EXPECT_NE(std::string::npos, result.out.find("  2: RAID5  PD  3  Hot Spare 1  557.750 GB\n")) << result;
    EXPECT_NE(std::string::npos, result.out.find("  PD No.         : 0,1,3\n"));
    EXPECT_NE(std::string::npos, result.out.find(">PD2 (GHS, 464.729GB)\n"));
}

TEST_F(CreationEasy, SpareThatFailsIsSaidAndTheOthersAreMade) {
    writeFile(box.patternFile(), "RAID0\nRAID1\nRAID5\n");
    constexpr char kSix[] = R"({"controllers": [{"maxPds": 6, "drives": [{"repeat": 6}]}]})";
    auto options = optionsFor(kSix, "-lde");
    options.input = Input::kPipe;
    options.inputText = "1\n3\n1\ny\n"; // RAID5 on three drives, RAID0 on one, two spares
    options.env["ZEBSIM_FAULTS"] = R"([{"type": 2, "cmd": "0x0A", "nth": 1, "status": "0x1F"}])";
    const auto result = box.run(options);
    const std::string failed = "Error - Failed to assign a Hot Spare.\nPlease confirm PD(Physical Drive) state.\n\n";
    EXPECT_TRUE(result.out.ends_with("LD(Logical Drive) 0,1 has been created.\n" + failed +
                                     "Information - Controller[0] Settings have been changed PD(Physical Drive) 5.\n"))
        << result;
    const auto messages = loggedMessages();
    EXPECT_EQ(1, std::ranges::count(messages, "!ERR func=CliCmdExecCfgLDEasyMakeAdd: SLMakeGlobalHotspare error, "
                                              "contNo=0, pdNo=4"));
}

TEST_F(CreationEasy, ChosenControllerAlone) {
    auto options = optionsFor("", "-lde");
    options.input = Input::kPipe;
    for (const char* end : {"Q\n", ""}) {
        options.inputText = end;
        EXPECT_EQ("RAID Controller: 0 Quorvel RAID Pellucor 8e\nRAID Controller: 1 Quorvel RAID Pellucor 4i\n"
                  "Controller No.(\"Q\"->Quit) :",
                  box.run(options).out);
    }
    options.inputText = "0\n1\ny\n";
    const auto result = box.run(options);
    EXPECT_NE(std::string::npos, result.out.find("\nPD14   * -               -      -          Unconfig GOOD      HDD  "
                                                 "278.875     \nPD15   -                 -      -          Unconfig BAD"
                                                 "       HDD  278.875     \nPD16   -                 -      -"))
        << result;
    EXPECT_TRUE(result.out.ends_with("  Free Space     : 0.000GB\nIs it executed?(Y/N)?\n"
                                     "Information - Controller[0] LD(Logical Drive) 5 has been created.\n"));
}

} // namespace
} // namespace zebtest
