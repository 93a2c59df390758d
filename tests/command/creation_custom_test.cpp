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

} // namespace
} // namespace zebtest
