// zebcli-record: runs a command and keeps what it asked of the controllers' library and what it was told.
#include "recorder/recording.h"
#include "recorder/show.h"
#include "recorder/start.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <unistd.h>

namespace {

using namespace zebrec;

constexpr char kProgram[] = "zebcli-record";
constexpr char kUsage[] = "usage: zebcli-record FILE [--library PATH] [--no-redact] -- COMMAND... | "
                          "zebcli-record FILE [--library PATH] [--no-redact] --reports | zebcli-record --show FILE";

/// Every report of the tool, for all controllers.
const std::vector<std::vector<std::string>> kReports = {
    {"zebcli", "-v"},
    {"zebcli", "-ctrlinfo", "-aAll"},
    {"zebcli", "-cbinfo", "-aAll"},
    {"zebcli", "-enclinfo", "-aAll"},
    {"zebcli", "-pdinfo", "-aAll"},
    {"zebcli", "-ldpdinfo", "-aAll"},
    {"zebcli", "-ldpdprog", "-aAll"},
};

/// Runs the commands one after the other, until somebody ends one. Returns the first status that is not 0, or nothing
/// when one of them could not be started.
std::optional<int> runAll(const std::vector<std::vector<std::string>>& commands,
                          const std::map<std::string, std::string>& env) {
    int first = 0;
    for (const auto& command : commands) {
        const std::optional<int> status = runCommand(command, env);
        if (!status)
            return std::nullopt;
        if (isEndedFromOutside(*status))
            return status;
        if (first == 0)
            first = *status;
    }
    return first;
}

int record(const std::string& path, const std::vector<std::vector<std::string>>& commands,
           const std::optional<std::string>& library, bool redacted) {
    const auto start = beginSession(kProgram, Mode::kRecord, library);
    if (!start)
        return kCannotStart;
    const int file = makeRecording(kProgram, path, *start, redacted);
    if (file < 0)
        return kCannotStart;
    auto env = start->environment();
    env[kFileVariable] = pathOfFile(file);
    const std::optional<int> status = runAll(commands, env);
    if (!status) {
        const int why = errno;
        ::unlink(path.c_str());
        return refuse(kProgram, commands.front().front() + " cannot be started: " + std::strerror(why));
    }
    sayHowItEnded(kProgram, *start->page);
    endRecording(kProgram, path, file, *start->page);
    return *status;
}

int show(const std::string& path) {
    std::string reason;
    const auto recording = readRecordingFile(path, reason);
    if (!recording)
        return refuse(kProgram, path + ": " + reason);
    const std::string text = showRecording(*recording);
    std::fwrite(text.data(), 1, text.size(), stdout);
    return std::fflush(stdout) == 0 ? 0 : refuse(kProgram, std::string("standard output: ") + std::strerror(errno));
}

} // namespace

int main(int argc, char** argv) {
    const Arguments arguments = parseArguments(
        argc, argv,
        {{"--library", true}, {"--no-redact", false}, {"--reports", false}, {"--show", true}, {"--help", false}});
    if (arguments.has("--help"))
        return std::puts(kUsage) < 0 ? kCannotStart : 0;
    if (!arguments.error.empty())
        return refuse(kProgram, arguments.error);
    if (arguments.has("--show") && arguments.words.empty() && arguments.command.empty() &&
        arguments.options.size() == 1)
        return show(arguments.options.at("--show"));
    if (arguments.words.size() != 1 || arguments.has("--show") ||
        arguments.has("--reports") == !arguments.command.empty())
        return refuse(kProgram, kUsage);
    const auto commands =
        arguments.has("--reports") ? kReports : std::vector<std::vector<std::string>>{arguments.command};
    return record(arguments.words.front(), commands, arguments.value("--library"), !arguments.has("--no-redact"));
}
