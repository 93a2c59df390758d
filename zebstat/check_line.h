// The line of a monitoring plugin.
#pragma once

#include "facts/findings.h"

#include <string>
#include <string_view>
#include <vector>

namespace zebstat {

/// "ZEB OK - TEXT | PERFDATA": counts when all is well, else the worst findings, three at most.
std::string checkLine(const facts::Collection& collection, const std::vector<facts::Finding>& findings,
                      const facts::Thresholds& thresholds);

/// "ZEB UNKNOWN - TEXT"
std::string unknownLine(std::string_view reason);

} // namespace zebstat
