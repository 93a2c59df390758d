// The option table of commands whose only option is the controller list.
#pragma once

#include "main/zebcli_cmd_com/options.h"

inline constexpr OptionTable controllerOnlyOptions(const char* source) {
    return {source, BadToken::Before, {}, true, false, false};
}

/// Reads the arguments of such a command. Returns false when the command is over; what is due has been said.
inline bool parseControllers(const char* source, int argc, char** argv, int contCount, Options& options) {
    const OptionTable table = controllerOnlyOptions(source);
    return parseOptions(table, argc, argv, contCount, options) && selectDefaultTargets(table, contCount, options);
}
