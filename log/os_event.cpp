#include "log/os_event.h"

#include "log/site_file.h"
#include "log/zebcli_log.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string_view>
#include <syslog.h>

std::array<ZEBSRV_EVT_INFO, kEventTableRoom> eventInfo{};
int evtInfoCount = 0;

namespace {

constexpr char kSource[] = "os_event";
constexpr std::size_t kLineSize = 512;
constexpr std::string_view kSeparators = ",\t\n";
constexpr std::size_t kDetailedMessageLimit = 137;

// Which field of a line is what, counted from 1.
constexpr std::size_t kFieldEventCode = 3;
constexpr std::size_t kFieldSuppress = 4;
constexpr std::size_t kFieldMessageIndex = 5;
constexpr std::size_t kFieldMessage = 10;

// A message id: its top two bits are the severity, its low 16 bits the index.
constexpr unsigned kSeverityShift = 30;
constexpr std::uint32_t kSeverityWarning = 2;
constexpr std::uint32_t kSeverityError = 3;
constexpr std::uint32_t kIndexMask = 0xFFFF;

struct MessageIdentifier {
    std::uint32_t id;
    const char* text;
};

constexpr auto kIdentifiers = std::to_array<MessageIdentifier>({
    {0xE0000001, "ZEB_ERR01: RAID Controller ERROR(CTRL)"},
    {0xE0000002, "ZEB_ERR02: LD/PD ERROR(LD/PD)1"},
    {0xE0000003, "ZEB_ERR03: LD/PD ERROR(LD/PD)2"},
    {0xE0000004, "ZEB_ERR04: LD/PD ERROR(LD/PD)3"},
    {0xE0000005, "ZEB_ERR05: RAID Controller ERROR(CACHE_BKUP)"},
    {0xE0000006, "ZEB_ERR06: RAID Controller ERROR(ENCL)1"},
    {0xE0000007, "ZEB_ERR07: RAID Controller ERROR(ENCL)2"},
    {0xE0000008, "ZEB_ERR08: RAID ERROR1"},
    {0xE0000009, "ZEB_ERR09: RAID ERROR2"},
    {0xE000000A, "ZEB_ERR10: RAID ERROR3"},
    {0xE000000B, "ZEB_ERR0T: ERROR Event for TEST"},
    {0xA000000C, "ZEB_WRN01: RAID Controller WARNING(CTRL)"},
    {0xA000000D, "ZEB_WRN02: LD/PD WARNING(LD/PD)"},
    {0xA000000E, "ZEB_WRN03: RAID Controller WARNING(CACHE_BKUP)"},
    {0xA000000F, "ZEB_WRN04: RAID Controller WARNING(ENCL)1"},
    {0xA0000010, "ZEB_WRN05: RAID Controller WARNING(ENCL)2"},
    {0xA0000011, "ZEB_WRN06: RAID WARNING1"},
    {0xA0000012, "ZEB_WRN07: RAID WARNING2"},
    {0xA0000013, "ZEB_WRN08: RAID WARNING3"},
    {0xA0000014, "ZEB_WRN0T: WARNING Event for TEST"},
    {0x60000015, "ZEB_INF01: RAID INFORMATION1"},
    {0x60000016, "ZEB_INF02: RAID INFORMATION2"},
    {0x60000017, "ZEB_INF03: RAID INFORMATION3"},
    {0x60000018, "ZEB_INF04: RAID INFORMATION4"},
    {0x60000019, "ZEB_INF0T: INFORMATION Event for TEST"},
});
static_assert(kIdentifiers.size() == 25);

/// Reads one line of at most 511 characters; what a longer one has more is read as the next line.
bool readLine(std::FILE* file, char (&line)[kLineSize]) {
    if (std::fgets(line, sizeof line, file) == nullptr)
        return false;
    if (std::strlen(line) == sizeof line - 1 && line[sizeof line - 2] != '\n') {
        const int next = std::fgetc(file);
        if (next != '\n' && next != EOF)
            std::ungetc(next, file);
    }
    return true;
}

/// A field of a line, counted from 1; empty when the line has fewer. Runs of separators count as one.
std::string_view fieldOf(std::string_view line, std::size_t number) {
    for (std::size_t field = 1;; ++field) {
        const std::size_t begin = std::min(line.find_first_not_of(kSeparators), line.size());
        line.remove_prefix(begin);
        const std::string_view text = line.substr(0, line.find_first_of(kSeparators));
        if (field == number || text.empty())
            return text;
        line.remove_prefix(text.size());
    }
}

/// The number at the start of a field, 0 for text that is none.
long fieldNumber(std::string_view field) {
    char text[32] = {};
    std::copy_n(field.begin(), std::min(field.size(), sizeof text - 1), text);
    return std::strtol(text, nullptr, 10);
}

/// Fills the record from a line; false when the line is no event.
bool parseEvent(std::string_view line, ZEBSRV_EVT_INFO& record) {
    std::string_view message = fieldOf(line, kFieldMessage);
    if (message.ends_with('\r'))
        message.remove_suffix(1);
    const long index = fieldNumber(fieldOf(line, kFieldMessageIndex));
    const long suppress = fieldNumber(fieldOf(line, kFieldSuppress));
    if (index < 1 || index > static_cast<long>(kIdentifiers.size()) || suppress < 0 || suppress > 1 || message.empty())
        return false;
    record = ZEBSRV_EVT_INFO{};
    record.eventCode = static_cast<std::uint32_t>(fieldNumber(fieldOf(line, kFieldEventCode)));
    record.messageIndex = static_cast<std::uint16_t>(index);
    record.suppress = static_cast<std::uint8_t>(suppress);
    std::copy_n(message.begin(), std::min(message.size(), sizeof record.message - 1), record.message);
    return true;
}

int priorityOf(std::uint32_t messageId) {
    switch (messageId >> kSeverityShift) {
    case kSeverityError:
        return LOG_DAEMON | LOG_ERR;
    case kSeverityWarning:
        return LOG_DAEMON | LOG_WARNING;
    default:
        return LOG_DAEMON | LOG_INFO;
    }
}

} // namespace

void ReadEventInfo() {
    evtInfoCount = 0;
    const SiteFile file = openSiteFile(kEventTablePath);
    if (file)
        readEventTable(file.get());
    else
        Utillogging(kSource, __LINE__, kTraceError, "func=%s: %s", __func__, "ZEBConfigFile open error");
}

void readEventTable(std::FILE* file) {
    evtInfoCount = 0;
    char line[kLineSize];
    while (evtInfoCount < static_cast<int>(eventInfo.size()) && readLine(file, line)) {
        if (line[0] == '#')
            continue;
        if (!parseEvent(line, eventInfo[static_cast<std::size_t>(evtInfoCount)])) {
            Utillogging(kSource, __LINE__, kTraceError, "func=%s: %s", "ReadEventInfo", "ZEBConfigFile format error");
            return;
        }
        ++evtInfoCount;
    }
}

int GetEvtLogMessageId(std::uint16_t eventCode, std::uint32_t* messageId, const ZEBSRV_EVT_INFO** record) {
    *messageId = 0;
    *record = nullptr;
    const auto last = eventInfo.begin() + evtInfoCount;
    const auto found = std::find_if(eventInfo.begin(), last,
                                    [&](const ZEBSRV_EVT_INFO& event) { return event.eventCode == eventCode; });
    if (found == last)
        return 0;
    *messageId = kIdentifiers[found->messageIndex - 1U].id;
    *record = &*found;
    return 1;
}

void GetEvtLogOutputime(char* buffer, std::size_t size) {
    std::memset(buffer, 0, size);
    const std::time_t now = std::time(nullptr);
    tm local{};
    if (localtime_r(&now, &local) != nullptr)
        std::snprintf(buffer, size, "%04d/%02d/%02d %02d:%02d:%02d", local.tm_year + 1900, local.tm_mon + 1,
                      local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec);
}

void RaidLogEvent(std::uint32_t messageId, const char* eventTime, const char* detailedCode, std::span<char> message,
                  const char* id) {
    const std::uint32_t index = messageId & kIndexMask;
    const char* identifier = index >= 1 && index <= kIdentifiers.size() ? kIdentifiers[index - 1].text : "";
    openlog("zebservice", LOG_PID | LOG_CONS, LOG_DAEMON);
    if (message.size() > kDetailedMessageLimit)
        message[kDetailedMessageLimit] = '\0';
    syslog(priorityOf(messageId), "%s EventTime: %s Detailedcode: %s, Detailedmsg: %s, ID: %s", identifier, eventTime,
           detailedCode, message.data(), id);
    closelog();
}
