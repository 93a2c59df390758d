// The environment's settings.
#pragma once

#include <chrono>
#include <optional>
#include <string>

namespace zebsim {

/// What a run is told when the library is initialised. Empty texts: the variable is not set.
struct Settings {
    std::string scenario; ///< ZEBSIM_SCENARIO, a file
    std::string state; ///< ZEBSIM_STATE, a file
    std::string faults; ///< ZEBSIM_FAULTS, a JSON list
    std::optional<double> speed; ///< ZEBSIM_SPEED; 1 as on the wall

    /// Throws ScenarioError for a variable that holds no number where it must, ZEBSIM_LATENCY_US included.
    static Settings fromEnvironment();
};

/// How long each call shall take: ZEBSIM_LATENCY_US, at most an hour; 0 when it is not set. None when it holds no such
/// number.
std::optional<std::chrono::microseconds> wantedLatency();

} // namespace zebsim
