#include "facts/findings.h"

#include "facts/finding_rules.h"
#include "facts/spoken.h"

#include <algorithm>
#include <array>

namespace facts {

namespace {

// The worst first; the place in this list orders the findings of a severity.
constexpr std::array<std::string_view, 22> kRanks{
    "logical_drive_offline",
    "logical_drive_degraded",
    "physical_drive_failed",
    "physical_drive_offline",
    "memory_uncorrectable_errors",
    "sensor_critical",
    "cache_backup_failed",
    "controller_unreadable",
    "logical_drive_partially_degraded",
    "logical_drive_write_through",
    "physical_drive_predicted_failure",
    "physical_drive_unconfigured_bad",
    "physical_drive_missing",
    "physical_drive_foreign",
    "physical_drive_media_errors",
    "physical_drive_hot",
    "cache_backup_weak",
    "sensor_noncritical",
    "enclosure_unreadable",
    "unreadable",
    "memory_correctable_errors",
    "no_spare",
};

std::size_t rankOf(const Finding& finding) {
    return static_cast<std::size_t>(std::ranges::find(kRanks, finding.code) - kRanks.begin());
}

} // namespace

std::string_view severityWord(Severity severity) {
    return severity == Severity::Critical ? "critical" : "warning";
}

std::vector<Finding> findingsOf(const Collection& collection, const Thresholds& thresholds) {
    std::vector<Finding> findings;
    for (const Controller& controller : collection.controllers)
        judgeController(controller, thresholds, findings);
    judgeErrors(collection.errors, findings);
    std::ranges::stable_sort(findings, [](const Finding& a, const Finding& b) {
        if (a.severity != b.severity)
            return a.severity > b.severity;
        return rankOf(a) < rankOf(b);
    });
    return findings;
}

std::size_t countOf(const std::vector<Finding>& findings, Severity severity) {
    return static_cast<std::size_t>(std::ranges::count(findings, severity, &Finding::severity));
}

std::string_view healthOf(const std::vector<Finding>& findings) {
    return findings.empty() ? "ok" : severityWord(findings.front().severity);
}

std::string countsText(const Collection& collection) {
    std::size_t drives = 0;
    std::size_t lds = 0;
    for (const Controller& controller : collection.controllers) {
        drives += controller.physicalDrives ? controller.physicalDrives->size() : 0;
        lds += controller.logicalDrives ? controller.logicalDrives->size() : 0;
    }
    return counted(collection.controllers.size(), "controller") + ", " + counted(drives, "physical drive") + ", " +
           counted(lds, "logical drive");
}

} // namespace facts
