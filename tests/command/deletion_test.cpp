// Deletion of LDs: what is shown, what is refused, what is asked, and that nothing is deleted before the last look.
#include "tests/support/operation_case.h"

#include <cerrno>
#include <fcntl.h>
#include <map>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/support/expected.h"

namespace zebtest {
namespace {

constexpr Wire kFirst{3};
constexpr Wire kSecond{9};

// RG0 holds LD0 and LD1, RG1 LD2, RG2 the RAID10 LD3, scRG0 the CacheCade LD5. Drive 11 is a spare of RG0, 12 of RG2,
// 13 of both, 14 of all.
constexpr char kTwo[] = R"({"controllers": [
  {"id": 3, "product": "One", "maxPds": 16, "drives": [{"repeat": 15}],
    "arrays": [{"drives": [0, 1, 2]}, {"drives": [3, 4]}, {"drives": [5, 6]}, {"drives": [7, 8]}, {"drives": [9, 10]}],
    "lds": [{"name": "FIRST", "level": 5, "spans": [{"blocks": 104857600}], "osDevices": ["/dev/zt0"]},
      {"name": "SECOND", "level": 5, "spans": [{"startBlock": 104857600, "blocks": 209715200}],
        "osDevices": ["/dev/zt1"]},
      {"name": "SIXTEEN LETTERS.", "level": 0, "spans": [{"array": 1}], "osDevices": ["/dev/zt2a", "/dev/zt2b"]},
      {"name": "MAIL", "level": 10, "spans": [{"array": 2}, {"array": 3}], "osDevices": ["/dev/zt3"]},
      {"id": 5, "name": "CACHE", "level": 0, "spans": [{"array": 4}], "cacheCade": true}],
    "spares": [{"drive": 11, "arrays": [0]}, {"drive": 12, "arrays": [2, 3]}, {"drive": 13, "arrays": [0, 2, 3]},
      {"drive": 14}]},
  {"id": 9, "product": "Two", "drives": [{"repeat": 2}], "arrays": [{"drives": [0, 1]}],
    "lds": [{"name": "MAIL", "level": 1, "spans": [{}], "osDevices": ["/dev/zt9"]}]}]})";

constexpr char kControllers[] = "RAID Controller: 0 One\nRAID Controller: 1 Two\n";
constexpr char kAskController[] = "Controller No.(\"Q\"->Quit) :";
constexpr char kAskLds[] = "Please input LD number or Q :";
constexpr char kHeading[] =
    "### Logical Drive(LD) ###\n"
    "LD No. Name             RG No. RAID Level Capacity[GB] State                       OS Device\n"
    "------ ---------------- ------ ---------- ------------ --------------------------- ---------------\n";
constexpr char kRows[] =
    "LD0    FIRST            RG0    RAID5      100.000      OPTIMAL                     /dev/zt0       \n"
    "LD1    SECOND           RG0    RAID5      200.000      OPTIMAL                     /dev/zt1       \n"
    "LD2    SIXTEEN LETTERS. RG1    RAID0      557.750      OPTIMAL                     /dev/zt2b      \n"
    "LD3    MAIL             RG2    RAID10     557.750      OPTIMAL                     /dev/zt3       \n"
    "LD5    CACHE            scRG0  CacheCade  557.750      OPTIMAL                     -              \n";

Line shows(const std::string& text) {
    return {true, false, text};
}
const Line kShown = shows(std::string(kControllers) + kAskController + kHeading + kRows + kAskLds);
const Line kAsksLose = said("All data on the LD[s](Logical Drive[s]) will be lost.(Y/N)?");
const Line kAsksDelete = said("Proceed with delete?(Y/N)?");
const Line kChanged = error("Error - Controller[0] The configuration has been changed.\nNothing has been done. Please "
                            "execute the command again.");
const Line kAccessError =
    error("Error - An error has occurred on accessing to RAID controller.\nQuits the application.\n");

struct Planned {
    unsigned ldNo;
    const char* released = nullptr;
};
using Chosen = std::vector<Planned>;

struct LdText {
    const char* name;
    std::vector<const char*> plan;
};
const std::map<unsigned, LdText> kLds{
    {0, {"FIRST", {">LD0 (FIRST, 100.000GB, OPTIMAL)", "RAID5", "/dev/zt0", "0,1,2"}}},
    {1, {"SECOND", {">LD1 (SECOND, 200.000GB, OPTIMAL)", "RAID5", "/dev/zt1", "0,1,2"}}},
    {2, {"SIXTEEN LETTERS.", {">LD2 (SIXTEEN LETTERS., 557.750GB, OPTIMAL)", "RAID0", "/dev/zt2b", "3,4"}}},
    {3, {"MAIL", {">LD3 (MAIL, 557.750GB, OPTIMAL)", "RAID10", "/dev/zt3", "5,6,7,8"}}},
    {5, {"CACHE", {">LD5 (CACHE, 557.750GB, OPTIMAL)", "CacheCade", "-", "9,10"}}}};

bool isMapped(unsigned ldNo) {
    return ldNo != 5;
}
Lines plan(const Chosen& chosen) {
    Lines lines = error("Controller[0] The following LD[s](Logical Drive[s]) will be deleted.");
    for (const auto& [ldNo, released] : chosen) {
        const auto& text = kLds.at(ldNo).plan;
        lines.push_back(error(text[0]));
        lines.push_back(error(std::string("  RAID Level   : ") + text[1]));
        lines.push_back(error(std::string("  OS Device    : ") + text[2]));
        lines.push_back(error(std::string("  PD No.       : ") + text[3]));
        if (released != nullptr)
            lines.push_back(error(std::string("  Released     : ") + released));
    }
    return lines;
}
/// What the checks of the LDs leave in the log.
Lines checked(const Chosen& chosen) {
    Lines lines;
    for (const Planned& ld : chosen)
        lines = lines + (isMapped(ld.ldNo) ? sent("SLGetLDPartition", 0) : Lines{});
    return lines;
}
Lines asked(const Chosen& chosen) {
    return kShown + checked(chosen) + plan(chosen) + kAsksLose + kAsksDelete;
}
Line deletes(unsigned ldNo) {
    return traced("func=CliCmdExecCfgLDDel: delete, contNo=0, ldNo=" + number(ldNo) + ", name=" + kLds.at(ldNo).name);
}
Line deleted(const std::string& lds, unsigned contNo = 0) {
    return error("Information - Controller[" + number(contNo) + "] LD(Logical Drive) " + lds + " has been deleted.");
}
Lines notDeleted(unsigned ldNo, const std::string& reason) {
    return traced("!ERR func=CliCmdExecCfgLDDel: SLDeleteLD error, contNo=0, ldNo=" + number(ldNo)) +
           Lines(error("Error - Controller[0] Failed to delete LD(Logical Drive) " + number(ldNo) + ".\n" + reason +
                       "\nPlease confirm LD(Logical Drive) state."));
}

std::string software() {
    return kFirst.request("01/00", 0, " size=2048");
}
std::string map(const Wire& wire) {
    return wire.request("01/0c", 0, " size=9220");
}
std::string partition(unsigned ldNo, const std::string& rest = "") {
    const std::string argument{static_cast<char>(0x40 + (ldNo == 5 ? 4 : ldNo)), static_cast<char>(ldNo)};
    return kFirst.request("00/08", 0, " param=" + (ldNo == 0 ? "40" : toHex(argument)) + " size=14344" + rest);
}
std::string checks(const Chosen& chosen) {
    std::string requests;
    for (const Planned& ld : chosen)
        requests += map(kFirst) + (isMapped(ld.ldNo) ? partition(ld.ldNo) : "") + map(kFirst);
    return requests;
}
std::string show() {
    return software() + repeated(map(kFirst), 5);
}

std::string refusals(const std::string& out) {
    const auto at = out.find(kAskLds);
    return at == std::string::npos ? out : out.substr(at + sizeof kAskLds - 1);
}

class Deletion : public OperationTest {
  protected:
    Deletion() { scenario_ = kTwo; }

    /// LD7 is deleted, or refused with that text and asked for again.
    void checkLd7(const std::string& scenario, const std::string& refusal) {
        forget();
        const std::string out = refusals(run(scenario, "7\ny\ny\nQ\n"));
        if (refusal.empty())
            EXPECT_TRUE(out.ends_with(deleted("7").text)) << scenario << out;
        else
            EXPECT_TRUE(out.starts_with(refusal + kAskLds)) << scenario << out;
    }

    /// The requests of one reading of everything.
    std::string snapshot(const std::string& scenario) {
        const auto requests = parseTrace(box.run(optionsFor(scenario, "-h")).trace);
        std::string text;
        for (std::size_t i = 1; i + 1 < requests.size(); ++i)
            text += requestLine(requests[i]) + "\n";
        return text;
    }
    /// The requests up to the last look, with it.
    std::string lookedAgain(const Chosen& chosen) {
        return show() + checks(chosen) + snapshot(kTwo) + repeated(map(kFirst), static_cast<unsigned>(chosen.size())) +
               checks(chosen);
    }
    std::string run(const std::string& scenario, const std::string& input, const std::string& faults = "[]") {
        auto options = optionsFor(scenario, "-lddel");
        options.input = Input::kPipe;
        options.inputText = input;
        options.env["ZEBSIM_FAULTS"] = faults;
        options.env["ZEBSIM_STATE"] = box.root() / "state.json";
        options.timeLimit = std::chrono::milliseconds(5000);
        const auto result = box.run(options);
        EXPECT_EQ(0, result.exitStatus) << result;
        return result.out;
    }
    std::string report(const std::string& scenario, const std::string& args) {
        auto options = optionsFor(scenario, args);
        options.env["ZEBSIM_STATE"] = box.root() / "state.json";
        return box.run(options).out;
    }
    void forget() { std::filesystem::remove(box.root() / "state.json"); }
};

TEST_F(Deletion, AsTheManualShowsItOnATerminal) {
    auto options = optionsFor("", "-lddel");
    options.input = Input::kTerminal;
    options.output = Output::kTerminal;
    options.answers = {{kAskController, "0\n"}, {kAskLds, "2\n"}, {"lost.(Y/N)?\n", "y\n"}, {"delete?(Y/N)?\n", "y\n"}};
    EXPECT_TRUE(matchesKept("deletion/transcript.txt", box.run(options).out));
}

TEST_F(Deletion, EveryRequestOfTheWholeWay) {
    const std::tuple<const char*, const char*, Chosen> cases[] = {
        {"2", "2", {{2, "RG1"}}},
        {"1", "1", {{1}}},
        {"5", "5", {{5, "scRG0"}}},
        {"3", "3", {{3, "RG2 and DHS PD12"}}},
        {"1,0", "0,1", {{0}, {1, "RG0 and DHS PD11"}}},
        // A spare of two groups is named with the first of them.
        {"5,3,1,0", "0,1,3,5", {{0}, {1, "RG0 and DHS PD11 and DHS PD13"}, {3, "RG2 and DHS PD12"}, {5, "scRG0"}}}};
    for (const auto& [typed, named, chosen] : cases) {
        Lines lines = asked(chosen) + checked(chosen);
        std::string requests = lookedAgain(chosen);
        for (const Planned& ld : chosen) {
            lines.push_back(deletes(ld.ldNo));
            requests += kFirst.ldChange("03/03", ld.ldNo);
        }
        check(kTwo, {.args = "-lddel",
                     .lines = lines + deleted(named),
                     .requests = requests,
                     .input = std::string("0\n") + typed + "\ny\ny\n"});
    }
}

TEST_F(Deletion, WhatBecomesFree) {
    const std::string yes = "\ny\ny\n";
    // The group keeps its other LD, its drives and its spares.
    EXPECT_TRUE(run(kTwo, "0\n1" + yes).ends_with(deleted("1").text));
    std::string drives = report(kTwo, "-ldpdprog");
    EXPECT_NE(drives.npos, drives.find("PD0    LD0               ONLINE"));
    EXPECT_NE(drives.npos, drives.find("PD11   DHS               HOT SPARE"));
    // Then the whole group goes; the spare that serves RG2 too stays.
    EXPECT_NE(std::string::npos, run(kTwo, "0\n0" + yes).find("  Released     : RG0 and DHS PD11\n"));
    drives = report(kTwo, "-ldpdprog");
    for (const char* pd : {"PD0 ", "PD1 ", "PD2 ", "PD11"})
        EXPECT_NE(drives.npos, drives.find(std::string(pd) + "   -                 Unconfig GOOD")) << drives;
    EXPECT_NE(drives.npos, drives.find("PD13   DHS               HOT SPARE"));
    EXPECT_NE(std::string::npos, run(kTwo, "0\n2,3,5" + yes).find("  Released     : RG1 and DHS PD12 and DHS PD13\n"));
    EXPECT_EQ(std::string(kControllers) + kAskController +
                  error("Error - Controller[0] The specified Logical Drive doesn't exist.").text,
              run(kTwo, "0\n"));
    // The other controller, whose LD had the same number and name, is as it was.
    drives = report(kTwo, "-ldpdinfo -a1");
    EXPECT_NE(drives.npos, drives.find(">LD0 (MAIL, 278.875GB, OPTIMAL)"));
    EXPECT_TRUE(run(kTwo, "1\n0" + yes).ends_with(deleted("0", 1).text));
}

TEST_F(Deletion, ChoiceOfTheController) {
    const std::string asks = kAskController;
    const auto invalid = [](const std::string& answer) { return "\"" + answer + "\" is invalid.\n"; };
    check(kTwo, {.args = "-lddel",
                 .lines = {shows(kControllers + asks + invalid("") + asks + invalid("2") + asks + invalid("00") + asks +
                                 invalid("1x") + asks + invalid("Quit") + asks + invalid(" 0") + asks)},
                 .requests = software(),
                 .input = "\n2\n00\n1x\nQuit\n 0\nQui\n"});
    for (const char* quit : {"q\n", "Q\n", "Q\r\n", "q", ""})
        check(kTwo, {.args = "-lddel", .lines = {shows(kControllers + asks)}, .requests = software(), .input = quit});
    check(kTwo, {.args = "-lddel",
                 .lines = {shows(kControllers + asks + kHeading +
                                 "LD0    MAIL             RG0    RAID1      278.875      OPTIMAL                     "
                                 "/dev/zt9       \n" +
                                 kAskLds)},
                 .requests = software() + map(kSecond),
                 .input = "1\r\nq\n"});
}

TEST_F(Deletion, ChoiceOfTheLds) {
    std::string shown = kShown.text;
    std::string typed = "0\n";
    for (const char* answer :
         {"", "all", "-1", "1,", ",1", " 1", "1 ", "1,1", "02", "4", "7", "64", "0x1", "1;2", "1000", "no", "Quit"}) {
        shown += std::string("\"") + answer + "\" is invalid.\n" + kAskLds;
        typed += std::string(answer) + "\n";
    }
    for (const char* quit : {"Q\n", "q\n", "q\r\n", "Q", ""})
        check(kTwo, {.args = "-lddel", .lines = {shows(shown)}, .requests = show(), .input = typed + quit});
}

TEST_F(Deletion, ANoToEitherQuestionSendsNothing) {
    const Chosen chosen{{2, "RG1"}};
    check(kTwo, {.args = "-lddel",
                 .lines = kShown + checked(chosen) + plan(chosen) + kAsksLose,
                 .requests = show() + checks(chosen),
                 .input = "0\n2\nN\n"});
    check(kTwo, {.args = "-lddel",
                 .lines = kShown + checked(chosen) + plan(chosen) + kAsksLose + kAsksLose + kAsksDelete + kAsksDelete,
                 .requests = show() + checks(chosen),
                 .input = "0\n2\nyes\nY\n\nn\n"});
}

TEST_F(Deletion, RefusedBeforeAnythingIsShown) {
    scenario_ = kTwo;
    checkTokens({"-lddel -a0 -> -lddel", "-LdDel -L0 -a0 -> -LdDel", "lddel 0 -> lddel"});
    const Line refused = error("Error - This command is not supported at the current configuration.");
    for (const char* product : {"LSI Embedded MegaRAID", ""})
        check(std::string(R"({"controllers": [{"id": 3, "product": ")") + product + R"("}]})",
              {.args = "-lddel", .lines = {refused}, .requests = software()});
    check(R"({"controllers": [{"id": 3, "product": "One"}]})",
          {.args = "-lddel",
           .lines = {error("Error - Controller[0] The specified Logical Drive doesn't exist.")},
           .requests = software()});
}

/// A controller with one LD and further keys of it, of its first drive and of itself.
std::string oneLd(const std::string& ld, const std::string& drive = "", const std::string& more = "") {
    return R"({"controllers": [{"id": 3, "product": "One", "maxPds": 4, "drives": [{)" + drive +
           R"(}, {}], "arrays": [{"drives": [0, 1]}], "lds": [{"id": 7, "level": 1, "name": "ONLY", "spans": [{}])" +
           ld + "}]" + more + "}]}";
}
TEST_F(Deletion, WhatForbidsIt) {
    const std::string snapshots =
        "Error - Controller[0] Snapshot Base/Repository LD[s](Logical Drive[s]) 7 cannot be deleted.\n";
    const std::string busy = "Error - Controller[0] Cannot delete LD(Logical Drive) 7 during background operation.\n";
    const std::string holdsOs = "Error - Controller[0] Cannot delete OS LD(Logical Drive) 7.\n";
    const std::string none;
    const std::pair<std::string, std::string> cases[] = {
        {oneLd(R"(, "snapshotSource": true)"), snapshots},
        {oneLd(R"(, "repository": true, "init": {})"), snapshots},
        {oneLd(R"(, "init": {"percent": 5})"), busy},
        {oneLd(R"(, "check": {"percent": 5}, "osInstalled": true, "osDevices": ["/dev/zt"])"), busy},
        {oneLd(R"(, "reconstruction": {"percent": 5})"), busy},
        {oneLd("", R"("rebuild": {"percent": 5})"), busy},
        {oneLd(R"(, "osInstalled": true, "osDevices": ["/dev/zt"])"), holdsOs},
        // What nobody maps cannot be booted; background initialization cannot be stopped.
        {oneLd(R"(, "osInstalled": true)"), none},
        {oneLd(R"(, "backgroundInit": {"percent": 5})"), none}};
    for (const auto& [scenario, refusal] : cases)
        checkLd7(scenario, refusal);
}

TEST_F(Deletion, WhatTheLibrarySaysKeepsTheTableWhole) {
    const std::string scenario = oneLd(R"(, "osDevices": ["/dev/a\n\u001bb"])");
    const std::string unknownLevel = R"([{"type": 3, "cmd": 0, "fields": {"primaryRaidLevel": 9}}])";
    const std::string row = "LD7    ONLY             RG0    ";
    const std::string rest = " OPTIMAL                     /dev/a  b      \n";
    EXPECT_EQ(kHeading + row + "RAID1      278.875     " + rest + kAskLds, run(scenario, ""));
    EXPECT_EQ(kHeading + row + "-          0.000       " + rest + kAskLds, run(scenario, "", unknownLevel));
}

TEST_F(Deletion, NothingIsDeletedWhereOneOfThemIsRefused) {
    // LD0 holds the operating system, LD3 rebuilds; LD2 alone is deleted then.
    std::string scenario = kTwo;
    scenario.insert(scenario.find(R"("osDevices": ["/dev/zt0"])"), R"("osInstalled": true, )");
    const Chosen chosen{{2, "RG1"}};
    const Lines refused = error("Error - Controller[0] Cannot delete OS LD(Logical Drive) 0.");
    check(scenario, {.args = "-lddel",
                     .lines = kShown + sent("SLGetLDPartition", 0) + refused + sent("SLGetLDPartition", 0) +
                              shows(kAskLds) + checked(chosen) + plan(chosen) + kAsksLose,
                     .requests = show() + map(kFirst) + partition(0) + checks(chosen) + checks(chosen),
                     .input = "0\n2,0\n2\nn\n"});
    const Line first = error("Error - Controller[0] Cannot delete LD(Logical Drive) 0 during background operation.");
    const Line second = error("Error - Controller[0] Cannot delete LD(Logical Drive) 1 during background operation.");
    const std::string checksRun = R"([{"type": 3, "cmd": 0, "ctrl": 3, "ref": 0, "fields": {"active": 1}},
                                      {"type": 3, "cmd": 0, "ctrl": 3, "ref": 1, "fields": {"active": 4}}])";
    check(kTwo, {.args = "-lddel",
                 .lines = kShown + first + second + shows(kAskLds),
                 .requests = show(),
                 .faults = checksRun,
                 .input = "0\n1,0\nQ\n"});
}

TEST_F(Deletion, WhetherItHoldsAnOperatingSystemMustBeKnown) {
    // The sixth reading of the mapping is that for the partition.
    const auto failed = [](unsigned ldNo) {
        return sent("SLGetLDPartition", 0x8023) +
               traced("!ERR func=CliCmdExecCfgLDDel: SLGetLDPartition error, contNo=0, ldNo=" + number(ldNo));
    };
    const Line unknown = error("Error - Controller[0] Failed to confirm whether LD(Logical Drive) 2 has OS.");
    for (const bool offline : {false, true}) {
        std::string scenario = kTwo;
        if (offline)
            scenario.insert(scenario.find(R"("level": 0)"), R"("state": "offline", )");
        const std::string faults = kFirst.fails("01/0c", 0x8023, 6);
        const auto out = run(scenario, "0\n2\nn\nQ\n", faults);
        forget();
        EXPECT_EQ(offline, out.find("will be deleted") != std::string::npos) << out;
        EXPECT_EQ(!offline, refusals(out).starts_with(unknown.text)) << out;
    }
    check(kTwo, {.args = "-lddel",
                 .lines = kShown + failed(2) + unknown + shows(kAskLds),
                 .requests = show() + map(kFirst) + partition(2, " -> 0x8023"),
                 .faults = kFirst.fails("00/08", 0x8023),
                 .input = "0\n2\nQ\n"});
}

TEST_F(Deletion, WhatLinuxUsesIsNotDeleted) {
    // Held by this test like by a mount; where somebody else holds it, all the better.
    const int held = open("/dev/loop0", O_RDONLY | O_EXCL | O_CLOEXEC);
    ASSERT_TRUE(held >= 0 || errno == EBUSY) << "this test needs /dev/loop0";
    const auto devices = [](const std::string& names) { return oneLd(R"(, "osDevices": [)" + names + "]"); };
    const auto used = [](const std::string& name) {
        return "Error - Controller[0] LD(Logical Drive) 7 is used by OS(" + name + ").\n";
    };
    // Names that fill their field of 28 bytes, or stand elsewhere, are not opened.
    const std::string whole = "/dev/" + std::string(22, 'z');
    const std::string cut = whole + "z";
    for (const std::string& name : {whole, cut})
        std::filesystem::create_symlink("/dev/loop0", box.root() / name.substr(1));
    std::filesystem::create_symlink("/dev/loop0", box.opt() / "loop");
    ASSERT_EQ(0, mkfifo((box.root() / "dev/fifo").c_str(), 0600));
    const std::pair<std::string, std::string> cases[] = {
        {devices(R"("/dev/loop0")"), used("/dev/loop0")},
        {devices(R"("/dev/zt", "/dev/null", "/dev/fifo", "/dev/loop0")"), used("/dev/loop0")},
        {devices("\"" + whole + "\", \"/dev/loop0\""), used(whole)},
        {devices("\"/opt/loop\", \"loop0\", \"/dev/zt\", \"" + cut + "\""), ""}};
    for (const auto& [scenario, refusal] : cases)
        checkLd7(scenario, refusal);
    // A mapping that cannot be read opens nothing; the last look reads it once more.
    forget();
    const std::string out = run(cases[0].first, "7\ny\ny\nQ\n", kFirst.fails("01/0c", 0x801C, 3));
    EXPECT_TRUE(out.ends_with(kAsksDelete.text + used("/dev/loop0"))) << out;
    close(held);
}

TEST_F(Deletion, SomebodyElseChangesItMeanwhile) {
    const Chosen chosen{{2, "RG1"}, {3, "RG2 and DHS PD12"}};
    const auto secondReading = [](unsigned ldNo, unsigned offset, const char* hex) {
        return R"([{"type": 3, "cmd": 0, "ctrl": 3, "ref": )" + number(ldNo) + R"(, "nth": 2, "patch": [{"offset": )" +
               number(offset) + R"(, "hex": ")" + hex + R"("}]}])";
    };
    const auto mapReading = [](unsigned nth, const std::string& rest) {
        return R"([{"type": 1, "cmd": 12, "nth": )" + number(nth) + ", " + rest + "}]";
    };
    // The table reads the mapping five times, the checks of two LDs four times.
    const std::pair<std::string, unsigned> changes[] = {
        {secondReading(2, 4, "58"), 1}, // its name
        {secondReading(2, 32, "01"), 1}, // its level
        {secondReading(3, 37, "01"), 2}, // RAID10 becomes RAID1
        {secondReading(2, 47, "01"), 1}, // CacheCade
        {secondReading(2, 72, "01"), 1}, // its size
        {secondReading(3, 64 + 24, "01"), 2}, // the start of its second span
        {secondReading(3, 64 + 24 + 16, "01"), 2}, // the array of its second span
        {mapReading(10, R"("patch": [{"offset": 128, "hex": "63"}])"), 1}, // its last device
        {mapReading(11, R"("status": 50)"), 2}};
    for (const auto& [faults, names] : changes) {
        forget();
        auto options = optionsFor(kTwo, "-lddel");
        options.input = Input::kPipe;
        options.inputText = "0\n3,2\ny\ny\n";
        options.env["ZEBSIM_FAULTS"] = faults;
        const auto result = box.run(options);
        EXPECT_TRUE(result.out.ends_with(kAsksDelete.text + kChanged.text)) << faults << result;
        const std::string requests = requestsAfterSnapshot(kTwo, result.trace);
        std::string wanted = show() + checks(chosen) + snapshot(kTwo) + repeated(map(kFirst), names);
        if (faults.find("status") != std::string::npos)
            wanted.insert(wanted.size() - 1, " -> 0x32");
        EXPECT_TRUE(sameText(requests, wanted)) << faults;
    }
    // Deleted by somebody else; a drive fails and a spare rebuilds it.
    EXPECT_TRUE(run(kTwo, "0\n3,2\ny\ny\n", mapReading(9, R"("also": {"ld": 3, "gone": true})"))
                    .ends_with(kAsksDelete.text + kChanged.text));
    forget();
    const std::string busy = "Error - Controller[0] Cannot delete LD(Logical Drive) 3 during background operation.\n";
    EXPECT_TRUE(run(kTwo, "0\n3,2\ny\ny\n", mapReading(9, R"("also": {"drive": 5, "state": "failed"})"))
                    .ends_with(kAsksDelete.text + busy));
    EXPECT_NE(std::string::npos, report(kTwo, "-ldpdinfo -a0").find(">LD2 "));
}

TEST_F(Deletion, TheLastLookMustSucceed) {
    const Chosen chosen{{2, "RG1"}};
    check(kTwo, {.args = "-lddel",
                 .lines = asked(chosen) + sent("SLGetEnclList", 0x32) +
                          traced("!ERR func=UpdateDriveInfo: SLGetEnclList error, contNo=0") + kAccessError,
                 .requests = show() + checks(chosen) + kFirst.request("01/05", 0, " size=4616 -> 0x32"),
                 .faults = kFirst.fails("01/05", 0x32, 2),
                 .input = "0\n2\ny\ny\n"});
}

TEST_F(Deletion, TheFirstFailureEndsIt) {
    const Chosen chosen{{0}, {2, "RG1"}, {3, "RG2 and DHS PD12"}, {5, "scRG0"}};
    const Lines before = asked(chosen) + checked(chosen);
    const std::string requests = lookedAgain(chosen);
    // What is gone is said first.
    Lines pinned = sent("SLDeleteLD", 0x54) + notDeleted(2, "Controller has LD cache pinned (0x54)");
    pinned.insert(pinned.end() - 1, deleted("0"));
    check(kTwo, {.args = "-lddel",
                 .lines = before + deletes(0) + deletes(2) + pinned +
                          error("Error - Controller[0] LD(Logical Drive) 3,5 has not been deleted."),
                 .requests = requests + kFirst.ldChange("03/03", 0) + kFirst.ldChange("03/03", 2, " -> 0x54"),
                 .faults = kFirst.fails("03/03", 0x54, 2),
                 .input = "0\n0,2,3,5\ny\ny\n"});
    // Somebody else has changed the last one; nothing stands behind it, nothing was deleted before it.
    const Chosen one{{5, "scRG0"}};
    check(kTwo,
          {.args = "-lddel",
           .lines = asked(one) + deletes(5) + sent("SLDeleteLD", 4) + notDeleted(5, "invalid sequence number (0x4)"),
           .requests = lookedAgain(one) + kFirst.ldChange("03/03", 5, " -> 0x04"),
           .faults = kFirst.outdates("03/00", 3, 5),
           .input = "0\n5\ny\ny\n"});
}

} // namespace
} // namespace zebtest
