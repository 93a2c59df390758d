#include "recorder/run_command.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace zebrec {

namespace {

constexpr int kSignalled = 128; ///< added to the signal's number

volatile pid_t theCommand = 0;
struct sigaction childrenBefore {};

void handOn(int number, siginfo_t* info, void* /*context*/) {
    // What is typed reaches the command by itself, and what it sends to its own group.
    const bool typed = info->si_code > 0 && (number == SIGINT || number == SIGQUIT);
    const bool itsOwn = info->si_code <= 0 && info->si_pid == theCommand;
    if (theCommand > 0 && !typed && !itsOwn)
        ::kill(theCommand, number);
}

/// Takes a signal over, unless the caller wants it ignored. A handler, other than "ignore", ends with exec.
void takeOver(int number) {
    struct sigaction action {};
    if (::sigaction(number, nullptr, &action) != 0 || action.sa_handler == SIG_IGN)
        return;
    action = {};
    action.sa_sigaction = handOn;
    action.sa_flags = SA_RESTART | SA_SIGINFO;
    ::sigaction(number, &action, nullptr);
}

/// Behind the fork: nothing here needs memory.
[[noreturn]] void becomeCommand(char** argv, char** environment, const sigset_t& signals, int failure) {
    ::sigaction(SIGCHLD, &childrenBefore, nullptr);
    ::sigprocmask(SIG_SETMASK, &signals, nullptr);
    ::execvpe(argv[0], argv, environment);
    const int reason = errno;
    const ssize_t said = ::write(failure, &reason, sizeof reason);
    ::_exit(said == sizeof reason ? 127 : 126);
}

} // namespace

void expectChildren() {
    struct sigaction action {};
    action.sa_handler = SIG_DFL;
    ::sigaction(SIGCHLD, &action, &childrenBefore);
}

std::vector<char*> argvOf(const std::vector<std::string>& words) {
    std::vector<char*> argv;
    argv.reserve(words.size() + 1);
    for (const std::string& word : words)
        argv.push_back(const_cast<char*>(word.c_str()));
    argv.push_back(nullptr);
    return argv;
}

std::vector<std::string> environmentWith(const std::map<std::string, std::string>& further) {
    std::vector<std::string> all;
    for (char** variable = environ; *variable != nullptr; ++variable) {
        const std::string text = *variable;
        if (further.count(text.substr(0, text.find('='))) == 0)
            all.push_back(text);
    }
    for (const auto& [name, value] : further)
        all.push_back(std::string(name).append("=").append(value));
    return all;
}

int waitFor(pid_t child) {
    int status = 0;
    while (::waitpid(child, &status, 0) != child)
        if (errno != EINTR)
            return kCannotStart;
    return WIFSIGNALED(status) ? kSignalled + WTERMSIG(status) : WEXITSTATUS(status);
}

std::optional<int> runCommand(const std::vector<std::string>& command, const std::map<std::string, std::string>& env) {
    std::vector<char*> argv = argvOf(command);
    const std::vector<std::string> variables = environmentWith(env);
    std::vector<char*> environment = argvOf(variables);
    int failure[2];
    if (::pipe2(failure, O_CLOEXEC) != 0)
        return std::nullopt;
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    ::sigprocmask(SIG_SETMASK, &all, &before);
    for (const int number : {SIGINT, SIGQUIT, SIGTERM, SIGHUP, SIGUSR1, SIGUSR2})
        takeOver(number);
    std::fflush(nullptr);
    const pid_t child = ::fork();
    if (child == 0)
        becomeCommand(argv.data(), environment.data(), before, failure[1]);
    theCommand = child;
    ::close(failure[1]);
    ::sigprocmask(SIG_SETMASK, &before, nullptr);
    int reason = errno;
    ssize_t length = 0;
    if (child > 0)
        do
            length = ::read(failure[0], &reason, sizeof reason);
        while (length < 0 && errno == EINTR);
    ::close(failure[0]);
    const int status = child > 0 ? waitFor(child) : 0;
    theCommand = 0;
    if (child > 0 && length != sizeof reason)
        return status;
    errno = reason;
    return std::nullopt;
}

bool isEndedFromOutside(int status) {
    const int number = status - kSignalled;
    return number == SIGINT || number == SIGQUIT || number == SIGTERM || number == SIGHUP;
}

std::string libraryPathWith(const std::string& folder) {
    const char* before = std::getenv("LD_LIBRARY_PATH");
    return before != nullptr && *before != '\0' ? folder + ":" + before : folder;
}

std::string pathOfFile(int file) {
    return "/proc/" + std::to_string(::getpid()) + "/fd/" + std::to_string(file);
}

std::map<std::string, std::string> recorderEnvironment(const std::string& folder, const std::string& realLibrary,
                                                       int pageFile) {
    return {{"LD_LIBRARY_PATH", libraryPathWith(folder)},
            {kLibraryVariable, realLibrary},
            {kPageVariable, pathOfFile(pageFile)}};
}

void sayHowItEnded(const std::string& program, const SessionPage& page) {
    for (const SessionPage::Place& place : page.place)
        if (place.inside)
            std::fprintf(stderr, "%s: the command ended inside request %llu: %s\n", program.c_str(),
                         static_cast<unsigned long long>(place.request.number), describe(place.request).c_str());
    page.overruns.forEach([&](const Mention& mention) {
        std::fprintf(stderr, "%s: the library wrote %llu bytes behind the data of request %llu: %s\n", program.c_str(),
                     static_cast<unsigned long long>(mention.amount), static_cast<unsigned long long>(mention.number),
                     describe(mention).c_str());
    });
    if (page.failed != 0)
        std::fprintf(stderr, "%s: the real library could not be loaded in the command: %s\n", program.c_str(),
                     page.failure);
}

} // namespace zebrec
