// Test events as they arrive in the operating system's log, and the event table that they come from.
#include <sys/stat.h>

#include "tests/support/operation_case.h"

#include "tests/support/expected.h"

namespace zebtest {
namespace {

constexpr char kRegistered[] =
    "Information - Test Event has been registered as OS event log.\nPlease check it with OS event viewer.";
const char kOpenError[] = "!ERR func=ReadEventInfo: ZEBConfigFile open error";
const char kFormatError[] = "!ERR func=ReadEventInfo: ZEBConfigFile format error";

/// A line of the table with all its fields.
std::string row(const std::string& code, const std::string& suppress, const std::string& index,
                const std::string& text) {
    return "Z,1," + code + "," + suppress + "," + index + ",6,7,8,9," + text + ",11\n";
}
std::string errorRow(const std::string& text) {
    return row("60009", "0", "11", text);
}

/// The datagram with time and process id masked.
std::string event(const std::string& priority, const std::string& identifier, const std::string& message,
                  const std::string& id) {
    return "<" + priority + ">WHEN zebservice[PID]: " + identifier +
           " EventTime: TIME Detailedcode: FFFFFFFF, Detailedmsg: " + message + ", ID: " + id;
}
std::string errorEvent(const std::string& message) {
    return event("27", "ZEB_ERR0T: ERROR Event for TEST", message, "060009");
}

Line finished(const char* code) {
    return traced(std::string("func=CliCmdExecTSTEVT: TraidLogEvent finish, eventCode=") + code);
}
Line notConfigured(const char* code) {
    return traced(std::string("!ERR func=CliCmdExecTSTEVT: pEvt_Info is NULL, eventCode=") + code);
}

class TestEvent : public OperationTest {
  protected:
    /// Runs with the table, unless it is "-", and compares the one datagram; none when `datagram` is empty.
    void checkEvent(const std::string& table, const std::string& args, const Lines& lines,
                    const std::string& datagram) {
        SCOPED_TRACE("table begins: " + table.substr(0, 200));
        std::filesystem::remove(box.zeb() / "zeb_config.csv");
        if (table != "-")
            writeFile(box.zeb() / "zeb_config.csv", table);
        const auto result = check("", {.args = args, .lines = lines});
        ASSERT_EQ(datagram.empty() ? 0U : 1U, result.syslog.size()) << args;
        if (!datagram.empty()) {
            EXPECT_TRUE(sameText(masked(result.syslog[0], {{">[A-Z][a-z]{2} [ \\d]\\d \\d\\d:\\d\\d:\\d\\d ", ">WHEN "},
                                                           {"\\[\\d+\\]", "[PID]"},
                                                           {"\\d{4}/\\d\\d/\\d\\d \\d\\d:\\d\\d:\\d\\d", "TIME"}}),
                                 datagram));
        }
    }
    void checkError(const std::string& table, const std::string& message) {
        checkEvent(table, "-tstevt -err", said(kRegistered) + finished("60009"), errorEvent(message));
    }
};

TEST_F(TestEvent, SeveritiesHaveTheirCodeAndPriority) {
    const std::string table = "# code, suppress, index, text\n" + errorRow("broken") + row("60010", "0", "20", "odd") +
                              row("60011", "0", "25", "all well");
    const struct {
        const char *option, *code, *priority, *identifier, *message;
    } cases[] = {{"-err", "60009", "27", "ZEB_ERR0T: ERROR Event for TEST", "broken"},
                 {"-wrn", "60010", "28", "ZEB_WRN0T: WARNING Event for TEST", "odd"},
                 {"-inf", "60011", "30", "ZEB_INF0T: INFORMATION Event for TEST", "all well"},
                 {"x-INF", "60011", "30", "ZEB_INF0T: INFORMATION Event for TEST", "all well"}};
    for (const auto& c : cases) {
        checkEvent(table, std::string("-tstevt ") + c.option, said(kRegistered) + finished(c.code),
                   event(c.priority, c.identifier, c.message, std::string("0") + c.code));
    }
    // The table decides, not the option.
    checkEvent(row("60009", "0", "12", "t"), "-tstevt -err", said(kRegistered) + finished("60009"),
               event("28", "ZEB_WRN01: RAID Controller WARNING(CTRL)", "t", "060009"));
}

TEST_F(TestEvent, MessageTextIsCutAndExpanded) {
    const std::string long200(200, 'x');
    const std::pair<std::string, std::string> texts[] = {
        {std::string(137, 'a'), std::string(137, 'a')},
        {std::string(138, 'a'), std::string(137, 'a')},
        {long200, long200.substr(0, 137)},
        {std::string(400, 'b'), std::string(137, 'b')},
        {"100%% of %n %s %d %5$hhn", "100% of %n %s %d %5$hhn"},
        {repeated("%%", 120), std::string(120, '%')},
        {"%", "%"},
        {"two  words ", "two  words "},
    };
    for (const auto& [text, message] : texts)
        checkError(errorRow(text), message);
    checkError("1\t\t,2,60009,,0\t11,6,7,8,,9,no empty fields\r\n", "no empty fields");
    checkError(row("60010", "0", "20", "other") + errorRow("first") + errorRow("second"), "first");
    checkError("1,2,60009,0,11,6,7,8,9,no newline", "no newline");
}

TEST_F(TestEvent, ReadingEndsAtABadLine) {
    for (const std::string bad :
         {"\n", "just text\n", "\r\n", "1,2,60010,0,0,6,7,8,9,t\n", "1,2,60010,0,26,6,7,8,9,t\n",
          "1,2,60010,2,11,6,7,8,9,t\n", "1,2,60010,0,11,6,7,8,9,\n", "1,2,60010,0,x11,6,7,8,9,t\n",
          "1,2,60010,0,11,6,7,8,9,\r\n", " # no comment\n"}) {
        checkEvent(bad + errorRow("never read"), "-tstevt -err", traced(kFormatError) + notConfigured("60009"), "");
        checkEvent("#\n" + errorRow("read before") + bad, "-tstevt -err",
                   traced(kFormatError) + said(kRegistered) + finished("60009"), errorEvent("read before"));
    }
    // What a line has beyond 511 characters is the next line; of one that has exactly as many, its newline is not.
    const std::string longRow = "1,2,60009,0,11,6,7,8,9,";
    for (const std::size_t length : {510, 511})
        checkEvent(longRow + std::string(length - longRow.size(), 'y') + "\n" + row("60010", "0", "20", "behind"),
                   "-tstevt -wrn", said(kRegistered) + finished("60010"),
                   event("28", "ZEB_WRN0T: WARNING Event for TEST", "behind", "060010"));
    checkEvent(longRow + std::string(600 - longRow.size(), 'y') + "\n" + row("60010", "0", "20", "behind"),
               "-tstevt -wrn", traced(kFormatError) + notConfigured("60010"), "");
}

TEST_F(TestEvent, TableHoldsThreeHundredAndThirty) {
    const std::string others = repeated(row("7", "0", "1", "t"), 329);
    checkError(others + errorRow("the last") + "not read any more\n", "the last");
    checkEvent(others + row("7", "0", "1", "t") + errorRow("one too many"), "-tstevt -err", notConfigured("60009"), "");
}

TEST_F(TestEvent, SilentWithoutEvent) {
    checkEvent("-", "-tstevt -inf", traced(kOpenError) + notConfigured("60011"), "");
    checkEvent("", "-tstevt -inf", notConfigured("60011"), "");
    checkEvent(row("60011", "1", "25", "suppressed"), "-tstevt -inf", {}, "");
    const auto table = box.zeb() / "zeb_config.csv";
    std::filesystem::remove(table);
    ASSERT_EQ(0, mkfifo(table.c_str(), 0600));
    check("", {.args = "-tstevt -inf", .lines = traced(kOpenError) + notConfigured("60011")});
    std::filesystem::remove(table);
    std::filesystem::create_directory(table);
    check("", {.args = "-tstevt -inf", .lines = traced(kOpenError) + notConfigured("60011")});
}

TEST_F(TestEvent, OptionsAreRefused) {
    const std::pair<const char*, const char*> cases[] = {
        {"-tstevt -inf -wrn", "-inf"},  {"-tstevt -inf -inf", "-inf"},
        {"-tstevt -inform", "-tstevt"}, {"-TSTEVT -a0", "-TSTEVT"},
        {"-tstevt", "(null)"},          {"-tstevt -err --inf", "-err"},
        {"-tstevt --err", "-tstevt"},   {"-tstevt -Wrn -ERR -x", "-Wrn"},
    };
    for (const auto& [args, token] : cases)
        checkEvent(errorRow("t") + row("60011", "0", "25", "t"), args, badToken(token), "");
}

} // namespace
} // namespace zebtest
