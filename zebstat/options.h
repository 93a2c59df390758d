// What was asked for on the command line.
#pragma once

#include "facts/findings.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zebstat {

using Seconds = std::chrono::duration<double>;

enum class Command { kJson, kMetrics, kCheck, kWait, kWatch, kHtml, kSchema };

/// An LD of one controller, or of every chosen one.
struct LdTarget {
    std::optional<std::uint8_t> controller;
    std::uint8_t number = 0;
};

struct Options {
    Command command = Command::kJson;
    std::string controllers = "all"; ///< as typed: "0,2" or "all"
    Seconds timeout{60};
    bool pretty = false;
    bool redact = false;
    std::string output; ///< a file; empty: standard output
    facts::Thresholds thresholds;
    std::vector<std::string_view> work; ///< types of operations; none: any
    std::vector<LdTarget> logicalDrives; ///< none: any
    std::optional<Seconds> longest;
    Seconds interval{5};
    bool once = false;
    bool untilDone = false;
};

/// What reading the command line came to.
struct Reading {
    std::optional<Options> options; ///< there when the run goes on
    std::string answer; ///< the text of --help or --version
    std::string complaint; ///< names what is wrong, and the mend
    bool forCheck = false; ///< the command is `check`, as far as can be told
};

/// Reads the command line.
Reading readOptions(int argc, const char* const* argv);

} // namespace zebstat
