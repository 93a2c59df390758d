// Prints what a recording holds, request by request in words.
#pragma once

#include "recorder/recording.h"

#include <string>

namespace zebrec {

std::string showRecording(const Recording& recording);

/// "2 requests were left out: 05/07, 06/03 030F0100", from the codes of all of them; empty when there are none.
std::string leftOutLine(const std::vector<std::string>& codes, std::size_t count);

} // namespace zebrec
