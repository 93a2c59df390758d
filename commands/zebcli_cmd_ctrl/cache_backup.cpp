// The cache backup report and the learn cycle.
#include "commands/handlers.h"

#include "log/raidctl.h"
#include "log/zebcli_log.h"
#include "main/zebcli_cmd_com/base/source.h"
#include "main/zebcli_cmd_com/base/trace.h"
#include "main/zebcli_cmd_com/input/options.h"
#include "main/zebcli_cmd_com/text/calendar.h"
#include "main/zebcli_cmd_com/text/report.h"
#include "main/zebcli_cmd_com/text/vocabulary.h"
#include "storelib/common/StoreLib/cache_backup.h"
#include "storelib/records/status.h"

namespace {

constexpr unsigned kSecondsPerDay = 86400;

struct CacheBackupData {
    _MR_BBU_STATUS status{};
    _MR_BBU_PROPERTIES properties{};
    _MR_BBU_DESIGN_INFO design{};
};

/// Says that there is no unit to report on and leaves the trace of the query that told so.
bool answered(std::uint32_t status, const char* text, unsigned char contNo, int line = __builtin_LINE()) {
    if (status == kSlSuccess)
        return true;
    CliLogging(kPrintAndLog, kCtrlSource, line, "Error - This command is not supported at the current configuration.");
    traceFailure({kCtrlSource, "CliCmdExecCacheBkupInfo", line}, text, onController(contNo));
    return false;
}

bool queryCacheBackup(unsigned char contNo, CacheBackupData& data) {
    return answered(SLGetCacheBkupStatus(contNo, &data.status), "SLGetCacheBkupStatus error", contNo) &&
           answered(SLGetCacheBkupProperties(contNo, &data.properties), "SLGetCacheBkupProperties error", contNo) &&
           answered(SLGetCacheBkupDesignInfo(contNo, &data.design), "SLGetCacheBkupDesignInfo error", contNo);
}

void reportCacheBackup(unsigned char contNo, const CacheBackupData& data) {
    static constexpr const char* kTypes[] = {"No Battery", "IBBU", "BBU", "ZCR_LEGACY", "iTBBU3", "iBBU08", "SuperCAP"};
    static constexpr const char* kLearnModes[] = {"Automatic", "Disabled", "Warning Only"};
    const CalendarTime next = SecondToDate(data.properties.nextLearnTime);
    const int remaining = data.status.remainingCapacityLow + 256 * data.status.remainingCapacityHigh;
    Report report;
    report.controller(contNo);
    report.heading("General Information");
    report.field("Cache Backup Type", "%s", wordOf(kTypes, data.status.type, "Not defined"));
    report.field("Serial Number", "%d", data.design.serialNo);
    report.field("Full Capacity", "%d Joules", data.design.designCapacity);
    report.field("Remaining Capacity", "%d Joules", remaining);
    report.field("Temperature", "%d C", data.status.temperature);
    report.field("Voltage", "%d mV", data.status.voltage);
    report.field("Current", "%d mA", data.status.current);
    report.field("Automatic Learn Cycle", "%s", wordOf(kLearnModes, data.properties.autoLearnMode, "Not defined"));
    report.field("Auto Learn Period", "%d Days", static_cast<int>(data.properties.learnPeriod / kSecondsPerDay));
    report.field("Next Learn Cycle", "%d/%d/%d ; %d:%d:%d", next.year, next.month, next.day, next.hour, next.minute,
                 next.second);
    report.emit();
}

} // namespace

constexpr OptionTable kCacheBackupOptions{
    .source = kCtrlSource, .badToken = BadToken::Before, .takesControllers = true};

int CliCmdExecCacheBkupInfo(int argc, char** argv, _AFCONT* /*conts*/, int contCount) {
    dumpLog(kCtrlSource, __LINE__, __func__);
    Options options;
    if (!readArguments(kCacheBackupOptions, argc, argv, contCount, options))
        return 1;
    for (const unsigned char contNo : selectedControllers(options.ctrls, contCount)) {
        CacheBackupData data;
        if (!queryCacheBackup(contNo, data))
            return 1;
        reportCacheBackup(contNo, data);
    }
    return 0;
}

int CliCmdExecCacheBkup(int argc, char** argv, _AFCONT* /*conts*/, int contCount) {
    dumpLog(kCtrlSource, __LINE__, __func__);
    Options options;
    if (!readArguments(kCacheBackupOptions, argc, argv, contCount, options))
        return 1;
    for (const unsigned char contNo : selectedControllers(options.ctrls, contCount)) {
        if (succeeded(SLLearnCacheBkup(contNo), {kCtrlSource, __func__}, "SLLearnCacheBkup error",
                      onController(contNo)))
            CliLogging(kPrint, kCtrlSource, __LINE__,
                       "Information - Controller[%d] Learn cycle has been started.\n"
                       "Please confirm OS event log for the completion.\n",
                       contNo);
        else
            CliLogging(kPrintAndLog, kCtrlSource, __LINE__,
                       "Error - Controller[%d] Failed to start learn cycle.\n"
                       "Please confirm OS event log whether there is no problem with Cache Backup.\n",
                       contNo);
    }
    return 0;
}
