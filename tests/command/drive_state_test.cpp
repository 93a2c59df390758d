// Drive state changes, manual rebuild and the locate LED: what is said, logged and sent.
#include "tests/support/operation_case.h"

#include "tests/support/log_file.h"

namespace zebtest {
namespace {

// Device ids are slot + 8, sequence numbers slot + 10. On the first controller slots 1 and 12 are lost from RAID5, 3
// from RAID0 and 6 from RAID1; 14 is offline in no array.
constexpr char kScenario[] = R"({"controllers": [
  {"id": 3, "maxPds": 16,
    "drives": [{}, {"state": "offline"}, {}, {"state": "failed"}, {}, {}, {"state": "failed"},
               {"state": "bad", "repeat": 4}, {}, {"state": "offline"}, {}, {"state": "offline"}],
    "arrays": [{"drives": [0, 1, 2]}, {"drives": [3, 4]}, {"drives": [5, 6]}, {"drives": [11, 12, 13]}],
    "lds": [{"level": 5, "spans": [{"array": 0}]}, {"level": 0, "spans": [{"array": 1}]},
            {"level": 1, "spans": [{"array": 2}]}, {"level": 5, "spans": [{"array": 3}]}]},
  {"id": 9, "maxPds": 8,
    "drives": [{}, {"state": "offline"}, {"state": "bad"}],
    "arrays": [{"drives": [0, 1]}], "lds": [{"level": 1, "spans": [{}]}]}]})";

constexpr Wire kFirst{3};
constexpr Wire kSecond{9};

Line changed(unsigned contNo, const std::string& drives) {
    return said("Information - Controller[" + number(contNo) +
                "] PD(Physical Drive) state have been changed on PD(Physical Drive) " + drives + ".");
}
/// The trace of all three state commands names the same wrapper.
Lines notChanged(const std::string& handler, unsigned contNo, unsigned slot) {
    return {traced("!ERR func=" + handler + ": SLMakeDriveOnline error, contNo=" + number(contNo) +
                   ", pdNo=" + number(slot)),
            error("Error - Controller[" + number(contNo) + "] Failed to change PD(Physical Drive) " + number(slot) +
                  " state.\nPlease confirm PD(Physical Drive) state.")};
}
/// The one wrapper here that logs its start, and its success too.
Lines makeGood(unsigned contNo, unsigned slot, std::uint32_t status = 0) {
    return traced("func=SLMakeDriveUnconfGood: contNo=" + number(contNo) + ", pdNo=" + number(slot)) +
           sent("SLMakeDriveUnconfGood", status);
}
class DriveState : public OperationTest {
  protected:
    DriveState() { scenario_ = kScenario; }
};

TEST_F(DriveState, ChangesDriveAfterDrive) {
    const std::string second = kFirst.fails("02/13", 0x0C, 2);
    checkAll(
        {{.args = "-pdmakegood -pd[1:7,9:8,:10] -a0",
          .lines = makeGood(0, 7) + makeGood(0, 8, 0x0C) + notChanged("CliCmdExecPDMakeGood", 0, 8) + makeGood(0, 10) +
                   changed(0, "7,10"),
          .requests =
              kFirst.pdChange("02/13", 7) + kFirst.pdChange("02/13", 8, " -> 0x0c") + kFirst.pdChange("02/13", 10),
          .faults = second},
         {.args = "-pdmakegood -pd[:2] -aAll",
          .lines = makeGood(0, 2, 0x32) + notChanged("CliCmdExecPDMakeGood", 0, 2) + makeGood(1, 2) + changed(1, "2"),
          .requests = kFirst.pdChange("02/13", 2, " -> 0x32") + kSecond.pdChange("02/13", 2)},
         {.args = "-pdoffline -pd[:0,:1] -a1,0",
          .lines = sent("SLMakeDriveOffline", 0x32) + notChanged("CliCmdExecPDOffline", 0, 1) + changed(0, "0") +
                   sent("SLMakeDriveOffline", 0x32) + notChanged("CliCmdExecPDOffline", 1, 1) + changed(1, "0"),
          .requests = kFirst.pdChange("02/02", 0) + kFirst.pdChange("02/02", 1, " -> 0x32") +
                      kSecond.pdChange("02/02", 0) + kSecond.pdChange("02/02", 1, " -> 0x32")},
         {.args = "-pdonline -pd[:1,:0] -a0",
          .lines = sent("SLMakeDriveOnline", 0x32) + notChanged("CliCmdExecPDOnline", 0, 0) + changed(0, "1"),
          .requests = kFirst.pdChange("02/01", 0, " -> 0x32") + kFirst.pdChange("02/01", 1)},
         {.args = "-PDONLINE -PD[:6] -A0", .lines = changed(0, "6"), .requests = kFirst.pdChange("02/01", 6)},
         {.args = "-pdonline -pd[:0] -a0",
          .lines = sent("SLMakeDriveOnline", 0x32) + notChanged("CliCmdExecPDOnline", 0, 0),
          .requests = kFirst.pdChange("02/01", 0, " -> 0x32")}});
}

TEST_F(DriveState, StaleSequenceNumberIsReported) {
    const std::string stale = " -> 0x04";
    checkAll({{.args = "-pdmakegood -pd[:7] -a0",
               .lines = makeGood(0, 7, 4) + notChanged("CliCmdExecPDMakeGood", 0, 7),
               .requests = kFirst.pdChange("02/13", 7, stale),
               .faults = kFirst.outdates("02/00", 2, 15)},
              {.args = "-pdoffline -pd[:5] -a0",
               .lines = sent("SLMakeDriveOffline", 4) + notChanged("CliCmdExecPDOffline", 0, 5),
               .requests = kFirst.pdChange("02/02", 5, stale),
               .faults = kFirst.outdates("02/00", 2, 13)},
              {.args = "-pdonline -pd[:6] -a0",
               .lines = sent("SLMakeDriveOnline", 4) + notChanged("CliCmdExecPDOnline", 0, 6),
               .requests = kFirst.pdChange("02/01", 6, stale),
               .faults = kFirst.outdates("02/00", 2, 14)}});
    EXPECT_EQ((std::vector<std::string>{
                  "func=SLMakeDriveOnline: CmdParam >",
                  "!ERR func=SLMakeDriveOnline: invalid sequence number (rval = 0x00000004)",
                  "!ERR func=CliCmdExecPDOnline: SLMakeDriveOnline error, contNo=0, pdNo=6",
                  "Error - Controller[0] Failed to change PD(Physical Drive) 6 state. Please confirm PD(Physical "
                  "Drive) state."}),
              loggedMessages());
}

TEST_F(DriveState, RefusedBeforeAnyChange) {
    checkTokens({"-pdoffline -> -pdoffline", "-pdoffline -a0 -> -a0", "-pdoffline -pd[:0] -pd[:1] -a0 -> -pd[:0]",
                 "-pdoffline -a0 -pd[:0] -a1 -> -pd[:0]", "-pdoffline -pd[0] -a0 -> -pdoffline",
                 "-pdoffline -pd[:0]x -a0 -> -pdoffline", "-pdoffline -pd[:0] -start -> -pd[:0]",
                 "-pdonline -pd[:0,:0] -a0 -> -pdonline", "-pdonline -pd[:0] -a0,0 -> -pd[:0]",
                 "-pdmakegood -pd[:7] -a -> -pd[:7]", "-pdlocate -pd[:7] -a0 -> -a0", "-pdlocate -start -a0 -> -a0",
                 "-pdlocate -start -stop -pd[:0] -a0 -> -start", "-pdlocate -pd[:0] -stop -STOP -a0 -> -stop",
                 "-pdlocate -started -pd[:0] -a0 -> -pdlocate", "-pdrbld -> -pdrbld", "-pdrbld -pd[:1] -a0 -> -a0",
                 "-pdrbld -start -start -pd[:1] -a0 -> -start", "-pdrbld -stop -start -pd[:1] -a0 -> -stop"});
    checkAll({{.args = "-pdoffline -pd[:0]", .lines = {manyControllers()}},
              {.args = "-pdrbld -pd[:1]", .lines = {manyControllers()}},
              {.args = "-pdlocate -stop -pd[:1]", .lines = {manyControllers()}},
              {.args = "-pdoffline -a2 -pd[:0]", .lines = noController(2)},
              {.args = "-pdoffline -pd[:0,:9] -aAll",
               .lines = error("Error - Controller[1] The specified Physical Drive 9: doesn't exist.")},
              {.args = "-pdrbld -start -pd[:1,:15] -a0",
               .lines = error("Error - Controller[0] The specified Physical Drive 15: doesn't exist.")},
              {.args = "-pdlocate -start -pd[:200,:100] -a1",
               .lines = error("Error - Controller[1] The specified Physical Drive 100: doesn't exist.")}});
}

Line lit(unsigned contNo, const char* drives) {
    return said("Information - Controller[" + number(contNo) +
                "] Blink PD(Physical Drive) location LED on PD(Physical Drive) " + drives + ".");
}
Line off(unsigned contNo, const char* drives) {
    return said("Information - Controller[" + number(contNo) +
                "] Off PD(Physical Drive) location LED on PD(Physical Drive) " + drives + ".");
}
Lines notLocated(const std::string& wrapper, const char* verb, unsigned slot) {
    return sent(wrapper, 0x24) +
           traced("!ERR func=CliCmdExecPDLocate: " + wrapper + " error, contNo=0, pdNo=" + number(slot)) +
           error(std::string("Error - Controller[0] Failed to ") + verb + " PD(Physical Drive) " + number(slot) +
                 " location LED.");
}

TEST_F(DriveState, LocateGoesOnAfterAFailureOnlyWhenItStarts) {
    const auto led = [](const Wire& wire, const char* code, unsigned slot, const std::string& rest = "") {
        return wire.pdList() + wire.request(code, slot + 8, rest);
    };
    checkAll({{.args = "-pdlocate -start -pd[:0,:1,:2] -aAll",
               .lines = Lines{} + notLocated("SLStartLocatePD", "blink", 1) + lit(0, "0,2") + lit(1, "0,1,2"),
               .requests = led(kFirst, "02/08", 0) + led(kFirst, "02/08", 1, " -> 0x24") + led(kFirst, "02/08", 2) +
                           led(kSecond, "02/08", 0) + led(kSecond, "02/08", 1) + led(kSecond, "02/08", 2),
               .faults = kFirst.fails("02/08", 0x24, 2)},
              {.args = "-pdlocate -pd[:0,:1,:2] -stop -aAll",
               .lines = notLocated("SLStopLocatePD", "off", 1) + off(0, "0") + off(1, "0,1,2"),
               .requests = led(kFirst, "02/09", 0) + led(kFirst, "02/09", 1, " -> 0x24") + led(kSecond, "02/09", 0) +
                           led(kSecond, "02/09", 1) + led(kSecond, "02/09", 2),
               .faults = kFirst.fails("02/09", 0x24, 2)},
              {.args = "-pdlocate -stop -pd[:4] -a0",
               .lines = notLocated("SLStopLocatePD", "off", 4),
               .requests = led(kFirst, "02/09", 4, " -> 0x24"),
               .faults = kFirst.fails("02/09", 0x24)}});
}

std::string ready(unsigned slot, const std::string& rest = "") {
    const auto device = static_cast<std::uint16_t>(slot + 8);
    return kFirst.pdInfo(slot) + kFirst.pdList() + kFirst.request("02/14", device, " size=4" + rest);
}
Line started(const char* drives) {
    return said(std::string("Information - Controller[0] Start Manual Rebuild on PD(Physical Drive) ") + drives + ".");
}
Line notStarted(const char* drives) {
    return error(std::string("Error - Controller[0] Failed to start Manual Rebuild on PD(Physical Drive) ") + drives +
                 ".\nPlease confirm LD(Logical Drive) state.");
}
Line rebuildTrace(unsigned slot, const char* what = "SLStartRebuild") {
    return traced(std::string("func=CliCmdExecPDRbld: ") + what + " error, contNo=0, slotNo=" + number(slot));
}

TEST_F(DriveState, RebuildStarts) {
    const std::string both = ready(1) + kFirst.pdChange("02/05", 1) + ready(6) + kFirst.pdChange("02/05", 6);
    checkAll({{.args = "-pdrbld -start -pd[:6,:1] -a0", .lines = started("1,6"), .requests = both},
              {.args = "-pdrbld -pd[:6,:1] -a0 -Stop", .lines = started("1,6"), .requests = both},
              {.args = "-pdrbld -start -pd[:1,:6,:12] -a0",
               .lines = sent("SLStartRebuild", 0x1C) + rebuildTrace(6) + started("1,12") + notStarted("6"),
               .requests = ready(1) + kFirst.pdChange("02/05", 1) + ready(6) + kFirst.pdChange("02/05", 6, " -> 0x1c") +
                           ready(12) + kFirst.pdChange("02/05", 12),
               .faults = kFirst.fails("02/05", 0x1C, 2)},
              {.args = "-pdrbld -start -pd[:6] -a0",
               .lines = sent("SLStartRebuild", 4) + rebuildTrace(6) + notStarted("6"),
               .requests = ready(6) + kFirst.pdChange("02/05", 6, " -> 0x04"),
               .faults = kFirst.outdates("02/00", 3, 14)},
              {.args = "-pdrbld -start -a0"}}); // without a list no drive is meant
}

TEST_F(DriveState, RebuildIsNotTried) {
    const Line raid0 = error("Error - Cannot Rebuild/Copyback for RAID0.");
    const std::string allowedFails = kFirst.fails("02/14", 0x02, 1);
    const Lines opcode = sent("SLGetPDAllowedOperation", 2);
    checkAll({{.args = "-pdrbld -start -pd[:0,:7] -a0",
               .lines = rebuildTrace(0) + rebuildTrace(7) + notStarted("0,7"),
               .requests = kFirst.pdInfo(0) + kFirst.pdInfo(7)},
              {.args = "-pdrbld -start -pd[:3,:6,:14] -a0",
               .lines = {raid0, raid0, started("6")},
               .requests = kFirst.pdInfo(3) + ready(6) + kFirst.pdChange("02/05", 6) + kFirst.pdInfo(14)},
              {.args = "-pdrbld -start -pd[:1] -a0",
               .lines = sent("SLGetPDInfo", 0x32) + rebuildTrace(1) + notStarted("1"),
               .requests = kFirst.pdInfo(1, " -> 0x32"),
               .faults = kFirst.fails("02/00", 0x32, 2, 9)},
              {.args = "-pdrbld -start -pd[:1] -a0",
               .lines = rebuildTrace(1) + notStarted("1"),
               .requests = ready(1),
               .faults = R"([{"type": 2, "cmd": 20, "patch": [{"offset": 0, "hex": "fdffffff"}]}])"},
              // Counted twice, once without a drive number, and an empty line.
              {.args = "-pdrbld -start -pd[:1] -a0",
               .lines = opcode + rebuildTrace(1, "SLGetPDAllowedOperation") + said("") + rebuildTrace(1) +
                        notStarted("255,1"),
               .requests = ready(1, " -> 0x02"),
               .faults = allowedFails},
              {.args = "-pdrbld -start -pd[:0,:1,:6] -a0",
               .lines = rebuildTrace(0) + opcode + rebuildTrace(1, "SLGetPDAllowedOperation") + said("") +
                        rebuildTrace(1) + started("6") + notStarted("0,255,1"),
               .requests = kFirst.pdInfo(0) + ready(1, " -> 0x02") + ready(6) + kFirst.pdChange("02/05", 6),
               .faults = allowedFails}});
}

TEST_F(DriveState, Raid0LineIsLoggedWithoutASource) {
    check(kScenario, {.args = "-pdrbld -start -pd[:3] -a0",
                      .lines = error("Error - Cannot Rebuild/Copyback for RAID0."),
                      .requests = kFirst.pdInfo(3)});
    const auto records = LogFile(box.log()).records();
    ASSERT_FALSE(records.empty());
    EXPECT_EQ("Error - Cannot Rebuild/Copyback for RAID0.", records.back().message);
    EXPECT_EQ("", records.back().source);
}

} // namespace
} // namespace zebtest
