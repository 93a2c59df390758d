// The words "start" and "stop" of the PD commands.
#pragma once

#include "main/zebcli_cmd_com/options.h"

#include <array>

enum StartStopBit : unsigned { kPdStart = 1, kPdStop = 2 };
inline constexpr auto kStartStopWords =
    std::to_array<OptionWord>({{"start", kPdStart, kPdStart | kPdStop}, {"stop", kPdStop, kPdStart | kPdStop}});
