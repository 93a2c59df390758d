// Start and stop of initialisation and consistency check: which LDs are passed over, which fail, what is sent.
#include "tests/support/operation_case.h"

namespace zebtest {
namespace {

// Sequence numbers are the LD number + 32. On the first controller LD 0 has an operating system, 2 and 3 are RAID0, 4
// is CacheCade, 5 and 6 are a snapshot source and its repository, 7 is being checked, 8 initialised, in 9 a drive
// rebuilds, in 10 one copies back, 1 and 11 are idle.
constexpr char kScenario[] = R"({"controllers": [
  {"id": 3, "maxPds": 24, "snapshot": true,
    "drives": [{"repeat": 13}, {"rebuild": 10}, {"copybackPartner": 26}, {}, {}, {}, {"copyback": 5, "copybackPartner": 22}],
    "arrays": [{"drives": [0, 1, 2]}, {"drives": [3]}, {"drives": [4]}, {"drives": [5]}, {"drives": [6, 7]},
               {"drives": [8, 9]}, {"drives": [10, 11]}, {"drives": [12, 13]}, {"drives": [14, 15]},
               {"drives": [16, 17]}],
    "lds": [{"level": 5, "spans": [{"blocks": 1000000}], "osInstalled": true, "osDevices": ["/dev/sda"]},
            {"level": 5, "spans": [{"startBlock": 1000000}], "osDevices": ["/dev/sdb"]},
            {"level": 0, "spans": [{"array": 1}]}, {"level": 0, "spans": [{"array": 2}]},
            {"level": 0, "spans": [{"array": 3}], "cacheCade": true},
            {"level": 1, "spans": [{"array": 4, "blocks": 1000000}], "snapshotSource": true},
            {"level": 1, "spans": [{"array": 4, "startBlock": 1000000}], "repository": true},
            {"level": 1, "spans": [{"array": 5}], "check": 50}, {"level": 1, "spans": [{"array": 6}], "init": 50},
            {"level": 1, "spans": [{"array": 7}]}, {"level": 1, "spans": [{"array": 8}]},
            {"level": 1, "spans": [{"array": 9}]}]},
  {"id": 9, "maxPds": 8, "drives": [{"repeat": 5}],
    "arrays": [{"drives": [0, 1]}, {"drives": [2]}, {"drives": [3, 4]}],
    "lds": [{"id": 63, "level": 1, "spans": [{}]}, {"id": 2, "level": 0, "spans": [{"array": 1}]},
            {"id": 1, "level": 1, "spans": [{"array": 2}]}]}]})";

constexpr Wire kFirst{3};
constexpr Wire kSecond{9};

Line controller(unsigned contNo, const std::string& text, const char* lds, const char* rest = nullptr) {
    const std::string head = "Controller[" + number(contNo) + "] " + text + " on LD(Logical Drive) " + lds + ".";
    return rest != nullptr ? error("Error - " + head + rest) : said("Information - " + head);
}
Line checkStarted(unsigned contNo, const char* lds) {
    return controller(contNo, "Start Consistency Check", lds);
}
Line checkNotStarted(unsigned contNo, const char* lds) {
    return controller(contNo, "Failed to start Check Consistency", lds, "\r\nPlease confirm LD(Logical Drive) state.");
}
Line checkNotStopped(const char* lds) {
    return controller(0, "Failed to stop Check Consistency", lds, "\r\nPlease confirm whether to have already ended.");
}
Line initNotStarted(const char* lds) {
    return controller(0, "Failed to start Initialization", lds, "\nPlease confirm LD(Logical Drive) state.\n");
}
Line initNotStopped(const char* lds) {
    return controller(0, "Failed to stop Initialization", lds, "\nPlease confirm whether to have already ended.\n");
}
Line raid0(unsigned contNo) {
    return error("Error - Controller[" + number(contNo) + "] Cannot Check Consistency for RAID0.");
}

class LdBackground : public OperationTest {
  protected:
    LdBackground() { scenario_ = kScenario; }
};

TEST_F(LdBackground, ConsistencyCheck) {
    std::string all;
    for (const unsigned ld : {0U, 1U, 5U, 6U, 11U})
        all += kFirst.ldChange("03/06", ld);
    checkAll({{.args = "-ldcc -start -a0",
               .lines = raid0(0) + checkStarted(0, "0,1,5,6,11") + checkNotStarted(0, "2,3,4,7,8,9,10"),
               .requests = all},
              {.args = "-ldcc -aAll -L2,1 -Start",
               .lines = raid0(0) + checkStarted(0, "1") + checkNotStarted(0, "2") + raid0(1) + checkStarted(1, "1") +
                        checkNotStarted(1, "2"),
               .requests = kFirst.ldChange("03/06", 1) + kSecond.ldChange("03/06", 1)},
              {.args = "-ldcc -start -L63,1 -a1",
               .lines = checkStarted(1, "1,63"),
               .requests = kSecond.ldChange("03/06", 1) + kSecond.ldChange("03/06", 63)},
              {.args = "-ldcc -start -L0,1,11 -a0",
               .lines = sent("SLStartCheckConsistency", 0x1B) + checkStarted(0, "0,11") + checkNotStarted(0, "1"),
               .requests =
                   kFirst.ldChange("03/06", 0) + kFirst.ldChange("03/06", 1, " -> 0x1b") + kFirst.ldChange("03/06", 11),
               .faults = kFirst.fails("03/06", 0x1B, 2)},
              {.args = "-ldcc -start -L11 -a0",
               .lines = sent("SLStartCheckConsistency", 4) + checkNotStarted(0, "11"),
               .requests = kFirst.ldChange("03/06", 11, " -> 0x04"),
               .faults = kFirst.outdates("03/00", 2, 11)},
              {.args = "-ldcc -stop -a0",
               .lines = controller(0, "Stop Consistency Check", "7") + checkNotStopped("0,1,2,3,4,5,6,8,9,10,11"),
               .requests = kFirst.ldChange("03/07", 7)},
              {.args = "-ldcc -stop -L7 -a0",
               .lines = sent("SLCancelCheckConsistency", 0x32) + checkNotStopped("7"),
               .requests = kFirst.ldChange("03/07", 7, " -> 0x32"),
               .faults = kFirst.fails("03/07", 0x32)},
              {.args = "-ldcc -stop -L7 -a0",
               .lines = sent("SLCancelCheckConsistency", 4) + checkNotStopped("7"),
               .requests = kFirst.ldChange("03/07", 7, " -> 0x04"),
               .faults = kFirst.outdates("03/00", 2, 7)}});
}

/// The question for an operating system: the mapping, and the partitions of an LD that is mapped. The simulator's
/// mapping gives 64 + LD as the number that the second request repeats.
std::string osQuery(unsigned ld, bool mapped, const std::string& rest = "") {
    const std::string target = toHex(std::string{static_cast<char>(64 + ld)}) + (ld != 0 ? "0" + number(ld) : "");
    return kFirst.request("01/0c", 0, " size=9220") +
           (mapped ? kFirst.request("00/08", 0, " param=" + target + " size=14344" + rest) : "");
}
const Lines kPartition = sent("SLGetLDPartition", 0);
const Line kOsLd = error("Error - Cannot initialize OS LD(Logical Drive).");
Line needsNone(const char* kind, unsigned ld) {
    return error(std::string("Error - Controller[0] ") + kind + " LD[s](Logical Drive[s]) " + number(ld) +
                 " doesn't need Initialization.");
}
std::string startInit(unsigned ld, const std::string& rest = "") {
    return kFirst.ldChange("03/09", ld, " param=01" + rest);
}
Line initTrace(const char* wrapper, unsigned ld) {
    return traced(std::string("!ERR func=CliCmdExecLDINIT: ") + wrapper + " error, contNo=0, ldNo=" + number(ld));
}

TEST_F(LdBackground, Initialization) {
    const std::string queries = osQuery(4, false) + osQuery(5, false) + osQuery(6, false);
    const char kBase[] = "Snapshot Base/Repository";
    checkAll(
        {{.args = "-ldinit -start -Lall -a0",
          .lines = kPartition + kOsLd + kPartition + needsNone("CacheCade", 4) + needsNone(kBase, 5) +
                   needsNone(kBase, 6) + controller(0, "Start Initialization", "1,2,3,11") + initNotStarted("7,8,9,10"),
          .requests = osQuery(0, true) + osQuery(1, true) + startInit(1) + osQuery(2, false) + startInit(2) +
                      osQuery(3, false) + startInit(3) + queries + osQuery(11, false) + startInit(11)},
         {.args = "-ldinit -start -L0,4,5,6 -a0",
          .lines = kPartition + kOsLd + needsNone("CacheCade", 4) + needsNone(kBase, 5) + needsNone(kBase, 6),
          .requests = osQuery(0, true) + queries},
         {.args = "-ldinit -start -L2,3,11 -a0",
          .lines = sent("SLStartInitialization", 0x1C) + initTrace("SLStartInitialization", 3) +
                   controller(0, "Start Initialization", "2,11") + initNotStarted("3"),
          .requests = osQuery(2, false) + startInit(2) + osQuery(3, false) + startInit(3, " -> 0x1c") +
                      osQuery(11, false) + startInit(11),
          .faults = kFirst.fails("03/09", 0x1C, 2)},
         {.args = "-ldinit -start -L11 -a0",
          .lines = sent("SLStartInitialization", 4) + initTrace("SLStartInitialization", 11) + initNotStarted("11"),
          .requests = osQuery(11, false) + startInit(11, " -> 0x04"),
          .faults = kFirst.outdates("03/00", 2, 11)},
         // An LD whose partitions cannot be read counts as one without an operating system.
         {.args = "-ldinit -start -L0 -a0",
          .lines = sent("SLGetLDPartition", 0x8023) +
                   traced("!ERR func=IsOSInstallLD: SLGetLDPartition error, contNo=0, ldNo=0") +
                   controller(0, "Start Initialization", "0"),
          .requests = osQuery(0, true, " -> 0x8023") + startInit(0),
          .faults = kFirst.fails("00/08", 0x8023)},
         {.args = "-ldinit -stop -a0",
          .lines = controller(0, "Stop Initialization", "8") + initNotStopped("0,1,2,3,4,5,6,7,9,10,11"),
          .requests = kFirst.ldChange("03/0a", 8)},
         {.args = "-ldinit -stop -L8 -a0",
          .lines = sent("SLCancelInitialization", 4) + initTrace("SLCancelInitialization", 8) + initNotStopped("8"),
          .requests = kFirst.ldChange("03/0a", 8, " -> 0x04"),
          .faults = kFirst.outdates("03/00", 2, 8)}});
}

TEST_F(LdBackground, TargetsAndArguments) {
    for (const std::string command : {"-ldcc", "-ldinit"}) {
        checkTokens({" -> (null)", " -a0 -> -a0", " -L1 -a0 -> -L1", " -start -stop -> -stop",
                     " -stop -a0 -STOP -> -STOP", " -start -x -> -x", " -start -L64 -> -L64", " -start -L1,1 -> -L1,1",
                     " -start -a0,0 -> -a0,0", " -stop -a0 -a1 -> -a1", " -start -L1 -L2 -a0 -> -L2"},
                    command);
        const std::string missing = "] The specified Logical Drive doesn't exist.";
        checkAll({{.args = command + " -stop -L40 -aAll",
                   .lines = error("Error - Controller[0" + missing) + error("Error - Controller[1" + missing)},
                  {.args = command + " -start -a0,2", .lines = noController(2)},
                  {.args = command + " -stop", .lines = {manyControllers()}}});
    }
}

} // namespace
} // namespace zebtest
