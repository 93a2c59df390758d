// zebcli-record: runs a command and keeps what it asked of the controllers' library and what it was told.
#include "recorder/new_recording.h"
#include "recorder/recording.h"
#include "recorder/show.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace {

using namespace zebrec;

constexpr char kProgram[] = "zebcli-record";
constexpr char kUsage[] = "usage: zebcli-record FILE [--library PATH] [--no-redact] -- COMMAND... | "
                          "zebcli-record FILE [--library PATH] [--no-redact] --reports | zebcli-record --show FILE";

/// Every report of the tool, for all controllers.
std::vector<std::vector<std::string>> everyReport() {
    std::vector<std::vector<std::string>> commands{{"zebcli", "-v"}};
    for (const char* report : {"-ctrlinfo", "-cbinfo", "-enclinfo", "-pdinfo", "-ldpdinfo", "-ldpdprog"})
        commands.push_back({"zebcli", report, "-aAll"});
    return commands;
}

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
    const auto recording = NewRecording::make(kProgram, path, *start, redacted);
    if (!recording)
        return kCannotStart;
    auto env = start->environment();
    env[kFileVariable] = recording->pathForCommand();
    const std::optional<int> status = runAll(commands, env);
    if (!status)
        return refuse(kProgram, commands.front().front() + " cannot be started: " + std::strerror(errno));
    recording->keep();
    sayAtEnd(kProgram, [&] {
        sayHowItEnded(kProgram, *start->page);
        recording->end();
    });
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

int run(int argc, char** argv) {
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
        arguments.has("--reports") ? everyReport() : std::vector<std::vector<std::string>>{arguments.command};
    return record(arguments.words.front(), commands, arguments.value("--library"), !arguments.has("--no-redact"));
}

} // namespace

int main(int argc, char** argv) {
    return zebrec::runProgram(kProgram, [&] { return run(argc, argv); });
}
