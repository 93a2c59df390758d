// Controller settings, automatic rebuild and the learn cycle: couplings, refusals, and every byte that is written.
#include "storelib/records/controller.h"
#include "tests/support/operation_case.h"

#include <array>
#include <bit>
#include <numeric>

#include <gmock/gmock.h>

namespace zebtest {
namespace {

constexpr Wire kFirst{3};
constexpr Wire kSecond{9};
constexpr std::uint32_t kOtherBits = 0x80000010;
enum : std::uint32_t { kNoCopyback = 0x01, kHdd = 0x02, kSsd = 0x20 };

/// A record whose bytes differ all, from a start value on.
template <class Record>
Record recordOf(unsigned from) {
    std::array<std::uint8_t, sizeof(Record)> bytes;
    std::iota(bytes.begin(), bytes.end(), static_cast<std::uint8_t>(from));
    return std::bit_cast<Record>(bytes);
}

/// A controller whose settings are all its own; `more` are further keys.
std::string controller(unsigned id, std::uint32_t onOff, unsigned failPd, const std::string& more = "") {
    return R"({"id": )" + number(id) + R"(, "maxPds": 4, "properties": {"seq": 777, "onOff": )" +
           number(onOff | kOtherBits) +
           R"(, "rebuildRate": 41, "patrolReadRate": 42, "bgiRate": 43, "ccRate": 44, "reconRate": 45,
               "cacheFlushInterval": 5, "disableAutoRebuild": 7, "otherBytes": ")" +
           hexOf(recordOf<_MR_CTRL_PROP>(0x80)) + R"("}, "mfcDefaults": {"failPdOnSmartError": )" + number(failPd) +
           R"(, "otherBytes": ")" + hexOf(recordOf<_MR_MFC_DEFAULTS>(0x20)) + R"("})" + more + "}";
}
std::string scenario(const std::string& first, const std::string& second = "") {
    return R"({"controllers": [)" + first + (second.empty() ? "" : ", " + second) + "]}";
}

/// The write of the properties: a rate of 0 keeps the five as they are.
std::string writeProperties(const Wire& wire, unsigned rate, std::uint32_t onOff, unsigned disableAutoRebuild,
                            const std::string& rest = "") {
    auto record = recordOf<_MR_CTRL_PROP>(0x80);
    record.seqNo = 777;
    record.rebuildRate = static_cast<std::uint8_t>(rate != 0 ? rate : 41);
    record.patrolReadRate = static_cast<std::uint8_t>(rate != 0 ? rate : 42);
    record.bgiRate = static_cast<std::uint8_t>(rate != 0 ? rate : 43);
    record.ccRate = static_cast<std::uint8_t>(rate != 0 ? rate : 44);
    record.reconRate = static_cast<std::uint8_t>(rate != 0 ? rate : 45);
    record.cacheFlushInterval = 5;
    record.alarmEnable = 0;
    record.disableAutoRebuild = static_cast<std::uint8_t>(disableAutoRebuild);
    record.onOff = onOff | kOtherBits;
    return wire.request("01/01", 0, " size=64") + wire.request("01/02", 777, " size=64 out=" + hexOf(record) + rest);
}
std::string readDefaults(const Wire& wire) {
    return wire.dcmd(0x010E0201, 2, 72);
}
std::string query(const Wire& wire) {
    return wire.request("01/00", 0, " size=2048") + readDefaults(wire);
}
/// Everything that one controller gets.
std::string change(const Wire& wire, unsigned rate, std::uint32_t onOff, unsigned failPd,
                   const std::string& rest = "") {
    auto defaults = recordOf<_MR_MFC_DEFAULTS>(0x20);
    defaults.failPdOnSmartError = static_cast<std::uint8_t>(failPd);
    return query(wire) + writeProperties(wire, rate, onOff, 7) + readDefaults(wire) +
           wire.dcmd(0x010E0202, 1, 72, hexOf(defaults), rest);
}

Line changed(unsigned contNo) {
    return said("Information - Controller[" + number(contNo) + "] Settings have been changed.");
}
Line notChanged(unsigned contNo) {
    return error("Error - Failed to change Controller[" + number(contNo) +
                 "] Settings.\nPlease confirm OS event log whether there is no problem with RAID controller.\n");
}
Line notBoth(unsigned contNo) {
    return error("Controller[" + number(contNo) +
                 "] Cannot change both -hddcpybk/-ssdcpybk and -pdfail to \"Enabled\".\nPlease change either "
                 "-hddcpybk/-ssdcpybk or -pdfail to \"Disabled\".");
}
Lines propertiesSent(unsigned contNo, std::uint32_t status = 0) {
    return traced("func=SLSetCtrlProp: contNo=" + number(contNo)) + sent("SLSetCtrlProp", status);
}
Lines settingsSent(unsigned contNo, unsigned failPd) {
    return propertiesSent(contNo) +
           traced("func=SLSetFailPDOnSmartTer: contNo=" + number(contNo) + ", failPdOnSMARTer=" + number(failPd));
}

using ControllerSettings = OperationTest;

TEST_F(ControllerSettings, OptionsAreCoupled) {
    const struct {
        std::uint32_t onOff; // current
        unsigned failPd; // current
        const char* options;
        unsigned rate;
        std::uint32_t newOnOff;
        unsigned newFailPd;
    } cases[] = {{kHdd, 0, "-trh", 90, kHdd, 0},
                 {kHdd, 1, "-TRM", 60, kHdd, 1},
                 {kSsd, 3, "-trl", 30, kSsd, 3},
                 {kHdd, 0, "-hddcpybkdsbl", 41, kNoCopyback, 1},
                 {kHdd, 1, "-ssdcpybkenbl", 41, kHdd | kSsd, 0},
                 {kHdd, 1, "-ssdcpybkdsbl", 41, kHdd, 1},
                 {kHdd | kSsd, 0, "-hddcpybkdsbl", 41, kSsd, 0},
                 {kHdd | kSsd, 0, "-hddcpybkdsbl -ssdcpybkdsbl", 41, kNoCopyback, 1},
                 {kHdd, 0, "-pdfailenbl -hddcpybkdsbl", 41, kNoCopyback, 1},
                 {kHdd, 1, "-hddcpybkdsbl -pdfaildsbl", 41, kNoCopyback, 0},
                 {kHdd, 1, "-pdfaildsbl -trh", 90, kHdd, 0},
                 {kNoCopyback, 1, "-trm", 60, kNoCopyback, 1},
                 {kNoCopyback, 0, "-pdfailenbl", 41, kNoCopyback, 1},
                 {kNoCopyback, 1, "-hddcpybkenbl", 41, kHdd, 0},
                 {kNoCopyback, 1, "-hddcpybkdsbl -ssdcpybkenbl -pdfaildsbl -trl", 30, kSsd, 0},
                 {kNoCopyback | kHdd, 0, "-pdfailenbl", 41, kHdd, 1},
                 {0, 0, "-trm", 60, kNoCopyback, 0},
                 {0, 0, "-pdfailenbl", 41, kNoCopyback, 1}};
    for (const auto& c : cases) {
        check(scenario(controller(3, c.onOff, c.failPd)),
              {.args = std::string("-ctrlsetprop ") + c.options,
               .lines = settingsSent(0, c.newFailPd) + changed(0),
               .requests = change(kFirst, c.rate, c.newOnOff, c.newFailPd)});
    }
}

TEST_F(ControllerSettings, NotBothEnabled) {
    const std::string two = scenario(controller(3, kHdd, 0), controller(9, kNoCopyback, 0));
    for (const char* options : {"-pdfailenbl -hddcpybkenbl", "-ssdcpybkenbl -trh -pdfailenbl"}) {
        check(two, {.args = std::string("-ctrlsetprop -a1,0 ") + options, .lines = notBoth(0)});
        check(two, {.args = std::string("-ctrlsetprop -a1 ") + options, .lines = notBoth(1)});
    }
    // Found on one controller only: the next one is changed.
    check(two, {.args = "-ctrlsetprop -pdfailenbl -aAll",
                .lines = notBoth(0) + settingsSent(1, 1) + changed(1),
                .requests = query(kFirst) + change(kSecond, 41, kNoCopyback, 1)});
}

TEST_F(ControllerSettings, CopybackIsNotSupportedEverywhere) {
    const Line refused = error("Error - The specified parameter is not supported at the current configuration.");
    const auto pci = [](const char* device, const char* subVendor, const char* subDevice) {
        return std::string(R"(, "vendorId": "0x1000", "pciDeviceId": ")") + device + R"(", "subVendorId": ")" +
               subVendor + R"(", "subDeviceId": ")" + subDevice + "\"";
    };
    const std::pair<std::string, bool> controllers[] = {
        {R"(, "product": "LSI Embedded MegaRAID")", true}, {R"(, "product": "LSI Embedded MegaRAID 2")", false},
        {R"(, "product": "LSI Embedded")", false},         {pci("0x0079", "0x1000", "0x9263"), true},
        {pci("0x0079", "0x1000", "0x9280"), true},         {pci("0x0079", "0x1000", "0x9261"), false},
        {pci("0x0073", "0x1000", "0x9263"), false},        {pci("0x0079", "0x1734", "0x9280"), false}};
    for (const auto& [keys, isRefused] : controllers) {
        const std::string two = scenario(controller(3, kHdd, 0, keys), controller(9, kHdd, 0));
        const Lines first = isRefused ? refused : settingsSent(0, 0) + changed(0);
        check(two,
              {.args = "-ctrlsetprop -ssdcpybkdsbl -aAll",
               .lines = first + settingsSent(1, 0) + changed(1),
               .requests = (isRefused ? query(kFirst) : change(kFirst, 41, kHdd, 0)) + change(kSecond, 41, kHdd, 0)});
    }
    const std::string none = scenario(controller(3, kHdd, 0, R"(, "product": "LSI Embedded MegaRAID")"));
    for (const char* options : {"-hddcpybkenbl", "-ssdcpybkenbl -trh", "-pdfailenbl", "-pdfaildsbl"})
        check(none, {.args = std::string("-ctrlsetprop ") + options, .lines = {refused}, .requests = query(kFirst)});
    check(none, {.args = "-ctrlsetprop -trh",
                 .lines = settingsSent(0, 0) + changed(0),
                 .requests = change(kFirst, 90, kHdd, 0)});
}

TEST_F(ControllerSettings, FailureEndsTheCommand) {
    const std::string two = scenario(controller(3, kHdd, 0), controller(9, kHdd, 0));
    const Line trace = traced("!ERR func=CliCmdExecAdpSetProp: SLSetCtrlProp error, contNo=0");
    check(two, {.args = "-ctrlsetprop -trh -aAll",
                .lines = propertiesSent(0, 0x21) + trace + notChanged(0),
                .requests = query(kFirst) + writeProperties(kFirst, 90, kHdd, 7, " -> 0x21"),
                .faults = kFirst.fails("01/02", 0x21)});
    check(two, {.args = "-ctrlsetprop -trh -a0",
                .lines = propertiesSent(0, 4) + trace + notChanged(0),
                .requests = query(kFirst) + writeProperties(kFirst, 90, kHdd, 7, " -> 0x04"),
                .faults = kFirst.outdates("01/01", 1)});
    const struct {
        std::string faults, out, trace, requests;
    } cases[] = {{R"([{"opcode": "0x010E0202", "ctrl": 3, "status": "0x21"}])", notChanged(0).text,
                  "SLSetFailPDOnSmartTer", change(kFirst, 90, kHdd, 0, " -> 0x21")},
                 {R"([{"opcode": "0x010E0201", "ctrl": 9, "nth": 1, "status": "0x32"}])", changed(0).text,
                  "SLGetMFCDefaults",
                  change(kFirst, 90, kHdd, 0) + kSecond.request("01/00", 0, " size=2048") +
                      kSecond.dcmd(0x010E0201, 2, 72, "", " -> 0x32")},
                 {kSecond.fails("01/00", 0x32, 2), changed(0).text, "SLGetCtrlInfo",
                  change(kFirst, 90, kHdd, 0) + kSecond.request("01/00", 0, " size=2048 -> 0x32")},
                 {kFirst.fails("01/01", 0x32), notChanged(0).text, "SLSetCtrlProp",
                  query(kFirst) + kFirst.request("01/01", 0, " size=64 -> 0x32")}};
    for (const auto& c : cases) {
        std::filesystem::remove(box.log());
        auto options = optionsFor(two, "-ctrlsetprop -trh -aAll");
        options.env["ZEBSIM_FAULTS"] = c.faults;
        const auto result = box.run(options);
        EXPECT_EQ(c.out, result.out) << c.faults;
        EXPECT_EQ(c.requests, requestsAfterSnapshot(two, result.trace));
        const char* contNo = c.out == changed(0).text ? "1" : "0";
        EXPECT_THAT(loggedMessages(),
                    testing::Contains("!ERR func=CliCmdExecAdpSetProp: " + c.trace + " error, contNo=" + contNo));
    }
}

TEST_F(ControllerSettings, AutomaticRebuild) {
    const std::string two = scenario(controller(3, kHdd, 0), controller(9, kNoCopyback, 1));
    const Line asks = said("Warning - In case of disabling Automatic Rebuild, the rebuild after error doesn't "
                           "automatically start.\nProceed with the setting?(Y/N)?");
    const auto wrote = [](unsigned contNo, unsigned value, std::uint32_t status = 0) {
        return traced("func=SLSetCtrlRbldMode: contNo=" + number(contNo) + ", disableAutoRebuild=" + number(value)) +
               sent("SLSetCtrlRbldMode", status);
    };
    const Lines failed{traced("!ERR func=CliCmdExecAdpRbldMode: SLSetCtrlRbldMode error, contNo=0"), notChanged(0)};
    const auto first = [](unsigned value, const char* rest = "") {
        return writeProperties(kFirst, 0, kHdd, value, rest);
    };
    const std::vector<OperationCase> cases{
        {.args = "-ctrlautorbld -enbl -aAll",
         .lines = wrote(0, 0) + changed(0) + wrote(1, 0) + changed(1),
         .requests = first(0) + writeProperties(kSecond, 0, kNoCopyback, 0)},
        {.args = "-ctrlautorbld -a0,1 -DSBL",
         .lines = asks + wrote(0, 1) + changed(0) + asks + asks + wrote(1, 1) + changed(1),
         .requests = first(1) + writeProperties(kSecond, 0, kNoCopyback, 1),
         .input = "Y\nok\ny\n"},
        {.args = "-ctrlautorbld -dsbl -aAll",
         .lines = asks + wrote(0, 1) + changed(0) + asks,
         .requests = first(1),
         .input = "y\nN\n"},
        {.args = "-ctrlautorbld -dsbl -aAll", .lines = {asks}, .input = "n\n"},
        {.args = "-ctrlautorbld -enbl -aAll",
         .lines = wrote(0, 0, 0x21) + failed,
         .requests = first(0, " -> 0x21"),
         .faults = kFirst.fails("01/02", 0x21)},
        {.args = "-ctrlautorbld -enbl -a0",
         .lines = wrote(0, 0, 4) + failed,
         .requests = first(0, " -> 0x04"),
         .faults = kFirst.outdates("01/01", 1)}};
    for (const auto& c : cases)
        check(two, c);
}

TEST_F(ControllerSettings, LearnCycle) {
    const std::string two = scenario(controller(3, kHdd, 0), controller(9, kHdd, 0, R"(, "cacheBackup": {})"));
    const Line failed = error("Error - Controller[0] Failed to start learn cycle.\nPlease confirm OS event log whether "
                              "there is no problem with Cache Backup.\n");
    const Line started = said("Information - Controller[1] Learn cycle has been started.\nPlease confirm OS event log "
                              "for the completion.\n");
    check(two, {.args = "-cblearn -aAll",
                .lines = sent("SLLearnCacheBkup", 0x22) +
                         traced("!ERR func=CliCmdExecCacheBkup: SLLearnCacheBkup error, contNo=0") + failed + started,
                .requests = kFirst.request("05/03", 0, " -> 0x22") + kSecond.request("05/03", 0)});
    check(two, {.args = "-cblearn -a1", .lines = {started}, .requests = kSecond.request("05/03", 0)});
}

TEST_F(ControllerSettings, ArgumentsAreRefused) {
    const std::string two = scenario(controller(3, kHdd, 0), controller(9, kHdd, 0));
    scenario_ = two;
    checkTokens({"-ctrlsetprop -> (null)", "-ctrlsetprop -a0 -> -a0", "-ctrlsetprop -trh -trl -a0 -> -trh",
                 "-ctrlsetprop -a0 -trh -TRH -> -trh", "-ctrlsetprop -hddcpybkenbl -trl -hddcpybkdsbl -> -trl",
                 "-ctrlsetprop -ssdcpybkdsbl -ssdcpybkenbl -> -ssdcpybkdsbl",
                 "-ctrlsetprop -pdfailenbl -pdfaildsbl -> -pdfailenbl", "-ctrlsetprop -tr -a0 -> -ctrlsetprop",
                 "-ctrlsetprop -trh -L0 -> -trh", "-ctrlsetprop -trh -a0 -a0 -> -a0", "-ctrlsetprop -trh -a4 -> -trh",
                 "-ctrlautorbld -> (null)", "-ctrlautorbld -a0 -> -a0", "-ctrlautorbld -enbl -dsbl -a0 -> -enbl",
                 "-ctrlautorbld -dsbl -dsbl -> -dsbl", "-ctrlautorbld -a0 -off -> -a0", "-cblearn -start -> -cblearn",
                 "-cblearn -a0 -a1 -> -a0", "-cblearn -a0,01 -> -cblearn"});
    for (const std::string command : {"-ctrlsetprop -trh", "-ctrlautorbld -enbl", "-cblearn"}) {
        check(two, {.args = command + " -a1,2", .lines = noController(2)});
        check(two, {.args = command, .lines = {manyControllers()}});
    }
}

} // namespace
} // namespace zebtest
