#include "simulator/settings.h"

#include "simulator/scenario.h"

#include <charconv>
#include <cstdint>
#include <cstdlib>

namespace zebsim {

namespace {

std::string variable(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? "" : value;
}

/// The number that a whole text holds, if it is one from 0 to `highest`.
template <class Number, class... Format>
std::optional<Number> numberOf(const std::string& text, Number highest, Format... format) {
    Number value = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value, format...);
    const bool good = error == std::errc{} && stop == end && value >= 0 && value <= highest;
    return good ? std::optional<Number>(value) : std::nullopt;
}

} // namespace

Settings Settings::fromEnvironment() {
    Settings settings{variable("ZEBSIM_SCENARIO"), variable("ZEBSIM_STATE"), variable("ZEBSIM_FAULTS"), {}};
    if (!wantedLatency())
        throw ScenarioError("ZEBSIM_LATENCY_US", "give a whole number of microseconds, at most 3600000000");
    const std::string speed = variable("ZEBSIM_SPEED");
    if (speed.empty())
        return settings;
    constexpr double kFastest = 1e9;
    settings.speed = numberOf(speed, kFastest, std::chars_format::fixed);
    if (!settings.speed)
        throw ScenarioError("ZEBSIM_SPEED", "give a number from 0 to 1000000000");
    return settings;
}

std::optional<std::chrono::microseconds> wantedLatency() {
    constexpr std::int64_t kHour = 3600 * std::int64_t{1000000};
    const std::string text = variable("ZEBSIM_LATENCY_US");
    const auto number = text.empty() ? std::optional<std::int64_t>(0) : numberOf(text, kHour);
    return number ? std::optional(std::chrono::microseconds(*number)) : std::nullopt;
}

} // namespace zebsim
