// The harness's own tests: what it promises to the others.
#include <csignal>
#include <cstdlib>

#include <gmock/gmock.h>
#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include "storelib/dll_mod.h"
#include "tests/support/expected.h"
#include "tests/support/library.h"
#include "tests/support/log_file.h"
#include "tests/support/sandbox.h"
#include "tests/support/trace.h"

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

TEST_F(SupportSandbox, ProgramSeesItsOwnWorld) {
    writeFile(box.zeb() / "zeb_config.csv", "prepared");
    const auto result =
        box.run(shell("cat /opt/quorvel/zeb/zeb_config.csv; echo left > /opt/quorvel/zeb/log/zebcli.log; pwd; ls -a "
                      "/opt . /dev; echo x > /dev/null; echo $0 $TZ; exit 7"));
    EXPECT_EQ(7, result.exitStatus);
    EXPECT_TRUE(sameText(
        result.out, "prepared" + box.work().string() +
                        "\n.:\n.\n..\n\n/dev:\n.\n..\nfd\nfull\nlog\nnull\nptmx\npts\nrandom\nshm\ntty\nurandom\nzero"
                        "\n\n/opt:\n.\n..\nquorvel\nzebcli UTC0\n"));
    EXPECT_EQ("left\n", readFile(box.log()));
    EXPECT_FALSE(std::filesystem::exists("/opt/quorvel/zeb/log/zebcli.log") &&
                 readFile("/opt/quorvel/zeb/log/zebcli.log") == "left\n");
}

TEST_F(SupportSandbox, TerminalDialogueTypesOnlyWhenAsked) {
    auto options =
        shell("stty -echo -isig; printf 'Sure?'; sleep 0.1; stty echo; read a; stty -echo; printf 'More?'; read b; "
              "echo \"got $a,$b\"; read c || printf end; stty echo isig; printf 'a\\r\\n'");
    options.input = Input::kTerminal;
    for (const Output output : {Output::kTerminal, Output::kPipe}) {
        options.output = output;
        options.answers = {{"Sure?", "y\n"}, {"More?", "\x03n\n"}, {"got", "\x04"}};
        const auto result = box.run(options);
        const bool onTerminal = output == Output::kTerminal;
        ASSERT_EQ(3U, result.terminalAtAnswer.size()) << result;
        EXPECT_EQ(onTerminal ? "Sure?y\nMore?got y,\x03n\nenda\r\n" : "Sure?More?got y,\x03n\nenda\r\n", result.out);
        EXPECT_EQ(onTerminal ? result.out : "y\n", result.terminal);
        EXPECT_NE(0U, result.terminalAtAnswer[0].c_lflag & ECHO);
        EXPECT_EQ(0U, result.terminalAtAnswer[1].c_lflag & ECHO);
        EXPECT_TRUE(sameMode(result.terminalBefore, result.terminalAfter));
        EXPECT_FALSE(sameMode(result.terminalBefore, result.terminalAtAnswer[0]));
    }
}

TEST_F(SupportSandbox, LimitsAndTimeOut) {
    auto options = shell("sleep 60 & sleep 60");
    options.timeLimit = std::chrono::milliseconds(50);
    options.mayTimeOut = true;
    auto result = box.run(options);
    EXPECT_TRUE(result.timedOut);
    EXPECT_EQ(SIGKILL, result.signal);
    EXPECT_LT(result.wallTime, std::chrono::seconds(5));

    options = shell("head -c 5000 /dev/zero > big");
    options.fileSizeLimit = 4096;
    box.run(options);
    EXPECT_EQ(4096U, std::filesystem::file_size(box.work() / "big"));

    options = shell("id -u; id -g; id -G");
    options.uid = 65534;
    EXPECT_EQ("65534\n65534\n65534\n", box.run(options).out);
}

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

TEST_F(SupportLogFile, RingIsReadFromTheMarkerOn) {
    const LogFile log(box.log());
    const std::string time = "[2011/02/03 04:05:06.007] pid=00042";
    log.write(logLine(time + " zebcli -pd(1) ") + logMarker() + logLine("--- a dump's rest") +
              logLine(time + " dll_mod.cpp(7) func=F: CmdParam >") + logLine(std::string(77, '-')) +
              logLine("00000020: "
                      "10 20 30 40 50 60 70 80" +
                      std::string(27, ' ') + "..0.P.p."));
    EXPECT_TRUE(log.everyLineExact());
    EXPECT_EQ(std::vector<std::size_t>{2}, log.markers());
    const auto records = log.records();
    ASSERT_EQ(2U, records.size());
    EXPECT_EQ("2011/02/03 04:05:06.007", records[0].time);
    EXPECT_EQ("00042", records[0].pid);
    EXPECT_EQ("dll_mod.cpp", records[0].source);
    EXPECT_EQ(7U, records[0].line);
    EXPECT_EQ("", records[1].source);
    EXPECT_EQ((std::vector<std::string>{"func=F: CmdParam >", "zebcli -pd(1)"}), log.messages());
    EXPECT_TRUE(sameText(log.masked(), "[TIME] pid=PID dll_mod.cpp(LINE) func=F: CmdParam >\n" + std::string(77, '-') +
                                           "\n00000020: pp pp pp pp pp pp pp pp" + std::string(27, ' ') +
                                           "pppppppp\n"
                                           "[TIME] pid=PID zebcli -pd(1)\n"));
}

TEST_F(SupportLogFile, DamageIsSeen) {
    const LogFile log(box.log());
    const std::string whole = logLine("a") + logMarker();
    log.write(whole.substr(0, 399));
    EXPECT_FALSE(log.everyLineExact());
    log.write(std::string(whole).replace(3, 1, "\n"));
    EXPECT_FALSE(log.everyLineExact());
}

TEST(SupportTrace, LineIsTakenApart) {
    const std::string header = "02050000"
                               "00000011"
                               "0a000300" +
                               std::string("aa") + std::string(30, '0') + "04000000";
    const auto requests = parseTrace("02/05 header=" + header + " data=4 out=0102:ff status=0x0000000C\n");
    ASSERT_EQ(1U, requests.size());
    EXPECT_EQ("02/05 ref=0003000a\n", briefs(requests));
    EXPECT_EQ(0x11000000U, requests[0].ctrlId);
    EXPECT_EQ(0xAA, requests[0].param[0]);
    EXPECT_EQ(4U, requests[0].dataSize);
    EXPECT_EQ(4U, requests[0].data);
    EXPECT_EQ((std::vector<std::uint8_t>{1, 2}), requests[0].out);
    EXPECT_EQ(std::vector<std::uint8_t>{0xFF}, requests[0].payload);
    EXPECT_EQ(0x0CU, requests[0].status);
    for (const char* bad : {"", "02/05", "02/05 header=00 data=4 out=- status=0x00000000"})
        EXPECT_FALSE(parseTraceLine(bad)) << bad;
    for (const char* tail : {" data=4 out=- status=0x0000000", " data=x out=- status=0x00000000",
                             " data=null out=1 status=0x00000000", " data=null out=- status=0x00000000 more"})
        EXPECT_FALSE(parseTraceLine("02/05 header=" + header + tail)) << tail;
    EXPECT_FALSE(parseTraceLine("02/06 header=" + header + " data=null out=- status=0x00000000"))
        << "code and header disagree";
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
            ScriptedLibrary library({0x11, 0x22});
            library.expect({.type = 2,
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
    const std::pair<std::size_t, const char*> fields[] = {
        {0, "command type"}, {1, "command"},     {2, "reserved bytes"}, {4, "controller id"}, {8, "reference"},
        {10, "reference"},   {13, "parameters"}, {28, "data size"},     {27, "parameters"}};
    for (const auto& [offset, field] : fields) {
        auto request = wanted;
        reinterpret_cast<std::uint8_t*>(&request)[offset] ^= 0x40U;
        EXPECT_THAT(send(request), HasSubstr(field)) << offset;
    }
}

TEST(SupportLibrary, SequenceIsStrict) {
    _SL_LIB_CMD_PARAM_T request{};
    EXPECT_THAT(failuresOf([&] {
                    const ScriptedLibrary library;
                    pfnProcessLibCommandMR(&request);
                }),
                HasSubstr("unexpected, the script has ended"));
    EXPECT_THAT(failuresOf([] { ScriptedLibrary().expect({.type = 1}); }), HasSubstr("request 1 (01/00) has not come"));
    EXPECT_FALSE(libMRPresent);
}

TEST(SupportLibrary, ControllerCommandHasDataOfItsOwn) {
    Bytes data{1, 2};
    _SL_DCMD_INPUT_T input{2, 0x01080201, kDcmdFromController, {}, {5}, data.data()};
    _SL_LIB_CMD_PARAM_T request{};
    request.cmdType = 6;
    request.cmd = 3;
    request.ctrlId = 0x11;
    request.dataSize = sizeof input;
    request.data = &input;
    const auto send = [&](std::uint32_t opcode, std::uint32_t size) {
        return failuresOf([&] {
            ScriptedLibrary library;
            library.expect({.size = size, .dcmd = DcmdInput{opcode, kDcmdFromController, {5}}, .answer = {8, 9}});
            EXPECT_EQ(0U, pfnProcessLibCommandMR(&request));
        });
    };
    EXPECT_EQ("", send(0x01080201, 2));
    EXPECT_EQ((Bytes{8, 9}), data);
    EXPECT_THAT(send(0x01080202, 2), HasSubstr("DCMD opcode: got 0x1080201, wanted 0x1080202"));
    EXPECT_THAT(send(0x01080201, 4), HasSubstr("DCMD data size"));
}

using SupportExpectedFile = SandboxTest;

TEST(SupportExpected, FirstDifferenceIsShownEscaped) {
    EXPECT_TRUE(sameText("a\r\nb", "a\r\nb"));
    const struct {
        std::string got, wanted, shown;
    } cases[] = {{"a\r\nb\r\n", "a\r\nb\n", "line 2 differs\n     got: b^M$\n\n  wanted: b$\n"},
                 {"a\n", "a\nb", "line 2 differs\n     got: (the end)\n\n  wanted: b"},
                 {"\t\xe9", "\x7f", "line 1 differs\n     got: ^IM-i\n  wanted: ^?"}};
    for (const auto& c : cases)
        EXPECT_EQ(c.shown, std::string(sameText(c.got, c.wanted).message()));
}

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
