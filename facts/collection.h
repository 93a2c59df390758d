// Everything that was asked in one pass, and how that went.
#pragma once

#include "facts/controller.h"

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace facts {

struct Collection {
    std::string hostName;
    std::string hostTime; ///< UTC, "YYYY-MM-DDThh:mm:ssZ"
    std::optional<std::string> libraryVersion;
    std::vector<Controller> controllers;
    std::vector<RequestError> errors; ///< in the order in which they came
    unsigned requests = 0; ///< sent, initialisation and exit of the library not counted
    std::chrono::duration<double> duration{};

    bool complete() const { return errors.empty(); }
};

} // namespace facts
