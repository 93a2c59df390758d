// What the PD commands share: how they are told their targets.
#pragma once

#include "main/zebcli_cmd_com/base/source.h"
#include "main/zebcli_cmd_com/input/options.h"
#include "main/zebcli_cmd_com/model/snapshot.h"

#include <span>

/// The option table of a PD command: controllers, PDs and its own words.
inline constexpr OptionTable pdOptions(std::span<const OptionWord> words = {}) {
    return {
        .source = kPdSource, .badToken = BadToken::Before, .words = words, .takesControllers = true, .takesPds = true};
}

/// The drives of a PD list, in its order.
std::span<const unsigned char> listedDrives(const PdList& pds);

/// Whether every listed drive exists on every selected controller; the first that does not is said.
bool allDrivesExist(const Options& options, int contCount, const _AFCONT* conts);

/// Reads the arguments of a command that changes drives. The test says whether all that is required was given; when it
/// was not, the last argument is named. Returns false when the command is over; what is due has been said, refusals
/// under the line of the handler.
bool parsePdCommand(const OptionTable& table, bool (*isComplete)(const Options&), int argc, char** argv, int contCount,
                    const _AFCONT* conts, Options& options, int line = __builtin_LINE());
