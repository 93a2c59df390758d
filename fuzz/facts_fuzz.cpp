// The facts, and every form in which they are told, over a library whose answers the input changes.
//
// Input: a byte that says how many controllers there are and in which form they are told, the changes (see library.h).
// What is told must be whole: JSON that parses, metrics without two samples of one name and labels, one line for
// monitoring, a page whose elements all end.
#include "facts/collect.h"
#include "facts/findings.h"
#include "fuzz/library.h"
#include "fuzz/support.h"
#include "zebstat/check_line.h"
#include "zebstat/json.h"
#include "zebstat/metrics.h"
#include "zebstat/page.h"
#include "zebstat/redact.h"
#include "zebstat/work.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

enum Form { kDocument, kRedacted, kMetrics, kLineAndWork, kPage, kForms };

void requireJson(const facts::Collection& collection, const std::vector<facts::Finding>& findings) {
    fuzz::require(nlohmann::json::accept(zebstat::jsonDocument(collection, findings, false)), "the document is JSON");
}

void requireLine(const std::string& line) {
    fuzz::require(std::ranges::count(line, '\n') == 1 && std::ranges::count(line, '|') == 1, "one line with its data");
}

void requireWholeMetrics(const std::string& text) {
    std::set<std::string> samples;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        if (!line.starts_with('#'))
            fuzz::require(samples.insert(line.substr(0, line.rfind(' '))).second, "each sample stands once");
}

/// Every element is closed by its own end: nothing that was told has become markup.
void requireWholePage(const std::string& page) {
    std::vector<std::string> open;
    for (std::size_t at = page.find('<'); at != std::string::npos; at = page.find('<', at + 1)) {
        const std::string tag = page.substr(at + 1, page.find('>', at) - at - 1);
        const bool isEnd = tag.starts_with('/');
        const std::string name = tag.substr(isEnd ? 1 : 0, tag.find(' ') - (isEnd ? 1 : 0));
        if (isEnd) {
            fuzz::require(!open.empty() && open.back() == name, "each element has its own end");
            open.pop_back();
        } else if (!tag.ends_with('/') && !tag.starts_with('!')) {
            open.push_back(name);
        }
    }
    fuzz::require(open.empty(), "every element ends");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::Input input(data, size);
    const unsigned first = input.byte();
    const unsigned controllers = 1 + first % kMaxControllers;
    fuzz::useLibrary(controllers, input.rest());
    constexpr std::uint8_t kNumbers[] = {0, 1, 2, 3};
    facts::Collection collection = facts::collect(std::span(kNumbers).first(controllers));
    facts::Thresholds thresholds;
    thresholds.noSpare = facts::Severity::Warning;
    const auto findings = facts::findingsOf(collection, thresholds);
    switch (first / kMaxControllers % kForms) {
    case kDocument:
        requireJson(collection, findings);
        break;
    case kRedacted:
        zebstat::redact(collection, findings);
        requireJson(collection, facts::findingsOf(collection, thresholds));
        break;
    case kMetrics:
        requireWholeMetrics(zebstat::metricsText(collection, findings));
        break;
    case kPage:
        requireWholePage(zebstat::htmlPage(collection, findings));
        break;
    default:
        requireLine(zebstat::checkLine(collection, findings, thresholds));
        for (const zebstat::Work& work : zebstat::workOf(collection))
            zebstat::ailmentOf(collection, work.object);
    }
    return 0;
}
