// Whole commands over a library whose answers the input changes.
//
// Input: the command line up to a newline, what the operator types up to a NUL, the number of controllers, the changes
// (see library.h).
#include "commands/handlers.h"
#include "fuzz/library.h"
#include "fuzz/support.h"
#include "main/command_table.h"
#include "main/zebcli_cmd_com/input/options.h"

namespace {

/// The row of a command word; of one that is not known any row, so that no input is lost.
const CommandRow& rowOf(const char* word) {
    const CommandRow* row = findCommand(optionText(word).c_str());
    const auto rows = commandRows();
    return row != nullptr ? *row : rows[static_cast<unsigned char>(word[0]) % rows.size()];
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::Input input(data, size);
    fuzz::CommandLine line(input.takeUntil('\n'));
    fuzz::typeAnswers(input.takeUntil('\0'));
    const unsigned controllers = 1 + input.byte() % kMaxControllers;
    if (line.argc() < 2)
        return 0;
    const CommandRow& row = rowOf(line.argv()[1]);
    if (row.handler == CliCmdExecLog) // starts programs
        return 0;
    fuzz::useLibrary(controllers, input.rest());
    fuzz::Snapshot snapshot(controllers);
    if (snapshot.filled())
        row.handler(line.argc(), line.argv(), snapshot.conts(), snapshot.count());
    return 0;
}
