// The exit statuses, the same for all commands.
#pragma once

#include "facts/collection.h"
#include "facts/findings.h"

#include <vector>

namespace zebstat {

enum ExitStatus {
    kDone = 0, ///< done, and nothing needs attention
    kWarning = 1,
    kCritical = 2, ///< of wait: the work ended, and its object is not well
    kUntold = 3, ///< it could not be told: no library, no controller, no right, bad arguments, time-out, lost output
    kPartly = 4, ///< some request failed
    kTimeUp = 5, ///< of wait
};

/// The status that the facts and what was found in them lead to.
ExitStatus statusOf(const facts::Collection& collection, const std::vector<facts::Finding>& findings);

} // namespace zebstat
