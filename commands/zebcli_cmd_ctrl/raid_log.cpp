// RAID log collection with the maker's own command-line tool.
#include "commands/handlers.h"

#include "log/raidctl.h"
#include "log/zebcli_log.h"
#include "main/zebcli_cmd_com/base/source.h"
#include "main/zebcli_cmd_com/input/options.h"
#include "main/zebcli_cmd_com/input/prompts.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <sys/stat.h>

namespace {

constexpr char kOutputDirectory[] = "/opt/quorvel/zeb/log2/";
constexpr std::size_t kPathSize = 260;
constexpr std::size_t kCommandSize = 260;

/// Writes the command that collects one log. Returns what the formatter returned.
using CommandFormatter = int (*)(char (&out)[kCommandSize], const char* tool, const char* path);

struct LogRow {
    CommandFormatter format;
    const char* fileName;
};

// The tool writes the first log itself; of the others its standard output is the log.
constexpr auto kLogRows = std::to_array<LogRow>({
    {[](char (&out)[kCommandSize], const char* tool, const char* path) {
         return std::snprintf(out, sizeof out, "%s -AdpEventLog -GetEvents -f %s -aALL -nolog >/dev/null", tool, path);
     },
     "log_FlashROMLog.log"},
    {[](char (&out)[kCommandSize], const char* tool, const char* path) {
         return std::snprintf(out, sizeof out, "%s -FWTermlog -Dsply -aALL -nolog > %s", tool, path);
     },
     "log_UART.log"},
    {[](char (&out)[kCommandSize], const char* tool, const char* path) {
         return std::snprintf(out, sizeof out, "%s -AdpAllInfo -aALL -nolog > %s", tool, path);
     },
     "log_AdapterInfo.log"},
});

using OutputPaths = std::array<std::array<char, kPathSize>, kLogRows.size()>;

OutputPaths makePaths() {
    OutputPaths paths{};
    for (std::size_t i = 0; i < paths.size(); ++i)
        std::snprintf(paths[i].data(), paths[i].size(), "%s%s", kOutputDirectory, kLogRows[i].fileName);
    return paths;
}

/// The name of the tool for this machine, null when the machine does not tell what it is.
const char* toolName() {
    std::FILE* pipe = popen("uname -m", "r");
    if (pipe == nullptr)
        return nullptr;
    char machine[256] = {};
    const bool read = std::fgets(machine, sizeof machine, pipe) != nullptr;
    pclose(pipe);
    if (!read)
        return nullptr;
    return std::string_view(machine).starts_with("x86_64") ? "MegaCli64" : "MegaCli";
}

bool collect(const LogRow& row, const char* tool, const char* path) {
    char command[kCommandSize];
    const int length = row.format(command, tool, path);
    if (length < 0 || static_cast<std::size_t>(length) >= sizeof command)
        return false;
    std::fflush(stdout);
    return std::system(command) == 0;
}

void sayFailed(int line = __builtin_LINE()) {
    CliLogging(kPrintAndLog, kCtrlSource, line, "Error - The Collection of the RAID log Failed.");
}

} // namespace

int CliCmdExecLog(int argc, char** argv, _AFCONT* /*conts*/, int /*contCount*/) {
    dumpLog(kCtrlSource, __LINE__, __func__);
    if (refuseArguments(kCtrlSource, argc, argv))
        return 1;
    std::signal(SIGCHLD, SIG_DFL); // ignored by the caller, the tool's status would be lost
    const char* tool = toolName();
    if (tool == nullptr) {
        sayFailed();
        return 1;
    }
    const OutputPaths paths = makePaths();
    const bool present = std::any_of(paths.begin(), paths.end(), [](const auto& path) {
        struct stat info {};
        return stat(path.data(), &info) == 0;
    });
    if (present && !confirmed(kAskOverwriteLog))
        return 1;
    std::size_t collected = 0;
    for (std::size_t i = 0; i < kLogRows.size(); ++i)
        collected += collect(kLogRows[i], tool, paths[i].data()) ? 1 : 0;
    if (collected != kLogRows.size()) {
        sayFailed();
        return 1;
    }
    CliLogging(kPrint, kCtrlSource, __LINE__,
               "Information - The Collection of the RAID log succeeded.\n  %s%s\n  %s%s\n  %s%s", kOutputDirectory,
               kLogRows[0].fileName, kOutputDirectory, kLogRows[1].fileName, kOutputDirectory, kLogRows[2].fileName);
    return 0;
}
