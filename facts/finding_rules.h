// The rules by which facts become findings.
#pragma once

#include "facts/findings.h"

namespace facts {

void judgeController(const Controller& controller, const Thresholds& thresholds, std::vector<Finding>& findings);

/// The requests that failed: one finding for each object.
void judgeErrors(const std::vector<RequestError>& errors, std::vector<Finding>& findings);

} // namespace facts
