#include "facts/spoken.h"

namespace facts {

std::string counted(std::uint64_t count, std::string_view what) {
    return std::to_string(count) + " " + std::string(what) + (count == 1 ? "" : "s");
}

std::string spokenDuration(std::uint32_t seconds) {
    constexpr std::uint32_t kMinute = 60;
    constexpr std::uint32_t kHour = 3600;
    if (seconds < kMinute)
        return "under a minute";
    const std::uint32_t minutes = (seconds + kMinute / 2) / kMinute;
    if (minutes < 90)
        return "about " + std::to_string(minutes) + " min";
    return "about " + std::to_string((seconds + kHour / 2) / kHour) + " h";
}

} // namespace facts
