// Which drives a report shows, and what is left of it when a query fails. Refusals are in
// transcripts/report_errors.txt.
#include <filesystem>

#include "tests/support/expected.h"
#include "tests/support/log_file.h"
#include "tests/support/operation_test.h"

namespace zebtest {
namespace {

constexpr char kBuiltInHardware[] = "";

using ReportErrors = OperationTest;

TEST_F(ReportErrors, DriveOptionSelectsBySlotInOrder) {
    const auto headings = [this](const std::string& args) {
        return masked(box.run(optionsFor(kBuiltInHardware, args)).out,
                      {{"\\n(?!PD[0-9]|RAID)[^\n]*", ""}, {"\\([^\n]*", ""}});
    };
    EXPECT_EQ("RAID Controller: 0\r\nPD0\nPD13", headings("-pdinfo -pd[7:13,:256] -a0"));
    EXPECT_EQ("RAID Controller: 0\r\nPD2", headings("-pdinfo -a1 -pd[252:2]"));
    EXPECT_EQ("RAID Controller: 0\r\nPD0\nRAID Controller: 1\r\nPD0", headings("-pdinfo -a1,0 -PD[x:0]"));
    EXPECT_EQ("RAID Controller: 0\r\n", box.run({"-enclinfo", "-a0"}).out.substr(0, 20));
    EXPECT_EQ("RAID Controller: 1\r\n", box.run({"-ctrlinfo", "-a1"}).out.substr(0, 20));
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
    const char* says = "";
};

/// The query fails on the second of three controllers.
TEST_F(ReportErrors, AFailingQueryEndsTheReportAtItsController) {
    const std::string controller =
        R"("enclosures":[{"temperatures":[{}]}],"connectors":[{}],"cacheBackup":{},"drives":[{}]})";
    const std::string scenario =
        R"({"controllers":[{)" + controller + R"(,{"id":1,)" + controller + R"(,{"id":2,)" + controller + "]}";
    constexpr char kUnsupported[] = "Error - This command is not supported at the current configuration.\n";
    const FailingQuery queries[] = {{kCtrl, R"("type":1,"cmd":0,"nth":2)", "SLGetCtrlInfo"},
                                    {kCtrl, R"("type":1,"cmd":1)", "SLGetCtrlProp"},
                                    {kCtrl, R"("type":1,"cmd":11)", "SLGetPciInfo"},
                                    {kCtrl, R"("type":1,"cmd":15)", "SLGetPatrolReadProp"},
                                    {kCtrl, R"("type":6,"cmd":3,"opcode":"0x010E0201")", "SLGetMFCDefaults"},
                                    {kCtrl, R"("type":1,"cmd":19)", "SLGetDrvVer"},
                                    {kCb, R"("type":5,"cmd":0)", "SLGetCacheBkupStatus", kUnsupported},
                                    {kCb, R"("type":5,"cmd":4)", "SLGetCacheBkupProperties", kUnsupported},
                                    {kCb, R"("type":5,"cmd":2)", "SLGetCacheBkupDesignInfo", kUnsupported},
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
        EXPECT_TRUE(sameText(result.out, first.out + query.says));
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
