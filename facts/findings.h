// What of the facts needs attention.
#pragma once

#include "facts/collection.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace facts {

enum class Severity { Warning, Critical };

/// "warning" or "critical".
std::string_view severityWord(Severity severity);

/// From where on something counts. Temperatures are degrees Celsius.
struct Thresholds {
    int warnTemperature = 55; ///< a hotter drive is a warning
    int criticalTemperature = 65; ///< a hotter drive is critical
    std::optional<Severity> noSpare; ///< what a redundant group without a spare is; nothing: no finding
};

struct Finding {
    Severity severity = Severity::Warning;
    std::string_view code; ///< a word that programs look for
    ObjectRef about;
    std::string text; ///< a sentence that a person can act on
};

/// All findings, the worst first: critical ones before warnings, and among equals what loses data before what may. An
/// object has at most one finding of a code.
std::vector<Finding> findingsOf(const Collection& collection, const Thresholds& thresholds = {});

/// How many there are of a severity.
std::size_t countOf(const std::vector<Finding>& findings, Severity severity);

/// "ok", or the worst severity.
std::string_view healthOf(const std::vector<Finding>& findings);

/// How much there is: "1 controller, 24 physical drives, 5 logical drives".
std::string countsText(const Collection& collection);

} // namespace facts
