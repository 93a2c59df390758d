// Patrol read: its mode, interval and next start, and starting and stopping it.
#include "commands/handlers.h"

#include "commands/configuration_change.h"
#include "commands/zebcli_cmd_ctrl/setting_results.h"
#include "log/raidctl.h"
#include "log/zebcli_log.h"
#include "main/zebcli_cmd_com/base/source.h"
#include "main/zebcli_cmd_com/base/trace.h"
#include "main/zebcli_cmd_com/input/options.h"
#include "main/zebcli_cmd_com/input/prompts.h"
#include "main/zebcli_cmd_com/text/calendar.h"
#include "storelib/common/StoreLib/controller.h"
#include "storelib/records/status.h"
#include "storelib/status_text.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <utility>

namespace {

constexpr Speaker kPatrolReadHandler{kCtrlSource, "CliCmdExecAdpPR"};

enum PatrolBit : unsigned {
    kDisable = 0x001,
    kEnableAuto = 0x002,
    kEnableManual = 0x004,
    kHour = 0x008,
    kDay = 0x010,
    kWeek = 0x020,
    kMonth = 0x040,
    kSetStartTime = 0x080,
    kStartNow = 0x100,
    kStopNow = 0x200,
};
constexpr unsigned kModes = kDisable | kEnableAuto | kEnableManual;
constexpr unsigned kIntervals = kHour | kDay | kWeek | kMonth;
constexpr unsigned kSchedule = kIntervals | kSetStartTime; // only of use in automatic mode
constexpr unsigned kUnscheduled = kDisable | kEnableManual;
constexpr unsigned kRuns = kStartNow | kStopNow;

/// Modes of the wire record; any other is neither automatic nor disabled.
enum PatrolMode : std::uint8_t { kAutomatic = 0, kManual = 1, kDisabled = 2 };

/// The number in a text of digits.
unsigned short numberOf(std::string_view digits) {
    unsigned number = 0;
    for (const char digit : digits)
        number = number * 10 + static_cast<unsigned>(digit - '0');
    return static_cast<unsigned short>(number);
}

/// The controller time that "mmddyyyyhh" names; nothing when that is no full hour of the years 2000 to 2135, the last
/// that its seconds can count.
std::optional<std::uint32_t> readStartTime(std::string_view text) {
    constexpr std::size_t kLength = 10;
    constexpr unsigned short kFirstYear = 2000;
    constexpr unsigned short kLastYear = 2135;
    if (text.size() != kLength || text.find_first_not_of("0123456789") != std::string_view::npos)
        return std::nullopt;
    const unsigned short month = numberOf(text.substr(0, 2));
    const unsigned short day = numberOf(text.substr(2, 2));
    const unsigned short year = numberOf(text.substr(4, 4));
    const unsigned short hour = numberOf(text.substr(8, 2));
    // No month but the twelve has a day.
    if (year < kFirstYear || year > kLastYear || day < 1 || day > GetDaysOfMonth(year, month) || hour > 23)
        return std::nullopt;
    return DateToSecond(year, month, day, hour);
}

bool isStartTime(const char* text) {
    return readStartTime(text).has_value();
}

constexpr auto kWords = std::to_array<OptionWord>({
    {.word = "dsbl", .bit = kDisable, .refusedAfter = kModes | kSchedule | kStartNow},
    {.word = "enblauto", .bit = kEnableAuto, .refusedAfter = kModes},
    {.word = "enblman", .bit = kEnableManual, .refusedAfter = kModes | kSchedule},
    {.word = "hour", .bit = kHour, .refusedAfter = kIntervals | kUnscheduled},
    {.word = "day", .bit = kDay, .refusedAfter = kIntervals | kUnscheduled},
    {.word = "week", .bit = kWeek, .refusedAfter = kIntervals | kUnscheduled},
    {.word = "month", .bit = kMonth, .refusedAfter = kIntervals | kUnscheduled},
    {.word = "setstarttime",
     .bit = kSetStartTime,
     .refusedAfter = kSetStartTime | kUnscheduled,
     .acceptsValue = isStartTime},
    {.word = "start", .bit = kStartNow, .refusedAfter = kRuns | kDisable},
    {.word = "stop", .bit = kStopNow, .refusedAfter = kRuns},
});

/// The value of the given one of these words, if any was given.
std::optional<std::uint32_t> valueGiven(const Options& options, unsigned words) {
    static constexpr auto kValues = std::to_array<std::pair<unsigned, std::uint32_t>>({
        {kDisable, kDisabled},
        {kEnableAuto, kAutomatic},
        {kEnableManual, kManual},
        {kHour, 3600},
        {kDay, 86400},
        {kWeek, 604800},
        {kMonth, 2592000},
    });
    for (const auto& [word, value] : kValues)
        if (options.has(word & words))
            return value;
    return std::nullopt;
}

/// What was asked for.
struct Wanted {
    explicit Wanted(const Options& given)
        : mode(valueGiven(given, kModes)), interval(valueGiven(given, kIntervals)), start(given.has(kStartNow)),
          stop(given.has(kStopNow)) {
        if (given.has(kSetStartTime))
            nextStart = readStartTime(given.value);
    }

    std::uint32_t resultingMode(const _MR_PR_PROPERTIES& current) const { return mode.value_or(current.mode); }
    bool endsAutomatic(const _MR_PR_PROPERTIES& current) const {
        return current.mode == kAutomatic && resultingMode(current) != kAutomatic;
    }
    bool changesSettings() const { return mode || interval || nextStart; }

    std::optional<std::uint32_t> mode;
    std::optional<std::uint32_t> interval; ///< seconds
    std::optional<std::uint32_t> nextStart; ///< seconds since 2000-01-01
    bool start;
    bool stop;
};

/// One controller, and its settings as they were read.
struct Patrol {
    unsigned char contNo;
    _MR_PR_PROPERTIES properties;
};

/// The controllers that are to be changed.
class Patrols {
  public:
    void add(const Patrol& patrol) { patrol_[count_++] = patrol; }
    std::span<Patrol> list() { return std::span(patrol_).first(count_); }

  private:
    std::array<Patrol, kMaxControllers> patrol_{};
    std::size_t count_ = 0;
};

bool readPatrol(Patrol& patrol) {
    if (SLGetPatrolReadProp(patrol.contNo, &patrol.properties) == kSlSuccess)
        return true;
    saySettingsFailed(kPatrolReadHandler, "SLGetPatrolReadProp error", patrol.contNo);
    return false;
}

/// Whether the start time lies ahead on the controller's own clock; what is due is said when it does not.
bool liesAhead(std::uint32_t startTime, unsigned char contNo) {
    unsigned int now = 0;
    if (SLGetTime(contNo, &now) != kSlSuccess) {
        saySettingsFailed(kPatrolReadHandler, "SLGetTime error", contNo);
        return false;
    }
    if (startTime > now)
        return true;
    CliLogging(kPrintAndLog, kCtrlSource, __LINE__,
               "Error - Controller[%d] The specified start time has already passed.", contNo);
    return false;
}

/// Collects the controllers that can be changed as asked for. One whose mode does not go with it is left out, which is
/// said. Returns false when the command is over.
bool checkControllers(const Wanted& wanted, std::span<const unsigned char> controllers, Patrols& patrols) {
    for (const unsigned char contNo : controllers) {
        Patrol patrol{contNo, {}};
        if (!readPatrol(patrol))
            return false;
        const std::uint32_t mode = wanted.resultingMode(patrol.properties);
        if ((wanted.interval || wanted.nextStart) && mode != kAutomatic) {
            sayParameterNotSupported();
            continue;
        }
        if (wanted.start && mode == kDisabled) {
            CliLogging(kPrintAndLog, kCtrlSource, __LINE__, "Error - Controller[%d] Patrol Read is disabled.", contNo);
            continue;
        }
        if (wanted.nextStart && !liesAhead(*wanted.nextStart, contNo))
            return false;
        patrols.add(patrol);
    }
    return true;
}

/// Asks for each controller whose automatic patrol read ends; the controller is named where several were selected.
/// Returns false at the first No.
bool mayEndAutomatic(const Wanted& wanted, std::span<const Patrol> patrols, const _AFCONT* conts, bool several) {
    return std::all_of(patrols.begin(), patrols.end(), [&](const Patrol& patrol) {
        if (!wanted.endsAutomatic(patrol.properties))
            return true;
        if (several)
            sayController(kCtrlSource, {patrol.contNo, conts});
        return confirmed(kAskDisablePatrolRead);
    });
}

/// The last look behind the questions: reads all settings anew. Returns false, which has been said, when a mode is no
/// longer the one that was asked about.
bool modesAreAsSeen(std::span<Patrol> patrols) {
    for (Patrol& patrol : patrols) {
        const std::uint8_t seen = patrol.properties.mode;
        if (!readPatrol(patrol))
            return false;
        if (patrol.properties.mode != seen) {
            sayConfigurationChanged(kCtrlSource, patrol.contNo);
            return false;
        }
    }
    return true;
}

/// Starting or stopping a patrol read, and how its outcome is said.
struct Run {
    std::uint32_t (*send)(unsigned char contNo);
    const char* error;
    const char* verb;
    const char* done;
    const char* advice;
};
constexpr Run kStopRun{SLStopPatrolReadOpe, "SLStopPatrolReadOpe error", "stop", "stopped",
                       "Please confirm whether to have already ended."};
constexpr Run kStartRun{SLStartPatrolReadOpe, "SLStartPatrolReadOpe error", "start", "started",
                        "Please confirm PD(Physical Drive) state."};

void runNow(const Run& run, unsigned char contNo) {
    const std::uint32_t status = run.send(contNo);
    if (succeeded(status, kPatrolReadHandler, run.error, onController(contNo)))
        CliLogging(kPrint, kCtrlSource, __LINE__, "Information - Controller[%d] Patrol Read has been %s.", contNo,
                   run.done);
    else
        CliLogging(kPrintAndLog, kCtrlSource, __LINE__,
                   "Error - Controller[%d] Failed to %s Patrol Read.\n%s (0x%X)\n%s", contNo, run.verb,
                   SLStrError(status), status, run.advice);
}

/// Writes the record as it was read, but for what was asked for.
bool writeSettings(const Wanted& wanted, const Patrol& patrol) {
    _MR_PR_PROPERTIES changed = patrol.properties;
    changed.mode = static_cast<std::uint8_t>(wanted.resultingMode(changed));
    changed.executionFrequency = wanted.interval.value_or(changed.executionFrequency);
    changed.nextExecution = wanted.nextStart.value_or(changed.nextExecution);
    if (SLSetPatrolReadProp(patrol.contNo, &patrol.properties, &changed) != kSlSuccess) {
        saySettingsFailed(kPatrolReadHandler, "SLSetPatrolReadProp error", patrol.contNo);
        return false;
    }
    saySettingsChanged(patrol.contNo);
    return true;
}

/// Changes one controller. Returns false when the command is over.
bool change(const Wanted& wanted, const Patrol& patrol) {
    if (wanted.stop)
        runNow(kStopRun, patrol.contNo);
    if (wanted.changesSettings() && !writeSettings(wanted, patrol))
        return false;
    if (wanted.start)
        runNow(kStartRun, patrol.contNo);
    return true;
}

} // namespace

constexpr OptionTable kPatrolReadOptions{
    .source = kCtrlSource, .badToken = BadToken::Before, .words = kWords, .needsWord = true, .takesControllers = true};

int CliCmdExecAdpPR(int argc, char** argv, _AFCONT* conts, int contCount) {
    dumpLog(kCtrlSource, __LINE__, __func__);
    Options options;
    if (!readArguments(kPatrolReadOptions, argc, argv, contCount, options))
        return 1;
    const Wanted wanted(options);
    const auto controllers = selectedControllers(options.ctrls, contCount);
    Patrols patrols;
    if (!checkControllers(wanted, controllers, patrols) ||
        !mayEndAutomatic(wanted, patrols.list(), conts, controllers.size() > 1))
        return 1;
    const bool asked = std::ranges::any_of(
        patrols.list(), [&](const Patrol& patrol) { return wanted.endsAutomatic(patrol.properties); });
    if (asked && !modesAreAsSeen(patrols.list()))
        return 1;
    const bool changed =
        std::ranges::all_of(patrols.list(), [&](const Patrol& patrol) { return change(wanted, patrol); });
    return changed ? 0 : 1;
}
