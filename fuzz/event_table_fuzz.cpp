// The reader of the event table over arbitrary bytes, then every event of it to the system log.
#include "fuzz/support.h"
#include "log/os_event.h"
#include "log/zebcli_log.h"

#include <array>
#include <cstring>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const fuzz::File file = fuzz::openBytes({data, size});
    readEventTable(file.get());
    fuzz::require(evtInfoCount >= 0 && evtInfoCount <= static_cast<int>(eventInfo.size()), "the table holds its count");
    for (const ZEBSRV_EVT_INFO& event : std::span(eventInfo).first(static_cast<std::size_t>(evtInfoCount))) {
        fuzz::require(event.messageIndex >= 1 && event.messageIndex <= 25 && event.suppress <= 1,
                      "an accepted event has a message and a flag");
        const std::size_t length = strnlen(event.message, sizeof event.message);
        fuzz::require(length > 0 && length < sizeof event.message, "an accepted event has a text with an end");

        std::uint32_t messageId = 0;
        const ZEBSRV_EVT_INFO* found = nullptr;
        const auto eventCode = static_cast<std::uint16_t>(event.eventCode);
        const bool known = GetEvtLogMessageId(eventCode, &messageId, &found) == 1;
        fuzz::require(known || eventCode != event.eventCode, "an event in the table is found by its code");
        if (!known)
            continue;
        std::array<char, 512> message;
        expandFormat(found->message, message.data(), message.size());
        std::array<char, 64> time;
        GetEvtLogOutputime(time.data(), time.size());
        RaidLogEvent(messageId, time.data(), "FFFFFFFF", message, "060009");
        fuzz::require(std::strlen(message.data()) <= 137, "the system log gets at most 137 characters of a text");
    }
    return 0;
}
