// RAID events in the operating system's log, and the site's table that says how each event is written there.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <span>

inline constexpr char kEventTablePath[] = "/opt/quorvel/zeb/zeb_config.csv";
inline constexpr std::size_t kEventTableRoom = 330;
inline constexpr std::size_t kEventMessageSize = 256;

/// One configured event.
struct ZEBSRV_EVT_INFO {
    std::uint32_t eventCode;
    std::uint16_t messageIndex; ///< 1 to 25
    std::uint8_t suppress; ///< 1: the event is not written
    char message[kEventMessageSize];
};

/// The events read from the table, in its order; evtInfoCount of them are filled.
extern std::array<ZEBSRV_EVT_INFO, kEventTableRoom> eventInfo;
extern int evtInfoCount;

/// Reads the event table of the site. Without the file there are no events; that is traced.
void ReadEventInfo();

/// Reads an event table. Reading ends at the first line that is no event, a blank one included, which is traced; the
/// events before it stay.
void readEventTable(std::FILE* file);

/// The first configured event with that code. Returns 1 with its message id and record, or 0 with 0 and null.
int GetEvtLogMessageId(std::uint16_t eventCode, std::uint32_t* messageId, const ZEBSRV_EVT_INFO** record);

/// Writes the current local time as "YYYY/MM/DD hh:mm:ss".
void GetEvtLogOutputime(char* buffer, std::size_t size);

/// Writes one event to the system log. The severity is that of the message id. The message is cut to 137 characters in
/// place.
void RaidLogEvent(std::uint32_t messageId, const char* eventTime, const char* detailedCode, std::span<char> message,
                  const char* id);
