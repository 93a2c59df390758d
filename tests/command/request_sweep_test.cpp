// Fails every request that a command sends, one after the other, and looks at what is left behind.
#include "tests/support/log_file.h"
#include "tests/support/paths.h"
#include "tests/support/request_trace.h"
#include "tests/support/sandbox.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <thread>

#include <gtest/gtest.h>

namespace zebtest {
namespace {

struct SweptCommand {
    const char* name;
    std::vector<std::string> args;
    bool endsAtFailure; ///< a failed query ends it without a further request
    const char* input = nullptr; ///< what is answered; a terminal without answers when there are no questions
};

const SweptCommand kCommands[] = {
    {"version", {"-v"}, true},
    {"ctrlinfo", {"-ctrlinfo", "-aAll"}, true},
    {"cbinfo", {"-cbinfo", "-aAll"}, true},
    {"enclinfo", {"-enclinfo", "-aAll"}, true},
    {"ldpdinfo", {"-ldpdinfo", "-aAll"}, false},
    {"pdinfo", {"-pdinfo", "-pd[252:0,252:15]", "-a0"}, false},
    {"ldpdprog", {"-ldpdprog"}, false},
    {"cblearn", {"-cblearn", "-aAll"}, false},
    {"ctrlsetprop", {"-ctrlsetprop", "-trh", "-aAll"}, true},
    {"ctrlautorbld", {"-ctrlautorbld", "-dsbl", "-aAll"}, true, "y\ny\n"},
    {"ctrlpr", {"-ctrlpr", "-enblman", "-start", "-aAll"}, false, "y\ny\n"},
    {"lddel", {"-lddel"}, false, "0\n2,3\ny\ny\n"},
    {"lde", {"-lde"}, false, "0\n1\ny\n"},
    {"ldc", {"-ldc", "-r0[252:14]", "-wb", "-sz100", "-sz200", "-a0"}, false, "y\ny\n"},
    {"ldc in free space", {"-ldc", "-r5[:0,:1,:2,:3]", "-a0"}, false, "y\n"},
    {"ldinit start", {"-ldinit", "-start", "-L1,2", "-a0"}, false},
    {"ldcc start", {"-ldcc", "-start", "-L0,3", "-a0"}, false},
    {"ldsetprop", {"-ldsetprop", "-wb", "-name", "NEW", "-L0", "-a0"}, false, "y\n"},
    {"ghs", {"-pdhsp", "-ghs", "-pd[252:14]", "-a0"}, true, "y\ny\ny\n"},
    {"dhs", {"-pdhsp", "-dhs", "-pd[252:14]", "-a0"}, false, "0\nQ\n"},
    {"rmv", {"-pdhsp", "-rmv", "-nochk", "-pd[252:12,252:13]", "-a0"}, false},
    {"pdlocate", {"-pdlocate", "-stop", "-pd[252:0,252:1]", "-a0"}, true},
    {"pdoffline", {"-pdoffline", "-pd[252:1,252:6]", "-a0"}, false},
    {"pdmakegood", {"-pdmakegood", "-pd[252:15]", "-a0"}, true},
    {"pdonline", {"-pdonline", "-pd[252:0]", "-a0"}, true},
    {"pdrbld", {"-pdrbld", "-start", "-pd[252:1]", "-a0"}, true},
};

/// The functions under whose name a failed request may leave its record.
const std::set<std::string>& wrappersOf(const TracedRequest& request) {
    static const std::map<std::pair<int, int>, std::set<std::string>> kWrappers{
        {{0x00, 0x00}, {"InitializeLibrary"}},
        {{0x00, 0x04}, {"SLGetLibraryVersion"}},
        {{0x00, 0x08}, {"SLGetLDPartition"}},
        {{0x00, 0x09}, {"UnInitializeLibrary"}},
        {{0x01, 0x00}, {"SLGetCtrlInfo"}},
        {{0x01, 0x01}, {"SLGetCtrlProp", "SLSetCtrlProp", "SLSetCtrlRbldMode"}},
        {{0x01, 0x02}, {"SLSetCtrlProp", "SLSetCtrlRbldMode"}},
        {{0x01, 0x04}, {"SLGetPDList"}},
        {{0x01, 0x05}, {"SLGetEnclList"}},
        {{0x01, 0x0B}, {"SLGetPciInfo"}},
        {{0x01, 0x0C}, {"SLGetOSDriveName", "SLGetOSDriveNames", "SLGetLDPartition"}},
        {{0x01, 0x0D}, {"SLGetLDList"}},
        {{0x01, 0x0F}, {"SLGetPatrolReadProp"}},
        {{0x01, 0x10}, {"SLSetPatrolReadProp"}},
        {{0x01, 0x11}, {"SLStartPatrolReadOpe"}},
        {{0x01, 0x13}, {"SLGetDrvVer"}},
        {{0x02, 0x00}, {"SLGetPDInfo"}},
        {{0x02, 0x01}, {"SLMakeDriveOnline"}},
        {{0x02, 0x02}, {"SLMakeDriveOffline"}},
        {{0x02, 0x09}, {"SLStopLocatePD"}},
        {{0x02, 0x0A}, {"SLMakeGlobalHotspare"}},
        {{0x02, 0x0B}, {"SLMakeDedicatedHotspare"}},
        {{0x02, 0x0D}, {"SLRemoveHotspare"}},
        {{0x02, 0x13}, {"SLMakeDriveUnconfGood"}},
        {{0x03, 0x00}, {"SLGetLDInfo"}},
        {{0x03, 0x02}, {"SLSetLDProperties"}},
        {{0x03, 0x03}, {"SLDeleteLD"}},
        {{0x03, 0x06}, {"SLStartCheckConsistency"}},
        {{0x03, 0x09}, {"SLStartInitialization"}},
        {{0x04, 0x00}, {"SLGetConfigSize", "SLReadConfig"}},
        {{0x04, 0x08}, {"SLGetArrayInfo"}},
        {{0x05, 0x00}, {"SLGetCacheBkupStatus"}},
        {{0x05, 0x02}, {"SLGetCacheBkupDesignInfo"}},
        {{0x05, 0x03}, {"SLLearnCacheBkup"}},
        {{0x05, 0x04}, {"SLGetCacheBkupProperties"}},
        {{0x06, 0x03}, {"SendDCMDPassThru"}},
        {{0x08, 0x00}, {"SLGetEnclConfig"}},
        {{0x08, 0x05}, {"SLGetEnclStatus"}},
    };
    static const std::set<std::string> kNone;
    const auto found = kWrappers.find({request.header.cmdType, request.header.cmd});
    return found != kWrappers.end() ? found->second : kNone;
}

struct Status {
    std::uint32_t code;
    const char* text;
};
constexpr Status kStatuses[] = {
    {0x04, "invalid sequence number"},
    {0x0C, "invalid device ID / select-timeout"},
    {0x8009, "Command to driver timed out"},
    {0x8015, "Failed to allocate memory"},
};

/// One run of the sweep: which request of which command goes wrong, once or for ever after, and how.
struct Point {
    const SweptCommand* command;
    std::size_t position; ///< from 1
    bool forEver;
    enum Kind { kStatus, kTruncated, kRandom } kind;
    Status status{};

    std::string fault() const {
        const std::string at = std::to_string(position);
        return std::string(forEver ? R"([{"from":)" : R"([{"nth":)") + at + [&]() -> std::string {
            switch (kind) {
            case kStatus:
                return R"(,"status":)" + std::to_string(status.code);
            case kTruncated:
                return R"(,"truncate":)" + std::to_string(position * 7 % 64);
            default:
                return R"(,"random":)" + at;
            }
        }() + "}]";
    }
};

/// The program that is swept: that of this build, or a release build, which is fast enough for every kind of failure at
/// every request.
struct SweptProgram {
    std::string program;
    std::optional<std::filesystem::path> libraryDir;
    bool everyKind;
};

RunOptions optionsFor(const SweptProgram& program, const SweptCommand& command) {
    RunOptions options;
    options.program = program.program;
    options.libraryDir = program.libraryDir;
    options.args = command.args;
    options.trace = true;
    options.input = command.input != nullptr ? Input::kPipe : Input::kTerminal;
    if (command.input != nullptr)
        options.inputText = command.input;
    return options;
}

bool isExit(const TracedRequest& request) {
    return request.header.cmdType == 0x00 && request.header.cmd == 0x09;
}

/// What a clean run sends, by command, and how much of it every command sends before its handler runs.
struct CleanRuns {
    std::map<const SweptCommand*, std::vector<TracedRequest>> requests;
    std::size_t startUp = 0;

    CleanRuns(Sandbox& box, const SweptProgram& program) {
        const auto send = [&](const SweptCommand& command) {
            return parseTrace(box.run(optionsFor(program, command)).trace);
        };
        startUp = send({"help", {"-help"}, true}).size() - 1; // without the exit request
        for (const SweptCommand& command : kCommands)
            requests[&command] = send(command);
    }
};

void expectTraceRecord(const Point& point, const TracedRequest& failed, const LogFile& log) {
    constexpr std::uint8_t kPassThrough = 0x06;
    if (failed.header.cmdType == kPassThrough && failed.header.cmd == 0x00)
        return; // the drive's own answer; the handler's record tells of it
    char ending[96];
    std::snprintf(ending, sizeof ending, ": %s (rval = 0x%08X)", point.status.text, point.status.code);
    const auto& wrappers = wrappersOf(failed);
    const auto messages = log.messages();
    EXPECT_TRUE(std::any_of(messages.begin(), messages.end(),
                            [&](const std::string& message) {
                                return std::any_of(wrappers.begin(), wrappers.end(), [&](const std::string& name) {
                                    return message == "!ERR func=" + name + ending;
                                });
                            }))
        << failed.brief() << " left no record of its failure:\n"
        << log.masked();
}

void checkFailure(const Point& point, const CleanRuns& clean, const RunResult& result, const LogFile& log) {
    const auto& wanted = clean.requests.at(point.command);
    const TracedRequest& failed = wanted[point.position - 1];
    const bool inStartUp = point.position <= clean.startUp;
    EXPECT_EQ(result.exitStatus, inStartUp ? 255 : 0);
    expectTraceRecord(point, failed, log);
    const auto sent = parseTrace(result.trace);
    ASSERT_GE(sent.size(), point.position);
    EXPECT_TRUE(isExit(sent.back())) << briefs(sent);
    // An initialisation that failed is followed by the exit request as well; an exit request by nothing.
    if (isExit(failed))
        EXPECT_EQ(sent.size(), point.position) << briefs(sent);
    else if (inStartUp || point.command->endsAtFailure)
        EXPECT_LE(sent.size(), point.position + 1) << briefs(sent);
}

void runPoint(Sandbox& box, const SweptProgram& program, const Point& point, const CleanRuns& clean) {
    SCOPED_TRACE(std::string(point.command->name) + " " + point.fault());
    std::filesystem::remove(box.log());
    RunOptions options = optionsFor(program, *point.command);
    options.env["ZEBSIM_FAULTS"] = point.fault();
    const RunResult result = box.run(options);
    const LogFile log(box.log());
    EXPECT_EQ(result.signal, 0) << result;
    EXPECT_TRUE(log.everyLineExact());
    EXPECT_TRUE(result.exitStatus == 0 || result.exitStatus == 255) << result;
    if (options.input == Input::kTerminal)
        EXPECT_TRUE(sameMode(result.terminalBefore, result.terminalAfter));
    if (point.kind == Point::kStatus)
        checkFailure(point, clean, result, log);
}

/// Every kind of failure at each request; or one kind, in turn, at the first few of each command's requests of a type.
std::vector<Point> makePoints(const CleanRuns& clean, bool everyKind) {
    constexpr int kFew = 4;
    constexpr std::size_t kStride = 5; // meets all twelve kinds
    std::vector<Point> points;
    for (const SweptCommand& command : kCommands) {
        const auto& requests = clean.requests.at(&command);
        std::map<std::pair<int, int>, int> alike;
        for (std::size_t position = 1; position <= requests.size(); ++position) {
            const TracedRequest& request = requests[position - 1];
            std::vector<Point> here;
            for (const bool forEver : {false, true}) {
                for (const Status& status : kStatuses)
                    here.push_back({&command, position, forEver, Point::kStatus, status});
                here.push_back({&command, position, forEver, Point::kTruncated});
                here.push_back({&command, position, forEver, Point::kRandom});
            }
            if (everyKind)
                points.insert(points.end(), here.begin(), here.end());
            else if (++alike[{request.header.cmdType, request.header.cmd}] <= kFew)
                points.push_back(here[points.size() * kStride % here.size()]);
        }
    }
    return points;
}

using RequestSweep = SandboxTest;

std::size_t sweep(Sandbox& box, const SweptProgram& program) {
    const CleanRuns clean(box, program);
    const std::vector<Point> points = makePoints(clean, program.everyKind);
    std::atomic<std::size_t> next = 0;
    const auto work = [&] {
        Sandbox own;
        for (std::size_t i = next++; i < points.size() && !testing::Test::HasFailure(); i = next++)
            runPoint(own, program, points[i], clean);
    };
    std::thread other(work);
    work();
    other.join();
    return points.size();
}

TEST_F(RequestSweep, OneKindOfFailureAtTheFirstRequestsOfEachType) {
    EXPECT_GT(sweep(box, {"", std::nullopt, false}), 500U);
}

TEST_F(RequestSweep, EveryKindOfFailureAtEveryRequestOfTheReleaseBuild) {
    if (*paths::releaseZebcli == '\0')
        GTEST_SKIP() << "no release build was named (ZEB_RELEASE_BUILD)";
    EXPECT_GT(sweep(box, {paths::releaseZebcli, paths::releaseLibraryDir, true}), 5000U);
}

} // namespace
} // namespace zebtest
