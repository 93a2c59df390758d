// Custom creation: plans, requests and blocks of every layout, and every refusal.
#include "tests/support/creation_case.h"

#include "tests/support/expected.h"
#include "tests/support/paths.h"

namespace zebtest {
namespace {

const std::string kUnconfigured = readFile(std::string(paths::scenarioDir) + "/drives_unconfigured.json");
constexpr Wire kOnly{0};
constexpr Wire kFirst{2}; // the built-in scenario
constexpr Wire kSecond{7};

// Twelve drives on which nothing is configured: eight disks, two smaller ones, two SSDs.
constexpr char kBare[] = R"({"controllers": [{"id": 3, "cacheCadeCapacity": 512,
  "enclosures": [{"deviceId": 40, "index": 2, "slots": 16}],
  "drives": [{"repeat": 8}, {"slot": 8, "repeat": 2, "blocks": 389545984},
             {"slot": 10, "repeat": 2, "media": "SSD", "blocks": 389545984}]}]})";

std::string pdInfos(const Wire& wire, const std::vector<unsigned>& slots) {
    std::string text;
    for (const unsigned slot : slots)
        text += wire.pdInfo(slot);
    return text;
}
std::string bootSectors(const Wire& wire, const std::vector<unsigned>& slots) {
    std::string text;
    for (const unsigned slot : slots)
        text += bootSector(wire, slot);
    return text;
}
std::string softwareRaid(const Wire& wire) {
    return wire.request("01/00", 0, " size=2048");
}
SnapshotShape builtInFirst() {
    return {.wire = kFirst,
            .slots = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15},
            .lds = {0, 1, 2, 3, 4},
            .arrays = {0, 1, 2, 3, 4},
            .spares = 2};
}
SnapshotShape builtInSecond() {
    return {.wire = kSecond, .slots = {0, 1, 2}, .lds = {0}, .arrays = {0}};
}

using CreationCustom = OperationTest;

TEST_F(CreationCustom, Raid5LeavesFreeWhatNoSizeAsksFor) {
    const SnapshotShape before{.wire = kOnly, .slots = {0, 1, 2, 3, 4, 5, 6, 7}};
    SnapshotShape after = before;
    after.lds = {0};
    after.arrays = {0};
    check(kUnconfigured,
          {.args = "-ldc -r5[252:0,252:1,252:2] -sz100000",
           .lines = plan(0, {{.lds = {"LD0 (LD_0, 97.656GB, RAID5)"},
                              .pds = "252:0,252:1,252:2",
                              .freeSpace = "460.094GB",
                              .write = "Write Back"}}) +
                    asksToExecute() + added("SLCreateLD", 0) + created(0, "0"),
           .requests = softwareRaid(kOnly) + pdInfos(kOnly, {0, 1, 2}) + bootSectors(kOnly, {0, 1, 2}) +
                       pdInfos(kOnly, {0, 1, 2}) + snapshotRequests({before}, true) + pdInfos(kOnly, {0, 1, 2}) +
                       creationRequest(kOnly, keptBlock("raid5")) + snapshotRequests({after}, true),
           .input = "y\n"});
}

TEST_F(CreationCustom, TwoLdsOnOneDriveAlwaysWriteBack) {
    SnapshotShape after = builtInFirst();
    after.lds = {0, 1, 2, 3, 4, 5, 6};
    after.arrays = {0, 1, 2, 3, 4, 5};
    check("",
          {.args = "-ldc -r0[252:14] -wb -sz102400 -sz51200 -a0",
           .lines = plan(0, {{.lds = {"LD5 (LD_5, 100.000GB, RAID0)", "LD6 (LD_6, 50.000GB, RAID0)"},
                              .pds = "252:14",
                              .freeSpace = "128.875GB",
                              .write = "Always Write Back"}}) +
                    said("Warning - Changing to \"Always Write Back\"!\nWhen Cache Backup capacity is not enough, "
                         "cached data may be lost.\n\"Write Back with Cache Backup\" is better.\nProceed with the "
                         "setting?(Y/N)?") +
                    asksToExecute() + added("SLCreateLD", 0) + created(0, "5,6"),
           .requests = softwareRaid(kFirst) + kFirst.pdInfo(14) + bootSector(kFirst, 14) + kFirst.pdInfo(14) +
                       snapshotRequests({builtInFirst(), builtInSecond()}, true) + kFirst.pdInfo(14) +
                       creationRequest(kFirst, keptBlock("raid0")) + snapshotRequests({after, builtInSecond()}, true),
           .input = "y\ny\n"});
}

TEST_F(CreationCustom, FreeSpaceOfTheGroupThatTheDrivesForm) {
    SnapshotShape after = builtInFirst();
    after.lds = {0, 1, 2, 3, 4, 5};
    check("", {.args = "-ldc -r5[252:3,252:0,:1,252:2] -sz51200 -a0",
               .lines = plan(0, {{.lds = {"LD5 (LD_5, 50.000GB, RAID5)"},
                                  .pds = "252:0,252:1,252:2,252:3",
                                  .freeSpace = "186.624GB",
                                  .group = "RG0",
                                  .write = "Write Back"}}) +
                        asksToExecute() + added("SLAddLDToRG", 0) + created(0, "5"),
               .requests = softwareRaid(kFirst) + kFirst.arrayInfo(0) + pdInfos(kFirst, {0, 1, 2, 3}) +
                           snapshotRequests({builtInFirst(), builtInSecond()}, true) + pdInfos(kFirst, {0, 1, 2, 3}) +
                           creationRequest(kFirst, keptBlock("free_space")) +
                           snapshotRequests({after, builtInSecond()}, true),
               .input = "y\n"});
}

TEST_F(CreationCustom, BlockOfEveryLayout) {
    const struct {
        std::string name, args, answers, says;
    } cases[] = {
        {"raid1", "-ldc -r1[:4,:5] -sz100 -sz200", "y\n", "LD(Logical Drive) 0,1 has been created."},
        {"raid6", "-ldc -r6[40:3,:1,:2,40:0] -wb -ra -cached", "y\ny\n", "LD(Logical Drive) 0 has been created."},
        {"raid10", "-ldc -array1[:2,:9] -r10 -array0[:1,:0]", "y\ny\n", "LD(Logical Drive) 0 has been created."},
        {"cachecade", "-ldc -cachecade[:10,:11]", "y\n", "LD(Logical Drive) 0 has been created."}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.args);
        auto options = optionsFor(kBare, c.args);
        options.input = Input::kPipe;
        options.inputText = c.answers;
        const auto result = box.run(options);
        EXPECT_TRUE(result.out.ends_with("Information - Controller[0] " + c.says + "\n")) << result;
        EXPECT_EQ(keptBlock(c.name), blockOf(result));
    }
}

TEST_F(CreationCustom, ArgumentsAreRefusedByThemselves) {
    scenario_ = kBare;
    checkTokens({"-ldc -> (null)",
                 "-ldc -a0 -> -a0",
                 "-ldc -wt -a0 -> -wt",
                 "-ldc -r2[:1] -> -r2[:1]",
                 "-ldc -r5 -> -r5",
                 "-ldc -r5[252:0 -> -r5[252:0",
                 "-ldc -r5[:0]x -> -r5[:0]x",
                 "-ldc -r5[] -> -r5[]",
                 "-ldc -r5[0,1] -> -r5[0,1]",
                 "-ldc -r5[:0,:0] -> -r5[:0,:0]",
                 "-ldc -r5[:256] -> -r5[:256]",
                 "-ldc -r5[x:0] -> -r5[x:0]",
                 "-ldc -r5[40:0,1,40:2] -> -r5[40:0,1,40:2]",
                 "-ldc -r5[40:0,1] -> -r5[40:0,1]",
                 "-ldc -r10[:0,:1] -> -r10[:0,:1]",
                 "-ldc -r1[:0,:1] -r5[:2,:3,:4] -> -r5[:2,:3,:4]",
                 "-ldc -r10 -r10 -> -r10",
                 "-ldc -r10 -> -r10",
                 "-ldc -r10 -array0[:0,:1] -> -r10",
                 "-ldc -r10 -array0[:0,:1,:2] -> -array0[:0,:1,:2]",
                 "-ldc -r10 -array08[:0,:1] -> -array08[:0,:1]",
                 "-ldc -r10 -array8[:0,:1] -> -array8[:0,:1]",
                 "-ldc -r10 -array[:0,:1] -> -array[:0,:1]",
                 "-ldc -r10 -array1x[:0,:1] -> -array1x[:0,:1]",
                 "-ldc -r10 -array0[:0,:1] -array0[:2,:3] -> -array0[:2,:3]",
                 "-ldc -r10 -array0[:0,:1] -array1[:2,:1] -> -array1[:2,:1]",
                 "-ldc -r10 -array0[:1,:2] -array2[:3,:4] -> -array2[:3,:4]",
                 "-ldc -r10 -array3[:1,:2] -array2[:3,:4] -> -array2[:3,:4]",
                 "-ldc -array0[:1,:2] -array1[:3,:4] -> -array0[:1,:2]",
                 "-ldc -array1[:1,:2] -r5[:3,:4,:5] -array0[:6,:7] -> -array1[:1,:2]",
                 "-ldc -r0[:0] -sz -> -sz",
                 "-ldc -r0[:0] -sz0 -> -sz0",
                 "-ldc -r0[:0] -sz01 -> -sz01",
                 "-ldc -r0[:0] -sz1G -> -sz1G",
                 "-ldc -r0[:0] -sz1234567890 -> -sz1234567890",
                 "-ldc -r0[:0] -wt -wb -> -wb",
                 "-ldc -r0[:0] -WB -wbcb -> -wbcb",
                 "-ldc -r0[:0] -ra -nora -> -nora",
                 "-ldc -r0[:0] -direct -cached -> -cached",
                 "-ldc -r0[:0] -L0 -> -L0",
                 "-ldc -r0[:0] -pd[:0] -> -pd[:0]",
                 "-ldc -r0[:0] -a0 -a0 -> -a0",
                 "-ldc -r0[:0] -a4 -> -a4",
                 "-ldc -cachecade[:10,:11] -sz1 -> -sz1",
                 "-ldc -sz1 -cachecade[:10,:11] -> -cachecade[:10,:11]"});
    std::string sixtyFour = "-ldc -r0[:0]";
    for (unsigned i = 1; i <= 64; ++i)
        sixtyFour += " -sz" + number(i);
    checkTokens({sixtyFour + " -sz65 -> -sz65"});
    checkAll({{.args = "-ldc -r0[:0] -a1", .lines = noController(1)}});
    check("", {.args = "-ldc -r0[:0]", .lines = manyControllers()});
}

Line refused(const std::string& text) {
    return error("Error - Controller[0] " + text);
}
const Line kNotSupported = error("Error - The specified parameter is not supported at the current configuration.");

/// One controller of its own kind on which three drives, an LD or two and what is in the way are found.
std::string odd(const std::string& keys) {
    return R"({"controllers": [{"id": 3, "maxPds": 16, )" + keys + "}]}";
}

TEST_F(CreationCustom, EveryCheckHasItsMessage) {
    constexpr Wire kWire{3};
    const struct {
        std::string scenario, args;
        Line line;
    } cases[] = {
        {R"({"controllers": [{"id": 3, "product": "LSI Embedded MegaRAID", "drives": [{}]}]})", "-r0[:0]",
         error("Error - This command is not supported at the current configuration.")},
        {odd(R"("ldOperations": "0x1D", "drives": [{}])"), "-r0[:0] -wb", kNotSupported},
        {odd(R"("ldOperations": "0x1E", "drives": [{}])"), "-r0[:0] -ra", kNotSupported},
        {odd(R"("ldOperations": "0x1B", "drives": [{}])"), "-r0[:0] -cached", kNotSupported},
        {odd(R"("drives": [{}])"), "-r0[:0] -wbcb", kNotSupported},
        {odd(R"("drives": [{"media": "SSD"}])"), "-cachecade[:0]", kNotSupported},
        {kBare, "-r0[:12]", refused("The specified Physical Drive 12: doesn't exist.")},
        {kBare, "-r0[41:3]", refused("The specified Physical Drive 3: doesn't exist.")},
        {kBare, "-r0[040:3]", refused("The specified Physical Drive 3: doesn't exist.")},
        {kBare, "-r0[65576:3]", refused("The specified Physical Drive 3: doesn't exist.")},
        {odd(R"("drives": [{}])"), "-r0[65535:0]", refused("The specified Physical Drive 0: doesn't exist.")},
        {odd(R"("drives": [{"state": "bad", "foreign": true}])"), "-r0[:0]",
         refused("PD(Physical Drive) 0 cannot be used: the state is Unconfig BAD.")},
        {odd(R"("drives": [{"foreign": true, "clear": 5}])"), "-r0[:0]",
         refused("PD(Physical Drive) 0 cannot be used: a foreign configuration exists.")},
        {odd(R"("drives": [{"clear": 5}])"), "-r0[:0]",
         refused("PD(Physical Drive) 0 cannot be used: an operation is in progress.")},
        {odd(R"("drives": [{"blocks": 0}])"), "-r0[:0]",
         refused("PD(Physical Drive) 0 cannot be used: the capacity is zero.")},
        {odd(R"("drives": [{"interface": "SAS"}, {"interface": "SATA"}])"), "-r0[:0,:1]",
         error("Error - Cannot create LD(Logical Drive) with the different Interface Type(SAS/SATA).")},
        {kBare, "-r0[:0,:10]",
         error("Error - Cannot create LD(Logical Drive) with the different Media Type(HDD/SSD).")},
        {kBare, "-cachecade[:0,:1]", error("Error - Cannot create CacheCade LD(Logical Drive) with HDD.")},
        {odd(R"("raidLevels": "0x33", "drives": [{"repeat": 3}])"), "-r5[:0,:1,:2]",
         refused("RAID5 is not supported.")},
        {odd(R"("raidLevels": "0x36", "cacheCadeCapacity": 1, "drives": [{"media": "SSD"}])"), "-cachecade[:0]",
         refused("CacheCade is not supported.")},
        {kBare, "-r5[:0,:1]", refused("RAID5 cannot be created with 2 PDs(Physical Drives).")},
        {kBare, "-r6[:0,:1,:2]", refused("RAID6 cannot be created with 3 PDs(Physical Drives).")},
        {odd(R"("pdLimits": {"RAID5": [3, 3]}, "drives": [{"repeat": 4}])"), "-r5[:0,:1,:2,:3]",
         refused("RAID5 cannot be created with 4 PDs(Physical Drives).")},
        {odd(R"("pdLimits": {"RAID0": [1, 1]}, "cacheCadeCapacity": 1, "drives": [{"repeat": 2, "media": "SSD"}])"),
         "-cachecade[:0,:1]", refused("CacheCade cannot be created with 2 PDs(Physical Drives).")},
        {odd(R"("maxLds": 2, "drives": [{"repeat": 3}], "arrays": [{"drives": [0]}], "lds": [{"spans": [{}]}])"),
         "-r0[:1] -sz1 -sz1", refused("The number of LDs(Logical Drives) is over 2.")},
        {kBare, "-r0[:0] -sz285576", refused("The specified size is over the free space(278.875 GB).")},
        {odd(R"("drives": [{"blocks": 127}])"), "-r0[:0]",
         refused("The specified size is over the free space(0.000 GB).")}};
    for (const auto& c : cases)
        check(c.scenario,
              {.args = "-ldc " + c.args, .lines = c.line, .requests = kWire.request("01/00", 0, " size=2048")});
}

TEST_F(CreationCustom, PatternsDoNotAllowWhatALevelCannot) {
    scenario_ = kBare;
    const auto cannot = [](const char* level, unsigned drives) {
        return refused(std::string(level) + " cannot be created with " + number(drives) + " PDs(Physical Drives).");
    };
    const std::string asks = softwareRaid({3});
    writeFile(box.patternFile(), "RAID0,RAID1,RAID5,RAID6\nRAID0,RAID10,RAID5,RAID6\nRAID0,RAID1,RAID10\nRAID1\n");
    checkAll({{.args = "-ldc -r1[:0,:1,:2,:3]", .lines = cannot("RAID1", 4), .requests = asks},
              {.args = "-ldc -r5[:0,:1]", .lines = cannot("RAID5", 2), .requests = asks},
              {.args = "-ldc -r6[:0]", .lines = cannot("RAID6", 1), .requests = asks},
              {.args = "-ldc -r10 -array0[:0,:1] -array1[:2,:3]", .lines = cannot("RAID10", 4), .requests = asks}});
    const auto noPatterns = error("Error - Failed to read the configuration pattern file.");
    writeFile(box.patternFile(), "\nraid0\n");
    checkAll({{.args = "-ldc -r0[:0]", .lines = noPatterns, .requests = asks}});
    std::filesystem::remove(box.patternFile());
    checkAll({{.args = "-ldc -r0[:0]",
               .lines = traced("!ERR func=ReadConfigPatFile: ConfigPatFile open error") + noPatterns,
               .requests = asks}});
}
} // namespace
} // namespace zebtest
