// The words "start" and "stop" of the commands that do either.
#pragma once

#include "main/zebcli_cmd_com/input/options.h"

#include <array>

enum StartStopBit : unsigned { kStart = 1, kStop = 2 };
inline constexpr auto kStartStopWords = std::to_array<OptionWord>({
    {.word = "start", .bit = kStart, .refusedAfter = kStart | kStop},
    {.word = "stop", .bit = kStop, .refusedAfter = kStart | kStop},
});
