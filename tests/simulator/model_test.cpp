// The hardware's own behaviour: work that goes on by itself, numbers that move on, faults that act on it.
#include <gmock/gmock.h>

#include "simulator/background.h"
#include "simulator/scenario.h"
#include "storelib/records/cache_backup.h"
#include "storelib/records/controller.h"
#include "storelib/records/logical_drive.h"
#include "tests/simulator/simulated.h"
#include "tests/support/sandbox.h"

namespace zebtest {
namespace {

using SimulatorModel = SimulatorTest;

/// The percentage that a piece of work has reached after a quarter of an hour. 10^12 bytes take an hour at a rate
/// of 30.
double progressAfterQuarter(const std::string& rate, const std::string& driveWork, const std::string& ldWork) {
    zebsim::Model model = zebsim::readScenario(
        R"({"controllers": [{"patrolRead": {"mode": "manual"}, "properties": {")" + rate + R"(": 60}, "drives": [
        {"blocks": 1953125000}, {"blocks": 1953125000)" +
        (driveWork.empty() ? "" : ", " + driveWork) + R"(}], "arrays": [{"drives": [0, 1]}],
        "lds": [{"level": 1, "spans": [{}])" +
        (ldWork.empty() ? "" : ", " + ldWork) + "}]}]}");
    zebsim::advance(model, 900);
    const zebsim::Drive& drive = model.controllers[0].drives[1];
    const zebsim::LogicalDrive& ld = model.controllers[0].lds[0];
    for (const zebsim::Task* task :
         {&drive.rebuild, &drive.patrolRead, &drive.clear, &ld.check, &ld.backgroundInit, &ld.init, &ld.reconstruction})
        if (*task)
            return (*task)->percent;
    return -1;
}

TEST(SimulatorWork, RunsAtItsOwnRate) {
    const struct {
        std::string drive, ld, rate;
    } cases[] = {{"\"rebuild\": 0", "", "rebuildRate"},       {"\"clear\": 0", "", "rebuildRate"},
                 {"\"patrolRead\": 0", "", "patrolReadRate"}, {"", "\"check\": 0", "ccRate"},
                 {"", "\"backgroundInit\": 0", "bgiRate"},    {"", "\"init\": 0", "bgiRate"},
                 {"", "\"reconstruction\": 0", "reconRate"}};
    for (const auto& [drive, ld, own] : cases)
        for (const std::string rate : {"rebuildRate", "patrolReadRate", "ccRate", "bgiRate", "reconRate"})
            EXPECT_NEAR(rate == own ? 50 : 25, progressAfterQuarter(rate, drive, ld), 0.01) << drive << ld << rate;
}

TEST_F(SimulatorModel, ACancelMovesTheNumberOn) {
    SimulatedRun run(onState(R"({"controllers": [{"drives": [{"repeat": 2}, {"repeat": 2}, {"rebuild": 5}, {}],
        "arrays": [{"drives": [0, 1]}, {"drives": [2, 3]}, {"drives": [4, 5]}],
        "lds": [{"level": 1, "spans": [{}], "check": 10}, {"level": 1, "spans": [{"array": 1}], "init": 10},
        {"level": 1, "spans": [{"array": 2}]}]}]})"));
    ASSERT_EQ(0U, run.status) << run.complaint;
    EXPECT_EQ(0U, run.send({0x03, 0x07}, reference(0, 32)));
    EXPECT_EQ(33, run.read<_MR_LD_INFO>(kLdInfo, 0).config.properties.ref.seqNo);
    EXPECT_EQ(0U, run.send({0x03, 0x0A}, reference(1, 33)));
    EXPECT_EQ(34, run.read<_MR_LD_INFO>(kLdInfo, 1).config.properties.ref.seqNo);
    EXPECT_EQ(0U, run.send({0x02, 0x06}, reference(12, 14)));
    EXPECT_EQ(15, run.read<_MR_PD_INFO>(kPdInfo, 12).ref.seqNo);
}

TEST_F(SimulatorModel, ABackupUnitIsFullUnlessItSaysOtherwise) {
    SimulatedRun run(onState(R"({"controllers": [{"cacheBackup": {"fullCapacity": 777}}]})"));
    ASSERT_EQ(0U, run.status) << run.complaint;
    const auto status = run.read<_MR_BBU_STATUS>({0x05, 0x00});
    EXPECT_EQ(777, status.remainingCapacityLow | status.remainingCapacityHigh << 8);
    EXPECT_EQ(777, status.fullChargeCapacity);
}

/// A RAID5 of slots 0 to 2 with a spare in slot 3; slots 4 and 5 are free.
constexpr char kSmall[] = R"({"controllers": [{"drives": [{"repeat": 6}], "arrays": [{"drives": [0, 1, 2]}],
    "lds": [{"level": 5, "spans": [{}]}], "spares": [{"drive": 3}]}]})";

TEST_F(SimulatorModel, OnlyTheFirstReadingOfEachRecordIsOther) {
    SimulatedRun run(onState(kSmall, R"([{"type": 2, "cmd": 0, "perRecord": true, "nth": 1, "fields": {"fwState": 17}},
        {"type": 3, "cmd": 0, "nth": 1, "fields": {"name": "OLD", "active": 8, "size": "0x123456789A"}},
        {"type": 1, "cmd": 0, "nth": 1, "fields": {"onOff": 5}}])"));
    ASSERT_EQ(0U, run.status) << run.complaint;
    for (const std::uint32_t drive : {8U, 9U})
        for (const std::uint16_t state : {kPdFailed, kPdOnline, kPdOnline})
            EXPECT_EQ(state, run.read<_MR_PD_INFO>(kPdInfo, drive).fwState) << drive;
    const auto old = run.read<_MR_LD_INFO>(kLdInfo, 0);
    EXPECT_STREQ("OLD", old.config.properties.name);
    EXPECT_EQ(8U, old.progress.active);
    EXPECT_EQ(0x123456789AU, old.size);
    EXPECT_STREQ("", run.read<_MR_LD_INFO>(kLdInfo, 0).config.properties.name);
    EXPECT_EQ(5U, run.read<_MR_CTRL_INFO>(kCtrlInfo).properties.onOff);
    EXPECT_EQ(kPropSmartCopybackHdd, run.read<_MR_CTRL_INFO>(kCtrlInfo).properties.onOff);
}

TEST_F(SimulatorModel, SomebodyElseActsWhenThePickedRequestIsAnswered) {
    const struct {
        const char* event;
        const char* state; ///< of the drives in slots 0 to 5 afterwards, then of the LD (- = gone)
    } cases[] = {
        {R"({"drive": 5, "state": "bad"})", "18 18 18 02 00 01 3"},
        {R"({"drive": 5, "state": "failed"})", "18 18 18 02 00 11 3"},
        {R"({"drive": 5, "state": "spare"})", "18 18 18 02 00 02 3"},
        {R"({"drive": 5, "state": "online"})", "18 18 18 02 00 00 3"}, // not in an array: nothing happens
        {R"({"drive": 3, "state": "good"})", "18 18 18 00 00 00 3"},
        {R"({"drive": 1, "state": "failed"})", "18 01 18 14 00 00 2"}, // the spare takes over
        {R"({"drive": {"deviceId": 9}, "gone": true})", "18 - 18 14 00 00 2"},
        {R"({"drive": 4, "gone": true})", "18 18 18 02 - 00 3"},
        {R"({"ld": 0, "gone": true})", "00 00 00 02 00 00 -"},
        {R"([{"drive": 3, "gone": true}, {"drive": 0, "state": "offline"}, {"drive": 2, "state": "offline"}])",
         "10 18 10 - 00 00 0"},
    };
    for (const auto& [event, wanted] : cases) {
        const std::string beside = R"(, "status": 50)";
        for (const std::string& action : {std::string(), beside}) {
            std::filesystem::remove(state());
            SimulatedRun run(
                onState(kSmall, std::string(R"([{"type": 1, "cmd": 4, "nth": 2, "also": )") + event + action + "}]"));
            ASSERT_EQ(0U, run.status) << run.complaint;
            Bytes list(sizeof(_MR_PD_LIST));
            EXPECT_EQ(0U, run.send({0x01, 0x04}, 0, &list));
            EXPECT_EQ(action.empty() ? 0U : 50U, run.send({0x01, 0x04}, 0, &list));
        }
        SimulatedRun next(onState(kSmall));
        std::string seen;
        for (std::uint32_t device = 8; device < 14; ++device) {
            Bytes data(sizeof(_MR_PD_INFO));
            const bool there = next.send(kPdInfo, device, &data) == 0;
            char text[8];
            std::snprintf(text, sizeof text, "%02x ", unsigned{data[offsetof(_MR_PD_INFO, fwState)]});
            seen += there ? text : "- ";
        }
        Bytes data(sizeof(_MR_LD_INFO));
        const bool there = next.send(kLdInfo, 0, &data) == 0;
        seen += there ? std::to_string(data[offsetof(_MR_LD_INFO, config.state)]) : "-";
        EXPECT_EQ(wanted, seen) << event;
    }
}

} // namespace
} // namespace zebtest
