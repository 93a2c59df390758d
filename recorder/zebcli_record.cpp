// zebcli-record: runs a command and keeps what it asked of the controllers' library and what it was told.
#include "recorder/real_library.h"
#include "recorder/recording.h"
#include "recorder/run_command.h"
#include "recorder/show.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <iterator>
#include <sys/random.h>
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

std::string timeNow() {
    const std::time_t now = std::time(nullptr);
    std::tm parts{};
    gmtime_r(&now, &parts);
    char text[32];
    std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &parts);
    return text;
}

/// The version text of the library: two fields of its record, each up to its NUL.
std::string versionOf(const SessionPage& page) {
    if (!page.versionKnown)
        return "";
    constexpr std::size_t kRevision = 4;
    const std::string revision(page.version, strnlen(page.version, kRevision));
    const std::string version(page.version + kRevision,
                              strnlen(page.version + kRevision, sizeof page.version - kRevision));
    return revision + " " + version;
}

bool putHead(int file, const Head& head) {
    const std::string text = writeHead(head) + "\n";
    return ::pwrite(file, text.data(), text.size(), 0) == static_cast<ssize_t>(text.size());
}

/// What is to be said when the command has ended.
void sayTheEnd(const SessionPage& page, const std::string& path) {
    sayHowItEnded(kProgram, page);
    if (page.stopped != 0)
        std::fprintf(stderr, "%s: the recording %s ends early: %s\n", kProgram, path.c_str(),
                     std::strerror(page.stopped));
    std::vector<std::string> codes;
    page.leftOut.forEach([&](const Mention& mention) { codes.push_back(codeOf(Request{mention.header, {}, {}})); });
    if (const std::string line = leftOutLine(codes, page.leftOut.count); !line.empty())
        std::fprintf(stderr, "%s: %s\n", kProgram, line.c_str());
}

/// Runs the commands one after the other. Returns the first status that is not 0, or nothing when the first of them
/// could not be started.
std::optional<int> runAll(const std::vector<std::vector<std::string>>& commands,
                          const std::map<std::string, std::string>& env) {
    int first = 0;
    for (const auto& command : commands) {
        const std::optional<int> status = runCommand(command, env);
        if (!status)
            return std::nullopt;
        if (first == 0)
            first = *status;
    }
    return first;
}

int record(const std::string& path, const std::vector<std::vector<std::string>>& commands,
           const std::optional<std::string>& library, bool redacted) {
    const Folders folders = Folders::ofThisProgram();
    std::string reason;
    const auto real = findRealLibrary(library, folders, reason);
    if (!real)
        return refuse(kProgram, reason);
    int pageFile = -1;
    SessionPage* page = makePage(pageFile);
    if (page == nullptr)
        return refuse(kProgram, std::string("no shared memory: ") + std::strerror(errno));
    page->mode = Mode::kRecord;
    page->redacted = redacted;
    if (::getrandom(page->key.data(), sizeof page->key, 0) != sizeof page->key)
        return refuse(kProgram, std::string("no random number: ") + std::strerror(errno));
    const int file = ::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
    if (file < 0)
        return refuse(kProgram, path + " cannot be made: " + std::strerror(errno));
    Head head{std::string("zebcli-recorder ") + ZEB_VERSION, "", timeNow(), redacted};
    if (!putHead(file, head)) {
        const int why = errno;
        ::unlink(path.c_str());
        return refuse(kProgram, path + " cannot be written: " + std::strerror(why));
    }
    auto env = recorderEnvironment(folders.recorder, *real, pageFile);
    env[kFileVariable] = pathOfFile(file);
    const std::optional<int> status = runAll(commands, env);
    if (!status) {
        const int why = errno;
        ::unlink(path.c_str());
        return refuse(kProgram, commands.front().front() + " cannot be started: " + std::strerror(why));
    }
    head.library = versionOf(*page);
    if (!putHead(file, head))
        page->stopped = errno;
    sayTheEnd(*page, path);
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
    const auto has = [&](const char* option) { return arguments.options.count(option) != 0; };
    if (has("--help"))
        return std::puts(kUsage) < 0 ? kCannotStart : 0;
    if (!arguments.error.empty())
        return refuse(kProgram, arguments.error);
    if (has("--show") && arguments.words.empty() && arguments.command.empty() && arguments.options.size() == 1)
        return show(arguments.options.at("--show"));
    if (arguments.words.size() != 1 || has("--show") || has("--reports") == !arguments.command.empty())
        return refuse(kProgram, kUsage);
    std::optional<std::string> library;
    if (has("--library"))
        library = arguments.options.at("--library");
    const auto commands = has("--reports") ? kReports : std::vector<std::vector<std::string>>{arguments.command};
    return record(arguments.words.front(), commands, library, !has("--no-redact"));
}
