// Controller settings and automatic rebuild.
#include "commands/handlers.h"

#include "commands/zebcli_cmd_ctrl/setting_results.h"
#include "log/raidctl.h"
#include "log/zebcli_log.h"
#include "main/zebcli_cmd_com/base/source.h"
#include "main/zebcli_cmd_com/base/trace.h"
#include "main/zebcli_cmd_com/input/options.h"
#include "main/zebcli_cmd_com/input/prompts.h"
#include "main/zebcli_cmd_com/model/snapshot.h"
#include "storelib/common/StoreLib/controller.h"
#include "storelib/records/status.h"

#include <array>

namespace {

enum SettingBit : unsigned {
    kTaskRateHigh = 0x001,
    kTaskRateMiddle = 0x002,
    kTaskRateLow = 0x004,
    kHddCopybackEnable = 0x008,
    kHddCopybackDisable = 0x010,
    kSsdCopybackEnable = 0x020,
    kSsdCopybackDisable = 0x040,
    kPdFailEnable = 0x080,
    kPdFailDisable = 0x100,
};
constexpr unsigned kTaskRates = kTaskRateHigh | kTaskRateMiddle | kTaskRateLow;
constexpr unsigned kHddCopyback = kHddCopybackEnable | kHddCopybackDisable;
constexpr unsigned kSsdCopyback = kSsdCopybackEnable | kSsdCopybackDisable;
constexpr unsigned kPdFail = kPdFailEnable | kPdFailDisable;
constexpr unsigned kCopybackEnable = kHddCopybackEnable | kSsdCopybackEnable;
constexpr unsigned kCopybackDisable = kHddCopybackDisable | kSsdCopybackDisable;

constexpr auto kSettingWords = std::to_array<OptionWord>({
    {.word = "trh", .bit = kTaskRateHigh, .refusedAfter = kTaskRates},
    {.word = "trm", .bit = kTaskRateMiddle, .refusedAfter = kTaskRates},
    {.word = "trl", .bit = kTaskRateLow, .refusedAfter = kTaskRates},
    {.word = "hddcpybkenbl", .bit = kHddCopybackEnable, .refusedAfter = kHddCopyback},
    {.word = "hddcpybkdsbl", .bit = kHddCopybackDisable, .refusedAfter = kHddCopyback},
    {.word = "ssdcpybkenbl", .bit = kSsdCopybackEnable, .refusedAfter = kSsdCopyback},
    {.word = "ssdcpybkdsbl", .bit = kSsdCopybackDisable, .refusedAfter = kSsdCopyback},
    {.word = "pdfailenbl", .bit = kPdFailEnable, .refusedAfter = kPdFail},
    {.word = "pdfaildsbl", .bit = kPdFailDisable, .refusedAfter = kPdFail},
});

enum RebuildBit : unsigned { kRebuildEnable = 1, kRebuildDisable = 2 };
constexpr unsigned kRebuildModes = kRebuildEnable | kRebuildDisable;
constexpr auto kRebuildWords = std::to_array<OptionWord>({
    {.word = "enbl", .bit = kRebuildEnable, .refusedAfter = kRebuildModes},
    {.word = "dsbl", .bit = kRebuildDisable, .refusedAfter = kRebuildModes},
});

/// Failing a drive on SMART errors and copying it back on SMART errors exclude each other.
void refuseBoth(unsigned char contNo) {
    CliLogging(kPrintAndLog, kCtrlSource, __LINE__,
               "Controller[%d] Cannot change both -hddcpybk/-ssdcpybk and -pdfail to \"Enabled\".\n"
               "Please change either -hddcpybk/-ssdcpybk or -pdfail to \"Disabled\".",
               contNo);
}

bool chosenOrCurrent(const Options& options, unsigned enable, unsigned disable, bool current) {
    return options.has(disable) ? false : options.has(enable) || current;
}

std::uint8_t taskRate(const Options& options, std::uint8_t current) {
    if (options.has(kTaskRateHigh))
        return 90;
    if (options.has(kTaskRateMiddle))
        return 60;
    return options.has(kTaskRateLow) ? 30 : current;
}

/// The settings to write. Copyback as a whole is off exactly when neither kind of drive copies back on SMART errors.
SL_CTRL_SETTING_INFO makeSettings(const Options& options, const _MR_CTRL_PROP& current) {
    SL_CTRL_SETTING_INFO settings{};
    settings.taskRate = taskRate(options, current.rebuildRate);
    settings.smartCopybackHdd =
        chosenOrCurrent(options, kHddCopybackEnable, kHddCopybackDisable, (current.onOff & kPropSmartCopybackHdd) != 0);
    settings.smartCopybackSsd =
        chosenOrCurrent(options, kSsdCopybackEnable, kSsdCopybackDisable, (current.onOff & kPropSmartCopybackSsd) != 0);
    settings.copybackDisabled = settings.smartCopybackHdd == 0 && settings.smartCopybackSsd == 0;
    return settings;
}

/// Whether drives fail on SMART errors: as asked for, else coupled to copyback on SMART errors, else as it is.
std::uint8_t pdFailValue(const Options& options, const SL_CTRL_SETTING_INFO& settings, std::uint8_t current) {
    if (options.has(kPdFail))
        return options.has(kPdFailEnable) ? 1 : 0;
    if (options.has(kCopybackEnable))
        return 0;
    return options.has(kCopybackDisable) && settings.copybackDisabled != 0 ? 1 : current;
}

/// Changes one controller. Returns false when the command is over.
bool changeSettings(unsigned char contNo, const Options& options, const _AFCONT& cont) {
    constexpr Speaker kSettingsHandler{kCtrlSource, "CliCmdExecAdpSetProp"};
    _MR_CTRL_INFO info{};
    if (!succeeded(SLGetCtrlInfo(contNo, &info), kSettingsHandler, "SLGetCtrlInfo error", onController(contNo)))
        return false;
    _MR_MFC_DEFAULTS defaults{};
    if (!succeeded(SLGetMFCDefaults(contNo, &defaults), kSettingsHandler, "SLGetMFCDefaults error",
                   onController(contNo)))
        return false;
    if (SLIsCopybackSupported(&cont.ctrlInfo) == 0 && options.has(kHddCopyback | kSsdCopyback | kPdFail)) {
        sayParameterNotSupported();
        return true;
    }
    const SL_CTRL_SETTING_INFO settings = makeSettings(options, info.properties);
    const bool copybackNow = (info.properties.onOff & kPropCopybackDisabled) == 0;
    if (options.has(kPdFailEnable) && copybackNow && settings.copybackDisabled == 0) {
        refuseBoth(contNo);
        return true;
    }
    if (SLSetCtrlProp(contNo, &settings) != kSlSuccess) {
        saySettingsFailed(kSettingsHandler, "SLSetCtrlProp error", contNo);
        return false;
    }
    if (SLSetFailPDOnSmartTer(contNo, pdFailValue(options, settings, defaults.failPdOnSmartError)) != kSlSuccess) {
        saySettingsFailed(kSettingsHandler, "SLSetFailPDOnSmartTer error", contNo);
        return false;
    }
    saySettingsChanged(contNo);
    return true;
}

} // namespace

constexpr OptionTable kCtrlSetPropOptions{.source = kCtrlSource,
                                          .badToken = BadToken::Before,
                                          .words = kSettingWords,
                                          .needsWord = true,
                                          .takesControllers = true};

constexpr OptionTable kCtrlAutoRebuildOptions{.source = kCtrlSource,
                                              .badToken = BadToken::Before,
                                              .words = kRebuildWords,
                                              .needsWord = true,
                                              .takesControllers = true};

int CliCmdExecAdpSetProp(int argc, char** argv, _AFCONT* conts, int contCount) {
    dumpLog(kCtrlSource, __LINE__, __func__);
    Options options;
    if (!readArguments(kCtrlSetPropOptions, argc, argv, contCount, options))
        return 1;
    if (options.has(kPdFailEnable) && options.has(kCopybackEnable)) {
        refuseBoth(options.ctrls[0]);
        return 1;
    }
    for (const unsigned char contNo : selectedControllers(options.ctrls, contCount))
        if (!changeSettings(contNo, options, conts[contNo]))
            return 1;
    return 0;
}

int CliCmdExecAdpRbldMode(int argc, char** argv, _AFCONT* /*conts*/, int contCount) {
    dumpLog(kCtrlSource, __LINE__, __func__);
    Options options;
    if (!readArguments(kCtrlAutoRebuildOptions, argc, argv, contCount, options))
        return 1;
    const bool disable = options.has(kRebuildDisable);
    for (const unsigned char contNo : selectedControllers(options.ctrls, contCount)) {
        if (disable && !confirmed(kAskDisableAutoRebuild))
            return 1;
        if (SLSetCtrlRbldMode(contNo, disable ? 1 : 0) != kSlSuccess) {
            saySettingsFailed({kCtrlSource, __func__}, "SLSetCtrlRbldMode error", contNo);
            return 1;
        }
        saySettingsChanged(contNo);
    }
    return 0;
}
