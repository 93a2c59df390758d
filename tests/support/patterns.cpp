#include "tests/support/patterns.h"

#include <map>
#include <regex>

namespace zebtest {
namespace {

const std::regex& compiled(const std::string& pattern) {
    static std::map<std::string, std::regex> known;
    const auto found = known.find(pattern);
    return found != known.end() ? found->second : known.emplace(pattern, pattern).first->second;
}

} // namespace

std::string masked(std::string text, const std::vector<Mask>& masks) {
    for (const Mask& mask : masks)
        text = std::regex_replace(text, compiled(mask.pattern), mask.replacement);
    return text;
}

std::vector<Match> matchesIn(const std::string& text, const std::string& pattern) {
    std::vector<Match> matches;
    for (std::sregex_iterator match(text.begin(), text.end(), compiled(pattern)), end; match != end; ++match)
        matches.emplace_back(match->begin(), match->end());
    return matches;
}

} // namespace zebtest
