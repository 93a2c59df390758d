// Fails every request of the start-up in turn and looks at what is said, logged and sent.
#include <algorithm>
#include <filesystem>

#include "tests/support/expected.h"
#include "tests/support/log_file.h"
#include "tests/support/operation_test.h"

namespace zebtest {
namespace {

constexpr char kStartScenario[] = R"({"controllers":[
    {"id":4,"enclosures":[{"slots":8}],"drives":[{"repeat":2}],"arrays":[{"drives":[0,1]}],"lds":[
        {"level":1,"spans":[{"blocks":2097152}],"snapshotSource":true},
        {"id":1,"level":1,"spans":[{"startBlock":2097152}],"repository":true}]},
    {"id":9,"drives":[{"slot":3}],"arrays":[{"ref":5,"drives":[3]}],"lds":[{"id":7,"level":0,"spans":[{"array":5}]}]}]})";
constexpr char kStatusText[] = ": command issues while FW in wrong state (rval = 0x00000032)";
constexpr char kNoStart[] = "Error - Failed to initialize.";
constexpr char kNoAccess[] = "Error - An error has occurred on accessing to RAID controller.\nQuits the application.\n";

/// A request of the start-up, and what its failure leaves in the log.
struct Step {
    std::string request; ///< type, command and reference
    std::vector<std::string> wrappers; ///< the one that sent it, then those that wanted its answer
    std::vector<std::string> records{}; ///< of what took the snapshot
    const char* message = kNoAccess; ///< null: the run goes on
};

std::string refreshRecord(const std::string& text) {
    return "!ERR func=UpdateDriveInfo: " + text;
}

/// The snapshot of a controller, from its controller information on.
std::vector<Step> controllerSteps(const std::string& contNo, bool hasEnclosure, const std::vector<std::string>& devices,
                                  const std::vector<std::string>& lds, const std::string& arrayRef) {
    const std::string none = " ref=00000000";
    std::vector<Step> steps{
        {"01/00" + none, {"SLGetCtrlInfo"}, {refreshRecord("SLGetCtrlInfo error, contNo=" + contNo)}}};
    if (hasEnclosure)
        steps.push_back({"01/05" + none, {"SLGetEnclList"}, {refreshRecord("SLGetSlotNum error, contNo=" + contNo)}});
    steps.insert(steps.end(), {{"01/04" + none, {"SLGetPDList"}},
                               {"01/0d" + none, {"SLGetLDList"}},
                               {"04/00" + none, {"SLGetConfigSize"}},
                               {"04/00" + none, {"SLReadConfig"}}});
    for (const auto& device : devices)
        steps.insert(steps.end(), {{"01/04" + none, {"SLGetPDList", "SLGetDeviceId", "SLGetPDInfo"}},
                                   {"02/00 ref=" + device, {"SLGetPDInfo"}}});
    for (const auto& ld : lds)
        steps.push_back({"03/00 ref=" + ld, {"SLGetLDInfo"}});
    const auto arrayNo = std::to_string(std::stoi(arrayRef));
    steps.push_back({"04/08 ref=" + arrayRef,
                     {"SLGetArrayInfo"},
                     {refreshRecord("SLGetArrayInfo error, contNo=" + contNo + ", arrayRef=" + arrayNo)}});
    return steps;
}

/// Every request of a run that only prints the help, in order.
std::vector<Step> startUpSteps() {
    const std::string none = " ref=00000000";
    std::vector<Step> steps{
        {"00/00" + none, {"InitializeLibrary"}, {}, kNoStart},
        {"01/05" + none, {"SLGetEnclList"}, {refreshRecord("SLGetEnclList error, contNo=0")}},
    };
    const auto append = [&steps](const std::vector<Step>& more) {
        steps.insert(steps.end(), more.begin(), more.end());
    };
    append(controllerSteps("0", true, {"00000008", "00000009"}, {"00000000", "00000001"}, "00000000"));
    // Without its size a record cannot be had either.
    for (const auto& [size, wrapper, ld] : {std::tuple{"SLGetSnapshotInfoSize", "SLGetSnapshotInfo", "0"},
                                            std::tuple{"SLGetSnapshotRepoSpaceSize", "SLGetSnapshotRepoSpace", "1"}}) {
        const auto record = [ldNo = ld](const char* name) {
            return refreshRecord(std::string(name) + " error, contNo=0, ldNo=" + ldNo);
        };
        steps.push_back({"06/03" + none, {"SendDCMDPassThru"}, {record(size), record(wrapper)}, nullptr});
        steps.push_back({"06/03" + none, {"SendDCMDPassThru"}, {record(wrapper)}, nullptr});
    }
    append(controllerSteps("1", false, {"0000000b"}, {"00000007"}, "00000005"));
    steps.push_back({"00/09" + none, {"UnInitializeLibrary"}, {}, nullptr});
    return steps;
}

class StartUpFailure : public OperationTest {
  protected:
    RunResult runWithFault(const std::string& fault) {
        std::filesystem::remove(box.log());
        auto options = optionsFor(kStartScenario, "-help");
        options.env["ZEBSIM_FAULTS"] = fault;
        return box.run(options);
    }
};

/// The messages that must stand in the log, in this order, and how many records the snapshot leaves.
void expectLogged(const Step& step, const LogFile& log) {
    std::vector<std::string> wanted;
    for (const auto& wrapper : step.wrappers)
        wanted.push_back("!ERR func=" + wrapper + kStatusText);
    wanted.insert(wanted.end(), step.records.begin(), step.records.end());
    if (step.message != nullptr)
        wanted.push_back(masked(step.message, {{"\n", " "}, {" +$", ""}}));
    const auto messages = log.messages();
    auto from = messages.begin();
    for (const auto& message : wanted) {
        from = std::find(from, messages.end(), message);
        ASSERT_NE(from, messages.end()) << message << " is missing or out of order in\n" << log.masked();
    }
    const auto isSnapshotRecord = [](const auto& message) { return message.starts_with(refreshRecord("")); };
    EXPECT_EQ(step.records.size(), std::ranges::count_if(messages, isSnapshotRecord)) << log.masked();
}

TEST_F(StartUpFailure, EachRequestIsReportedByItsWrapper) {
    const auto steps = startUpSteps();
    const auto clean = runWithFault("");
    std::string wanted;
    for (const auto& step : steps)
        wanted += step.request + "\n";
    ASSERT_TRUE(sameText(briefs(parseTrace(clean.trace)), wanted));
    wanted.clear();
    for (std::size_t i = 0; i < steps.size(); ++i) {
        SCOPED_TRACE("request " + std::to_string(i + 1) + " fails: " + steps[i].request);
        wanted += steps[i].request + "\n";
        const auto result = runWithFault(R"([{"nth":)" + std::to_string(i + 1) + R"(,"status":"0x32"}])");
        expectLogged(steps[i], LogFile(box.log()));
        if (steps[i].message == nullptr) {
            EXPECT_EQ(0, result.exitStatus);
            EXPECT_TRUE(sameText(result.out, clean.out));
            EXPECT_TRUE(sameText(briefs(parseTrace(result.trace)), briefs(parseTrace(clean.trace))));
        } else {
            EXPECT_EQ(255, result.exitStatus);
            EXPECT_TRUE(sameText(result.out, std::string(steps[i].message) + "\n"));
            EXPECT_TRUE(sameText(briefs(parseTrace(result.trace)), wanted + "00/09 ref=00000000\n"));
        }
    }
}

TEST_F(StartUpFailure, NoSlotIsLoggedAndNoError) {
    const auto result = runWithFault(R"([{"type":1,"cmd":0,"ctrl":9,"fields":{"maxPds":0}}])");
    EXPECT_EQ(0, result.exitStatus);
    EXPECT_EQ(std::vector<std::string>{"func=UpdateDriveInfo: SlotNum is zero, contNo=1"}, loggedMessages());
}

} // namespace
} // namespace zebtest
