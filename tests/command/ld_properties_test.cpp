// LD settings: the bytes that each option writes, the LDs of a group, the checks and questions before the first change.
#include "storelib/records/configuration.h"
#include "tests/support/answers.h"
#include "tests/support/operation_case.h"

#include <gmock/gmock.h>

namespace zebtest {
namespace {

// Sequence numbers are the LD number + 32. LDs 0 and 1 share an array, as do 5 and 6; 2 is CacheCade; 3 has all policy
// bits set and 4 none. The second controller has no cache backup unit, and its LDs 0 and 1 share an array.
constexpr char kScenario[] = R"({"controllers": [
  {"id": 3, "maxPds": 16, "cacheBackup": {},
    "drives": [{"repeat": 12}],
    "arrays": [{"drives": [0, 1]}, {"drives": [2]}, {"drives": [3, 4]}, {"drives": [5, 6]}, {"ref": 20, "drives": [7, 8]},
               {"ref": 21, "drives": [9, 10]}],
    "lds": [{"name": "ZERO", "level": 1, "spans": [{"blocks": 1000000}], "cachePolicy": "0x13",
              "currentCachePolicy": "0x35", "noBackgroundInit": true, "snapshotFlags": 3},
            {"name": "ONE", "level": 1, "spans": [{"startBlock": 1000000}], "accessPolicy": "ro"},
            {"name": "CC", "level": 0, "spans": [{"array": 1}], "cacheCade": true},
            {"name": "SIXTEEN BYTES 16", "level": 1, "spans": [{"array": 2}], "cachePolicy": "0x7F",
              "accessPolicy": "ro", "diskCachePolicy": "enabled"},
            {"name": "", "level": 1, "spans": [{"array": 3}], "cachePolicy": 0},
            {"name": "FIVE", "level": 10, "spans": [{"array": 20, "blocks": 1000000}, {"array": 21, "blocks": 1000000}]},
            {"name": "SIX", "level": 1, "spans": [{"array": 20, "startBlock": 1000000}]}]},
  {"id": 9, "maxPds": 8, "drives": [{"repeat": 2}], "arrays": [{"ref": 6, "drives": [0, 1]}],
    "lds": [{"name": "A", "level": 1, "spans": [{"array": 6, "blocks": 1000000}]},
            {"name": "B", "level": 1, "spans": [{"array": 6, "startBlock": 1000000}]}]}]})";

constexpr Wire kFirst{3};
constexpr Wire kSecond{9};
const Line kGroup =
    error("Information - Apply the same settings for all the LDs(Logical Drives) of the same RAID Group.");
const Line kNoParameter = error("Error - The specified parameter is not supported at the current configuration.");
const Line kAskWithBackup =
    said("Warning - Changing to Always Write Back !\nWhen Cache Backup capacity is not enough, cached data may be "
         "lost.\n\"Write Back with Cache Backup\" is better.\nProceed with the setting?(Y/N)?");
const Line kAskWithoutBackup =
    said("Warning - Changing to Always Write Back !\nWhen power failure occurs, cached data may be lost.\nPlease hook "
         "up this RAID system to UPS.\nProceed with the setting?(Y/N)?");

Line changed(unsigned contNo, const std::string& lds) {
    return said("Information - Controller[" + number(contNo) +
                "] LD(Logical Drive) Settings have been changed on LD(Logical Drive) " + lds + ".");
}
Line notChanged(unsigned contNo, unsigned ld) {
    return error("Error - Controller[" + number(contNo) + "] Failed to change LD(Logical Drive) " + number(ld) +
                 " Settings.");
}

/// What one LD gets: its name and its policies.
struct Written {
    std::string name;
    std::uint8_t cache, access, diskCache, current;
    std::uint8_t noBgi = 0, snapshot = 0;
};
std::string write(const Wire& wire, unsigned ld, const Written& set, const std::string& rest = "") {
    _MR_LD_PROPERTIES record{};
    record.ref.targetId = static_cast<std::uint8_t>(ld);
    record.ref.seqNo = static_cast<std::uint16_t>(ld + 32);
    record.defaultCachePolicy = set.cache;
    record.accessPolicy = set.access;
    record.diskCachePolicy = set.diskCache;
    record.currentCachePolicy = set.current;
    record.noBgi = set.noBgi;
    record.snapshotFlags = set.snapshot;
    set.name.copy(record.name, sizeof record.name);
    return wire.ldChange("03/02", ld, " size=32 out=" + hexOf(record) + rest);
}
std::string select(const Wire& wire, unsigned ld, unsigned array) {
    return wire.ldInfo(ld) + wire.arrayInfo(array);
}
/// The question for a software RAID, which comes with a write option.
std::string software(unsigned ctrlId = 3) {
    return Wire{ctrlId}.request("01/00", 0, " size=2048");
}

class LdProperties : public OperationTest {
  protected:
    LdProperties() { scenario_ = kScenario; }
};

TEST_F(LdProperties, EachOptionHasItsByte) {
    const struct {
        const char* option;
        std::uint8_t fromAll, fromNone; // default cache policy that comes of 0x7F and of 0x00
        std::uint8_t accessAll, diskAll, accessNone, diskNone;
        bool writes = false;
    } cases[] = {
        {"-wt", 0x6C, 0x00, 2, 1, 0, 2, true},   {"-wb", 0x7D, 0x11, 2, 1, 0, 2, true},
        {"-wbcb", 0x6D, 0x01, 2, 1, 0, 2, true}, {"-nora", 0x71, 0x00, 2, 1, 0, 2},
        {"-ra", 0x75, 0x04, 2, 1, 0, 2},         {"-direct", 0x1D, 0x00, 2, 1, 0, 2},
        {"-cached", 0x7D, 0x60, 2, 1, 0, 2},     {"-rw", 0x7D, 0x00, 0, 1, 0, 2},
        {"-ro", 0x7D, 0x00, 2, 1, 2, 2},         {"-Blocked", 0x7D, 0x00, 3, 1, 3, 2},
        {"-endskcache", 0x7D, 0x00, 2, 1, 0, 1}, {"-disdskcache", 0x7D, 0x00, 2, 2, 0, 2},
        {"-unchanged", 0x7D, 0x00, 2, 0, 0, 0},  {"-ra -wt -direct -blocked -unchanged", 0x04, 0x04, 3, 0, 3, 0, true}};
    for (const auto& c : cases) {
        const bool asks = c.option == std::string("-wb");
        const Lines done{changed(0, "3,4")};
        check(kScenario,
              {.args = std::string("-ldsetprop -L4,3 -a0 ") + c.option,
               .lines = asks ? kAskWithBackup + done : done,
               .requests = (c.writes ? software() : "") + select(kFirst, 3, 2) +
                           write(kFirst, 3, {"SIXTEEN BYTES 16", c.fromAll, c.accessAll, c.diskAll, 0x7F}) +
                           select(kFirst, 4, 3) + write(kFirst, 4, {"", c.fromNone, c.accessNone, c.diskNone, 0}),
               .input = asks ? "y\n" : ""});
    }
}

TEST_F(LdProperties, WholeGroupGetsThePoliciesOfTheSelectedLd) {
    const std::string both = select(kFirst, 0, 0) + write(kFirst, 0, {"ZERO", 0x15, 0, 2, 0x35, 1, 3}) +
                             write(kFirst, 1, {"ONE", 0x15, 0, 2, 0x01});
    checkAll({{.args = "-ldsetprop -ra -L0 -a0", .lines = kGroup + changed(0, "0,1"), .requests = both},
              // Said once a run, whatever the number of groups and controllers.
              {.args = "-ldsetprop -ra -L0,6 -aAll",
               .lines = kGroup + changed(0, "0,1,5,6") + changed(1, "0,1"),
               .requests = both + select(kFirst, 6, 20) + write(kFirst, 5, {"FIVE", 0x05, 0, 2, 0x01}) +
                           write(kFirst, 6, {"SIX", 0x05, 0, 2, 0x01}) + select(kSecond, 0, 6) +
                           write(kSecond, 0, {"A", 0x04, 0, 2, 0}) + write(kSecond, 1, {"B", 0x04, 0, 2, 0})},
              // 0x13 without a write option becomes 0x11.
              {.args = "-ldsetprop -disdskcache -name New -L0 -a0",
               .lines = kGroup + changed(0, "0,1"),
               .requests = select(kFirst, 0, 0) + write(kFirst, 0, {"New", 0x11, 0, 2, 0x35, 1, 3}) +
                           write(kFirst, 1, {"ONE", 0x11, 0, 2, 0x01})},
              {.args = "-ldsetprop -wt -L1,2 -a0",
               .lines = kGroup + changed(0, "0,1"),
               .requests = software() + select(kFirst, 1, 0) + write(kFirst, 0, {"ZERO", 0x00, 2, 2, 0x35, 1, 3}) +
                           write(kFirst, 1, {"ONE", 0x00, 2, 2, 0x01}) + select(kFirst, 2, 1)},
              {.args = "-ldsetprop -ra -L2 -a0", .requests = select(kFirst, 2, 1)}});
}

TEST_F(LdProperties, AGroupIsHandledOncePerRun) {
    const std::string five = select(kFirst, 5, 20) + write(kFirst, 5, {"FIVE", 0x05, 0, 2, 0x01}) +
                             write(kFirst, 6, {"SIX", 0x05, 0, 2, 0x01});
    checkAll({{.args = "-ldsetprop -ra -L6,0,5,1 -a0",
               .lines = kGroup + changed(0, "0,1,5,6"),
               .requests = select(kFirst, 0, 0) + write(kFirst, 0, {"ZERO", 0x15, 0, 2, 0x35, 1, 3}) +
                           write(kFirst, 1, {"ONE", 0x15, 0, 2, 0x01}) + five},
              {.args = "-ldsetprop -ra -name New -L1,0 -a0",
               .lines = kGroup + changed(0, "0,1"),
               .requests = select(kFirst, 0, 0) + write(kFirst, 0, {"New", 0x15, 0, 2, 0x35, 1, 3}) +
                           write(kFirst, 1, {"New", 0x15, 0, 2, 0x01})}});
}

TEST_F(LdProperties, NameAloneWritesTheSelectedLdOnly) {
    checkAll({{.args = "-ldsetprop -name ABCdefghijklmno -L6 -a0",
               .lines = changed(0, "6"),
               .requests = select(kFirst, 6, 20) + write(kFirst, 6, {"ABCdefghijklmno", 0x01, 0, 2, 0x01})},
              {.args = "-ldsetprop -L3 -NAME x -a0",
               .lines = changed(0, "3"),
               .requests = select(kFirst, 3, 2) + write(kFirst, 3, {"x", 0x7D, 2, 1, 0x7F})},
              {.args = "-ldsetprop -name ABCDEFGHIJKLMNOP -L6 -a0", .lines = badToken("ABCDEFGHIJKLMNOP")}});
}

TEST_F(LdProperties, FirstFailedWriteEndsTheCommand) {
    const auto trace = [](unsigned ld) {
        return traced("!ERR func=CliCmdExecLDSetProp: SLSetLDProperties error, contNo=0, ldNo=" + number(ld));
    };
    checkAll({{.args = "-ldsetprop -ra -L0,3 -aAll",
               .lines = kGroup + sent("SLSetLDProperties", 0x32) + trace(1) + changed(0, "0") + notChanged(0, 1),
               .requests = select(kFirst, 0, 0) + write(kFirst, 0, {"ZERO", 0x15, 0, 2, 0x35, 1, 3}) +
                           write(kFirst, 1, {"ONE", 0x15, 0, 2, 0x01}, " -> 0x32"),
               .faults = kFirst.fails("03/02", 0x32, 2)},
              {.args = "-ldsetprop -rw -L4,3 -a0",
               .lines = sent("SLSetLDProperties", 4) + trace(3) + notChanged(0, 3),
               .requests = select(kFirst, 3, 2) + write(kFirst, 3, {"SIXTEEN BYTES 16", 0x7D, 0, 1, 0x7F}, " -> 0x04"),
               .faults = kFirst.outdates("03/00", 3, 3)}});
    const std::pair<std::string, const char*> reads[] = {
        {kFirst.fails("03/00", 0x0C, 2, 3), "!ERR func=CliCmdExecLDSetProp: SLGetLDInfo error contNo=0 ldNo=3"},
        {kFirst.fails("04/08", 0x0C, 2, 2),
         "!ERR func=CliCmdExecLDSetProp: SLGetArrayInfo error, contNo=0, arrayRef=2"}};
    for (const auto& [faults, record] : reads) {
        auto options = optionsFor(kScenario, "-ldsetprop -rw -L3 -a0");
        options.env["ZEBSIM_FAULTS"] = faults;
        const auto result = box.run(options);
        EXPECT_THAT(loggedMessages(), testing::Contains(record));
        EXPECT_THAT(requestsAfterSnapshot(kScenario, result.trace), testing::Not(testing::HasSubstr("03/02")));
    }
}

TEST_F(LdProperties, OnlyLdsOfTheControllerAreMembersOfAGroup) {
    const auto group = [](std::initializer_list<std::pair<Place, std::uint64_t>> changes) {
        return R"([{"type":4,"cmd":8,"from":2,)" + patch(changes) + "}]";
    };
    const Place count = ZEB_AT(_SL_ARRAY_INFO_T, ldCount);
    const std::string read = select(kFirst, 0, 0);
    const std::string both =
        read + write(kFirst, 0, {"ZERO", 0x15, 0, 2, 0x35, 1, 3}) + write(kFirst, 1, {"ONE", 0x15, 0, 2, 0x01});
    checkAll({{.args = "-ldsetprop -ra -L0 -a0",
               .lines = kGroup + changed(0, "0,1"),
               .requests = both,
               .faults = group({{count, 255},
                                {ZEB_AT(_SL_ARRAY_INFO_T, ldTargetId[2]), 200},
                                {ZEB_AT(_SL_ARRAY_INFO_T, ldTargetId[3]), 63},
                                {ZEB_AT(_SL_ARRAY_INFO_T, ldTargetId[4]), 64},
                                {ZEB_AT(_SL_ARRAY_INFO_T, ldTargetId[5]), 255}})},
              {.args = "-ldsetprop -ra -L0 -a0",
               .lines = {notChanged(0, 0)},
               .requests = read,
               .faults = group({{count, 0}})},
              {.args = "-ldsetprop -ra -L0 -a0",
               .lines = kGroup + notChanged(0, 0),
               .requests = read,
               .faults = group(
                   {{ZEB_AT(_SL_ARRAY_INFO_T, ldTargetId[0]), 1}, {ZEB_AT(_SL_ARRAY_INFO_T, ldTargetId[1]), 1}})}});
}

TEST_F(LdProperties, AlwaysWriteBackAsksBeforeTheFirstChange) {
    const std::string backed = select(kFirst, 4, 3) + write(kFirst, 4, {"", 0x11, 0, 2, 0});
    checkAll({{.args = "-ldsetprop -wb -L4 -a0", .lines = kAskWithBackup, .requests = software(), .input = "n\n"},
              {.args = "-ldsetprop -wb -L0 -aAll",
               .lines = kAskWithBackup + kAskWithoutBackup,
               .requests = software(),
               .input = "y\nN\n"},
              {.args = "-ldsetprop -wb -L0 -a1",
               .lines = kAskWithoutBackup + kGroup + changed(1, "0,1"),
               .requests = software() + select(kSecond, 0, 6) + write(kSecond, 0, {"A", 0x11, 0, 2, 0}) +
                           write(kSecond, 1, {"B", 0x11, 0, 2, 0}),
               .input = "Y\n"},
              {.args = "-ldsetprop -wb -L4 -aAll",
               .lines = kAskWithBackup + kAskWithBackup + changed(0, "4") +
                        error("Error - Controller[1] The specified Logical Drive doesn't exist."),
               .requests = software() + backed,
               .input = "yy\ny\n"}});
}

TEST_F(LdProperties, ChecksStandBeforeQuestionAndChange) {
    const auto one = [](const std::string& keys) {
        return R"({"controllers": [{"id": 3, "drives": [{}], "arrays": [{"drives": [0]}],
            "lds": [{"level": 0, "spans": [{}]}], )" +
               keys + "}]}";
    };
    const Line notSupported = error("Error - This command is not supported at the current configuration.");
    const std::string softwareRaid = one(R"("product": "LSI Embedded MegaRAID", "ldOperations": 0)");
    const std::string quiet = select(kFirst, 0, 0) + write(kFirst, 0, {"", 0, 0, 2, 0});
    for (const char* option : {"-wt", "-wb -ra", "-wbcb"})
        check(softwareRaid,
              {.args = std::string("-ldsetprop ") + option, .lines = {notSupported}, .requests = software()});
    check(softwareRaid, {.args = "-ldsetprop -nora", .lines = changed(0, "0"), .requests = quiet});
    const struct {
        const char *operations, *option;
        bool refused, asksSoftware;
    } cases[] = {{"0x1D", "-wb", true, true},       {"0x1D", "-wbcb", true, true},   {"0x1D", "-wt", false, true},
                 {"0x1E", "-ra", true, false},      {"0x1E", "-nora", false, false}, {"0x1B", "-cached", true, false},
                 {"0x1B", "-direct", false, false}, {"0x1E", "-wb -ra", true, true}};
    for (const auto& c : cases) {
        const std::string keys = std::string(R"("ldOperations": ")") + c.operations + R"(", "cacheBackup": {})";
        const std::string refused = c.asksSoftware ? software() : "";
        const std::uint8_t cache = std::string(c.option) == "-wt" ? 0x00 : 0x01;
        check(one(keys),
              {.args = std::string("-ldsetprop ") + c.option,
               .lines = {c.refused ? kNoParameter : changed(0, "0")},
               .requests = refused + (c.refused ? "" : select(kFirst, 0, 0) + write(kFirst, 0, {"", cache, 0, 2, 1}))});
    }
    // One controller that cannot is enough.
    check(kScenario, {.args = "-ldsetprop -wbcb -L0 -aAll", .lines = kNoParameter, .requests = software()});
}

TEST_F(LdProperties, ArgumentsAreRefused) {
    checkTokens({"-wt -wb -> -wb", "-wt -WT -> -WT", "-ra -nora -> -nora", "-direct -cached -> -cached",
                 "-rw -ro -> -ro", "-blocked -rw -> -rw", "-unchanged -endskcache -> -endskcache",
                 "-disdskcache -L0 -unchanged -> -unchanged", "-name a -name b -> -name", "-ra -name -> -name",
                 "-ra -x -> -x", "-ra -L0 -L1 -> -L1", "-ra -a0 -a1 -> -a1", "-ra -L100 -> -L100", "-ra -a5 -> -a5",
                 "-L0 -a0 -> -L0"},
                "-ldsetprop ");
    checkAll({{.args = "-ldsetprop -ra -a3", .lines = noController(3)},
              {.args = "-ldsetprop -ra -L1", .lines = {manyControllers()}},
              {.args = "-ldsetprop", .lines = {badToken("(null)")}}});
}

} // namespace
} // namespace zebtest
