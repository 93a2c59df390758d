// Global and dedicated hot spares and their release: warnings, the group dialogue, what is sent.
#include "storelib/records/configuration.h"
#include "tests/support/operation_case.h"

#include <algorithm>

namespace zebtest {
namespace {

// Device ids are slot + 8, sequence numbers slot + 10. RG0 is the mirror on array 5, RG1 a RAID0 on array 1, RG2 the
// RAID10 over the arrays 2 and 7. Slot 7 fits all; 8 is SATA, 9 SSD, 10 too small, 11 all of these; 12 is a global
// spare, 13 a dedicated one, 14 bad. The second controller has no LD.
constexpr char kScenario[] = R"({"controllers": [
  {"id": 3, "maxPds": 16,
    "drives": [{"repeat": 8}, {"interface": "SATA"}, {"media": "SSD"}, {"blocks": 1000000},
               {"interface": "SATA", "media": "SSD", "blocks": 1000000}, {}, {}, {"state": "bad"}],
    "arrays": [{"ref": 5, "drives": [0, 1]}, {"ref": 1, "drives": [6]}, {"ref": 2, "drives": [2, 3]},
               {"ref": 7, "drives": [4, 5]}],
    "lds": [{"id": 9, "level": 1, "spans": [{"array": 5}]}, {"id": 1, "level": 0, "spans": [{"array": 1}]},
            {"id": 4, "level": 10, "spans": [{"array": 2}, {"array": 7}]}],
    "spares": [{"drive": 12}, {"drive": 13, "arrays": [2, 7]}]},
  {"id": 9, "maxPds": 16, "drives": [{"slot": 7, "repeat": 6}], "spares": [{"drive": 12}]}]})";

constexpr Wire kFirst{3};
constexpr Wire kSecond{9};

const Line kNotAssigned = error("Error - Failed to assign a Hot Spare.\nPlease confirm PD(Physical Drive) state.\n");
const Line kNotReleased = error("Error - Failed to release the Hot Spare. Please confirm PD(Physical Drive) state.");
const Line kAskInterface =
    said("Warning - In case of selecting PD(Physical Drive) as GHS(Global Hot Spare) with different Interface "
         "Type(SAS/SATA) configured PD(Physical Drive), Rebuild/Copyback might not be done correctly.\n"
         "Proceed with the setting?(Y/N)?");
const Line kAskMedia =
    said("Warning - In case of selecting PD(Physical Drive) as GHS(Global Hot Spare) with different Media "
         "Type(HDD/SSD) configured PD(Physical Drive), Rebuild/Copyback might not be done correctly.\n"
         "Proceed with the setting?(Y/N)?");
const Line kAskCapacity =
    said("Warning - In case of selecting PD(Physical Drive) as GHS(Global Hot Spare) with lower capacity than other "
         "configured PDs(Physical Drives), Rebuild/Copyback might not be done correctly.\n"
         "Proceed with the setting?(Y/N)?");
const Line kAskRelease = said("LD[s](Logical Drive[s]) exists.\nRelease the allocation?(Y/N)?");

Line changed(unsigned contNo, const char* drives) {
    return said("Information - Controller[" + number(contNo) + "] Settings have been changed PD(Physical Drive) " +
                drives + ".");
}
std::string makeGlobal(const Wire& wire, unsigned slot, const std::string& rest = "") {
    return wire.pdInfo(slot) + wire.pdChange("02/0a", slot, rest);
}
std::string ldList(const Wire& wire) {
    return wire.request("01/0d", 0, " size=1032");
}

class HotSpare : public OperationTest {
  protected:
    HotSpare() { scenario_ = kScenario; }
};

TEST_F(HotSpare, GlobalWarnsOfWhatDoesNotFit) {
    checkAll({{.args = "-pdhsp -ghs -pd[:7] -a0", .lines = changed(0, "7"), .requests = makeGlobal(kFirst, 7)},
              {.args = "-pdhsp -ghs -pd[:8] -a0",
               .lines = kAskInterface + changed(0, "8"),
               .requests = makeGlobal(kFirst, 8),
               .input = "y\n"},
              {.args = "-pdhsp -ghs -pd[:9] -a0",
               .lines = kAskMedia + changed(0, "9"),
               .requests = makeGlobal(kFirst, 9),
               .input = "Y\n"},
              {.args = "-pdhsp -nochk -ghs -pd[:10] -a0",
               .lines = kAskCapacity + changed(0, "10"),
               .requests = makeGlobal(kFirst, 10),
               .input = "y\n"},
              {.args = "-pdhsp -ghs -pd[:11] -a0 -nochk",
               .lines = kAskInterface + kAskInterface + kAskMedia + kAskCapacity + changed(0, "11"),
               .requests = makeGlobal(kFirst, 11),
               .input = "yes\ny\ny\ny\n"},
              // Nothing is configured on the second controller.
              {.args = "-pdhsp -ghs -pd[:7,:8,:11] -a1",
               .lines = changed(1, "7,8,11"),
               .requests = makeGlobal(kSecond, 7) + makeGlobal(kSecond, 8) + makeGlobal(kSecond, 11)}});
}

TEST_F(HotSpare, NoEndsTheCommandWithoutItsInformationLine) {
    const std::pair<const char*, Lines> answers[] = {{"n\n", kAskInterface},
                                                     {"y\nN\n", kAskInterface + kAskMedia},
                                                     {"y\ny\nn\n", kAskInterface + kAskMedia + kAskCapacity}};
    for (const auto& [answer, asked] : answers) {
        check(kScenario, {.args = "-pdhsp -ghs -pd[:7,:11,:12] -aAll",
                          .lines = asked,
                          .requests = makeGlobal(kFirst, 7) + kFirst.pdInfo(11),
                          .input = answer});
    }
    checkAll({{.args = "-pdhsp -rmv -pd[:12,:13] -a0",
               .lines = kAskRelease + kAskRelease,
               .requests = kFirst.pdInfo(12) + ldList(kFirst) + kFirst.pdChange("02/0d", 12) + kFirst.pdInfo(13),
               .input = "y\nn\n"},
              {.args = "-pdhsp -rmv -pd[:12] -aAll",
               .lines = kAskRelease,
               .requests = kFirst.pdInfo(12) + ldList(kFirst),
               .input = "N\n"}});
}

TEST_F(HotSpare, GlobalFailures) {
    const std::string readFails = kFirst.fails("02/00", 0x0C, 2, 17);
    checkAll({{.args = "-pdhsp -ghs -pd[:7,:12] -aAll",
               .lines = kNotAssigned + changed(0, "7") + kNotAssigned + changed(1, "7"),
               .requests = makeGlobal(kFirst, 7) + kFirst.pdInfo(12) + makeGlobal(kSecond, 7) + kSecond.pdInfo(12)},
              {.args = "-pdhsp -ghs -pd[:14,:7] -a0",
               .lines = sent("SLMakeGlobalHotspare", 0x1F) + kNotAssigned + kNotAssigned,
               .requests = makeGlobal(kFirst, 7, " -> 0x1f") + kFirst.pdInfo(14),
               .faults = kFirst.fails("02/0a", 0x1F)},
              {.args = "-pdhsp -ghs -pd[:7] -a0",
               .lines = sent("SLMakeGlobalHotspare", 4) + kNotAssigned,
               .requests = makeGlobal(kFirst, 7, " -> 0x04"),
               .faults = kFirst.outdates("02/00", 3, 15)},
              // A drive that cannot be read ends the command: nothing for slot 10, nothing on the second controller.
              {.args = "-pdhsp -ghs -pd[:7,:9,:10] -aAll",
               .lines = sent("SLGetPDInfo", 0x0C) + kNotAssigned,
               .requests = makeGlobal(kFirst, 7) + kFirst.pdInfo(9, " -> 0x0c"),
               .faults = readFails}});
}

const Line kGroups = {true, false, "RG No. RAID Level\n-----------------\nRG0    RAID1\nRG2    RAID10\n"};
const Line kAskGroup = {true, false, "RG No.(\"Q\"->Quit) :"};
Line invalid(const std::string& answer) {
    return said("\"" + answer + "\" is invalid.");
}
std::string software() {
    return kFirst.request("01/00", 0, " size=2048");
}
std::string makeDedicated(unsigned slot, std::uint8_t ld, std::initializer_list<std::uint16_t> arrays,
                          const std::string& rest = "") {
    _SL_DEDICATED_SPARE_T served{};
    served.arrayCount = static_cast<std::uint8_t>(arrays.size());
    std::ranges::copy(arrays, served.arrayRef);
    return kFirst.arrayInfo(*arrays.begin()) + kFirst.ldInfo(ld) +
           kFirst.pdChange("02/0b", slot, " size=33 out=" + hexOf(served) + rest);
}
Lines dedicated(unsigned slot, unsigned array, std::uint32_t status = 0) {
    return traced("func=SLMakeDedicatedHotspare: contNo=0 ,slotNo=" + number(slot) + ", arrayRef=" + number(array)) +
           sent("SLMakeDedicatedHotspare", status);
}
TEST_F(HotSpare, DedicatedToEveryArrayOfTheGroup) {
    checkAll({{.args = "-pdhsp -dhs -pd[:7] -a0",
               .lines = kGroups + kAskGroup + dedicated(7, 2) + changed(0, "7"),
               .requests = software() + kFirst.pdInfo(7) + makeDedicated(7, 4, {2, 7}),
               .input = "2\n"},
              {.args = "-pdhsp -dhs -pd[:7] -a0",
               .lines = kGroups + kAskGroup + dedicated(7, 5) + changed(0, "7"),
               .requests = software() + kFirst.pdInfo(7) + makeDedicated(7, 9, {5}),
               .input = "0\n"},
              {.args = "-pdhsp -dhs -pd[:7] -a0",
               .lines = kGroups + kAskGroup + dedicated(7, 5, 4) + kNotAssigned,
               .requests = software() + kFirst.pdInfo(7) + makeDedicated(7, 9, {5}, " -> 0x04"),
               .faults = kFirst.outdates("02/00", 3, 15),
               .input = "0\n"}});
}

TEST_F(HotSpare, GroupIsAskedUntilItIsListed) {
    Lines asked{kGroups};
    std::string input;
    for (const char* answer : {"1", "3", "256", "12345", "0002", "Quit", "abc", "", "-1"}) {
        asked = asked + kAskGroup + invalid(answer);
        input += std::string(answer) + "\n";
    }
    checkAll({{.args = "-pdhsp -dhs -pd[:7] -a0",
               .lines = asked + kAskGroup + dedicated(7, 5) + changed(0, "7"),
               .requests = software() + kFirst.pdInfo(7) + makeDedicated(7, 9, {5}),
               .input = input + "0\n"},
              {.args = "-pdhsp -dhs -pd[:7,:12] -aAll",
               .lines = kGroups + kAskGroup,
               .requests = software() + kFirst.pdInfo(7),
               .input = "q\n"},
              {.args = "-pdhsp -dhs -pd[:7] -a0",
               .lines = kGroups + kAskGroup,
               .requests = software() + kFirst.pdInfo(7),
               .input = "Qui\n"}});
}

const std::string kCannot = "Error - Cannot create DHS(Dedicated Hot Spare) with ";
const Line kTooSmall = error(kCannot + "lower capacity than other configured PDs(Physical Drives).");

TEST_F(HotSpare, DedicatedMustMatchItsGroup) {
    const Line interface = error(kCannot + "the different Interface Type(SAS/SATA).");
    const Line media = error(kCannot + "the different Media Type(HDD/SSD).");
    std::string reads;
    for (const unsigned slot : {8U, 9U, 10U, 11U, 14U})
        reads += software() + kFirst.pdInfo(slot);
    checkAll({{.args = "-pdhsp -dhs -pd[:8,:9,:10,:11,:14] -a0 -nochk",
               .lines = kGroups + kAskGroup + interface + kGroups + kAskGroup + media + kGroups + kAskGroup +
                        kTooSmall + kGroups + kAskGroup + interface + kNotAssigned,
               .requests = reads,
               .input = "0\n2\n2\n0\n"},
              {.args = "-pdhsp -dhs -pd[:7] -a1",
               .lines = error(kCannot + "no RAID Group."),
               .requests = software() + kSecond.pdInfo(7)},
              {.args = "-pdhsp -dhs -pd[:7] -a0",
               .lines = sent("SLGetPDInfo", 0x32) + kNotAssigned,
               .requests = software() + kFirst.pdInfo(7, " -> 0x32"),
               .faults = kFirst.fails("02/00", 0x32, 2, 15)}});
    check(R"({"controllers": [{"id": 3, "product": "LSI Embedded MegaRAID", "drives": [{"repeat": 3}],
              "arrays": [{"drives": [0, 1]}], "lds": [{"level": 1, "spans": [{}]}]}]})",
          {.args = "-pdhsp -dhs -pd[:2]", .lines = kNotAssigned, .requests = software()});
    check(R"({"controllers": [{"id": 3, "drives": [{"slot": 2}],
              "arrays": [{"drives": [null, null], "blocks": 1000}],
              "lds": [{"level": 1, "spans": [{}]}]}]})",
          {.args = "-pdhsp -dhs -pd[:2]",
           .lines = {{true, false, "RG No. RAID Level\n-----------------\nRG0    RAID1\n"}, kAskGroup, kNotAssigned},
           .requests = software() + kFirst.pdInfo(2),
           .input = "0\n"});
}

TEST_F(HotSpare, DedicatedMustBeAsLargeAsTheLargestSpanNeeds) {
    for (const auto& [first, second] : {std::pair("300", "200"), {"200", "300"}}) {
        const auto scenario = [&, one = std::string(first), two = std::string(second)](const char* spare) {
            return R"({"controllers": [{"id": 3, "drives": [{"repeat": 2, "sizeGB": )" + one +
                   R"(}, {"repeat": 2, "sizeGB": )" + two + R"(}, {"slot": 7, "sizeGB": )" + spare +
                   R"(}], "arrays": [{"ref": 2, "drives": [0, 1]}, {"ref": 7, "drives": [2, 3]}],
                   "lds": [{"id": 4, "level": 10, "spans": [{"array": 2}, {"array": 7}]}]}]})";
        };
        const Line group = {true, false, "RG No. RAID Level\n-----------------\nRG0    RAID10\n"};
        check(scenario("250"), {.args = "-pdhsp -dhs -pd[:7]",
                                .lines = group + kAskGroup + kTooSmall,
                                .requests = software() + kFirst.pdInfo(7),
                                .input = "0\n"});
        check(scenario("300"), {.args = "-pdhsp -dhs -pd[:7]",
                                .lines = group + kAskGroup + dedicated(7, 2) + changed(0, "7"),
                                .requests = software() + kFirst.pdInfo(7) + makeDedicated(7, 4, {2, 7}),
                                .input = "0\n"});
    }
}

TEST_F(HotSpare, ReleaseAsksUnlessToldNotTo) {
    const auto release = [](const Wire& wire, unsigned slot, const std::string& rest = "") {
        return wire.pdChange("02/0d", slot, rest);
    };
    checkAll({{.args = "-pdhsp -rmv -pd[:12,:13] -a0",
               .lines = kAskRelease + kAskRelease + changed(0, "12,13"),
               .requests =
                   kFirst.pdInfo(12) + ldList(kFirst) + release(kFirst, 12) + kFirst.pdInfo(13) + release(kFirst, 13),
               .input = "y\ny\n"},
              {.args = "-pdhsp -rmv -NOCHK -pd[:13,:12] -a0",
               .lines = changed(0, "12,13"),
               .requests =
                   kFirst.pdInfo(12) + ldList(kFirst) + release(kFirst, 12) + kFirst.pdInfo(13) + release(kFirst, 13)},
              {.args = "-pdhsp -rmv -pd[:7,:12] -a1",
               .lines = kNotReleased + changed(1, "12"),
               .requests = kSecond.pdInfo(7) + kSecond.pdInfo(12) + ldList(kSecond) + release(kSecond, 12)},
              {.args = "-pdhsp -rmv -pd[:13] -nochk -a0",
               .lines = sent("SLRemoveHotspare", 4) + kNotReleased,
               .requests = kFirst.pdInfo(13) + release(kFirst, 13, " -> 0x04"),
               .faults = kFirst.outdates("02/00", 3, 21)},
              {.args = "-pdhsp -rmv -pd[:0,:13] -nochk -a0",
               .lines = sent("SLGetPDInfo", 0x32) + kNotAssigned + changed(0, "13"),
               .requests = kFirst.pdInfo(0, " -> 0x32") + kFirst.pdInfo(13) + release(kFirst, 13),
               .faults = kFirst.fails("02/00", 0x32, 2, 8)},
              {.args = "-pdhsp -rmv -pd[:12,:13] -nochk -a0",
               .lines = sent("SLGetLDList", 0x32) + kNotAssigned + changed(0, "13"),
               .requests = kFirst.pdInfo(12) + kFirst.request("01/0d", 0, " size=1032 -> 0x32") + kFirst.pdInfo(13) +
                           release(kFirst, 13),
               .faults = kFirst.fails("01/0d", 0x32, 2)}});
}

TEST_F(HotSpare, ArgumentsAreRefused) {
    checkTokens({"-pdhsp -> -pdhsp", "-pdhsp -ghs -a0 -> -a0", "-pdhsp -pd[:7] -a0 -> -a0",
                 "-pdhsp -nochk -pd[:7] -> -pd[:7]", "-pdhsp -ghs -dhs -pd[:7] -a0 -> -ghs",
                 "-pdhsp -rmv -rmv -pd[:12] -a0 -> -rmv", "-pdhsp -rmv -pd[:12] -ghs -a0 -> -pd[:12]",
                 "-pdhsp -rmv -nochk -nochk -pd[:12] -> -nochk", "-pdhsp -rmv -pd[:12] -pd[:13] -> -pd[:12]",
                 "-pdhsp -rmv -pd[:12] -a0 -a1 -> -a0", "-pdhsp -spare -pd[:12] -> -pdhsp",
                 "-pdhsp -rmv -pd[:300] -> -rmv"});
    checkAll({{.args = "-pdhsp -rmv -pd[:12] -a3", .lines = noController(3)},
              {.args = "-pdhsp -ghs -pd[:7,:13] -aAll",
               .lines = error("Error - Controller[1] The specified Physical Drive 13: doesn't exist.")}});
}

} // namespace
} // namespace zebtest
