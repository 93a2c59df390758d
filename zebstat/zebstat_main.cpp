// The companion of zebcli: the same facts for programs and for eyes. It sends reading requests only and opens no
// command log.
#include "main/process_setup.h"
#include "zebstat/check_line.h"
#include "zebstat/library.h"
#include "zebstat/output.h"
#include "zebstat/run.h"

#include <new>
#include <unistd.h>

namespace {

using namespace zebstat;

[[noreturn]] void endWithoutMemory() {
    constexpr char kWords[] = "zebstat: no memory is left\n";
    [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, kWords, sizeof kWords - 1);
    _exit(kUntold);
}

[[noreturn]] void endCheckWithoutMemory() {
    constexpr char kWords[] = "ZEB UNKNOWN - no memory is left\n";
    [[maybe_unused]] const ssize_t written = write(STDOUT_FILENO, kWords, sizeof kWords - 1);
    _exit(kUntold);
}

/// Runs before the constants of the libraries are made, which take memory as well.
[[gnu::constructor(101)]] void prepareForLackOfMemory() {
    std::set_new_handler(endWithoutMemory);
}

int run(const Options& options) {
    switch (options.command) {
    case Command::kJson:
        return runJson(options);
    case Command::kMetrics:
        return runMetrics(options);
    case Command::kCheck:
        return runCheck(options);
    case Command::kWait:
        return runWait(options);
    case Command::kWatch:
        return runWatch(options);
    case Command::kHtml:
        return runHtml(options);
    case Command::kSchema:
        return runSchema();
    }
    return kUntold;
}

} // namespace

int main(int argc, char** argv) {
    occupyStandardDescriptors();
    surviveWriteSignals();
    const Reading reading = readOptions(argc, argv);
    if (!reading.answer.empty())
        return writeOutput(reading.answer) ? kDone : kUntold;
    if (!reading.options) {
        complain(reading.complaint);
        if (reading.forCheck)
            writeOutput(unknownLine(reading.complaint));
        return kUntold;
    }
    if (reading.options->command == Command::kCheck)
        std::set_new_handler(endCheckWithoutMemory);
    if (reading.options->command != Command::kSchema && geteuid() != 0)
        return untold(reading.options->command, "only root can ask the controllers; run it as root");
    return run(*reading.options);
}
