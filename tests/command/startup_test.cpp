// Start-up: which command runs, what is refused and in which words, and what is put back afterwards.
#include <filesystem>
#include <fstream>
#include <sstream>

#include <gmock/gmock.h>

#include "storelib/records/request.h"
#include "tests/support/answers.h"
#include "tests/support/expected.h"
#include "tests/support/log_file.h"
#include "tests/support/operation_test.h"
#include "tests/support/paths.h"

namespace zebtest {
namespace {

constexpr char kOpenedAndClosed[] = "00/00 ref=00000000\n00/09 ref=00000000\n";
constexpr char kOneController[] = R"({"controllers":[{"drives":[{}]}]})";

class StartUp : public OperationTest {
  protected:
    RunResult runWord(const std::string& word) {
        std::filesystem::remove(box.log());
        return box.run(optionsFor("", word));
    }
};

struct Refusal {
    const char* name;
    RunOptions options;
    std::string message;
    std::vector<std::string> traces{}; ///< logged before the message
    std::string requests{};
};

RunOptions call(std::vector<std::string> args, std::map<std::string, std::string> env = {}, uid_t uid = 0,
                std::string argv0 = "zebcli") {
    RunOptions options;
    options.args = std::move(args);
    options.env = std::move(env);
    options.uid = uid;
    options.argv0 = std::move(argv0);
    return options;
}

/// The reason of the dynamic loader and errno are not ours.
const std::vector<Mask> kForeign{{"dlerror = .*libstorelib\\.so.*", "dlerror = REASON"},
                                 {"error code - 0x[0-9A-F]{8}", "error code - CODE"}};

void expectRefused(const Refusal& refusal, const RunResult& result, const LogFile& log) {
    EXPECT_TRUE(sameText(result.out, refusal.message + "\n")) << result;
    EXPECT_EQ(255, result.exitStatus);
    EXPECT_TRUE(sameMode(result.terminalBefore, result.terminalAfter));
    EXPECT_TRUE(sameText(briefs(parseTrace(result.trace)), refusal.requests));
    const auto records = log.records();
    ASSERT_FALSE(records.empty());
    std::string commandLine = refusal.options.argv0 + " ";
    for (const auto& argument : refusal.options.args)
        commandLine += argument + " ";
    EXPECT_FALSE(records[0].message.empty());
    EXPECT_TRUE(commandLine.starts_with(records[0].message)) << records[0].message;
    EXPECT_EQ("", records[0].source);
    EXPECT_EQ(0U, records[0].line);
    std::vector<std::string> wanted = refusal.traces;
    wanted.push_back(masked(refusal.message, {{"\n", " "}, {" +$", ""}}));
    ASSERT_GT(records.size(), wanted.size());
    for (std::size_t i = 0; i < wanted.size(); ++i)
        EXPECT_EQ(wanted[i], masked(records[i + 1].message, kForeign));
    EXPECT_EQ("zebcli_main", records[wanted.size()].source);
}

/// What is refused is said and logged, and leaves nothing behind.
class Refusals : public StartUp {
  protected:
    void check(const std::vector<Refusal>& refusals) {
        for (const auto& refusal : refusals) {
            SCOPED_TRACE(refusal.name);
            std::filesystem::remove(box.log());
            RunOptions options = refusal.options;
            options.trace = true;
            options.input = Input::kTerminal;
            expectRefused(refusal, box.run(options), LogFile(box.log()));
        }
    }
};

TEST_F(Refusals, LibraryAndControllers) {
    writeFile(box.root() / "none.json", R"({"controllers":[]})");
    writeFile(box.root() / "five.json", R"({"controllers":[{},{"id":1},{"id":2},{"id":3},{"id":4}]})");
    const std::string tooMany = "Error - The number of RAID controller is over 4.\nQuits the application.\n";
    const std::string noneFound = "Error - No RAID controller is found.\nQuits the application.\n";
    const std::string noStart = "Error - Failed to initialize.";
    check({
        {"no library",
         call({"-v"}, {{"LD_LIBRARY_PATH", box.noLibrary()}}),
         noStart,
         {"!ERR dlerror = REASON", "!ERR No library could be loaded. Exiting"}},
        {"no entry point",
         call({"-v"}, {{"LD_LIBRARY_PATH", paths::libNoEntryDir}}),
         noStart,
         {"!ERR Unable to get Entry Point address-ProcessLibCommand(). - error code - CODE"}},
        {"initialisation fails",
         call({"-?"}, {{"ZEBSIM_FAULTS", R"([{"nth":1,"status":"0x8009"}])"}}),
         noStart,
         {"func=InitializeLibrary: CmdParam >",
          "!ERR func=InitializeLibrary: Command to driver timed out (rval = 0x00008009)",
          "!ERR InitLib failed for MegaRAID SAS Controller!! rval 0x8009", "!ERR InitLib failed for All library."},
         kOpenedAndClosed},
        {"no controller",
         call({"-?"}, {{"ZEBSIM_SCENARIO", box.root() / "none.json"}}),
         noneFound,
         {},
         kOpenedAndClosed},
        {"five controllers",
         call({"-?"}, {{"ZEBSIM_SCENARIO", box.root() / "five.json"}}),
         tooMany,
         {},
         kOpenedAndClosed},
        {"65535 controllers",
         call({"-?"}, {{"ZEBSIM_FAULTS", R"([{"nth":1,)" + patch({{ZEB_AT(_SL_CTRL_LIST_T, count), 0xFFFF}}) + "}]"}}),
         tooMany,
         {},
         kOpenedAndClosed},
    });
}

TEST_F(Refusals, Calls) {
    const std::string wrong = "Error - Invoked with wrong parameters.";
    const std::string tooLong(257, 'x');
    std::filesystem::permissions(box.logFolder(), std::filesystem::perms::all);
    check({
        {"no argument", call({}), wrong},
        {"long word", call({tooLong}), wrong},
        {"long argument", call({"-v", "-a0", tooLong}), wrong},
        {"long program name", call({"-v"}, {}, 0, tooLong), wrong},
        {"another user, no argument", call({}, {}, 65534), "Fatal error - It is not root user."},
    });
}

TEST_F(Refusals, Words) {
    const auto unknown = [](const std::string& token) {
        return "Error - Invalid input at or near token " + token + ".";
    };
    check({
        {"two dashes", call({"--ctrlinfo"}), unknown("-ctrlinfo")},
        {"dash behind", call({"CTRLINFO-"}), unknown("ctrlinfo-")},
        {"dash alone", call({"-"}), unknown("-")},
        {"empty word", call({""}), unknown("")},
        {"beginning of a word", call({"-ctrlinf"}), unknown("ctrlinf")},
        {"conversions", call({"-%n%S"}), unknown("%n%s")},
    });
}

TEST_F(StartUp, LibraryIsLookedForOnceUnderItsOneName) {
    for (const char* name : {"libstorelib.so", "libstorelib.so.1"})
        std::filesystem::create_symlink(std::filesystem::path(paths::libraryDir) / "libstorelib.so", box.work() / name);
    auto options = call({"-v"}, {{"LD_LIBRARY_PATH", box.noLibrary()}, {"LD_DEBUG", "files"}});
    const auto result = box.run(options);
    EXPECT_EQ("Error - Failed to initialize.\n", result.out);
    std::istringstream lines(result.err);
    std::vector<std::string> loaded;
    for (std::string line; std::getline(lines, line);)
        if (line.find("dynamically loaded by") != line.npos)
            loaded.push_back(masked(line, {{"^ *\\d+:\t", ""}, {" \\[0\\].*", ""}}));
    EXPECT_THAT(loaded, testing::ElementsAre("file=libstorelib.so"));
}

TEST_F(StartUp, LogCommandTakesNoSnapshotButNeedsControllers) {
    EXPECT_EQ(kOpenedAndClosed, briefs(parseTrace(runWord("-log").trace)));
    auto options = call({"-log"});
    options.env["ZEBSIM_FAULTS"] = R"([{"nth":1,)" + patch({{ZEB_AT(_SL_CTRL_LIST_T, count), 0}}) + "}]";
    EXPECT_EQ("Error - No RAID controller is found.\nQuits the application.\n\n", box.run(options).out);
}

TEST_F(StartUp, ArgumentsOf256CharactersPass) {
    const std::string longest(256, 'X');
    EXPECT_EQ("Error - Invalid input at or near token -v.\n", box.run({"-v", longest}).out);
    EXPECT_EQ(0, box.run(call({"-v"}, {}, 0, longest)).exitStatus);
    EXPECT_TRUE(box.run({longest}).out.starts_with("Error - Invalid input at or near token xxxxxxxx"));
}

/// The source unit of a handler.
std::string sourceOf(const std::string& handler) {
    const auto is = [&](const char* part) { return handler.starts_with(std::string("CliCmdExec") + part); };
    if (is("LD") || is("CfgLD") || is("S"))
        return "zebcli_cmd_ld";
    return is("PD") || is("Encl") ? "zebcli_cmd_pd" : "zebcli_cmd_ctrl";
}

/// The lines of a unit's files that stand at that number, each with the two before it.
std::string codeAt(const std::string& unit, unsigned line) {
    std::string code;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(paths::sourceDir + ("/commands/" + unit))) {
        std::ifstream file(entry.path());
        std::string text;
        for (unsigned number = 1; std::getline(file, text) && number <= line; ++number)
            if (number + 2 >= line)
                code += text + "\n";
    }
    return code;
}

TEST_F(StartUp, ARefusalCarriesItsCommandsUnitAndTheLineThere) {
    for (const char* typed :
         {"-ctrlinfo -x", "-ctrlsetprop", "-tstevt -a0", "-log x", "-v x", "-ldpdinfo -a0 -a0", "-ldinit -L0",
          "-ldsetprop -a7", "-enclinfo -a9", "-pdinfo -pd[", "-pdhsp -ghs -a0", "-pdonline", "-pdrbld -stop -stop"}) {
        SCOPED_TRACE(typed);
        runWord(typed);
        const auto records = LogFile(box.log()).records();
        ASSERT_GT(records.size(), 2U);
        EXPECT_TRUE(records.back().message.starts_with("Error - ")) << records.back().message;
        EXPECT_EQ(sourceOf(records[1].message), records.back().source);
        EXPECT_THAT(codeAt(records.back().source, records.back().line),
                    testing::ContainsRegex("readArguments|refuseArguments|parsePdCommand"));
    }
}

TEST_F(StartUp, EachWordRunsItsHandler) {
    const auto table =
        words("-lde CliCmdExecCfgLDEasyMakeAdd -ldc CliCmdExecCfgLDCustomMakeAdd -lddel CliCmdExecCfgLDDel "
              "-pdhsp CliCmdExecPDHSP -ctrlinfo CliCmdExecAdpInfo -CTRLINFO CliCmdExecAdpInfo "
              "ctrlinfo CliCmdExecAdpInfo xx-ctrlinfo CliCmdExecAdpInfo -ldpdinfo CliCmdExecLDInfo "
              "-pdinfo CliCmdExecPDInfo -cbinfo CliCmdExecCacheBkupInfo -cblearn CliCmdExecCacheBkup "
              "-enclinfo CliCmdExecEnclInfo -V CliCmdExecVersion -h CliCmdExecHelp help CliCmdExecHelp "
              "-? CliCmdExecHelp -ldsetprop CliCmdExecLDSetProp -ctrlautorbld CliCmdExecAdpRbldMode "
              "-ctrlsetprop CliCmdExecAdpSetProp -ctrlpr CliCmdExecAdpPR -ldinit CliCmdExecLDINIT "
              "-pdrbld CliCmdExecPDRbld -ldcc CliCmdExecLDCC -ldpdprog CliCmdExecLDPDProg -tstevt CliCmdExecTSTEVT "
              "-pdlocate CliCmdExecPDLocate -pdonline CliCmdExecPDOnline -pdoffline CliCmdExecPDOffline "
              "-pdmakegood CliCmdExecPDMakeGood -log CliCmdExecLog -sse CliCmdExecSSEnableEasy "
              "-snapshot CliCmdExecSnapshot");
    for (std::size_t i = 0; i < table.size(); i += 2) {
        const std::string& typed = table[i];
        SCOPED_TRACE(typed);
        EXPECT_EQ(0, runWord(typed).exitStatus);
        const auto records = LogFile(box.log()).records();
        ASSERT_GT(records.size(), 1U);
        EXPECT_EQ(table[i + 1], records[1].message);
        EXPECT_EQ(sourceOf(table[i + 1]), records[1].source);
    }
}

/// The interrupt key is typed between the blocks of two drives, where no question has changed the mode.
TEST_F(StartUp, OnlyEchoAndSignalKeysAreOffDuringTheRun) {
    auto options = optionsFor(R"({"controllers":[{"drives":[{"repeat":2}]}]})", "-pdinfo");
    options.env["ZEBSIM_LATENCY_US"] = "20000";
    options.input = Input::kTerminal;
    options.output = Output::kTerminal;
    options.answers = {{"PD0", "\x03", true}};
    const auto result = box.run(options);
    ASSERT_EQ(1U, result.terminalAtAnswer.size()) << result;
    EXPECT_EQ(0, result.exitStatus) << result;
    EXPECT_NE(std::string::npos, result.out.find("PD1"));
    auto wanted = result.terminalBefore;
    EXPECT_EQ(tcflag_t{ECHO | ISIG}, wanted.c_lflag & (ECHO | ISIG));
    wanted.c_lflag &= ~static_cast<tcflag_t>(ECHO | ISIG);
    EXPECT_TRUE(sameMode(wanted, result.terminalAtAnswer[0]));
    EXPECT_TRUE(sameMode(result.terminalBefore, result.terminalAfter));
}

TEST_F(StartUp, HelpFollowsTheFirstControllerWithAnAdvancedOption) {
    const std::string plain = "help_plain.txt";
    const std::string cacheCade = "help_cachecade.txt";
    const std::pair<const char*, std::string> cases[] = {
        {"[{}]", plain},
        {R"([{"fastPath":true}])", plain},
        {R"([{"snapshot":true},{"id":1,"cacheCadeCapacity":512}])", plain},
        {R"([{"fastPath":true},{"id":1,"cacheCadeCapacity":1}])", cacheCade},
        {R"([{},{"id":1},{"id":2},{"id":3,"snapshot":true,"cacheCadeCapacity":256}])", cacheCade}};
    for (const auto& [controllers, kept] : cases) {
        SCOPED_TRACE(controllers);
        const auto options = optionsFor(std::string(R"({"controllers":)") + controllers + "}", "-h");
        EXPECT_TRUE(matchesKept("start_up/" + kept, box.run(options).out));
    }
}

TEST_F(StartUp, VersionShowsTheLibrarysOwn) {
    const std::tuple<const char*, const char*, std::vector<std::string>> cases[] = {
        {"", "version.txt", {}},
        {R"([{"type":0,"cmd":4,"patch":[{"offset":0,"hex":"414243442541256e25732573"}]}])",
         "version_full_width.txt",
         {}},
        {R"([{"type":0,"cmd":4,"status":"0x8009"}])",
         "version_unknown.txt",
         {"func=SLGetLibraryVersion: CmdParam >",
          "!ERR func=SLGetLibraryVersion: Command to driver timed out (rval = 0x00008009)"}}};
    for (const auto& [faults, kept, logged] : cases) {
        SCOPED_TRACE(kept);
        std::filesystem::remove(box.log());
        auto options = optionsFor(kOneController, "-v");
        options.env["ZEBSIM_FAULTS"] = faults;
        EXPECT_TRUE(matchesKept(std::string("start_up/") + kept, box.run(options).out));
        EXPECT_EQ(logged, loggedMessages());
    }
}

} // namespace
} // namespace zebtest
