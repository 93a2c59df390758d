// The harness's own tests: what would let the others pass unseen if it failed.
#include <csignal>
#include <cstdlib>

#include <gmock/gmock.h>
#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include "storelib/dll_mod.h"
#include "tests/support/expected.h"
#include "tests/support/log_file.h"
#include "tests/support/request_trace.h"
#include "tests/support/sandbox.h"
#include "tests/support/scripted_library.h"

namespace zebtest {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

/// What the work would have failed its test with.
template <class Work>
std::string failuresOf(const Work& work) {
    testing::TestPartResultArray results;
    {
        const testing::ScopedFakeTestPartResultReporter collector(
            testing::ScopedFakeTestPartResultReporter::INTERCEPT_ALL_THREADS, &results);
        work();
    }
    std::string texts;
    for (int i = 0; i < results.size(); ++i)
        texts += results.GetTestPartResult(i).message();
    return texts;
}

RunOptions shell(const std::string& script) {
    RunOptions options;
    options.program = "/bin/sh";
    options.args = {"-c", script};
    return options;
}

RunOptions probe(std::vector<std::string> args) {
    RunOptions options;
    options.program = ZEB_PROBE;
    options.args = std::move(args);
    return options;
}

using SupportSandbox = SandboxTest;

TEST_F(SupportSandbox, RunFailsTheTestByItself) {
    auto unasked = shell("echo bye");
    unasked.input = Input::kTerminal;
    unasked.answers = {{"Sure?", "y\n"}};
    auto endless = shell("sleep 60");
    endless.timeLimit = std::chrono::milliseconds(20);
    RunOptions absent;
    absent.program = "/nowhere/program";
    const std::pair<RunOptions, const char*> cases[] = {{unasked, "ended without asking for answer 1"},
                                                        {endless, "killed after its time limit of 20 ms"},
                                                        {absent, "cannot open /nowhere/program"},
                                                        {shell("exit 99"), "a sanitizer found a fault"}};
    for (const auto& c : cases)
        EXPECT_THAT(failuresOf([&] { box.run(c.first); }), HasSubstr(c.second));
    EXPECT_EQ("", failuresOf([&] { box.run(shell("exit 98")); }));
}

TEST_F(SupportSandbox, SanitizerFindingsAreFailures) {
    if (!kSanitized)
        GTEST_SKIP() << "built without sanitizers";
    for (const uid_t uid : {0U, 65534U}) {
        for (const char* fault : {"leak", "overflow"}) {
            auto options = probe({fault});
            options.uid = uid;
            EXPECT_THAT(failuresOf([&] { EXPECT_EQ(kSanitizerExit, box.run(options).exitStatus); }),
                        AllOf(HasSubstr("a sanitizer found a fault"), Not(HasSubstr("kSanitizerExit"))));
        }
    }
}

using SupportLogFile = SandboxTest;

TEST_F(SupportLogFile, DamageIsSeen) {
    const LogFile log(box.log());
    const std::string whole = logLine("a") + logMarker();
    log.write(whole.substr(0, 399));
    EXPECT_FALSE(log.everyLineExact());
    log.write(std::string(whole).replace(3, 1, "\n"));
    EXPECT_FALSE(log.everyLineExact());
}

TEST(SupportLibrary, EachDifferenceIsNamed) {
    _SL_LIB_CMD_PARAM_T wanted{};
    Bytes data(8);
    wanted.cmdType = 2;
    wanted.cmd = 5;
    wanted.ctrlId = 0x22;
    wanted.ref.pdRef = {10, 3};
    wanted.param.bytes[1] = 7;
    wanted.dataSize = 8;
    wanted.data = data.data();
    const auto send = [&data](_SL_LIB_CMD_PARAM_T request, std::uint8_t firstByte = 1) {
        return failuresOf([&] {
            ScriptedLibrary script({0x11, 0x22});
            script.expect({.type = 2,
                           .cmd = 5,
                           .contNo = 1,
                           .ref = reference(10, 3),
                           .param = {0, 7},
                           .size = 8,
                           .sends = Bytes{1},
                           .answer = randomBytes(1, 4),
                           .answerAt = 4,
                           .status = 0x0C});
            data = {firstByte, 0, 0, 0, 0, 0, 0, 0};
            EXPECT_EQ(0x0CU, pfnProcessLibCommandMR(&request));
        });
    };
    EXPECT_EQ("", send(wanted));
    EXPECT_EQ(randomBytes(1, 4), Bytes(data.begin() + 4, data.end()));
    EXPECT_THAT(send(wanted, 2), HasSubstr("outgoing data from byte 0 on: got 02 00"));
    const std::pair<void (*)(_SL_LIB_CMD_PARAM_T&), const char*> fields[] = {
        {[](auto& request) { ++request.cmdType; }, "command type"},
        {[](auto& request) { ++request.cmd; }, "command"},
        {[](auto& request) { ++request.reserved0[0]; }, "reserved bytes"},
        {[](auto& request) { request.ctrlId ^= 1U << 31; }, "controller id"},
        {[](auto& request) { ++request.ref.pdRef.deviceId; }, "reference"},
        {[](auto& request) { ++request.ref.pdRef.seqNo; }, "reference"},
        {[](auto& request) { ++request.param.bytes[1]; }, "parameters"},
        {[](auto& request) { ++request.param.bytes[15]; }, "parameters"},
        {[](auto& request) { ++request.dataSize; }, "data size"}};
    for (const auto& [change, field] : fields) {
        auto request = wanted;
        change(request);
        EXPECT_THAT(send(request), HasSubstr(field));
    }
}

TEST(SupportLibrary, SequenceIsStrict) {
    _SL_LIB_CMD_PARAM_T request{};
    EXPECT_THAT(failuresOf([&] {
                    const ScriptedLibrary script;
                    pfnProcessLibCommandMR(&request);
                }),
                HasSubstr("unexpected, the script has ended"));
    EXPECT_THAT(failuresOf([] { ScriptedLibrary().expect({.type = 1}); }), HasSubstr("request 1 (01/00) has not come"));
    EXPECT_FALSE(libMRPresent);
}

TEST(SupportLibrary, ControllerCommandHasDataOfItsOwn) {
    Bytes data{1, 2};
    _SL_DCMD_INPUT_T input{};
    input.dataSize = 2;
    input.opcode = 0x01080201;
    input.direction = kDcmdFromController;
    input.mailbox[0] = 5;
    input.data = data.data();
    _SL_LIB_CMD_PARAM_T request{};
    request.cmdType = 6;
    request.cmd = 3;
    request.ctrlId = 0x11;
    request.dataSize = sizeof input;
    request.data = &input;
    const auto send = [&](std::uint32_t opcode, std::uint32_t size) {
        return failuresOf([&] {
            ScriptedLibrary script;
            script.expect({.size = size, .dcmd = DcmdInput{opcode, kDcmdFromController, {5}}, .answer = {8, 9}});
            EXPECT_EQ(0U, pfnProcessLibCommandMR(&request));
        });
    };
    EXPECT_EQ("", send(0x01080201, 2));
    EXPECT_EQ((Bytes{8, 9}), data);
    EXPECT_THAT(send(0x01080202, 2), HasSubstr("DCMD opcode: got 0x1080201, wanted 0x1080202"));
    EXPECT_THAT(send(0x01080201, 4), HasSubstr("DCMD data size"));
}

using SupportExpectedFile = SandboxTest;

TEST_F(SupportExpectedFile, UpdateNeverPasses) {
    const auto kept = box.work() / "kept/report";
    const char* outer = std::getenv("ZEB_UPDATE_EXPECTED");
    const std::string saved = outer == nullptr ? "" : outer;
    unsetenv("ZEB_UPDATE_EXPECTED");
    EXPECT_FALSE(matchesFile(kept, "")) << "there is no such file";
    setenv("ZEB_UPDATE_EXPECTED", "1", 1);
    EXPECT_FALSE(matchesFile(kept, "new\r\n"));
    unsetenv("ZEB_UPDATE_EXPECTED");
    EXPECT_TRUE(matchesFile(kept, "new\r\n"));
    EXPECT_FALSE(matchesFile(kept, "new\n"));
    setenv("ZEB_UPDATE_EXPECTED", saved.c_str(), 1);
}

} // namespace
} // namespace zebtest
