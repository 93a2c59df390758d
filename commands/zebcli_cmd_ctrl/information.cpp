// The controller report.
#include "commands/handlers.h"

#include "log/raidctl.h"
#include "main/zebcli_cmd_com/base/source.h"
#include "main/zebcli_cmd_com/base/trace.h"
#include "main/zebcli_cmd_com/input/options.h"
#include "main/zebcli_cmd_com/model/lookup.h"
#include "main/zebcli_cmd_com/text/calendar.h"
#include "main/zebcli_cmd_com/text/report.h"
#include "main/zebcli_cmd_com/text/text_field.h"
#include "main/zebcli_cmd_com/text/vocabulary.h"
#include "storelib/common/StoreLib/controller.h"

#include <algorithm>
#include <span>
#include <string_view>

namespace {

constexpr Speaker kHandler{kCtrlSource, "CliCmdExecAdpInfo"};

struct ControllerData {
    _MR_CTRL_INFO info{};
    _MR_CTRL_PROP properties{};
    _MR_DRV_PCI_INFORMATION pci{};
    _MR_PR_PROPERTIES patrolRead{};
    _MR_MFC_DEFAULTS defaults{};
    _MR_DRV_DRIVER_VERSION driver{};
};

bool queryController(unsigned char contNo, ControllerData& data) {
    const Subject subject = onController(contNo);
    return succeeded(SLGetCtrlInfo(contNo, &data.info), kHandler, "SLGetCtrlInfo error", subject) &&
           succeeded(SLGetCtrlProp(contNo, &data.properties), kHandler, "SLGetCtrlProp error", subject) &&
           succeeded(SLGetPciInfo(contNo, &data.pci), kHandler, "SLGetPciInfo error", subject) &&
           succeeded(SLGetPatrolReadProp(contNo, &data.patrolRead), kHandler, "SLGetPatrolReadProp error", subject) &&
           succeeded(SLGetMFCDefaults(contNo, &data.defaults), kHandler, "SLGetMFCDefaults error", subject);
}

const char* yesNo(bool yes) {
    return yes ? "Yes" : "No";
}

const char* enabledWhen(bool enabled) {
    return enabled ? "Enabled" : "Disabled";
}

const char* patrolReadInterval(std::uint32_t seconds, unsigned char contNo) {
    switch (seconds) {
    case 3600:
        return "Hourly";
    case 86400:
        return "Daily";
    case 604800:
        return "Weekly";
    case 2592000:
        return "Monthly";
    default:
        traceFailure(kHandler, "ExecFreq invalid", {contNo, "seconds", seconds});
        return "Unknown";
    }
}

void addGeneral(Report& report, unsigned char contNo, const ControllerData& data) {
    static constexpr const char* kAlarm[] = {"No", "Yes"};
    const _MR_CTRL_INFO& info = data.info;
    const _MR_CTRL_PROP& properties = data.properties;
    report.add("%s: %d\r\n\r\n", "RAID Controller", contNo);
    report.add("%s\r\n", "### General Information ###");
    report.add("%s             : %s\r\n", "Product Name", fieldText(info.productName).c_str());
    report.add("%s         : %d/%d/%d\r\n", "PCI Bus/Dev/Func", static_cast<int>(data.pci.bus), data.pci.device,
               data.pci.function);
    report.add("%s                : %s\r\n", "Serial No", fieldText(info.serialNo).c_str());
    report.add("%s                : 0x%X\r\n", "Vendor ID", static_cast<unsigned>(info.vendorId));
    report.add("%s                : 0x%X\r\n", "Device ID", static_cast<unsigned>(info.deviceId));
    report.add("%s             : 0x%X\r\n", "SubVendor ID", static_cast<unsigned>(info.subVendorId));
    report.add("%s             : 0x%X\r\n", "SubDevice ID", static_cast<unsigned>(info.subDeviceId));
    report.add("%s        : %d\r\n", "Device Port Count", info.devicePortCount);
    report.add("%s            : %s\r\n", "Alarm Present", yesNo((info.hwPresent & kHwAlarm) != 0));
    report.add("%s            : %s\r\n", "Alarm Enabled", wordOf(kAlarm, properties.alarmEnable, "Unknown"));
    report.add("%s     : %d sec\r\n", "Cache Flush Interval", properties.cacheFlushInterval);
    report.add("%s     : %s\r\n", "Cache Backup Present", yesNo((info.hwPresent & kHwCacheBackup) != 0));
    report.add("%s   : %s\r\n", "Native Command Queuing", enabledWhen((properties.onOff & kPropNcqDisabled) == 0));
    report.add("%s              : %d MB\r\n", "Memory Size", info.memorySize);
    for (unsigned i = 0; i < std::size(info.devicePortAddr); ++i) {
        char address[32];
        FormatSASAddress(info.devicePortAddr[i], address);
        report.add("%s%d%s     : %s\r\n", "Backend SAS Address", static_cast<int>(i), "", address);
    }
    report.add("\r\n%s\r\n", "### Error Information ###");
    report.add("%s     : %d\r\n", "Memory Correctable Error Count", info.memCorrectableErrorCount);
    report.add("%s   : %d\r\n", "Memory Uncorrectable Error Count", info.memUncorrectableErrorCount);
}

void addFirmware(Report& report, const _MR_CTRL_INFO& info) {
    const auto forEach = [&](std::string_view name, auto line) {
        for (const _MR_IMAGE_COMPONENT& component : imagesOf(info))
            if (std::string_view(component.name, sizeof component.name).starts_with(name))
                line(component);
    };
    report.add("\r\n%s\r\n", "### Firmware/BIOS/Driver Information ###");
    if (info.packageVersion[0] != '\0')
        report.add("%s : %s\r\n", "Firmware Package Version", fieldText(info.packageVersion).c_str());
    forEach("APP", [&](const _MR_IMAGE_COMPONENT& image) {
        report.add("%s         : %s\r\n", "Firmware Version", fieldText(image.version).c_str());
    });
    forEach("APP", [&](const _MR_IMAGE_COMPONENT& image) {
        report.add("%s      : %s %s\r\n", "Firmware Build Time", fieldText(image.buildDate).c_str(),
                   fieldText(image.buildTime).c_str());
    });
    forEach("BIOS", [&](const _MR_IMAGE_COMPONENT& image) {
        report.add("%s             : %s\r\n", "BIOS Version", fieldText(image.version).c_str());
    });
}

void addSettings(Report& report, unsigned char contNo, const ControllerData& data) {
    static constexpr const char* kRebuildMode[] = {"Automatic", "Manual"};
    static constexpr const char* kPatrolReadMode[] = {"Automatic", "Manual", "Disable"};
    const CalendarTime next = SecondToDate(data.patrolRead.nextExecution);
    report.add("%s           : %s\r\n", "Driver Version", fieldText(data.driver.driverVersion).c_str());
    report.add("\r\n%s\r\n", "### Controller Settings Information ###");
    report.add("%s             : %s\r\n", "Rebuild Mode",
               wordOf(kRebuildMode, data.properties.disableAutoRebuild, "Unknown"));
    report.add("%s         : %s\r\n", "Patrol Read Mode", wordOf(kPatrolReadMode, data.patrolRead.mode, "Unknown"));
    report.add("%s     : %s\r\n", "Patrol Read Interval",
               patrolReadInterval(data.patrolRead.executionFrequency, contNo));
    report.add("%s     : %d/%d/%d ; %02d:%02d:%02d", "Patrol Read Schedule", next.year, next.month, next.day, next.hour,
               next.minute, next.second);
}

void addRates(Report& report, const _MR_CTRL_PROP& properties) {
    report.add("%s             : %u%%\r\n", "Rebuild Rate", properties.rebuildRate);
    report.add("%s         : %u%%\r\n", "Patrol Read Rate", properties.patrolReadRate);
    report.add("%s   : %u%%\r\n", "Consistency Check Rate", properties.ccRate);
}

void addOptions(Report& report, const ControllerData& data, unsigned advanced) {
    const std::uint32_t onOff = data.properties.onOff;
    report.add("%s                 : %s\r\n", "Copyback", enabledWhen((onOff & kPropCopybackDisabled) == 0));
    report.add("%s   : %s\r\n", "SMART Copyback for HDD", enabledWhen((onOff & kPropSmartCopybackHdd) != 0));
    report.add("%s   : %s\r\n", "SMART Copyback for SSD", enabledWhen((onOff & kPropSmartCopybackSsd) != 0));
    report.add("%s   : %s\r\n", "PD Fail On SMART Error", enabledWhen(data.defaults.failPdOnSmartError != 0));
    report.add("\r\n%s\r\n", "### MegaRAID Advanced Options ###");
    report.add("%s: %s\r\n", "Snapshot                 ", enabledWhen((advanced & kOptionSnapshot) != 0));
    report.add("%s: %s\r\n", "CacheCade                ", enabledWhen((advanced & kOptionCacheCade) != 0));
    report.add("%s: %s\r\n", "FastPath                 ", enabledWhen((advanced & kOptionFastPath) != 0));
}

/// Prints the report of one controller, in three blocks of which the second goes past CliLogging on purpose. Returns
/// false when a query failed; nothing of this controller is printed then.
bool reportController(Controller ctrl) {
    ControllerData data;
    if (!queryController(ctrl.contNo, data))
        return false;
    Report report;
    addGeneral(report, ctrl.contNo, data);
    addFirmware(report, data.info);
    if (!succeeded(SLGetDrvVer(ctrl.contNo, &data.driver), kHandler, "SLGetDrvVer error", onController(ctrl.contNo)))
        return false;
    addSettings(report, ctrl.contNo, data);
    report.emit();
    addRates(report, data.properties);
    report.emitPlain();
    addOptions(report, data, IsEnablePF(ctrl.contNo, ctrl.conts));
    report.emit();
    return true;
}

} // namespace

constexpr OptionTable kCtrlInfoOptions{.source = kCtrlSource, .badToken = BadToken::Before, .takesControllers = true};

int CliCmdExecAdpInfo(int argc, char** argv, _AFCONT* conts, int contCount) {
    dumpLog(kCtrlSource, __LINE__, __func__);
    Options options;
    if (!readArguments(kCtrlInfoOptions, argc, argv, contCount, options))
        return 1;
    for (const unsigned char contNo : selectedControllers(options.ctrls, contCount))
        if (!reportController({contNo, conts}))
            return 1;
    return 0;
}
