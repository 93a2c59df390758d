// Options of a command: words and their groups, targets, and the token that a refusal names.
#include <gtest/gtest.h>

#include "commands/handlers.h"
#include "main/zebcli_cmd_com/options.h"

namespace zebtest {
namespace {

using Arguments = std::vector<std::string>;
using Handler = int (*)(int, char**, _AFCONT*, int);

struct ArgV {
    explicit ArgV(Arguments arguments) : texts(std::move(arguments)) {
        for (auto& text : texts)
            pointers.push_back(text.data());
    }
    int argc() const { return static_cast<int>(texts.size()); }
    Arguments texts;
    std::vector<char*> pointers;
};

/// What a command with two controllers says to these arguments, which it must refuse before it looks at anything.
std::string refusal(Handler handler, const std::string& command, const Arguments& options) {
    Arguments all{"zebcli", command};
    all.insert(all.end(), options.begin(), options.end());
    ArgV argv(all);
    testing::internal::CaptureStdout();
    handler(argv.argc(), argv.pointers.data(), nullptr, 2);
    return testing::internal::GetCapturedStdout();
}

std::string token(const std::string& text) {
    return "Error - Invalid input at or near token " + text + ".\n";
}

TEST(UnitOptions, RefusalNamesTheTokenBeforeOrTheTokenItself) {
    const std::string twoControllers =
        "Error - There are multiple RAID controllers. Please set the RAID controller number.\n";
    const std::string noThird = "Error - The specified Controller 3: doesn't exist.\n";
    const struct {
        Handler handler;
        const char* command;
        Arguments options;
        std::string wanted;
    } cases[] = {
        {CliCmdExecTSTEVT, "-tstevt", {"-inf", "-wrn"}, token("-inf")},
        {CliCmdExecTSTEVT, "-TstEvt", {"-inform"}, token("-TstEvt")},
        {CliCmdExecTSTEVT, "-tstevt", {"-INF", "-inf"}, token("-INF")},
        {CliCmdExecTSTEVT, "-tstevt", {}, token("(null)")},
        {CliCmdExecPDRbld, "-pdrbld", {"-start", "-stop"}, token("-start")},
        {CliCmdExecPDRbld, "-pdrbld", {"-pd[1:2]", "-pd[1:3]"}, token("-pd[1:2]")},
        {CliCmdExecPDRbld, "-pdrbld", {"-start", "-L0"}, token("-start")},
        {CliCmdExecPDRbld, "-pdrbld", {"-pd"}, token("-pdrbld")},
        {CliCmdExecPDHSP, "-pdhsp", {"-pd[1:2]", "-rmv", "-ghs"}, token("-rmv")},
        {CliCmdExecPDHSP, "-pdhsp", {"-ghs", "-nochk", "-NOCHK"}, token("-nochk")},
        {CliCmdExecPDHSP, "-pdhsp", {"-nochk"}, token("-nochk")}, // a mode and drives are missing: the last argument
        {CliCmdExecAdpSetProp, "-ctrlsetprop", {"-trh", "TRL"}, token("-trh")},
        {CliCmdExecAdpSetProp, "-ctrlsetprop", {"-hddcpybkenbl", "-trm", "-hddcpybkdsbl"}, token("-trm")},
        {CliCmdExecAdpSetProp, "-ctrlsetprop", {"--trh"}, token("-ctrlsetprop")},
        {CliCmdExecAdpSetProp, "-ctrlsetprop", {"-trh", "-a0", "-A1"}, token("-a0")},
        {CliCmdExecAdpSetProp, "-ctrlsetprop", {"-trh", "-a3"}, noThird},
        {CliCmdExecAdpRbldMode, "-ctrlautorbld", {"x-enbl", "-dsbl"}, token("x-enbl")},
        {CliCmdExecLDCC, "-ldcc", {"-start", "-Stop"}, token("-Stop")},
        {CliCmdExecLDCC, "-ldcc", {"-start", "-bogus"}, token("-bogus")},
        {CliCmdExecLDCC, "-ldcc", {"-L0", "-aAll"}, token("-L0")}, // no mode: the third argument
        {CliCmdExecLDCC, "-ldcc", {"-start", "-a0", "-a1"}, token("-a1")},
        {CliCmdExecLDCC, "-ldcc", {"-start", "-A3"}, noThird},
        {CliCmdExecLDCC, "-ldcc", {"-start", "-L64"}, token("-L64")},
        {CliCmdExecLDCC, "-ldcc", {"-start", "-L0", "-lALL"}, token("-lALL")},
        {CliCmdExecLDCC, "-ldcc", {"-start", "-pd[1:2]"}, token("-pd[1:2]")},
        {CliCmdExecLDCC, "-ldcc", {"-start"}, twoControllers},
        {CliCmdExecLDSetProp, "-ldsetprop", {"-wt", "-ra", "-WB"}, token("-WB")},
        {CliCmdExecLDSetProp, "-ldsetprop", {"-name"}, token("-name")},
    };
    for (const auto& c : cases)
        EXPECT_EQ(c.wanted, refusal(c.handler, c.command, c.options)) << c.command << testing::PrintToString(c.options);
}

TEST(UnitOptions, AcceptedArgumentsAreKept) {
    static constexpr OptionWord kWords[] = {{"on", 1, 3}, {"off", 2, 3}, {"name", 4, 4, true}, {"deep", 8, 8}};
    constexpr OptionTable kTable{"unit", BadToken::Itself, kWords, true, true, true};
    ArgV argv({"zebcli", "-cmd", "-NAME", "-off", "DEEP", "x-On", "-aALL", "-L3,1", "-PD[x:9,y:4]"});
    Options options;
    ASSERT_TRUE(parseOptions(kTable, argv.argc(), argv.pointers.data(), 2, options));
    EXPECT_EQ(1U | 4U | 8U, options.bits);
    EXPECT_STREQ("-off", options.value) << "a value is taken as it was typed";
    EXPECT_EQ((CtrlList{0, 1, kNoTarget, kNoTarget}), options.ctrls);
    EXPECT_EQ(3, options.lds[0]);
    EXPECT_EQ(4, options.pds[0]);
    for (const std::size_t length : {15U, 16U}) {
        ArgV named({"zebcli", "-cmd", "-name", std::string(length, 'N')});
        Options given;
        testing::internal::CaptureStdout();
        EXPECT_EQ(length == 15, parseOptions(kTable, named.argc(), named.pointers.data(), 1, given)) << length;
        EXPECT_EQ(length == 15, testing::internal::GetCapturedStdout().empty());
    }
    // An option longer than any word is compared whole, not by its beginning.
    ArgV longest({"zebcli", "-cmd", "-on" + std::string(100000, 'n')});
    Options given;
    testing::internal::CaptureStdout();
    EXPECT_FALSE(parseOptions(kTable, longest.argc(), longest.pointers.data(), 1, given));
    EXPECT_EQ(9999U, testing::internal::GetCapturedStdout().size()) << "the message is cut";
}

} // namespace
} // namespace zebtest
