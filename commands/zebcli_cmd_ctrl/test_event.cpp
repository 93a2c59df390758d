// Test events in the operating system's log.
#include "commands/handlers.h"

#include "log/os_event.h"
#include "log/raidctl.h"
#include "log/zebcli_log.h"
#include "main/zebcli_cmd_com/base/source.h"
#include "main/zebcli_cmd_com/base/string_shims.h"
#include "main/zebcli_cmd_com/base/trace.h"
#include "main/zebcli_cmd_com/input/options.h"

#include <array>

namespace {

enum SeverityBit : unsigned { kInformation = 1, kWarning = 2, kError = 4 };
constexpr unsigned kSeverities = kInformation | kWarning | kError;
constexpr auto kSeverityWords = std::to_array<OptionWord>({
    {.word = "inf", .bit = kInformation, .refusedAfter = kSeverities},
    {.word = "wrn", .bit = kWarning, .refusedAfter = kSeverities},
    {.word = "err", .bit = kError, .refusedAfter = kSeverities},
});

// The rows of the event table that test events stand in.
constexpr std::uint16_t kErrorEvent = 60009;
constexpr std::uint16_t kWarningEvent = 60010;
constexpr std::uint16_t kInformationEvent = 60011;

constexpr char kDetailedCode[] = "FFFFFFFF";

std::uint16_t testEventCode(const Options& options) {
    if (options.has(kError))
        return kErrorEvent;
    return options.has(kWarning) ? kWarningEvent : kInformationEvent;
}

void writeTestEvent(std::uint16_t eventCode, std::uint32_t messageId, const ZEBSRV_EVT_INFO& event) {
    char time[64];
    GetEvtLogOutputime(time, sizeof time);
    // The site's text is a format without arguments, so that "%%" in it prints as "%".
    char message[512];
    expandFormat(event.message, message, sizeof message);
    char id[8];
    wsprintf(id, "%06d", eventCode);
    RaidLogEvent(messageId, time, kDetailedCode, message, id);
}

} // namespace

constexpr OptionTable kTestEventOptions{
    .source = kCtrlSource, .badToken = BadToken::Before, .words = kSeverityWords, .needsWord = true};

int CliCmdExecTSTEVT(int argc, char** argv, _AFCONT* /*conts*/, int contCount) {
    dumpLog(kCtrlSource, __LINE__, __func__);
    Options options;
    if (!readArguments(kTestEventOptions, argc, argv, contCount, options))
        return 1;
    const std::uint16_t eventCode = testEventCode(options);
    std::uint32_t messageId = 0;
    const ZEBSRV_EVT_INFO* event = nullptr;
    ReadEventInfo();
    if (GetEvtLogMessageId(eventCode, &messageId, &event) == 0) {
        traceFailure({kCtrlSource, __func__}, "pEvt_Info is NULL", {std::nullopt, "eventCode", eventCode});
        return 1;
    }
    if (event->suppress != 0)
        return event->suppress;
    writeTestEvent(eventCode, messageId, *event);
    CliLogging(kPrint, kCtrlSource, __LINE__,
               "Information - Test Event has been registered as OS event log.\n"
               "Please check it with OS event viewer.");
    return Utillogging(kCtrlSource, __LINE__, kTracePlain, "func=%s: %s, eventCode=%u", __func__,
                       "TraidLogEvent finish", eventCode);
}
