// Patrol read: its words, the checks before the first question, and every byte that is written.
#include "tests/support/operation_case.h"

namespace zebtest {
namespace {

constexpr Wire kFirst{3};
constexpr Wire kSecond{9};
constexpr unsigned kNow = 757382400; // 2024-01-01
enum Mode : unsigned { kAutomatic, kManual, kDisabled };
constexpr unsigned kWeek = 604800;
constexpr unsigned kMonth = 2592000;

// The first controller reads automatically every week, the second by hand.
constexpr char kTwo[] = R"({"controllers": [
  {"id": 3, "product": "One", "maxPds": 4, "properties": {"seq": 777}, "drives": [{"repeat": 2}],
    "arrays": [{"drives": [0, 1]}], "lds": [{"level": 1, "spans": [{}]}]},
  {"id": 9, "product": "Two", "maxPds": 4, "properties": {"seq": 12}, "patrolRead": {"mode": "manual", "frequency": 2592000},
    "drives": [{"repeat": 2}], "arrays": [{"drives": [0, 1]}], "lds": [{"level": 1, "spans": [{}]}]}]})";
constexpr char kManualAndDisabled[] = R"({"controllers": [
  {"id": 3, "properties": {"seq": 777}, "patrolRead": {"mode": "manual"}},
  {"id": 9, "properties": {"seq": 12}, "patrolRead": {"mode": "disabled"}}]})";

std::string littleEndian(unsigned value) {
    std::string bytes;
    for (unsigned shift = 0; shift < 32; shift += 8)
        bytes.push_back(static_cast<char>(value >> shift & 0xFFU));
    return bytes;
}
/// The properties of a controller that says nothing else about patrol read.
std::string properties(unsigned mode, unsigned nextStart, unsigned interval) {
    return static_cast<char>(mode) + std::string("\xff\0\0", 3) + std::string(128, '\xff') + std::string(64, '\0') +
           littleEndian(nextStart) + littleEndian(interval) + std::string(4, '\0');
}
std::string read(const Wire& wire, const std::string& rest = "") {
    return wire.request("01/0f", 0, " size=208" + rest);
}
std::string readTime(const Wire& wire, const std::string& rest = "") {
    return wire.dcmd(0x01080201, 2, 4, "", rest);
}
std::string write(const Wire& wire, const std::string& bytes, const std::string& rest = "") {
    return wire.request("01/01", 0, " size=64") +
           wire.request("01/10", wire.ctrlId == 3 ? 777 : 12, " size=208 out=" + toHex(bytes) + rest);
}
std::string write(const Wire& wire, unsigned mode, unsigned interval, unsigned nextStart = kNow + 97200) {
    return write(wire, properties(mode, nextStart, interval));
}
std::string start(const Wire& wire, const std::string& rest = "") {
    return wire.request("01/11", 0, rest);
}
std::string stop(const Wire& wire, const std::string& rest = "") {
    return wire.request("01/12", 0, rest);
}

std::string on(unsigned contNo) {
    return "Controller[" + number(contNo) + "] ";
}
Lines written(unsigned contNo, std::uint32_t status = 0) {
    return traced("func=SLSetPatrolReadProp: contNo=" + number(contNo)) + sent("SLSetPatrolReadProp", status);
}
Lines changed(unsigned contNo) {
    return written(contNo) + said("Information - " + on(contNo) + "Settings have been changed.");
}
Line started(unsigned contNo) {
    return said("Information - " + on(contNo) + "Patrol Read has been started.");
}
Line stopped(unsigned contNo) {
    return said("Information - " + on(contNo) + "Patrol Read has been stopped.");
}
Line notChanged(unsigned contNo) {
    return error("Error - Failed to change Controller[" + number(contNo) +
                 "] Settings.\nPlease confirm OS event log whether there is no problem with RAID controller.\n");
}
Line notStarted(unsigned contNo, const std::string& reason) {
    return error("Error - " + on(contNo) + "Failed to start Patrol Read.\n" + reason +
                 "\nPlease confirm PD(Physical Drive) state.");
}
Line notStopped(unsigned contNo, const std::string& reason) {
    return error("Error - " + on(contNo) + "Failed to stop Patrol Read.\n" + reason +
                 "\nPlease confirm whether to have already ended.");
}
Line handlerTrace(const std::string& wrapper, unsigned contNo) {
    return traced("!ERR func=CliCmdExecAdpPR: " + wrapper + " error, contNo=" + number(contNo));
}
const Line kNotSupported = error("Error - The specified parameter is not supported at the current configuration.");
const Line kAsks = said("Warning - In case of disabling Automatic Patrol Read, cannot keep PDs(Physical Drives) "
                        "safe.\nProceed with the setting?(Y/N)?");
Lines asksFor(const char* controller) {
    return said(std::string("RAID Controller: ") + controller) + kAsks;
}

class PatrolRead : public OperationTest {
  protected:
    PatrolRead() { scenario_ = kTwo; }
};

TEST_F(PatrolRead, AsTheManualShowsIt) {
    auto options = optionsFor("", "-ctrlpr -day -aAll");
    EXPECT_EQ("Error - The specified parameter is not supported at the current configuration.\n"
              "Information - Controller[0] Settings have been changed.\n",
              box.run(options).out);
    options = optionsFor("", "-ctrlpr -enblman -start -aAll");
    options.input = Input::kPipe;
    options.inputText = "y\n";
    EXPECT_EQ("RAID Controller: 0 Quorvel RAID Pellucor 8e\n"
              "Warning - In case of disabling Automatic Patrol Read, cannot keep PDs(Physical Drives) safe.\n"
              "Proceed with the setting?(Y/N)?\n"
              "Information - Controller[0] Settings have been changed.\n"
              "Information - Controller[0] Patrol Read has been started.\n"
              "Information - Controller[1] Settings have been changed.\n"
              "Information - Controller[1] Patrol Read has been started.\n",
              box.run(options).out);
}

TEST_F(PatrolRead, WordsThatExcludeEachOther) {
    const std::string intervals = "-hour -day -week -month ";
    const std::pair<const char*, std::string> table[] = {
        {"-dsbl", "-dsbl -enblauto -enblman -start " + intervals + "-setstarttime"},
        {"-enblauto", "-dsbl -enblauto -enblman"},
        {"-enblman", "-dsbl -enblauto -enblman " + intervals + "-setstarttime"},
        {"-hour", intervals + "-dsbl -enblman"},
        {"-day", intervals + "-dsbl -enblman"},
        {"-week", intervals + "-dsbl -enblman"},
        {"-month", intervals + "-dsbl -enblman"},
        {"-setstarttime", "-setstarttime -dsbl -enblman"},
        {"-start", "-start -stop -dsbl"},
        {"-stop", "-start -stop"}};
    for (const auto& [word, before] : table)
        for (const std::string& first : words(before)) {
            const bool takesValue = first == "-setstarttime";
            // Without a value the word behind it is refused all the same: the word comes first.
            checkTokens({"-ctrlpr -a0 " + first + (takesValue ? " 0101203000 " : " ") + word + " -> " +
                         (takesValue ? "0101203000" : first)});
        }
}

TEST_F(PatrolRead, ArgumentsAreRefused) {
    checkTokens({"-ctrlpr -> (null)", "-ctrlpr -a0 -> -a0", "-ctrlpr -dsbl -hour -> -dsbl",
                 "-ctrlpr -HOUR -dsbl -> -HOUR", "-ctrlpr -on -a0 -> -ctrlpr", "-ctrlpr -day -L0 -> -day",
                 "-ctrlpr -day -pd[:1] -> -day", "-ctrlpr -a0 -a1 -week -> -a0", "-ctrlpr -day -a4 -> -day",
                 "-ctrlpr -day -a0,01 -> -day", "-ctrlpr -setstarttime -> -ctrlpr",
                 "-ctrlpr -a0 -hour -setstarttime -> -hour"});
    const auto value = [](const char* text) {
        return std::string("-ctrlpr -a0 -SetStartTime ") + text + " -bogus -> -SetStartTime";
    };
    for (const char* text :
         {"0229202500", "0431202601", "0101202624", "010120260", "01012026000", "0101199923", "0101213600",
          "0001202600", "1301202600", "0100202600", "0132202600", "01012026-1", "010120260a", "-start"})
        checkTokens({value(text)});
    for (const char* command : {"-ctrlpr -day", "-ctrlpr -start"}) {
        check(kTwo, {.args = std::string(command) + " -a1,2", .lines = noController(2)});
        check(kTwo, {.args = command, .lines = {manyControllers()}});
    }
}

TEST_F(PatrolRead, SettingsAndRuns) {
    checkAll({
        {.args = "-ctrlpr -hour -a0", .lines = changed(0), .requests = read(kFirst) + write(kFirst, kAutomatic, 3600)},
        {.args = "-ctrlpr -day -a0", .lines = changed(0), .requests = read(kFirst) + write(kFirst, kAutomatic, 86400)},
        {.args = "-ctrlpr -week -enblauto -a1",
         .lines = changed(1),
         .requests = read(kSecond) + write(kSecond, kAutomatic, kWeek)},
        {.args = "-ctrlpr -ENBLAUTO -Month -START -a1",
         .lines = changed(1) + started(1),
         .requests = read(kSecond) + write(kSecond, kAutomatic, kMonth) + start(kSecond)},
        // 2028 is a leap year.
        {.args = "-ctrlpr -setstarttime 0229202800 -day -a0",
         .lines = changed(0),
         .requests = read(kFirst) + readTime(kFirst) + write(kFirst, kAutomatic, 86400, 888710400)},
        {.args = "-ctrlpr -setstarttime 1231213523 -a0",
         .lines = changed(0),
         .requests = read(kFirst) + readTime(kFirst) + write(kFirst, kAutomatic, kWeek, 4291743600)},
        {.args = "-ctrlpr -hour -setstarttime 0101202401 -enblauto -start -aAll",
         .lines = changed(0) + started(0) + changed(1) + started(1),
         .requests = read(kFirst) + readTime(kFirst) + read(kSecond) + readTime(kSecond) +
                     write(kFirst, kAutomatic, 3600, kNow + 3600) + start(kFirst) +
                     write(kSecond, kAutomatic, 3600, kNow + 3600) + start(kSecond)},
        // Nobody is asked where no automatic patrol read ends.
        {.args = "-ctrlpr -enblman -start -a1",
         .lines = changed(1) + started(1),
         .requests = read(kSecond) + write(kSecond, kManual, kMonth) + start(kSecond)},
        {.args = "-ctrlpr -dsbl -a1",
         .lines = changed(1),
         .requests = read(kSecond) + write(kSecond, kDisabled, kMonth)},
        {.args = "-ctrlpr -enblauto -a0",
         .lines = changed(0),
         .requests = read(kFirst) + write(kFirst, kAutomatic, kWeek)},
        {.args = "-ctrlpr -start -a0", .lines = {started(0)}, .requests = read(kFirst) + start(kFirst)},
    });
    const std::string running = R"({"controllers": [{"id": 3, "patrolRead": {"mode": "disabled", "running": true},
        "properties": {"seq": 777}, "drives": [{"repeat": 2}], "arrays": [{"drives": [0, 1]}],
        "lds": [{"level": 1, "spans": [{}]}]}]})";
    check(running, {.args = "-ctrlpr -stop", .lines = {stopped(0)}, .requests = read(kFirst) + stop(kFirst)});
    for (const char* both : {"-ctrlpr -dsbl -stop", "-ctrlpr -stop -dsbl"})
        check(running, {.args = both,
                        .lines = stopped(0) + changed(0),
                        .requests = read(kFirst) + stop(kFirst) + write(kFirst, kDisabled, kWeek)});
}

TEST_F(PatrolRead, OnlyWhatWasAskedForChanges) {
    std::string bytes(208, '\0');
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<char>(i + 40);
    bytes[0] = kManual;
    bytes[3] = static_cast<char>(200); // more excluded LDs than there is room for
    const auto faults = [](const std::string& answer) {
        return R"([{"type": 1, "cmd": 15, "patch": [{"offset": 0, "hex": ")" + toHex(answer) +
               R"("}]}, {"type": 1, "cmd": 16, "status": 0}])"; // the simulator would refuse the record
    };
    std::string wanted = bytes;
    wanted.replace(0, 1, 1, '\0');
    check(kTwo, {.args = "-ctrlpr -enblauto -a0",
                 .lines = changed(0),
                 .requests = read(kFirst) + write(kFirst, wanted),
                 .faults = faults(bytes)});
    wanted.replace(200, 4, littleEndian(kMonth));
    check(kTwo, {.args = "-ctrlpr -enblauto -month -a0",
                 .lines = changed(0),
                 .requests = read(kFirst) + write(kFirst, wanted),
                 .faults = faults(bytes)});
    wanted.replace(196, 4, littleEndian(kNow + 3600));
    check(kTwo, {.args = "-ctrlpr -enblauto -month -setstarttime 0101202401 -a0",
                 .lines = changed(0),
                 .requests = read(kFirst) + readTime(kFirst) + write(kFirst, wanted),
                 .faults = faults(bytes)});
    // A mode that is not known is neither automatic nor disabled.
    bytes[0] = 7;
    check(kTwo,
          {.args = "-ctrlpr -day -a0", .lines = {kNotSupported}, .requests = read(kFirst), .faults = faults(bytes)});
    check(kTwo, {.args = "-ctrlpr -start -a0",
                 .lines = {started(0)},
                 .requests = read(kFirst) + start(kFirst),
                 .faults = faults(bytes)});
    wanted = bytes;
    wanted[0] = kDisabled;
    check(kTwo, {.args = "-ctrlpr -dsbl -a0",
                 .lines = changed(0),
                 .requests = read(kFirst) + write(kFirst, wanted),
                 .faults = faults(bytes)});
}

TEST_F(PatrolRead, ControllersWhoseModeDoesNotGoWithItAreLeftOut) {
    check(kTwo, {.args = "-ctrlpr -hour -aAll",
                 .lines = kNotSupported + changed(0),
                 .requests = read(kFirst) + read(kSecond) + write(kFirst, kAutomatic, 3600)});
    check(kTwo, {.args = "-ctrlpr -hour -stop -a1", .lines = {kNotSupported}, .requests = read(kSecond)});
    check(kTwo, {.args = "-ctrlpr -setstarttime 0101202401 -a1", .lines = {kNotSupported}, .requests = read(kSecond)});
    const Lines disabled = error("Error - Controller[1] Patrol Read is disabled.");
    check(kManualAndDisabled, {.args = "-ctrlpr -start -aAll",
                               .lines = disabled + sent("SLStartPatrolReadOpe", 0x58) +
                                        notStarted(0, "No PD is available for patrol read (0x58)"),
                               .requests = read(kFirst) + read(kSecond) + start(kFirst, " -> 0x58")});
    check(kManualAndDisabled, {.args = "-ctrlpr -week -aAll",
                               .lines = kNotSupported + kNotSupported,
                               .requests = read(kFirst) + read(kSecond)});
    check(kManualAndDisabled,
          {.args = "-ctrlpr -enblman -start -a1",
           .lines = changed(1) + sent("SLStartPatrolReadOpe", 0x58) +
                    notStarted(1, "No PD is available for patrol read (0x58)"),
           .requests = read(kSecond) + write(kSecond, kManual, kWeek) + start(kSecond, " -> 0x58")});
}

TEST_F(PatrolRead, AStartTimeThatHasPassedEndsTheCommand) {
    const auto passed = [](unsigned contNo) {
        return error("Error - " + on(contNo) + "The specified start time has already passed.");
    };
    check(kTwo, {.args = "-ctrlpr -setstarttime 0101202400 -enblauto -aAll",
                 .lines = {passed(0)},
                 .requests = read(kFirst) + readTime(kFirst)});
    // By the second controller's clock; the first one is not changed either.
    const std::string ahead = R"([{"opcode": "0x01080201", "ctrl": 9, "patch": [{"offset": 0, "hex": "ffffff7f"}]}])";
    check(kTwo, {.args = "-ctrlpr -setstarttime 0101202401 -enblauto -aAll",
                 .lines = {passed(1)},
                 .requests = read(kFirst) + readTime(kFirst) + read(kSecond) + readTime(kSecond),
                 .faults = ahead});
}

TEST_F(PatrolRead, AsksBeforeAutomaticPatrolReadEnds) {
    check(kTwo, {.args = "-ctrlpr -dsbl -a0",
                 .lines = kAsks + changed(0),
                 .requests = read(kFirst) + read(kFirst) + write(kFirst, kDisabled, kWeek),
                 .input = "Y\n"});
    check(kTwo, {.args = "-ctrlpr -enblman -stop -a0",
                 .lines = kAsks + kAsks + sent("SLStopPatrolReadOpe", 0x32) +
                          notStopped(0, "command issues while FW in wrong state (0x32)") + changed(0),
                 .requests = read(kFirst) + read(kFirst) + stop(kFirst, " -> 0x32") + write(kFirst, kManual, kWeek),
                 .input = "ok\ny\n"});
    check(kTwo, {.args = "-ctrlpr -dsbl -aAll",
                 .lines = asksFor("0 One") + changed(0) + changed(1),
                 .requests = repeated(read(kFirst) + read(kSecond), 2) + write(kFirst, kDisabled, kWeek) +
                             write(kSecond, kDisabled, kMonth),
                 .input = "y\n"});
    check(kTwo, {.args = "-ctrlpr -dsbl -aAll",
                 .lines = asksFor("0 One"),
                 .requests = read(kFirst) + read(kSecond),
                 .input = "n\n"});
    std::string bothAutomatic = kTwo;
    bothAutomatic.replace(bothAutomatic.find("manual"), 6, "automatic");
    check(bothAutomatic, {.args = "-ctrlpr -enblman -aAll",
                          .lines = asksFor("0 One") + asksFor("1 Two"),
                          .requests = read(kFirst) + read(kSecond),
                          .input = "y\nN\n"});
}

TEST_F(PatrolRead, SomebodyElseChangesTheModeMeanwhile) {
    const auto changedMeanwhile = [](unsigned contNo) {
        return error("Error - " + on(contNo) +
                     "The configuration has been changed.\nNothing has been done. Please "
                     "execute the command again.");
    };
    const auto second = [](const char* ctrl, const char* change) {
        return std::string(R"([{"type": 1, "cmd": 15, "perRecord": true, "nth": 2, "ctrl": )") + ctrl + ", " + change +
               "}]";
    };
    for (const auto& [ctrl, contNo] : {std::pair{"3", 0U}, {"9", 1U}})
        check(kTwo, {.args = "-ctrlpr -dsbl -aAll",
                     .lines = asksFor("0 One") + changedMeanwhile(contNo),
                     .requests = repeated(read(kFirst) + read(kSecond), contNo == 0 ? 1 : 2) +
                                 (contNo == 0 ? read(kFirst) : ""),
                     .faults = second(ctrl, R"("fields": {"mode": 2})"),
                     .input = "y\n"});
    // The newest record is the one that is written.
    check(kTwo, {.args = "-ctrlpr -dsbl -a0",
                 .lines = kAsks + changed(0),
                 .requests = repeated(read(kFirst), 2) + write(kFirst, kDisabled, 3600, kNow + 97200),
                 .faults = second("3", R"("fields": {"executionFrequency": 3600})"),
                 .input = "y\n"});
    check(kTwo,
          {.args = "-ctrlpr -dsbl -a0",
           .lines = kAsks + sent("SLGetPatrolReadProp", 0x32) + handlerTrace("SLGetPatrolReadProp", 0) + notChanged(0),
           .requests = read(kFirst) + read(kFirst, " -> 0x32"),
           .faults = kFirst.fails("01/0f", 0x32, 2),
           .input = "y\n"});
}

TEST_F(PatrolRead, Failures) {
    const std::string wrongState = "command issues while FW in wrong state (0x32)";
    const std::string week = write(kFirst, kAutomatic, kWeek);
    checkAll({
        {.args = "-ctrlpr -enblauto -aAll",
         .lines = sent("SLGetPatrolReadProp", 0x32) + handlerTrace("SLGetPatrolReadProp", 1) + notChanged(1),
         .requests = read(kFirst) + read(kSecond, " -> 0x32"),
         .faults = kSecond.fails("01/0f", 0x32)},
        // A write that fails ends the command, what was changed before stays.
        {.args = "-ctrlpr -enblauto -start -aAll",
         .lines = changed(0) + started(0) + written(1, 4) + handlerTrace("SLSetPatrolReadProp", 1) + notChanged(1),
         .requests = read(kFirst) + read(kSecond) + week + start(kFirst) +
                     write(kSecond, properties(kAutomatic, kNow + 97200, kMonth), " -> 0x04"),
         .faults = kSecond.outdates("01/01", 1)},
        {.args = "-ctrlpr -enblauto -start -aAll",
         .lines = written(0, 0x21) + handlerTrace("SLSetPatrolReadProp", 0) + notChanged(0),
         .requests =
             read(kFirst) + read(kSecond) + write(kFirst, properties(kAutomatic, kNow + 97200, kWeek), " -> 0x21"),
         .faults = kFirst.fails("01/10", 0x21)},
        // A run that cannot be started or stopped does not.
        {.args = "-ctrlpr -start -aAll",
         .lines = sent("SLStartPatrolReadOpe", 0x55) + handlerTrace("SLStartPatrolReadOpe", 0) +
                  notStarted(0, "Requested operation is already in progress (0x55)") + started(1),
         .requests = read(kFirst) + read(kSecond) + start(kFirst, " -> 0x55") + start(kSecond),
         .faults = kFirst.fails("01/11", 0x55)},
        {.args = "-ctrlpr -start -a0",
         .lines = sent("SLStartPatrolReadOpe", 0x27) + handlerTrace("SLStartPatrolReadOpe", 0) +
                  notStarted(0, "Patrol Read is disabled (0x27)"),
         .requests = read(kFirst) + start(kFirst, " -> 0x27"),
         .faults = kFirst.fails("01/11", 0x27)},
        {.args = "-ctrlpr -stop -aAll",
         .lines = sent("SLStopPatrolReadOpe", 0x32) + handlerTrace("SLStopPatrolReadOpe", 0) +
                  notStopped(0, wrongState) + sent("SLStopPatrolReadOpe", 0x32) +
                  handlerTrace("SLStopPatrolReadOpe", 1) + notStopped(1, wrongState),
         .requests = read(kFirst) + read(kSecond) + stop(kFirst, " -> 0x32") + stop(kSecond, " -> 0x32")},
    });
    auto options = optionsFor(kTwo, "-ctrlpr -setstarttime 0101202401 -a0");
    options.env["ZEBSIM_FAULTS"] = R"([{"opcode": "0x01080201", "status": "0x32"}])";
    const auto result = box.run(options);
    EXPECT_EQ(notChanged(0).text, result.out);
    EXPECT_EQ(read(kFirst) + readTime(kFirst, " -> 0x32"), requestsAfterSnapshot(kTwo, result.trace));
    EXPECT_EQ("!ERR func=CliCmdExecAdpPR: SLGetTime error, contNo=0", loggedMessages().at(loggedMessages().size() - 2));
}

} // namespace
} // namespace zebtest
