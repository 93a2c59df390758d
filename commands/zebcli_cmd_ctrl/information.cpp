// The controller report.
#include "commands/handlers.h"

#include "log/raidctl.h"
#include "main/zebcli_cmd_com/base/source.h"
#include "main/zebcli_cmd_com/base/string_shims.h"
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

constexpr Speaker kInformationHandler{kCtrlSource, "CliCmdExecAdpInfo"};

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
    return succeeded(SLGetCtrlInfo(contNo, &data.info), kInformationHandler, "SLGetCtrlInfo error", subject) &&
           succeeded(SLGetCtrlProp(contNo, &data.properties), kInformationHandler, "SLGetCtrlProp error", subject) &&
           succeeded(SLGetPciInfo(contNo, &data.pci), kInformationHandler, "SLGetPciInfo error", subject) &&
           succeeded(SLGetPatrolReadProp(contNo, &data.patrolRead), kInformationHandler, "SLGetPatrolReadProp error",
                     subject) &&
           succeeded(SLGetMFCDefaults(contNo, &data.defaults), kInformationHandler, "SLGetMFCDefaults error", subject);
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
        traceFailure(kInformationHandler, "ExecFreq invalid", {contNo, "seconds", seconds});
        return "Unknown";
    }
}

void addGeneral(Report& report, unsigned char contNo, const ControllerData& data) {
    static constexpr const char* kAlarm[] = {"No", "Yes"};
    const _MR_CTRL_INFO& info = data.info;
    const _MR_CTRL_PROP& properties = data.properties;
    report.controller(contNo);
    report.heading("General Information");
    report.field("Product Name", "%s", fieldText(info.productName).c_str());
    report.field("PCI Bus/Dev/Func", "%d/%d/%d", static_cast<int>(data.pci.bus), data.pci.device, data.pci.function);
    report.field("Serial No", "%s", fieldText(info.serialNo).c_str());
    report.field("Vendor ID", "0x%X", static_cast<unsigned>(info.vendorId));
    report.field("Device ID", "0x%X", static_cast<unsigned>(info.deviceId));
    report.field("SubVendor ID", "0x%X", static_cast<unsigned>(info.subVendorId));
    report.field("SubDevice ID", "0x%X", static_cast<unsigned>(info.subDeviceId));
    report.field("Device Port Count", "%d", info.devicePortCount);
    report.field("Alarm Present", "%s", yesNo((info.hwPresent & kHwAlarm) != 0));
    report.field("Alarm Enabled", "%s", wordOf(kAlarm, properties.alarmEnable, "Unknown"));
    report.field("Cache Flush Interval", "%d sec", properties.cacheFlushInterval);
    report.field("Cache Backup Present", "%s", yesNo((info.hwPresent & kHwCacheBackup) != 0));
    report.field("Native Command Queuing", "%s", enabledWhen((properties.onOff & kPropNcqDisabled) == 0));
    report.field("Memory Size", "%d MB", info.memorySize);
    for (unsigned i = 0; i < std::size(info.devicePortAddr); ++i) {
        char address[32];
        FormatSASAddress(info.devicePortAddr[i], address);
        char label[24];
        wsprintf(label, "Backend SAS Address%u", i);
        report.field(label, "%s", address);
    }
    report.gap();
    report.heading("Error Information");
    report.fieldAt(Report::kWidestColumn, "Memory Correctable Error Count", "%d", info.memCorrectableErrorCount);
    report.fieldAt(Report::kWidestColumn, "Memory Uncorrectable Error Count", "%d", info.memUncorrectableErrorCount);
}

void addFirmware(Report& report, const _MR_CTRL_INFO& info) {
    const auto forEach = [&](std::string_view name, auto line) {
        for (const _MR_IMAGE_COMPONENT& component : imagesOf(info))
            if (std::string_view(component.name, sizeof component.name).starts_with(name))
                line(component);
    };
    report.gap();
    report.heading("Firmware/BIOS/Driver Information");
    if (info.packageVersion[0] != '\0')
        report.field("Firmware Package Version", "%s", fieldText(info.packageVersion).c_str());
    forEach("APP", [&](const _MR_IMAGE_COMPONENT& image) {
        report.field("Firmware Version", "%s", fieldText(image.version).c_str());
    });
    forEach("APP", [&](const _MR_IMAGE_COMPONENT& image) {
        report.field("Firmware Build Time", "%s %s", fieldText(image.buildDate).c_str(),
                     fieldText(image.buildTime).c_str());
    });
    forEach("BIOS", [&](const _MR_IMAGE_COMPONENT& image) {
        report.field("BIOS Version", "%s", fieldText(image.version).c_str());
    });
}

void addSettings(Report& report, unsigned char contNo, const ControllerData& data) {
    static constexpr const char* kRebuildMode[] = {"Automatic", "Manual"};
    static constexpr const char* kPatrolReadMode[] = {"Automatic", "Manual", "Disable"};
    const CalendarTime next = SecondToDate(data.patrolRead.nextExecution);
    report.field("Driver Version", "%s", fieldText(data.driver.driverVersion).c_str());
    report.gap();
    report.heading("Controller Settings Information");
    report.field("Rebuild Mode", "%s", wordOf(kRebuildMode, data.properties.disableAutoRebuild, "Unknown"));
    report.field("Patrol Read Mode", "%s", wordOf(kPatrolReadMode, data.patrolRead.mode, "Unknown"));
    report.field("Patrol Read Interval", "%s", patrolReadInterval(data.patrolRead.executionFrequency, contNo));
    report.label("Patrol Read Schedule"); // the last line of its block has no end of its own
    report.add("%d/%d/%d ; %02d:%02d:%02d", next.year, next.month, next.day, next.hour, next.minute, next.second);
}

void addRates(Report& report, const _MR_CTRL_PROP& properties) {
    report.field("Rebuild Rate", "%u%%", properties.rebuildRate);
    report.field("Patrol Read Rate", "%u%%", properties.patrolReadRate);
    report.field("Consistency Check Rate", "%u%%", properties.ccRate);
}

void addOptions(Report& report, const ControllerData& data, unsigned advanced) {
    const std::uint32_t onOff = data.properties.onOff;
    report.field("Copyback", "%s", enabledWhen((onOff & kPropCopybackDisabled) == 0));
    report.field("SMART Copyback for HDD", "%s", enabledWhen((onOff & kPropSmartCopybackHdd) != 0));
    report.field("SMART Copyback for SSD", "%s", enabledWhen((onOff & kPropSmartCopybackSsd) != 0));
    report.field("PD Fail On SMART Error", "%s", enabledWhen(data.defaults.failPdOnSmartError != 0));
    report.gap();
    report.heading("MegaRAID Advanced Options");
    report.field("Snapshot                 ", "%s", enabledWhen((advanced & kOptionSnapshot) != 0));
    report.field("CacheCade                ", "%s", enabledWhen((advanced & kOptionCacheCade) != 0));
    report.field("FastPath                 ", "%s", enabledWhen((advanced & kOptionFastPath) != 0));
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
    if (!succeeded(SLGetDrvVer(ctrl.contNo, &data.driver), kInformationHandler, "SLGetDrvVer error",
                   onController(ctrl.contNo)))
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
