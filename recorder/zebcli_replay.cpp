// zebcli-replay: runs a command against a recording in place of controllers.
#include "recorder/real_library.h"
#include "recorder/recording.h"
#include "recorder/run_command.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <unistd.h>

namespace {

using namespace zebrec;

constexpr char kProgram[] = "zebcli-replay";
constexpr char kUsage[] = "usage: zebcli-replay FILE -- COMMAND...";

/// Becomes the command; comes back only when that cannot be done.
int replay(const std::string& path, const std::vector<std::string>& command) {
    std::string reason;
    if (!readRecordingFile(path, reason))
        return refuse(kProgram, path + ": " + reason);
    const Folders folders = Folders::ofThisProgram();
    if (std::error_code none; !std::filesystem::exists(folders.simulator + "/libstorelib.so", none))
        return refuse(kProgram, "the simulated library is not there; install the package zebcli-simulator");
    const std::vector<std::string> variables = environmentWith(
        {{"LD_LIBRARY_PATH", libraryPathWith(folders.simulator)}, {"ZEBSIM_REPLAY", std::filesystem::absolute(path)}});
    ::execvpe(command.front().c_str(), argvOf(command).data(), argvOf(variables).data());
    return refuse(kProgram, command.front() + " cannot be started: " + std::strerror(errno));
}

int run(int argc, char** argv) {
    const Arguments arguments = parseArguments(argc, argv, {{"--help", false}});
    if (arguments.options.count("--help") != 0)
        return std::puts(kUsage) < 0 ? kCannotStart : 0;
    if (!arguments.error.empty())
        return refuse(kProgram, arguments.error);
    if (arguments.words.size() != 1 || arguments.command.empty())
        return refuse(kProgram, kUsage);
    return replay(arguments.words.front(), arguments.command);
}

} // namespace

int main(int argc, char** argv) {
    return zebrec::runProgram(kProgram, [&] { return run(argc, argv); });
}
