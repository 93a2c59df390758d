// Collection of the RAID log with stand-ins for the maker's tool on the search path.
#include "tests/support/operation_test.h"
#include "tests/support/paths.h"

#include <gmock/gmock.h>

#include "tests/support/expected.h"

namespace zebtest {
namespace {

namespace fs = std::filesystem;

constexpr char kFailed[] = "Error - The Collection of the RAID log Failed.\n";
constexpr char kOverwriteQuestion[] = "Information - RAID log already exists.\nDoes it overwrite?(Y/N)?\n";
constexpr char kSucceeded[] = "Information - The Collection of the RAID log succeeded.\n"
                              "  /opt/quorvel/zeb/log2/log_FlashROMLog.log\n"
                              "  /opt/quorvel/zeb/log2/log_UART.log\n"
                              "  /opt/quorvel/zeb/log2/log_AdapterInfo.log\n";
constexpr char kEvents[] = " -AdpEventLog -GetEvents -f /opt/quorvel/zeb/log2/log_FlashROMLog.log -aALL -nolog\n";
constexpr char kTerminalLog[] = " -FWTermlog -Dsply -aALL -nolog\n";
constexpr char kAdapter[] = " -AdpAllInfo -aALL -nolog\n";

std::string callsOf(const std::string& tool) {
    return tool + kEvents + tool + kTerminalLog + tool + kAdapter;
}

class RaidLog : public OperationTest {
  protected:
    void SetUp() override {
        OperationTest::SetUp();
        fs::create_directories(folder());
        installScript("uname", "echo \"uname $*\" >> asked; echo x86_64");
    }

    fs::path folder() const { return box.zeb() / "log2"; }
    std::string collected(const char* name) const { return readFile(folder() / name); }

    void installScript(const char* name, const std::string& body) {
        writeFile(box.bin() / name, "#!/bin/sh\n" + body + "\n");
        fs::permissions(box.bin() / name, fs::perms::all);
    }
    /// A tool that notes how it was called and does what it was asked for; `extra` runs first.
    void installTool(const std::string& name, const std::string& extra = "") {
        installScript(name.c_str(), "echo \"" + name + " $*\" >> calls\n" + extra +
                                        "\n[ \"$1\" = -AdpEventLog ] && echo events > \"$4\"; echo \"text of $1\"");
    }
    /// The calls that a run made; forgotten then.
    std::string calls() {
        const std::string text = readFile(box.work() / "calls");
        fs::remove(box.work() / "calls");
        return text;
    }
    RunResult collect(const std::string& args = "-log", const std::string& input = "") {
        auto options = optionsFor("", args);
        options.input = Input::kPipe;
        options.inputText = input;
        return box.run(options);
    }
};

TEST_F(RaidLog, ToolOfTheMachineWritesThreeFiles) {
    installTool("MegaCli64");
    installTool("MegaCli");
    for (const auto& [machine, tool] :
         {std::pair("x86_64", "MegaCli64"), {"i686", "MegaCli"}, {"x86_64_v2", "MegaCli64"}, {"ax86_64", "MegaCli"}}) {
        fs::remove_all(folder());
        fs::create_directories(folder());
        installScript("uname", std::string("echo \"uname $*\" >> asked; echo ") + machine);
        const auto result = collect();
        EXPECT_TRUE(sameText(result.out, kSucceeded)) << machine;
        EXPECT_EQ("", result.err);
        EXPECT_EQ(callsOf(tool), calls());
        EXPECT_EQ("events\n", collected("log_FlashROMLog.log"));
        EXPECT_EQ("text of -FWTermlog\n", collected("log_UART.log"));
        EXPECT_EQ("text of -AdpAllInfo\n", collected("log_AdapterInfo.log"));
        EXPECT_EQ("00/00 ref=00000000\n00/09 ref=00000000\n", briefs(parseTrace(result.trace)));
    }
    EXPECT_EQ(repeated("uname -m\n", 4), readFile(box.work() / "asked"));
    EXPECT_THAT(loggedMessages(), testing::Each(testing::StrEq("zebcli -log"))) << "a success is not logged";
}

TEST_F(RaidLog, EveryRowRunsAndOneFailureIsEnough) {
    for (const char* failing : {"-AdpEventLog", "-FWTermlog", "-AdpAllInfo"}) {
        fs::remove_all(folder());
        fs::create_directories(folder());
        installTool("MegaCli64", std::string("[ \"$1\" = ") + failing + " ] && exit 3");
        EXPECT_EQ(kFailed, collect().out) << failing;
        EXPECT_EQ(callsOf("MegaCli64"), calls());
        EXPECT_EQ(failing == std::string("-AdpAllInfo") ? "" : "text of -AdpAllInfo\n",
                  collected("log_AdapterInfo.log"));
    }
    EXPECT_THAT(loggedMessages(), testing::Contains("Error - The Collection of the RAID log Failed.").Times(3));
}

TEST_F(RaidLog, CallerMayHaveLeftTheEndOfChildrenIgnored) {
    installTool("MegaCli64");
    auto options = optionsFor("", "");
    options.program = "/bin/sh";
    options.args = {"-c", std::string("trap '' CHLD; exec ") + paths::zebcli + " -log"};
    EXPECT_EQ(kSucceeded, box.run(options).out);
}

TEST_F(RaidLog, NothingToCollectWith) {
    EXPECT_EQ(kFailed, collect().out) << "the tool is not installed";
    fs::remove_all(folder());
    installTool("MegaCli64");
    EXPECT_EQ(kFailed, collect().out) << "the directory is missing";
    EXPECT_EQ(std::string("MegaCli64") + kEvents, calls());
    EXPECT_FALSE(fs::exists(folder()));
    installScript("uname", "exit 0");
    EXPECT_EQ(kFailed, collect().out) << "the machine tells nothing";
    EXPECT_EQ("", calls());
}

TEST_F(RaidLog, PresentFilesAreOverwrittenOnlyAfterYes) {
    installTool("MegaCli64");
    for (const char* present : {"log_FlashROMLog.log", "log_UART.log", "log_AdapterInfo.log"}) {
        fs::remove_all(folder());
        writeFile(folder() / present, "old");
        EXPECT_EQ(kOverwriteQuestion, collect("-log", "N\n").out) << present;
        EXPECT_EQ("", calls());
        EXPECT_EQ("old", collected(present));
        EXPECT_EQ(std::string(kOverwriteQuestion) + kSucceeded, collect("-log", "y\n").out);
        EXPECT_EQ(callsOf("MegaCli64"), calls());
        EXPECT_NE("old", collected(present));
    }
    EXPECT_EQ(std::string(kOverwriteQuestion) + kOverwriteQuestion + kSucceeded, collect("-log", "yes\nY\n").out)
        << "three files, one question at a time";
}

TEST_F(RaidLog, ArgumentIsRefused) {
    installTool("MegaCli64");
    for (const char* args : {"-log extra", "-LOG -aAll more"}) {
        EXPECT_EQ("Error - Invalid input at or near token " + words(args)[0] + ".\n", collect(args).out);
        EXPECT_EQ("", calls());
    }
    EXPECT_THAT(loggedMessages(), testing::Contains("Error - Invalid input at or near token -log."));
}

} // namespace
} // namespace zebtest
