// What the commands share: one collection under a deadline, and how a run that could tell nothing says so.
#pragma once

#include "facts/collect.h"
#include "zebstat/exit_status.h"
#include "zebstat/options.h"

#include <functional>
#include <optional>
#include <string>

namespace zebstat {

/// Says why nothing could be told: on standard error, `check` in its line. Returns kUntold.
int untold(Command command, const std::string& reason);

/// The facts of the chosen controllers, from a library that is opened and closed for them.
struct Collected {
    std::optional<facts::Collection> collection;
    std::string problem; ///< why there is none
};

/// Collects. A library that takes longer than the options allow ends the process; before it does, the last words are
/// called.
Collected collectNow(const Options& options, facts::Scope scope, const std::function<void()>& lastWords = {});

int runJson(const Options& options);
int runMetrics(const Options& options);
int runCheck(const Options& options);
int runWait(const Options& options);
int runWatch(const Options& options);
int runHtml(const Options& options);
int runSchema();

} // namespace zebstat
