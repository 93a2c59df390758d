// Start-up, in a fixed order: log, caller, arguments, terminal, command word, library, snapshot, handler; then
// everything is taken down again.

#include "log/raidctl.h"
#include "log/zebcli_log.h"
#include "main/command_table.h"
#include "main/process_setup.h"
#include "main/zebcli_cmd_com/input/prompts.h"
#include "main/zebcli_cmd_com/model/snapshot.h"
#include "storelib/dll_mod.h"

#include <cctype>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

namespace {

constexpr char kSource[] = "zebcli_main";
constexpr char kLogName[] = "zebcli.log";
constexpr unsigned int kLogBudget = 2000000; // bytes
constexpr std::size_t kWordSize = 256;
constexpr std::size_t kLongestArgument = 256;
constexpr int kFailure = -1;
constexpr char kAccessError[] =
    "Error - An error has occurred on accessing to RAID controller.\nQuits the application.\n";

using CommandWord = char[kWordSize + 1];

/// Called where memory for a request ran out.
void DLL_MEMORYALLOC() {
    CliLogging(kPrintAndLog, kSource, __LINE__, "Error - Failed to initialize.");
}

/// Whether the terminal belongs to another job just now. Whoever changes its mode then is stopped.
bool inBackground() {
    const pid_t front = tcgetpgrp(STDIN_FILENO);
    return front >= 0 && front != getpgrp();
}

void CliCmdProcessDetach() {
    if (term_set_flg == 1 && !inBackground())
        tcsetattr(STDIN_FILENO, TCSANOW, &old_term_set);
}

bool argumentsTooLong(int argc, char** argv) {
    for (int i = 0; i < argc; ++i)
        if (std::strlen(argv[i]) > kLongestArgument)
            return true;
    return false;
}

/// Makes the signals that end a run put the terminal back first, as it was when the run began.
void restoreTerminalOnSignals() {
    static termios before;
    before = old_term_set;
    struct sigaction action {};
    action.sa_handler = [](int signal) {
        tcsetattr(STDIN_FILENO, TCSANOW, &before);
        raise(signal);
    };
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    sigaddset(&action.sa_mask, SIGTTOU); // in the background too
    for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM}) {
        struct sigaction present {};
        if (sigaction(signal, nullptr, &present) == 0 && present.sa_handler != SIG_IGN)
            sigaction(signal, &action, nullptr);
    }
}

/// Canonical input stays on; only the echo and the signal keys go off for the run.
void setTerminalMode() {
    if (tcgetattr(STDIN_FILENO, &old_term_set) != 0)
        return; // no terminal, no mode to set and to put back
    new_term_set = old_term_set;
    new_term_set.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    new_term_set.c_lflag &= ~static_cast<tcflag_t>(ISIG);
    if (!inBackground()) {
        restoreTerminalOnSignals();
        tcsetattr(STDIN_FILENO, TCSANOW, &new_term_set);
    }
    term_set_flg = 1;
}

/// The argument in lower case without the text up to its first "-"; as it stands when there is no "-" or nothing behind
/// it.
void makeCommandWord(const char* argument, CommandWord& word) {
    const char* dash = std::strchr(argument, '-');
    const char* from = dash != nullptr && dash[1] != '\0' ? dash + 1 : argument;
    std::size_t length = 0;
    for (; length < kWordSize && from[length] != '\0'; ++length)
        word[length] = static_cast<char>(std::tolower(static_cast<unsigned char>(from[length])));
    word[length] = '\0';
}

/// The number of controllers, or -1 after it was said why there is none to work with.
int openControllers() {
    if (SLInitLib(DLL_MEMORYALLOC) != kSlSuccess) {
        CliLogging(kPrintAndLog, kSource, __LINE__, "Error - Failed to initialize.");
        return kFailure;
    }
    _SL_CTRL_LIST_T list{};
    if (SLGetCtrlList(&list) != kSlSuccess) {
        CliLogging(kPrintAndLog, kSource, __LINE__, kAccessError);
        return kFailure;
    }
    const int count = list.count;
    if (count > static_cast<int>(kMaxControllers)) {
        CliLogging(kPrintAndLog, kSource, __LINE__,
                   "Error - The number of RAID controller is over %d.\nQuits the application.\n",
                   static_cast<int>(kMaxControllers));
        return kFailure;
    }
    if (count < 1) {
        CliLogging(kPrintAndLog, kSource, __LINE__, "Error - No RAID controller is found.\nQuits the application.\n");
        return kFailure;
    }
    return count;
}

/// The filled snapshot of all controllers in conts; false after it was said why there is none.
bool takeSnapshot(_AFCONT*& conts, int count) {
    conts = static_cast<_AFCONT*>(std::calloc(static_cast<std::size_t>(count), sizeof(_AFCONT)));
    if (conts == nullptr) {
        CliLogging(kPrintAndLog, kSource, __LINE__, "Error - An error has occurred with Linux API. (code=0x%X)",
                   static_cast<unsigned>(errno));
        return false;
    }
    if (AllocDriveInfo(conts, count) != 1 || UpdateDriveInfo(conts, count) != 1) {
        CliLogging(kPrintAndLog, kSource, __LINE__, kAccessError);
        return false;
    }
    return true;
}

/// Runs the command of the row between opening and closing the library. Returns the exit status.
int runCommand(const CommandRow& row, int argc, char** argv) {
    int status = 0;
    _AFCONT* conts = nullptr;
    const int count = openControllers();
    if (count < 0 || (row.needsSnapshot != 0 && !takeSnapshot(conts, count)))
        status = kFailure;
    else
        row.handler(argc, argv, conts, count);

    FreeDriveInfo(conts, count);
    std::free(conts);
    SLExitLib();
    return status;
}

/// Output that did not reach its place is no reason for another exit status, but it is recorded.
void checkOutput() {
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0)
        Utillogging(kSource, __LINE__, kTraceError, "func=%s: %s", "main", "standard output error");
}

[[noreturn]] void quitBeforeStart(const char* message) {
    CliLogging(kPrintAndLog, kSource, __LINE__, "%s", message);
    checkOutput();
    finContData();
    std::exit(kFailure);
}

} // namespace

int main(int argc, char** argv) {
    occupyStandardDescriptors();
    surviveWriteSignals();
    gatherOutput();
    initLog(kLogName, kLogBudget);
    HistoryLog(argc, argv);
    if (geteuid() != 0)
        quitBeforeStart("Fatal error - It is not root user.");
    if (argc < 2 || argumentsTooLong(argc, argv))
        quitBeforeStart("Error - Invoked with wrong parameters.");
    if (std::atexit(CliCmdProcessDetach) != 0)
        std::exit(kFailure);
    setTerminalMode();

    int status = kFailure;
    CommandWord word;
    makeCommandWord(argv[1], word);
    const CommandRow* row = findCommand(word);
    if (row != nullptr)
        status = runCommand(*row, argc, argv);
    else
        CliLogging(kPrintAndLog, kSource, __LINE__, "Error - Invalid input at or near token %s.", word);
    checkOutput();
    finContData();
    return status;
}
