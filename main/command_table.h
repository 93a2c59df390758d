// The commands: one row each.
#pragma once

#include "main/zebcli_cmd_com/input/options.h"
#include "main/zebcli_cmd_com/model/snapshot.h"

#include <span>

/// A command's handler. It gets the arguments as they were typed, and the snapshot, which is null for a command that
/// needs none. What it returns is ignored.
using CommandHandler = int (*)(int argc, char** argv, _AFCONT* conts, int contCount);

struct CommandRow {
    const char* word; ///< lower case, without the leading "-"
    CommandHandler handler;
    unsigned char needsSnapshot;
    const char* source; ///< the unit under which its records stand
    const OptionTable* options = nullptr; ///< null for a command without options, or with a parser of its own
    int usagePlace = 0; ///< of its lines in the usage text, from 1
    const char* usage = nullptr; ///< its lines there, null for one that is not shown
};

/// All rows, in the order in which they are searched.
std::span<const CommandRow> commandRows();

/// The first row with exactly that word, null when there is none.
const CommandRow* findCommand(const char* word);
