// The text of the command log's lines.
#pragma once

#include "log/raidctl.h"

#include <array>
#include <cstddef>
#include <functional>
#include <span>

/// One line without its newline: 199 characters, padded with spaces.
using LogLine = std::array<char, kLogTextSize>;

/// The line on which the next record goes.
LogLine markerLine();

/// A record with the current local time and this process's id. A message that does not fit is cut at the end of the
/// line; control characters become spaces. Null names and messages, and line 0, are left out.
LogLine recordLine(const char* sourceFile, int line, const char* message);

/// Hands the lines of a hex dump to the sink, 16 bytes a line, equal lines in a row folded into one remark. Stops and
/// returns false at the first line that the sink refuses.
bool dumpLines(std::span<const unsigned char> data, const std::function<bool(const LogLine&)>& sink);
