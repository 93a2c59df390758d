// Regular expressions (ECMAScript), kept in one place: they are dear to compile and, unoptimised, to run.
#pragma once

#include <string>
#include <vector>

namespace zebtest {

/// Replaces what differs from run to run: every match of the pattern.
struct Mask {
    std::string pattern;
    std::string replacement;
};
std::string masked(std::string text, const std::vector<Mask>& masks);

/// What has matched, then its groups.
using Match = std::vector<std::string>;
/// Every match in a text, in order.
std::vector<Match> matchesIn(const std::string& text, const std::string& pattern);

} // namespace zebtest
