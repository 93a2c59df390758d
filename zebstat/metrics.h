// The facts in the text format of Prometheus.
#pragma once

#include "facts/collection.h"
#include "facts/findings.h"

#include <string>
#include <vector>

namespace zebstat {

/// All families with samples, in the text format 0.0.4.
std::string metricsText(const facts::Collection& collection, const std::vector<facts::Finding>& findings);

} // namespace zebstat
