#include "zebstat/run.h"

#include "zebstat/check_line.h"
#include "zebstat/deadline.h"
#include "zebstat/json.h"
#include "zebstat/library.h"
#include "zebstat/metrics.h"
#include "zebstat/output.h"
#include "zebstat/page.h"
#include "zebstat/redact.h"
#include "zebstat/schema.h"

#include <sstream>

namespace zebstat {

namespace {

std::string timeoutSentence(Seconds limit) {
    std::ostringstream text;
    text << "the library did not answer within " << limit.count() << " s; look after it, or give a longer --timeout";
    return text.str();
}

/// Tells everything in one form, to the file that the options name or to standard output.
template <class Write>
int tellAll(const Options& options, Write write) {
    Collected collected = collectNow(options, facts::Scope::Everything);
    if (!collected.collection)
        return untold(options.command, collected.problem);
    facts::Collection& collection = *collected.collection;
    if (options.redact)
        redact(collection, findingsOf(collection));
    const auto findings = findingsOf(collection);
    const std::string text = write(collection, findings);
    if (!options.output.empty()) {
        if (const std::string problem = replaceFile(options.output, text); !problem.empty())
            return untold(options.command, problem);
    } else if (!writeOutput(text)) {
        return kUntold;
    }
    return statusOf(collection, findings);
}

} // namespace

int untold(Command command, const std::string& reason) {
    if (command == Command::kCheck)
        writeOutput(unknownLine(reason));
    else
        complain(reason);
    return kUntold;
}

Collected collectNow(const Options& options, facts::Scope scope, const std::function<void()>& lastWords) {
    const Deadline deadline(options.timeout, [&options, &lastWords] {
        if (lastWords)
            lastWords();
        untold(options.command, timeoutSentence(options.timeout));
    });
    Collected collected;
    collected.problem = deadline.problem();
    if (!collected.problem.empty())
        return collected;
    const Library library(options.controllers);
    collected.problem = library.problem();
    if (collected.problem.empty())
        collected.collection = facts::collect(library.controllers(), scope);
    return collected;
}

int runJson(const Options& options) {
    return tellAll(options, [&](const auto& collection, const auto& findings) {
        return jsonDocument(collection, findings, options.pretty);
    });
}

int runMetrics(const Options& options) {
    return tellAll(options, metricsText);
}

int runHtml(const Options& options) {
    return tellAll(options, htmlPage);
}

int runCheck(const Options& options) {
    const Collected collected = collectNow(options, facts::Scope::Everything);
    if (!collected.collection)
        return untold(options.command, collected.problem);
    const auto findings = findingsOf(*collected.collection, options.thresholds);
    if (!writeOutput(checkLine(*collected.collection, findings, options.thresholds)))
        return kUntold;
    if (findings.empty())
        return kDone;
    return countOf(findings, facts::Severity::Critical) != 0 ? kCritical : kWarning;
}

int runSchema() {
    return writeOutput(kSchema) ? kDone : kUntold;
}

} // namespace zebstat
