// What the reports refuse, and what is left of them when a query fails.
#include <filesystem>

#include "tests/support/expected.h"
#include "tests/support/log_file.h"
#include "tests/support/operation_case.h"

namespace zebtest {
namespace {

constexpr char kBuiltIn[] = "";
constexpr char kOne[] =
    R"({"controllers":[{"drives":[{"repeat":2}],"arrays":[{"drives":[0,1]}],"lds":[{"level":1,"spans":[{}]}]}]})";

Line noController(const std::string& number) {
    return error("Error - The specified Controller " + number + ": doesn't exist.");
}
Line noDrive(const std::string& controller, const std::string& number) {
    return error("Error - Controller[" + controller + "] The specified Physical Drive " + number + ": doesn't exist.");
}
Lines noLd(const std::string& controller) {
    return {said("\nRAID Controller: " + controller + "\n"),
            error("Error - Controller[" + controller + "] The specified Logical Drive doesn't exist.")};
}

const Line kSeveral = error("Error - There are multiple RAID controllers. Please set the RAID controller number.");

class ReportErrors : public OperationTest {
  protected:
    /// These lines and no others, and no request behind the snapshot.
    void refuses(const std::string& args, const Lines& lines, const char* scenario = kBuiltIn) {
        check(scenario, {.args = args, .lines = lines});
    }
};

TEST_F(ReportErrors, ControllerOption) {
    for (const std::string word : {"-CtrlInfo", "xx-pdinfo"}) {
        refuses(word, {kSeveral});
        for (const std::string bad : {"-a", "-a0,", "-a,0", "-a0,,1", "-a01", "-a0,0", "-a4", "-a256", "-a4294967296",
                                      "-a0x", "-aAllx", "--a0", "-", "-L0", "0"})
            refuses(word + " " + bad, {badToken(word)});
        refuses(word + " -a0 -x", {badToken("-a0")});
        for (const std::string second : {"-a0", "-A1", "-aAll", "a9"})
            refuses(word + " -A0 " + second, {badToken("-A0")});
        for (const auto& [option, number] :
             {std::pair{"-a2", "2"}, {"-A0,3", "3"}, {"-a3,0", "3"}, {"-a0,1,2,3,0", "2"}})
            refuses(word + " " + option, {noController(number)});
        refuses(word + " -a1", {noController("1")}, kOne);
    }
    for (const std::string word : {"-CBInfo", "enclinfo"}) {
        refuses(word, {kSeveral});
        refuses(word + " -a01", {badToken(word)});
        refuses(word + " -a3", {noController("3")});
    }
}

TEST_F(ReportErrors, DriveOption) {
    for (const std::string bad : {"-pd", "-pd[]", "-pd[0]", "-pd[252:]", "-pd[252:0", "-pd[252:0]x", "-pd[252:257]",
                                  "-pd[252:0001]", "-pd[252:0,252:0]", "-pd[252:0;252:1]", "-pd252:0", "--pd[252:0]"}) {
        refuses("-pdinfo " + bad + " -a0", {badToken("-pdinfo")});
        refuses("-pdinfo -a0 " + bad, {badToken("-a0")});
    }
    refuses("-pdinfo -PD[252:0] -pd[252:1] -a0", {badToken("-PD[252:0]")});
    refuses("-pdinfo -a0 -pd[252:0] -pd[252:0]", {badToken("-pd[252:0]")});
    refuses("-pdinfo -pd[252:0,252:16] -a0", {noDrive("0", "16")});
    refuses("-pdinfo -pd[9:5,9:0] -aAll", {noDrive("1", "5")});
    refuses("-pdinfo -pd[252:3] -a1", {noDrive("1", "3")});
    refuses("-pdinfo -pd[:2]", {noDrive("0", "2")}, kOne);
}

TEST_F(ReportErrors, DriveOptionSelectsBySlotInOrder) {
    const auto headings = [this](const std::string& args) {
        return masked(box.run(optionsFor(kBuiltIn, args)).out, {{"\\n(?!PD[0-9]|RAID)[^\n]*", ""}, {"\\([^\n]*", ""}});
    };
    EXPECT_EQ("RAID Controller: 0\r\nPD0\nPD13", headings("-pdinfo -pd[7:13,:256] -a0"));
    EXPECT_EQ("RAID Controller: 0\r\nPD2", headings("-pdinfo -a1 -pd[252:2]"));
    EXPECT_EQ("RAID Controller: 0\r\nPD0\nRAID Controller: 1\r\nPD0", headings("-pdinfo -a1,0 -PD[x:0]"));
    EXPECT_EQ("RAID Controller: 0\r\n", box.run({"-enclinfo", "-a0"}).out.substr(0, 20));
    EXPECT_EQ("RAID Controller: 1\r\n", box.run({"-ctrlinfo", "-a1"}).out.substr(0, 20));
}

TEST_F(ReportErrors, LdOption) {
    const std::string word = "-ldpdinfo ";
    for (const std::string bad : {"-x", "-a", "-A01", "-a0,0", "-aAllx", "-L64", "-L100", "-L064", "-L5,5", "-L0,,1",
                                  "-L,1", "-l0x", "-L-1", "-Lallx", "--L0", "-", "0"}) {
        refuses(word + bad + " -a0", {badToken(bad)});
        refuses(word + "-A0 " + bad, {badToken(bad)});
    }
    for (const auto& [args, token] : {std::pair{"-a0 -A1", "-A1"}, {"-aAll -AALL", "-AALL"}, {"-L0 -l1", "-l1"}})
        refuses(word + args, {badToken(token)});
    refuses(word + "-a2", {noController("2")});
    refuses(word + "-Lall", {kSeveral});
    refuses(word + "-L63,5 -aAll", noLd("0") + noLd("1"));
    refuses(word + "-L -a1", noLd("1"));
    refuses("ldpdinfo", noLd("0"), R"({"controllers":[{}]})");
}

TEST_F(ReportErrors, ProgressIgnoresFurtherWords) {
    EXPECT_EQ(box.run({"-ldpdprog"}).out, box.run({"-ldpdprog", "-x", "-a9", "-pd["}).out);
}

struct ReportCommand {
    const char* command;
    const char* handler;
};
constexpr ReportCommand kCtrl{"-ctrlinfo", "CliCmdExecAdpInfo"};
constexpr ReportCommand kCb{"-cbinfo", "CliCmdExecCacheBkupInfo"};
constexpr ReportCommand kEncl{"-enclinfo", "CliCmdExecEnclInfo"};

struct FailingQuery {
    ReportCommand report;
    const char* request; ///< the keys that pick it
    std::string wrapper;
    Lines says{};
};

/// The query fails on the second of three controllers.
TEST_F(ReportErrors, AFailingQueryEndsTheReportAtItsController) {
    const std::string controller =
        R"("enclosures":[{"temperatures":[{}]}],"connectors":[{}],"cacheBackup":{},"drives":[{}]})";
    const std::string scenario =
        R"({"controllers":[{)" + controller + R"(,{"id":1,)" + controller + R"(,{"id":2,)" + controller + "]}";
    const Lines unsupported{error("Error - This command is not supported at the current configuration.")};
    const FailingQuery queries[] = {{kCtrl, R"("type":1,"cmd":0,"nth":2)", "SLGetCtrlInfo"},
                                    {kCtrl, R"("type":1,"cmd":1)", "SLGetCtrlProp"},
                                    {kCtrl, R"("type":1,"cmd":11)", "SLGetPciInfo"},
                                    {kCtrl, R"("type":1,"cmd":15)", "SLGetPatrolReadProp"},
                                    {kCtrl, R"("type":6,"cmd":3,"opcode":"0x010E0201")", "SLGetMFCDefaults"},
                                    {kCtrl, R"("type":1,"cmd":19)", "SLGetDrvVer"},
                                    {kCb, R"("type":5,"cmd":0)", "SLGetCacheBkupStatus", unsupported},
                                    {kCb, R"("type":5,"cmd":4)", "SLGetCacheBkupProperties", unsupported},
                                    {kCb, R"("type":5,"cmd":2)", "SLGetCacheBkupDesignInfo", unsupported},
                                    {kEncl, R"("type":1,"cmd":5)", "SLGetEnclList"},
                                    {kEncl, R"("type":8,"cmd":0)", "SLGetEnclConfig"},
                                    {kEncl, R"("type":8,"cmd":5)", "SLGetEnclStatus"},
                                    {kEncl, R"("type":6,"cmd":3,"opcode":"0x07030000")", "SLGetSASConnector"}};
    for (const auto& query : queries) {
        SCOPED_TRACE(query.wrapper);
        const auto first = box.run(optionsFor(scenario, query.report.command + std::string(" -a0")));
        std::filesystem::remove(box.log());
        auto options = optionsFor(scenario, query.report.command + std::string(" -aAll"));
        options.env["ZEBSIM_FAULTS"] = std::string("[{") + query.request + R"(,"ctrl":1,"status":"0x32"}])";
        const auto result = box.run(options);
        EXPECT_TRUE(sameText(result.out, first.out + (query.says.empty() ? "" : query.says[0].text)));
        EXPECT_EQ(0, result.exitStatus);
        const std::string record =
            "!ERR func=" + std::string(query.report.handler) + ": " + query.wrapper + " error, contNo=1";
        EXPECT_EQ(record, LogFile(box.log()).messages().back());
        const auto requests = parseTrace(result.trace);
        EXPECT_EQ(1U, requests.at(requests.size() - 2).header.ctrlId) << "a controller behind it was asked";
        EXPECT_EQ(0x32U, requests.at(requests.size() - 2).status);
    }
}

TEST_F(ReportErrors, ADriveThatHidesItsTemperatureLosesOneLine) {
    const auto options = optionsFor(R"({"controllers":[{"drives":[{"repeat":3}]}]})", "-pdinfo");
    const std::string all = box.run(options).out;
    const auto second = all.find("Temperature", all.find("PD1("));
    ASSERT_NE(std::string::npos, second) << all;
    const std::string wanted = std::string(all).erase(second, all.find('\n', second) + 1 - second);
    for (const char* nth : {"3", "4"}) {
        auto failing = options;
        failing.env["ZEBSIM_FAULTS"] = std::string(R"([{"type":6,"cmd":0,"nth":)") + nth + R"(,"status":"0x2D"}])";
        EXPECT_TRUE(sameText(box.run(failing).out, wanted));
    }
}

} // namespace
} // namespace zebtest
