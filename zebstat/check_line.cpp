#include "zebstat/check_line.h"

#include "facts/text.h"

#include <algorithm>
#include <cctype>
#include <cstdio>

namespace zebstat {

namespace {

using namespace facts;

std::string worstText(const std::vector<Finding>& findings) {
    constexpr std::size_t kMost = 3;
    std::string text;
    for (std::size_t i = 0; i < std::min(findings.size(), kMost); ++i)
        text += (i == 0 ? "" : "; ") + findings[i].text;
    if (findings.size() > kMost)
        text += "; and " + std::to_string(findings.size() - kMost) + " more";
    return text;
}

std::optional<unsigned> hottestDrive(const Collection& collection) {
    std::optional<unsigned> hottest;
    for (const Controller& controller : collection.controllers)
        if (controller.physicalDrives)
            for (const PhysicalDrive& drive : *controller.physicalDrives)
                if (drive.info)
                    hottest = std::max(hottest, drive.info->temperatureCelsius);
    return hottest;
}

std::string performanceData(const Collection& collection, const std::vector<Finding>& findings,
                            const Thresholds& thresholds) {
    std::string text = "critical=" + std::to_string(countOf(findings, Severity::Critical)) +
                       " warning=" + std::to_string(countOf(findings, Severity::Warning));
    if (const auto hottest = hottestDrive(collection))
        text += " temperature=" + std::to_string(*hottest) + ";" + std::to_string(thresholds.warnTemperature) + ";" +
                std::to_string(thresholds.criticalTemperature);
    char duration[48];
    std::snprintf(duration, sizeof duration, " duration=%.3fs", collection.duration.count());
    return text + duration;
}

std::string line(std::string_view verdict, std::string_view text) {
    return "ZEB " + std::string(verdict) + " - " + printable(text, '|');
}

} // namespace

std::string checkLine(const Collection& collection, const std::vector<Finding>& findings,
                      const Thresholds& thresholds) {
    std::string verdict(healthOf(findings));
    std::ranges::transform(verdict, verdict.begin(),
                           [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return line(verdict, findings.empty() ? countsText(collection) : worstText(findings)) + " | " +
           performanceData(collection, findings, thresholds) + "\n";
}

std::string unknownLine(std::string_view reason) {
    return line("UNKNOWN", reason) + "\n";
}

} // namespace zebstat
