#include "zebstat/exit_status.h"

namespace zebstat {

ExitStatus statusOf(const facts::Collection& collection, const std::vector<facts::Finding>& findings) {
    if (facts::countOf(findings, facts::Severity::Critical) != 0)
        return kCritical;
    if (!collection.complete())
        return kPartly;
    return findings.empty() ? kDone : kWarning;
}

} // namespace zebstat
