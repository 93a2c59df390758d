// The cache backup unit of a controller.
#pragma once

#include "facts/object.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace facts {

struct CacheBackup {
    std::optional<Failure> error; ///< the first request of it that failed
    std::optional<Word> type;
    std::optional<std::string> serial;
    std::optional<unsigned> fullCapacityJoules; ///< by design
    std::optional<unsigned> remainingCapacityJoules;
    std::optional<unsigned> temperatureCelsius;
    std::optional<double> voltageVolts;
    std::optional<double> currentAmperes;
    std::optional<std::vector<std::string_view>> status; ///< the words of the bits that are set
    std::optional<std::uint32_t> statusCode; ///< only when a bit without a word is set
    std::optional<Word> autoLearn;
    std::optional<std::uint32_t> learnPeriodSeconds;
    std::optional<std::string> nextLearn;
};

} // namespace facts
